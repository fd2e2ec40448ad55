// SPDX-License-Identifier: MIT
#include "app/samples/sample_record.h"

#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/samples/attrdlg.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_text.h"

namespace gw {

bool is_outline(const GWHRNElement& elem) {
    const GWFont* font = elem.get_representative();
    return font != nullptr && !font->is_bitmap();
}

GWHRNElement* only_selected_element(const sample_text_cb_struct& record) {
    const std::vector<int> positions = selected_positions(record.list);
    return positions.size() == 1 ? record.hrn_list->get_elem_at_pos(positions.front()) : nullptr;
}

void show_font(const sample_text_cb_struct& record, GWFont* font, const char* decipoints) {
    if (show_in_font(record.sample_field, font, decipoints, sample_text) && is_attr_dlg_displayed() != 0)
        show_font_attributes(font, record.location, only_selected_element(record));
}

void show_alias(const sample_text_cb_struct& record, const GWAlias* alias) {
    if (show_in_alias(record.sample_field, alias, sample_text) && is_attr_dlg_displayed() != 0)
        show_alias_attributes(alias);
}

void show_nothing(const sample_text_cb_struct& record) {
    clear_sample_textfield(record.sample_field);
    if (is_attr_dlg_displayed() != 0) clear_attributes();
}

void show_that_font_is_gone(const sample_text_cb_struct& record) {
    show_nothing(record);
    explain_missing_font(record.sample_field);
}

void make_menus_insensitive(const sample_text_cb_struct& record) {
    for (Widget menu : {record.size_menu, record.res_menu, record.enc_menu}) {
        if (menu != nullptr) activate(menu, 0);
    }
}

}  // namespace gw
