// SPDX-License-Identifier: MIT
#include "app/doctor/answer_pages.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "app/doctor/answer_texts.h"
#include "app/kit/attach.h"
#include "app/kit/copyable.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/kit/state_list.h"
#include "app/kit/widgets.h"
#include "app/kit/wrapped_text.h"
#include "app/program/failures.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_text.h"
#include "model/gw_font.h"
#include "texts/messages.h"
#include "texts/sentences.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

namespace gw {

namespace {

using diagnosis::Answer;
using diagnosis::CharsetCoverage;
using diagnosis::Cure;
using diagnosis::ElementReport;
using diagnosis::NearFont;

constexpr int GAP = 8;
constexpr int CURES = 3;
constexpr short CURE_ROWS = 2;
constexpr int DEEDS = 2;
constexpr int DEEDS_ON_LOW_SCREENS = 1;
constexpr int LINES = 6;
constexpr short REMARKS = 3;

/// Calls a method of a page.
template <class Page, void (Page::*Method)()>
void method_cb(Widget, XtPointer page, XtPointer) {
    (static_cast<Page*>(page)->*Method)();
}

/// A list of which one line is selected, whenever it has lines.
template <class Page, void (Page::*Selected)()>
Widget choice(Widget form, const char* name, int rows, Page* page) {
    Widget list = copyable_list(form, name);
    // Where lists own the primary selection, each loses its own when another is selected in.
    XtVaSetValues(list, XmNselectionPolicy, XmBROWSE_SELECT, XmNprimaryOwnership, XmOWN_NEVER,
                  XmNvisibleItemCount, rows, nullptr);
    add_tones(list);
    XtAddCallback(list, XmNbrowseSelectionCallback, method_cb<Page, Selected>, page);
    return list;
}

Widget scroller(Widget list_or_text) {
    return XtParent(list_or_text);
}

/// The element of `all` that is selected in the list; null without one.
template <class T>
const T* selected_in(Widget list, const std::vector<T>& all) {
    const auto position = static_cast<std::size_t>(selected_position(list));
    return position >= 1 && position <= all.size() ? &all[position - 1] : nullptr;
}

void select_first(Widget list) {
    XmListSelectPos(list, 1, False);
}

template <class Page>
Widget button(Widget form, const char* name, Message text, void (*pressed)(Widget, XtPointer, XtPointer),
              Page* page) {
    Widget made = push_button(form, name, text);
    XtAddCallback(made, XmNactivateCallback, pressed, page);
    activate(made, 0);
    return made;
}

/// The width of the lists beside a column of buttons, in hundredths of the form's; and where the buttons
/// begin.
constexpr int BESIDE_BUTTONS = 82;
constexpr int BUTTONS = 83;
constexpr int BESIDE_LONG_BUTTONS = 73;
constexpr int LONG_BUTTONS = 74;
constexpr int ALL = 100;

CopyRow copy_row(Widget form, const char* label_name, Message text, const char* field_name,
                 const char* button_name, XtCallbackProc copy, XtPointer page) {
    CopyRow row = {label(form, label_name, text), copyable_field(form, field_name),
                   button(form, button_name, Message::DOCTOR_COPY, copy, page)};
    Attach(row.button).columns(BUTTONS, ALL);
    Attach(row.field).columns(0, BESIDE_BUTTONS).right_of(row.label, GAP);
    return row;
}

/// Puts the row above `below`, or at the bottom of the form where that is null. Label, field and button have
/// their middles at one height. Returns the tallest of them.
Widget place(const CopyRow& row, Widget below, int gap) {
    const auto parts = {row.label, row.field, row.button};
    Widget tallest =
        std::max(parts, [](Widget one, Widget other) { return natural_height(one) < natural_height(other); });
    for (Widget part : parts) {
        const int offset = gap + centring_offset(part, tallest);
        if (below != nullptr) {
            Attach(part).above(below, offset);
        } else {
            Attach(part).bottom_form(offset);
        }
    }
    return tallest;
}

void show_to_copy(const CopyRow& row, const std::string& text) {
    show_in_field(row.field, text);
    activate(row.button, text.empty() ? 0 : 1);
}

/// The size of a font by its full name, and a common one where it has none.
int sample_pixels(const std::string& name) {
    constexpr int COMMON = 24;
    GWFont font(GWFont::BITMAP_FONT);
    font.set_xlfd_name(name.c_str());
    const int pixels = std::atoi(font.get_field(GWFont::PIXEL_SIZE));
    return pixels > 0 ? pixels : COMMON;
}

}  // namespace

// --- what helps ---------------------------------------------------------------

void CuresPage::create(Widget form, Widget) {
    deeds_ = choice<CuresPage, &CuresPage::select>(form, "deeds_list",
                                                   is_screen_low(form) ? DEEDS_ON_LOW_SCREENS : DEEDS, this);
    Attach(scroller(deeds_)).columns(0, BESIDE_BUTTONS).bottom_form(0);
    undo_ = button(form, "undo_button", Message::DOCTOR_UNDO, method_cb<CuresPage, &CuresPage::undo>, this);
    Attach(undo_).columns(BUTTONS, ALL).bottom_form(0);
    Widget title = label(form, "deeds_label", Message::DOCTOR_DEEDS);
    Attach(title).left_form(0).above(scroller(deeds_), 2);

    command_ = copy_row(form, "command_label", Message::DOCTOR_COMMAND, "command_value",
                        "copy_command_button", method_cb<CuresPage, &CuresPage::copy_command>, this);
    Widget row = place(command_, title, GAP);

    what_ = wrapped_text(form, "cure_text", CURE_ROWS);
    Attach(scroller(what_)).columns(0, BESIDE_BUTTONS).above(row, GAP);
    list_ = choice<CuresPage, &CuresPage::select>(form, "cures_list", CURES, this);
    do_ = button(form, "do_button", Message::DOCTOR_DO, method_cb<CuresPage, &CuresPage::carry_out>, this);
    Attach(do_).columns(BUTTONS, ALL).top_form(0);
    Attach(scroller(list_)).columns(0, BESIDE_BUTTONS).top_form(0).above(scroller(what_), GAP);
}

void CuresPage::show(const Answer& answer) {
    cures_ = answer.cures;
    fill_state_list(list_, cure_lines(cures_));
    select_first(list_);
    select();
}

void CuresPage::show_deeds(const std::vector<diagnosis::Deed>& deeds) {
    std::vector<std::string> lines;
    lines.reserve(deeds.size());
    for (const diagnosis::Deed& deed : deeds) lines.push_back(in_words(deed.what));
    fill_list(deeds_, lines);
    select_first(deeds_);
    has_deeds_ = !deeds.empty();
    activate(undo_, has_deeds_ ? 1 : 0);
}

void CuresPage::select() {
    const Cure* cure = selected_in(list_, cures_);
    show_wrapped(what_, cure != nullptr ? in_words(cure->what) : "");
    activate(do_, cure != nullptr && cure->command.empty() ? 1 : 0);
    show_to_copy(command_, cure != nullptr ? cure->command : "");
}

void CuresPage::carry_out() {
    const Cure* cure = selected_in(list_, cures_);
    // A copy: the answer changes.
    if (cure != nullptr && cure->command.empty()) actions_.carry_out(Cure(*cure));
}

void CuresPage::copy_command() {
    if (const Cure* cure = selected_in(list_, cures_); cure != nullptr) actions_.copy(cure->command);
}

void CuresPage::undo() {
    const int position = selected_position(deeds_);
    if (position > 0) actions_.undo(static_cast<std::size_t>(position - 1));
}

// --- the font path ------------------------------------------------------------

void PathPage::create(Widget form, Widget) {
    remarks_ = wrapped_text(form, "remarks_text", REMARKS);
    Attach(scroller(remarks_)).sides(0).bottom_form(0);
    list_ = choice<PathPage, &PathPage::select>(form, "path_list", LINES, this);
    Attach(scroller(list_)).sides(0).top_form(0).above(scroller(remarks_), GAP);
}

void PathPage::show(const Answer& answer) {
    path_ = answer.path;
    fill_state_list(list_, path_lines(answer));
    // What does not work is what the user looks for.
    const auto ailing = std::find_if(path_.begin(), path_.end(), [](const ElementReport& element) {
        return element.state != diagnosis::ElementState::WORKS;
    });
    const auto place = static_cast<int>(ailing == path_.end() ? 1 : ailing - path_.begin() + 1);
    XmListSelectPos(list_, place, False);
    select();
    appear();
}

/// How many lines are seen is known only now.
void PathPage::appear() {
    if (path_.empty() || !XtIsManaged(XtParent(scroller(list_)))) return;
    XmListSetPos(list_, 1);
    show_position(list_, selected_position(list_));
}

void PathPage::select() {
    const ElementReport* element = selected_in(list_, path_);
    show_wrapped(remarks_, element != nullptr ? remarks_text(*element) : "");
}

// --- the nearest fonts --------------------------------------------------------

void NearestPage::create(Widget form, Widget message) {
    sample_ = text_field(form, "_sample_textfield");
    XtVaSetValues(sample_, XmNeditable, False, XmNcursorPositionVisible, False, nullptr);
    Attach(sample_).sides(0).bottom_form(0);
    message_ = message;
    explain_samples_in(sample_, message);
    file_sample_.create(form, sample_);

    differences_ = wrapped_text(form, "differences_text", REMARKS);
    Attach(scroller(differences_)).columns(0, BESIDE_LONG_BUTTONS).above(sample_, GAP);
    use_ =
        button(form, "use_button", Message::DOCTOR_USE_IT, method_cb<NearestPage, &NearestPage::use>, this);
    Attach(use_).columns(LONG_BUTTONS, ALL).above(sample_, GAP);
    copy_ = button(form, "copy_name_button", Message::DOCTOR_COPY_NAME,
                   method_cb<NearestPage, &NearestPage::copy_name>, this);
    Attach(copy_).columns(LONG_BUTTONS, ALL).above(use_, 2);

    list_ = choice<NearestPage, &NearestPage::select>(form, "nearest_list", LINES, this);
    Attach(scroller(list_)).sides(0).top_form(0).above(scroller(differences_), GAP);
}

void NearestPage::show(const Answer& answer) {
    fonts_ = answer.nearest;
    fill_state_list(list_, near_lines(fonts_));
    select_first(list_);
    select();
}

void NearestPage::appear() {
    show_sample();
}

void NearestPage::select() {
    const NearFont* font = selected_in(list_, fonts_);
    show_wrapped(differences_, font != nullptr ? near_text(*font) : "");
    activate(copy_, font != nullptr ? 1 : 0);
    activate(use_, font != nullptr && actions_.alias(*font) ? 1 : 0);
    show_sample();
}

/// Only where it is seen: the server is asked for it.
void NearestPage::show_sample() {
    const NearFont* font = selected_in(list_, fonts_);
    file_sample_.hide();
    clear_sample_textfield(sample_);
    if (font == nullptr || !XtIsManaged(XtParent(sample_))) return;
    set_label(message_, " ");
    if (font->is_served || font->file.empty()) {
        show_in_name(sample_, font->name, sample_text, font->file);
        return;
    }
    const Outcome drawn = file_sample_.show(font->file, sample_text, sample_pixels(font->name));
    set_label(message_, drawn ? text_of(Message::DOCTOR_FROM_FILE) : failure_line(drawn.failure()));
}

void NearestPage::copy_name() {
    if (const NearFont* font = selected_in(list_, fonts_); font != nullptr) actions_.copy(font->name);
}

void NearestPage::use() {
    const NearFont* font = selected_in(list_, fonts_);
    if (font == nullptr) return;
    if (const std::optional<Cure> cure = actions_.alias(*font); cure) actions_.carry_out(*cure);
}

// --- packages -----------------------------------------------------------------

void PackagesPage::create(Widget form, Widget) {
    command_ = copy_row(form, "install_label", Message::DOCTOR_COMMAND, "install_value",
                        "copy_install_button", method_cb<PackagesPage, &PackagesPage::copy_command>, this);
    Widget row = place(command_, nullptr, 0);
    list_ = choice<PackagesPage, &PackagesPage::select>(form, "packages_list", LINES, this);
    Attach(scroller(list_)).sides(0).top_form(0).above(row, GAP);
}

void PackagesPage::show(const Answer& answer) {
    packages_ = answer.packages;
    fill_list(list_, package_lines(packages_));
    select_first(list_);
    select();
}

void PackagesPage::select() {
    const diagnosis::PackageHint* hint = selected_in(list_, packages_);
    show_to_copy(command_, hint != nullptr ? hint->command : "");
}

void PackagesPage::copy_command() {
    if (const diagnosis::PackageHint* hint = selected_in(list_, packages_); hint != nullptr)
        actions_.copy(hint->command);
}

// --- character sets -----------------------------------------------------------

void CharsetsPage::create(Widget form, Widget) {
    names_ = copy_row(form, "base_names_label", Message::DOCTOR_BASE_NAMES, "base_names_value",
                      "copy_base_names_button", method_cb<CharsetsPage, &CharsetsPage::copy_names>, this);
    Widget row = place(names_, nullptr, 0);
    coverage_ = wrapped_text(form, "coverage_text", REMARKS);
    Attach(scroller(coverage_)).sides(0).above(row, GAP);
    list_ = choice<CharsetsPage, &CharsetsPage::select>(form, "charsets_list", LINES, this);
    Attach(scroller(list_)).sides(0).top_form(0).above(scroller(coverage_), GAP);
}

void CharsetsPage::show(const Answer& answer) {
    charsets_ = answer.charsets;
    base_names_ = answer.base_names;
    fill_state_list(list_, charset_lines(answer));
    select_first(list_);
    select();
    show_to_copy(names_, base_names_);
}

void CharsetsPage::select() {
    const CharsetCoverage* charset = selected_in(list_, charsets_);
    show_wrapped(coverage_, charset != nullptr ? coverage_text(*charset) : "");
}

void CharsetsPage::copy_names() {
    actions_.copy(base_names_);
}

}  // namespace gw
