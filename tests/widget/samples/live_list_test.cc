// SPDX-License-Identifier: MIT
//
// The list of installed fonts while other programs change fonts and the server's font path.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/listed_indexes.h"
#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "app/samples/served_marks.h"
#include "core/font_policy.h"
#include "support/own_font_dirs.h"
#include "widget/dialogs_test_support.h"

#include <Xm/List.h>

namespace {

namespace fs = std::filesystem;
using gw::PathHost;
using gw::ServedDirectories;
using gw::test::items;
using gw::test::pump_until;
using gw::test::run;
using gw::test::TempDir;

constexpr const char* MARK = " [Not Served]";
const std::string MISC = "/usr/share/fonts/X11/misc/";

/// A font directory that the program lists and the server has.
const TempDir& listed() {
    static const TempDir dir;
    return dir;
}

int row_with(const std::string& beginning) {
    const std::vector<std::string> rows = items(wi_hrn_list);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].starts_with(beginning)) return static_cast<int>(i) + 1;
    }
    return 0;
}
bool has_row(const std::string& beginning) {
    return row_with(beginning) != 0;
}
std::string selected_row() {
    const std::vector<int> positions = gw::selected_positions(wi_hrn_list);
    return positions.size() == 1 ? items(wi_hrn_list)[static_cast<std::size_t>(positions.front()) - 1] : "";
}
int top_position() {
    int top = 0;
    XtVaGetValues(wi_hrn_list, XmNtopItemPosition, &top, nullptr);
    return top;
}
std::string top_row() {
    return items(wi_hrn_list)[static_cast<std::size_t>(top_position()) - 1];
}

/// Adds a line to the index as another program would: a font of that family in a file that is there.
void write_index(const std::vector<std::string>& families) {
    std::string index = std::to_string(families.size()) + '\n';
    for (const std::string& family : families)
        index += "6x13.pcf.gz -other-" + family + "-medium-r-normal--13-120-75-75-c-60-iso8859-1\n";
    listed().write(".fonts.dir.new", index);
    fs::rename(listed().file(".fonts.dir.new"), listed().file("fonts.dir"));
}

class LiveList : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        static const gw::test::OwnFontPath own(gw::test::home().path());
        ::chmod(listed().c_str(), 0755);
        fs::copy(MISC + "6x13-ISO8859-1.pcf.gz", listed().file("6x13.pcf.gz"));
        write_index({"first"});
        own.write({listed().path()});
        ASSERT_TRUE(run("xset fp+ " + listed().path()));
        gw::test::start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
        ASSERT_TRUE(pump_until([] { return gw::test::is_viewable(wi_toplevel); }));
    }
    void SetUp() override {
        write_index({"first"});
        ASSERT_TRUE(pump_until([] { return gw::are_indexes_as_listed() && has_row("First "); }))
            << gw::are_indexes_as_listed() << testing::PrintToString(items(wi_hrn_list));
        ASSERT_TRUE(pump_until([] { return !has_row("Second "); }));
        forget_selection();
    }
};

TEST_F(LiveList, AFontThatAnotherProgramInstallsIsListed) {
    write_index({"first", "second"});
    EXPECT_TRUE(pump_until([] { return has_row("Second "); }));
    write_index({"second"});
    EXPECT_TRUE(pump_until([] { return !has_row("First "); }));
    write_index({"first"});
    EXPECT_TRUE(pump_until([] { return has_row("First ") && !has_row("Second "); }));
}

TEST_F(LiveList, TheSelectionIsThatOfTheFontsNotOfThePositions) {
    const int row = row_with("First ");
    gw::test::select(wi_hrn_list, {row});
    const std::string selected = selected_row();
    write_index({"aaaa", "first"});
    ASSERT_TRUE(pump_until([] { return has_row("Aaaa "); }));
    EXPECT_EQ(selected_row(), selected);
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), std::vector<int>{row + 1});
    EXPECT_TRUE(XtIsSensitive(gw::test::find(wi_toplevel, "_command_form._attributes_button1")));
}

TEST_F(LiveList, SeveralSelectedFontsStaySelected) {
    write_index({"bbbb", "cccc", "first"});
    ASSERT_TRUE(pump_until([] { return has_row("Bbbb "); }));
    gw::test::select(wi_hrn_list, {row_with("Bbbb "), row_with("Cccc "), row_with("First ")});
    write_index({"aaaa", "bbbb", "first"});
    ASSERT_TRUE(pump_until([] { return has_row("Aaaa ") && !has_row("Cccc "); }));
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), (std::vector<int>{row_with("Bbbb "), row_with("First ")}));
    write_index({"bbbb"});
    ASSERT_TRUE(pump_until([] { return !has_row("First "); }));
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), std::vector<int>{row_with("Bbbb ")});
    write_index({"first"});
    ASSERT_TRUE(pump_until([] { return has_row("First ") && !has_row("Bbbb "); }));
    EXPECT_EQ(gw::selected_count(wi_hrn_list), 0);
    EXPECT_FALSE(XtIsSensitive(gw::test::find(wi_toplevel, "_command_form._attributes_button1")));
}

TEST_F(LiveList, TheListIsNotScrolled) {
    const int other = row_with("First ");
    ASSERT_GT(other, 3);
    XmListSetPos(wi_hrn_list, other - 2);
    const std::string top = top_row();
    ASSERT_NE(top_position(), 1) << "the list is long enough";
    write_index({"aaaa", "first"});
    ASSERT_TRUE(pump_until([] { return has_row("Aaaa "); }));
    EXPECT_EQ(top_row(), top);
    XmListSetPos(wi_hrn_list, 1);
}

TEST_F(LiveList, NothingIsListedWhileFontsAreInstalled) {
    the_wp_cl_data.positions = {1};
    write_index({"first", "second"});
    const GWHRNElement* before = the_installed_hrn_list.get_elem_at_pos(1);
    EXPECT_FALSE(pump_until([] { return has_row("Second "); }, 2500));
    EXPECT_EQ(the_installed_hrn_list.get_elem_at_pos(1), before);
    the_wp_cl_data = {};
    EXPECT_TRUE(pump_until([] { return has_row("Second "); }));
}

TEST_F(LiveList, WhatTheProgramItselfHasDoneIsNotListedAgain) {
    write_index({"first", "second"});
    EXPECT_FALSE(gw::are_indexes_as_listed());
    permit_other_work();  // as at the end of an installation
    EXPECT_TRUE(gw::are_indexes_as_listed());
}

TEST_F(LiveList, FontsThatTheServerDoesNotHaveAreMarked) {
    const auto row = [] { return items(wi_hrn_list)[static_cast<std::size_t>(row_with("First ")) - 1]; };
    EXPECT_FALSE(row().ends_with(MARK)) << row();
    gw::test::select(wi_hrn_list, {row_with("First ")});
    ASSERT_TRUE(run("xset fp- " + listed().path()));
    EXPECT_TRUE(pump_until([&] { return row().ends_with(MARK); })) << row();
    EXPECT_EQ(selected_row(), row());
    const std::vector<std::string> rows = items(wi_hrn_list);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(), [](const std::string& r) { return r.ends_with(MARK); }),
              1);
    ASSERT_TRUE(run("xset fp+ " + listed().path()));
    EXPECT_TRUE(pump_until([&] { return !row().ends_with(MARK); })) << row();
}

// --- which directories a server has --------------------------------------------

TEST(ServedDirectoriesTest, AreTheSameByEveryName) {
    const TempDir dir;
    const std::string fonts = dir.make_dir("fonts");
    fs::create_symlink("fonts", dir.file("link"));
    ServedDirectories served({fonts + ":unscaled", "built-ins"}, PathHost::THIS);
    EXPECT_TRUE(served.has(fonts));
    EXPECT_TRUE(served.has(dir.file("link")));
    EXPECT_FALSE(served.has(dir.path()));
    for (int twice = 0; twice < 2; ++twice) EXPECT_FALSE(served.has(dir.path()));
    for (int twice = 0; twice < 2; ++twice) EXPECT_TRUE(served.has(fonts));
}

TEST(ServedDirectoriesTest, ACatalogueLeadsToOthers) {
    const TempDir dir;
    const std::string fonts = dir.make_dir("fonts");
    dir.make_dir("catalogue");
    fs::create_symlink(fonts, dir.file("catalogue/fonts:unscaled:pri=10"));
    fs::create_symlink("nowhere", dir.file("catalogue/dangling"));
    ServedDirectories served({"catalogue:" + dir.file("catalogue")}, PathHost::THIS);
    EXPECT_TRUE(served.has(fonts));
    EXPECT_FALSE(served.has(dir.path()));
}

TEST(ServedDirectoriesTest, AFontServerMayHaveEverything) {
    ServedDirectories served({"tcp/fonts.example:7100"}, PathHost::THIS);
    EXPECT_TRUE(served.has("/fonts/"));
}

TEST(ServedDirectoriesTest, OfAnotherHostAreComparedByName) {
    ServedDirectories served({"/fonts/a/"}, PathHost::ANOTHER);
    EXPECT_TRUE(served.has("/fonts/a"));
    EXPECT_FALSE(served.has("/fonts/b"));
}

}  // namespace
