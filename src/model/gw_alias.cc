// SPDX-License-Identifier: MIT
#include "model/gw_alias.h"

#include <strings.h>

#include <array>
#include <string_view>

#include "core/font_policy.h"
#include "core/text.h"
#include "model/gw_font.h"
#include "model/gw_xlfd_name.h"
#include "model/hrn_words.h"

GWAlias::GWAlias(const char* alias_name, const char* font_name, const char* dir)
    : alias_name_(alias_name), font_name_(font_name), dir_(dir) {
    if (is_xlfd_name(alias_name) != 0) {
        hrn_name_ = _construct_hrn(alias_name, 1);
    } else {
        hrn_name_ = alias_name_ + " [Alias]";
        set_read_only_str(hrn_name_);
    }
    font_hrn_name_ = is_xlfd_name(font_name) != 0 ? _construct_hrn(font_name, 0) : font_name_;
}

void GWAlias::set_distinction(const std::string& text) {
    static constexpr std::string_view TAG = " [Alias]";
    std::string words = hrn_name_.substr(0, hrn_name_.rfind(TAG));
    if (!distinction_.empty()) words.resize(words.size() - distinction_.size() - 3);
    distinction_ = text;
    if (!text.empty()) words += " (" + text + ')';
    hrn_name_ = words + std::string(TAG);
    set_read_only_str(hrn_name_);
}

int GWAlias::compare(const GWAlias* other) const {
    return ::strcasecmp(get_hrn_name(), other->get_hrn_name());
}

// Kept: the set width is not part of a name. Names of fonts and of their aliases are made alike.
std::string GWAlias::_construct_hrn(const char* xlfd, int is_alias) {
    std::array<std::string, GWFont::FIELD_COUNT> fields;
    for (const char* source = xlfd; std::string & field : fields) {
        field = extract_next_field(source);
        source = nullptr;
    }
    const auto in_capitals = gw::font_policy().tells_names_apart() ? gw::capitalized_words : gw::capitalized;
    std::string text = in_capitals(fields[GWFont::TYPEFACE_NAME]);
    text += ' ' + in_capitals(fields[GWFont::WEIGHT_NAME]);
    text += gw::add_style_word(fields[GWFont::ADD_STYLE_NAME]);
    text += gw::slant_word(fields[GWFont::SLANT]);
    if (is_alias != 0) text += " [Alias]";
    set_read_only_str(text);
    return text;
}
