// SPDX-License-Identifier: MIT
#include "app/deleting/deletedfontsdlg.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/common/help_requests.h"
#include "app/deleting/bringing_back.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/generation.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/mnemonics.h"
#include "app/kit/table_list.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/program/undo_record.h"
#include "app/program/work_record.h"
#include "fontpath/trash_places.h"
#include "model/deleted_fonts.h"
#include "platform/user_name.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>

Widget wi_deleted_fonts_dlg = nullptr;
Widget wi_for_good_dlg = nullptr;

namespace {

using gw::Attach;
using gw::DeletedFont;
using gw::Message;
using gw::ReturnOfFonts;

constexpr int GAP = 8;
constexpr int VISIBLE_FONTS = 12;
constexpr int LIST_COLUMNS = 90;
constexpr off_t KILOBYTE = 1024;

/// What the window shows, and what is asked in it.
struct Trash {
    Widget title = nullptr;
    Widget list = nullptr;
    Widget bring_back = nullptr;
    Widget for_good = nullptr;
    Widget empty = nullptr;
    Widget message = nullptr;
    gw::TableList table;
    std::vector<DeletedFont> fonts;  // by list position - 1
    std::vector<DeletedFont> asked;  // what the question is about
    gw::Generation work;
};

Trash& trash() {
    static Trash of_the_program;
    return of_the_program;
}

void say(const std::string& text) {
    gw::set_label(trash().message, text.empty() ? " " : text);
}

// --- what there is -----------------------------------------------------------

gw::TableRow row_of(const DeletedFont& font) {
    const auto kilobytes = static_cast<unsigned>((font.bytes + KILOBYTE - 1) / KILOBYTE);
    const std::string name = font.was_replaced ? gw::text_of(Message::WAS_REPLACED, {font.name}) : font.name;
    return {{gw::local_time_text(font.time)},
            {name},
            {font.dir},
            {gw::user_name(font.user)},
            {gw::text_of(Message::KILOBYTES, kilobytes)}};
}

std::vector<DeletedFont> fonts_now() {
    unsigned count = 0;
    std::vector<std::string> path;
    for (const GW_STRING* element : *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count))
        path.emplace_back(element->get_str());
    return gw::deleted_fonts(gw::trash_places(path));
}

void activate_buttons() {
    Trash& t = trash();
    const bool any = gw::selected_count(t.list) > 0;
    activate(t.bring_back, any ? 1 : 0);
    activate(t.for_good, any ? 1 : 0);
    activate(t.empty, t.fonts.empty() ? 0 : 1);
}

bool is_same(const DeletedFont& a, const DeletedFont& b) {
    return a.dir == b.dir && a.entry == b.entry && a.file_names == b.file_names;
}

/// The selected fonts stay selected, as far as they are still there.
void show(std::vector<DeletedFont> fonts) {
    Trash& t = trash();
    std::vector<DeletedFont> selected;
    for (const int position : gw::selected_positions(t.list))
        selected.push_back(t.fonts[static_cast<std::size_t>(position) - 1]);
    t.fonts = std::move(fonts);
    std::vector<gw::TableRow> rows;
    for (const DeletedFont& font : t.fonts) rows.push_back(row_of(font));
    XmListDeselectAllItems(t.list);
    t.table.show(rows);
    XmListDeselectAllItems(t.list);
    std::vector<int> again;
    for (std::size_t i = 0; i < t.fonts.size(); ++i) {
        const auto is_it = [&](const DeletedFont& font) { return is_same(font, t.fonts[i]); };
        if (std::any_of(selected.begin(), selected.end(), is_it)) again.push_back(static_cast<int>(i) + 1);
    }
    gw::select_too(t.list, again);
    gw::set_label(t.title,
                  gw::text_of(t.fonts.empty() ? Message::NO_DELETED_FONTS : Message::DELETED_FONTS_LIST));
    activate_buttons();
}

void show_changes() {
    if (wi_deleted_fonts_dlg != nullptr && XtIsManaged(wi_deleted_fonts_dlg)) show(fonts_now());
}

std::vector<DeletedFont> selected_fonts() {
    std::vector<DeletedFont> fonts;
    for (const int position : gw::selected_positions(trash().list))
        fonts.push_back(trash().fonts[static_cast<std::size_t>(position) - 1]);
    return fonts;
}

// --- bringing back -----------------------------------------------------------

void bring_back_cb(Widget, XtPointer, XtPointer) {
    Trash& t = trash();
    const gw::Turn turn(t.work);
    const std::vector<DeletedFont> fonts = selected_fonts();
    if (!turn.is_first() || fonts.empty()) return;
    // This comes first: it handles events, and the user may begin other work in them.
    const gw::BusyWindows busy;
    if (the_wp_cl_data.is_in_progress()) return say(gw::text_of(Message::DOCTOR_NOT_NOW));
    const ReturnOfFonts result = gw::bring_back_and_list(fonts);
    show(fonts_now());
    say(gw::brought_back_text(result));
    if (!result.left.empty()) gw::show_not_brought_back(result);
}

// --- removing for good -------------------------------------------------------

void ask(std::vector<DeletedFont> fonts) {
    if (fonts.empty()) return;
    const std::string question =
        gw::text_of(Message::FOR_GOOD_ONE, Message::FOR_GOOD_MANY, static_cast<unsigned>(fonts.size())) +
        '\n' + gw::text_of(Message::CANNOT_BE_UNDONE);
    const gw::XmText text = gw::xm_text(question);
    XtVaSetValues(wi_for_good_dlg, XmNmessageString, text.get(), nullptr);
    trash().asked = std::move(fonts);
    say("");
    XtManageChild(wi_for_good_dlg);
}

void for_good_cb(Widget, XtPointer, XtPointer) {
    ask(selected_fonts());
}

void empty_cb(Widget, XtPointer, XtPointer) {
    ask(trash().fonts);
}

void not_for_good_cb(Widget, XtPointer, XtPointer) {
    trash().asked.clear();
    XtUnmanageChild(wi_for_good_dlg);
}

void for_good_confirmed_cb(Widget, XtPointer, XtPointer) {
    Trash& t = trash();
    const gw::Turn turn(t.work);
    XtUnmanageChild(wi_for_good_dlg);
    if (!turn.is_first()) return;
    const std::vector<DeletedFont> fonts = std::exchange(t.asked, {});
    const gw::BusyWindows busy;
    if (the_wp_cl_data.is_in_progress()) return say(gw::text_of(Message::DOCTOR_NOT_NOW));
    const ReturnOfFonts result = gw::delete_for_good_and_show(fonts);
    show(fonts_now());
    say(gw::gone_text(result));
    if (!result.left.empty())
        gw::show_reasons(gw::text_of(Message::DELETED_FONTS_TITLE), Message::NOT_GONE, result);
}

void create_question(Widget parent) {
    wi_for_good_dlg = gw::message_dialog(parent, "for_good_dlg", XmDIALOG_WARNING,
                                         gw::text_of(Message::DELETED_FONTS_TITLE),
                                         gw::text_of(Message::CANNOT_BE_UNDONE), {XmDIALOG_HELP_BUTTON});
    const gw::XmText ok = gw::xm_text(gw::text_of(Message::FOR_GOOD_OK));
    const gw::XmText cancel = gw::xm_text(gw::text_of(Message::FOR_GOOD_CANCEL));
    // Return must not delete anything.
    XtVaSetValues(wi_for_good_dlg, XmNokLabelString, ok.get(), XmNcancelLabelString, cancel.get(),
                  XmNdefaultButtonType, XmDIALOG_CANCEL_BUTTON, nullptr);
    XtAddCallback(wi_for_good_dlg, XmNokCallback, for_good_confirmed_cb, nullptr);
    XtAddCallback(wi_for_good_dlg, XmNcancelCallback, not_for_good_cb, nullptr);
    gw::end_dialog(wi_for_good_dlg, {.close = not_for_good_cb});
}

// --- the window --------------------------------------------------------------

void select_cb(Widget, XtPointer, XtPointer) {
    say("");
    activate_buttons();
}

void close_cb(Widget, XtPointer, XtPointer) {
    not_for_good_cb(nullptr, nullptr, nullptr);
    XtUnmanageChild(wi_deleted_fonts_dlg);
}

void create_list(Widget dialog, Widget below) {
    Trash& t = trash();
    t.title = gw::label(dialog, "deleted_label", Message::NO_DELETED_FONTS);
    Attach(t.title).top_form(GAP).sides(GAP);
    t.list = gw::scrolled_list(dialog, "deleted_list");
    XtVaSetValues(t.list, XmNvisibleItemCount, VISIBLE_FONTS, nullptr);
    gw::set_list_columns(t.list, LIST_COLUMNS);
    gw::label_for(t.title, t.list);
    t.table = gw::TableList(t.list);
    Attach(XtParent(t.list)).below(t.title, 2).sides(GAP).above(below, GAP);
    XtAddCallback(t.list, XmNextendedSelectionCallback, select_cb, nullptr);
    XtAddCallback(t.list, XmNdefaultActionCallback, bring_back_cb, nullptr);
}

}  // namespace

Widget create_deleted_fonts_dlg(const char* name, Widget parent) {
    Trash& t = trash();
    wi_deleted_fonts_dlg = gw::form_dialog(parent, name, Message::DELETED_FONTS_TITLE);
    const gw::BottomRow row = gw::bottom_row(
        wi_deleted_fonts_dlg, {"msg_label", "button_form", "separator"},
        {{"bring_back_button", Message::BRING_BACK, bring_back_cb},
         {"for_good_button", Message::DELETE_FOR_GOOD, for_good_cb},
         {"empty_button", Message::EMPTY_TRASH, empty_cb},
         {"close_button", Message::DELETED_FONTS_CLOSE, close_cb},
         gw::help_button("help_button", Message::DELETED_FONTS_HELP, gw::HelpSection::DELETED_FONTS)});
    t.message = row.message;
    t.bring_back = row.buttons[0];
    t.for_good = row.buttons[1];
    t.empty = row.buttons[2];
    create_list(wi_deleted_fonts_dlg, row.separator);
    create_question(wi_deleted_fonts_dlg);
    gw::end_dialog(wi_deleted_fonts_dlg, {t.bring_back, row.buttons[3], t.list, close_cb});
    gw::BusyWindows::include(wi_deleted_fonts_dlg);
    gw::undo_changes().connect(show_changes);
    activate_buttons();
    return wi_deleted_fonts_dlg;
}

void start_deleted_fonts_dlg() {
    say("");
    {
        const gw::BusyWindows busy;
        XmListDeselectAllItems(trash().list);
        show(fonts_now());
    }
    XtManageChild(wi_deleted_fonts_dlg);
}
