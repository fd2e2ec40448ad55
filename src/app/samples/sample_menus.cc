// SPDX-License-Identifier: MIT
#include "app/samples/sample_menus.h"

#include <algorithm>
#include <vector>

#include "app/kit/callbacks.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/samples/rc_sample_text.h"
#include "app/samples/sample_record.h"

#include <Xm/RowColumn.h>

const std::array<const char*, outline_point_size_list_count> outline_point_size_list = {"10", "12", "14",
                                                                                        "18", "24", "36"};

namespace {

constexpr const char* OUTLINE_RESOLUTION = "75 X 75";

/// Replaces the buttons of the menu with one per text, and makes the last one current. Returns the current
/// button. Without texts the menu keeps its buttons, and null is returned.
Widget replace_buttons(Widget menu, Widget pulldown, std::vector<Widget>& buttons,
                       const std::vector<std::string>& texts, XtCallbackProc callback,
                       sample_text_cb_struct* record) {
    if (texts.empty()) return nullptr;
    const std::vector<Widget> old = gw::entries_of(pulldown);
    buttons.clear();
    for (const std::string& text : texts) {
        Widget button = gw::menu_button(pulldown, "_choice", text);
        XtAddCallback(button, XmNactivateCallback, callback, record);
        buttons.push_back(button);
    }
    // The menu must not refer to a button that is removed.
    XtVaSetValues(menu, XmNmenuHistory, buttons.back(), nullptr);
    for (Widget button : old) gw::take_entry_away(button);
    return buttons.back();
}

/// The sizes of the element as the menu shows them.
std::vector<std::string> sizes_of(const GWHRNElement& elem) {
    if (gw::is_outline(elem)) return {outline_point_size_list.begin(), outline_point_size_list.end()};
    std::vector<std::string> points;
    unsigned count = 0;
    for (const std::string& decipoints : elem.get_point_sizes(count)) {
        points.push_back(convert_to_point(decipoints.c_str()));
    }
    return points;
}

}  // namespace

void offer_sizes(sample_text_cb_struct* record, const GWHRNElement& elem) {
    Widget current =
        replace_buttons(record->size_menu, record->size_pulldown, record->size_buttons, sizes_of(elem),
                        gw::thunk<sample_text_cb_struct, size_button_cb>, record);
    activate(record->size_menu, current != nullptr ? 1 : 0);
    if (current != nullptr) {
        size_button_cb(current, record, nullptr);
    } else {
        activate(record->res_menu, 0);
        gw::show_nothing(*record);
    }
}

void size_button_cb(Widget button, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    record->size_button = button;
    const GWHRNElement* elem = gw::only_selected_element(*record);
    if (elem == nullptr) return;
    const bool outline = gw::is_outline(*elem);
    std::vector<std::string> resolutions = {OUTLINE_RESOLUTION};
    if (!outline) {
        unsigned count = 0;
        resolutions = elem->get_res(chosen_decipoints(*elem, gw::label_of(button)).c_str(), count);
    }
    Widget current = replace_buttons(record->res_menu, record->res_pulldown, record->res_buttons, resolutions,
                                     gw::thunk<sample_text_cb_struct, res_button_cb>, record);
    activate(record->res_menu, outline || current == nullptr ? 0 : 1);
    if (current != nullptr) {
        res_button_cb(current, record, nullptr);
    } else {
        gw::show_nothing(*record);
    }
}

void res_button_cb(Widget button, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    record->res_button = button;
    const GWHRNElement* elem = gw::only_selected_element(*record);
    if (elem == nullptr || record->size_button == nullptr) return;
    const std::string decipoints = chosen_decipoints(*elem, gw::label_of(record->size_button));
    const gw::Ref<GWFont> font(elem->get_font(decipoints.c_str(), gw::label_of(button).c_str()));
    if (!font) return gw::show_nothing(*record);
    gw::show_font(*record, font.get(), decipoints.c_str());
}

std::string chosen_decipoints(const GWHRNElement& elem, const std::string& points) {
    std::string decipoints = convert_to_decipoint(points.c_str());
    if (gw::is_outline(elem)) return decipoints;
    unsigned count = 0;
    const std::vector<std::string> sizes = elem.get_point_sizes(count);
    if (std::find(sizes.begin(), sizes.end(), decipoints) != sizes.end()) return decipoints;
    const auto size = std::find_if(sizes.begin(), sizes.end(), [&](const std::string& candidate) {
        return convert_to_point(candidate.c_str()) == points;
    });
    return size != sizes.end() ? *size : decipoints;
}
