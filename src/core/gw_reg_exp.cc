// SPDX-License-Identifier: MIT
#include "core/gw_reg_exp.h"

#include <cstring>

#include "core/gw_file.h"
#include "core/text.h"

namespace {

constexpr std::size_t PATTERN_LIMIT = 63;

}  // namespace

GW_REG_EXP::GW_REG_EXP(const char* text) : compiled(gw::truncated(text, PATTERN_LIMIT)) {
    gw::copy_text(pattern.data(), pattern.size(), text);
}

int GW_REG_EXP::string_match(const char* s) {
    match_str = prefix_str = suffix_str = nullptr;
    match_len = prefix_len = suffix_len = 0;
    const auto found = compiled.find(s);
    if (!found) return 0;

    prefix_str = s;
    prefix_len = static_cast<int>(found->start);
    match_str = s + found->start;
    match_len = static_cast<int>(found->end - found->start);
    suffix_str = s + found->end;
    suffix_len = static_cast<int>(std::strlen(suffix_str));
    return 1;
}

int GW_REG_EXP::get_match_part(char* dst, MATCH_STR_TYPE which, std::size_t capacity) const {
    const char* part = which == MATCH ? match_str : which == PREFIX ? prefix_str : suffix_str;
    const int length = which == MATCH ? match_len : which == PREFIX ? prefix_len : suffix_len;
    if (part == nullptr) return static_cast<int>(gw::copy_text(dst, capacity, ""));
    return static_cast<int>(gw::copy_text(dst, capacity, {part, static_cast<std::size_t>(length)}));
}

void GW_REG_EXP::print(const char* prefix, GW_FILE* file) const {
    if (file == nullptr) return;
    const std::string lead = prefix != nullptr ? std::string(prefix) + ' ' : std::string();
    file->put_line((lead + "reg_exp = " + pattern.data() + '\n').c_str());
}
