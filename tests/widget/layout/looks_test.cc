// SPDX-License-Identifier: MIT
//
// Rules for all windows: states are seen in the pixels on the screen. And a picture of every window.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/kit/gw_gui_util.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "widget/dialogs_test_support.h"
#include "widget/layout/layout_test_support.h"

#include <X11/Xutil.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;

/// The pixels of a widget or gadget, as they are on the screen.
std::vector<unsigned long> pixels_of(Widget w) {
    pump();
    XSync(display, False);
    pump();
    const Box box = box_on_screen(w);
    XImage* image =
        XGetImage(display, RootWindowOfScreen(screen), box.x, box.y, static_cast<unsigned>(box.width),
                  static_cast<unsigned>(box.height), AllPlanes, ZPixmap);
    std::vector<unsigned long> pixels;
    for (int y = 0; y < image->height; ++y) {
        for (int x = 0; x < image->width; ++x) pixels.push_back(XGetPixel(image, x, y));
    }
    XDestroyImage(image);
    return pixels;
}

/// How many pixels differ.
long difference(const std::vector<unsigned long>& one, const std::vector<unsigned long>& other) {
    EXPECT_EQ(one.size(), other.size());
    long count = 0;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) count += one[i] != other[i] ? 1 : 0;
    return count;
}

/// Others only show a value, on the window's own colour.
bool is_editable_field(Widget w) {
    return XmIsTextField(w) && XmTextFieldGetEditable(w) != False;
}

/// The buttons, toggles and fields of a window that may be sensitive or not.
std::vector<Widget> controls_of(Widget window) {
    std::vector<Widget> controls;
    each_part(window, [&](Widget part) {
        const bool is_control = is_button(part) || XmIsToggleButton(part) || is_editable_field(part);
        if (is_control && is_mapped(part) && !is_scrolled(part, window) &&
            XtIsSensitive(XtParent(part)) != False)
            controls.push_back(part);
    });
    return controls;
}

TEST_F(Layout, InsensitiveControlsLookDifferent) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "insensitive fields look like others";
    int looked_at = 0;
    each_window([&](Widget w) {
        for (Widget control : controls_of(w)) {
            const bool was_sensitive = XtIsSensitive(control) != False;
            const auto before = pixels_of(control);
            activate(control, was_sensitive ? 0 : 1);
            EXPECT_GT(difference(before, pixels_of(control)), 20) << XtName(control);
            activate(control, was_sensitive ? 1 : 0);
            ++looked_at;
        }
    });
    EXPECT_GT(looked_at, 60);
}

// A radio button that is set is filled; one that is not set is empty.
TEST_F(Layout, AChosenRadioButtonIsSeenAtAGlance) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "the toolkit's own look";
    each_window([](Widget w) {
        each_part(w, [&](Widget part) {
            if (!XmIsToggleButton(part) || !is_mapped(part)) return;
            unsigned char type = XmN_OF_MANY;
            XtVaGetValues(part, XmNindicatorType, &type, nullptr);
            if (type == XmN_OF_MANY) return;
            EXPECT_EQ(type, XmONE_OF_MANY_ROUND) << XtName(part);
            const Boolean is_set = XmToggleButtonGetState(part);
            const auto before = pixels_of(part);
            XmToggleButtonSetState(part, is_set != False ? False : True, False);
            EXPECT_GT(difference(before, pixels_of(part)), 30) << XtName(part);
            XmToggleButtonSetState(part, is_set, False);
        });
    });
}

Widget shell_of(Widget w) {
    return XtIsShell(w) ? w : shell_of(XtParent(w));
}

bool can_have_focus(Widget w) {
    return is_control(w) && is_mapped(w) && XtIsSensitive(w);
}

/// A control for the focus while `control` does not have it. No button if possible: the frame of the default
/// button goes to whatever button has the focus.
Widget another_control(Widget window, Widget control) {
    Widget other = nullptr;
    each_part(window, [&](Widget part) {
        if (part == control || !can_have_focus(part)) return;
        if (other == nullptr || is_button(other)) other = part;
    });
    return other;
}

/// How many pixels of a control are others while it has the focus.
long pixels_of_focus(Widget control, Widget other) {
    EXPECT_TRUE(XmProcessTraversal(control, XmTRAVERSE_CURRENT));
    const auto focused = pixels_of(control);
    EXPECT_TRUE(XmProcessTraversal(other, XmTRAVERSE_CURRENT));
    return difference(focused, pixels_of(control));
}

TEST_F(Layout, FocusIsSeen) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "the toolkit's own look";
    int looked_at = 0;
    each_window([&](Widget w) {
        XSetInputFocus(display, XtWindow(shell_of(w)), RevertToPointerRoot, CurrentTime);
        XSync(display, False);
        pump();
        each_part(w, [&](Widget part) {
            Widget other = can_have_focus(part) ? another_control(w, part) : nullptr;
            if (other == nullptr) return;
            EXPECT_GT(pixels_of_focus(part, other), 50) << XtName(XtParent(part)) << '.' << XtName(part);
            ++looked_at;
        });
    });
    EXPECT_GT(looked_at, 200);
}

/// Saves a picture of the widget's window among the results of the run.
void take_picture(Widget w, const std::string& name) {
    const char* directory = std::getenv("GLYPHWARD_OUT");
    if (directory == nullptr) return;
    XSync(display, False);
    const std::string command = "xwd -silent -id " + std::to_string(XtWindow(w)) +
                                " | xwdtopnm 2>/dev/null | pnmtopng -quiet > '" + directory + "/" + name +
                                ".png'";
    EXPECT_EQ(std::system(command.c_str()), 0) << name;
}

TEST_F(Layout, EveryWindowIsInAPicture) {
    int number = 0;
    each_window([&](Widget w) { take_picture(w, std::string(XtName(w)) + "-" + std::to_string(++number)); });
}

}  // namespace
