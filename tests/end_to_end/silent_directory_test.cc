// SPDX-License-Identifier: MIT
//
// The installed programs when a directory of the font path does not answer, as on a network mount whose
// server is gone: looks at it hang in the program, not in the X server.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/doctor_window.h"
#include "end_to_end/program_test.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"
#include "support/sleeping_files.h"

namespace {

using namespace gw::e2e;
using testing::HasSubstr;
using testing::Not;

/// Looks at the directory hang in a program with this environment.
std::map<std::string, std::optional<std::string>> asleep(const std::string& dir) {
    return {{"LD_PRELOAD", SLEEPING_FILES_LIBRARY}, {gw::test::SLEEPING_DIRECTORY, dir}};
}

class SilentDirectory : public ProgramTest {
  protected:
    /// A directory with one font.
    [[nodiscard]] std::string other_dir(const BitmapFont& font) const {
        const std::string dir = home.file(font.family) + '/';
        font.write_to(dir);
        index_fonts(dir);
        return dir;
    }
    /// The same, on the program's font path.
    std::string font_dir(const BitmapFont& font) {
        const std::string dir = other_dir(font);
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
    EXPECT_TRUE(wait_until([&] { return desktop.ink(status_line()) > 100; }));
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

/// The server has it, and the configuration does not.
TEST_F(SilentDirectory, TheServersOwnMayBeSilent) {
    if (is_as_ever()) GTEST_SKIP() << "nothing is marked";
    const std::string silent = other_dir({"Slumberer"});
    ASSERT_EQ(gw::run_shell("exec xset fp+ %s", {silent}), 0);
    start(asleep(silent));
    EXPECT_EQ(program->errors(), "");
    EXPECT_EQ(leave(), 0);
}

TEST_F(SilentDirectory, TheDefaultDestinationMayBeSilent) {
    const bool is_root = ::geteuid() == 0;
    const std::string silent =
        is_root ? std::string(gw::HOST_DIR) + gw::DEFAULT_INSTALL_DIR + '/' : home.make_dir("glyphwd_fonts");
    if (is_root) std::filesystem::create_directories(silent);
    start(asleep(silent));
    EXPECT_EQ(leave(), 0);
}

TEST_F(SilentDirectory, TheTroubleOfAFileThereIsThatItIsSilent) {
    if (is_as_ever()) GTEST_SKIP() << "there is no such window";
    const std::string silent = other_dir({"Slumberer"});
    start(asleep(silent));
    ASSERT_NE(open_by_menu("t", "w", DoctorWindow::TITLE), 0U);
    const DoctorWindow doctor(desktop);
    ASSERT_TRUE(doctor.is_there());
    for (const std::string& asked : {silent, silent + "slumberer.pcf"})
        EXPECT_THAT(doctor.ask(asked), HasSubstr("does not answer")) << asked;
    EXPECT_TRUE(leave_window(DoctorWindow::TITLE, Leaving::ESCAPE, nullptr));
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
