// SPDX-License-Identifier: MIT
//
// The windows of today have no dead ends: what looks as if it did something does it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "app/common/help_requests.h"
#include "app/common/warningdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/printer/printerdlg.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "widget/work_test_support.h"

#include <X11/Xutil.h>
#include <Xm/Text.h>

namespace {

using namespace gw::test;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

class DeadEnds : public WorkTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True",
                       "-xrm", "Glyphward*gw_fontset_support: True", "-xrm",
                       "Glyphward*gw_printer_support: True"});
    }
    void TearDown() override {
        XtUnmanageChild(wi_help_dlg);
        stop_fp_info_dlg();
        WorkTest::TearDown();
    }
    static std::string help_text() {
        const gw::XtOwned<char> text(XmTextGetString(wi_text));
        return text ? text.get() : "";
    }
    /// The first line that the help window shows.
    static std::string first_line_of_help() {
        const std::string rest = help_text().substr(static_cast<std::size_t>(XmTextGetTopCharacter(wi_text)));
        return rest.substr(0, rest.find('\n'));
    }
};

// --- leaving -------------------------------------------------------------------

TEST_F(DeadEnds, CancelOfThePrintersFontPathClosesIt) {
    for (const bool by_key : {false, true}) {
        XtManageChild(wi_pr_modify_fp_dlg);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_pr_modify_fp_dlg); }));
        if (by_key) {
            press_key(wi_pr_modify_fp_dlg, "Escape");
        } else {
            ASSERT_TRUE(press(find(wi_pr_modify_fp_dlg, "cancel_button")));
        }
        EXPECT_TRUE(pump_until([] { return !is_managed(wi_pr_modify_fp_dlg); })) << by_key;
    }
}

// --- help ----------------------------------------------------------------------

TEST_F(DeadEnds, EverySectionOfHelpIsInTheManual) {
    start_help_dlg();
    for (int number = 0; number <= static_cast<int>(gw::HelpSection::PRINTER); ++number) {
        const std::string heading = gw::heading_of(static_cast<gw::HelpSection>(number));
        ASSERT_FALSE(heading.empty());
        EXPECT_NE(help_text().find('\n' + heading + '\n'), std::string::npos) << heading;
    }
}

TEST_F(DeadEnds, EveryHelpButtonOpensTheSectionOfItsWindow) {
    struct Case {
        Widget dialog;
        const char* button;
        const char* heading;
    };
    const std::vector<Case> cases = {
        {wi_install_dlg, "_help_button", "INSTALLING FONTS"},
        {wi_rmedia_dlg, "help_dlg_button", "   Other media"},
        {wi_attr_dlg, "help_dlg_button", "FONT ATTRIBUTES"},
        {wi_props_dlg, "help_button", "SAMPLE TEXT"},
        {wi_preconflict_dlg, "help_dlg_button", "   What happened"},
        {wi_modify_fp_dlg, "_help_button", "   The dialog \"Modify Font Path\""},
        {wi_fontsets_dlg, "help_button", "FONTSETS"},
        {wi_new_set_dlg, "help_button", "FONTSETS"},
        {wi_delete_set_dlg, "help_button", "FONTSETS"},
        {wi_sample_text_dlg, "help_button", "FONTSETS"},
        {wi_pr_install_dlg, "help_dlg_button", "FONTS OF A PRINTER"},
        {wi_pr_delete_dlg, "help_dlg_button", "FONTS OF A PRINTER"},
        {wi_pr_modify_fp_dlg, "help_button", "FONTS OF A PRINTER"},
    };
    for (const Case& c : cases) {
        XtUnmanageChild(wi_help_dlg);
        XmTextSetTopCharacter(wi_text, 0);
        Widget button = find(c.dialog, c.button);
        ASSERT_NE(button, nullptr) << XtName(c.dialog);
        EXPECT_TRUE(XtIsSensitive(button)) << XtName(c.dialog);
        XtCallCallbacks(button, XmNactivateCallback, nullptr);
        EXPECT_TRUE(is_managed(wi_help_dlg)) << XtName(c.dialog);
        EXPECT_EQ(first_line_of_help(), c.heading) << XtName(c.dialog);
    }
}

TEST_F(DeadEnds, HelpIsClosedByItsButtonReturnEscapeAndTheCloseBox) {
    const auto closes = [](const char* what, const std::function<void()>& act) {
        start_help_dlg();
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); }));
        XmProcessTraversal(wi_text, XmTRAVERSE_CURRENT);
        act();
        EXPECT_FALSE(is_managed(wi_help_dlg)) << what;
    };
    Widget ok = find(wi_help_dlg, "ok_button");
    closes("the button", [&] { ASSERT_TRUE(press(ok)); });
    closes("Return in the text", [] { press_key(wi_text, "Return"); });
    closes("Enter in the text", [] { press_key(wi_text, "KP_Enter"); });
    closes("Escape in the text", [] { press_key(wi_text, "Escape"); });
    closes("Escape on the button", [&] {
        XmProcessTraversal(ok, XmTRAVERSE_CURRENT);
        press_key(ok, "Escape");
    });
    closes("the close box", [] { close_box(wi_help_dlg); });
}

// --- the list of installed fonts -------------------------------------------------

TEST_F(DeadEnds, WhatWasInstalledIsSelectedAndCanBeSeen) {
    for (char letter = 'a'; letter < 'z'; ++letter)
        installed().add(std::string(1, letter) + ".pcf", face(std::string(3, letter)));
    show_installed();
    FontDirectory source;
    source.add("zz1.pcf", face("zzone"));
    source.add("zz2.pcf", face("zztwo"));
    TempDir destination;
    choose_source(source);
    choose_destination(destination.path());
    install({1, 2});
    std::vector<std::string> selected;
    for (const int position : gw::selected_positions(wi_hrn_list))
        selected.push_back(items(wi_hrn_list)[static_cast<std::size_t>(position - 1)].substr(0, 5));
    EXPECT_THAT(selected, ElementsAre("Zzone", "Zztwo"));
    EXPECT_EQ(main_status(), "2 fonts installed.");
    int top = 0;
    int visible = 0;
    XtVaGetValues(wi_hrn_list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    const int first = gw::selected_position(wi_hrn_list);
    EXPECT_TRUE(top <= first && first < top + visible) << top << ' ' << first;
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_command_form._delete_button"));
}

TEST_F(DeadEnds, WhatWasThereBeforeIsNewWithItsDirectory) {
    if (is_root()) GTEST_SKIP() << "the superuser's font path stays";
    FontDirectory destination;
    destination.add("old.pcf", face("old"));
    FontDirectory source;
    source.add("new.pcf", face("new"));
    choose_source(source);
    choose_destination(destination.path());
    install({1});
    std::vector<std::string> selected;
    for (const int position : gw::selected_positions(wi_hrn_list))
        selected.push_back(items(wi_hrn_list)[static_cast<std::size_t>(position - 1)].substr(0, 10));
    EXPECT_THAT(selected, ElementsAre("New Medium", "Old Medium"));
    EXPECT_EQ(main_status(), "1 font installed.");
}

TEST_F(DeadEnds, OneFontIsCountedAsOne) {
    FontDirectory source;
    source.add("one.pcf", face("theone"));
    TempDir destination;
    choose_source(source);
    choose_destination(destination.path());
    install({1});
    EXPECT_EQ(main_status(), "1 font installed.");
    EXPECT_THAT(gw::selected_positions(wi_hrn_list), testing::SizeIs(1));
}

TEST_F(DeadEnds, WhatASearchHidesIsShownWhenItIsNew) {
    installed().add("aaa.pcf", face("aaa"));
    show_installed();
    type_into(find(wi_mainwindow, "_search_textfield"), "aaa");
    FontDirectory source;
    source.add("one.pcf", face("theone"));
    TempDir destination;
    choose_source(source);
    choose_destination(destination.path());
    install({1});
    EXPECT_EQ(shown_text(find(wi_mainwindow, "_search_textfield")), "");
    EXPECT_THAT(gw::selected_positions(wi_hrn_list), testing::SizeIs(1));
}

TEST_F(DeadEnds, TheLastFontAndEveryAliasHaveTheirAttributes) {
    installed().add("aaa.pcf", face("aaa"));
    installed().add("bbb.pcf", face("bbb"));
    show_installed({"first-alias", "second-alias"});
    const auto attributes_of = [](int position) {
        gw::test::select(wi_hrn_list, {position});
        XtCallCallbacks(find(wi_mainwindow, "_command_form._attributes_button1"), XmNactivateCallback,
                        nullptr);
        return label(wi_attr_dlg, "hrn_name") + '|' + label(wi_attr_dlg, "alias_template.alias_name");
    };
    const std::string last = attributes_of(2);
    EXPECT_THAT(last, HasSubstr("Bbb Medium [Bitmap]"));
    EXPECT_THAT(attributes_of(3), HasSubstr("first-alias [Alias] [Read Only]"));
    EXPECT_THAT(attributes_of(4), HasSubstr("second-alias [Alias] [Read Only]"));
    XtUnmanageChild(wi_attr_dlg);
}

// --- installing ------------------------------------------------------------------

TEST_F(DeadEnds, SelectAllMakesInstallReady) {
    FontDirectory source;
    source.add("one.pcf", face("one"));
    source.add("two.pcf", face("two"));
    choose_source(source);
    ASSERT_FALSE(is_sensitive(wi_install_dlg, "_button_form._install_button"));
    ASSERT_TRUE(press(find(wi_install_dlg, "_button_form._select_all_button")));
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_button_form._install_button"));
    XtUnmanageChild(wi_install_dlg);
}

TEST_F(DeadEnds, NoMarkOfWhatMayBeDeletedIsInASource) {
    FontDirectory source;
    source.add("one.pcf", face("one"));
    ::chmod(source.c_str(), 0555);
    choose_source(source);
    ::chmod(source.c_str(), 0755);
    ASSERT_THAT(items(source_list()), testing::SizeIs(1));
    EXPECT_EQ(items(source_list())[0].find("Read Only"), std::string::npos) << items(source_list())[0];
    XtUnmanageChild(wi_install_dlg);
}

TEST_F(DeadEnds, AMediumIsNotExplainedByAProgramThatIsNotThere) {
    for (const char* medium : {"Floppy", "CD-ROM"}) {
        popup_rmedia_dlg(nullptr);
        ASSERT_TRUE(choose(find(wi_rmedia_dlg, "media_option_menu"), medium));
        press(find(wi_rmedia_dlg, "check_button"));
        ASSERT_TRUE(is_managed(wi_warning_dlg));
        EXPECT_EQ(message_of(wi_warning_dlg).find("vold"), std::string::npos);
        EXPECT_THAT(message_of(wi_warning_dlg), HasSubstr("udisks2"));
        XtUnmanageChild(wi_warning_dlg);
    }
    popdown_rmedia_dlg();
}

// --- the windows themselves --------------------------------------------------------

std::string utf8_property(Widget shell, const char* name) {
    XTextProperty property = {};
    if (XGetTextProperty(display, XtWindow(shell), &property, XInternAtom(display, name, False)) == 0)
        return "";
    std::string value(reinterpret_cast<char*>(property.value), property.nitems);
    EXPECT_EQ(property.encoding, XInternAtom(display, "UTF8_STRING", False)) << name;
    XFree(property.value);
    return value;
}

TEST_F(DeadEnds, TitlesAreThereInUtf8) {
    for (const char* name : {"_NET_WM_NAME", "_NET_WM_ICON_NAME"})
        EXPECT_EQ(utf8_property(wi_toplevel, name), "Glyph Warden");
    start_help_dlg();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); }));
    EXPECT_EQ(utf8_property(XtParent(wi_help_dlg), "_NET_WM_NAME"), "Glyph Warden - Help");
    start_warning_dlg("First", "text");
    EXPECT_EQ(utf8_property(XtParent(wi_warning_dlg), "_NET_WM_NAME"), "First");
    start_warning_dlg("Second", "text");
    EXPECT_EQ(utf8_property(XtParent(wi_warning_dlg), "_NET_WM_NAME"), "Second");
    XtUnmanageChild(wi_warning_dlg);
}

std::array<int, 4> box_of(Widget w) {
    Position x = 0;
    Position y = 0;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
    return {x, y, width, height};
}

/// The boxes of all managed parts of the window, but not of its status line.
std::vector<std::array<int, 4>> boxes_in(Widget w) {
    std::vector<std::array<int, 4>> boxes = {box_of(w)};
    if (!XtIsComposite(w)) return boxes;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        const std::string name = XtName(children[i]);
        if (!XtIsManaged(children[i]) || name == "_status_message" || name == "_message_label") continue;
        for (const auto& box : boxes_in(children[i])) boxes.push_back(box);
    }
    return boxes;
}

TEST_F(DeadEnds, NothingMovesWhenAStatusTextComes) {
    open_install_dialog();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_install_dlg); }));
    struct Case {
        Widget window;
        Widget status;
    };
    for (const Case& c : {Case{wi_mainwindow, find(wi_mainwindow, "_status_message")},
                          Case{wi_install_dlg, find(wi_install_dlg, "_message_label")}}) {
        gw::set_label(c.status, " ");
        pump();
        const auto before = boxes_in(c.window);
        for (const std::string& text :
             {std::string("1 font installed."), std::string(300, 'W'), std::string(" ")}) {
            gw::set_label(c.status, text);
            pump();
            EXPECT_EQ(boxes_in(c.window), before) << XtName(c.window) << ": " << text;
        }
    }
    XtUnmanageChild(wi_install_dlg);
}

}  // namespace
