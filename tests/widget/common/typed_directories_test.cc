// SPDX-License-Identifier: MIT
//
// The directory chooser with the windows of today: a directory that is typed is taken.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/warningdlg.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "support/temp_dir.h"
#include "widget/dialogs_test_support.h"

#include <Xm/FileSB.h>
#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string>& taken() {
    static std::vector<std::string> directories;
    return directories;
}

class TypedDirectories : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    void SetUp() override { taken().clear(); }
    void TearDown() override {
        XtUnmanageChild(wi_warning_dlg);
        popdown_dir_dlg();
        pump();
    }
    static void note(const char* directory) { taken().emplace_back(directory); }
    static void show_in(const std::string& directory, MissingDirectory missing = MissingDirectory::REFUSED) {
        const gw::XmText text = gw::xm_text(directory);
        XtVaSetValues(wi_dir_dlg, XmNdirectory, text.get(), nullptr);
        popup_dir_dlg(note, nullptr, missing);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_dir_dlg); }));
    }
    static Widget field() { return part_of(wi_dir_dlg, XmDIALOG_TEXT); }
    static bool press_ok() { return press(part_of(wi_dir_dlg, XmDIALOG_OK_BUTTON)); }
    /// Types the directory and presses the key.
    static void enter(const std::string& directory) {
        type_into(field(), directory);
        press_key(field(), "Return");
    }
    static bool is_open() { return XtIsManaged(wi_dir_dlg) != False; }
    TempDir dir_;
};

TEST_F(TypedDirectories, AreTakenWithReturnAndWithTheButton) {
    show_in("/");
    enter(dir_.path());
    EXPECT_THAT(taken(), ElementsAre(dir_.path()));
    EXPECT_FALSE(is_open());
    show_in("/");
    type_into(field(), dir_.path());
    ASSERT_TRUE(press_ok());
    EXPECT_THAT(taken(), ElementsAre(dir_.path(), dir_.path()));
}

TEST_F(TypedDirectories, MayBeRelativeOrBelowTheHomeDirectory) {
    std::filesystem::create_directories(dir_.file("below/deeper"));
    show_in(dir_.path());
    enter("below//deeper");
    EXPECT_THAT(taken(), ElementsAre(dir_.file("below/deeper")));
    std::filesystem::create_directories(home().file("fonts"));
    show_in(dir_.path());
    enter("~/fonts");
    EXPECT_EQ(taken().back(), home().file("fonts"));
}

TEST_F(TypedDirectories, TheShownOneIsTakenWhenNothingIsSelected) {
    show_in(dir_.path());
    ASSERT_TRUE(press_ok());
    EXPECT_THAT(taken(), ElementsAre(dir_.path()));
}

TEST_F(TypedDirectories, ASelectionAfterwardsCounts) {
    std::filesystem::create_directory(dir_.file("selected"));
    show_in(dir_.path());
    type_into(field(), "/");
    XmListSelectPos(wi_dir_list, 3, True);
    ASSERT_TRUE(press_ok());
    EXPECT_THAT(taken(), ElementsAre(dir_.file("selected")));
}

TEST_F(TypedDirectories, OneThatIsNotThereIsToldAndTheChooserStays) {
    show_in("/");
    enter(dir_.file("missing"));
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_TRUE(is_open());
    EXPECT_EQ(message_of(wi_warning_dlg), "There is no such directory: " + dir_.file("missing"));
    XtUnmanageChild(wi_warning_dlg);
    // Neither is a file.
    enter(dir_.write("file", "no directory"));
    EXPECT_TRUE(is_open());
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(TypedDirectories, OneThatCanBeMadeIsTakenWhereTheCallerWantsIt) {
    show_in("/", MissingDirectory::TAKEN);
    enter(dir_.file("missing"));
    EXPECT_THAT(taken(), ElementsAre(dir_.file("missing")));
}

TEST_F(TypedDirectories, HardNamesAreNoHarm) {
    show_in("/");
    for (const std::string& hard : {std::string(10000, 'x'), std::string("a\nb"), std::string("../[*?")}) {
        enter(hard);
        EXPECT_TRUE(is_open());
        XtUnmanageChild(wi_warning_dlg);
    }
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(TypedDirectories, TheRootHasNoSlashTooMany) {
    show_in("//");
    XmStringTable items = nullptr;
    int count = 0;
    XtVaGetValues(wi_dir_list, XmNitems, &items, XmNitemCount, &count, nullptr);
    std::vector<std::string> rows;
    for (int i = 0; i < count; ++i) rows.push_back(gw::text_of(items[i]));
    EXPECT_THAT(rows, Contains("/bin"));
    for (const std::string& row : rows) EXPECT_FALSE(row.starts_with("//")) << row;
    EXPECT_EQ(shown_text(field()), "/");
}

}  // namespace
