// SPDX-License-Identifier: MIT
//
// What the layout tests share: the program on the screen and in the locale of their combination, all its
// windows one after the other, and their parts.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "widget/layout/layout_suite.h"
#include "widget/layout/windows.h"

#include <X11/Intrinsic.h>

namespace gw::test {

struct Box {
    int x, y, width, height;
};

/// Calls `look` for every managed widget and gadget below `w` in the same window.
void each_part(Widget w, const std::function<void(Widget)>& look);
/// Where the widget or gadget is in its parent.
Box box_of(Widget w);
/// Whether the widget or gadget is a label of any kind, buttons included.
bool has_text(Widget w);
bool is_button(Widget w);
/// Contents of a scrolled window may be larger than the window.
bool is_scrolled(Widget w, Widget dialog);
/// The width of the frame that a button has only while it is the default button.
int ring_of(Widget w);
/// Where it is on the screen.
Box box_on_screen(Widget w);
/// Whether the user operates this widget; it must be reachable without a mouse.
bool is_control(Widget w);
/// Gadgets count as mapped.
bool is_mapped(Widget w);

class Layout : public testing::Test {
  protected:
    static void SetUpTestSuite();
    /// The main window, then the dialogs.
    static void each_window(const std::function<void(Widget)>& look);
    static void each_dialog(const std::function<void(const Dialog&, Widget)>& look);
};

}  // namespace gw::test
