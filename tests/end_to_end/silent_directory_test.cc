// SPDX-License-Identifier: MIT
//
// The installed programs when a directory of the font path does not answer, as on a network mount whose
// server is gone: looks at it hang in the program, not in the X server.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <map>
#include <optional>
#include <string>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/program_test.h"
#include "platform/shell_command.h"
#include "support/sleeping_files.h"

namespace {

using namespace gw::e2e;
using testing::HasSubstr;
using testing::Not;

/// Looks at the directory hang in a program with this environment.
std::map<std::string, std::optional<std::string>> asleep(const std::string& dir) {
    // A sanitizer wants to be the first library, but this one needs nothing of it.
    const char* options = std::getenv("ASAN_OPTIONS");
    return {{"LD_PRELOAD", SLEEPING_FILES_LIBRARY},
            {gw::test::SLEEPING_DIRECTORY, dir},
            {"ASAN_OPTIONS",
             (options != nullptr ? options + std::string(":") : "") + "verify_asan_link_order=0"}};
}

class SilentDirectory : public ProgramTest {
  protected:
    /// A directory with one font on the program's font path.
    std::string font_dir(const BitmapFont& font) {
        const std::string dir = home.file(font.family) + '/';
        font.write_to(dir);
        index_fonts(dir);
        list_fonts_of(dir);
        return dir;
    }
    [[nodiscard]] Rectangle status_line() const {
        return desktop.place_of(desktop.part_named(main->window, "_status_message"));
    }
    /// What glyphward-session with that option prints, standard error included.
    [[nodiscard]] std::string session(const std::string& option, const std::string& sleeping) const {
        std::string variables = "HOME=" + gw::shell_quoted(home.path().substr(0, home.path().size() - 1));
        for (const auto& [name, value] : asleep(sleeping))
            variables += ' ' + name + '=' + gw::shell_quoted(*value);
        const int status = gw::run_shell(
            "exec > %s 2>&1; exec env " + variables + " /usr/vantor/bin/glyphward-session " + option,
            {output_.file("output")});
        EXPECT_EQ(status, 0);
        return output_.read("output");
    }

  private:
    const gw::test::TempDir output_;
};

TEST_F(SilentDirectory, TheProgramComesUpWithoutItAndSaysSo) {
    const std::string silent = font_dir({"Slumberer"});
    font_dir({"Wakefully"});
    start(asleep(silent));
    EXPECT_EQ(program->errors(),
              "glyphward: " + silent + ": this directory does not answer; its fonts are not listed\n");
    EXPECT_GT(desktop.ink(status_line()), 100);
    desktop.picture("silent-directory");
    EXPECT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }))
        << "the others are listed";
    EXPECT_EQ(leave(), 0);
}

TEST_F(SilentDirectory, WhereAllAnswerNothingIsSaid) {
    font_dir({"Wakefully"});
    start(asleep(home.file("nothing")));
    EXPECT_EQ(program->errors(), "");
    EXPECT_EQ(desktop.ink(status_line()), 0);
    EXPECT_EQ(leave(), 0);
}

TEST_F(SilentDirectory, TheSessionLeavesItOut) {
    const std::string silent = font_dir({"Slumberer"});
    const std::string other = font_dir({"Wakefully"});
    EXPECT_THAT(session("--list", silent), HasSubstr(silent + "\t(does not answer)\n" + other + '\n'));
    const std::string plan = session("--dry-run", silent);
    EXPECT_THAT(plan, HasSubstr("glyphward-session: " + silent + ": does not answer\n"));
    EXPECT_THAT(plan, HasSubstr('\n' + other + '\n'));
    EXPECT_THAT(plan, Not(HasSubstr('\n' + silent + '\n')));
    EXPECT_EQ(session("", silent), "glyphward-session: " + silent + ": does not answer\n");
    EXPECT_TRUE(is_on_font_path(other));
    EXPECT_FALSE(is_on_font_path(silent));
}

}  // namespace
