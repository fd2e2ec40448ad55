// SPDX-License-Identifier: MIT
#include "app/installing/rmediadlg.h"

#include <unistd.h>

#include <vector>

#include "app/common/help_requests.h"
#include "app/common/warningdlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "app/samples/attrdlg.h"
#include "platform/host_paths.h"
#include "platform/media_manager.h"
#include "platform/shell_command.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/RowColumn.h>

Widget wi_rmedia_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;
constexpr std::chrono::seconds EJECTING(30);

int current_choice = FLOPPY_MEDIUM;  // the option menu's first entry
void (*_rmedia_cb)(int) = nullptr;

void tell_caller(int choice) {
    if (_rmedia_cb != nullptr) _rmedia_cb(choice);
}

void warn(Message message) {
    start_warning_dlg(gw::text_of(Message::RMEDIA_TITLE), gw::text_of(message));
}

Message in_sentences(Message sentence, Message otherwise) {
    return gw::window_policy().speaks_in_sentences() ? sentence : otherwise;
}

void cdrom_selected_cb(Widget, XtPointer, XtPointer) {
    current_choice = CDROM_MEDIUM;
}

void floppy_selected_cb(Widget, XtPointer, XtPointer) {
    current_choice = FLOPPY_MEDIUM;
}

void check_cdrom() {
    if (media_manager_running() == 0)
        return warn(in_sentences(Message::CDROM_UNWATCHED, Message::CDROM_UNSERVED));
    if (::access(gw::CDROM_MEDIUM_DIR, F_OK) != 0) return warn(Message::CDROM_MISSING);
    tell_caller(CDROM_MEDIUM);
}

void check_floppy() {
    if (media_manager_running() == 0)
        return warn(in_sentences(Message::FLOPPY_UNWATCHED, Message::FLOPPY_UNSERVED));
    if (media_manager_check(nullptr) == 0)
        return warn(in_sentences(Message::FLOPPY_NOT_THERE, Message::FLOPPY_MISSING));
    tell_caller(FLOPPY_MEDIUM);
}

void check_cb(Widget, XtPointer, XtPointer) {
    if (current_choice == CDROM_MEDIUM) return check_cdrom();
    if (current_choice == FLOPPY_MEDIUM) return check_floppy();
    tell_caller(current_choice);
}

void eject_cb(Widget, XtPointer, XtPointer) {
    gw::release_shown_font();
    // Kept: the result of ejecting is not checked.
    (void)gw::run_command("/bin/eject -f %s", {current_choice == CDROM_MEDIUM ? "cdrom" : "floppy"},
                          EJECTING);
    tell_caller(NO_MEDIUM);
    popdown_rmedia_dlg();
}

void close_cb(Widget, XtPointer, XtPointer) {
    popdown_rmedia_dlg();
}

const gw::MenuEntry MEDIA[] = {
    {"floppy_button", Message::RMEDIA_FLOPPY, floppy_selected_cb},
    {"cdrom_button", Message::RMEDIA_CDROM, cdrom_selected_cb},
};

}  // namespace

Widget create_rmedia_dlg(const char* name, Widget parent) {
    wi_rmedia_dlg = gw::form_dialog(parent, name, Message::RMEDIA_TITLE);
    Widget menu =
        gw::option_menu(wi_rmedia_dlg, "media_option_menu", "pulldown_menu", Message::CHECK_FONTS_FROM, MEDIA)
            .menu;
    Attach(menu).top_form(GAP).left_form(GAP);
    Widget check = gw::push_button(wi_rmedia_dlg, "check_button", Message::RMEDIA_CHECK);
    XtAddCallback(check, XmNactivateCallback, check_cb, nullptr);
    Widget line = gw::separator(wi_rmedia_dlg, "separator");
    Attach(line).below(menu, GAP).sides(0);

    const std::vector<Widget> buttons =
        gw::make_buttons(wi_rmedia_dlg, {{"eject_button", Message::RMEDIA_EJECT, eject_cb, nullptr, 3, 30},
                                         {"close_button", Message::RMEDIA_CLOSE, close_cb, nullptr, 36, 63},
                                         gw::help_button("help_dlg_button", Message::RMEDIA_HELP,
                                                         gw::HelpSection::OTHER_MEDIA, nullptr, 69, 96)});
    for (Widget button : buttons) Attach(button).below(line, GAP);
    // Kept: help buttons of dialogs do nothing.
    activate(buttons[2], 1);
    Widget message = gw::label(wi_rmedia_dlg, "msg_label", " ");
    Attach(message).below(buttons.back(), 0).sides(GAP).bottom_form(0);
    gw::end_dialog(wi_rmedia_dlg, {check, buttons[1], check, close_cb});
    // This comes after the default button is set: its ring makes the button higher.
    Attach(check)
        .top_form(GAP + gw::centring_offset(check, menu))
        .right_of(menu, 2 * GAP)
        .right_form(2 * GAP);
    gw::BusyWindows::include(wi_rmedia_dlg);
    return wi_rmedia_dlg;
}

void popup_rmedia_dlg(void (*cb)(int)) {
    XtManageChild(wi_rmedia_dlg);
    _rmedia_cb = cb;
}

void popdown_rmedia_dlg() {
    _rmedia_cb = nullptr;
    XtUnmanageChild(wi_rmedia_dlg);
}

const char* get_current_rmedia_choice() {
    return current_choice == CDROM_MEDIUM ? "cd_rom" : "floppy";
}
