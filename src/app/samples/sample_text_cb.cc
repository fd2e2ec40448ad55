// SPDX-License-Identifier: MIT
#include "app/samples/sample_text_cb.h"

#include <string>
#include <vector>

#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_font.h"
#include "app/samples/sample_menus.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text.h"

#include <Xm/List.h>

namespace {

constexpr const char* OUTLINE_SIZE_WITHOUT_MENU = "240";

void show_largest(const sample_text_cb_struct& record, const GWHRNElement& elem) {
    std::string size = OUTLINE_SIZE_WITHOUT_MENU;
    gw::Ref<GWFont> font;
    if (gw::is_outline(elem)) {
        font = elem.get_font("0", "");
    } else {
        unsigned count = 0;
        const std::vector<std::string> sizes = elem.get_point_sizes(count);
        if (sizes.empty()) return gw::show_that_font_is_gone(record);
        size = sizes.back();
        const std::vector<std::string> resolutions = elem.get_res(size.c_str(), count);
        font = elem.get_font(size.c_str(), resolutions.empty() ? "" : resolutions.front().c_str());
    }
    if (!font) return gw::show_that_font_is_gone(record);
    gw::show_font(record, font.get(), size.c_str());
}

/// The position that a selection callback was called for; 0 when there is none.
int selected_position(Widget list, XtPointer call_data) {
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    if (event != nullptr && (event->reason == XmCR_SINGLE_SELECT || event->reason == XmCR_BROWSE_SELECT)) {
        return event->item_position;
    }
    return gw::selected_position(list);
}

}  // namespace

void init_sample_text_cb_module() {
    gw::take_over_font_errors();
    gw::read_sample_text();
}

void hrn_list_sample_cb(Widget list, sample_text_cb_struct* record, XtPointer call_data) {
    gw::forget_older_samples();
    activate(record->sample_field, 1);
    if (gw::selected_count(list) != 1) {
        gw::show_nothing(*record);
        activate(record->sample_field, 0);
        gw::make_menus_insensitive(*record);
        return;
    }
    const int position = selected_position(list, call_data);
    const gw::ShownList entries(*record->hrn_list, the_alias_list);
    const GWHRNElement* elem = entries.font_at(position);
    if (elem == nullptr) {
        gw::make_menus_insensitive(*record);
        const GWAlias* alias = entries.alias_at(position);
        if (alias != nullptr) return gw::show_alias(*record, alias);
        return gw::show_that_font_is_gone(*record);
    }
    if (record->size_menu != nullptr) {
        offer_sizes(record, *elem);
    } else {
        show_largest(*record, *elem);
    }
}
