// SPDX-License-Identifier: MIT
//
// The edits of "fonts.alias": whatever the file is, they keep all other aliases as an X server reads them.
// The first line of an input is the alias that is added, the second one its font, the rest is the file.
#include <algorithm>

#include "fontfiles/alias_text.h"
#include "fontfiles/server_index.h"
#include "fuzz.h"

namespace {

using gw::ServerAlias;
using gw::ServerAliases;

std::vector<std::string> words_of(const std::vector<ServerAlias>& aliases) {
    std::vector<std::string> words;
    for (const ServerAlias& alias : aliases) {
        words.push_back(alias.alias);
        words.push_back(alias.target);
    }
    return words;
}

/// Whether the server reads the same, but for one alias.
bool differs_by(const std::string& text, const ServerAliases& before, const ServerAlias& added) {
    const ServerAliases after = gw::read_server_aliases(text);
    std::vector<std::string> expected = words_of(before.aliases);
    expected.push_back(gw::server_lower_case(added.alias));
    expected.push_back(gw::server_lower_case(added.target));
    return !after.fault && after.has_file_names == before.has_file_names &&
           words_of(after.aliases) == expected;
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view text = input;
    const std::string alias(take_line(text));
    const std::string font(take_line(text));
    const ServerAliases before = read_server_aliases(text);
    const auto entries = alias_entries(text);
    GW_MUST_HOLD(entries.has_value() == !before.fault, input);
    GW_MUST_HOLD(!entries || entries->size() == before.aliases.size(), input);
    const auto longer = with_our_alias(text, alias, font);
    GW_MUST_HOLD(entries || !longer, input);
    const bool is_possible = alias.find('\0') == std::string::npos && font.find('\0') == std::string::npos &&
                             std::max(alias.size(), font.size()) <= LONGEST_SERVER_WORD &&
                             server_lower_case(alias) != server_lower_case(font);
    GW_MUST_HOLD(longer.has_value() == (is_possible && entries), input);
    if (!longer) return;
    GW_MUST_HOLD(differs_by(*longer, before, {alias, font}), input);

    const AliasEntry ours = alias_entries(*longer)->back();
    GW_MUST_HOLD(ours.is_ours, input);
    const ServerAliases back = read_server_aliases(without_entry(*longer, ours));
    GW_MUST_HOLD(!back.fault && words_of(back.aliases) == words_of(before.aliases), input);
    const auto changed = with_other_font(*longer, ours, alias + "x");
    GW_MUST_HOLD(!changed || differs_by(*changed, before, {alias, alias + "x"}), input);
}
