// SPDX-License-Identifier: MIT
//
// Rules for all windows: they fit the screen, and every text and control has its place and size there. This
// file and those beside it are linked into one program for each combination of locale, screen and font.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "widget/dialogs_test_support.h"
#include "widget/layout/layout_test_support.h"

#include <X11/IntrinsicP.h>
#include <Xm/DialogS.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/Scale.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>

namespace {

constexpr int FRAME_HEIGHT = 28;  // of a window manager's frame, at 96 dots per inch

using namespace gw::test;

// A window that nobody looks at would be the one whose texts are cut off.
TEST_F(Layout, EveryWindowIsLookedAt) {
    std::set<std::string> known;
    for (const Dialog& dialog : dialogs()) known.insert(dialog.name);
    each_dialog([](const Dialog&, Widget) {});  // some are made when they are first shown
    for (Cardinal i = 0; i < wi_toplevel->core.num_popups; ++i) {
        Widget shell = wi_toplevel->core.popup_list[i];
        WidgetList children = nullptr;
        Cardinal count = 0;
        XtVaGetValues(shell, XmNchildren, &children, XmNnumChildren, &count, nullptr);
        if (!XmIsDialogShell(shell) || count == 0) continue;
        EXPECT_TRUE(known.contains(XtName(children[0]))) << XtName(children[0]);
    }
}

// Only since windows follow the screen's resolution are they fitted to the screen.
TEST_F(Layout, EveryWindowFitsTheScreenWithItsFrame) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "windows are as large as their parts";
    const int frame = FRAME_HEIGHT * std::max({SUITE.server_dpi, SUITE.xft_dpi, 96}) / 96;
    each_window([&](Widget w) {
        const Box box = box_of(w);
        EXPECT_LE(box.width, WidthOfScreen(screen));
        EXPECT_LE(box.height + frame, HeightOfScreen(screen));
    });
}

int line_height(XmRenderTable fonts) {
    const gw::XmText text = gw::xm_text("Xg");
    return XmStringHeight(fonts, text.get());
}

/// What shows a sample of a font has that font.
bool shows_a_sample(Widget w) {
    const std::string_view name = XtName(w);
    // For Japanese the installation has a fontset.
    if (name == "sample_text") return std::string_view(SUITE.language) == "japanese";
    return name.ends_with("_sample") || name.ends_with("_sample_textfield");
}

TEST_F(Layout, ListsAndFieldsGrowWithTheLabels) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "lists are in fonts of the server";
    XmRenderTable labels = nullptr;
    XtVaGetValues(wi_toplevel, XmNlabelRenderTable, &labels, nullptr);
    const int lowest = line_height(labels) * 8 / 10;
    each_window([&](Widget w) {
        each_part(w, [&](Widget part) {
            if (!(XmIsList(part) || XmIsTextField(part) || XmIsText(part)) || shows_a_sample(part)) return;
            XmRenderTable fonts = nullptr;
            XtVaGetValues(part, XmNrenderTable, &fonts, nullptr);
            EXPECT_GE(line_height(fonts), lowest) << XtName(part);
        });
    });
}

TEST_F(Layout, EveryListShowsAWholeRow) {
    each_window([](Widget w) {
        each_part(w, [](Widget part) {
            if (!XmIsList(part) || !is_mapped(part)) return;
            XmRenderTable fonts = nullptr;
            XtVaGetValues(part, XmNrenderTable, &fonts, nullptr);
            EXPECT_GE(box_of(part).height, line_height(fonts)) << XtName(part);
        });
    });
}

// What goes to the edge of a window would be drawn over its bevel.
TEST_F(Layout, NoPartLiesOnABevel) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "lines go over the bevel";
    each_window([](Widget w) {
        each_part(w, [&](Widget part) {
            Widget holder = XtParent(part);
            if (is_scrolled(part, w) || XmIsScale(holder) || !XmIsManager(holder)) return;
            Dimension bevel = 0;
            XtVaGetValues(holder, XmNshadowThickness, &bevel, nullptr);
            const Box box = box_of(part);
            const Box around = box_of(holder);
            EXPECT_GE(box.x, bevel) << XtName(holder) << '.' << XtName(part);
            EXPECT_GE(box.y, bevel) << XtName(part);
            EXPECT_LE(box.x + box.width + bevel, around.width) << XtName(part);
            EXPECT_LE(box.y + box.height + bevel, around.height) << XtName(part);
        });
    });
}

bool overlap(const Box& one, const Box& other) {
    return one.x < other.x + other.width && other.x < one.x + one.width && one.y < other.y + other.height &&
           other.y < one.y + one.height;
}

TEST_F(Layout, NoPartLiesOnAnother) {
    each_window([](Widget w) {
        std::map<Widget, std::vector<Widget>> children;
        each_part(w, [&](Widget part) {
            if (is_scrolled(part, w) || !is_mapped(part)) return;
            std::vector<Widget>& siblings = children[XtParent(part)];
            for (Widget other : siblings)
                EXPECT_FALSE(overlap(box_of(part), box_of(other))) << XtName(part) << ", " << XtName(other);
            siblings.push_back(part);
        });
    });
}

TEST_F(Layout, EveryDialogStandsInTheMiddleOfTheScreen) {
    each_dialog([](const Dialog&, Widget w) {
        const Box box = box_of(XtParent(w));
        const int width = WidthOfScreen(screen);
        const int height = HeightOfScreen(screen);
        EXPECT_GE(box.x, 0);
        EXPECT_GE(box.y, 0);
        EXPECT_LE(box.x + box.width, width);
        EXPECT_LE(box.y + box.height, height);
        EXPECT_NEAR(box.x, (width - box.width) / 2, 1);
        EXPECT_NEAR(box.y, (height - box.height) / 2, 1);
    });
}

TEST_F(Layout, NoTextIsCutOff) {
    each_window([](Widget w) {
        each_part(w, [&](Widget part) {
            if (!has_text(part) || is_scrolled(part, w)) return;
            XtWidgetGeometry preferred = {};
            XtQueryGeometry(part, nullptr, &preferred);
            const Box box = box_of(part);
            EXPECT_GE(box.width + ring_of(part), preferred.width)
                << XtName(part) << ": " << gw::label_of(part);
            EXPECT_GE(box.height + ring_of(part), preferred.height)
                << XtName(part) << ": " << gw::label_of(part);
        });
    });
}

TEST_F(Layout, EveryPartIsInsideOfWhatHoldsIt) {
    each_window([](Widget w) {
        each_part(w, [&](Widget part) {
            if (is_scrolled(part, w)) return;
            const Box box = box_of(part);
            const Box around = box_of(XtParent(part));
            EXPECT_GE(box.x, 0) << XtName(part);
            EXPECT_GE(box.y, 0) << XtName(part);
            EXPECT_LE(box.x + box.width, around.width) << XtName(part);
            EXPECT_LE(box.y + box.height, around.height) << XtName(part);
        });
    });
}

double middle_of(Widget w) {
    const Box box = box_of(w);
    return box.y + box.height / 2.0;
}

TEST_F(Layout, ControlsOfARowHaveTheirMiddlesAtOneHeight) {
    std::vector<std::vector<const char*>> rows = {
        {"install_dlg", "_install_to_label", "install_dir_dlg_button"},
        {"rmedia_dlg", "media_option_menu", "check_button"},
        {"pr_install_dlg", "media_label", "other_media_dlg_button", "from_dir_dlg_button"},
        {"pr_install_dlg", "for_label", "for_menu"},
        {"pr_install_dlg", "install_to_label", "to_dir_dlg_button"},
        {"pr_delete_dlg", "for_label", "for_menu"},
        {"pr_delete_dlg", "size_label", "size_menu"},
        {"pr_modify_fp_dlg", "printer_label", "printer_menu"},
        {"pr_modify_fp_dlg", "new_fp_label", "new_fp_textfield", "dir_dlg_button"},
    };
    if (SUITE.modern_windows) {
        rows.push_back({"attr_dlg", "file_label", "file_value", "format_label", "format_value"});
        rows.push_back({"attr_dlg", "directory_label", "directory_value", "size_label", "size_value"});
        rows.push_back({"attr_dlg", "package_label", "package_value", "glyphs_label", "glyphs_value"});
        rows.push_back({"attr_dlg", "names_label", "find_label", "find_text"});
        rows.push_back({"doctor_dlg", "command_label", "command_value", "copy_command_button"});
        rows.push_back({"doctor_dlg", "install_label", "install_value", "copy_install_button"});
        rows.push_back({"doctor_dlg", "base_names_label", "base_names_value", "copy_base_names_button"});
    }
    std::set<const std::vector<const char*>*> seen;
    each_dialog([&](const Dialog& dialog, Widget w) {
        for (const std::vector<const char*>& row : rows) {
            if (row[0] != std::string(dialog.name)) continue;
            seen.insert(&row);
            for (std::size_t i = 2; i < row.size(); ++i)
                EXPECT_NEAR(middle_of(find(w, row[i])), middle_of(find(w, row[1])), 2) << row[i];
        }
    });
    EXPECT_EQ(seen.size(), rows.size());
}

TEST_F(Layout, TheNumbersOfTheDiskSpaceEndAtOnePlace) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "each stands behind its label";
    each_dialog([](const Dialog& dialog, Widget w) {
        if (std::string_view(dialog.name) != "install_dlg") return;
        std::set<int> ends;
        for (const char* name : {"_req_space_val", "_avail_space_val"}) {
            Widget value = find(w, name);
            unsigned char alignment = XmALIGNMENT_BEGINNING;
            XtVaGetValues(value, XmNalignment, &alignment, nullptr);
            EXPECT_EQ(alignment, XmALIGNMENT_END);
            const Box box = box_of(value);
            ends.insert(box.x + box.width);
        }
        EXPECT_EQ(ends.size(), 1U);
    });
}

}  // namespace
