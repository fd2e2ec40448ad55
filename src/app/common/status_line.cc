// SPDX-License-Identifier: MIT
#include "app/common/status_line.h"

Widget wi_main_window_status_label = nullptr;
