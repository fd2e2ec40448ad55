// SPDX-License-Identifier: MIT
//
// Process-wide set-up.
#pragma once

/// Makes `out_of_memory` the new-handler, which is called when an allocation fails.
void gw_init();

/// Ends the process with exit status 1, printing nothing.
[[noreturn]] void out_of_memory();

/// A process-wide counter of open files, without a limit. Both return the new value.
int inc_open_file_count();
int dec_open_file_count();
