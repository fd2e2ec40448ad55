// SPDX-License-Identifier: MIT
//
// The alias file of a font directory.
#include <algorithm>

#include "fontfiles/gw_alias_file.h"
#include "fuzz.h"
#include "model/gw_alias.h"
#include "tests/support/under_policy.h"

namespace {

bool is_cleaned(std::string_view text) {
    return text.find_first_of("\\\n") == std::string_view::npos;
}

void try_listing(std::string_view text) {
    GW_ALIAS_FILE file(gw::fuzz::directory().c_str(), gw::FILE_TYPE_REGULAR);
    GW_STRING_LIST aliases;
    GW_STRING_LIST same_aliases;
    GW_STRING_LIST names;
    const gw::ElementsOwner owner(aliases);
    const gw::ElementsOwner second_owner(same_aliases);
    const gw::ElementsOwner third_owner(names);
    GW_MUST_HOLD(file.get_alias_list(aliases) == 1, text);
    GW_MUST_HOLD(file.get_alias_font_name_list(same_aliases, names) == 1, text);
    GW_MUST_HOLD(aliases.get_count() == names.get_count(), text);
    // A line of 509 characters and more is listed in pieces.
    const auto lines = std::count(text.begin(), text.end(), '\n') + 1 + static_cast<long>(text.size() / 509);
    GW_MUST_HOLD(aliases.get_count() <= lines, text);

    auto name = names.begin();
    for (const GW_STRING* alias : aliases) {
        GW_MUST_HOLD(is_cleaned(alias->get_str()) && is_cleaned((*name)->get_str()), text);
        GW_MUST_HOLD(file.get_font_name(alias->get_str()) != nullptr, text);
        const GWAlias shown(alias->get_str(), (*name)->get_str(), gw::fuzz::directory().c_str());
        GW_MUST_HOLD(std::string_view(shown.get_hrn_name()).ends_with("[Read Only]"), text);
        ++name;
    }
    if (names.is_empty()) return;
    const std::string first = names.get_elem_at_pos(1)->get_str();
    const std::unique_ptr<GW_STRING> found = file.get_alias_name(first.c_str());
    if (found == nullptr) return;
    const std::string alias = found->get_str();
    GW_MUST_HOLD(is_cleaned(alias), text);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    directory().write("fonts.alias", input);
    for (const bool modern : {false, true}) {
        const test::UnderPolicy policy(modern);
        try_listing(input);
    }
}
