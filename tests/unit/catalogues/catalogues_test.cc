// SPDX-License-Identifier: MIT
//
// The installed catalogues: each locale of each language has one in its own character set, under every name
// that the machine has for the locale.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <langinfo.h>
#include <nl_types.h>

#include <algorithm>
#include <clocale>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "platform/shell_command.h"
#include "support/charset.h"
#include "support/temp_dir.h"
#include "translations.h"

namespace {

using namespace gw::catalogue;
using gw::test::converted;
using gw::test::TempDir;

constexpr const char* LOCALES = "/usr/vantor/lib/locale/";
constexpr const char* NOT_THERE = "not in the catalogue";

class Catalogue {
  public:
    explicit Catalogue(const std::string& locale)
        : descriptor_(::catopen((LOCALES + locale + "/LC_MESSAGES/glyphward.cat").c_str(), 0)) {}
    ~Catalogue() {
        if (is_open()) ::catclose(descriptor_);
    }
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ != reinterpret_cast<nl_catd>(-1); }
    [[nodiscard]] std::string text(const Entry& entry) const {
        return ::catgets(descriptor_, entry.set, entry.number, NOT_THERE);
    }

  private:
    nl_catd descriptor_;
};

Texts texts_of(const std::string& language) {
    for (const Language& candidate : languages()) {
        if (candidate.name == language) return candidate.texts;
    }
    return english();
}

/// A line of data/locales.txt.
struct Line {
    std::string language;
    std::string charset;
    std::vector<std::string> locales;
};

std::vector<Line> lines() {
    std::vector<Line> result;
    std::istringstream in(TempDir::read_bytes(GLYPHWARD_TREE "/data/locales.txt"));
    for (std::string text; std::getline(in, text);) {
        if (text.empty() || text[0] == '#') continue;
        std::istringstream words(text);
        Line line;
        words >> line.language >> line.charset;
        for (std::string locale; words >> locale;) line.locales.push_back(locale);
        result.push_back(line);
    }
    return result;
}

TEST(InstalledCataloguesTest, HoldEveryTextInTheCharacterSetOfTheLocale) {
    ASSERT_EQ(lines().size(), 14U);
    for (const Line& line : lines()) {
        const Catalogue catalogue(line.locales.front());
        ASSERT_TRUE(catalogue.is_open()) << line.locales.front();
        for (const Entry& entry : texts_of(line.language)) {
            EXPECT_EQ(catalogue.text(entry), converted(entry.text, line.charset))
                << line.language << ", set " << entry.set << ", number " << entry.number;
        }
    }
}

/// The text of the Delete menu entry, which differs between the languages.
const Entry& delete_entry(const Texts& texts) {
    return *std::find_if(texts.begin(), texts.end(),
                         [](const Entry& entry) { return entry.set == 1 && entry.number == 7; });
}

/// What is wrong with the catalogue of one of the machine's locales; empty when it is right.
std::string complaint_about(const std::string& locale, const std::string& language) {
    if (std::setlocale(LC_ALL, locale.c_str()) == nullptr) return locale + ": the machine does not have it";
    const std::string charset = ::nl_langinfo(CODESET);
    std::setlocale(LC_ALL, "C");
    const Catalogue catalogue(locale);
    if (!catalogue.is_open()) return locale + ": no catalogue";
    const Texts texts = texts_of(language);
    const Entry& entry = delete_entry(texts);
    if (catalogue.text(entry) != converted(entry.text, charset))
        return locale + ": \"" + catalogue.text(entry) + "\" instead of the " + language + " text in " +
               charset;
    const bool has_class_file = std::filesystem::exists(LOCALES + locale + "/app-defaults/Glyphward");
    if (has_class_file != (language != "english")) return locale + ": class file";
    return "";
}

TEST(InstalledCataloguesTest, AreThereForEveryLocaleOfTheList) {
    std::size_t count = 0;
    for (const Line& line : lines()) {
        for (const std::string& locale : line.locales) {
            EXPECT_EQ(complaint_about(locale, line.language), "");
            ++count;
        }
    }
    EXPECT_GT(count, 100U);
}

/// The language of a locale, by its name; empty when the program does not speak it.
std::string language_of(const std::string& locale) {
    static const std::pair<const char*, const char*> STARTS[] = {
        {"de_", "german"},      {"fr_", "french"},       {"es_", "spanish"},    {"ja_", "japanese"},
        {"en_", "english"},     {"german", "german"},    {"deutsch", "german"}, {"french", "french"},
        {"spanish", "spanish"}, {"japanese", "japanese"}};
    for (const auto& [start, language] : STARTS) {
        if (locale.starts_with(start)) return language;
    }
    return "";
}

TEST(InstalledCataloguesTest, AreThereForEveryNameThatTheMachineHas) {
    const TempDir dir;
    ASSERT_EQ(gw::run_shell("locale -a > %s", {dir.file("names")}), 0);
    std::istringstream in(dir.read("names"));
    std::size_t count = 0;
    for (std::string locale; std::getline(in, locale);) {
        const std::string language = language_of(locale);
        if (language.empty()) continue;
        EXPECT_EQ(complaint_about(locale, language), "");
        ++count;
    }
    EXPECT_GT(count, 100U);
}

// Programs that set LANG spell the character set in different ways.
TEST(InstalledCataloguesTest, AreThereUnderOtherSpellings) {
    for (const char* locale :
         {"de_DE.utf8", "de_CH.UTF8", "de_DE.iso88591", "de_AT.ISO-8859-15@euro", "fr_CA.ISO8859-1",
          "es_MX.utf8", "es_CU.UTF-8", "ja_JP.eucjp", "ja_JP.eucJP", "ja_JP"})
        EXPECT_EQ(complaint_about(locale, language_of(locale)), "");
}

TEST(InstalledCataloguesTest, AreOneFileForALanguageAndCharacterSet) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(LOCALES)) {
        const std::filesystem::path file = entry.path() / "LC_MESSAGES" / "glyphward.cat";
        EXPECT_TRUE(!std::filesystem::is_symlink(file) || std::filesystem::read_symlink(file).is_relative());
        if (std::filesystem::is_regular_file(std::filesystem::symlink_status(file))) files.push_back(file);
    }
    EXPECT_EQ(files.size(), lines().size() + 1) << "and that of the C locale";
}

}  // namespace
