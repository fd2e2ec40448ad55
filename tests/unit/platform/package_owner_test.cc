// SPDX-License-Identifier: MIT
#include "platform/package_owner.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/temp_dir.h"

namespace {

using gw::PackageOwners;
using gw::test::TempDir;

TEST(PackageOwner, ThePatternOfAPathMeansThatPathOnly) {
    EXPECT_EQ(gw::dpkg_pattern("/fonts/a.pcf"), "/fonts/a.pcf");
    EXPECT_EQ(gw::dpkg_pattern("/f*o?/[a]\\b"), "/f\\*o\\?/\\[a\\]\\\\b");
}

TEST(PackageOwner, AnswersOfDpkgAreRead) {
    EXPECT_EQ(gw::parse_dpkg_answer("xfonts-base: /usr/share/fonts/X11/misc/6x13.pcf.gz\n"
                                    "libc6:amd64, libc6:i386: /usr/share/doc/libc6\n"
                                    "diversion by dash from: /bin/sh\n"
                                    "local diversion to: /bin/sh.real\n"
                                    "with: colon: /a: /b\n"
                                    "no path\n\n: \n: /of/nobody\n"),
              (PackageOwners{{"/usr/share/fonts/X11/misc/6x13.pcf.gz", "xfonts-base"},
                             {"/usr/share/doc/libc6", "libc6:amd64, libc6:i386"},
                             {"/a: /b", "with: colon"}}));
    EXPECT_TRUE(gw::parse_dpkg_answer("").empty());
}

TEST(PackageOwner, AnswersOfRpmAreReadInTheirOrder) {
    EXPECT_EQ(
        gw::parse_rpm_answer("xorg-fonts\nfile /b is not owned by any package\nother\n", {"/a", "/b", "/c"}),
        (PackageOwners{{"/a", "xorg-fonts"}, {"/c", "other"}}));
    EXPECT_EQ(gw::parse_rpm_answer("one\ntwo\n", {"/a"}), (PackageOwners{{"/a", "one, two"}}));
    EXPECT_TRUE(gw::parse_rpm_answer("one\ntwo\nthree\n", {"/a", "/b"}).empty());
    EXPECT_TRUE(gw::parse_rpm_answer("", {"/a", "/b"}).empty());
}

// The real package manager, about files that are on every machine that runs these tests.
TEST(PackageOwner, TheOwnersOfFilesAreAsked) {
    const TempDir dir;
    const std::string own = dir.write("own.pcf", "x");
    std::filesystem::create_symlink("/usr/share/doc", dir.file("link"));
    const std::string link = dir.file("link/libc6");
    // Only the link would be deleted.
    std::filesystem::create_symlink("/usr/share/doc/libc6", dir.file("direct"));
    const PackageOwners owners =
        gw::ask_package_owners({"/usr/share/doc/libc6", link, dir.file("direct"), own, "/usr/share/doc/lib*",
                                "/nonexistent", "/a\nb"});
    ASSERT_EQ(owners.count("/usr/share/doc/libc6"), 1U);
    EXPECT_TRUE(owners.at("/usr/share/doc/libc6").starts_with("libc6"));
    EXPECT_EQ(owners.at(link), owners.at("/usr/share/doc/libc6"));
    EXPECT_EQ(owners.size(), 2U);
}

/// A directory of commands that stand in for package managers; they come first on PATH.
class PackageManager : public testing::Test {
  protected:
    PackageManager() : path_(std::getenv("PATH")) {}
    ~PackageManager() override { ::setenv("PATH", path_.c_str(), 1); }
    void put(const std::string& name, const std::string& script) const {
        dir.write("bin/" + name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(dir.file("bin/" + name), std::filesystem::perms(0755));
    }
    void use(bool with_system) const {
        ::setenv("PATH", (dir.file("bin") + (with_system ? ":" + path_ : "")).c_str(), 1);
    }
    TempDir dir;

  private:
    std::string path_;
};

TEST_F(PackageManager, NothingIsKnownWhereThereIsNone) {
    dir.make_dir("bin");
    use(false);
    EXPECT_TRUE(gw::ask_package_owners({"/usr/share/doc/libc6"}).empty());
}

TEST_F(PackageManager, RpmIsAskedWhereThereIsNoDpkg) {
    put("rpm", "echo libc\n");
    use(false);
    EXPECT_EQ(gw::ask_package_owners({"/usr/share/doc/libc6"}),
              (PackageOwners{{"/usr/share/doc/libc6", "libc"}}));
}

TEST_F(PackageManager, IsAskedOnceForAllFilesOfAnAction) {
    put("dpkg-query",
        "echo x >>" + dir.file("calls") + "\nshift 2\nfor f; do echo \"pkg: $f\"; done\nexit 1\n");
    use(true);
    gw::forget_package_owners();
    EXPECT_EQ(gw::package_owners({"/usr/share/doc", "/usr/bin", "/usr/bin"}).size(), 2U);
    EXPECT_EQ(gw::package_owners({"/usr/bin"}).size(), 1U);
    EXPECT_EQ(gw::package_owners({"/nonexistent"}).size(), 0U);
    EXPECT_EQ(gw::package_owners({"/nonexistent"}).size(), 0U);
    EXPECT_EQ(dir.read("calls"), "x\n");
    gw::forget_package_owners();
    EXPECT_EQ(gw::package_owners({"/usr/bin"}).size(), 1U);
    EXPECT_EQ(dir.read("calls"), "x\nx\n");
    gw::forget_package_owners();
}

TEST_F(PackageManager, AThousandLongNamesGoIntoSeveralCommands) {
    if (::geteuid() != 0) GTEST_SKIP() << "files of packages belong to the superuser";
    put("dpkg-query", "echo x >>" + dir.file("calls") + "\nshift 2\nfor f; do echo \"pkg: $f\"; done\n");
    use(true);
    std::vector<std::string> paths;
    for (int i = 0; i < 1000; ++i)
        paths.push_back(dir.write("fonts/" + std::string(200, 'n') + "%s" + std::to_string(i), ""));
    EXPECT_EQ(gw::ask_package_owners(paths).size(), 1000U);
    EXPECT_EQ(dir.read("calls"), "x\nx\nx\n");
}

}  // namespace
