// SPDX-License-Identifier: MIT
#include "model/bitmap_index.h"

#include <algorithm>

#include "model/gw_hrn_list.h"

namespace gw {

namespace {

/// The font whose key a bitmap element has; null for any other element.
const GWFont* bitmap_of(const GWHRNElement& elem) {
    const GWFont* font = elem.get_representative();
    return font != nullptr && font->is_bitmap() ? font : nullptr;
}

}  // namespace

bool BitmapIndex::is_current(const GWHRNList& list) const {
    return indexed == list.state() && in_order;
}

void BitmapIndex::rebuild(const GWHRNList& list) {
    by_key.clear();
    in_order = true;
    GWHRNElement* before = nullptr;
    for (GWHRNElement* elem : list) {
        if (const GWFont* font = bitmap_of(*elem); font != nullptr) by_key[font->hrn_key()].push_back(elem);
        if (before != nullptr && list.compare(before, elem) == 0) in_order = false;
        before = elem;
    }
    indexed = list.state();
}

const BitmapIndex::Elements& BitmapIndex::elements_for(const GWFont& font, const GWHRNList& list) {
    if (!is_current(list)) rebuild(list);
    return by_key[font.hrn_key()];
}

const BitmapIndex::Elements& BitmapIndex::added_for(const GWFont& font) {
    return by_key[font.hrn_key()];
}

void BitmapIndex::add(GWHRNElement* elem, const GWHRNList& list) {
    const GWFont* font = bitmap_of(*elem);
    if (font == nullptr) return;
    // In a sorted list, the new element comes before the first one that does not sort before it.
    Elements& elements = by_key[font->hrn_key()];
    const auto next = std::find_if(elements.begin(), elements.end(),
                                   [&](GWHRNElement* other) { return list.compare(elem, other) != 0; });
    elements.insert(next, elem);
}

void BitmapIndex::follow_insertion(GWHRNElement* elem, const GWHRNList& list) {
    add(elem, list);
    indexed = list.state();
}

}  // namespace gw
