// SPDX-License-Identifier: MIT
#include "model/font_report.h"

namespace gw {

namespace {

/// The name up to the bracket that closes its type.
std::string without_mark(const std::string& name) {
    const std::size_t type = name.find('[');
    const std::size_t end = type == std::string::npos ? type : name.find(']', type);
    return end == std::string::npos ? name : name.substr(0, end + 1);
}

}  // namespace

bool FontReport::note(GWFont& font, const Outcome& outcome) {
    if (!outcome) entries.push_back({without_mark(font.get_hrn_name()), outcome.failure()});
    return static_cast<bool>(outcome);
}

void FontReport::clear() {
    entries.clear();
    taken = 0;
}

std::vector<FontReport::Entry> FontReport::take_new() {
    std::vector<Entry> fresh(entries.begin() + static_cast<std::ptrdiff_t>(taken), entries.end());
    taken = entries.size();
    return fresh;
}

void FontReport::append(const FontReport& other) {
    entries.insert(entries.end(), other.entries.begin(), other.entries.end());
}

// Kept: some fonts are left out without a line on standard error.
bool was_always_silent(Reason reason) {
    return reason == Reason::NAME_OF_AN_ALIAS || reason == Reason::TOO_MANY_OF_ONE_SIZE ||
           reason == Reason::NO_FILE;
}

void FontReport::tell() const {
    for (const Entry& entry : entries) {
        if (!was_always_silent(entry.why.reason)) gw::tell(entry.why);
    }
}

}  // namespace gw
