// SPDX-License-Identifier: MIT
//
// Process-wide set-up.
#pragma once

/// Makes `out_of_memory` the handler of failing allocations.
void gw_init();

/// Ends the process with exit status 1, printing nothing.
[[noreturn]] void out_of_memory();

/// A process-wide counter of open files; there is no limit. Both return the new value.
int inc_open_file_count();
int dec_open_file_count();
