// SPDX-License-Identifier: MIT
#include "app/samples/font_lists.h"

#include <string>
#include <vector>

#include "app/kit/lists.h"
#include "app/program/shown_names.h"
#include "app/program/window_policy.h"

void update_wi_hrn_list(Widget list, const GWHRNList& hrn_list) {
    std::vector<std::string> names;
    for (const GWHRNElement* elem : hrn_list) names.emplace_back(elem->get_name());
    if (gw::window_policy().speaks_in_sentences()) names = gw::names_in_columns(names, {});
    gw::fill_list(list, names);
}

void display_alias_list(Widget list, const GW_SORTED_LIST<GWAlias>& aliases) {
    std::vector<std::string> names;
    for (const GWAlias* alias : aliases) names.emplace_back(alias->get_hrn_name());
    gw::append_to_list(list, names);
}
