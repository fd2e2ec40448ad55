// SPDX-License-Identifier: MIT
//
// The settings file with the sample text. The first line of an input is a text that is kept, the rest is the
// file.
#include <stdlib.h>

#include "app/samples/rc_sample_text.h"
#include "core/rights.h"
#include "fuzz.h"

namespace {

constexpr const char* NAME = ".glyphwdrc";
// The longest line that is read, without the keyword.
constexpr std::size_t LONGEST_TEXT = 1000 - 11;

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    ::setenv("HOME", directory().file("").c_str(), 1);
    std::string_view text = input;
    const std::string kept(before_nul(take_line(text)));
    directory().write(NAME, text);
    const std::string read = get_rc_sample_text();
    GW_MUST_HOLD(read.size() <= LONGEST_TEXT && read.find('\n') == std::string::npos, text);
    GW_MUST_HOLD(static_cast<bool>(keep_rc_sample_text(kept)) != runs_as_superuser(), kept);
    if (!runs_as_superuser()) GW_MUST_HOLD(get_rc_sample_text() == kept.substr(0, LONGEST_TEXT), kept);
}
