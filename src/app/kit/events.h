// SPDX-License-Identifier: MIT
//
// Handling of events while the program is busy.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// A timer that fires every 20 milliseconds while it lives, so that a wait for the next event ends soon. A
/// timer that fires only once may do so while the events of other work are handled. Then nothing would end
/// the wait.
class Ticker {
  public:
    Ticker() { start(); }
    ~Ticker() { XtRemoveTimeOut(id_); }
    Ticker(const Ticker&) = delete;
    Ticker& operator=(const Ticker&) = delete;

  private:
    void start();
    XtIntervalId id_ = 0;
};

/// Draws a dialog that was just managed, before long work begins. The window manager may need time to put it
/// on the screen: this waits for it, but at most one second.
void draw_at_once(Widget dialog);

}  // namespace gw

/// Flushes the display and dispatches events until the queue stays empty, so that a new dialog is seen before
/// long work begins.
void process_xt_events();
