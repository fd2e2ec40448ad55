// SPDX-License-Identifier: MIT
#include "drivers/gw_alias_driver.h"

#include "core/font_policy.h"
#include "drivers/engine_globals.h"
#include "fontfiles/gw_alias_file.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/path_element.h"
#include "model/distinctions.h"

namespace {

/// Back to front, so that equal names keep their order.
void sort_again(GW_SORTED_LIST<GWAlias>& list) {
    const std::vector<GWAlias*> aliases(list.begin(), list.end());
    gw::tell_apart(aliases);
    list.clear();
    for (auto alias = aliases.rbegin(); alias != aliases.rend(); ++alias) list.insert(*alias);
}

}  // namespace

void GWAliasDriver::get_alias_list(GW_SORTED_LIST<GWAlias>& out) {
    unsigned count = 0;
    for (const std::string& dir :
         gw::directories_to_list(*the_font_path->get_fpe_list(GWFontPath::ALL_FP, count))) {
        GW_STRING_LIST aliases;
        const gw::ElementsOwner aliases_owner(aliases);
        GW_STRING_LIST font_names;
        const gw::ElementsOwner font_names_owner(font_names);
        GW_ALIAS_FILE(dir.c_str(), gw::FILE_TYPE_REGULAR).get_alias_font_name_list(aliases, font_names);
        for (int i = 1; i <= font_names.get_count(); ++i) {
            out.insert(new GWAlias(aliases.get_elem_at_pos(i)->get_str(),
                                   font_names.get_elem_at_pos(i)->get_str(), dir.c_str()));
        }
    }
    if (gw::font_policy().tells_names_apart()) sort_again(out);
}
