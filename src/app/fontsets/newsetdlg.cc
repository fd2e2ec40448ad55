// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include "app/common/help_requests.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/generation.h"
#include "app/kit/handles.h"
#include "app/kit/widgets.h"
#include "fontfiles/gw_fontset.h"
#include "model/gw_font.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/TextF.h>

Widget wi_new_set_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace fontsetsdlg;

constexpr int GAP = 8;
constexpr short NAME_COLUMNS = 50;

Widget wi_new_set_dlg_text, wi_new_set_dlg_msg_label;

void set_own_message(const char* text) {
    gw::set_label(wi_new_set_dlg_msg_label, text);
}

/// A new fontset with the fonts of the current one. The caller gives it to the file, which owns it.
GWFontSet* copy_of_current(const std::string& name) {
    auto* set = new GWFontSet(name.c_str());
    for (GWFont* font : fontsetdlg_cb.current->get_fonts()) set->append_base_font(font->get_xlfd_name());
    return set;
}

void new_fontset_cb(Widget, XtPointer, XtPointer) {
    const gw::Turn turn(fontset_work);
    if (!turn.is_first() || !fontsetdlg_cb.current) return;
    const std::string name = gw::field_text(wi_new_set_dlg_text);
    const bool has_fonts = !fontsetdlg_cb.current->get_fonts().is_empty();
    if (!has_fonts) return set_own_message(gw::text_of(Message::FONT_NAMES_WANTED));
    if (!name.starts_with('-')) return set_own_message(gw::text_of(Message::FONTSET_NAME_WANTED));
    if (!fontsetdlg_cb.file) return set_own_message(gw::text_of(Message::NO_FONTSET));
    add_to_delete_list(name.c_str());
    add_to_menu(name.c_str());
    fontsetdlg_cb.file->append_fontset(copy_of_current(name));
    if (fontsetdlg_cb.file->get_fontsets().get_count() == 1) show_menu_if_filled();
    set_own_message(" ");
    XtUnmanageChild(wi_new_set_dlg);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_new_set_dlg);
    XmTextFieldSetString(wi_new_set_dlg_text, gw::name_arg(""));
    set_own_message(" ");
}

}  // namespace

Widget create_new_set_dlg(const char* name, Widget parent) {
    wi_new_set_dlg = gw::form_dialog(parent, name, Message::NEW_SET_TITLE);
    Widget label = gw::label(wi_new_set_dlg, "name_label", Message::NEW_SET_NAME);
    Attach(label).top_form(GAP).left_form(GAP);
    wi_new_set_dlg_text = gw::text_field(wi_new_set_dlg, "name_text");
    XtVaSetValues(wi_new_set_dlg_text, XmNcolumns, NAME_COLUMNS, nullptr);
    Attach(wi_new_set_dlg_text).below(label, 2).sides(GAP);
    const std::vector<Widget> buttons =
        gw::button_row(wi_new_set_dlg, wi_new_set_dlg_text,
                       {{"ok_button", Message::NEW_SET_OK, new_fontset_cb},
                        {"cancel_button", Message::NEW_SET_CANCEL, cancel_cb},
                        gw::help_button("help_button", Message::NEW_SET_HELP, gw::HelpSection::FONTSETS)},
                       &wi_new_set_dlg_msg_label);
    gw::end_dialog(wi_new_set_dlg, {buttons[0], buttons[1], wi_new_set_dlg_text, cancel_cb});
    return wi_new_set_dlg;
}
