// SPDX-License-Identifier: MIT
#include "diagnosis/packages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "diagnosis/xlfd_fields.h"
#include "platform/host_paths.h"
#include "platform/package_owner.h"

namespace {

using gw::diagnosis::fields_of;
using gw::diagnosis::PackageHint;
using gw::diagnosis::packages_for;
using gw::diagnosis::packages_for_charset;

bool none_is_installed(const std::string& /*package*/) {
    return false;
}

std::vector<PackageHint> hints_for(const std::string& wanted) {
    return packages_for(wanted, 100, none_is_installed);
}

/// The font that a package would bring; "" if it would bring none.
std::string font_of(const std::string& package, const std::vector<PackageHint>& hints) {
    const auto hint = std::find_if(hints.begin(), hints.end(),
                                   [&](const PackageHint& other) { return other.package == package; });
    return hint == hints.end() ? "" : hint->name;
}

struct Row {
    std::string kind;
    std::string text;
    std::string sizes;
    std::string charsets;
};

const std::vector<Row> TABLE = {
#define PACKAGE(name) {"package", name, "", ""},
#define FACE(face, sizes, charsets) {"face", face, sizes, charsets},
#define ALIASES(names) {"aliases", names, "", ""},
#include "diagnosis/font_packages.def"
#undef PACKAGE
#undef FACE
#undef ALIASES
};

std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

TEST(PackageTableTest, EveryRowGivesFullNames) {
    std::set<std::string> packages;
    ASSERT_FALSE(TABLE.empty());
    EXPECT_EQ(TABLE.front().kind, "package");
    for (const Row& row : TABLE) {
        if (row.kind == "package") {
            EXPECT_TRUE(packages.insert(row.text).second) << row.text << " is there twice";
        }
        if (row.kind != "face") continue;
        ASSERT_FALSE(row.sizes.empty()) << row.text;
        for (const std::string& size : words_of(row.sizes)) {
            for (const std::string& charset : words_of(row.charsets)) {
                const std::string name = row.text + size + "-" + charset;
                EXPECT_TRUE(fields_of(name)) << name;
            }
        }
    }
    for (const char* package :
         {"xfonts-base", "xfonts-75dpi", "xfonts-100dpi", "xfonts-scalable", "xfonts-terminus",
          "xfonts-intl-japanese", "fonts-urw-base35", "fonts-dejavu-core", "fonts-liberation"})
        EXPECT_TRUE(packages.contains(package)) << package;
}

TEST(PackagesTest, APatternFindsThePackagesOfItsFonts) {
    const std::vector<PackageHint> hints = hints_for("-adobe-helvetica-bold-r-normal--*-120-*");
    EXPECT_EQ(font_of("xfonts-75dpi", hints), "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso10646-1");
    EXPECT_EQ(font_of("xfonts-100dpi", hints),
              "-adobe-helvetica-bold-r-normal--17-120-100-100-p-92-iso10646-1");
    EXPECT_EQ(font_of("xfonts-base", hints), "");
    ASSERT_GE(hints.size(), 2U);
    EXPECT_EQ(hints[0].package, "xfonts-75dpi");
    EXPECT_EQ(hints[1].package, "xfonts-100dpi");
}

TEST(PackagesTest, AFullNameFindsOnlyItsPackage) {
    const std::vector<PackageHint> hints =
        hints_for("-adobe-times-medium-r-normal--14-140-75-75-p-74-iso8859-1");
    EXPECT_NE(font_of("xfonts-75dpi", hints) + font_of("xfonts-75dpi-transcoded", hints), "");
    EXPECT_EQ(font_of("xfonts-100dpi", hints), "");
    EXPECT_TRUE(hints_for("-adobe-times-medium-r-normal--15-140-75-75-p-74-iso8859-1").empty());
}

TEST(PackagesTest, LettersMatchInBothCases) {
    EXPECT_FALSE(hints_for("-*-Helvetica-Medium-R-Normal--*-140-*-*-P-*-ISO8859-1").empty());
}

TEST(PackagesTest, AliasesHavePackages) {
    EXPECT_EQ(font_of("xfonts-base", hints_for("9x15")), "9x15");
    EXPECT_EQ(font_of("xfonts-75dpi", hints_for("lucidasans-12")), "lucidasans-12");
    EXPECT_EQ(font_of("xfonts-x3270-misc", hints_for("3270gt16")), "3270gt16");
    EXPECT_TRUE(hints_for("no such alias").empty());
    EXPECT_TRUE(hints_for("").empty());
}

TEST(PackagesTest, AnOutlineHasEverySize) {
    const std::vector<PackageHint> hints = hints_for("-*-dejavu sans mono-bold-r-*--33-*-iso8859-1");
    EXPECT_EQ(font_of("fonts-dejavu-core", hints),
              "-misc-dejavu sans mono-bold-r-normal--0-0-0-0-m-0-iso8859-1");
    EXPECT_NE(font_of("fonts-urw-base35",
                      hints_for("-urw-nimbus sans l-bold-r-normal--24-240-75-75-p-135-iso8859-1")),
              "");
}

TEST(PackagesTest, InstalledPackagesAreNoHints) {
    const auto is_75dpi = [](const std::string& package) { return package == "xfonts-75dpi"; };
    const std::vector<PackageHint> hints =
        packages_for("-adobe-helvetica-bold-r-normal--*-120-*", 100, is_75dpi);
    EXPECT_EQ(font_of("xfonts-75dpi", hints), "");
    EXPECT_NE(font_of("xfonts-100dpi", hints), "");
}

TEST(PackagesTest, NoMoreThanAskedForAndEachOnce) {
    EXPECT_EQ(packages_for("-*-*-*-*-*-*-*-*-*-*-*-*-*-*", 3, none_is_installed).size(), 3U);
    std::set<std::string> packages;
    for (const PackageHint& hint : hints_for("-*-*-*-*-*-*-*-*-*-*-*-*-*-*"))
        EXPECT_TRUE(packages.insert(hint.package).second) << hint.package;
}

TEST(PackagesTest, CharsetsHavePackages) {
    const auto hints = [](const char* charset) {
        return packages_for_charset(charset, 100, none_is_installed);
    };
    EXPECT_NE(font_of("xfonts-base", hints("JISX0208.1983-0")), "");
    EXPECT_NE(font_of("xfonts-base", hints("KOI8-R")), "");
    EXPECT_NE(font_of("xfonts-intl-chinese", hints("big5.eten-0")) +
                  font_of("xfonts-intl-chinese", hints("BIG5-0")),
              "");
    EXPECT_TRUE(hints("nosuch-9").empty());
}

TEST(PackagesTest, TheCommandInstallsThePackageWhereThereIsApt) {
    const std::vector<PackageHint> hints = packages_for("9x15", 1, none_is_installed);
    ASSERT_EQ(hints.size(), 1U);
    if (std::filesystem::exists(gw::APT))
        EXPECT_TRUE(hints[0].command == "apt install xfonts-base" ||
                    hints[0].command == "sudo apt install xfonts-base");
    else
        EXPECT_EQ(hints[0].command, "");
}

TEST(PackagesTest, WhatDpkgHasInstalledIsNoHint) {
    if (gw::installed_packages({"xfonts-base"}).empty()) GTEST_SKIP() << "not a machine of dpkg's";
    EXPECT_FALSE(packages_for("9x15", 1, none_is_installed).empty());
    for (const PackageHint& hint : packages_for("9x15", 100)) EXPECT_NE(hint.package, "xfonts-base");
}

TEST(PackagesTest, NamesOfPackagesAreAskedForAsTheyAre) {
    EXPECT_TRUE(gw::installed_packages({}).empty());
    EXPECT_TRUE(gw::installed_packages({"xfonts-nosuch", "$(touch /tmp/owned)", "--version", "x y"}).empty());
}

}  // namespace
