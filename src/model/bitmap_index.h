// SPDX-License-Identifier: MIT
//
// Finds the name elements that a bitmap font may join by the font's key, instead of asking every element of a
// list.
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

    /// The elements of `list` whose fonts differ from `font` in sizes and resolutions alone.
    const Elements& elements_for(const GWFont& font, const GWHRNList& list);
    /// Whether it stands for the list as that is now.
    [[nodiscard]] bool is_current(const GWHRNList& list) const;
    /// Takes `elem` over, the only change of the list since the index was current.
    void follow_insertion(GWHRNElement* elem, const GWHRNList& list);

  private:
    void rebuild(const GWHRNList& list);

    std::unordered_map<std::string, Elements> by_key;  // `GWFont::hrn_key` of the representative
    ListState indexed;
    bool in_order = true;  // an element that is renamed keeps its place, and then the list is out of order
};

}  // namespace gw
