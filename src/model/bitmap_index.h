// SPDX-License-Identifier: MIT
//
// Finds the name elements that a bitmap font may join, by the font's key, so that not every element of a list
// must be asked.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "core/gw_list.h"

class GWFont;
class GWHRNElement;
class GWHRNList;

namespace gw {

class BitmapIndex {
  public:
    /// The elements of one key, in list order.
    using Elements = std::vector<GWHRNElement*>;

    /// The elements of `list` whose fonts differ from `font` only in sizes and resolutions.
    const Elements& elements_for(const GWFont& font, const GWHRNList& list);
    /// The elements that were given to `add` for this key, whatever has become of the list.
    [[nodiscard]] const Elements& added_for(const GWFont& font);
    /// Adds `elem`, which is in the list or will be.
    void add(GWHRNElement* elem, const GWHRNList& list);
    /// Whether the index is up to date for the list.
    [[nodiscard]] bool is_current(const GWHRNList& list) const;
    /// Adds `elem`, which must be the only change of the list since the index was up to date.
    void follow_insertion(GWHRNElement* elem, const GWHRNList& list);

  private:
    void rebuild(const GWHRNList& list);

    std::unordered_map<std::string, Elements> by_key;  // `GWFont::hrn_key` of the representative
    ListState indexed;
    bool in_order = true;  // false when an element was renamed and kept its position
};

}  // namespace gw
