// SPDX-License-Identifier: MIT
//
// Lists whose lines say how something is: in words, and in a colour besides.
#pragma once

#include <string>
#include <vector>

#include "app/kit/tones.h"

#include <X11/Intrinsic.h>

namespace gw {

/// A line of such a list; `state` is the part in colour.
struct StateLine {
    std::string state;
    std::string text;
    Tone tone = Tone::PLAIN;
};

/// Gives a list the colours. Once for each list, when it has its fonts.
void add_tones(Widget list);
/// Replaces the lines of the list, with their control characters escaped. None of them is selected. The
/// states are as wide as the widest of them.
void fill_state_list(Widget list, const std::vector<StateLine>& lines);

}  // namespace gw
