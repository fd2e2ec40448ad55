// SPDX-License-Identifier: MIT
#include "app/kit/toolkit.h"

XtAppContext app = nullptr;
Display* display = nullptr;
Screen* screen = nullptr;
Widget wi_toplevel = nullptr;
Cursor watch_cursor = 0;
