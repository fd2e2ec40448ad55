// SPDX-License-Identifier: MIT
//
// The manual page is installed where the program looks for it, man renders it as plain text, and it names
// everything that the sources name: resources, messages on standard error, paths. White space is ignored in
// comparisons, because man breaks the lines.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host_paths.h"
#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;
using testing::HasSubstr;

constexpr std::size_t WIDTH = 78;
constexpr const char* SOURCE = GLYPHWARD_TREE "/data/man/glyphward.1";

struct Rendered {
    int status = -1;
    std::string text;
    std::string complaints;
};

/// Runs the command, which has places for an output and an error file, in that locale. man searches the
/// page's directory besides the usual ones, whatever PATH is.
Rendered render(const std::string& command, const char* locale) {
    const TempDir dir;
    ::setenv("MANPATH", (std::string(gw::MANUAL_DIR) + ':').c_str(), 1);
    ::setenv("MANWIDTH", std::to_string(WIDTH).c_str(), 1);
    ::setenv("LC_ALL", locale, 1);
    const int status = gw::run_shell(command, {dir.file("page"), dir.file("complaints")});
    for (const char* name : {"MANPATH", "MANWIDTH", "LC_ALL"}) ::unsetenv(name);
    return {status, dir.read("page"), dir.read("complaints")};
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::size_t columns(std::string_view line) {
    const auto starts_character = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), starts_character));
}

std::string without_space(std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
    return text;
}

/// The page as rendered in the C locale, without white space.
const std::string& page() {
    static const std::string text = without_space(render("/bin/man glyphward > %s 2> %s", "C").text);
    return text;
}

/// Not a matcher: a failure would show the whole page.
testing::AssertionResult names(const std::string& text) {
    if (page().find(without_space(text)) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the page does not have: " << text;
}

// --- the sources -------------------------------------------------------------

/// The first string literal at or after `place`; adjacent literals are joined.
std::string literal_at(std::string_view source, std::size_t place) {
    std::string value;
    place = source.find('"', place);
    while (place < source.size() && source[place] == '"') {
        for (++place; place < source.size() && source[place] != '"'; ++place) {
            if (source[place] != '\\') {
                value += source[place];
            } else if (++place < source.size()) {
                value += source[place] == 'n' ? '\n' : source[place];
            }
        }
        place = source.find_first_not_of(" \n", place + 1);
    }
    return value;
}

/// The string literals after each occurrence of `mark`. When `mark` ends with a quote, that quote begins the
/// literal.
std::vector<std::string> literals_behind(const std::string& file, std::string_view mark) {
    const std::string source = TempDir::read_bytes(file);
    std::vector<std::string> found;
    for (std::size_t at = source.find(mark); at != std::string::npos; at = source.find(mark, at + 1)) {
        const std::size_t quote = mark.find('"');
        found.push_back(literal_at(source, at + (quote != std::string_view::npos ? quote : mark.size())));
    }
    return found;
}

std::vector<std::string> sources() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(GLYPHWARD_TREE "/src")) {
        const std::string extension = entry.path().extension();
        if (extension == ".cc" || extension == ".h" || extension == ".def") files.push_back(entry.path());
    }
    return files;
}

/// The parts of a message between its conversions ("%s").
std::vector<std::string> fixed_parts(std::string_view message) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t place = message.find("%s");
        if (std::string part = without_space(std::string(message.substr(0, place))); !part.empty())
            parts.push_back(std::move(part));
        if (place == std::string_view::npos) return parts;
        message.remove_prefix(place + 2);
    }
}

// --- tests -------------------------------------------------------------------

TEST(ManualPageTest, IsInstalledAsItIs) {
    const std::string installed = TempDir::read_bytes(std::string(gw::MANUAL_DIR) + "/man1/glyphward.1");
    ASSERT_FALSE(installed.empty());
    EXPECT_EQ(installed, TempDir::read_bytes(SOURCE));
}

TEST(ManualPageTest, IsFoundAndRenderedInEveryLocale) {
    for (const char* locale : {"C", "C.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8"}) {
        SCOPED_TRACE(locale);
        const Rendered manual = render("/bin/man glyphward > %s 2> %s", locale);
        EXPECT_EQ(manual.status, 0);
        EXPECT_EQ(manual.complaints, "");
        EXPECT_THAT(manual.text, HasSubstr("glyphward - list, preview, install and delete X core fonts"));
        EXPECT_EQ(manual.text.find_first_of("\b\033\r"), std::string::npos) << "formatting is left in it";
        for (const std::string& line : lines_of(manual.text)) EXPECT_LE(columns(line), WIDTH) << line;
    }
}

TEST(ManualPageTest, IsAsciiInTheCLocale) {
    const std::string text = render("/bin/man glyphward > %s 2> %s", "C").text;
    ASSERT_FALSE(text.empty());
    EXPECT_TRUE(
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) > 0; }));
}

TEST(ManualPageTest, HasItsSectionsInOrder) {
    const std::vector<std::string> expected = {"NAME",
                                               "SYNOPSIS",
                                               "DESCRIPTION",
                                               "MAIN WINDOW",
                                               "INSTALLING FONTS",
                                               "DELETING FONTS",
                                               "DELETED FONTS",
                                               "PROGRESS",
                                               "RESOLVING CONFLICTS",
                                               "OTHER DIALOGS",
                                               "FONT ATTRIBUTES",
                                               "WHY A FONT IS MISSING",
                                               "SAMPLE TEXT",
                                               "FONT PATH",
                                               "FONTSETS",
                                               "FONTS OF TODAY",
                                               "WINDOWS THAT SAY MORE",
                                               "FONTS OF A PRINTER",
                                               "LANGUAGES",
                                               "KEYBOARD",
                                               "OPTIONS",
                                               "RESOURCES",
                                               "ENVIRONMENT",
                                               "FILES",
                                               "EXIT STATUS",
                                               "DIAGNOSTICS",
                                               "EXAMPLES",
                                               "LIMITS",
                                               "SEE ALSO"};
    std::vector<std::string> sections = lines_of(render("/bin/man glyphward > %s 2> %s", "C").text);
    ASSERT_GT(sections.size(), 2U);
    // The first and the last line are the title and the footer.
    sections.erase(sections.begin());
    sections.pop_back();
    std::erase_if(sections, [](const std::string& line) { return line.empty() || line[0] == ' '; });
    EXPECT_EQ(sections, expected);
}

TEST(ManualPageTest, GivesTheFormatterNothingToWarnAbout) {
    const Rendered manual =
        render("/bin/man --warnings=w -l " + gw::shell_quoted(SOURCE) + " > %s 2> %s", "C");
    EXPECT_EQ(manual.status, 0);
    EXPECT_EQ(manual.complaints, "");
    for (const std::string& line : lines_of(TempDir::read_bytes(SOURCE))) {
        EXPECT_LE(line.size(), 80U) << line;
        EXPECT_FALSE(line.ends_with(' ')) << line;
    }
}

TEST(ManualPageTest, NamesEveryApplicationResource) {
    std::vector<std::string> found =
        literals_behind(GLYPHWARD_TREE "/src/app/start/main_start.cc", "name_arg(\"gw_");
    const std::vector<std::string> classes =
        literals_behind(GLYPHWARD_TREE "/src/app/start/main_start.cc", "name_arg(\"Gw_");
    EXPECT_GE(found.size(), 4U);
    EXPECT_EQ(found.size(), classes.size());
    found.insert(found.end(), classes.begin(), classes.end());
    for (const std::string& name : found) EXPECT_TRUE(names(name));
}

TEST(ManualPageTest, NamesEveryMessageOnStandardError) {
    std::size_t messages = 0;
    for (const std::string& file : sources()) {
        for (const std::string& message : literals_behind(file, "\"glyphward: ")) {
            ++messages;
            for (const std::string& part : fixed_parts(message)) EXPECT_TRUE(names(part)) << message;
        }
    }
    EXPECT_GE(messages, 1U);
}

// Leaves out lists of paths and the paths of modules that are not registered. The place of the locale's name
// is written as LOCALE.
TEST(ManualPageTest, NamesEveryPath) {
    std::size_t paths = 0;
    for (std::string path :
         literals_behind(GLYPHWARD_TREE "/src/platform/host_paths.h", "constexpr const char* ")) {
        if (path == gw::SCRATCH_TYPE0_DIR || path == gw::SCRATCH_TYPE3_DIR) continue;
        if (path == gw::DESKTOP_FONT_DIR_NO_LOCALE || path == gw::DEFAULT_FONT_PATH) continue;
        if (const std::size_t place = path.find("%s"); place != std::string::npos)
            path.replace(place, 2, "LOCALE");
        ++paths;
        EXPECT_TRUE(names(path));
    }
    EXPECT_GE(paths, 25U);
}

}  // namespace
