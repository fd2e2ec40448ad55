// SPDX-License-Identifier: MIT
#include "app/fontsets/fontsetsdlg.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/common/help_requests.h"
#include "app/fontsets/coverage.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/generation.h"
#include "app/kit/kept_text.h"
#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/sample_field.h"
#include "fontfiles/gw_fontset.h"
#include "model/gw_font.h"
#include "platform/host_paths.h"
#include "store/file_turn.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>

Widget wi_fontsets_dlg = nullptr;
fontsetdlg_cb_struct fontsetdlg_cb;

namespace {

using gw::Attach;
using gw::Message;
using namespace fontsetsdlg;

constexpr int GAP = 8;
constexpr int VISIBLE_FONTS = 10;
constexpr Dimension SAMPLE_HEIGHT = 60;
constexpr int SAMPLE_UNITS = 7;  // the same in font units
constexpr const char* INSTALLED_FONT = "fixed";
// Kept: a fontset directory has at most 67 bytes.
constexpr std::size_t DIRECTORY_LIMIT = 68;  // bytes of the directory's name with the NUL at its end

gw::OptionMenu wi_fontsets_dlg_choose_menu;
Widget wi_fontsets_dlg_scrolledlist, wi_fontsets_dlg_sample_text, wi_fontsets_dlg_msg_label;

std::vector<std::string> listed_names;  // the XLFD names in the list
gw::KeptText dialog_sample;

/// The fonts offered for fontsets, ascending.
GW_SORTED_LIST<GWFont> xlfd_font_list(0);

// --- the file ----------------------------------------------------------------

gw::Outcome no_file;  // why there can be no fontset file

/// The directory of the locale's fontset file; empty when there can be none.
std::string fontset_directory() {
    no_file = gw::done();
    const bool has_defaults = gw::window_policy().shows_fontset_coverage();
    const char* home = std::getenv("VANTORHOME");
    if (home == nullptr && has_defaults) home = gw::INSTALLATION_ROOT;
    if (home == nullptr) std::puts("ERROR: VANTORHOME dose not set");
    const char* locale = std::getenv("LANG");
    if (locale == nullptr && has_defaults) locale = std::setlocale(LC_CTYPE, nullptr);
    if (locale == nullptr) std::puts("ERROR: LANG dose not set");
    if (home == nullptr || locale == nullptr) return "";
    std::string directory = std::string(home) + gw::LOCALE_FONT_PATH_DIR + locale + gw::FONTSET_DIR;
    if (directory.size() < DIRECTORY_LIMIT) return directory;
    no_file = gw::Failure{directory, gw::Reason::NAME_TOO_LONG};
    gw::tell(no_file.failure());
    return "";
}

// --- the list of fonts -------------------------------------------------------

bool is_offered(GWFont& font) {
    const std::string charset = font.get_charset_hrn_name();
    return charset.starts_with(" Roman") || charset.starts_with(" Kanji");
}

void collect_fonts() {
    xlfd_font_list.clear();
    for (const GWHRNElement* elem : the_installed_hrn_list) {
        const GWFont* first = elem->get_representative();
        if (first == nullptr || !first->is_bitmap()) continue;
        for (const GWHRNElement::PointSize& size : elem->get_slots()) {
            for (std::size_t i = 0; i < size.fonts.size(); ++i) {
                GWFont* font = elem->get_font(size.point_size.c_str(), size.resolution(i).c_str());
                if (font != nullptr && is_offered(*font)) xlfd_font_list.insert(font);
            }
        }
    }
}

// --- callbacks ---------------------------------------------------------------

void make_current(GWFontSet* set) {
    select_scrolled_list(wi_fontsets_dlg_scrolledlist, set);
    set_message(" ");
    display_sample_text(set);
    fontsetdlg_cb.current = set;
}

void fontsets_button_cb(Widget button, XtPointer, XtPointer) {
    const gw::Turn turn(fontset_work);
    if (!turn.is_first() || !fontsetdlg_cb.file) return;
    const std::string name = gw::label_of(button);
    const gw::BusyWindows busy;
    set_message(gw::text_of(Message::LOOKING_FOR_FONTSET));
    process_xt_events();
    if (GWFontSet* set = fontsetdlg_cb.file->get_fontset(name.c_str()); set != nullptr) {
        make_current(set);
    } else {
        set_message(name + gw::text_of(Message::FONTSET_NOT_FOUND));
    }
}

/// Gives the current fontset `xlfd` as its font of that character set. Kept: a fontset that is changed moves
/// to the end of the file.
void update_current(const std::string& xlfd) {
    GWFontSet* set = fontsetdlg_cb.current.get();
    // A fontset without a name cannot be in the file.
    const bool is_listed = fontsetdlg_cb.file && fontsetdlg_cb.file->delete_fontset(set) != 0;
    set->update_base_font(xlfd.c_str());
    if (is_listed) fontsetdlg_cb.file->append_fontset(set);
}

void update_base_names_cb(Widget list, XtPointer, XtPointer call_data) {
    const gw::Turn turn(fontset_work);
    if (!turn.is_first() || !fontsetdlg_cb.current) return;
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    const auto position = static_cast<std::size_t>(event->item_position);
    if (position < 1 || position > listed_names.size()) return;
    const std::string name = listed_names[position - 1];
    const gw::BusyWindows busy;
    set_message(gw::text_of(Message::LOOKING_FOR_MEMBER));
    process_xt_events();
    update_current(name);
    select_scrolled_list(list, fontsetdlg_cb.current.get());
    set_message(" ");
    display_sample_text(fontsetdlg_cb.current.get());
}

/// Writes the fontsets. False when they were not written and the dialog says why.
bool apply_fontsets() {
    const gw::Turn turn(fontset_work);
    if (!turn.is_first()) return true;
    if (user_is_root == 0) {
        set_message(gw::text_of(Message::FONTSETS_ROOT_ONLY));
        return false;
    }
    if (!fontsetdlg_cb.file) {
        const bool is_told = !no_file && gw::window_policy().shows_reasons();
        if (is_told) set_message(gw::failure_line(no_file.failure()));
        return !is_told;
    }
    const gw::BusyWindows busy;
    set_message(gw::text_of(Message::UPDATING_FONTSETS));
    process_xt_events();
    const gw::Result<gw::FileTurn> lock = gw::take_turn_at(fontsetdlg_cb.file->get_path());
    const gw::Outcome written = lock ? fontsetdlg_cb.file->put_in_place()
                                     : gw::Outcome(lock.failure()).with(gw::Sequel::FONTSETS_STAY);
    const bool is_shown = !gw::tell_unless_done(written) && gw::window_policy().shows_reasons();
    set_message(is_shown ? gw::failure_line(written.failure()) : " ");
    return !is_shown;
}

void apply_fontset_cb(Widget, XtPointer, XtPointer) {
    apply_fontsets();
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_fontsets_dlg);
}

void ok_fontset_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    if (apply_fontsets() && user_is_root != 0) cancel_cb(w, client_data, call_data);
}

void reset_fontset_cb(Widget, XtPointer, XtPointer) {
    const gw::Turn turn(fontset_work);
    if (!turn.is_first()) return;
    fontsetdlg_cb = {};
    set_fontsetsdlg_cb_struct();
    init_wi_installed_fontsets_choose_menu();
    init_wi_fontsets_dlg_scrolledlist();
    init_wi_fontsets_dlg_sample_text();
    init_wi_delete_set_dlg_scrolledlist();
}

void delete_set_dlg_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(wi_delete_set_dlg);
}

void new_set_dlg_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(wi_new_set_dlg);
}

void sample_text_dlg_cb(Widget, XtPointer, XtPointer) {
    set_wi_sample_text_dlg(sample().c_str());
    XtManageChild(wi_sample_text_dlg);
}

// --- creation ----------------------------------------------------------------

Widget create_choice(Widget dialog) {
    Widget label = gw::label(dialog, "choose_label", Message::CHOOSE_FONTSET);
    Attach(label).top_form(GAP + 6).left_form(GAP);
    wi_fontsets_dlg_choose_menu = gw::option_menu(dialog, "choose_menu", "choose_pulldown", " ");
    Attach(wi_fontsets_dlg_choose_menu.menu).top_form(GAP).right_of(label, GAP);

    Widget row = gw::form(dialog, "set_button_form");
    Attach(row).below(label, 2 * GAP).sides(0);
    gw::fill_with_buttons(row, {{"delete_set_button", Message::DELETE_SET, delete_set_dlg_cb},
                                {"new_set_button", Message::NEW_SET, new_set_dlg_cb},
                                {"sample_text_button", Message::FONTSET_SAMPLE, sample_text_dlg_cb}});
    Widget line = gw::separator(dialog, "separator");
    Attach(line).below(row, GAP).sides(0);
    return line;
}

/// Returns the separator above them.
Widget create_buttons(Widget dialog) {
    const gw::BottomRow row =
        gw::bottom_row(dialog, {"msg_label", "button_form", "separator1"},
                       {{"ok_button", Message::FONTSETS_OK, ok_fontset_cb},
                        {"apply_button", Message::FONTSETS_APPLY, apply_fontset_cb},
                        {"reset_button", Message::FONTSETS_RESET, reset_fontset_cb},
                        {"cancel_button", Message::FONTSETS_CANCEL, cancel_cb},
                        gw::help_button("help_button", Message::FONTSETS_HELP, gw::HelpSection::FONTSETS)});
    wi_fontsets_dlg_msg_label = row.message;
    gw::end_dialog(dialog, {.cancel_button = row.buttons[3], .close = cancel_cb});
    return row.separator;
}

Dimension sample_height(Widget dialog) {
    if (!gw::looks().fits_screen) return SAMPLE_HEIGHT;
    return static_cast<Dimension>(gw::in_pixels(dialog, SAMPLE_UNITS, XmVERTICAL));
}

void create_list_and_sample(Widget dialog, Widget above, Widget below) {
    wi_fontsets_dlg_sample_text = gw::text_field(dialog, "sample_text");
    gw::use_fonts(wi_fontsets_dlg_sample_text, gw::looks().sample_fonts, INSTALLED_FONT);
    XtVaSetValues(wi_fontsets_dlg_sample_text, XmNheight, sample_height(dialog), nullptr);
    Attach(wi_fontsets_dlg_sample_text).sides(GAP).above(below, GAP);
    dialog_sample = gw::KeptText(wi_fontsets_dlg_sample_text);
    Widget sample_label = gw::label(dialog, "sample_label", Message::FONTSET_SAMPLE_LABEL);
    Attach(sample_label).left_form(GAP).above(wi_fontsets_dlg_sample_text, 2);

    Widget list_end = gw::create_coverage(dialog, sample_label);
    if (list_end == nullptr) list_end = sample_label;

    Widget title = gw::label(dialog, "list_label", Message::AVAILABLE_FONTS);
    Attach(title).below(above, GAP).left_form(GAP);
    // A bar in the colours of a selected line, as a legend for the list.
    Widget key = gw::label(dialog, "members_key", "      ");
    Widget members = gw::label(dialog, "members_label", Message::FONTSET_MEMBERS);
    Pixel background = 0;
    XtVaGetValues(members, XmNforeground, &background, nullptr);
    XtVaSetValues(key, XmNbackground, background, nullptr);
    Attach(members).below(above, GAP).right_form(GAP);
    Attach(key).below(above, GAP).left_of(members, GAP);

    wi_fontsets_dlg_scrolledlist = gw::scrolled_list(dialog, "scrolledlist");
    XtVaSetValues(wi_fontsets_dlg_scrolledlist, XmNselectionPolicy, XmMULTIPLE_SELECT, XmNvisibleItemCount,
                  VISIBLE_FONTS, nullptr);
    gw::set_list_columns(wi_fontsets_dlg_scrolledlist, 75);
    Attach(XtParent(wi_fontsets_dlg_scrolledlist)).below(title, 2).sides(GAP).above(list_end, GAP);
    XtAddCallback(wi_fontsets_dlg_scrolledlist, XmNmultipleSelectionCallback, update_base_names_cb, nullptr);
}

}  // namespace

// --- what the dialogs show ---------------------------------------------------

void set_fontsetsdlg_cb_struct() {
    fontsetdlg_cb.current = {};
    const std::string directory = fontset_directory();
    if (!directory.empty()) {
        fontsetdlg_cb.file = std::make_unique<GW_FONTSET_FILE>(directory.c_str(), gw::FONTSET_FILE_NAME,
                                                               gw::FILE_TYPE_REGULAR);
    }
    fontsetdlg_cb.locale_sample_text =
        Gw_resrc.locale_sample_text != nullptr ? Gw_resrc.locale_sample_text : "";
    if (fontsetdlg_cb.locale_sample_text.empty() && gw::window_policy().shows_fontset_coverage())
        fontsetdlg_cb.locale_sample_text = gw::text_of_locale();
}

void init_wi_installed_fontsets_choose_menu() {
    const std::vector<Widget> old = gw::entries_of(wi_fontsets_dlg_choose_menu.pulldown);
    if (fontsetdlg_cb.file) {
        for (const GWFontSet* set : fontsetdlg_cb.file->get_fontsets()) add_to_menu(set->get_name());
    }
    // The menu always shows one of its buttons, so the new ones are made before the old ones go.
    for (Widget button : old) gw::take_entry_away(button);
    make_first_current();
    show_menu_if_filled();
}

void init_wi_fontsets_dlg_scrolledlist() {
    collect_fonts();
    listed_names.clear();
    for (GWFont* font : xlfd_font_list) listed_names.emplace_back(font->get_xlfd_name());
    // The fonts belong to the installed list, which may be filled again.
    xlfd_font_list.clear();
    gw::fill_list(wi_fontsets_dlg_scrolledlist, listed_names);
}

void init_wi_fontsets_dlg_sample_text() {
    set_sample(fontsetdlg_cb.locale_sample_text);
    if (fontsetdlg_cb.file && !fontsetdlg_cb.file->get_fontsets().is_empty()) {
        make_current(*fontsetdlg_cb.file->get_fontsets().begin());
    } else {
        set_message(gw::text_of(Message::NO_FONTSET));
        gw::show_coverage(*fontsetdlg_cb.current);
    }
}

void select_scrolled_list(Widget list, const GWFontSet* set) {
    XmListDeselectAllItems(list);
    int topmost = 0;
    for (GWFont* font : set->get_fonts()) {
        const auto name =
            std::find(listed_names.begin(), listed_names.end(), std::string(font->get_xlfd_name()));
        if (name == listed_names.end()) continue;
        const int position = static_cast<int>(name - listed_names.begin()) + 1;
        XmListSelectPos(list, position, False);
        topmost = topmost == 0 ? position : std::min(topmost, position);
    }
    if (set->get_fonts().is_empty()) topmost = static_cast<int>(listed_names.size());
    if (topmost > 0) XmListSetPos(list, topmost);
}

void display_sample_text(const GWFontSet* set) {
    if (set == nullptr) return;
    const char* names = set->get_base_names();
    const std::string text = sample();
    const bool shown =
        names != nullptr && display_text_in_fontset(wi_fontsets_dlg_sample_text, names, text.c_str()) != 0;
    if (shown) dialog_sample.shown_again(text);
    const std::string missing = gw::show_coverage(*set);
    if (shown) {
        set_message(" ");
    } else {
        set_message(missing.empty() ? gw::text_of(Message::FONTS_NOT_FOUND)
                                    : gw::text_of(Message::FONTSET_NOT_MADE, {missing}));
    }
}

namespace gw {

bool has_fontsets() {
    return Gw_resrc.fontset_support != False || window_policy().shows_fontset_coverage();
}

}  // namespace gw

namespace fontsetsdlg {

void set_message(const std::string& text) {
    gw::set_label(wi_fontsets_dlg_msg_label, text);
}

std::string sample() {
    return dialog_sample.text();
}

void set_sample(const std::string& text) {
    dialog_sample.show(text);
}

void add_to_menu(const char* name) {
    Widget button = gw::menu_button(wi_fontsets_dlg_choose_menu.pulldown, "fontsets_button", name);
    XtAddCallback(button, XmNactivateCallback, fontsets_button_cb, nullptr);
}

bool menu_has(const std::string& name) {
    const std::vector<Widget> buttons = gw::entries_of(wi_fontsets_dlg_choose_menu.pulldown);
    return std::any_of(buttons.begin(), buttons.end(),
                       [&](Widget button) { return gw::label_of(button) == name; });
}

void remove_from_menu(const std::string& name) {
    for (Widget button : gw::entries_of(wi_fontsets_dlg_choose_menu.pulldown)) {
        if (gw::label_of(button) == name) gw::take_entry_away(button);
    }
}

void show_menu_if_filled() {
    const std::vector<Widget> buttons = gw::entries_of(wi_fontsets_dlg_choose_menu.pulldown);
    if (buttons.empty()) {
        XtUnmanageChild(wi_fontsets_dlg_choose_menu.menu);
        return;
    }
    const char* name = fontsetdlg_cb.current ? fontsetdlg_cb.current->get_name() : "";
    const auto shown = std::find_if(buttons.begin(), buttons.end(),
                                    [name](Widget button) { return gw::label_of(button) == name; });
    XtVaSetValues(wi_fontsets_dlg_choose_menu.menu, XmNmenuHistory,
                  shown != buttons.end() ? *shown : buttons.front(), nullptr);
    XtManageChild(wi_fontsets_dlg_choose_menu.menu);
}

void make_first_current() {
    const bool has_some = fontsetdlg_cb.file && !fontsetdlg_cb.file->get_fontsets().is_empty();
    fontsetdlg_cb.current = has_some ? *fontsetdlg_cb.file->get_fontsets().begin() : new GWFontSet("");
}

void show_current() {
    select_scrolled_list(wi_fontsets_dlg_scrolledlist, fontsetdlg_cb.current.get());
    if (*fontsetdlg_cb.current->get_name() == '\0') {
        set_message(gw::text_of(Message::NO_FONTSET));
        gw::show_coverage(*fontsetdlg_cb.current);
    } else {
        display_sample_text(fontsetdlg_cb.current.get());
    }
}

}  // namespace fontsetsdlg

Widget create_fontsets_dlg(const char* name, Widget parent) {
    wi_fontsets_dlg = gw::form_dialog(parent, name, Message::FONTSETS_TITLE);
    Widget line = create_choice(wi_fontsets_dlg);
    create_list_and_sample(wi_fontsets_dlg, line, create_buttons(wi_fontsets_dlg));
    XtVaSetValues(wi_fontsets_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    gw::BusyWindows::include(wi_fontsets_dlg);
    create_delete_set_dlg("delete_set_dlg", parent);
    create_new_set_dlg("new_set_dlg", parent);
    create_sample_text_dlg("sample_text_dlg", parent);

    set_fontsetsdlg_cb_struct();
    init_wi_installed_fontsets_choose_menu();
    init_wi_fontsets_dlg_scrolledlist();
    init_wi_fontsets_dlg_sample_text();
    init_wi_delete_set_dlg_scrolledlist();
    return wi_fontsets_dlg;
}

void start_fontsets_dlg() {
    XtManageChild(wi_fontsets_dlg);
}
