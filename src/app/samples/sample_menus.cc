// SPDX-License-Identifier: MIT
#include "app/samples/sample_menus.h"

#include <algorithm>
#include <vector>

#include "app/kit/callbacks.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "app/samples/rc_sample_text.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_record.h"

#include <Xm/RowColumn.h>

const std::array<const char*, outline_point_size_list_count> outline_point_size_list = {"10", "12", "14",
                                                                                        "18", "24", "36"};

namespace {

constexpr const char* OUTLINE_RESOLUTION = "75 X 75";
constexpr char NO_CHARSET = '-';

std::string outline_resolution() {
    if (!gw::window_policy().explains_samples()) return OUTLINE_RESOLUTION;
    const std::string resolution = std::to_string(gw::screen_resolution());
    return resolution + " X " + resolution;
}

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
    gw::offer_encodings(record, elem);
    Widget current =
        replace_buttons(record->size_menu, record->size_pulldown, record->size_buttons, sizes_of(elem),
                        gw::thunk<sample_text_cb_struct, size_button_cb>, record);
    activate(record->size_menu, current != nullptr ? 1 : 0);
    if (current != nullptr) {
        size_button_cb(current, record, nullptr);
    } else {
        activate(record->res_menu, 0);
        gw::show_that_font_is_gone(*record);
    }
}

void size_button_cb(Widget button, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    record->size_button = button;
    const GWHRNElement* elem = gw::only_selected_element(*record);
    if (elem == nullptr) return;
    const bool outline = gw::is_outline(*elem);
    std::vector<std::string> resolutions = {outline_resolution()};
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
        gw::show_that_font_is_gone(*record);
    }
}

void res_button_cb(Widget button, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    record->res_button = button;
    const GWHRNElement* elem = gw::only_selected_element(*record);
    if (elem == nullptr || record->size_button == nullptr) return;
    const std::string decipoints = chosen_decipoints(*elem, gw::label_of(record->size_button));
    const gw::Ref<GWFont> font(elem->get_font(decipoints.c_str(), gw::label_of(button).c_str()));
    if (!font) return gw::show_that_font_is_gone(*record);
    gw::choose_encoding(*font, record->enc_menu != nullptr ? gw::chosen_entry(record->enc_menu) : "");
    gw::show_font(*record, font.get(), decipoints.c_str());
}

namespace gw {

namespace {

std::string charset_of(const std::string& xlfd) {
    const std::size_t encoding = xlfd.rfind('-');
    if (encoding == std::string::npos || encoding == 0) return "";
    const std::size_t registry = xlfd.rfind('-', encoding - 1);
    return registry == std::string::npos ? "" : xlfd.substr(registry + 1);
}

/// The charsets of the first font in the file, that of its XLFD name last.
std::vector<std::string> charsets_of(GWFont& font) {
    std::vector<std::string> charsets;
    const std::string current = charset_of(font.get_xlfd_name());
    for (const IndexName& name : font.get_index_names()) {
        const std::string charset = charset_of(name.xlfd);
        const bool is_new = std::find(charsets.begin(), charsets.end(), charset) == charsets.end();
        if (name.face == 0 && is_new && charset != current) charsets.push_back(charset);
    }
    std::sort(charsets.begin(), charsets.end());
    charsets.push_back(current);
    return charsets;
}

void encoding_button_cb(Widget /*button*/, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    if (record->res_button != nullptr) res_button_cb(record->res_button, record, nullptr);
}

}  // namespace

void offer_encodings(sample_text_cb_struct* record, const GWHRNElement& elem) {
    if (record->enc_menu == nullptr) return;
    GWFont* font = elem.get_representative();
    if (font == nullptr) return;
    std::vector<std::string> charsets = {charset_of(font->get_xlfd_name())};
    if (is_outline(elem)) charsets = charsets_of(*font);
    // A name that is no XLFD name has none; the menu keeps its size.
    if (charsets.back().empty()) charsets.back().push_back(NO_CHARSET);
    replace_buttons(record->enc_menu, record->enc_pulldown, record->enc_buttons, charsets,
                    thunk<sample_text_cb_struct, encoding_button_cb>, record);
    activate(record->enc_menu, charsets.size() > 1 ? 1 : 0);
}

void choose_encoding(GWFont& font, const std::string& charset) {
    for (const IndexName& name : font.get_index_names()) {
        if (name.face != 0 || charset_of(name.xlfd) != charset) continue;
        font.set_xlfd_name(name.xlfd.c_str());
        return;
    }
}

}  // namespace gw

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
