// SPDX-License-Identifier: MIT
#include "app/main_window/glyphwardapp.h"

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "app/common/help_requests.h"
#include "app/deleting/deletedfontsdlg.h"
#include "app/deleting/deletion.h"
#include "app/doctor/doctordlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/main_window/undo_line.h"
#include "app/printer/printerdlg.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/MainW.h>
#include <Xm/MessageB.h>
#include <Xm/RowColumn.h>

Widget wi_mainwindow = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;

Widget wi_delete_entry, wi_install_entry, wi_attributes_entry, wi_fontsets_entry, wi_properties_entry;
Widget wi_delete_button, wi_attributes_button;

// --- what may be done -------------------------------------------------------

void activate_delete(bool on) {
    for (Widget w : {wi_delete_entry, wi_delete_button})
        activate(w, on && !the_wp_cl_data.is_in_progress() ? 1 : 0);
}

void activate_attributes(bool on) {
    for (Widget w : {wi_attributes_entry, wi_attributes_button}) activate(w, on ? 1 : 0);
}

void selection_changed(int selected) {
    const gw::SelectionRights rights = gw::selection_rights(selected);
    activate_delete(rights.may_delete);
    activate_attributes(rights.may_show_attributes);
}

void work_permitted(bool permitted) {
    activate(wi_install_entry, permitted ? 1 : 0);
    if (permitted) {
        selection_changed(gw::selected_count(wi_hrn_list));
    } else {
        activate_delete(false);
    }
}

// --- opening dialogs --------------------------------------------------------

/// An ordinary user gets this instead of the font path dialog. Made on first use and kept.
Widget root_only_dialog() {
    static Widget dialog = [] {
        return gw::message_dialog(wi_toplevel, "info dlg", XmDIALOG_INFORMATION,
                                  gw::text_of(Message::INFORMATION_TITLE), gw::text_of(Message::ROOT_ONLY),
                                  {XmDIALOG_HELP_BUTTON, XmDIALOG_CANCEL_BUTTON});
    }();
    return dialog;
}

void modify_fp_dlg_cb(Widget, XtPointer, XtPointer) {
    if (user_is_root != 0 || gw::window_policy().shows_live_path()) {
        start_modify_fp_dlg();
    } else {
        XtManageChild(root_only_dialog());
    }
}

void install_dlg_cb(Widget, XtPointer, XtPointer) {
    clear_attributes();
    XtManageChild(wi_install_dlg);
}

void why_requested(const std::string& name) {
    start_doctor_dlg_about(name);
}

// --- menus ------------------------------------------------------------------

const gw::MenuEntry FONTS_MENU[] = {
    {"_delete_button", Message::DELETE_ENTRY, delete_btn_cb, &wi_delete_entry},
    {"_install_dlg_button", Message::INSTALL_ENTRY, install_dlg_cb, &wi_install_entry},
    {"_attributes_dlg_button", Message::ATTRIBUTES_ENTRY, gw::show_selected_attributes_cb,
     &wi_attributes_entry},
    {"separator"},
    {"_exit_button", Message::EXIT_ENTRY, exit_btn_cb},
};
const gw::MenuEntry OPTIONS_MENU[] = {
    {"_modify_fp_dlg_button", Message::MODIFY_FP_ENTRY, modify_fp_dlg_cb},
    {"_fontsets_dlg_button", Message::FONTSETS_ENTRY, gw::call_cb<start_fontsets_dlg>, &wi_fontsets_entry},
    {"_properties_dlg_button", Message::SAMPLE_TEXT_ENTRY, gw::call_cb<start_props_dlg>,
     &wi_properties_entry},
};
const gw::MenuEntry PRINTER_MENU[] = {
    {"_pr_install_dlg_button", Message::PRINTER_INSTALL_ENTRY, gw::show_cb<wi_pr_install_dlg>},
    {"_pr_delete_dlg_button", Message::PRINTER_DELETE_ENTRY, gw::show_cb<wi_pr_delete_dlg>},
    {"_pr_modify_fp_dlg_button", Message::PRINTER_MODIFY_FP_ENTRY, gw::show_cb<wi_pr_modify_fp_dlg>},
};
const gw::MenuEntry TOOLS_MENU[] = {
    {"_doctor_dlg_button", Message::DOCTOR_ENTRY, gw::call_cb<start_doctor_dlg>},
    {"_deleted_fonts_dlg_button", Message::DELETED_FONTS_ENTRY, gw::call_cb<start_deleted_fonts_dlg>},
};
const gw::MenuEntry HELP_MENU[] = {
    {"_help_dlg_button", Message::HELP_ENTRY, gw::call_cb<start_help_dlg>},
    {"_about_dlg_button", Message::ABOUT_ENTRY, gw::call_cb<start_about_dlg>},
};

void create_printer_menu(Widget menu_bar) {
    const gw::Menu menu = gw::pulldown_menu(menu_bar, {"_printer_pulldown", "_printer_cascade"},
                                            Message::PRINTER_MENU, PRINTER_MENU);
    if (Gw_resrc.printer_support != False) return;
    for (Widget entry : gw::entries_of(menu.pulldown)) XtUnmanageChild(entry);
    XtUnmanageChild(menu.cascade);
}

Widget create_menu_bar(Widget main_window) {
    Widget menu_bar = XmCreateMenuBar(main_window, gw::name_arg("menuBar"), nullptr, 0);
    gw::pulldown_menu(menu_bar, {"_fonts_pulldown", "_fonts_cascade"}, Message::FONTS_MENU, FONTS_MENU);
    gw::pulldown_menu(menu_bar, {"_options_pulldown", "_options_cascade"}, Message::OPTIONS_MENU,
                      OPTIONS_MENU);
    if (!gw::has_fontsets()) XtUnmanageChild(wi_fontsets_entry);
    create_printer_menu(menu_bar);
    if (gw::window_policy().finds_missing_fonts())
        gw::pulldown_menu(menu_bar, {"_tools_pulldown", "_tools_cascade"}, Message::TOOLS_MENU, TOOLS_MENU);
    const gw::Menu help =
        gw::pulldown_menu(menu_bar, {"_help_pulldown", "_help_cascade"}, Message::HELP_MENU, HELP_MENU);
    XtVaSetValues(menu_bar, XmNmenuHelpWidget, help.cascade, nullptr);
    XtManageChild(menu_bar);
    return menu_bar;
}

// --- work area --------------------------------------------------------------

Widget create_commands(Widget parent) {
    Widget commands = gw::form(parent, "_command_form");
    Attach(commands).sides(0).bottom_form(GAP);
    const std::vector<Widget> buttons = gw::fill_with_buttons(
        commands, {{"_delete_button", Message::DELETE_BUTTON, delete_btn_cb, nullptr, 15, 40},
                   {"_attributes_button1", Message::ATTRIBUTES_BUTTON, gw::show_selected_attributes_cb,
                    nullptr, 60, 85}});
    wi_delete_button = buttons[0];
    wi_attributes_button = buttons[1];
    return commands;
}

Widget create_work_area(Widget main_window) {
    Widget form = gw::form(main_window, "form");
    Widget font_list = gw::form(form, "FontListTemplate");
    Widget commands = create_commands(form);
    // Kept: one widget name is misspelled.
    Widget line = gw::separator(form, "_command_seperator");
    Attach(line).sides(0).above(commands, GAP);
    Widget disk_space = gw::create_disk_space_line(form, line);
    gw::create_installed_list(font_list);
    Attach(font_list).top_form(0).sides(0).above(disk_space, GAP);
    return form;
}

/// The toolkit would begin in the field above the list.
void begin_in_list(Widget shell, XtPointer, XEvent* event, Boolean*) {
    if (event->type != MapNotify) return;
    XtRemoveEventHandler(shell, StructureNotifyMask, False, begin_in_list, nullptr);
    XmProcessTraversal(wi_hrn_list, XmTRAVERSE_CURRENT);
}

}  // namespace

void exit_btn_cb(Widget, XtPointer, XtPointer) {
    gw::keep_what_is_done();
    gw::stop_source_preview();
    gw::close_catalogue();
    std::exit(0);
}

void create_font_admin_main_window() {
    wi_mainwindow = XmCreateMainWindow(wi_toplevel, gw::name_arg("mainWindow"), nullptr, 0);
    XtVaSetValues(wi_toplevel, XmNtitle, gw::text_of(Message::MAIN_TITLE), XmNiconName,
                  gw::text_of(Message::MAIN_TITLE), nullptr);
    Widget menu_bar = create_menu_bar(wi_mainwindow);
    Widget work_area = create_work_area(wi_mainwindow);
    Widget status_line = gw::create_status_line(wi_mainwindow);
    XtVaSetValues(wi_mainwindow, XmNmenuBar, menu_bar, XmNworkWindow, work_area, XmNmessageWindow,
                  status_line, nullptr);
    gw::BusyWindows::include(wi_mainwindow);
    gw::on_close_box(wi_mainwindow, exit_btn_cb);
    gw::selection_changes().connect(selection_changed);
    gw::work_permissions().connect(work_permitted);
    gw::why_requests().connect(why_requested);
    gw::help_requests().connect(start_help_dlg_at);
    gw::start_installed_list();
    // The superuser has no sample text of their own.
    if (gw::user_is_superuser()) activate(wi_properties_entry, 0);
    if (gw::window_policy().searches_lists())
        XtAddEventHandler(wi_toplevel, StructureNotifyMask, False, begin_in_list, nullptr);
    XtManageChild(wi_mainwindow);
    XmProcessTraversal(wi_hrn_list, XmTRAVERSE_CURRENT);
}
