// SPDX-License-Identifier: MIT
#include "app/printer/printerdlg.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/help_requests.h"
#include "app/installing/font_source.h"
#include "app/installing/rmediadlg.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/font_lists.h"
#include "core/gw_dir.h"
#include "core/gw_fspec_list.h"
#include "platform/host_paths.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>

Widget wi_pr_install_dlg = nullptr;
Widget wi_pr_delete_dlg = nullptr;
Widget wi_pr_modify_fp_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace printerdlg;

constexpr int GAP = 8;
constexpr int VISIBLE_NAMES = 10;
constexpr std::size_t NAME_LENGTH = 60;  // characters that the lists have room for

Widget wi_pr_install_dlg_fontlist_label, wi_pr_install_dlg_scrolledlist, wi_pr_install_dlg_msg_label;
gw::OptionMenu wi_pr_install_dlg_for_menu;
Widget wi_pr_delete_dlg_scrolledlist = nullptr;

// --- callbacks ---------------------------------------------------------------

void set_message(const char* text) {
    gw::set_label(wi_pr_install_dlg_msg_label, text);
}

void show_source() {
    gw::show_source_names(wi_pr_install_dlg_scrolledlist);
    gw::set_label(wi_pr_install_dlg_fontlist_label, gw::source_label());
    set_message("");
}

void show_verdict(int position) {
    if (position > 0) gw::show_source_entry(wi_pr_install_dlg_scrolledlist, position);
}

void other_media_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_rmedia_dlg(rmedia_specified_cb);
}

void from_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(from_dir_specified_cb, gw::text_of(Message::CHOOSE_SOURCE_TITLE));
}

void to_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    // Kept: both choosers of the printer dialog have one title.
    popup_dir_dlg(to_dir_specified_cb,
                  gw::text_or(Message::CHOOSE_SOURCE_TITLE, "Glyph Warden : Install To"));
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    popdown_rmedia_dlg();
    clear_attributes();
    XtUnmanageChild(wi_pr_install_dlg);
}

void select_all_cb(Widget, XtPointer, XtPointer) {
    gw::select_all_of_source(wi_pr_install_dlg_scrolledlist);
}

/// Kept: printer dialogs show attributes of the source. The position in `list` is looked up there.
void attr_dlg_cb(Widget, XtPointer list, XtPointer) {
    gw::show_source_attributes(static_cast<Widget>(list));
}

void cancel_modify_fp_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_pr_modify_fp_dlg);
}

// Kept: one Cancel button does nothing.
void end_modify_fp_dlg(Widget cancel) {
    activate(cancel, 1);
    if (!gw::window_policy().cancels_printer_path()) return gw::end_dialog(wi_pr_modify_fp_dlg, {});
    XtAddCallback(cancel, XmNactivateCallback, cancel_modify_fp_cb, nullptr);
    gw::end_dialog(wi_pr_modify_fp_dlg, {.cancel_button = cancel, .close = cancel_modify_fp_cb});
}

// --- parts -------------------------------------------------------------------

/// Lays out a dialog in rows, from top to bottom.
class Rows {
  public:
    explicit Rows(Widget dialog) : dialog_(dialog) {}

    /// Puts the widget at the left end of a new row.
    Widget start(Widget w) {
        above_ = tallest();
        row_ = {w};
        Attach(w).left_form(GAP);
        arrange();
        return w;
    }
    /// Puts the widget to the right of the last one.
    Widget beside(Widget w) {
        Attach(w).right_of(row_.back(), GAP);
        row_.push_back(w);
        arrange();
        return w;
    }
    Widget label(const char* name, Message text) { return start(gw::label(dialog_, name, text)); }
    Widget button(const char* name, Message text, XtCallbackProc callback, XtPointer data = nullptr) {
        Widget w = beside(gw::push_button(dialog_, name, text));
        if (callback != nullptr) XtAddCallback(w, XmNactivateCallback, callback, data);
        return w;
    }
    gw::OptionMenu menu(const char* name, const char* pulldown_name) {
        const gw::OptionMenu made = gw::option_menu(dialog_, name, pulldown_name, " ");
        beside(made.menu);
        return made;
    }
    Widget list(const char* name) {
        Widget w = gw::scrolled_list(dialog_, name);
        XtVaSetValues(w, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
        gw::set_list_columns(w, NAME_LENGTH);
        start(XtParent(w));
        Attach(XtParent(w)).sides(GAP);
        return w;
    }
    Widget line(const char* name) {
        Widget w = start(gw::separator(dialog_, name));
        Attach(w).sides(0);
        return w;
    }
    /// Ends the last row: its widgets are attached to the bottom of the dialog.
    void end() const { Attach(row_.back()).bottom_form(GAP); }

  private:
    /// The widget that the next row is placed below.
    [[nodiscard]] Widget tallest() const {
        const auto lower = [](Widget a, Widget b) { return gw::natural_height(a) < gw::natural_height(b); };
        const auto found = std::max_element(row_.begin(), row_.end(), lower);
        return found != row_.end() ? *found : nullptr;
    }
    /// Moves the widgets of a row so that their middles are at one height.
    void arrange() const {
        for (Widget w : row_) {
            const int offset = GAP + gw::centring_offset(w, tallest());
            if (above_ != nullptr) {
                Attach(w).below(above_, offset);
            } else {
                Attach(w).top_form(offset);
            }
        }
    }
    Widget dialog_;
    Widget above_ = nullptr;
    std::vector<Widget> row_;
};

/// A row of buttons of equal width; returns them in order.
std::vector<Widget> button_row(Rows& rows, Widget dialog, const std::vector<gw::RowButton>& buttons) {
    Widget form = rows.start(gw::form(dialog, "button_form"));
    Attach(form).sides(0);
    return gw::fill_with_buttons(form, buttons);
}

}  // namespace

// --- what they show ----------------------------------------------------------

void update_wi_pr_install_dlg_for_menu() {
    GW_FSPEC_LIST printers;
    const gw::ElementsOwner owner(printers);
    GW_DIR(gw::PRINTERS_DIR).get_file_spec_list(printers, 1, nullptr);
    if (printers.is_empty()) {
        activate(wi_pr_install_dlg_for_menu.menu, 0);
        return;
    }
    Widget initial = nullptr;
    XtVaGetValues(wi_pr_install_dlg_for_menu.menu, XmNmenuHistory, &initial, nullptr);
    Widget first = nullptr;
    for (const GW_FILE_SPEC* printer : printers) {
        Widget button = gw::menu_button(wi_pr_install_dlg_for_menu.pulldown, "", printer->get_name());
        if (first == nullptr) first = button;
    }
    XtVaSetValues(wi_pr_install_dlg_for_menu.menu, XmNmenuHistory, first, nullptr);
    if (initial != nullptr) XtUnmanageChild(initial);
}

void update_wi_pr_delete_dlg_scrolledlist() {
    update_wi_hrn_list(wi_pr_delete_dlg_scrolledlist, the_installed_hrn_list);
}

void update_wi_pr_modify_fp_dlg_scrolledlist() {}

namespace printerdlg {

void rmedia_specified_cb(int choice) {
    if (the_wp_cl_data.is_in_progress()) return;
    if (choice != NO_MEDIUM) {
        gw::use_medium(choice, font_lookup_work_proc);
    } else {
        current_hrn_count = 0;
    }
    set_message(gw::text_of(Message::LOOKING_ON_MEDIUM));
}

void from_dir_specified_cb(const char* dir) {
    if (the_wp_cl_data.is_in_progress()) return;
    gw::use_directory(dir, font_lookup_work_proc);
    set_message(gw::text_of(Message::LOOKING_IN_DIRECTORY));
    gw::set_label(wi_pr_install_dlg_fontlist_label, gw::source_label());
}

void to_dir_specified_cb(const char*) {}

Boolean font_lookup_work_proc(XtPointer driver) {
    gw::look_fonts_up(static_cast<GWDriverBase*>(driver));
    return True;
}

}  // namespace printerdlg

// --- the dialogs -------------------------------------------------------------

Widget create_pr_install_dlg(const char* name, Widget parent) {
    Widget dialog = wi_pr_install_dlg = gw::form_dialog(parent, name, Message::PR_INSTALL_TITLE);
    Rows rows(dialog);
    rows.label("media_label", Message::PR_LIST_FROM);
    rows.button("other_media_dlg_button", Message::PR_OTHER_MEDIA, other_media_dlg_cb);
    rows.button("from_dir_dlg_button", Message::PR_SOURCE_DIRECTORY, from_dir_dlg_cb);
    wi_pr_install_dlg_fontlist_label = rows.label("fontlist_label", Message::PR_FONTS_FROM);
    wi_pr_install_dlg_scrolledlist = rows.list("scrolledlist");
    rows.label("for_label", Message::PR_PRINTER);
    wi_pr_install_dlg_for_menu = rows.menu("for_menu", "for_pulldown");
    rows.label("install_to_label", Message::PR_INSTALL_TO);
    rows.button("to_dir_dlg_button", Message::PR_TO_DIRECTORY, to_dir_dlg_cb);
    rows.label("dest_label", Message::PR_DESTINATION);
    rows.label("req_space_label", Message::PR_REQUIRED);
    rows.label("avail_space_label", Message::PR_AVAILABLE);
    rows.line("separator");
    const std::vector<Widget> buttons =
        button_row(rows, dialog,
                   {{"install_button", Message::PR_INSTALL, nullptr},
                    {"select_all_button", Message::PR_SELECT_ALL, select_all_cb},
                    {"attr_button", Message::PR_ATTRIBUTES, attr_dlg_cb, wi_pr_install_dlg_scrolledlist},
                    {"cancel_button", Message::PR_CANCEL, cancel_cb},
                    gw::help_button("help_dlg_button", Message::PR_HELP, gw::HelpSection::PRINTER)});
    wi_pr_install_dlg_msg_label = rows.label("msg_label", Message::PR_MESSAGE);
    rows.end();
    XtVaSetValues(dialog, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    gw::end_dialog(dialog, {.cancel_button = buttons[3], .close = cancel_cb});
    gw::BusyWindows::include(wi_pr_install_dlg);
    gw::source_changes().connect(show_source);
    gw::source_entry_changes().connect(show_verdict);
    update_wi_pr_install_dlg_for_menu();
    return dialog;
}

Widget create_pr_delete_dlg(const char* name, Widget parent) {
    Widget dialog = wi_pr_delete_dlg = gw::form_dialog(parent, name, Message::PR_DELETE_TITLE);
    Rows rows(dialog);
    rows.label("for_label", Message::PR_DELETE_FOR);
    activate(rows.menu("for_menu", "for_pulldown").menu, 0);
    rows.label("fontlist_label", Message::PR_INSTALLED);
    wi_pr_delete_dlg_scrolledlist = rows.list("scrolledlist");
    rows.label("size_label", Message::PR_POINT_SIZE);
    activate(rows.menu("size_menu", "size_pulldown").menu, 0);
    rows.label("disk_space_label", Message::PR_OCCUPIED);
    rows.beside(gw::label(dialog, "disk_space_val", Message::PR_SIZE));
    rows.line("separator");
    button_row(rows, dialog,
               {{"delete_button", Message::PR_DELETE, nullptr},
                {"attr_button", Message::PR_DELETE_ATTRIBUTES, attr_dlg_cb, wi_pr_delete_dlg_scrolledlist},
                gw::help_button("help_dlg_button", Message::PR_DELETE_HELP, gw::HelpSection::PRINTER)});
    rows.end();
    gw::end_dialog(dialog, {});
    update_wi_pr_delete_dlg_scrolledlist();
    return dialog;
}

Widget create_pr_modify_fp_dlg(const char* name, Widget parent) {
    Widget dialog = wi_pr_modify_fp_dlg = gw::form_dialog(parent, name, Message::PR_FP_TITLE);
    Rows rows(dialog);
    rows.label("printer_label", Message::PR_FP_PRINTER);
    activate(rows.menu("printer_menu", "printer_pulldown").menu, 0);
    rows.label("listing_label", Message::PR_FP_LISTING);
    rows.list("scrolledlist");
    button_row(rows, dialog,
               {{"move_up_button", Message::PR_FP_MOVE_UP, nullptr},
                {"move_down_button", Message::PR_FP_MOVE_DOWN, nullptr},
                {"delete_button", Message::PR_FP_DELETE, nullptr},
                {"add_new_button", Message::PR_FP_ADD_NEW, nullptr}});
    rows.label("new_fp_label", Message::PR_FP_NEW_ELEMENT);
    rows.beside(gw::text_field(dialog, "new_fp_textfield"));
    activate(rows.button("dir_dlg_button", Message::PR_FP_DIRECTORY, nullptr), 0);
    rows.line("separator");
    const std::vector<Widget> buttons =
        button_row(rows, dialog,
                   {{"ok_button", Message::PR_FP_OK, nullptr},
                    {"apply_button", Message::PR_FP_APPLY, nullptr},
                    {"reset_button", Message::PR_FP_RESET, nullptr},
                    {"cancel_button", Message::PR_FP_CANCEL, nullptr},
                    gw::help_button("help_button", Message::PR_FP_HELP, gw::HelpSection::PRINTER)});
    rows.end();
    end_modify_fp_dlg(buttons[3]);
    update_wi_pr_modify_fp_dlg_scrolledlist();
    return dialog;
}
