// SPDX-License-Identifier: MIT
//
// The busy cursor on the windows that may be in view, for the length of a scope.
#pragma once

#include <optional>
#include <vector>

#include "app/kit/generation.h"

#include <X11/Intrinsic.h>

namespace gw {

/// Showing the cursor serves events: what is released in a callback that runs then, but may still be in use
/// by one that waits here, is retired and goes when the last scope ends.
class BusyWindows {
  public:
    BusyWindows();
    ~BusyWindows();
    BusyWindows(const BusyWindows&) = delete;
    BusyWindows& operator=(const BusyWindows&) = delete;

    /// From now on the window that is in this variable, which lives for the whole run, shows the cursor too
    /// while it is managed.
    static void include(const Widget& window);

    /// Destroys the widget, now or when the last scope ends.
    static void destroy(Widget w);

  private:
    static void show(int on);
    static inline Generation scopes;
    static inline std::vector<const Widget*> windows;
    static inline std::vector<Widget> retired;
    std::optional<Turn> turn_{std::in_place, scopes};
};

}  // namespace gw
