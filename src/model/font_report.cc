// SPDX-License-Identifier: MIT
#include "model/font_report.h"

namespace gw {

bool FontReport::note(GWFont& font, const Outcome& outcome) {
    if (!outcome) entries.push_back({font.get_hrn_name(), outcome.failure()});
    return static_cast<bool>(outcome);
}

void FontReport::append(const FontReport& other) {
    entries.insert(entries.end(), other.entries.begin(), other.entries.end());
}

void FontReport::tell() const {
    for (const Entry& entry : entries) {
        const Reason reason = entry.why.reason;
        // Kept: some fonts are left out without a line on standard error.
        const bool silent = reason == Reason::NAME_OF_AN_ALIAS || reason == Reason::TOO_MANY_OF_ONE_SIZE;
        if (!silent) gw::tell(entry.why);
    }
}

}  // namespace gw
