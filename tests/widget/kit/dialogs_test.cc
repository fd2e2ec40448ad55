// SPDX-License-Identifier: MIT
//
// How dialogs end: their buttons, the keys and the close box.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/looks.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <Xm/Form.h>
#include <Xm/MessageB.h>

namespace {

using gw::Attach;
using gw::Message;
using gw::test::close_box;
using gw::test::press;
using gw::test::press_key;

std::vector<std::string> calls;

void ok_cb(Widget, XtPointer, XtPointer) {
    calls.emplace_back("ok");
}
void cancel_cb(Widget, XtPointer, XtPointer) {
    calls.emplace_back("cancel");
}
void named_cb(Widget, XtPointer name, XtPointer) {
    calls.emplace_back(static_cast<const char*>(name));
}

bool show(Widget dialog) {
    XtManageChild(dialog);
    return gw::test::pump_until([dialog] { return gw::test::is_viewable(dialog); });
}

class KitDialogs : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        calls.clear();
    }
    void TearDown() override {
        for (Widget dialog : made) XtDestroyWidget(XtParent(dialog));
        gw::test::pump();
    }
    /// A dialog with a text field.
    Widget form_dialog() {
        Widget dialog = gw::form_dialog(wi_toplevel, "kit_dlg", Message::PROPS_TITLE);
        made.push_back(dialog);
        field = gw::text_field(dialog, "field");
        Attach(field).top_form(5).sides(5);
        return dialog;
    }
    Widget message_dialog(std::initializer_list<unsigned char> without) {
        Widget dialog =
            gw::message_dialog(wi_toplevel, "kit_box", XmDIALOG_INFORMATION, "Title", "Text", without);
        made.push_back(dialog);
        XtAddCallback(dialog, XmNokCallback, ok_cb, nullptr);
        return dialog;
    }
    Widget field = nullptr;

  private:
    std::vector<Widget> made;
};

template <class T>
T resource(Widget w, const char* name) {
    T value{};
    XtVaGetValues(w, name, &value, nullptr);
    return value;
}

TEST_F(KitDialogs, OneCallWiresTheWholeEnd) {
    Widget dialog = form_dialog();
    const std::vector<Widget> buttons = gw::button_row(
        dialog, field,
        {{"ok_button", Message::PROPS_OK, ok_cb}, {"cancel_button", Message::PROPS_CANCEL, cancel_cb}});
    gw::end_dialog(dialog, {buttons[0], buttons[1], field, cancel_cb});
    EXPECT_EQ(resource<Widget>(dialog, XmNdefaultButton), buttons[0]);
    EXPECT_EQ(resource<Widget>(dialog, XmNcancelButton), buttons[1]);
    EXPECT_EQ(resource<Widget>(dialog, XmNinitialFocus), field);
    ASSERT_TRUE(show(dialog));
    press_key(field, "Return");
    press_key(field, "Escape");
    close_box(dialog);
    EXPECT_EQ(calls, (std::vector<std::string>{"ok", "cancel", "cancel"}));
    EXPECT_TRUE(XtIsManaged(dialog)) << "hiding it is the callback's business";
}

TEST_F(KitDialogs, WithoutACallbackTheCloseBoxHidesIt) {
    Widget dialog = form_dialog();
    gw::end_dialog(dialog, {});
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(show(dialog));
        close_box(dialog);
        EXPECT_FALSE(XtIsManaged(dialog));
    }
}

TEST_F(KitDialogs, TheCloseBoxOfABusyWindowDoesNothing) {
    Widget dialog = form_dialog();
    gw::end_dialog(dialog, {.close = gw::do_nothing_cb});
    ASSERT_TRUE(show(dialog));
    close_box(dialog);
    EXPECT_TRUE(gw::test::is_viewable(dialog));
}

unsigned char type_of(Widget dialog) {
    unsigned char type = 0;
    XtVaGetValues(dialog, XmNdialogType, &type, nullptr);
    return type;
}

// The symbol of a type takes the server two round trips.
TEST_F(KitDialogs, AMessageWithoutASymbolNeedsNoType) {
    const gw::Looks before = gw::looks();
    EXPECT_EQ(type_of(message_dialog({XmDIALOG_SYMBOL_LABEL})), XmDIALOG_INFORMATION);
    gw::Looks sparing = before;
    sparing.spares_requests = true;
    gw::set_looks(sparing);
    EXPECT_EQ(type_of(message_dialog({XmDIALOG_SYMBOL_LABEL})), XmDIALOG_MESSAGE);
    EXPECT_EQ(type_of(message_dialog({XmDIALOG_HELP_BUTTON})), XmDIALOG_INFORMATION);
    gw::set_looks(before);
}

TEST_F(KitDialogs, TheCloseBoxAndEscapePressTheOnlyButtonOfABox) {
    Widget dialog = message_dialog({XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON});
    ASSERT_TRUE(show(dialog));
    close_box(dialog);
    EXPECT_FALSE(XtIsManaged(dialog));
    ASSERT_TRUE(show(dialog));
    press_key(dialog, "Escape");
    EXPECT_FALSE(XtIsManaged(dialog));
    EXPECT_EQ(calls, (std::vector<std::string>{"ok", "ok"}));
}

TEST_F(KitDialogs, NothingClosesABoxWithoutButtons) {
    Widget dialog = message_dialog({XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON});
    ASSERT_TRUE(show(dialog));
    close_box(dialog);
    press_key(dialog, "Escape");
    EXPECT_TRUE(gw::test::is_viewable(dialog));
    EXPECT_TRUE(calls.empty());
}

TEST_F(KitDialogs, ButtonsShareTheRow) {
    Widget dialog = form_dialog();
    Widget row = gw::form(dialog, "row");
    static char help[] = "help";
    const std::vector<Widget> buttons =
        gw::fill_with_buttons(row, {{"ok_button", Message::PROPS_OK, ok_cb},
                                    {"idle_button", Message::PROPS_APPLY, nullptr},
                                    {"help_button", Message::PROPS_HELP, named_cb, help},
                                    {"cancel_button", Message::PROPS_CANCEL, cancel_cb}});
    ASSERT_EQ(buttons.size(), 4U);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(resource<int>(buttons[static_cast<std::size_t>(i)], XmNleftPosition), i * 25 + 2) << i;
        EXPECT_EQ(resource<int>(buttons[static_cast<std::size_t>(i)], XmNrightPosition), i * 25 + 23) << i;
    }
    for (Widget button : buttons) press(button);
    EXPECT_EQ(calls, (std::vector<std::string>{"ok", "help", "cancel"}));
    EXPECT_FALSE(XtIsSensitive(buttons[1])) << "it has no callback";
}

TEST_F(KitDialogs, AButtonMayHaveAPlaceOfItsOwn) {
    Widget dialog = form_dialog();
    const std::vector<Widget> buttons =
        gw::make_buttons(dialog, {{"ok_button", Message::PROPS_OK, ok_cb, nullptr, 4, 30},
                                  {"cancel_button", Message::PROPS_CANCEL, cancel_cb, nullptr, 37, 63}});
    EXPECT_EQ(resource<int>(buttons[0], XmNleftPosition), 4);
    EXPECT_EQ(resource<int>(buttons[0], XmNrightPosition), 30);
    EXPECT_EQ(resource<int>(buttons[1], XmNleftPosition), 37);
    EXPECT_EQ(resource<int>(buttons[1], XmNrightPosition), 63);
}

TEST_F(KitDialogs, ARowAtTheBottomLeavesTheRestToWhatStandsAboveIt) {
    Widget dialog = form_dialog();
    XtVaSetValues(dialog, XmNheight, 300, XmNwidth, 300, nullptr);
    const gw::BottomRow row = gw::bottom_row(
        dialog, {"message", "buttons", "line"},
        {{"ok_button", Message::PROPS_OK, ok_cb}, {"cancel_button", Message::PROPS_CANCEL, cancel_cb}});
    Attach(field).above(row.separator, 0);
    ASSERT_TRUE(show(dialog));
    EXPECT_STREQ(XtName(row.message), "message");
    EXPECT_STREQ(XtName(row.separator), "line");
    EXPECT_STREQ(XtName(XtParent(row.buttons[0])), "buttons");
    const auto top = [](Widget w) { return resource<Position>(w, XmNy); };
    EXPECT_LT(top(field), top(row.separator));
    EXPECT_LT(top(row.separator), top(XtParent(row.buttons[0])));
    EXPECT_LT(top(XtParent(row.buttons[0])), top(row.message));
    EXPECT_GT(top(row.separator), 150) << "the field has taken the height that the dialog has";
}

}  // namespace
