// SPDX-License-Identifier: MIT
#include "app/main_window/glyphwardapp.h"

#include <cstdlib>
#include <initializer_list>
#include <string>

#include "app/common/status_line.h"
#include "app/deleting/deletion.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/messages.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/printer/printerdlg.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"

#include <Xm/CascadeB.h>
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

Widget wi_delete_entry, wi_install_entry, wi_attributes_entry, wi_exit_entry;
Widget wi_modify_fp_entry, wi_fontsets_entry, wi_properties_entry;
Widget wi_pr_install_entry, wi_pr_delete_entry, wi_pr_modify_fp_entry;
Widget wi_help_entry, wi_about_entry;
Widget wi_delete_button, wi_attributes_button;

// --- menus -------------------------------------------------------------------

struct MenuEntry {
    Widget* handle;
    const char* name;
    Message text;
};

Widget cascade(Widget menu_bar, const char* name, Message text, Widget pulldown) {
    const gw::XmText string = gw::xm_text(gw::text_of(text));
    Arg args[2];
    XtSetArg(args[0], XmNlabelString, string.get());
    XtSetArg(args[1], XmNsubMenuId, pulldown);
    Widget button = XmCreateCascadeButton(menu_bar, gw::name_arg(name), args, 2);
    XtManageChild(button);
    return button;
}

void add_entries(Widget pulldown, std::initializer_list<MenuEntry> entries) {
    for (const MenuEntry& entry : entries)
        *entry.handle = gw::menu_button(pulldown, entry.name, gw::text_of(entry.text));
}

Widget pulldown_menu(Widget menu_bar, const char* name) {
    return XmCreatePulldownMenu(menu_bar, gw::name_arg(name), nullptr, 0);
}

void create_fonts_menu(Widget menu_bar) {
    Widget menu = pulldown_menu(menu_bar, "_fonts_pulldown");
    add_entries(menu, {{&wi_delete_entry, "_delete_button", Message::DELETE_ENTRY},
                       {&wi_install_entry, "_install_dlg_button", Message::INSTALL_ENTRY},
                       {&wi_attributes_entry, "_attributes_dlg_button", Message::ATTRIBUTES_ENTRY}});
    gw::separator(menu, "separator");
    add_entries(menu, {{&wi_exit_entry, "_exit_button", Message::EXIT_ENTRY}});
    cascade(menu_bar, "_fonts_cascade", Message::FONTS_MENU, menu);
}

void create_options_menu(Widget menu_bar) {
    Widget menu = pulldown_menu(menu_bar, "_options_pulldown");
    add_entries(menu, {{&wi_modify_fp_entry, "_modify_fp_dlg_button", Message::MODIFY_FP_ENTRY},
                       {&wi_fontsets_entry, "_fontsets_dlg_button", Message::FONTSETS_ENTRY},
                       {&wi_properties_entry, "_properties_dlg_button", Message::SAMPLE_TEXT_ENTRY}});
    if (Gw_resrc.fontset_support == False) XtUnmanageChild(wi_fontsets_entry);
    cascade(menu_bar, "_options_cascade", Message::OPTIONS_MENU, menu);
}

void create_printer_menu(Widget menu_bar) {
    Widget menu = pulldown_menu(menu_bar, "_printer_pulldown");
    add_entries(menu,
                {{&wi_pr_install_entry, "_pr_install_dlg_button", Message::PRINTER_INSTALL_ENTRY},
                 {&wi_pr_delete_entry, "_pr_delete_dlg_button", Message::PRINTER_DELETE_ENTRY},
                 {&wi_pr_modify_fp_entry, "_pr_modify_fp_dlg_button", Message::PRINTER_MODIFY_FP_ENTRY}});
    Widget button = cascade(menu_bar, "_printer_cascade", Message::PRINTER_MENU, menu);
    if (Gw_resrc.printer_support != False) return;
    for (Widget w : {wi_pr_install_entry, wi_pr_delete_entry, wi_pr_modify_fp_entry, button})
        XtUnmanageChild(w);
}

void create_help_menu(Widget menu_bar) {
    Widget menu = pulldown_menu(menu_bar, "_help_pulldown");
    add_entries(menu, {{&wi_help_entry, "_help_dlg_button", Message::HELP_ENTRY},
                       {&wi_about_entry, "_about_dlg_button", Message::ABOUT_ENTRY}});
    Widget button = cascade(menu_bar, "_help_cascade", Message::HELP_MENU, menu);
    XtVaSetValues(menu_bar, XmNmenuHelpWidget, button, nullptr);
}

Widget create_menu_bar(Widget main_window) {
    Widget menu_bar = XmCreateMenuBar(main_window, gw::name_arg("menuBar"), nullptr, 0);
    create_fonts_menu(menu_bar);
    create_options_menu(menu_bar);
    create_printer_menu(menu_bar);
    create_help_menu(menu_bar);
    XtManageChild(menu_bar);
    return menu_bar;
}

// --- work area ---------------------------------------------------------------

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

// --- what may be done ---------------------------------------------------------------

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

// --- other callbacks ---------------------------------------------------------

/// What an ordinary user gets instead of the font path dialog; made on first use and kept.
Widget root_only_dialog() {
    static Widget dialog = [] {
        return gw::message_dialog(wi_toplevel, "info dlg", XmDIALOG_INFORMATION,
                                  gw::text_of(Message::INFORMATION_TITLE), gw::text_of(Message::ROOT_ONLY),
                                  {XmDIALOG_HELP_BUTTON, XmDIALOG_CANCEL_BUTTON});
    }();
    return dialog;
}

void modify_fp_dlg_cb(Widget, XtPointer, XtPointer) {
    if (user_is_root != 0) {
        start_modify_fp_dlg();
    } else {
        XtManageChild(root_only_dialog());
    }
}

void install_dlg_cb(Widget, XtPointer, XtPointer) {
    clear_attributes();
    XtManageChild(wi_install_dlg);
}

void help_dlg_cb(Widget, XtPointer, XtPointer) {
    start_help_dlg();
}

void about_dlg_cb(Widget, XtPointer, XtPointer) {
    start_about_dlg();
}

void fontsets_dlg_cb(Widget, XtPointer, XtPointer) {
    start_fontsets_dlg();
}

void pr_install_dlg_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(wi_pr_install_dlg);
}

void pr_delete_dlg_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(wi_pr_delete_dlg);
}

void pr_modify_fp_dlg_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(wi_pr_modify_fp_dlg);
}

void props_dlg_cb(Widget, XtPointer, XtPointer) {
    start_props_dlg();
}

void attach_callbacks() {
    XtAddCallback(wi_install_entry, XmNactivateCallback, install_dlg_cb, nullptr);
    XtAddCallback(wi_delete_entry, XmNactivateCallback, delete_btn_cb, nullptr);
    XtAddCallback(wi_help_entry, XmNactivateCallback, help_dlg_cb, nullptr);
    XtAddCallback(wi_about_entry, XmNactivateCallback, about_dlg_cb, nullptr);
    XtAddCallback(wi_modify_fp_entry, XmNactivateCallback, modify_fp_dlg_cb, nullptr);
    XtAddCallback(wi_fontsets_entry, XmNactivateCallback, fontsets_dlg_cb, nullptr);
    XtAddCallback(wi_pr_install_entry, XmNactivateCallback, pr_install_dlg_cb, nullptr);
    XtAddCallback(wi_pr_delete_entry, XmNactivateCallback, pr_delete_dlg_cb, nullptr);
    XtAddCallback(wi_pr_modify_fp_entry, XmNactivateCallback, pr_modify_fp_dlg_cb, nullptr);
    XtAddCallback(wi_attributes_entry, XmNactivateCallback, gw::show_selected_attributes_cb, nullptr);
    XtAddCallback(wi_exit_entry, XmNactivateCallback, exit_btn_cb, nullptr);
    XtAddCallback(wi_properties_entry, XmNactivateCallback, props_dlg_cb, nullptr);
    gw::on_close_box(wi_mainwindow, exit_btn_cb);
    gw::selection_changes().connect(selection_changed);
    gw::work_permissions().connect(work_permitted);
    gw::start_installed_list();
    // The sample text belongs to a user.
    if (uid == 0) activate(wi_properties_entry, 0);
}

}  // namespace

void exit_btn_cb(Widget, XtPointer, XtPointer) {
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
    wi_main_window_status_label = gw::label(wi_mainwindow, "_status_message", " ");
    XtVaSetValues(wi_mainwindow, XmNmenuBar, menu_bar, XmNworkWindow, work_area, XmNmessageWindow,
                  wi_main_window_status_label, nullptr);
    gw::BusyWindows::include(wi_mainwindow);
    attach_callbacks();
    XtManageChild(wi_mainwindow);
    XmProcessTraversal(wi_hrn_list, XmTRAVERSE_CURRENT);
}
