// SPDX-License-Identifier: MIT
//
// The start when a directory of the font path does not answer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "app/common/status_line.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/samples/installed_list.h"
#include "fontpath/gw_font_path.h"
#include "platform/host_paths.h"
#include "support/sleeping_files.h"
#include "widget/widget_test_support.h"

namespace {

using gw::test::SleepingDirectory;
using testing::IsEmpty;

/// The first directory of the installation's font path.
std::string first_directory() {
    GWFontPath path(gw::INSTALLATION_ROOT);
    unsigned count = 0;
    for (const GW_STRING* element : *path.get_fpe_list(GWFontPath::INSTALLATION_FP, count)) {
        if (element->get_str()[0] == '/') return element->get_str();
    }
    return "";
}

std::string status() {
    return gw::label_of(wi_main_window_status_label);
}

TEST(SilentStart, ItsFontsAreMissingAndTheStatusLineSaysSoUntilItAnswers) {
    const std::string dir = first_directory();
    ASSERT_NE(dir, "");
    const std::string line = dir + ": this directory does not answer; its fonts are not listed";
    std::optional<SleepingDirectory> asleep(std::in_place, dir);
    testing::internal::CaptureStderr();
    gw::test::start_program();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "glyphward: " + line + '\n');
    EXPECT_THAT(asleep->looked_at(), IsEmpty());
    EXPECT_EQ(status(), line);
    const int without = the_installed_hrn_count;
    EXPECT_GT(without, 0);

    asleep.reset();
    fill_program_lists();
    update_wi_installed_hrn_list();
    EXPECT_GT(the_installed_hrn_count, without);
    EXPECT_EQ(status(), " ");
    update_label(wi_main_window_status_label, "3 fonts installed", nullptr);
    fill_program_lists();
    update_wi_installed_hrn_list();
    EXPECT_EQ(status(), "3 fonts installed");
}

}  // namespace
