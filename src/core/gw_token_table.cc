// SPDX-License-Identifier: MIT
#include "core/gw_token_table.h"

#include <algorithm>

#include "core/text.h"

GW_TOKEN_TABLE::GW_TOKEN_TABLE(int token_limit, int /*max_chars*/, int unknown_id)
    : max_tokens(static_cast<std::size_t>(std::max(token_limit, 0))), default_id(unknown_id) {
    entries.reserve(max_tokens);
}

int GW_TOKEN_TABLE::add_token(int id, const char* text) {
    if (entries.size() == max_tokens) return -1;
    entries.push_back({id, text});
    return static_cast<int>(entries.size());
}

int GW_TOKEN_TABLE::get_id(std::string_view text) const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [text](const Entry& entry) { return entry.text == text; });
    return found != entries.end() ? found->id : default_id;
}

int GW_TOKEN_TABLE::get_id_of_end(std::string_view text) const {
    const std::string name = gw::lower_case(text);
    const Entry* longest = nullptr;
    for (const Entry& entry : entries) {
        if (name.size() <= entry.text.size() || !name.ends_with(gw::lower_case(entry.text))) continue;
        if (longest == nullptr || entry.text.size() > longest->text.size()) longest = &entry;
    }
    return longest != nullptr ? longest->id : default_id;
}

const GW_TOKEN_TABLE::Entry* GW_TOKEN_TABLE::find(int id) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [id](const Entry& entry) { return entry.id == id; });
    return found != entries.end() ? &*found : nullptr;
}

int GW_TOKEN_TABLE::get_len(int id) const {
    const Entry* entry = find(id);
    return entry != nullptr ? static_cast<int>(entry->text.size()) : 0;
}

int GW_TOKEN_TABLE::get_str(int id, char* dst, std::size_t capacity) const {
    const Entry* entry = find(id);
    return static_cast<int>(gw::copy_text(dst, capacity, entry != nullptr ? entry->text : std::string()));
}
