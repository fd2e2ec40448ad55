// SPDX-License-Identifier: MIT
//
// Programs that do not find their font, in thirteen set-ups: from what they print to their window with the
// right font, and again after the next login.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "end_to_end/broken_setups.h"
#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"
#include "platform/shell_command.h"

#include "end_to_end/doctor_window.h"
#include "end_to_end/install_dialog.h"

namespace {

namespace fs = std::filesystem;

using namespace gw::e2e;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int MOST_CURES = 3;  // that a set-up needs
constexpr const char* WORKS_NOW = "It works now";

/// Names, sizes, times and rights of all files below the directory.
std::map<std::string, std::string> traces_of(const std::string& directory) {
    std::map<std::string, std::string> traces;
    const auto options = fs::directory_options::skip_permission_denied;
    for (const auto& entry : fs::recursive_directory_iterator(directory, options)) {
        const auto status = entry.symlink_status();
        std::string trace = std::to_string(static_cast<unsigned>(status.permissions()));
        if (fs::is_regular_file(status))
            trace += ' ' + std::to_string(entry.file_size()) + ' ' +
                     std::to_string(entry.last_write_time().time_since_epoch().count());
        traces[entry.path()] = trace;
    }
    return traces;
}

class DoctorSetUps : public ProgramTest, public testing::WithParamInterface<BrokenSetUp> {
  protected:
    DoctorSetUps() : path_before_(desktop.font_path()) {}

    void SetUp() override {
        if (is_root() && !GetParam().for_root) GTEST_SKIP() << "the superuser's server reads everything";
        GetParam().make({home, desktop, [this](const std::string& dir) { list_fonts_of(dir); }});
    }

    /// Opens the window and asks what the victim prints. Returns the answer.
    std::string ask(const std::string& message) {
        doctor = std::make_unique<DoctorWindow>(desktop);
        return doctor->ask(message);
    }
    /// Does what stands first among what helps, until it works or nothing more helps.
    std::string cured() {
        std::string verdict;
        for (int done = 0; done < MOST_CURES && verdict.find(WORKS_NOW) == std::string::npos; ++done)
            verdict = doctor->cure();
        return verdict;
    }
    /// Does what stands first, which opens the install window, and installs the first font there.
    void install() {
        doctor->press_do();
        const InstallDialog dialog(desktop);
        ASSERT_TRUE(dialog.is_there());
        dialog.click_line(0);
        desktop.click_middle(dialog.install_button);
        EXPECT_TRUE(wait_until([&] { return desktop.has_font(GetParam().right); }));
        (void)hint_comes_and_goes();
    }
    /// The server has its path of before, and then what a login makes of it.
    void log_in_again() const {
        desktop.set_font_path(path_before_);
        const std::string home_dir = home.path().substr(0, home.path().size() - 1);
        ASSERT_EQ(gw::run_shell("HOME=%s /usr/vantor/bin/glyphward-session >/dev/null 2>&1", {home_dir}), 0);
    }
    void picture(const char* when) const {
        desktop.picture(std::string("doctor-") + GetParam().name + '-' + when);
    }

    std::unique_ptr<DoctorWindow> doctor;

  private:
    std::vector<std::string> path_before_;
};

TEST_P(DoctorSetUps, KeepTheFontFromTheProgram) {
    const BrokenSetUp& set_up = GetParam();
    const std::string complaint = complaint_of(set_up.victim, set_up.asked, desktop);
    if (set_up.complains) {
        EXPECT_THAT(complaint, HasSubstr(set_up.asked));
    } else {
        EXPECT_EQ(complaint, "");
        EXPECT_GT(DrawnText(set_up.right, "a").ink(), 0);
        EXPECT_FALSE(DrawnText(set_up.asked, "a") == DrawnText(set_up.right, "a"));
    }
}

TEST_P(DoctorSetUps, AreOnlyLookedAtWhenTheDoctorIsAsked) {
    if (is_as_ever()) GTEST_SKIP() << "no such window";
    const BrokenSetUp& set_up = GetParam();
    const std::string complaint = complaint_of(set_up.victim, set_up.asked, desktop);
    start();
    ASSERT_NE(open_by_menu("t", "w", DoctorWindow::TITLE), 0U);
    const std::vector<std::string> server = desktop.font_path();
    const auto files = traces_of(home.path());
    const std::string answer = ask(complaint.empty() ? set_up.asked : complaint);
    EXPECT_THAT(answer, Not(IsEmpty()));
    EXPECT_THAT(answer, Not(HasSubstr(WORKS_NOW)));
    picture("asked");
    const std::string report = doctor->report();
    EXPECT_THAT(report, HasSubstr(set_up.asked));
    if (set_up.mending == Mending::PACKAGE) {
        EXPECT_THAT(report, HasSubstr("apt install xfonts-mona"));
    }
    EXPECT_EQ(traces_of(home.path()), files);
    EXPECT_EQ(desktop.font_path(), server);
}

TEST_P(DoctorSetUps, AreMendedForThisSessionAndTheNext) {
    if (is_as_ever()) GTEST_SKIP() << "no such window";
    const BrokenSetUp& set_up = GetParam();
    if (set_up.mending == Mending::PACKAGE) GTEST_SKIP() << "only the administrator mends it";
    const std::string complaint = complaint_of(set_up.victim, set_up.asked, desktop);
    start();
    ASSERT_NE(open_by_menu("t", "w", DoctorWindow::TITLE), 0U);
    (void)ask(complaint.empty() ? set_up.asked : complaint);
    if (set_up.mending == Mending::INSTALL) {
        install();
    } else {
        EXPECT_THAT(cured(), HasSubstr(WORKS_NOW));
    }
    picture("cured");
    EXPECT_TRUE(shows_text(set_up.victim, set_up.asked, set_up.right, desktop));
    desktop.click_middle(doctor->close_button);
    EXPECT_EQ(leave(), 0);
    desktop.attend_to_nothing();
    // The superuser's fonts are on the path when he has put the directory there, as a window has told him.
    if (is_root() && set_up.mending == Mending::INSTALL) return;
    log_in_again();
    EXPECT_TRUE(shows_text(set_up.victim, set_up.asked, set_up.right, desktop)) << "after the next login";
}

INSTANTIATE_TEST_SUITE_P(, DoctorSetUps, testing::ValuesIn(broken_setups()),
                         [](const auto& set_up) { return std::string(set_up.param.name); });

}  // namespace
