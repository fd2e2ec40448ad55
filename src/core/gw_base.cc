// SPDX-License-Identifier: MIT
#include "core/gw_base.h"

void GW_BASE::print(const char* /*prefix*/, GW_FILE* /*file*/) const {}

int GW_BASE::compare(const GW_BASE* /*other*/) const {
    return -1;
}

int GW_BASE::equal(const GW_BASE* /*other*/) const {
    return -1;
}
