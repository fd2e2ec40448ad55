// SPDX-License-Identifier: MIT
#include "fontfiles/sfnt_names.h"

#include <algorithm>
#include <string_view>

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

#include "fontfiles/unicode_text.h"

namespace gw {

namespace {

// FreeType keeps each name that was looked at, of up to 64 kB.
constexpr FT_UInt MOST_NAMES = 500;
constexpr int WINDOWS_LANGUAGE = 0x3FF;  // the rest of the number is the country
constexpr int WINDOWS_ENGLISH = 0x009;

bool is_unicode(const FT_SfntName& name) {
    if (name.platform_id == TT_PLATFORM_APPLE_UNICODE) return true;
    return name.platform_id == TT_PLATFORM_MICROSOFT &&
           (name.encoding_id == TT_MS_ID_UNICODE_CS || name.encoding_id == TT_MS_ID_UCS_4 ||
            name.encoding_id == TT_MS_ID_SYMBOL_CS);
}

/// How much the name is wanted; 0 for one that cannot be read.
int merit(const FT_SfntName& name) {
    if (name.platform_id == TT_PLATFORM_MACINTOSH) return name.encoding_id == TT_MAC_ID_ROMAN ? 1 : 0;
    if (!is_unicode(name)) return 0;
    if (name.platform_id == TT_PLATFORM_APPLE_UNICODE) return 3;
    return (name.language_id & WINDOWS_LANGUAGE) == WINDOWS_ENGLISH ? 4 : 2;
}

std::string text_of(const FT_SfntName& name) {
    const std::string_view bytes(reinterpret_cast<const char*>(name.string), name.string_len);
    if (is_unicode(name)) return utf8_from_utf16(bytes);
    return is_utf8(bytes) ? std::string(bytes) : utf8_from_mac_roman(bytes);
}

std::string name_of_kind(FT_Face face, int kind) {
    int best = 0;
    std::string text;
    const FT_UInt count = std::min(FT_Get_Sfnt_Name_Count(face), MOST_NAMES);
    for (FT_UInt number = 0; number < count; ++number) {
        FT_SfntName name = {};
        if (FT_Get_Sfnt_Name(face, number, &name) != FT_Err_Ok || name.name_id != kind) continue;
        if (name.string == nullptr || name.string_len == 0 || merit(name) <= best) continue;
        best = merit(name);
        text = text_of(name);
    }
    return text;
}

}  // namespace

std::string sfnt_name(FT_Face face, std::initializer_list<int> kinds) {
    for (const int kind : kinds) {
        if (std::string text = name_of_kind(face, kind); !text.empty()) return text;
    }
    return "";
}

}  // namespace gw
