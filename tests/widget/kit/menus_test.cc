// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/menus.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Shell.h>
#include <Xm/RowColumn.h>
#include <Xm/Separator.h>

namespace {

using gw::Message;
using Texts = std::vector<std::string>;

std::vector<std::string> calls;
Widget help_entry = nullptr;

void exit_cb(Widget entry, XtPointer, XtPointer) {
    calls.emplace_back(XtName(entry));
}

const gw::MenuEntry ENTRIES[] = {
    {"help_button", Message::HELP_ENTRY, exit_cb, &help_entry},
    {"line"},
    {"exit_button", Message::EXIT_ENTRY, exit_cb},
};

Widget opened = nullptr;

void close_all() {
    calls.emplace_back("close_all");
}

const gw::MenuEntry CALLING_ENTRIES[] = {
    {"close_button", Message::EXIT_ENTRY, gw::call_cb<close_all>},
    {"open_button", Message::HELP_ENTRY, gw::show_cb<opened>},
};

class Menus : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        shell = XtCreatePopupShell("menus", topLevelShellWidgetClass, wi_toplevel, nullptr, 0);
        form = gw::form(shell, "form");
        calls.clear();
    }
    void TearDown() override { XtDestroyWidget(shell); }
    Widget shell = nullptr;
    Widget form = nullptr;
};

Texts names_of(Widget pulldown) {
    Texts names;
    for (Widget entry : gw::entries_of(pulldown)) names.emplace_back(XtName(entry));
    return names;
}

TEST_F(Menus, AMenuHasTheEntriesOfItsTableInOrder) {
    Widget bar = XmCreateMenuBar(form, const_cast<char*>("bar"), nullptr, 0);
    const gw::Menu menu = gw::pulldown_menu(bar, {"_pulldown", "_cascade"}, Message::HELP_MENU, ENTRIES);
    EXPECT_STREQ(XtName(menu.pulldown), "_pulldown");
    EXPECT_STREQ(XtName(menu.cascade), "_cascade");
    EXPECT_EQ(XtParent(menu.cascade), bar);
    EXPECT_EQ(gw::label_of(menu.cascade), gw::text_of(Message::HELP_MENU));
    Widget submenu = nullptr;
    XtVaGetValues(menu.cascade, XmNsubMenuId, &submenu, nullptr);
    EXPECT_EQ(submenu, menu.pulldown);

    const std::vector<Widget> entries = gw::entries_of(menu.pulldown);
    ASSERT_EQ(names_of(menu.pulldown), (Texts{"help_button", "line", "exit_button"}));
    EXPECT_EQ(gw::label_of(entries[0]), gw::text_of(Message::HELP_ENTRY));
    EXPECT_TRUE(XmIsSeparator(entries[1]));
    EXPECT_EQ(gw::label_of(entries[2]), gw::text_of(Message::EXIT_ENTRY));
    EXPECT_EQ(help_entry, entries[0]) << "who needs an entry later has it";
    gw::test::press(entries[2]);
    gw::test::press(entries[0]);
    EXPECT_EQ(calls, (Texts{"exit_button", "help_button"}));
}

TEST_F(Menus, AnEntryCallsAFunctionOrShowsADialog) {
    Widget bar = XmCreateMenuBar(form, const_cast<char*>("bar"), nullptr, 0);
    const gw::Menu menu =
        gw::pulldown_menu(bar, {"_pulldown", "_cascade"}, Message::HELP_MENU, CALLING_ENTRIES);
    opened = gw::form_dialog(wi_toplevel, "opened_dlg", Message::HELP_TITLE);
    const std::vector<Widget> entries = gw::entries_of(menu.pulldown);
    gw::test::press(entries[0]);
    EXPECT_EQ(calls, Texts{"close_all"});
    EXPECT_FALSE(XtIsManaged(opened));
    gw::test::press(entries[1]);
    EXPECT_TRUE(XtIsManaged(opened));
    XtDestroyWidget(XtParent(opened));
}

TEST_F(Menus, AnOptionMenuHasTheEntriesOfItsTableAndALabel) {
    const gw::OptionMenu menu =
        gw::option_menu(form, "option_menu", "option_pulldown", Message::CHECK_FONTS_FROM,
                        std::vector<gw::MenuEntry>{ENTRIES[0], ENTRIES[2]});
    EXPECT_STREQ(XtName(menu.menu), "option_menu");
    EXPECT_STREQ(XtName(menu.pulldown), "option_pulldown");
    EXPECT_EQ(gw::label_of(menu.menu), gw::text_of(Message::CHECK_FONTS_FROM));
    EXPECT_EQ(names_of(menu.pulldown), (Texts{"help_button", "exit_button"}));
    EXPECT_TRUE(gw::test::choose(menu.menu, gw::text_of(Message::EXIT_ENTRY)));
    EXPECT_EQ(gw::chosen_entry(menu.menu), gw::text_of(Message::EXIT_ENTRY));
    EXPECT_EQ(calls, Texts{"exit_button"});
}

TEST_F(Menus, AnOptionMenuToBeFilledShowsItsOneEntry) {
    const gw::OptionMenu menu = gw::option_menu(form, "size_menu", "size_pulldown", "8");
    EXPECT_EQ(gw::chosen_entry(menu.menu), "8");
    EXPECT_EQ(gw::test::choices(menu.pulldown), Texts{"8"});
    EXPECT_EQ(gw::label_of(menu.menu), "");
}

TEST_F(Menus, AnEntryThatIsTakenAwayIsNoneOfThem) {
    const gw::OptionMenu menu = gw::option_menu(form, "size_menu", "size_pulldown", "8");
    gw::menu_button(menu.pulldown, "ten", "10");
    const gw::BusyWindows busy;  // so that it is still there
    gw::take_entry_away(gw::entries_of(menu.pulldown).front());
    EXPECT_EQ(names_of(menu.pulldown), Texts{"ten"});
}

}  // namespace
