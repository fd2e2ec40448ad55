// SPDX-License-Identifier: MIT
#include "core/gw_misc.h"

#include <cstdlib>
#include <new>

namespace {

int open_file_count = 0;

}  // namespace

void gw_init() {
    std::set_new_handler(out_of_memory);
}

// Unwinding or running exit handlers would need the memory that has just run out.
void out_of_memory() {
    std::_Exit(1);
}

int inc_open_file_count() {
    return ++open_file_count;
}

int dec_open_file_count() {
    return --open_file_count;
}
