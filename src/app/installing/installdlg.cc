// SPDX-License-Identifier: MIT
#include "app/installing/installdlg.h"

#include <string>
#include <utility>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/help_requests.h"
#include "app/installing/convertdlg.h"
#include "app/installing/everyones_installation.h"
#include "app/installing/font_source.h"
#include "app/installing/given_files.h"
#include "app/installing/install_destination.h"
#include "app/installing/install_source.h"
#include "app/installing/installation.h"
#include "app/installing/notoffereddlg.h"
#include "app/installing/rmediadlg.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_text.h"
#include "app/samples/sample_text_cb.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/TextF.h>

Widget wi_install_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace installdlg;

constexpr int GAP = 8;

Widget _media_choice, _sample_textfield, _message_label, _install_button, _attr_button;

void set_status(const char* text) {
    update_label(_message_label, text, nullptr);
}

void close_dialog() {
    popdown_rmedia_dlg();
    popdown_dir_dlg();
    stop_not_offered_dlg();
    stop_convert_dlg();
    gw::stop_source_checks();
    clear_attributes();
    XtUnmanageChild(wi_install_dlg);
}

bool can_install() {
    // During a lookup the selection may be of fonts that the list will no longer show.
    if (gw::is_lookup_pending() || the_wp_cl_data.is_in_progress()) return false;
    if (explain_everyone(current_install_dir().c_str())) return false;
    const std::string refusal = prepare_destination();
    if (!refusal.empty()) set_status(refusal.c_str());
    return refusal.empty();
}

void install_selected() {
    if (!can_install()) return;
    std::vector<int> positions = gw::selected_positions(source_list());
    activate(_install_button, 0);
    close_dialog();
    if (positions.empty()) return;
    gw::deselect_all(source_list());
    if (needs_password(current_install_dir())) return start_everyones_installation(std::move(positions));
    start_installation(std::move(positions));
}

void install_cb(Widget, XtPointer, XtPointer) {
    if (!gw::window_policy().asks_before_converting()) return install_selected();
    if (!can_install()) return;
    const std::vector<std::string> converted =
        gw::conversions(current_hrn_list, gw::selected_positions(source_list()));
    if (converted.empty()) return install_selected();
    start_convert_dlg(converted, install_selected);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    close_dialog();
}

void refresh_on_popup_cb(Widget, XtPointer, XtPointer) {
    show_space_on_opening();
    // Larger numbers may have made it wider.
    popup_cb(wi_install_dlg, nullptr, nullptr);
    if (!gw::is_lookup_pending()) gw::start_source_checks();
}

// --- creation ----------------------------------------------------------------

/// Returns the separator above them.
Widget create_buttons(Widget dialog) {
    const gw::BottomRow row =
        gw::bottom_row(dialog, {"_message_label", "_button_form", "separator3"},
                       {{"_install_button", Message::INSTALL_BUTTON, install_cb},
                        {"_select_all_button", Message::SELECT_ALL, select_all_cb},
                        {"_attr_button", Message::INSTALL_ATTRIBUTES, attr_dlg_cb},
                        {"_cancel_button", Message::INSTALL_CANCEL, cancel_cb},
                        gw::help_button("_help_button", Message::INSTALL_HELP, gw::HelpSection::INSTALLING)});
    _message_label = row.message;
    _install_button = row.buttons[0];
    _attr_button = row.buttons[2];
    for (Widget w : {_install_button, _attr_button}) activate(w, 0);
    // With the keyboard too, the user comes to the source first.
    gw::end_dialog(dialog, {_install_button, row.buttons[3], _media_choice, cancel_cb});
    return row.separator;
}

/// These parts are attached to the bottom, from the buttons upwards. The list gets the rest of the height.
void create_lower_part(Widget dialog, Widget font_list) {
    Widget line = create_destination(dialog, create_buttons(dialog));
    _sample_textfield = gw::text_field(dialog, "_sample_textfield");
    XtAddCallback(_sample_textfield, XmNvalueChangedCallback, set_sample_text_cb, nullptr);
    activate(_sample_textfield, 0);
    if (gw::window_policy().explains_samples()) gw::explain_samples_in(_sample_textfield, _message_label);
    Attach(_sample_textfield).sides(GAP).above(line, GAP);
    Widget title = gw::label(dialog, "_sample_text_label", Message::INSTALL_SAMPLE);
    Attach(title).left_form(GAP).above(_sample_textfield, 2);
    Attach(font_list).above(title, GAP);
}

}  // namespace

namespace installdlg {

void install_dir_specified_cb(const char* dir) {
    choose_destination(dir);
    if (gw::selected_count(source_list()) > 0) activate(_install_button, 1);
}

}  // namespace installdlg

Widget create_install_dlg(const char* name, Widget parent) {
    wi_install_dlg = gw::form_dialog(parent, name, Message::INSTALL_TITLE);
    Widget line = create_source_choice(wi_install_dlg, _media_choice);
    Widget font_list = create_font_list(wi_install_dlg);
    Attach(font_list).below(line, GAP).sides(GAP);
    create_lower_part(wi_install_dlg, font_list);
    // The dialog must not shrink when the status line is empty.
    XtVaSetValues(wi_install_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    connect_source({_message_label, _install_button, _attr_button, _sample_textfield});
    XmTextFieldSetString(_sample_textfield, gw::name_arg(" "));
    choose_default_destination();
    XtAddCallback(XtParent(wi_install_dlg), XmNpopupCallback, refresh_on_popup_cb, nullptr);
    gw::BusyWindows::include(wi_install_dlg);
    gw::take_dropped_files(XtParent(wi_install_dlg));
    return wi_install_dlg;
}

void start_install_dlg_from(const std::string& dir) {
    clear_attributes();
    XtManageChild(wi_install_dlg);
    from_dir_specified_cb(dir.c_str());
}

void start_install_dlg_from(const std::vector<std::string>& paths) {
    clear_attributes();
    XtManageChild(wi_install_dlg);
    files_specified(paths);
}
