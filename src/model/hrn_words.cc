// SPDX-License-Identifier: MIT
#include "model/hrn_words.h"

#include <array>
#include <utility>

#include "core/text.h"

namespace gw {

std::string slant_word(std::string_view slant) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> WORDS = {{
        {"i", " Italic"},
        {"r", ""},
        {"o", " Oblique"},
        {"ro", " Reverse Oblique"},
        {"ri", " Reverse Italic"},
    }};
    const std::string code = lower_case(slant);
    for (const auto& [known, word] : WORDS) {
        if (code == known) return std::string(word);
    }
    return ' ' + std::string(slant);
}

std::string add_style_word(std::string_view add_style) {
    if (add_style.empty() || add_style.front() == ' ') return {};
    return ' ' + capitalized(add_style);
}

void append_at_column(std::string& line, std::string_view note) {
    constexpr std::size_t NOTE_COLUMN = 46;
    if (line.size() < NOTE_COLUMN) {
        line.resize(NOTE_COLUMN, ' ');
    } else {
        line += "   ";
    }
    line += note;
}

}  // namespace gw

void set_read_only_str(std::string& s) {
    gw::append_at_column(s, "[Read Only]");
}
