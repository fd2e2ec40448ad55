// SPDX-License-Identifier: MIT
//
// The fonts of the windows: which they are in each locale, how large they are, and that nothing is said about
// fonts on the terminal. Each start is a process of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/installed_list.h"
#include "support/temp_dir.h"
#include "widget/start/own_process.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <Xm/FileSB.h>
#include <Xm/TextF.h>

namespace {

using gw::test::start_program;
using testing::AnyOfArray;
using testing::Eq;
using testing::ExitedWithCode;

using InterfaceFontsDeathTest = gw::test::OwnProcess;

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
TEST_F(InterfaceFontsDeathTest, StartsQuietlyInEveryLocale) {
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
TEST_F(InterfaceFontsDeathTest, WithoutScalableFontsItQuietlyTakesTheServersFont) {
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
TEST_F(InterfaceFontsDeathTest, TheInterfaceFollowsTheDesktopsResolution) {
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

// What a list has without modern windows, and what somebody chooses, stays.
TEST_F(InterfaceFontsDeathTest, ListsAreInTheScalableFontForNamesUnlessAnotherIsChosen) {
    const std::string own = "Glyphward*mainWindow*_hrn_list*fontList: 9x15";
    const std::string modern = "Glyphward*gw_modern_windows: True";
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"-xrm", modern}, "Monospace, Sans\n"},
        {{"-xrm", modern, "-xrm", own}, "9x15, Sans\n"},
        {{"-xrm", modern, "-xrm", "Glyphward*gw_names.fontName: Sans"}, "Sans, Sans\n"},
        {{}, "-*-lucidatypewriter-medium-r-normal-sans-0-140-0-0-m-0-iso8859-1, fixed\n"},
    };
    for (const auto& [arguments, fonts] : cases) {
        EXPECT_EXIT(
            {
                ::setenv("LC_ALL", "C", 1);
                start_program(arguments);
                std::fprintf(stderr, "%s, %s\n", font_of(wi_hrn_list).c_str(),
                             font_of(gw::test::part_of(wi_dir_dlg, XmDIALOG_TEXT)).c_str());
                exit_btn_cb(nullptr, nullptr, nullptr);
            },
            ExitedWithCode(0), Eq(fonts));
    }
}

// The toolkit expects UTF-8 for texts in a scalable font. A text field drops everything after the first wrong
// byte.
TEST_F(InterfaceFontsDeathTest, TextsStayWholeInEveryEncoding) {
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
TEST_F(InterfaceFontsDeathTest, AFontListGoesOverTheInterfacesFont) {
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*_fontlist_label.fontList: 9x15"});
            std::fprintf(stderr, "%s, %s\n", font_of(gw::test::find(wi_toplevel, "_fontlist_label")).c_str(),
                         font_of(gw::test::find(wi_toplevel, "_disk_space_label")).c_str());
            exit_btn_cb(nullptr, nullptr, nullptr);
        },
        ExitedWithCode(0), Eq("9x15, Sans\n"));
}

}  // namespace
