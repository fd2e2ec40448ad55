// SPDX-License-Identifier: MIT
//
// Which entry is at which position of a list that shows names of fonts, and aliases after them.
#pragma once

#include "core/gw_list.h"
#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

namespace gw {

/// A view of the lists that a list widget shows. Positions are 1-based, as in the widget. It owns nothing;
/// make one whenever it is needed.
class ShownList {
  public:
    /// The first `font_count` positions show fonts.
    ShownList(const GWHRNList& fonts, int font_count, const GW_SORTED_LIST<GWAlias>& aliases)
        : fonts_(fonts), font_count_(font_count), aliases_(aliases) {}
    ShownList(const GWHRNList& fonts, const GW_SORTED_LIST<GWAlias>& aliases)
        : ShownList(fonts, fonts.get_count(), aliases) {}

    /// Fonts and aliases together.
    [[nodiscard]] int count() const { return font_count_ + aliases_.get_count(); }
    /// The name element at the position; null when an alias or nothing is there.
    [[nodiscard]] GWHRNElement* font_at(int position) const {
        return position <= font_count_ ? fonts_.get_elem_at_pos(position) : nullptr;
    }
    /// The alias at the position; null when a font or nothing is there.
    [[nodiscard]] GWAlias* alias_at(int position) const {
        return aliases_.get_elem_at_pos(position - font_count_);
    }
    /// False for the last font too: disk space and attributes treat it like an alias (see COMPATIBILITY.md).
    [[nodiscard]] bool is_before_last_font(int position) const { return position < font_count_; }

  private:
    const GWHRNList& fonts_;
    int font_count_;
    const GW_SORTED_LIST<GWAlias>& aliases_;
};

/// The list in the main window: `the_installed_hrn_count` fonts, and all aliases.
[[nodiscard]] ShownList installed_entries();

}  // namespace gw
