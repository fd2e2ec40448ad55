// SPDX-License-Identifier: MIT
#include "model/gw_conflict.h"

#include <vector>

#include "modules/gw_fsm_list.h"

GWConflict::GWConflict(TYPE kind, GWHRNElement* elem, GWAlias* the_alias, GWHRNElement* other,
                       const char* dir, GWHRNList* list)
    : type(kind),
      read_only(the_alias != nullptr),
      is_alias(the_alias != nullptr),
      element(elem),
      other_element(other),
      hrn_list(list),
      alias(the_alias) {
    if (dir != nullptr) dir_name = dir;
}

void GWConflict::set_conflict(INFO info, GWFont* font, unsigned group, unsigned index) {
    switch (info) {
        case READ_ONLY:
            read_only = true;
            break;
        case SYSTEM_FONT:
            system_font = true;
            break;
        case PACKAGE:
            package = true;
            break;
        case SAME_NAME:
            same_name = true;
            break;
        case ALIAS:
            is_alias = true;
            break;
        default:
            return;
    }
    if (type == INSTALL && group < GWHRNElement::MAX_POINT_SIZES &&
        index < GWHRNElement::MAX_FONTS_PER_SIZE) {
        conflicting_fonts[group][index] = gw::Ref<GWFont>(font);
    }
}

int GWConflict::is_conflict(INFO info) const {
    switch (info) {
        case READ_ONLY:
            return read_only ? 1 : 0;
        case SYSTEM_FONT:
            return system_font ? 1 : 0;
        case PACKAGE:
            return package ? 1 : 0;
        case SAME_NAME:
            return same_name ? 1 : 0;
        case ALIAS:
            return is_alias ? 1 : 0;
        default:
            return 0;
    }
}

std::string GWConflict::get_conflict_dir_name() const {
    for (const auto& [group, fonts] : conflicting_fonts) {
        for (const gw::Ref<GWFont>& font : fonts) {
            if (font && font->get_dir_name() != nullptr) return font->get_dir_name();
        }
    }
    return "";
}

void GWConflict::install_one(const gw::Ref<GWFont>& font, unsigned group, unsigned index,
                             GW_FSM_LIST& modules) {
    const auto found = conflicting_fonts.find(group);
    const gw::Ref<GWFont> old = found != conflicting_fonts.end() ? found->second[index] : gw::Ref<GWFont>();
    if (old) {
        other_element->del_font(old.get());
        old->delete_font(modules);
        found->second[index] = gw::Ref<GWFont>();
    }
    font->install_font(dir_name->c_str(), 0, modules);
    other_element->add_font(new GWFont(*font, dir_name->c_str()), 1);
}

void GWConflict::install_force(GW_FSM_LIST& modules) {
    if (refuses_force() || !element || !other_element || !dir_name) return;
    const auto& slots = element->get_slots();
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            install_one(slots[group].fonts[index], group, index, modules);
        }
    }
}

void GWConflict::delete_force(GW_FSM_LIST& modules) {
    if (refuses_force() || !element) return;
    std::vector<gw::Ref<GWFont>> fonts;
    for (const GWHRNElement::PointSize& slot : element->get_slots()) {
        fonts.insert(fonts.end(), slot.fonts.begin(), slot.fonts.end());
    }
    for (const gw::Ref<GWFont>& font : fonts) {
        element->del_font(font.get());
        font->delete_font(modules);
    }
    if (hrn_list != nullptr) hrn_list->delete_hrn_elem(element.get());
}
