// SPDX-License-Identifier: MIT
//
// The directory chooser, in private directories.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "widget/dialogs_test_support.h"

#include <Xm/FileSB.h>
#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

class Chooser : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        start_at_home();
        first_title = title_of(wi_dir_dlg);
    }
    void SetUp() override {
        chosen.clear();
        chosen_elsewhere.clear();
    }
    void TearDown() override {
        popdown_dir_dlg();
        look_in("/");
        pump();
    }
    static void note(const char* directory) { chosen.emplace_back(directory); }
    static void note_elsewhere(const char* directory) { chosen_elsewhere.emplace_back(directory); }
    static void note_and_ask_again(const char* directory) {
        note(directory);
        popup_dir_dlg(note_elsewhere, "Again");
    }

    /// Makes the chooser list the subdirectories of this directory.
    static void look_in(const std::string& directory) {
        const gw::XmText text = gw::xm_text(directory);
        XtVaSetValues(wi_dir_dlg, XmNdirectory, text.get(), nullptr);
        pump();
    }
    static void show(const char* title = nullptr) {
        popup_dir_dlg(note, title);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_dir_dlg); }));
    }
    /// The list's entries, newlines included.
    static std::vector<std::string> listed() {
        XmStringTable strings = nullptr;
        int count = 0;
        XtVaGetValues(wi_dir_list, XmNitems, &strings, XmNitemCount, &count, nullptr);
        std::vector<std::string> result;
        for (int i = 0; i < count; ++i) result.push_back(gw::text_of(strings[i]));
        return result;
    }
    /// A click on the entry; false when there is none.
    static bool click(const std::string& entry) {
        const std::vector<std::string> entries = listed();
        const auto found = std::find(entries.begin(), entries.end(), entry);
        if (found == entries.end()) return false;
        XmListSelectPos(wi_dir_list, static_cast<int>(found - entries.begin()) + 1, True);
        pump();
        return true;
    }
    /// A double click on it.
    static bool open(const std::string& entry) {
        if (!click(entry)) return false;
        Position x = 0;
        Position y = 0;
        Dimension width = 0;
        Dimension height = 0;
        XmListPosToBounds(wi_dir_list, gw::selected_positions(wi_dir_list)[0], &x, &y, &width, &height);
        XEvent event = {};
        event.xbutton.window = XtWindow(wi_dir_list);
        event.xbutton.root = RootWindowOfScreen(screen);
        event.xbutton.button = Button1;
        event.xbutton.same_screen = True;
        event.xbutton.x = x + 2;
        event.xbutton.y = y + height / 2;
        for (const int type : {ButtonPress, ButtonRelease, ButtonPress, ButtonRelease}) {
            event.type = type;
            event.xbutton.state = type == ButtonRelease ? Button1Mask : 0;
            event.xbutton.time += 10;
            XSendEvent(display, XtWindow(wi_dir_list), False, NoEventMask, &event);
        }
        pump();
        return true;
    }
    static bool press_part(unsigned char part) { return press(part_of(wi_dir_dlg, part)); }
    static bool is_open() { return XtIsManaged(wi_dir_dlg) != False; }
    /// The directory that is handed over when the entry of that name in `dir` is clicked and OK is pressed.
    std::vector<std::string> choose_entry(const std::string& name) const {
        chosen.clear();
        look_in(dir.path());
        show();
        EXPECT_TRUE(click(dir.file(name))) << name;
        EXPECT_TRUE(press_part(XmDIALOG_OK_BUTTON));
        return chosen;
    }

    TempDir dir;
    inline static std::string first_title;
    inline static std::vector<std::string> chosen;
    inline static std::vector<std::string> chosen_elsewhere;
};

TEST_F(Chooser, HasItsTitleAndLabels) {
    EXPECT_EQ(first_title, "Glyph Warden - Directories");
    EXPECT_EQ(wi_dir_list, part_of(wi_dir_dlg, XmDIALOG_DIR_LIST));
    EXPECT_EQ(gw::label_of(part_of(wi_dir_dlg, XmDIALOG_DIR_LIST_LABEL)), "Subdirectories");
    EXPECT_EQ(gw::label_of(part_of(wi_dir_dlg, XmDIALOG_SELECTION_LABEL)), "Selected Directory");
}

TEST_F(Chooser, ShowsDirectoriesAlone) {
    show();
    Widget files = part_of(wi_dir_dlg, XmDIALOG_LIST);
    EXPECT_FALSE(XtIsManaged(files));
    EXPECT_FALSE(XtIsManaged(XtParent(files)));
    EXPECT_FALSE(XtIsManaged(part_of(wi_dir_dlg, XmDIALOG_LIST_LABEL)));
    for (const unsigned char part :
         {XmDIALOG_DIR_LIST, XmDIALOG_DIR_LIST_LABEL, XmDIALOG_SELECTION_LABEL, XmDIALOG_TEXT,
          XmDIALOG_FILTER_TEXT, XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON, XmDIALOG_APPLY_BUTTON}) {
        EXPECT_TRUE(XtIsManaged(part_of(wi_dir_dlg, part))) << int{part};
    }
    dir.make_dir("sub");
    dir.write("file", "text");
    std::filesystem::create_directory_symlink("sub", dir.file("link"));
    look_in(dir.path());
    EXPECT_THAT(listed(),
                UnorderedElementsAre(dir.file("."), dir.file(".."), dir.file("sub"), dir.file("link")));
    EXPECT_FALSE(XtIsManaged(XtParent(files))) << "after another search";
}

TEST_F(Chooser, TakesTheTitleOfTheCaller) {
    show("Glyph Warden : List Fonts From");
    EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : List Fonts From");
    show(nullptr);
    EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : List Fonts From") << "no title, no change";
    show("Glyph Warden : Install Fonts In");
    EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : Install Fonts In");
}

TEST_F(Chooser, OkHandsOverTheSelectedDirectoryOnce) {
    dir.make_dir("sub");
    EXPECT_THAT(choose_entry("sub"), ElementsAre(dir.file("sub")));
    EXPECT_FALSE(is_open());
    press_part(XmDIALOG_OK_BUTTON);
    EXPECT_THAT(chosen, ElementsAre(dir.file("sub"))) << "who has been told is not told again";
}

TEST_F(Chooser, OkWithoutASelectionCallsNobodyAndCloses) {
    look_in(dir.path());
    show();
    XmListDeselectAllItems(wi_dir_list);
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_FALSE(is_open());
}

TEST_F(Chooser, ADirectoryThatIsOnlyTypedIsNotTaken) {
    look_in(dir.path());
    show();
    XmListDeselectAllItems(wi_dir_list);
    type_into(part_of(wi_dir_dlg, XmDIALOG_TEXT), dir.make_dir("sub"));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_FALSE(is_open());
}

TEST_F(Chooser, CancelEscapeAndTheCloseBoxTellNobody) {
    dir.make_dir("sub");
    look_in(dir.path());
    void (*const ways[])() = {[] { press_part(XmDIALOG_CANCEL_BUTTON); },
                              [] { press_key(wi_dir_dlg, "Escape"); }, [] { close_box(wi_dir_dlg); }};
    for (auto* const way : ways) {
        show();
        ASSERT_TRUE(click(dir.file("sub")));
        way();
        EXPECT_FALSE(is_open());
        EXPECT_FALSE(is_viewable(wi_dir_dlg));
        press_part(XmDIALOG_OK_BUTTON);
        EXPECT_THAT(chosen, IsEmpty()) << "the caller is forgotten";
    }
}

TEST_F(Chooser, TheSecondCallerTakesThePlaceOfTheFirst) {
    dir.make_dir("sub");
    look_in(dir.path());
    show();
    popup_dir_dlg(note_elsewhere, nullptr);
    ASSERT_TRUE(click(dir.file("sub")));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_THAT(chosen_elsewhere, ElementsAre(dir.file("sub")));
}

TEST_F(Chooser, WithoutACallerItOnlyCloses) {
    dir.make_dir("sub");
    look_in(dir.path());
    popup_dir_dlg(nullptr, nullptr);
    ASSERT_TRUE(click(dir.file("sub")));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_FALSE(is_open());
}

TEST_F(Chooser, MayBeShownAgainByWhoIsTold) {
    dir.make_dir("sub");
    look_in(dir.path());
    popup_dir_dlg(note_and_ask_again, nullptr);
    ASSERT_TRUE(click(dir.file("sub")));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, ElementsAre(dir.file("sub")));
    EXPECT_TRUE(is_open());
    ASSERT_TRUE(click(dir.file("sub")));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen_elsewhere, ElementsAre(dir.file("sub")));
}

TEST_F(Chooser, ADoubleClickGoesToTheDirectory) {
    dir.make_dir("sub/inner");
    look_in(dir.path());
    show();
    ASSERT_TRUE(open(dir.file("sub")));
    EXPECT_THAT(listed(), ElementsAre(dir.file("sub/."), dir.file("sub/.."), dir.file("sub/inner")));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, IsEmpty()) << "what was selected on the way does not count";
    show();
    EXPECT_THAT(listed(), Contains(dir.file("sub/inner"))) << "where the user was";
    ASSERT_TRUE(open(dir.file("sub/..")));
    EXPECT_THAT(listed(), ElementsAre(dir.file("."), dir.file(".."), dir.file("sub")));
}

TEST_F(Chooser, SelectingIsNotGoingThere) {
    dir.make_dir("sub/inner");
    look_in(dir.path());
    for (const unsigned char button : {XmDIALOG_CANCEL_BUTTON, XmDIALOG_OK_BUTTON}) {
        show();
        ASSERT_TRUE(click(dir.file("sub"))) << "the list is the one of the last time";
        ASSERT_TRUE(press_part(button));
    }
    EXPECT_THAT(chosen, ElementsAre(dir.file("sub")));
}

TEST_F(Chooser, ListsHiddenDirectoriesAndNamesInOrder) {
    for (const char* name : {"b", ".fonts", "a", "C"}) dir.make_dir(name);
    look_in(dir.path());
    EXPECT_THAT(listed(), ElementsAre(dir.file("."), dir.file(".."), dir.file(".fonts"), dir.file("C"),
                                      dir.file("a"), dir.file("b")));
}

TEST_F(Chooser, ADirectoryThatCannotBeReadHasNoneToOffer) {
    if (::geteuid() == 0) GTEST_SKIP() << "for an ordinary user";
    dir.make_dir("closed/inner");
    ::chmod(dir.file("closed").c_str(), 0);
    look_in(dir.path());
    show();
    ASSERT_TRUE(open(dir.file("closed")));
    EXPECT_THAT(listed(), Not(Contains(dir.file("closed/inner"))));
    EXPECT_TRUE(is_open());
}

TEST_F(Chooser, TheDirectoryItselfAndTheOneAboveHaveTheirOwnNames) {
    dir.make_dir("sub");
    EXPECT_THAT(choose_entry("."), ElementsAre(dir.path()));
    const std::string above = std::filesystem::path(dir.path()).parent_path().parent_path();
    EXPECT_THAT(choose_entry(".."), ElementsAre(above));
    look_in("/");
    show();
    chosen.clear();
    ASSERT_TRUE(click("/."));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, ElementsAre("/"));
    show();
    chosen.clear();
    ASSERT_TRUE(click("/.."));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, ElementsAre("/"));
}

TEST_F(Chooser, NamesArriveUnharmed) {
    for (const char* name : {"with blank", "'single'", "\"double\"", "$(touch owned)", "`touch owned`",
                             "back\\slash", "semi;colon", "st*r", "[x]", "-rf", "%s%n", "caf\xc3\xa9",
                             "\xe6\x97\xa5\xe6\x9c\xac", "...", "ends in blank ", "dots..", "tab\there"}) {
        dir.make_dir(name);
        EXPECT_THAT(choose_entry(name), ElementsAre(dir.file(name)));
    }
    EXPECT_FALSE(dir.exists("owned"));
}

TEST_F(Chooser, ANameWithANewlineArrivesUnharmed) {
    dir.make_dir("new\nline");
    EXPECT_THAT(choose_entry("new\nline"), ElementsAre(dir.file("new\nline")));
}

TEST_F(Chooser, BytesThatAreNoTextArriveUnharmed) {
    dir.make_dir("bad\xff\xfe");
    EXPECT_THAT(choose_entry("bad\xff\xfe"), ElementsAre(dir.file("bad\xff\xfe")));
}

TEST_F(Chooser, ALongPathArrivesUnharmed) {
    std::string name = "d";
    while (name.size() < 900) name += "/" + std::string(100, 'd');
    dir.make_dir(name);
    look_in(std::filesystem::path(dir.file(name)).parent_path().string() + '/');
    show();
    ASSERT_TRUE(click(dir.file(name)));
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, ElementsAre(dir.file(name)));
    Dimension width = 0;
    XtVaGetValues(wi_dir_dlg, XmNwidth, &width, nullptr);
    EXPECT_LE(int{width}, 1024);
}

TEST_F(Chooser, ADirectoryMadeMeanwhileIsListedTheNextTime) {
    look_in(dir.path());
    show();
    press_part(XmDIALOG_CANCEL_BUTTON);
    dir.make_dir("new");
    EXPECT_THAT(listed(), Not(Contains(dir.file("new"))));
    show();
    EXPECT_THAT(listed(), Contains(dir.file("new")));
    press_part(XmDIALOG_CANCEL_BUTTON);
    ::rmdir(dir.file("new").c_str());
    show();
    EXPECT_THAT(listed(), Not(Contains(dir.file("new"))));
}

TEST_F(Chooser, AppearsWhenTheDirectoryItListedIsGone) {
    const std::string gone = dir.make_dir("gone");
    look_in(gone);
    ::rmdir(gone.c_str());
    show();
    EXPECT_TRUE(is_open());
    EXPECT_THAT(listed(), ElementsAre(dir.file("."), dir.file(".."))) << "the one above it";
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, IsEmpty()) << "what was selected is gone with it";
}

TEST_F(Chooser, ADirectoryThatWentAwayWhileItWasSelectedIsHandedOverAsItIs) {
    const std::string sub = dir.make_dir("sub");
    look_in(dir.path());
    show();
    ASSERT_TRUE(click(dir.file("sub")));
    ::rmdir(sub.c_str());
    ASSERT_TRUE(press_part(XmDIALOG_OK_BUTTON));
    EXPECT_THAT(chosen, ElementsAre(dir.file("sub"))) << "the caller says what is wrong with it";
}

}  // namespace
