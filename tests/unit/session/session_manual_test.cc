// SPDX-License-Identifier: MIT
//
// The manual page of glyphward-session: it formats without warnings, is installed unchanged, and names every
// message and option of the program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "platform/host_paths.h"
#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

constexpr const char* PAGE = GLYPHWARD_TREE "/data/man/glyphward-session.1";
constexpr const char* SOURCES[] = {"tools/glyphward-session/main.cc", "src/fontpath/session_path.cc",
                                   "tools/glyphward-session/x_server.cc"};

std::string without_space(std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
    return text;
}

struct Rendered {
    int status;
    std::string text;
    std::string complaints;
};

Rendered render() {
    const TempDir dir;
    ::setenv("LC_ALL", "C", 1);
    ::setenv("MANWIDTH", "78", 1);
    const int status = gw::run_shell("/bin/man --warnings=w -l %s > %s 2> %s",
                                     {PAGE, dir.file("page"), dir.file("complaints")});
    ::unsetenv("LC_ALL");
    ::unsetenv("MANWIDTH");
    return {status, dir.read("page"), dir.read("complaints")};
}

/// The string literals of a source that a user may see: sentences, options and names of variables.
std::vector<std::string> texts_of(const std::string& source) {
    std::vector<std::string> texts;
    std::istringstream in(source);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("#include")) continue;
        for (std::size_t at = line.find('"'); at != std::string::npos; at = line.find('"', at + 1)) {
            const std::size_t start = ++at;
            while (at < line.size() && line[at] != '"') at += line[at] == '\\' ? 2U : 1U;
            texts.push_back(line.substr(start, at - start));
        }
    }
    return texts;
}

TEST(SessionManualTest, IsInstalledAsItIs) {
    const std::string installed =
        TempDir::read_bytes(std::string(gw::MANUAL_DIR) + "/man1/glyphward-session.1");
    ASSERT_FALSE(installed.empty());
    EXPECT_EQ(installed, TempDir::read_bytes(PAGE));
}

TEST(SessionManualTest, GivesTheFormatterNothingToWarnAbout) {
    const Rendered manual = render();
    EXPECT_EQ(manual.status, 0);
    EXPECT_EQ(manual.complaints, "");
    EXPECT_NE(without_space(manual.text).find("DESCRIPTIONAnXserverstarts"), std::string::npos);
    std::istringstream page(TempDir::read_bytes(PAGE));
    for (std::string line; std::getline(page, line);) EXPECT_LE(line.size(), 80U) << line;
}

// A text with a blank in its middle counts as a message or a reason.
TEST(SessionManualTest, NamesEveryMessageAndOption) {
    const std::string page = without_space(render().text);
    std::size_t messages = 0;
    std::size_t options = 0;
    for (const char* source : SOURCES) {
        for (std::string text : texts_of(TempDir::read_bytes(std::string(GLYPHWARD_TREE "/") + source))) {
            const bool is_option = text.starts_with("--");
            if (text.starts_with("glyphward-session: ") && text.ends_with("\\n"))
                text.resize(text.size() - 2);
            // The summary of the options, the version and the format strings of messages are not messages.
            const bool is_other = text.starts_with("  ") || text.ends_with("\\n") || text.ends_with("%s") ||
                                  text.starts_with("glyphward-session (");
            if (is_other || (!is_option && text.find(' ') == std::string::npos)) continue;
            ++(is_option ? options : messages);
            EXPECT_NE(page.find(without_space(text)), std::string::npos) << text;
        }
    }
    EXPECT_EQ(options, 4U);
    EXPECT_GE(messages, 15U);
}

}  // namespace
