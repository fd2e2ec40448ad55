// SPDX-License-Identifier: MIT
//
// What desktops and software centres show of the program: in every language, and as their own checks want it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <regex>
#include <string>

#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;
using testing::HasSubstr;

constexpr const char* ENTRY = GLYPHWARD_TREE "/packaging/glyphward.desktop";
constexpr const char* METAINFO = GLYPHWARD_TREE "/packaging/local.glyphward.glyphward.metainfo.xml";
constexpr const char* PICTURES = GLYPHWARD_TREE "/packaging/screenshots.xml.in";
constexpr const char* LANGUAGES[] = {"de", "es", "fr", "ja"};

TEST(DesktopEntry, SpeaksEveryLanguage) {
    const std::string entry = TempDir::read_bytes(ENTRY);
    for (const char* key : {"Name", "GenericName", "Comment", "Keywords"}) {
        EXPECT_THAT(entry, HasSubstr(std::string("\n") + key + '='));
        for (const char* language : LANGUAGES)
            EXPECT_THAT(entry, HasSubstr(std::string("\n") + key + '[' + language + "]="));
    }
}

int count_of(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

/// The data as they are for somebody who has published the pictures.
std::string data_with_pictures() {
    const std::string address = "@GLYPHWARD_SCREENSHOT_URL@";
    std::string pictures = TempDir::read_bytes(PICTURES);
    for (std::size_t at = 0; (at = pictures.find(address)) != std::string::npos;)
        pictures.replace(at, address.size(), "https://www.example.org/screenshots");
    std::string data = TempDir::read_bytes(METAINFO);
    return data.insert(data.find("  <content_rating"), pictures);
}

TEST(AppStream, SpeaksEveryLanguage) {
    const std::string data = data_with_pictures();
    for (const char* tag : {"summary", "p", "li", "caption"}) {
        const int texts = count_of(data, std::string("<") + tag + '>');
        EXPECT_GT(texts, 0) << tag;
        for (const char* language : LANGUAGES)
            EXPECT_EQ(count_of(data, std::string("<") + tag + " xml:lang=\"" + language + "\">"), texts)
                << tag;
    }
}

// Nothing on the web is named that nobody has put there.
TEST(AppStream, NamesNoAddresses) {
    const std::string data = TempDir::read_bytes(METAINFO);
    EXPECT_EQ(data.find("://"), std::string::npos);
    EXPECT_EQ(data.find("<screenshot"), std::string::npos);
}

TEST(AppStream, ShowsPicturesThatThereAre) {
    const std::string data = data_with_pictures();
    const std::regex picture("/screenshots/([a-z-]+\\.png)<");
    int pictures = 0;
    for (std::sregex_iterator found(data.begin(), data.end(), picture), end; found != end; ++found) {
        ++pictures;
        EXPECT_TRUE(std::filesystem::exists(GLYPHWARD_TREE "/docs/screenshots/" + (*found)[1].str()))
            << (*found)[1];
    }
    EXPECT_GE(pictures, 11);
}

/// Skips the test when the machine does not have the program.
void check_with(const char* program, const std::string& command) {
    if (::access((std::string("/usr/bin/") + program).c_str(), X_OK) != 0)
        GTEST_SKIP() << program << " is not installed";
    EXPECT_EQ(gw::run_shell(command, {}), 0);
}

TEST(DesktopEntry, PassesTheDesktopsCheck) {
    check_with("desktop-file-validate", std::string("desktop-file-validate ") + ENTRY);
}

TEST(AppStream, PassesTheSoftwareCentresCheck) {
    check_with("appstreamcli", std::string(GLYPHWARD_TREE "/packaging/check-metadata ") + METAINFO);
    const TempDir directory;
    const std::string whole = directory.write("local.glyphward.glyphward.metainfo.xml", data_with_pictures());
    check_with("appstreamcli", GLYPHWARD_TREE "/packaging/check-metadata " + whole);
}

}  // namespace
