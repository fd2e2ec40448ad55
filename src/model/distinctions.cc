// SPDX-License-Identifier: MIT
#include "model/distinctions.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "core/text.h"
#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"
#include "model/gw_xlfd_name.h"

namespace gw {

namespace {

/// What an entry can be told apart by, in the order in which that is tried.
using Features = std::vector<std::string>;

template <class T>
struct Entry {
    T* item;
    Features features;
    std::string distinction = {};
};

template <class T>
using Group = std::vector<Entry<T>*>;

template <class T>
void distinguish(const Group<T>& group, std::size_t feature) {
    if (group.size() < 2 || feature == group.front()->features.size()) return;
    std::map<std::string, Group<T>> parts;
    for (Entry<T>* entry : group) parts[lower_case(entry->features[feature])].push_back(entry);
    for (const auto& [key, part] : parts) {
        for (Entry<T>* entry : part) {
            const std::string& word = entry->features[feature];
            if (parts.size() == 1 || word.empty()) continue;
            if (!entry->distinction.empty()) entry->distinction += ", ";
            entry->distinction += word;
        }
        distinguish(part, feature + 1);
    }
}

bool reads_before(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return ascii_lower(x) < ascii_lower(y); });
}

template <class T>
void tell_equal_apart(std::vector<Entry<T>>& entries) {
    Group<T> group;
    for (Entry<T>& entry : entries) group.push_back(&entry);
    distinguish(group, 0);
    for (const Entry<T>& entry : entries) entry.item->set_distinction(entry.distinction);
}

template <class T, class Describe>
void tell_all_apart(const std::vector<T*>& items, Describe describe) {
    for (T* item : items) {
        if (!item->get_distinction().empty()) item->set_distinction("");
    }
    using Name = decltype(describe.name(*items.front()));
    std::vector<std::pair<Name, T*>> named;
    named.reserve(items.size());
    for (T* item : items) named.emplace_back(describe.name(*item), item);
    const auto before = [](const auto& a, const auto& b) { return reads_before(a.first, b.first); };
    // A list that is shown is sorted already.
    if (!std::is_sorted(named.begin(), named.end(), before))
        std::stable_sort(named.begin(), named.end(), before);
    for (auto first = named.begin(); first != named.end();) {
        const auto end =
            std::find_if(first, named.end(), [&](const auto& other) { return before(*first, other); });
        if (end - first > 1) {
            std::vector<Entry<T>> entries;
            for (auto equal = first; equal != end; ++equal)
                entries.push_back({equal->second, describe.features(*equal->second)});
            tell_equal_apart(entries);
        }
        first = end;
    }
}

struct FontDescription {
    static std::string_view name(const GWHRNElement& elem) { return elem.get_name(); }
    static Features features(const GWHRNElement& elem) {
        GWFont* font = elem.get_representative();
        if (font == nullptr) return Features(5);
        const GW_FSPEC_LIST* files = font->get_font_file_list();
        const bool has_file = files != nullptr && !files->is_empty();
        const std::string charset(font->get_charset_hrn_name());
        return {charset.substr(charset.find_first_not_of(' ')),
                capitalized_words(font->get_field(GWFont::FOUNDRY)),
                has_file ? (*files->begin())->get_name() : "", has_file ? (*files->begin())->get_dir() : "",
                font->get_xlfd_name()};
    }
};

struct AliasDescription {
    static std::string name(const GWAlias& alias) { return alias.get_hrn_name(); }
    static Features features(const GWAlias& alias) {
        const std::string name =
            is_xlfd_name(alias.get_alias_name()) != 0 ? alias.get_alias_name() : alias.get_font_name();
        GWFont font(GWFont::BITMAP_FONT);
        if (is_xlfd_name(name.c_str()) == 0) return {"", "", "", alias.get_dir_name(), name};
        font.set_xlfd_name(name.c_str());
        const std::string charset(font.get_charset_hrn_name());
        const std::string pixels(font.get_field(GWFont::PIXEL_SIZE));
        return {charset.substr(charset.find_first_not_of(' ')),
                capitalized_words(font.get_field(GWFont::FOUNDRY)), pixels.empty() ? "" : pixels + " px",
                alias.get_dir_name(), alias.get_alias_name()};
    }
};

}  // namespace

void tell_apart(const std::vector<GWHRNElement*>& elements) {
    tell_all_apart(elements, FontDescription());
}

void tell_apart(const std::vector<GWAlias*>& aliases) {
    tell_all_apart(aliases, AliasDescription());
}

}  // namespace gw
