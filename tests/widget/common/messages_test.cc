// SPDX-License-Identifier: MIT
//
// The dialogs that show a message or a question: progress, working, about, warning, font-path information,
// and the question before fonts are deleted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/common/progressdlg.h"
#include "app/common/warningdlg.h"
#include "app/common/workingdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/aboutdlg.h"
#include "widget/dialogs_test_support.h"

#include <Xm/MessageB.h>
#include <Xm/Scale.h>

namespace {

using namespace gw::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// The parts of a message box that may be absent.
constexpr unsigned char BUTTONS[] = {XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON};

unsigned char type_of(Widget message_box) {
    unsigned char type = XmDIALOG_TEMPLATE;
    XtVaGetValues(message_box, XmNdialogType, &type, nullptr);
    return type;
}

bool appears(Widget dialog) {
    return pump_until([=] { return is_viewable(dialog); });
}

bool is_there(Widget dialog, unsigned char part) {
    Widget w = part_of(dialog, part);
    return w != nullptr && XtIsManaged(w);
}

// --- progress ----------------------------------------------------------------

class Progress : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        start_at_home();
        scale = find(wi_progress_dlg, "progress_scale");
        label = find(wi_progress_dlg, "action_label");
        first_title = title_of(wi_progress_dlg);
        first_label = label != nullptr ? gw::label_of(label) : "";
    }
    void SetUp() override {
        ASSERT_NE(scale, nullptr);
        ASSERT_NE(label, nullptr);
    }
    void TearDown() override {
        stop_progress_dlg();
        pump();
    }
    static int value() {
        int value = -1;
        XmScaleGetValue(scale, &value);
        return value;
    }
    /// Imitates a user who drags the scale's slider.
    static void drag_to(int position) {
        XmScaleSetValue(scale, position);
        XmScaleCallbackStruct call = {};
        call.reason = XmCR_VALUE_CHANGED;
        call.value = position;
        XtCallCallbacks(scale, XmNvalueChangedCallback, &call);
        pump();
    }
    inline static Widget scale = nullptr;
    inline static Widget label = nullptr;
    inline static std::string first_title;
    inline static std::string first_label;
};

TEST_F(Progress, IsMadeWithItsTextsAndAScaleThatShowsItsValue) {
    EXPECT_EQ(first_title, "Glyph Warden - Work in Progress");
    EXPECT_EQ(first_label, "Installing Fonts");
    unsigned char orientation = XmVERTICAL;
    unsigned char show_value = XmNONE;
    XtVaGetValues(scale, XmNorientation, &orientation, XmNshowValue, &show_value, nullptr);
    EXPECT_EQ(orientation, XmHORIZONTAL);
    EXPECT_NE(show_value, XmNONE);
}

TEST_F(Progress, IsOnTheScreenWhenStartReturns) {
    start_progress_dlg(0, 5, "Font Installation Progress Dialog", "Fonts Installed");
    EXPECT_TRUE(is_viewable(wi_progress_dlg));
    EXPECT_EQ(title_of(wi_progress_dlg), "Font Installation Progress Dialog");
    EXPECT_EQ(gw::label_of(label), "Fonts Installed");
    int minimum = -1;
    int maximum = -1;
    XtVaGetValues(scale, XmNminimum, &minimum, XmNmaximum, &maximum, nullptr);
    EXPECT_EQ(minimum, 0);
    EXPECT_EQ(maximum, 5);
    EXPECT_EQ(value(), 0);
    stop_progress_dlg();
    EXPECT_FALSE(XtIsManaged(wi_progress_dlg));
}

TEST_F(Progress, HasTheSizeOfItsResourcesEachTime) {
    for (const char* text : {"Fonts Installed", "", "Fonts Deleted"}) {
        start_progress_dlg(0, 5, text, text);
        Dimension width = 0;
        Dimension height = 0;
        XtVaGetValues(wi_progress_dlg, XmNwidth, &width, XmNheight, &height, nullptr);
        EXPECT_EQ(width, gw::test::in_pixels(47, XmHORIZONTAL)) << text;
        EXPECT_EQ(height, gw::test::in_pixels(16, XmVERTICAL)) << text;
        stop_progress_dlg();
        pump();
    }
}

TEST_F(Progress, DoesNotAppearWhenThereIsLessThanNothingToDo) {
    start_progress_dlg(0, 5, "before", "before");
    stop_progress_dlg();
    start_progress_dlg(1, 0, "after", "after");
    pump();
    EXPECT_FALSE(XtIsManaged(wi_progress_dlg));
    EXPECT_EQ(title_of(wi_progress_dlg), "before");
    EXPECT_EQ(gw::label_of(label), "before");
}

TEST_F(Progress, AppearsWhenThereIsNothingToDo) {
    start_progress_dlg(0, 0, "t", "l");
    EXPECT_TRUE(is_viewable(wi_progress_dlg));
    EXPECT_EQ(value(), 0);
}

TEST_F(Progress, StartsWhereItIsTold) {
    start_progress_dlg(3, 3, "t", "l");
    EXPECT_TRUE(is_viewable(wi_progress_dlg));
    EXPECT_EQ(value(), 3);
}

TEST_F(Progress, FollowsTheCountAndStartsAnew) {
    start_progress_dlg(0, 10, "t", "l");
    for (const int count : {1, 2, 8, 10}) {
        update_progress_dlg(count);
        EXPECT_EQ(value(), count);
    }
    stop_progress_dlg();
    // Less to do than what was done before.
    start_progress_dlg(0, 3, "t", "l");
    EXPECT_EQ(value(), 0);
    int maximum = -1;
    XtVaGetValues(scale, XmNmaximum, &maximum, nullptr);
    EXPECT_EQ(maximum, 3);
    // The work may stop before its end.
    update_progress_dlg(1);
    EXPECT_EQ(value(), 1);
}

TEST_F(Progress, TheUserCannotMoveIt) {
    start_progress_dlg(0, 10, "t", "l");
    drag_to(7);
    EXPECT_EQ(value(), 0);
    update_progress_dlg(4);
    drag_to(10);
    EXPECT_EQ(value(), 4);
    drag_to(0);
    EXPECT_EQ(value(), 4);
    drag_to(4);
    EXPECT_EQ(value(), 4);
}

TEST_F(Progress, NorWithTheKeyboard) {
    start_progress_dlg(0, 10, "t", "l");
    update_progress_dlg(4);
    Widget bar = find(scale, "Scrollbar");
    ASSERT_NE(bar, nullptr);
    for (const char* key : {"Right", "Left", "End", "Home"}) {
        press_key(bar, key);
        EXPECT_EQ(value(), 4);
    }
}

TEST_F(Progress, StaysUntilTheWorkIsDone) {
    start_progress_dlg(0, 10, "t", "l");
    close_box(wi_progress_dlg);
    EXPECT_TRUE(is_viewable(wi_progress_dlg));
    press_key(wi_progress_dlg, "Escape");
    EXPECT_TRUE(is_viewable(wi_progress_dlg));
}

// --- working -----------------------------------------------------------------

class Working : public testing::Test {
  protected:
    void SetUp() override { start_at_home(); }
    void TearDown() override {
        stop_working_dlg();
        pump();
    }
};

TEST_F(Working, ShowsASymbolAndAMessageAlone) {
    EXPECT_EQ(title_of(wi_working_dlg), "Glyph Warden - Work in Progress");
    EXPECT_EQ(type_of(wi_working_dlg), XmDIALOG_WORKING);
    start_working_dlg("Reading fonts");
    EXPECT_TRUE(is_viewable(wi_working_dlg)) << "when start returns";
    EXPECT_EQ(message_of(wi_working_dlg), "Reading fonts");
    for (const unsigned char part : BUTTONS) EXPECT_FALSE(is_there(wi_working_dlg, part)) << int{part};
    EXPECT_FALSE(is_there(wi_working_dlg, XmDIALOG_SEPARATOR));
    EXPECT_TRUE(is_there(wi_working_dlg, XmDIALOG_SYMBOL_LABEL));
    EXPECT_TRUE(is_there(wi_working_dlg, XmDIALOG_MESSAGE_LABEL));
}

TEST_F(Working, ChangesItsMessageAndGoes) {
    start_working_dlg("one\ntwo");
    EXPECT_EQ(message_of(wi_working_dlg), "one\ntwo");
    update_working_dlg("three");
    EXPECT_EQ(message_of(wi_working_dlg), "three");
    EXPECT_TRUE(is_viewable(wi_working_dlg));
    stop_working_dlg();
    EXPECT_FALSE(XtIsManaged(wi_working_dlg));
    update_working_dlg("four");
    EXPECT_FALSE(XtIsManaged(wi_working_dlg)) << "another message does not bring it back";
}

TEST_F(Working, NoTextIsAnEmptyText) {
    start_working_dlg("something");
    update_working_dlg(nullptr);
    EXPECT_EQ(message_of(wi_working_dlg), "");
    stop_working_dlg();
    update_working_dlg("something");
    start_working_dlg(nullptr);
    EXPECT_TRUE(is_viewable(wi_working_dlg));
    EXPECT_EQ(message_of(wi_working_dlg), "");
}

TEST_F(Working, CannotBeClosedByTheUser) {
    start_working_dlg("Reading fonts");
    close_box(wi_working_dlg);
    EXPECT_TRUE(is_viewable(wi_working_dlg));
    for (const char* key : {"Escape", "Return"}) {
        press_key(wi_working_dlg, key);
        EXPECT_TRUE(is_viewable(wi_working_dlg));
    }
}

// --- about, warning, font-path information: a text and one button ------------

void show_warning() {
    start_warning_dlg("Glyph Warden - Warning", "Cannot update font path, permission denied");
}

struct Notice {
    const char* name;
    Widget* dialog;
    void (*show)();
};

class OneButton : public testing::TestWithParam<Notice> {
  protected:
    void SetUp() override {
        start_at_home();
        GetParam().show();
        ASSERT_TRUE(appears(dialog()));
    }
    void TearDown() override {
        XtUnmanageChild(dialog());
        pump();
    }
    static Widget dialog() { return *GetParam().dialog; }
};

TEST_P(OneButton, HasOkAndNoOther) {
    EXPECT_TRUE(is_there(dialog(), XmDIALOG_OK_BUTTON));
    EXPECT_FALSE(is_there(dialog(), XmDIALOG_CANCEL_BUTTON));
    EXPECT_FALSE(is_there(dialog(), XmDIALOG_HELP_BUTTON));
}

TEST_P(OneButton, OkClosesItAndItCanBeShownAgain) {
    ASSERT_TRUE(press(part_of(dialog(), XmDIALOG_OK_BUTTON)));
    EXPECT_FALSE(XtIsManaged(dialog()));
    EXPECT_FALSE(is_viewable(dialog()));
    GetParam().show();
    EXPECT_TRUE(appears(dialog()));
}

TEST_P(OneButton, EscapeReturnAndTheCloseBoxCloseIt) {
    for (const char* key : {"Escape", "Return"}) {
        GetParam().show();
        ASSERT_TRUE(appears(dialog()));
        press_key(dialog(), key);
        EXPECT_FALSE(XtIsManaged(dialog())) << key;
    }
    GetParam().show();
    ASSERT_TRUE(appears(dialog()));
    close_box(dialog());
    EXPECT_FALSE(XtIsManaged(dialog()));
    EXPECT_FALSE(is_viewable(dialog()));
    GetParam().show();
    EXPECT_TRUE(appears(dialog())) << "after the close box";
}

TEST_P(OneButton, ShownTwiceIsShownOnce) {
    GetParam().show();
    ASSERT_TRUE(appears(dialog()));
    ASSERT_TRUE(press(part_of(dialog(), XmDIALOG_OK_BUTTON)));
    EXPECT_FALSE(is_viewable(dialog()));
}

INSTANTIATE_TEST_SUITE_P(Dialogs, OneButton,
                         testing::Values(Notice{"About", &wi_about_dlg, start_about_dlg},
                                         Notice{"Warning", &wi_warning_dlg, show_warning},
                                         Notice{"FontPathInformation", &wi_fp_info_dlg, start_fp_info_dlg}),
                         [](const auto& notice) { return notice.param.name; });

TEST(About, SaysWhatTheProgramIs) {
    start_at_home();
    EXPECT_EQ(title_of(wi_about_dlg), "About Glyph Warden");
    EXPECT_EQ(type_of(wi_about_dlg), XmDIALOG_INFORMATION);
    const std::string start = "Glyph Warden Version " GLYPHWARD_VERSION
                              "\n\nPlease read license agreement of a font before\n\n"
                              "installing it using Glyph Warden.\n\n\n";
    EXPECT_THAT(message_of(wi_about_dlg), StartsWith(start));
    EXPECT_GT(message_of(wi_about_dlg).size(), start.size()) << "the disclaimer";
}

TEST(About, IsOpenedByItsMenuEntry) {
    start_at_home();
    ASSERT_TRUE(press(find(wi_toplevel, "_about_dlg_button")));
    EXPECT_TRUE(appears(wi_about_dlg));
    XtUnmanageChild(wi_about_dlg);
}

TEST(Warning, ShowsTheTitleAndTheMessageOfTheCaller) {
    start_at_home();
    EXPECT_EQ(type_of(wi_warning_dlg), XmDIALOG_WARNING);
    EXPECT_EQ(gw::label_of(part_of(wi_warning_dlg, XmDIALOG_OK_BUTTON)), "Ok");
    const struct {
        const char* title;
        const char* message;
    } cases[] = {{"Glyph Warden - Warning", "Cannot update font path, permission denied"},
                 {"Another", "several\n\nlines\n"},
                 {"%s %n", "%s %n $(touch x) `y`"},
                 {"", ""}};
    for (const auto& c : cases) {
        start_warning_dlg(c.title, c.message);
        EXPECT_TRUE(appears(wi_warning_dlg));
        EXPECT_EQ(title_of(wi_warning_dlg), c.title);
        EXPECT_EQ(message_of(wi_warning_dlg), c.message);
    }
    XtUnmanageChild(wi_warning_dlg);
}

TEST(FontPathInformation, SaysWhatToDoNextAndCanBeTakenAway) {
    start_at_home();
    EXPECT_EQ(title_of(wi_fp_info_dlg), "Glyph Warden - Information");
    EXPECT_EQ(type_of(wi_fp_info_dlg), XmDIALOG_INFORMATION);
    EXPECT_EQ(message_of(wi_fp_info_dlg),
              "Now update font path of the Vantor\ninstallation(s) using Modify Font Path menu\n"
              "item from the main window.");
    start_fp_info_dlg();
    ASSERT_TRUE(appears(wi_fp_info_dlg));
    stop_fp_info_dlg();
    EXPECT_FALSE(XtIsManaged(wi_fp_info_dlg));
    stop_fp_info_dlg();
    EXPECT_FALSE(XtIsManaged(wi_fp_info_dlg));
}

// --- the question before a deletion ------------------------------------------

class DeletionQuestion : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        answers.clear();
    }
    void TearDown() override {
        start_del_warning_dlg(nullptr);
        XtUnmanageChild(wi_del_warning_dlg);
        pump();
    }
    static void note(char confirmed) { answers.push_back(confirmed); }
    static void note_elsewhere(char confirmed) { answers.push_back(confirmed + 10); }
    static void ask_again(char confirmed) {
        note(confirmed);
        start_del_warning_dlg(note_elsewhere);
    }
    static void ask(void (*cb)(char) = note) {
        start_del_warning_dlg(cb);
        ASSERT_TRUE(appears(wi_del_warning_dlg));
    }
    static Widget button(unsigned char part) { return part_of(wi_del_warning_dlg, part); }
    static bool is_open() { return XtIsManaged(wi_del_warning_dlg) != False; }
    inline static std::vector<int> answers;
};

TEST_F(DeletionQuestion, HasItsTextsAndButtons) {
    EXPECT_EQ(title_of(wi_del_warning_dlg), "Glyph Warden - Deletion Confirmation");
    EXPECT_EQ(type_of(wi_del_warning_dlg), XmDIALOG_WARNING);
    EXPECT_EQ(message_of(wi_del_warning_dlg),
              "Choosing Delete will remove these fonts permanently\nfrom your system.\n"
              "Are you sure you want to delete these fonts?\n \nThis action is not undo-able.");
    EXPECT_EQ(gw::label_of(button(XmDIALOG_OK_BUTTON)), "Delete");
    EXPECT_EQ(gw::label_of(button(XmDIALOG_CANCEL_BUTTON)), "Cancel");
    EXPECT_FALSE(is_there(wi_del_warning_dlg, XmDIALOG_HELP_BUTTON));
}

TEST_F(DeletionQuestion, DeleteConfirmsOnce) {
    ask();
    ASSERT_TRUE(press(button(XmDIALOG_OK_BUTTON)));
    EXPECT_THAT(answers, ElementsAre(1));
    EXPECT_FALSE(is_open());
    press(button(XmDIALOG_OK_BUTTON));
    press(button(XmDIALOG_CANCEL_BUTTON));
    EXPECT_THAT(answers, ElementsAre(1)) << "who has been answered is not called again";
}

TEST_F(DeletionQuestion, CancelRefusesOnce) {
    ask();
    ASSERT_TRUE(press(button(XmDIALOG_CANCEL_BUTTON)));
    EXPECT_THAT(answers, ElementsAre(0));
    EXPECT_FALSE(is_open());
    press(button(XmDIALOG_CANCEL_BUTTON));
    EXPECT_THAT(answers, ElementsAre(0));
}

TEST_F(DeletionQuestion, TheCloseBoxRefuses) {
    ask();
    close_box(wi_del_warning_dlg);
    EXPECT_THAT(answers, ElementsAre(0));
    EXPECT_FALSE(is_open());
}

TEST_F(DeletionQuestion, EscapeAndReturnAloneRefuse) {
    for (const char* key : {"Escape", "Return"}) {
        answers.clear();
        ask();
        press_key(wi_del_warning_dlg, key);
        EXPECT_THAT(answers, ElementsAre(0)) << key;
        EXPECT_FALSE(is_open());
    }
}

TEST_F(DeletionQuestion, TheLastToAskGetsTheAnswer) {
    ask();
    ask(note_elsewhere);
    ASSERT_TRUE(press(button(XmDIALOG_OK_BUTTON)));
    EXPECT_THAT(answers, ElementsAre(11));
}

TEST_F(DeletionQuestion, MayBeAskedAgainByWhoIsAnswered) {
    ask(ask_again);
    ASSERT_TRUE(press(button(XmDIALOG_OK_BUTTON)));
    EXPECT_THAT(answers, ElementsAre(1));
    EXPECT_TRUE(is_open());
    ASSERT_TRUE(press(button(XmDIALOG_CANCEL_BUTTON)));
    EXPECT_THAT(answers, ElementsAre(1, 10));
    EXPECT_FALSE(is_open());
}

TEST_F(DeletionQuestion, NobodyNeedAsk) {
    ask(nullptr);
    ASSERT_TRUE(press(button(XmDIALOG_OK_BUTTON)));
    EXPECT_FALSE(is_open());
    EXPECT_THAT(answers, IsEmpty());
}

}  // namespace
