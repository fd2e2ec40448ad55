// SPDX-License-Identifier: MIT
#include "app/fontsets/codesets.h"

#include <cwchar>

namespace gw {

namespace {

constexpr unsigned long ASCII_END = 128;
constexpr unsigned long CODESET_BITS = 0x30000000;
constexpr unsigned long CODESET_2 = 0x10000000;
constexpr unsigned long CODESET_3 = 0x20000000;

}  // namespace

unsigned codeset_of(unsigned long wide_character) {
    if (wide_character < ASCII_END) return 0;
    switch (wide_character & CODESET_BITS) {
        case CODESET_BITS:
            return 1;
        case CODESET_2:
            return 2;
        case CODESET_3:
            return 3;
        default:
            return 0;
    }
}

std::vector<std::string> split_by_codeset(const std::string& text, unsigned count) {
    std::vector<std::string> parts(count);
    if (parts.empty()) return parts;
    std::mbstate_t state{};
    for (std::size_t at = 0; at < text.size();) {
        wchar_t wide = 0;
        std::size_t length = std::mbrtowc(&wide, text.data() + at, text.size() - at, &state);
        if (length == 0 || length > text.size() - at) {  // a NUL byte, or no character
            state = {};
            length = 1;
            wide = 0;
        }
        const unsigned codeset = codeset_of(static_cast<unsigned long>(wide));
        parts[codeset < count ? codeset : 0].append(text, at, length);
        at += length;
    }
    return parts;
}

}  // namespace gw
