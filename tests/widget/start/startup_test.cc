// SPDX-License-Identifier: MIT
//
// Start-up: the environment, the notice, what exists when the window appears, and how the program ends. Most
// tests examine one start in this process. Tests that need another start, or the end of the program, run in a
// process of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/messages.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "app/start/initdlg.h"
#include "app/start/main_start.h"
#include "core/font_policy.h"
#include "support/temp_dir.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <Xm/DialogS.h>
#include <Xm/FileSB.h>
#include <Xm/MessageB.h>
#include <Xm/TextF.h>

namespace {

using gw::test::start_program;
using testing::AnyOfArray;
using testing::Eq;
using testing::ExitedWithCode;
using testing::StartsWith;

// --- the environment ---------------------------------------------------------

class SetEnvTest : public testing::Test {
  protected:
    SetEnvTest() : path_(std::getenv("PATH")) {}
    ~SetEnvTest() override {
        ::setenv("PATH", path_.c_str(), 1);
        ::unsetenv("NLSPATH");
        ::unsetenv("XFILESEARCHPATH");
    }

  private:
    std::string path_;
};

TEST_F(SetEnvTest, CommandsOfTheInstallationAreFoundLast) {
    ::setenv("PATH", "/usr/bin:/bin", 1);
    set_env();
    EXPECT_STREQ(std::getenv("PATH"), "/usr/bin:/bin:/usr/vantor/bin");
    ::setenv("PATH", "/usr/vantor/bin:/usr/bin:/bin", 1);
    set_env();
    EXPECT_STREQ(std::getenv("PATH"), "/usr/vantor/bin:/usr/bin:/bin") << "the user has it elsewhere";
}

TEST_F(SetEnvTest, GivesTheSearchPathsTheirDefaults) {
    ::unsetenv("NLSPATH");
    ::unsetenv("XFILESEARCHPATH");
    set_env();
    EXPECT_STREQ(std::getenv("NLSPATH"),
                 "/usr/dt/lib/nls/msg/%L/%N.cat:/usr/dt/lib/nls/msg/%L/%N:"
                 "/usr/vantor/lib/locale/%L/LC_MESSAGES/%N.cat:/usr/vantor/lib/locale/%L/LC_MESSAGES/%N");
    EXPECT_STREQ(std::getenv("XFILESEARCHPATH"),
                 "/usr/dt/app-defaults/%L/%N:/usr/dt/lib/app-defaults/%N:"
                 "/usr/vantor/lib/locale/%L/%T/%N%S:/usr/vantor/lib/%T/%N%S");
}

TEST_F(SetEnvTest, LeavesWhatTheUserHasSet) {
    ::setenv("NLSPATH", "/my/%N", 1);
    ::setenv("XFILESEARCHPATH", "", 1);
    set_env();
    EXPECT_STREQ(std::getenv("NLSPATH"), "/my/%N");
    EXPECT_STREQ(std::getenv("XFILESEARCHPATH"), "") << "set to nothing is set";
}

TEST_F(SetEnvTest, EachOfThemAlone) {
    ::setenv("NLSPATH", "/my/%N", 1);
    ::unsetenv("XFILESEARCHPATH");
    set_env();
    EXPECT_STREQ(std::getenv("NLSPATH"), "/my/%N");
    EXPECT_THAT(std::getenv("XFILESEARCHPATH"), StartsWith("/usr/dt/app-defaults/"));
}

// --- one start ---------------------------------------------------------------

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
    ASSERT_EQ(the_fsm_list.get_count(), 2);
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
    EXPECT_EQ(gw::test::find(wi_toplevel, "fontsets_dlg"), nullptr);
    if (::geteuid() != 0) {
        EXPECT_EQ(gw::test::find(wi_toplevel, "modify_fp_dlg"), nullptr);
    }
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

// --- other starts, and ends --------------------------------------------------

class OwnProcessTest : public testing::Test {
  protected:
    OwnProcessTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};
using OwnProcessDeathTest = OwnProcessTest;

[[noreturn]] void say_resources_and_exit() {
    std::fprintf(stderr, "fontsets %d, printers %d, codeset %d, text \"%s\"\n", Gw_resrc.fontset_support,
                 Gw_resrc.printer_support, Gw_resrc.codeset_num, Gw_resrc.locale_sample_text);
    exit_btn_cb(nullptr, nullptr, nullptr);
    std::abort();
}

TEST_F(OwnProcessDeathTest, TheToolkitsOptionsSetTheResources) {
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*gw_printer_support: True", "-xrm",
                           "glyphward*Gw_Fontset_Support: on", "-xrm", "*gw_codeset_num: 7", "-xrm",
                           "*gw_locale_sample_text: Quick fox"});
            say_resources_and_exit();
        },
        ExitedWithCode(0), Eq("fontsets 1, printers 1, codeset 7, text \"Quick fox\"\n"));
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*gw_fontset_support: True"});
            say_resources_and_exit();
        },
        ExitedWithCode(0), Eq("fontsets 1, printers 0, codeset 3, text \"\"\n"));
}

[[noreturn]] void say_policy_and_exit() {
    std::fprintf(stderr, "modern %d, outlines %d\n", Gw_modern_resrc.modern_fonts != False,
                 gw::font_policy().copies_outlines_exactly());
    std::_Exit(0);
}

TEST_F(OwnProcessDeathTest, TheFontsOfTodayAreOffWithoutTheResourceAndByIt) {
    EXPECT_EXIT(
        {
            ::setenv("XFILESEARCHPATH", "/nowhere/%N", 1);
            start_program();
            say_policy_and_exit();
        },
        ExitedWithCode(0), Eq("modern 0, outlines 0\n"));
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*gw_modern_fonts: False"});
            say_policy_and_exit();
        },
        ExitedWithCode(0), Eq("modern 0, outlines 0\n"));
    EXPECT_EXIT(
        {
            ::setenv("XFILESEARCHPATH", "/nowhere/%N", 1);
            start_program({"-xrm", "*Gw_Modern_Fonts: on"});
            say_policy_and_exit();
        },
        ExitedWithCode(0), Eq("modern 1, outlines 1\n"));
}

TEST_F(OwnProcessDeathTest, AResourceFileOfTheUsersTakesThePlaceOfTheBuiltInList) {
    const gw::test::TempDir dir;
    const std::string path = dir.write("Glyphward", "Glyphward*gw_codeset_num: 12\n");
    EXPECT_EXIT(
        {
            ::setenv("XFILESEARCHPATH", path.c_str(), 1);
            start_program();
            say_resources_and_exit();
        },
        ExitedWithCode(0), Eq("fontsets 0, printers 0, codeset 12, text \"\"\n"));
}

TEST_F(OwnProcessDeathTest, WithoutAResourceFileTheBuiltInListHolds) {
    EXPECT_EXIT(
        {
            ::setenv("XFILESEARCHPATH", "/nowhere/%N", 1);
            start_program();
            KeySym mnemonic = NoSymbol;
            XtVaGetValues(gw::test::find(wi_toplevel, "_exit_button"), XmNmnemonic, &mnemonic, nullptr);
            Dimension height = 0;
            XtVaGetValues(wi_installed_sample_textfield, XmNheight, &height, nullptr);
            std::fprintf(stderr, "%c %d\n", static_cast<int>(mnemonic), height);
            exit_btn_cb(nullptr, nullptr, nullptr);
        },
        ExitedWithCode(0), Eq("E 60\n"));
}

/// The name of the first font of a widget.
std::string font_of(Widget w) {
    XmRenderTable table = nullptr;
    XtVaGetValues(w, XmNrenderTable, &table, nullptr);
    XmStringTag* tags = nullptr;
    const int count = XmRenderTableGetTags(table, &tags);
    if (count == 0) return "none";
    XmRendition rendition = XmRenderTableGetRendition(table, tags[0]);
    String name = nullptr;
    Arg args[1];
    XtSetArg(args[0], XmNfontName, &name);
    XmRenditionRetrieve(rendition, args, 1);
    const std::string copy = name;
    XmRenditionFree(rendition);
    const gw::XtOwned<XmStringTag> owned(tags);
    for (int i = 0; i < count; ++i) const gw::XtOwned<char> tag(tags[i]);
    return copy;
}

// Each locale may cause its own warnings about fonts and encodings; none of them may reach the terminal.
TEST_F(OwnProcessDeathTest, StartsQuietlyInEveryLocale) {
    for (const char* locale : {"C", "C.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8", "de_DE", "ja_JP.eucjp"}) {
        EXPECT_EXIT(
            {
                ::setenv("LANG", locale, 1);
                ::unsetenv("LC_ALL");
                start_program();
                for (int position = 1; position <= 30 && position <= the_installed_hrn_count; ++position)
                    gw::test::select(wi_hrn_list, {position});
                std::fprintf(stderr, "%s\n", gw::test::title_of(wi_toplevel).c_str());
                exit_btn_cb(nullptr, nullptr, nullptr);
            },
            ExitedWithCode(0), Eq("Glyph Warden\n"))
            << locale;
    }
}

// Scalable fonts are opened while the shell is made, when the toolkit's warnings cannot be suppressed yet.
// And no widget can be made with a render table that has no font.
TEST_F(OwnProcessDeathTest, WithoutScalableFontsItQuietlyTakesTheServersFont) {
    const gw::test::TempDir dir;
    dir.write("fonts.conf", "<fontconfig><dir>" + dir.path() + "none</dir></fontconfig>");
    for (const char* locale : {"C", "de_DE.UTF-8"}) {
        EXPECT_EXIT(
            {
                ::setenv("LANG", locale, 1);
                ::unsetenv("LC_ALL");
                ::setenv("FONTCONFIG_FILE", dir.file("fonts.conf").c_str(), 1);
                start_program();
                start_help_dlg();
                Widget title = gw::test::find(wi_toplevel, "_fontlist_label");
                std::fprintf(stderr, "%s, %s, %d, %d\n", font_of(title).c_str(), font_of(wi_text).c_str(),
                             gw::test::in_pixels(1, XmHORIZONTAL), gw::test::in_pixels(1, XmVERTICAL));
                exit_btn_cb(nullptr, nullptr, nullptr);
            },
            ExitedWithCode(0), Eq("fixed, fixed, 7, 7\n"))
            << locale;
    }
}

// 10 points are 13 pixels at 96 dots per inch, and a digit is a little more than half as wide as that.
TEST_F(OwnProcessDeathTest, TheInterfaceFollowsTheDesktopsResolution) {
    const std::vector<std::vector<std::string>> readings = {
        {"Sans, 92 units of 8\n", "Sans, 92 units of 9\n"},
        {"Sans, 92 units of 16\n", "Sans, 92 units of 17\n"}};
    for (const std::size_t scale : {1U, 2U}) {
        EXPECT_EXIT(
            {
                start_program({"-xrm", "Xft.dpi: " + std::to_string(96 * scale)});
                Dimension width = 0;
                XtVaGetValues(wi_mainwindow, XmNwidth, &width, nullptr);
                const int columns = width / gw::test::in_pixels(1, XmHORIZONTAL);
                std::fprintf(stderr, "%s, %d units of %d\n",
                             font_of(gw::test::find(wi_toplevel, "_fontlist_label")).c_str(), columns,
                             gw::test::in_pixels(1, XmHORIZONTAL));
                exit_btn_cb(nullptr, nullptr, nullptr);
            },
            ExitedWithCode(0), AnyOfArray(readings[scale - 1]));
    }
}

// The toolkit expects UTF-8 for texts in a scalable font. A text field drops everything after the first wrong
// byte.
TEST_F(OwnProcessDeathTest, TextsStayWholeInEveryEncoding) {
    struct Encoding {
        const char* locale;
        const char* text;
        const char* label_font;
    };
    for (const Encoding& encoding :
         {Encoding{"C", "a\xc3\xa9z", "Sans"}, Encoding{"C.UTF-8", "a\xc3\xa9z", "Sans"},
          Encoding{"de_DE.UTF-8", "a\xc3\xa9z", "Sans"},
          Encoding{"de_DE", "a\xe9z", "-*-fixed-medium-r-normal--14-*"},
          Encoding{"ja_JP.eucjp", "\xb4\xc1", "-*-fixed-medium-r-normal--14-*"}}) {
        EXPECT_EXIT(
            {
                ::setenv("LANG", encoding.locale, 1);
                ::unsetenv("LC_ALL");
                start_program();
                Widget field = gw::test::part_of(wi_dir_dlg, XmDIALOG_TEXT);
                XmTextFieldSetString(field, gw::name_arg(encoding.text));
                std::fprintf(stderr, "%s %s\n",
                             font_of(gw::test::find(wi_toplevel, "_fontlist_label")).c_str(),
                             gw::field_text(field).c_str());
                exit_btn_cb(nullptr, nullptr, nullptr);
            },
            ExitedWithCode(0), Eq(std::string(encoding.label_font) + ' ' + encoding.text + '\n'))
            << encoding.locale;
    }
}

// A resource for one widget takes precedence over the render table that all widgets inherit.
TEST_F(OwnProcessDeathTest, AFontListGoesOverTheInterfacesFont) {
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*_fontlist_label.fontList: 9x15"});
            std::fprintf(stderr, "%s, %s\n", font_of(gw::test::find(wi_toplevel, "_fontlist_label")).c_str(),
                         font_of(gw::test::find(wi_toplevel, "_disk_space_label")).c_str());
            exit_btn_cb(nullptr, nullptr, nullptr);
        },
        ExitedWithCode(0), Eq("9x15, Sans\n"));
}

// A window manager that waits before it maps a window.
void manage_windows_slowly(int ready) {
    Display* connection = XOpenDisplay(nullptr);
    XSelectInput(connection, DefaultRootWindow(connection), SubstructureRedirectMask);
    XSync(connection, False);
    if (::write(ready, "x", 1) != 1) std::_Exit(1);
    for (;;) {
        XEvent event;
        XNextEvent(connection, &event);
        if (event.type == ConfigureRequest) {
            const XConfigureRequestEvent& wish = event.xconfigurerequest;
            XWindowChanges changes = {wish.x,     wish.y,     wish.width, wish.height, wish.border_width,
                                      wish.above, wish.detail};
            XConfigureWindow(connection, wish.window, static_cast<unsigned>(wish.value_mask), &changes);
        } else if (event.type == MapRequest) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            XMapWindow(connection, event.xmaprequest.window);
        }
        XFlush(connection);
    }
}

int pixels_drawn(Widget widget) {
    XWindowAttributes attributes;
    XGetWindowAttributes(display, XtWindow(widget), &attributes);
    XImage* image = XGetImage(display, XtWindow(widget), 0, 0, static_cast<unsigned>(attributes.width),
                              static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    Pixel ink = 0;
    XtVaGetValues(widget, XmNforeground, &ink, nullptr);
    int count = 0;
    for (int y = 0; y < image->height; ++y) {
        for (int x = 0; x < image->width; ++x) count += XGetPixel(image, x, y) == ink;
    }
    XDestroyImage(image);
    return count;
}

TEST_F(OwnProcessDeathTest, TheNoticeIsReadableBeforeTheListsAreReadEvenUnderASlowWindowManager) {
    EXPECT_EXIT(
        {
            int ready[2];
            char byte = 0;
            if (::pipe(ready) != 0) std::abort();
            const pid_t manager = ::fork();
            if (manager == 0) manage_windows_slowly(ready[1]);
            if (::read(ready[0], &byte, 1) != 1) std::abort();
            gw::test::start_toolkit();
            const int drawn = pixels_drawn(wi_init_dlg);
            ::kill(manager, SIGKILL);
            ::waitpid(manager, nullptr, 0);
            std::fprintf(stderr, drawn > 500 ? "readable\n" : "%d pixels\n", drawn);
            std::_Exit(0);
        },
        ExitedWithCode(0), Eq("readable\n"));
}

TEST_F(OwnProcessDeathTest, ExitEndsTheProgramWithStatus0) {
    EXPECT_EXIT(
        {
            start_program();
            gw::test::press(gw::test::find(wi_toplevel, "_exit_button"));
        },
        ExitedWithCode(0), Eq(""));
}

TEST_F(OwnProcessDeathTest, TheCloseBoxOfTheWindowIsExit) {
    EXPECT_EXIT(
        {
            start_program();
            gw::test::close_box(wi_toplevel);
            gw::test::pump_until([] { return false; }, 2000);
        },
        ExitedWithCode(0), Eq(""));
}

TEST_F(OwnProcessDeathTest, ADisplayThatGoesAwayEndsItWithOneLine) {
    EXPECT_EXIT(
        {
            start_program();
            Display* other = XOpenDisplay(nullptr);
            XKillClient(other, XtWindow(wi_toplevel));
            XSync(other, False);
            gw::test::pump_until([] { return false; }, 2000);
        },
        ExitedWithCode(1), Eq("glyphward: the connection to the display is lost\n"));
}

TEST_F(OwnProcessDeathTest, ADisplayThatIsNotThereEndsIt) {
    EXPECT_EXIT(
        {
            ::setenv("DISPLAY", ":987", 1);
            start_program();
        },
        ExitedWithCode(1), testing::HasSubstr(":987"));
}

}  // namespace
