// SPDX-License-Identifier: MIT
//
// Shows the busy cursor on the visible windows until the end of a scope.
#pragma once

#include <optional>
#include <vector>

#include "app/kit/generation.h"

#include <X11/Intrinsic.h>

namespace gw {

/// Showing the cursor handles events, so another callback may run in the middle of one that waits here. What
/// that callback releases may still be in use: it is retired, and released when the last scope ends.
class BusyWindows {
  public:
    BusyWindows();
    ~BusyWindows();
    BusyWindows(const BusyWindows&) = delete;
    BusyWindows& operator=(const BusyWindows&) = delete;

    /// From now on the window in this variable shows the cursor too while it is managed. The variable must
    /// live for the whole run.
    static void include(const Widget& window);

    /// Whether there is such a scope now.
    [[nodiscard]] static bool are_busy() { return scopes.is_pending(); }

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
