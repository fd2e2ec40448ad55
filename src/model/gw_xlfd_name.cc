// SPDX-License-Identifier: MIT
#include "model/gw_xlfd_name.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

constexpr std::ptrdiff_t XLFD_DASHES = 14;
constexpr std::size_t LONGEST_FIELD = 999;

/// The name that is being split, the position of its next field, and the field that was returned last.
struct Splitter {
    std::string name;
    std::size_t next = 0;
    bool exhausted = false;
    std::string field;
};

Splitter& splitter() {
    static Splitter instance;
    return instance;
}

}  // namespace

int is_xlfd_name(const char* s) {
    const std::string_view name(s);
    return std::count(name.begin(), name.end(), '-') == XLFD_DASHES ? 1 : 0;
}

const char* extract_next_field(const char* s) {
    Splitter& split = splitter();
    if (s != nullptr) {
        if (is_xlfd_name(s) == 0) return "";
        split = {s, std::string_view(s).find('-') + 1, false, {}};
    }
    if (split.exhausted) return split.field.c_str();
    const std::size_t dash = split.name.find('-', split.next);
    split.field = split.name.substr(split.next, std::min(dash - split.next, LONGEST_FIELD));
    split.exhausted = dash == std::string::npos;
    split.next = dash + 1;
    return split.field.c_str();
}
