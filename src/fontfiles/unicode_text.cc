// SPDX-License-Identifier: MIT
#include "fontfiles/unicode_text.h"

#include <iconv.h>

#include <algorithm>
#include <array>

namespace gw {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

bool is_character(char32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

/// Takes the first character off a text that is not empty.
char32_t take_character(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) return first;
    const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || text.size() < more) return REPLACEMENT;
    char32_t code = first & (0x3FU >> more);
    for (std::size_t i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return REPLACEMENT;
        code = code << 6 | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 4> SMALLEST = {0, 0x80, 0x800, 0x10000};
    if (code < SMALLEST[more] || !is_character(code)) return REPLACEMENT;
    text.remove_prefix(more);
    return code;
}

bool is_control(char32_t code) {
    struct Range {
        char32_t first;
        char32_t last;
    };
    // The last four are line separators, and what turns the direction of writing.
    constexpr std::array<Range, 6> CONTROLS = {
        {{0, 0x1F}, {0x7F, 0x9F}, {0x61C, 0x61C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}}};
    return std::any_of(CONTROLS.begin(), CONTROLS.end(),
                       [code](const Range& range) { return code >= range.first && code <= range.last; });
}

}  // namespace

void append_utf8(std::string& text, char32_t character) {
    const char32_t code = is_character(character) ? character : REPLACEMENT;
    const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (code < 0x80) return add(code);
    if (code < 0x800) {
        add(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            add(0xE0 | code >> 12);
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 0x3F));
        }
        add(0x80 | (code >> 6 & 0x3F));
    }
    add(0x80 | (code & 0x3F));
}

std::u32string characters_of(std::string_view utf8) {
    std::u32string characters;
    while (!utf8.empty()) characters.push_back(take_character(utf8));
    return characters;
}

bool is_utf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::string_view before = bytes;
        if (take_character(bytes) == REPLACEMENT && !before.starts_with("\xEF\xBF\xBD")) return false;
    }
    return true;
}

std::string utf8_from_utf16(std::string_view bytes) {
    std::string text;
    char32_t high = 0;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const char32_t unit =
            static_cast<unsigned char>(bytes[i]) * 256U + static_cast<unsigned char>(bytes[i + 1]);
        const bool is_low = unit >= 0xDC00 && unit <= 0xDFFF;
        if (high != 0 && is_low) {
            append_utf8(text, 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00));
            high = 0;
            continue;
        }
        if (high != 0) append_utf8(text, REPLACEMENT);
        high = unit >= 0xD800 && unit <= 0xDBFF ? unit : 0;
        if (high == 0) append_utf8(text, unit);
    }
    if (high != 0) append_utf8(text, REPLACEMENT);
    return text;
}

std::string utf8_from_latin1(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) append_utf8(text, static_cast<unsigned char>(byte));
    return text;
}

std::string utf8_from_mac_roman(std::string_view bytes) {
    const iconv_t table = ::iconv_open("UTF-8", "MACINTOSH");
    if (table == reinterpret_cast<iconv_t>(-1)) return "";  // NOLINT(performance-no-int-to-ptr)
    std::string copy(bytes);
    std::string text(4 * bytes.size(), '\0');
    char* in = copy.data();
    char* out = text.data();
    std::size_t left = copy.size();
    std::size_t room = text.size();
    const std::size_t failed = ::iconv(table, &in, &left, &out, &room);
    ::iconv_close(table);
    if (failed == static_cast<std::size_t>(-1)) return "";
    text.resize(text.size() - room);
    return text;
}

std::string as_one_line(std::string_view utf8, std::size_t limit) {
    std::string line;
    std::size_t blanks = 0;
    std::size_t count = 0;
    for (const char32_t character : characters_of(utf8)) {
        if (is_control(character)) continue;
        if (character == ' ' || character == 0xA0) {
            ++blanks;
            continue;
        }
        const std::size_t before = count == 0 ? 0 : blanks;
        if (count + before + 1 > limit) break;
        append_utf8(line.append(before, ' '), character);
        count += before + 1;
        blanks = 0;
    }
    return line;
}

}  // namespace gw
