// SPDX-License-Identifier: MIT
//
// What the fuzz targets share: a check that ends the program, the parts of an input, a private directory.
//
// Each target defines `gw::fuzz::try_input`, which libFuzzer calls with inputs of its own making. An input is
// a text, so that dictionaries and seeds are text files that people can read.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/failure.h"
#include "tests/support/temp_dir.h"

/// Ends the program with a finding unless `condition` is true. `input` is shown.
#define GW_MUST_HOLD(condition, input)                                             \
    do {                                                                           \
        if (!(condition)) gw::fuzz::report(__FILE__, __LINE__, #condition, input); \
    } while (false)

namespace gw::fuzz {

/// The target: tries one input, and ends the program if a property does not hold.
void try_input(std::string_view input);

[[noreturn]] void report(const char* file, int line, const char* condition, std::string_view input);

/// The first line of `text`, which is removed from it. What stays is the rest after its newline.
std::string_view take_line(std::string_view& text);
/// The lines of a text, each with its newline; the last one may have none.
std::vector<std::string> lines_of(std::string_view text);
/// The text up to its first NUL byte.
std::string_view before_nul(std::string_view text);
/// Whether `lines` are all there in `others`, in the same order.
bool are_among(const std::vector<std::string>& lines, const std::vector<std::string>& others);

/// A directory in memory, for readers that want a path. There is one for each run.
const test::TempDir& directory();

}  // namespace gw::fuzz
