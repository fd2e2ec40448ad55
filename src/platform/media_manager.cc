// SPDX-License-Identifier: MIT
#include "platform/media_manager.h"

int media_manager_running() {
    return 0;
}

int media_manager_check() {
    return 0;
}
