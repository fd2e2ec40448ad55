// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>

#include "app/kit/busy_windows.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Shell.h>

namespace {

using gw::BusyWindows;

Widget busy_window = nullptr;  // what BusyWindows knows

class BusyWindowsTest : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        BusyWindows::include(busy_window);
        shell = XtCreatePopupShell("busy", topLevelShellWidgetClass, wi_toplevel, nullptr, 0);
        busy_window = gw::form(shell, "form");
        XtVaSetValues(busy_window, "width", 40, "height", 40, nullptr);
        XtRealizeWidget(shell);
        begin = gw::test::cursor_changes().size();
    }
    void TearDown() override {
        busy_window = nullptr;
        XtDestroyWidget(shell);
    }
    /// How often the window got the cursor since the test began.
    [[nodiscard]] long times_set(Cursor cursor) const {
        const auto& changes = gw::test::cursor_changes();
        return std::count_if(changes.begin() + static_cast<long>(begin), changes.end(),
                             [&](const auto& change) {
                                 return change.window == XtWindow(busy_window) && change.cursor == cursor;
                             });
    }
    Widget shell = nullptr;
    std::size_t begin = 0;
};

TEST_F(BusyWindowsTest, AWindowHasTheCursorForTheLengthOfAScope) {
    {
        const BusyWindows busy;
        EXPECT_EQ(times_set(watch_cursor), 1);
        EXPECT_EQ(times_set(0), 0);
    }
    EXPECT_EQ(times_set(watch_cursor), 1);
    EXPECT_EQ(times_set(0), 1);
}

TEST_F(BusyWindowsTest, AWindowIsKnownOnceHoweverOftenItIsIncluded) {
    BusyWindows::include(busy_window);
    const BusyWindows busy;
    EXPECT_EQ(times_set(watch_cursor), 1);
}

TEST_F(BusyWindowsTest, AWindowThatIsNotManagedIsLeftAlone) {
    XtUnmanageChild(busy_window);
    const BusyWindows busy;
    EXPECT_EQ(times_set(watch_cursor), 0);
}

TEST_F(BusyWindowsTest, AVariableMayHoldNoWindow) {
    Widget window = busy_window;
    busy_window = nullptr;
    static_cast<void>(BusyWindows());
    busy_window = window;
    EXPECT_EQ(times_set(watch_cursor), 0);
}

void note_destruction(Widget, XtPointer destroyed, XtPointer) {
    *static_cast<bool*>(destroyed) = true;
}

TEST_F(BusyWindowsTest, WhatIsDestroyedMeanwhileGoesWithTheLastScope) {
    bool destroyed = false;
    Widget button = gw::label(busy_window, "label", "text");
    XtAddCallback(button, XtNdestroyCallback, note_destruction, &destroyed);
    {
        const BusyWindows outer;
        {
            const BusyWindows inner;
            BusyWindows::destroy(button);
            EXPECT_FALSE(destroyed);
        }
        EXPECT_FALSE(destroyed) << "the outer scope may still use it";
    }
    gw::test::pump();
    EXPECT_TRUE(destroyed);
}

TEST_F(BusyWindowsTest, WithoutAScopeItGoesAtOnce) {
    bool destroyed = false;
    Widget button = gw::label(busy_window, "label", "text");
    XtAddCallback(button, XtNdestroyCallback, note_destruction, &destroyed);
    BusyWindows::destroy(button);
    EXPECT_TRUE(destroyed);
}

}  // namespace
