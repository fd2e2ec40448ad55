// SPDX-License-Identifier: MIT
#include "app/samples/installed_list.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/common/status_line.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/mnemonics.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/program/window_policy.h"
#include "app/samples/attrdlg.h"
#include "app/samples/enlarged_sample.h"
#include "app/samples/font_lists.h"
#include "app/samples/list_search.h"
#include "app/samples/live_list.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_menus.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text.h"
#include "app/samples/sample_text_cb.h"
#include "app/samples/served_marks.h"
#include "core/font_policy.h"
#include "core/text.h"
#include "fontpath/path_element.h"
#include "texts/messages.h"

#include <Xm/List.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>

Widget wi_hrn_list = nullptr;
Widget wi_installed_sample_textfield = nullptr;

namespace {

using gw::Message;

constexpr int GAP = 8;
constexpr int VISIBLE_NAMES = 12;

Widget wi_disk_space_val = nullptr;
gw::OptionMenu size_option_menu, res_option_menu, enc_option_menu;

Widget wi_why_button = nullptr;  // null where windows do not find missing fonts
std::string without_sample;      // the name of the font that the button is about

sample_text_cb_struct installed_sample;
constexpr XtCallbackProc SHOW_SAMPLE = gw::thunk<sample_text_cb_struct, hrn_list_sample_cb>;

// --- selection ---------------------------------------------------------------

void clear_status_label_cb(Widget, XtPointer, XtPointer) {
    update_label(wi_main_window_status_label, " ", nullptr);
}

void hrn_list_deactivate_cb(Widget list, XtPointer, XtPointer) {
    activate_selection_controls(gw::selected_count(list));
}

// Kept: the last font ends the sum of disk space. Aliases add nothing either.
void calc_disk_space_cb(Widget list, XtPointer, XtPointer) {
    unsigned kilobytes = 0;
    for (const int position : gw::selected_positions(list)) {
        if (!gw::installed_entries().is_before_last_font(position)) break;
        kilobytes += the_installed_hrn_list.get_disk_space(static_cast<unsigned>(position));
    }
    update_label(wi_disk_space_val, gw::text_of(Message::KILOBYTES, kilobytes).c_str(), nullptr);
}

void show_changed_sample_text(Widget typed_into) {
    if (typed_into == wi_installed_sample_textfield || gw::selected_count(wi_hrn_list) != 1) return;
    XmTextFieldSetString(wi_installed_sample_textfield, gw::name_arg(sample_text.c_str()));
}

/// Says in the status line what the list lacks, and no longer what it does not lack any more.
void show_what_is_lacking() {
    static std::string shown;
    const std::string lacks = gw::take_listing_failures();
    const bool is_out_of_date = !shown.empty() && gw::label_of(wi_main_window_status_label) == shown;
    if (lacks.empty() && !is_out_of_date) return;
    shown = lacks;
    update_label(wi_main_window_status_label, lacks.empty() ? " " : lacks.c_str(), nullptr);
}

// --- a font without a sample ---------------------------------------------------

void why_cb(Widget, XtPointer, XtPointer) {
    // A copy: what is asked may change the selection.
    const std::string name = without_sample;
    if (!name.empty()) gw::why_requests().emit(name);
}

/// The button is beside the field while that is empty.
void offer_why(Widget field, const std::string& name) {
    if (field != wi_installed_sample_textfield || wi_why_button == nullptr) return;
    without_sample = name;
    if (name.empty() != (XtIsManaged(wi_why_button) != False)) return;
    if (name.empty()) {
        gw::Attach(field).right_form(GAP);
        XtUnmanageChild(wi_why_button);
    } else {
        XtManageChild(wi_why_button);
        gw::Attach(field).left_of(wi_why_button, GAP);
    }
}

void create_why_button(Widget form) {
    wi_why_button = gw::push_button(form, "_why_button", Message::WHY_BUTTON);
    XtAddCallback(wi_why_button, XmNactivateCallback, why_cb, nullptr);
    XtUnmanageChild(wi_why_button);
    Dimension height = 0;
    XtVaGetValues(wi_installed_sample_textfield, XmNheight, &height, nullptr);
    const int offset = std::max((height - gw::natural_height(wi_why_button)) / 2, 0);
    gw::Attach(wi_why_button).right_form(GAP).above(size_option_menu.menu, GAP + offset);
    gw::sample_absences().connect(offer_why);
}

// --- searching -----------------------------------------------------------------

/// It lives as long as the list does, which nothing destroys.
gw::ListSearch& installed_search() {
    static auto* const search = new gw::ListSearch;  // NOLINT(cppcoreguidelines-owning-memory)
    return *search;
}

std::vector<gw::SearchedRow> installed_rows() {
    std::vector<gw::SearchedRow> rows;
    for (const GWHRNElement* element : the_installed_hrn_list) rows.push_back(gw::searched_row(*element));
    for (const GWAlias* alias : the_alias_list) rows.push_back(gw::searched_row(*alias));
    return rows;
}

/// Whether the directory is below the user's home, or on the user's own part of the font path.
bool is_own_directory(const std::string& directory) {
    const char* home = std::getenv("HOME");
    if (home != nullptr && *home == '/' && directory.starts_with(gw::with_trailing_slash(home))) return true;
    for (const GWFontPath::TYPE own : {GWFontPath::USER_PREPEND_FP, GWFontPath::USER_APPEND_FP}) {
        unsigned count = 0;
        for (const GW_STRING* element : *the_font_path->get_fpe_list(own, count)) {
            if (gw::with_trailing_slash(gw::directory_of_element(element->get_str())) == directory)
                return true;
        }
    }
    return false;
}

// --- creation ----------------------------------------------------------------

void add_selection_callback(XtCallbackProc callback, XtPointer client_data) {
    XtAddCallback(wi_hrn_list, XmNextendedSelectionCallback, callback, client_data);
}

void attach_callbacks() {
    XtAddCallback(wi_installed_sample_textfield, XmNvalueChangedCallback, set_sample_text_cb, nullptr);
    gw::sample_text_changes().connect(show_changed_sample_text);
    add_selection_callback(SHOW_SAMPLE, &installed_sample);
    add_selection_callback(clear_status_label_cb, nullptr);
    add_selection_callback(hrn_list_deactivate_cb, &installed_sample);
    add_selection_callback(calc_disk_space_cb, nullptr);
}

void set_installed_sample_text_cb_struct() {
    installed_sample = {};
    installed_sample.sample_field = wi_installed_sample_textfield;
    installed_sample.size_menu = size_option_menu.menu;
    installed_sample.res_menu = res_option_menu.menu;
    installed_sample.res_pulldown = res_option_menu.pulldown;
    installed_sample.size_pulldown = size_option_menu.pulldown;
    installed_sample.enc_menu = enc_option_menu.menu;
    installed_sample.enc_pulldown = enc_option_menu.pulldown;
    installed_sample.list = wi_hrn_list;
    installed_sample.hrn_list = &the_installed_hrn_list;
}

/// The menu of encodings, at the bottom of the form; null unless windows offer them.
Widget create_encoding_menu(Widget form) {
    enc_option_menu = {};
    if (!gw::window_policy().explains_samples() || !gw::font_policy().enters_all_names()) return nullptr;
    gw::create_enlarged_sample(form, wi_installed_sample_textfield, gw::enlargement(gw::screen_resolution()));
    Widget text = gw::label(form, "_enc_option_label", Message::ENCODING_LABEL);
    enc_option_menu = gw::option_menu(form, "_enc_option_menu", "encMenu", "iso8859-1");
    gw::label_for(text, XmOptionButtonGadget(enc_option_menu.menu));
    activate(enc_option_menu.menu, 0);
    gw::Attach(text).left_form(GAP).bottom_form(GAP + 7);
    gw::Attach(enc_option_menu.menu).right_of(text, 0).bottom_form(GAP);
    return enc_option_menu.menu;
}

}  // namespace

namespace gw {

// The list gets the rest of the height; sample and menus are attached to the bottom.
void create_installed_list(Widget form) {
    Widget title = label(form, "_fontlist_label", Message::INSTALLED_FONTS);
    Attach(title).top_form(GAP).left_form(GAP);
    const bool is_searched = window_policy().searches_lists();
    Widget above =
        is_searched ? installed_search().create(form, title, GAP, {.aliases = true, .scope = true}) : title;
    wi_hrn_list = scrolled_list(form, "_hrn_list");
    if (is_searched) installed_search().attach(wi_hrn_list, {installed_rows, is_own_directory});
    XtVaSetValues(wi_hrn_list, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    wi_installed_sample_textfield = text_field(form, "_sample_textfield");

    Widget size_label = label(form, "_size_option_label", Message::SIZE_LABEL);
    size_option_menu = option_menu(form, "_size_option_menu", "sizeMenu", "8");
    Widget res_label = label(form, "_res_option_label", Message::RESOLUTION_LABEL);
    res_option_menu = option_menu(form, "_res_option_menu", "resMenu", "75 X 75");
    activate(size_option_menu.menu, 0);
    activate(res_option_menu.menu, 0);

    Widget below = create_encoding_menu(form);
    const auto at_bottom = [below](Widget part, int gap) {
        Attach attached(part);
        return below != nullptr ? attached.above(below, gap) : attached.bottom_form(gap);
    };
    at_bottom(size_label, GAP + 7).left_form(GAP);
    at_bottom(size_option_menu.menu, GAP).right_of(size_label, 0);
    at_bottom(res_label, GAP + 7).right_of(size_option_menu.menu, 3 * GAP);
    at_bottom(res_option_menu.menu, GAP).right_of(res_label, 0);
    Attach(wi_installed_sample_textfield).sides(GAP).above(size_option_menu.menu, GAP);
    wi_why_button = nullptr;
    if (window_policy().finds_missing_fonts()) create_why_button(form);
    Attach(XtParent(wi_hrn_list)).below(above, 2).sides(GAP).above(wi_installed_sample_textfield, GAP);
}

Widget create_disk_space_line(Widget parent, Widget below) {
    Widget text = label(parent, "_disk_space_label", Message::DISK_SPACE_LABEL);
    wi_disk_space_val = label(parent, "_disk_space_val", " ");
    Attach(text).left_form(GAP).above(below, GAP);
    Attach(wi_disk_space_val).right_of(text, 0).right_form(GAP).above(below, GAP);
    return wi_disk_space_val;
}

void start_installed_list() {
    attach_callbacks();
    if (window_policy().shows_live_path()) follow_other_programs();
    update_wi_installed_hrn_list();
    init_sample_text_cb_module();
    set_installed_sample_text_cb_struct();
    if (window_policy().explains_samples()) {
        explain_samples_in(wi_installed_sample_textfield, wi_main_window_status_label);
        show_main_samples_last();
    }
    activate_selection_controls(0);
}

// Kept: the last font counts as an alias.
void show_selected_attributes_cb(Widget, XtPointer, XtPointer) {
    const int position = selected_position(wi_hrn_list);
    if (position == 0) return;
    const ShownList entries = installed_entries();
    const bool shows_all = window_policy().shows_attributes_of_all();
    if (shows_all ? entries.font_at(position) == nullptr : !entries.is_before_last_font(position)) {
        const GWAlias* alias = entries.alias_at(shows_all ? position : position + 1);
        if (alias != nullptr) show_alias_attributes(alias);
        return;
    }
    const GWHRNElement* elem = entries.font_at(position);
    if (elem == nullptr) return;
    const std::string decipoints = chosen_decipoints(*elem, chosen_entry(size_option_menu.menu));
    const std::string resolution = chosen_entry(res_option_menu.menu);
    const Ref<GWFont> font(elem->get_font(decipoints.c_str(), resolution.c_str()));
    if (font) show_font_attributes(font.get(), nullptr, elem);
}

Signal<int>& selection_changes() {
    static Signal<int> changes;
    return changes;
}

Signal<const std::string&>& why_requests() {
    static Signal<const std::string&> requests;
    return requests;
}

}  // namespace gw

void update_wi_installed_hrn_list() {
    the_installed_hrn_list.tell_apart();
    if (gw::window_policy().shows_live_path()) {
        gw::fill_list(wi_hrn_list, gw::marked_rows());
        gw::note_shown_fonts();
    } else {
        update_wi_hrn_list(wi_hrn_list, the_installed_hrn_list);
        display_alias_list(wi_hrn_list, the_alias_list);
    }
    show_what_is_lacking();
}

void activate_selection_controls(int selected) {
    gw::selection_changes().emit(selected);
}

void forget_selection() {
    gw::deselect_all(wi_hrn_list);
    clear_sample_textfield(wi_installed_sample_textfield);
    for (Widget w :
         {size_option_menu.menu, res_option_menu.menu, enc_option_menu.menu, wi_installed_sample_textfield}) {
        if (w != nullptr) activate(w, 0);
    }
    update_label(wi_disk_space_val, " ", nullptr);
    activate_selection_controls(0);
}

void select_in_installed_list(const std::vector<int>& positions) {
    forget_selection();
    if (positions.empty()) return;
    gw::ListSearch& search = installed_search();
    if (!std::all_of(positions.begin(), positions.end(),
                     [&](int position) { return search.shows(position); }))
        search.clear();
    gw::select_too(wi_hrn_list, positions);
    gw::show_position(wi_hrn_list, positions.front());
    XmListCallbackStruct selected = {};
    selected.reason = XmCR_EXTENDED_SELECT;
    XtCallCallbacks(wi_hrn_list, XmNextendedSelectionCallback, &selected);
}

void show_main_samples_last() {
    XtRemoveCallback(wi_hrn_list, XmNextendedSelectionCallback, SHOW_SAMPLE, &installed_sample);
    add_selection_callback(SHOW_SAMPLE, &installed_sample);
}
