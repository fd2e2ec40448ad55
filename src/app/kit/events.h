// SPDX-License-Identifier: MIT
//
// Events that are served while the program is busy.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// Rings every 20 milliseconds while it lives, so that a wait for the next event comes back soon. A timer
/// that rings only once may do so while the events of other work are served; the wait would then have nothing
/// to end it.
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

/// Has a dialog drawn that was just managed, before long work begins. A window manager takes its time to put
/// it on the screen: it is waited for, but not longer than a second.
void draw_at_once(Widget dialog);

}  // namespace gw

/// Flushes the display and dispatches events until the queue stays empty, so that a new dialog is seen before
/// long work begins.
void process_xt_events();
