// SPDX-License-Identifier: MIT
//
// XLFD names, and the names that people read. The two lines of an input are the names of two fonts.
#include <algorithm>
#include <array>

#include "fuzz.h"
#include "model/gw_alias.h"
#include "model/gw_font.h"
#include "model/gw_xlfd_name.h"
#include "model/hrn_words.h"
#include "tests/support/under_policy.h"

namespace {

using Fields = std::array<std::string, GWFont::FIELD_COUNT>;

Fields fields_of(const char* name) {
    Fields fields;
    for (const char* source = name; std::string & field : fields) {
        field = extract_next_field(source);
        source = nullptr;
    }
    return fields;
}

std::string joined(const Fields& fields) {
    std::string name;
    for (const std::string& field : fields) name += '-' + field;
    return name;
}

/// The fields of an XLFD name, joined again, are the name from its first dash on.
void try_fields(const std::string& name) {
    const bool is_xlfd = is_xlfd_name(name.c_str()) != 0;
    GW_MUST_HOLD(is_xlfd == (std::count(name.begin(), name.end(), '-') == GWFont::FIELD_COUNT), name);
    const Fields fields = fields_of(name.c_str());
    if (!is_xlfd) return;
    const bool fit = std::all_of(fields.begin(), fields.end(),
                                 [](const std::string& field) { return field.size() < 999; });
    GW_MUST_HOLD(!fit || joined(fields) == name.substr(name.find('-')), name);
}

void try_font(GWFont& font, const std::string& name) {
    font.set_xlfd_name(name.c_str());
    const std::string stored = font.get_xlfd_name();
    GW_MUST_HOLD(stored.size() <= GWFont::NAME_LIMIT, name);
    if (name.size() <= GWFont::NAME_LIMIT && !name.empty()) GW_MUST_HOLD(stored == name, name);
    const std::string shown = font.get_hrn_name();
    GW_MUST_HOLD(shown.ends_with(']'), name);
    GW_MUST_HOLD(font.get_hrn_name() == shown, name);
    GW_MUST_HOLD(font.get_cli_hrn_name().starts_with('['), name);
    std::array<char, GWFont::NAME_LIMIT + 1> composed{};
    font.construct_xlfd_name("", composed.data(), GWFont::NAME_LIMIT);
    GW_MUST_HOLD(composed.back() == '\0', name);
}

/// Two fonts that belong to one name have one key, and the other way round.
void try_keys(const std::string& name, const std::string& other_name) {
    const gw::Ref<GWFont> font(new GWFont(GWFont::BITMAP_FONT));
    const gw::Ref<GWFont> other(new GWFont(GWFont::BITMAP_FONT));
    try_font(*font, name);
    try_font(*other, other_name);
    const bool same = font->compare_hrn(other.get()) == 1;
    GW_MUST_HOLD(same == (other->compare_hrn(font.get()) == 1), name);
    GW_MUST_HOLD(same == (font->hrn_key() == other->hrn_key()), name);
}

void try_words(const std::string& text) {
    const std::string slant = gw::slant_word(text);
    GW_MUST_HOLD(slant.empty() || slant.starts_with(' '), text);
    const std::string style = gw::add_style_word(text);
    GW_MUST_HOLD(style.empty() || style.size() == text.size() + 1, text);
    std::string line = text;
    set_read_only_str(line);
    GW_MUST_HOLD(line.starts_with(text) && line.ends_with("[Read Only]"), text);
    const GWAlias alias(text.c_str(), text.c_str(), "/");
    GW_MUST_HOLD(std::string_view(alias.get_hrn_name()).ends_with("[Read Only]"), text);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view rest = input;
    const std::string name(before_nul(take_line(rest)));
    const std::string other(before_nul(take_line(rest)));
    for (const bool modern : {false, true}) {
        const test::UnderPolicy policy(modern);
        try_fields(name);
        try_keys(name, other);
        try_words(name);
    }
}
