// SPDX-License-Identifier: MIT
//
// Start-up: the notice, and what exists when the window appears. All tests examine one start in this process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/propsdlg.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "app/start/initdlg.h"
#include "app/start/toolkit_warnings.h"
#include "core/font_policy.h"
#include "texts/messages.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <Xm/DialogS.h>
#include <Xm/MessageB.h>

namespace {

/// What can be observed only while the program starts.
struct Start {
    bool notice_viewable = false;
    bool notice_busy = false;
    bool notice_closable = true;
    int x = -1, y = -1, width = 0, height = 0;
    bool lists_were_read = true;
    bool window_existed = true;
    int root_before_the_end = -1;
    Window notice_window = 0;
};

Start observe_start() {
    Start seen;
    gw::test::start_toolkit();
    seen.notice_viewable = gw::test::is_viewable(wi_init_dlg);
    seen.notice_window = XtWindow(wi_init_dlg);
    const auto& changes = gw::test::cursor_changes();
    seen.notice_busy = !changes.empty() && changes.back().window == seen.notice_window &&
                       changes.back().cursor == watch_cursor && watch_cursor != 0;
    gw::test::close_box(wi_init_dlg);
    seen.notice_closable = !gw::test::is_viewable(wi_init_dlg);

    Widget shell = XtParent(wi_init_dlg);
    XWindowAttributes attributes;
    Window ignored = 0;
    XGetWindowAttributes(display, XtWindow(shell), &attributes);
    XTranslateCoordinates(display, XtWindow(shell), RootWindowOfScreen(screen), 0, 0, &seen.x, &seen.y,
                          &ignored);
    seen.width = attributes.width;
    seen.height = attributes.height;
    seen.lists_were_read = the_font_path != nullptr || !the_installed_hrn_list.is_empty();
    seen.window_existed = wi_mainwindow != nullptr;
    seen.root_before_the_end = user_is_root;
    gw::test::finish_start();
    return seen;
}

const Start& start() {
    static const Start seen = observe_start();
    return seen;
}

TEST(NoticeTest, IsOnTheScreenWhileTheListsAreRead) {
    EXPECT_TRUE(start().notice_viewable);
    EXPECT_FALSE(start().lists_were_read);
    EXPECT_FALSE(start().window_existed);
}

TEST(NoticeTest, ShowsTheBusyCursorUntilItGoes) {
    EXPECT_TRUE(start().notice_busy);
    std::vector<Cursor> cursors;
    for (const gw::test::CursorChange& change : gw::test::cursor_changes()) {
        if (change.window == start().notice_window) cursors.push_back(change.cursor);
    }
    EXPECT_THAT(cursors, testing::ElementsAre(watch_cursor, 0));
    EXPECT_FALSE(XtIsManaged(wi_init_dlg));
}

TEST(NoticeTest, StandsInTheMiddleOfTheScreen) {
    EXPECT_GT(start().width, 200);
    EXPECT_GT(start().height, 100);
    EXPECT_EQ(start().x, (WidthOfScreen(screen) - start().width) / 2);
    EXPECT_EQ(start().y, (HeightOfScreen(screen) - start().height) / 2);
}

TEST(NoticeTest, IsNotClosedByTheWindowManager) {
    EXPECT_FALSE(start().notice_closable);
}

TEST(NoticeTest, ShowsItsTextAndNothingElse) {
    start();
    EXPECT_EQ(XtName(wi_init_dlg), std::string("init_dlg"));
    EXPECT_EQ(gw::test::title_of(wi_init_dlg), "Glyph Warden - " GLYPHWARD_VERSION);
    EXPECT_EQ(gw::label_of(XmMessageBoxGetChild(wi_init_dlg, XmDIALOG_MESSAGE_LABEL)),
              gw::text_of(gw::Message::NOTICE));
    EXPECT_TRUE(XtIsManaged(XmMessageBoxGetChild(wi_init_dlg, XmDIALOG_MESSAGE_LABEL)));
    for (const unsigned char part : {XmDIALOG_SEPARATOR, XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON,
                                     XmDIALOG_HELP_BUTTON, XmDIALOG_DEFAULT_BUTTON, XmDIALOG_SYMBOL_LABEL}) {
        Widget child = XmMessageBoxGetChild(wi_init_dlg, part);
        EXPECT_TRUE(child == nullptr || !XtIsManaged(child)) << "part " << int{part};
    }
}

TEST(StartupTest, TheModulesAreOfferedFilesInTheirOrder) {
    start();
    // Those of today's formats follow if the installed resource file, which is read here, asks for them.
    ASSERT_EQ(the_fsm_list.get_count(), gw::font_policy().takes_todays_formats() ? 4 : 2);
    EXPECT_EQ(the_fsm_list.get_elem_at_pos(1), &the_t1_fsm);
    EXPECT_EQ(the_fsm_list.get_elem_at_pos(2), &the_pcf_fsm);
}

TEST(StartupTest, TheListsAreFilledAndCounted) {
    start();
    EXPECT_GT(the_installed_hrn_count, 0) << "the staged installation has fonts";
    EXPECT_EQ(the_installed_hrn_count, the_installed_hrn_list.get_count());
    EXPECT_EQ(the_alias_count, the_alias_list.get_count());
    EXPECT_NE(the_font_path, nullptr);
}

TEST(StartupTest, ReadingTheListsAgainReplacesThem) {
    start();
    const int fonts = the_installed_hrn_count;
    const int aliases = the_alias_count;
    fill_program_lists();
    EXPECT_EQ(the_installed_hrn_count, fonts);
    EXPECT_EQ(the_alias_count, aliases);
    EXPECT_EQ(the_installed_hrn_list.get_count(), fonts);
    EXPECT_EQ(the_alias_list.get_count(), aliases);
}

TEST(StartupTest, TheSuperuserIsKnownOnlyAtTheEnd) {
    EXPECT_EQ(start().root_before_the_end, 0);
    EXPECT_EQ(uid, static_cast<int>(::geteuid()));
    EXPECT_EQ(user_is_root, ::geteuid() == 0 ? 1 : 0);
}

TEST(StartupTest, TheDialogsExistAndAreNotShown) {
    start();
    for (const char* name : {"attr_dlg", "props_dlg"}) {
        Widget dialog = gw::test::find(wi_toplevel, name);
        ASSERT_NE(dialog, nullptr) << name;
        EXPECT_FALSE(XtIsManaged(dialog)) << name;
        EXPECT_EQ(XtClass(XtParent(dialog)), xmDialogShellWidgetClass) << name;
        EXPECT_EQ(XtParent(XtParent(dialog)), wi_toplevel) << name;
    }
}

TEST(StartupTest, WhatIsNotSupportedIsNotMade) {
    start();
    // Everybody has these windows when they show the running server.
    const bool for_all = gw::window_policy().shows_live_path();
    EXPECT_EQ(gw::test::find(wi_toplevel, "fontsets_dlg") != nullptr, for_all);
    EXPECT_EQ(gw::test::find(wi_toplevel, "modify_fp_dlg") != nullptr, for_all || ::geteuid() == 0);
}

TEST(StartupTest, TheDisplayIsTheShellsOwn) {
    start();
    EXPECT_EQ(display, XtDisplay(wi_toplevel));
    EXPECT_EQ(screen, XtScreen(wi_toplevel));
    EXPECT_EQ(XtName(wi_toplevel), std::string("glyphward"));
    String name = nullptr;
    String class_name = nullptr;
    XtGetApplicationNameAndClass(display, &name, &class_name);
    EXPECT_STREQ(class_name, "Glyphward");
}

TEST(StartupTest, TheResourcesHaveTheirDefaults) {
    start();
    EXPECT_EQ(Gw_resrc.fontset_support, False);
    EXPECT_EQ(Gw_resrc.printer_support, False);
    EXPECT_EQ(Gw_resrc.codeset_num, 3);
    EXPECT_STREQ(Gw_resrc.locale_sample_text, "");
}

TEST(StartupTest, TheInstallationsResourceFileAsksForTheFontsOfToday) {
    start();
    EXPECT_NE(Gw_modern_resrc.modern_fonts, False);
    EXPECT_TRUE(gw::font_policy().copies_outlines_exactly());
}

TEST(FontNoiseTest, OnlyWhatIsAboutFontsIsKeptFromTheTerminal) {
    EXPECT_TRUE(gw::is_font_noise("Cannot convert string \"-*-x-*\" to type FontStruct"));
    EXPECT_TRUE(gw::is_font_noise("Cannot convert string \"x:\" to type FontSet"));
    EXPECT_TRUE(gw::is_font_noise("Missing charsets in String to FontSet conversion"));
    EXPECT_TRUE(gw::is_font_noise(
        "\n    Name: t\n    Class: XmTextField\n    Character '\\351' not supported in font. "
        "Discarded.\n"));
    EXPECT_FALSE(gw::is_font_noise("Cannot convert string \"blu\" to type Pixel"));
    EXPECT_FALSE(gw::is_font_noise("Circular dependency in Form children."));
}

/// What the toolkit's warning, put together of words, is on standard error.
std::string warning_of(const char* text, std::vector<std::string> words) {
    std::vector<String> parts;
    for (std::string& word : words) parts.push_back(word.data());
    auto count = static_cast<Cardinal>(parts.size());
    testing::internal::CaptureStderr();
    XtAppWarningMsg(app, gw::name_arg("nothing"), gw::name_arg("known"), gw::name_arg("XtToolkitError"),
                    gw::name_arg(text), parts.data(), &count);
    return testing::internal::GetCapturedStderr();
}

// The toolkit does not format a warning for the superuser, and says so in three warnings.
TEST(FontNoiseTest, TheSuperuserIsToldTheSameAsOthers) {
    start();
    EXPECT_EQ(warning_of("Cannot convert string \"%s\" to type %s", {"-no-such-font", "FontStruct"}), "");
    EXPECT_EQ(warning_of("Cannot convert string \"%s\" to type %s", {"blu", "Pixel"}),
              "glyphward: Cannot convert string \"blu\" to type Pixel\n");
    EXPECT_EQ(warning_of("Circular dependency", {}), "glyphward: Circular dependency\n");
}

TEST(UtilityTest, TheBusyCursorLeavesAWidgetAloneThatIsNotManaged) {
    start();
    const std::size_t before = gw::test::cursor_changes().size();
    set_watch_cursor(wi_attr_dlg, 1);
    set_watch_cursor(wi_init_dlg, 0);
    set_watch_cursor(nullptr, 1);
    EXPECT_EQ(gw::test::cursor_changes().size(), before);
    set_watch_cursor(wi_mainwindow, 1);
    set_watch_cursor(wi_mainwindow, 0);
    ASSERT_EQ(gw::test::cursor_changes().size(), before + 2);
    EXPECT_EQ(gw::test::cursor_changes()[before].cursor, watch_cursor);
    EXPECT_EQ(gw::test::cursor_changes()[before + 1].cursor, 0U);
}

TEST(UtilityTest, TheConstraintWidgetIsTheChildThatHoldsAnother) {
    start();
    Widget font_list = XtParent(wi_installed_sample_textfield);
    EXPECT_EQ(get_constraint_widget(wi_installed_sample_textfield, font_list), wi_installed_sample_textfield);
    EXPECT_EQ(get_constraint_widget(wi_hrn_list, font_list), XtParent(wi_hrn_list));
    EXPECT_EQ(get_constraint_widget(wi_hrn_list, wi_toplevel), wi_mainwindow);
    EXPECT_EQ(get_constraint_widget(wi_toplevel, wi_hrn_list), nullptr);
    EXPECT_EQ(get_constraint_widget(nullptr, wi_hrn_list), nullptr);
}

TEST(UtilityTest, ATitleIsSetInTheLocalesEncoding) {
    start();
    set_window_title(wi_props_dlg, "Another title");
    EXPECT_EQ(gw::test::title_of(wi_props_dlg), "Another title");
    set_window_title(wi_props_dlg, gw::text_of(gw::Message::PROPS_TITLE));
    EXPECT_EQ(gw::test::title_of(wi_props_dlg), "Glyph Warden - Set Sample Text");
}

}  // namespace
