// SPDX-License-Identifier: MIT
#include "app/samples/installed_list.h"

#include <string>
#include <vector>

#include "app/common/status_line.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/messages.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/samples/attrdlg.h"
#include "app/samples/font_lists.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_menus.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text.h"
#include "app/samples/sample_text_cb.h"

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
gw::OptionMenu size_option_menu, res_option_menu;

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
    installed_sample.list = wi_hrn_list;
    installed_sample.hrn_list = &the_installed_hrn_list;
}

}  // namespace

namespace gw {

// The list gets the rest of the height; sample and menus are attached to the bottom.
void create_installed_list(Widget form) {
    Widget title = label(form, "_fontlist_label", Message::INSTALLED_FONTS);
    Attach(title).top_form(GAP).left_form(GAP);
    wi_hrn_list = scrolled_list(form, "_hrn_list");
    XtVaSetValues(wi_hrn_list, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    wi_installed_sample_textfield = text_field(form, "_sample_textfield");

    Widget size_label = label(form, "_size_option_label", Message::SIZE_LABEL);
    size_option_menu = option_menu(form, "_size_option_menu", "sizeMenu", "8");
    Widget res_label = label(form, "_res_option_label", Message::RESOLUTION_LABEL);
    res_option_menu = option_menu(form, "_res_option_menu", "resMenu", "75 X 75");
    activate(size_option_menu.menu, 0);
    activate(res_option_menu.menu, 0);

    Attach(size_label).left_form(GAP).bottom_form(GAP + 7);
    Attach(size_option_menu.menu).right_of(size_label, 0).bottom_form(GAP);
    Attach(res_label).right_of(size_option_menu.menu, 3 * GAP).bottom_form(GAP + 7);
    Attach(res_option_menu.menu).right_of(res_label, 0).bottom_form(GAP);
    Attach(wi_installed_sample_textfield).sides(GAP).above(size_option_menu.menu, GAP);
    Attach(XtParent(wi_hrn_list)).below(title, 2).sides(GAP).above(wi_installed_sample_textfield, GAP);
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
    update_wi_installed_hrn_list();
    init_sample_text_cb_module();
    set_installed_sample_text_cb_struct();
    activate_selection_controls(0);
}

// Kept: the last font counts as an alias.
void show_selected_attributes_cb(Widget, XtPointer, XtPointer) {
    const int position = selected_position(wi_hrn_list);
    if (position == 0) return;
    const ShownList entries = installed_entries();
    if (!entries.is_before_last_font(position)) {
        const GWAlias* alias = entries.alias_at(position + 1);
        if (alias != nullptr) show_alias_attributes(alias);
        return;
    }
    const GWHRNElement* elem = entries.font_at(position);
    if (elem == nullptr) return;
    const std::string decipoints = chosen_decipoints(*elem, chosen_entry(size_option_menu.menu));
    const std::string resolution = chosen_entry(res_option_menu.menu);
    const Ref<GWFont> font(elem->get_font(decipoints.c_str(), resolution.c_str()));
    if (font) show_font_attributes(font.get(), nullptr);
}

Signal<int>& selection_changes() {
    static Signal<int> changes;
    return changes;
}

}  // namespace gw

void update_wi_installed_hrn_list() {
    update_wi_hrn_list(wi_hrn_list, the_installed_hrn_list);
    display_alias_list(wi_hrn_list, the_alias_list);
    show_what_is_lacking();
}

void activate_selection_controls(int selected) {
    gw::selection_changes().emit(selected);
}

void forget_selection() {
    XmListDeselectAllItems(wi_hrn_list);
    clear_sample_textfield(wi_installed_sample_textfield);
    for (Widget w : {size_option_menu.menu, res_option_menu.menu, wi_installed_sample_textfield})
        activate(w, 0);
    update_label(wi_disk_space_val, " ", nullptr);
    activate_selection_controls(0);
}

void show_main_samples_last() {
    XtRemoveCallback(wi_hrn_list, XmNextendedSelectionCallback, SHOW_SAMPLE, &installed_sample);
    add_selection_callback(SHOW_SAMPLE, &installed_sample);
}
