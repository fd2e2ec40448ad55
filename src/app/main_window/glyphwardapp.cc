// SPDX-License-Identifier: MIT
#include "app/main_window/glyphwardapp.h"

#include <cstdlib>
#include <initializer_list>
#include <string>

#include "app/deleting/deletion.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/printer/printerdlg.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/rc_sample_text.h"
#include "app/samples/sample_text_cb.h"

#include <Xm/CascadeB.h>
#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/MainW.h>
#include <Xm/MessageB.h>
#include <Xm/RowColumn.h>

Widget wi_mainwindow = nullptr;
Widget wi_hrn_list = nullptr;
Widget wi_installed_sample_textfield = nullptr;
Widget wi_main_window_status_label = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;
constexpr int VISIBLE_NAMES = 12;

Widget wi_delete_entry, wi_install_entry, wi_attributes_entry, wi_exit_entry;
Widget wi_modify_fp_entry, wi_fontsets_entry, wi_properties_entry;
Widget wi_pr_install_entry, wi_pr_delete_entry, wi_pr_modify_fp_entry;
Widget wi_help_entry, wi_about_entry;
Widget wi_delete_button, wi_attributes_button, wi_disk_space_val;
gw::OptionMenu size_option_menu, res_option_menu;

sample_text_cb_struct installed_sample;
constexpr XtCallbackProc SHOW_SAMPLE = gw::thunk<sample_text_cb_struct, hrn_list_sample_cb>;

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

// The list takes what height there is; sample and menus keep to the bottom.
void create_font_list(Widget parent) {
    Widget title = gw::label(parent, "_fontlist_label", Message::INSTALLED_FONTS);
    Attach(title).top_form(GAP).left_form(GAP);
    wi_hrn_list = gw::scrolled_list(parent, "_hrn_list");
    XtVaSetValues(wi_hrn_list, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    wi_installed_sample_textfield = gw::text_field(parent, "_sample_textfield");

    Widget size_label = gw::label(parent, "_size_option_label", Message::SIZE_LABEL);
    size_option_menu = gw::option_menu(parent, "_size_option_menu", "sizeMenu", "8");
    Widget res_label = gw::label(parent, "_res_option_label", Message::RESOLUTION_LABEL);
    res_option_menu = gw::option_menu(parent, "_res_option_menu", "resMenu", "75 X 75");
    activate(size_option_menu.menu, 0);
    activate(res_option_menu.menu, 0);

    Attach(size_label).left_form(GAP).bottom_form(GAP + 7);
    Attach(size_option_menu.menu).right_of(size_label, 0).bottom_form(GAP);
    Attach(res_label).right_of(size_option_menu.menu, 3 * GAP).bottom_form(GAP + 7);
    Attach(res_option_menu.menu).right_of(res_label, 0).bottom_form(GAP);
    Attach(wi_installed_sample_textfield).sides(GAP).above(size_option_menu.menu, GAP);
    Attach(XtParent(wi_hrn_list)).below(title, 2).sides(GAP).above(wi_installed_sample_textfield, GAP);
}

void create_disk_space_line(Widget parent, Widget below) {
    Widget text = gw::label(parent, "_disk_space_label", Message::DISK_SPACE_LABEL);
    wi_disk_space_val = gw::label(parent, "_disk_space_val", " ");
    Attach(text).left_form(GAP).above(below, GAP);
    Attach(wi_disk_space_val).right_of(text, 0).right_form(GAP).above(below, GAP);
}

Widget create_commands(Widget parent) {
    Widget commands = gw::form(parent, "_command_form");
    Attach(commands).sides(0).bottom_form(GAP);
    wi_delete_button = gw::push_button(commands, "_delete_button", Message::DELETE_BUTTON);
    Attach(wi_delete_button).top_form(0).bottom_form(0).columns(15, 40);
    wi_attributes_button = gw::push_button(commands, "_attributes_button1", Message::ATTRIBUTES_BUTTON);
    Attach(wi_attributes_button).top_form(0).bottom_form(0).columns(60, 85);
    return commands;
}

Widget create_work_area(Widget main_window) {
    Widget form = gw::form(main_window, "form");
    Widget font_list = gw::form(form, "FontListTemplate");
    Widget commands = create_commands(form);
    Widget line = gw::separator(form, "_command_seperator");
    Attach(line).sides(0).above(commands, GAP);
    create_disk_space_line(form, line);
    create_font_list(font_list);
    Attach(font_list).top_form(0).sides(0).above(wi_disk_space_val, GAP);
    return form;
}

// --- selection ---------------------------------------------------------------

void clear_status_label_cb(Widget, XtPointer, XtPointer) {
    update_label(wi_main_window_status_label, " ", nullptr);
}

void activate_delete(bool on) {
    for (Widget w : {wi_delete_entry, wi_delete_button})
        activate(w, on && !the_wp_cl_data.is_in_progress() ? 1 : 0);
}

void activate_attributes(bool on) {
    for (Widget w : {wi_attributes_entry, wi_attributes_button}) activate(w, on ? 1 : 0);
}

void hrn_list_deactivate_cb(Widget list, XtPointer, XtPointer) {
    activate_selection_controls(gw::selected_count(list));
}

// The sum ends at the first position that is not below the number of fonts: aliases add nothing, and neither
// does the last font.
void calc_disk_space_cb(Widget list, XtPointer, XtPointer) {
    unsigned kilobytes = 0;
    for (const int position : gw::selected_positions(list)) {
        if (position >= the_installed_hrn_count) break;
        kilobytes += the_installed_hrn_list.get_disk_space(static_cast<unsigned>(position));
    }
    update_label(wi_disk_space_val, gw::text_of(Message::KILOBYTES, kilobytes).c_str(), nullptr);
}

std::string current_choice(Widget option_menu) {
    Widget button = nullptr;
    XtVaGetValues(option_menu, XmNmenuHistory, &button, nullptr);
    return button != nullptr ? gw::label_of(button) : std::string();
}

// From the last font's position on, the entry counts as an alias.
void attr_dlg_cb(Widget, XtPointer, XtPointer) {
    const std::vector<int> positions = gw::selected_positions(wi_hrn_list);
    if (positions.empty()) return;
    const int position = positions.front();
    if (position >= the_installed_hrn_count) {
        const GWAlias* alias = the_alias_list.get_elem_at_pos(position - the_installed_hrn_count + 1);
        if (alias != nullptr) show_alias_attributes(alias);
        return;
    }
    const GWHRNElement* elem = the_installed_hrn_list.get_elem_at_pos(position);
    if (elem == nullptr) return;
    const std::string decipoints = chosen_decipoints(*elem, current_choice(size_option_menu.menu));
    const std::string resolution = current_choice(res_option_menu.menu);
    const gw::Ref<GWFont> font(elem->get_font(decipoints.c_str(), resolution.c_str()));
    if (font) show_font_attributes(font.get(), nullptr);
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

void add_selection_callback(XtCallbackProc callback, XtPointer client_data) {
    XtAddCallback(wi_hrn_list, XmNextendedSelectionCallback, callback, client_data);
}

void attach_callbacks() {
    XtAddCallback(wi_install_entry, XmNactivateCallback, install_dlg_cb, nullptr);
    XtAddCallback(wi_delete_entry, XmNactivateCallback, delete_btn_cb, nullptr);
    XtAddCallback(wi_delete_button, XmNactivateCallback, delete_btn_cb, nullptr);
    XtAddCallback(wi_help_entry, XmNactivateCallback, help_dlg_cb, nullptr);
    XtAddCallback(wi_about_entry, XmNactivateCallback, about_dlg_cb, nullptr);
    XtAddCallback(wi_modify_fp_entry, XmNactivateCallback, modify_fp_dlg_cb, nullptr);
    XtAddCallback(wi_fontsets_entry, XmNactivateCallback, fontsets_dlg_cb, nullptr);
    XtAddCallback(wi_pr_install_entry, XmNactivateCallback, pr_install_dlg_cb, nullptr);
    XtAddCallback(wi_pr_delete_entry, XmNactivateCallback, pr_delete_dlg_cb, nullptr);
    XtAddCallback(wi_pr_modify_fp_entry, XmNactivateCallback, pr_modify_fp_dlg_cb, nullptr);
    XtAddCallback(wi_attributes_entry, XmNactivateCallback, attr_dlg_cb, nullptr);
    XtAddCallback(wi_attributes_button, XmNactivateCallback, attr_dlg_cb, nullptr);
    XtAddCallback(wi_exit_entry, XmNactivateCallback, exit_btn_cb, nullptr);
    XtAddCallback(wi_properties_entry, XmNactivateCallback, props_dlg_cb, nullptr);
    XtAddCallback(wi_installed_sample_textfield, XmNvalueChangedCallback, set_sample_text_cb, nullptr);
    add_selection_callback(SHOW_SAMPLE, &installed_sample);
    add_selection_callback(clear_status_label_cb, nullptr);
    add_selection_callback(hrn_list_deactivate_cb, &installed_sample);
    add_selection_callback(calc_disk_space_cb, nullptr);
    gw::on_close_box(wi_mainwindow, exit_btn_cb);

    update_wi_installed_hrn_list();
    init_sample_text_cb_module();
    set_installed_sample_text_cb_struct();
    activate_selection_controls(0);
    // The sample text belongs to a user.
    if (uid == 0) activate(wi_properties_entry, 0);
}

}  // namespace

void activate_selection_controls(int selected) {
    const gw::SelectionRights rights = gw::selection_rights(selected);
    activate_delete(rights.may_delete);
    activate_attributes(rights.may_show_attributes);
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

void forbid_other_work() {
    activate(wi_install_entry, 0);
    activate_delete(false);
}

void permit_other_work() {
    activate(wi_install_entry, 1);
    activate_selection_controls(gw::selected_count(wi_hrn_list));
}

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
    attach_callbacks();
    XtManageChild(wi_mainwindow);
    XmProcessTraversal(wi_hrn_list, XmTRAVERSE_CURRENT);
}
