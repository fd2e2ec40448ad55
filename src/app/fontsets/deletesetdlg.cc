// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include "app/common/help_requests.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/generation.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "fontfiles/gw_fontset.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>

Widget wi_delete_set_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace fontsetsdlg;

constexpr int GAP = 8;
constexpr int VISIBLE_NAMES = 8;

Widget wi_delete_set_dlg_scrolledlist, wi_delete_set_dlg_delete_button;

void list_cb(Widget list, XtPointer, XtPointer) {
    activate(wi_delete_set_dlg_delete_button, gw::selected_count(list) > 0 ? 1 : 0);
}

std::vector<std::string> selected_names() {
    XmStringTable items = nullptr;
    int count = 0;
    XtVaGetValues(wi_delete_set_dlg_scrolledlist, XmNselectedItems, &items, XmNselectedItemCount, &count,
                  nullptr);
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) names.push_back(gw::text_of(items[i]));
    return names;
}

void delete_one(const std::string& name) {
    if (menu_has(name) && fontsetdlg_cb.file) {
        set_message(gw::text_of(Message::DELETING_FONTSET) + name);
        process_xt_events();
        remove_from_menu(name);
        const GWFontSet named(name.c_str());
        fontsetdlg_cb.file->delete_fontset(&named);
        if (name == fontsetdlg_cb.current->get_name()) make_first_current();
    }
    set_message(" ");
}

void delete_fontset_cb(Widget, XtPointer, XtPointer) {
    const gw::Turn turn(fontset_work);
    if (!turn.is_first()) return;
    const gw::BusyWindows busy;
    for (const std::string& name : selected_names()) delete_one(name);
    const std::vector<int> positions = gw::selected_positions(wi_delete_set_dlg_scrolledlist);
    for (auto position = positions.rbegin(); position != positions.rend(); ++position)
        XmListDeletePos(wi_delete_set_dlg_scrolledlist, *position);
    show_menu_if_filled();
    show_current();
    activate(wi_delete_set_dlg_delete_button, 0);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_delete_set_dlg);
    XmListDeselectAllItems(wi_delete_set_dlg_scrolledlist);
    activate(wi_delete_set_dlg_delete_button, 0);
}

}  // namespace

Widget create_delete_set_dlg(const char* name, Widget parent) {
    wi_delete_set_dlg = gw::form_dialog(parent, name, Message::DELETE_SET_TITLE);
    Widget label = gw::label(wi_delete_set_dlg, "list_label", Message::DELETE_SET_LIST);
    Attach(label).top_form(GAP).left_form(GAP);
    wi_delete_set_dlg_scrolledlist = gw::scrolled_list(wi_delete_set_dlg, "scrolledlist");
    XtVaSetValues(wi_delete_set_dlg_scrolledlist, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    gw::set_list_columns(wi_delete_set_dlg_scrolledlist, 60);
    Attach(XtParent(wi_delete_set_dlg_scrolledlist)).below(label, 2).sides(GAP);
    XtAddCallback(wi_delete_set_dlg_scrolledlist, XmNextendedSelectionCallback, list_cb, nullptr);

    const std::vector<Widget> buttons =
        gw::button_row(wi_delete_set_dlg, XtParent(wi_delete_set_dlg_scrolledlist),
                       {{"delete_button", Message::DELETE_SET_DELETE, delete_fontset_cb},
                        {"cancel_button", Message::DELETE_SET_CANCEL, cancel_cb},
                        gw::help_button("help_button", Message::DELETE_SET_HELP, gw::HelpSection::FONTSETS)});
    wi_delete_set_dlg_delete_button = buttons[0];
    activate(wi_delete_set_dlg_delete_button, 0);
    gw::end_dialog(wi_delete_set_dlg, {.cancel_button = buttons[1], .close = cancel_cb});
    gw::BusyWindows::include(wi_delete_set_dlg);
    return wi_delete_set_dlg;
}

void init_wi_delete_set_dlg_scrolledlist() {
    std::vector<std::string> names;
    if (fontsetdlg_cb.file) {
        for (const GWFontSet* set : fontsetdlg_cb.file->get_fontsets()) names.emplace_back(set->get_name());
    }
    gw::fill_list(wi_delete_set_dlg_scrolledlist, names);
    activate(wi_delete_set_dlg_delete_button, 0);
}

void fontsetsdlg::add_to_delete_list(const char* name) {
    const gw::XmText item = gw::xm_text(name);
    XmListAddItemUnselected(wi_delete_set_dlg_scrolledlist, item.get(), 1);
}
