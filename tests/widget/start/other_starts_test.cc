// SPDX-License-Identifier: MIT
//
// Starts with other resources, other servers and other window managers, and how the program ends. Each is a
// process of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include "app/kit/toolkit.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "app/samples/installed_list.h"
#include "app/start/initdlg.h"
#include "app/start/main_start.h"
#include "core/font_policy.h"
#include "support/temp_dir.h"
#include "widget/start/own_process.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Xutil.h>

namespace {

using gw::test::start_program;
using testing::Eq;
using testing::ExitedWithCode;

using OtherStartsDeathTest = gw::test::OwnProcess;

[[noreturn]] void say_resources_and_exit() {
    std::fprintf(stderr, "fontsets %d, printers %d, codeset %d, text \"%s\"\n", Gw_resrc.fontset_support,
                 Gw_resrc.printer_support, Gw_resrc.codeset_num, Gw_resrc.locale_sample_text);
    exit_btn_cb(nullptr, nullptr, nullptr);
    std::abort();
}

TEST_F(OtherStartsDeathTest, TheToolkitsOptionsSetTheResources) {
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

TEST_F(OtherStartsDeathTest, TheFontsOfTodayAreOffWithoutTheResourceAndByIt) {
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

/// Says what there is of windows that tell more, and ends.
[[noreturn]] void say_modern_windows_and_exit() {
    for (const char* part :
         {"doctor_dlg", "_tools_cascade", "_tools_pulldown", "_doctor_dlg_button", "_why_button",
          "fontsets_dlg", "modify_fp_dlg", "_state_text", "_apply_now_button"}) {
        if (gw::test::find(wi_toplevel, part) != nullptr) std::fprintf(stderr, "%s ", part);
    }
    if (!gw::served_path().empty()) std::fputs("the server was asked ", stderr);
    for (const auto& link : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(link.path(), gone) == "anon_inode:inotify")
            std::fputs("directories are watched ", stderr);
    }
    std::fputs("that is all\n", stderr);
    std::_Exit(0);
}

TEST_F(OtherStartsDeathTest, WithoutModernWindowsThereIsNothingOfThem) {
    // The superuser has always had the dialog for font paths.
    const std::string nothing = ::geteuid() == 0 ? "modify_fp_dlg that is all\n" : "that is all\n";
    EXPECT_EXIT(
        {
            ::setenv("XFILESEARCHPATH", "/nowhere/%N", 1);
            start_program();
            say_modern_windows_and_exit();
        },
        ExitedWithCode(0), Eq(nothing));
    EXPECT_EXIT(
        {
            start_program(
                {"-xrm", "Glyphward*gw_modern_windows: False", "-xrm", "Glyphward*gw_modern_fonts: False"});
            say_modern_windows_and_exit();
        },
        ExitedWithCode(0), Eq(nothing));
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
            say_modern_windows_and_exit();
        },
        ExitedWithCode(0),
        Eq("doctor_dlg _tools_cascade _tools_pulldown _doctor_dlg_button _why_button fontsets_dlg "
           "modify_fp_dlg "
           "_state_text _apply_now_button the server was asked directories are watched that is all\n"));
}

TEST_F(OtherStartsDeathTest, AResourceFileOfTheUsersTakesThePlaceOfTheBuiltInList) {
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

TEST_F(OtherStartsDeathTest, WithoutAResourceFileTheBuiltInListHolds) {
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

TEST_F(OtherStartsDeathTest, TheNoticeIsReadableBeforeTheListsAreReadEvenUnderASlowWindowManager) {
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

TEST_F(OtherStartsDeathTest, ExitEndsTheProgramWithStatus0) {
    EXPECT_EXIT(
        {
            start_program();
            gw::test::press(gw::test::find(wi_toplevel, "_exit_button"));
        },
        ExitedWithCode(0), Eq(""));
}

TEST_F(OtherStartsDeathTest, TheCloseBoxOfTheWindowIsExit) {
    EXPECT_EXIT(
        {
            start_program();
            gw::test::close_box(wi_toplevel);
            gw::test::pump_until([] { return false; }, 2000);
        },
        ExitedWithCode(0), Eq(""));
}

TEST_F(OtherStartsDeathTest, ADisplayThatGoesAwayEndsItWithOneLine) {
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

TEST_F(OtherStartsDeathTest, ADisplayThatIsNotThereEndsIt) {
    EXPECT_EXIT(
        {
            ::setenv("DISPLAY", ":987", 1);
            start_program();
        },
        ExitedWithCode(1), testing::HasSubstr(":987"));
}

}  // namespace
