// SPDX-License-Identifier: MIT
//
// The program's connection to the toolkit. Everything here is null until start-up has opened the display.
#pragma once

#include <X11/Intrinsic.h>

extern XtAppContext app;
extern Display* display;
extern Screen* screen;
extern Widget wi_toplevel;   ///< the application shell, above all windows
extern Cursor watch_cursor;  ///< the busy cursor, made when it is first needed; 0 before
