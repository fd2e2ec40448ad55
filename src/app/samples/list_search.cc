// SPDX-License-Identifier: MIT
#include "app/samples/list_search.h"

#include <algorithm>
#include <utility>

#include "app/kit/attach.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/mnemonics.h"
#include "app/kit/widgets.h"
#include "texts/messages.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace gw {

namespace {

constexpr int GAP = 8;
constexpr int TOGGLE_GAP = 3;  // in Japanese, with a letter behind each text, there is room for no more
constexpr int FIELD_END = 58;  // in hundredths of the form's width
constexpr int COUNT_BEGIN = 60;
constexpr int ALL = 100;
constexpr int MOST_CHARACTERS = 10000;
constexpr int LOW_MARGIN = 3;

struct FormatToggle {
    SearchedFormat format;
    const char* name;
    Message text;
};
constexpr FormatToggle FORMATS[] = {
    {SearchedFormat::TYPE1, "_type1_toggle", Message::SEARCH_TYPE1},
    {SearchedFormat::TRUETYPE, "_truetype_toggle", Message::SEARCH_TRUETYPE},
    {SearchedFormat::OPENTYPE, "_opentype_toggle", Message::SEARCH_OPENTYPE},
    {SearchedFormat::BITMAP, "_bitmap_toggle", Message::SEARCH_BITMAP},
    {SearchedFormat::ALIAS, "_alias_toggle", Message::SEARCH_ALIASES},
};

bool is_on(Widget toggle) {
    return toggle == nullptr || XmToggleButtonGetState(toggle) != 0;
}

KeySym key_of(XEvent* event, std::string& typed) {
    char text[8] = {};
    KeySym key = NoSymbol;
    const int length = XLookupString(&event->xkey, text, sizeof text, &key, nullptr);
    typed.assign(text, static_cast<std::size_t>(std::max(length, 0)));
    return key;
}

}  // namespace

// --- the controls ----------------------------------------------------------------

Widget ListSearch::create(Widget form, Widget above, int side, Choices choices) {
    Widget title = label(form, "_search_label", Message::SEARCH_LABEL);
    field_ = text_field(form, "_search_textfield");
    label_for(title, field_);
    XtVaSetValues(field_, XmNmaxLength, MOST_CHARACTERS, XmNmarginHeight, LOW_MARGIN, nullptr);
    XtAddCallback(field_, XmNvalueChangedCallback, typed_cb, this);
    XtInsertEventHandler(field_, KeyPressMask, False, key_in_field, this, XtListHead);
    count_ = label(form, "_search_count", " ");
    XtVaSetValues(count_, XmNalignment, XmALIGNMENT_BEGINNING, nullptr);

    Attach(field_).below(above, GAP).right_of(title, GAP);
    XtVaSetValues(field_, XmNrightAttachment, XmATTACH_POSITION, XmNrightPosition, FIELD_END, nullptr);
    Attach(title).left_form(side).below(above, GAP + centring_offset(title, field_));
    Attach(count_).columns(COUNT_BEGIN, ALL).below(above, GAP + centring_offset(count_, field_));
    create_toggles(form, choices);
    Attach(toggles_).below(field_, 2).left_form(side);
    return toggles_;
}

void ListSearch::create_toggles(Widget form, Choices choices) {
    Arg args[3];
    XtSetArg(args[0], XmNorientation, XmHORIZONTAL);
    XtSetArg(args[1], XmNmarginHeight, 0);
    XtSetArg(args[2], XmNspacing, TOGGLE_GAP);
    toggles_ = XmCreateRowColumn(form, name_arg("_search_toggles"), args, 3);
    XtManageChild(toggles_);
    for (const FormatToggle& format : FORMATS) {
        if (format.format == SearchedFormat::ALIAS && !choices.aliases) continue;
        formats_[static_cast<std::size_t>(format.format)] = add_toggle(format.name, text_of(format.text));
    }
    if (!choices.scope) return;
    own_ = add_toggle("_own_toggle", text_of(Message::SEARCH_OWN));
    everyones_ = add_toggle("_everyones_toggle", text_of(Message::SEARCH_EVERYONES));
}

Widget ListSearch::add_toggle(const char* name, const std::string& text) {
    Widget toggle = gw::toggle(toggles_, name, text);
    XtVaSetValues(toggle, XmNset, XmSET, nullptr);
    XtAddCallback(toggle, XmNvalueChangedCallback, typed_cb, this);
    return toggle;
}

void ListSearch::attach(Widget list, Source source) {
    list_ = list;
    source_ = std::move(source);
    filter_ = std::make_unique<RowFilter>(
        list, [this](bool are_new) { return wanted(are_new); }, [this] { show_count(); });
    XtInsertEventHandler(list, KeyPressMask, False, key_in_list, this, XtListHead);
}

void ListSearch::clear() {
    if (field_ != nullptr) XmTextFieldSetString(field_, name_arg(""));
}

// --- keys ------------------------------------------------------------------------

void ListSearch::typed_cb(Widget, XtPointer search, XtPointer) {
    auto* self = static_cast<ListSearch*>(search);
    if (self->filter_) self->filter_->apply();
}

/// Escape clears the field, and only then closes the dialog that it is in. Down leads to what was found.
void ListSearch::key_in_field(Widget field, XtPointer search, XEvent* event, Boolean* goes_on) {
    auto* self = static_cast<ListSearch*>(search);
    std::string typed;
    const KeySym key = key_of(event, typed);
    if (key == XK_Escape && !field_text(field).empty()) {
        self->clear();
        *goes_on = False;
    } else if (key == XK_Down && self->list_ != nullptr) {
        XmProcessTraversal(self->list_, XmTRAVERSE_CURRENT);
        *goes_on = False;
    }
}

/// What is typed in the list goes to the field. A blank selects there.
void ListSearch::key_in_list(Widget, XtPointer search, XEvent* event, Boolean* goes_on) {
    auto* self = static_cast<ListSearch*>(search);
    if ((event->xkey.state & (ControlMask | Mod1Mask | Mod4Mask)) != 0) return;
    std::string typed;
    const KeySym key = key_of(event, typed);
    if (key == XK_Escape && !field_text(self->field_).empty()) {
        self->clear();
        *goes_on = False;
    } else if (typed.size() == 1 && typed[0] > ' ' && typed[0] <= '~') {
        XmTextFieldInsert(self->field_, XmTextFieldGetLastPosition(self->field_), typed.data());
        XmTextFieldSetInsertionPosition(self->field_, XmTextFieldGetLastPosition(self->field_));
        XmProcessTraversal(self->field_, XmTRAVERSE_CURRENT);
        *goes_on = False;
    }
}

// --- what is found ---------------------------------------------------------------

bool ListSearch::is_in_scope(const SearchedRow& row) const {
    if (own_ == nullptr || (is_on(own_) && is_on(everyones_))) return true;
    if (!is_on(own_) && !is_on(everyones_)) return false;
    return std::any_of(row.directories.begin(), row.directories.end(), [this](const std::string& directory) {
        return source_.is_own(directory) == is_on(own_);
    });
}

bool ListSearch::is_wanted(const SearchedRow& row, const FontSearch& search) const {
    return is_on(formats_[static_cast<std::size_t>(row.format)]) && search.finds(row) && is_in_scope(row);
}

std::vector<bool> ListSearch::wanted(bool are_new) {
    if (are_new) are_rows_known_ = false;
    const FontSearch search(field_text(field_));
    const bool has_all_formats = std::all_of(formats_.begin(), formats_.end(), is_on);
    if (search.is_empty() && has_all_formats && is_on(own_) && is_on(everyones_)) return {};
    if (!std::exchange(are_rows_known_, true)) rows_ = source_.rows();
    std::vector<bool> flags;
    flags.reserve(rows_.size());
    for (const SearchedRow& row : rows_) flags.push_back(is_wanted(row, search));
    return flags;
}

void ListSearch::show_count() {
    const auto number = [](int count) { return std::to_string(count); };
    std::string text;
    if (filter_->count() > 0)
        text = text_of(Message::SEARCH_COUNT, {number(filter_->shown_count()), number(filter_->count())});
    if (const int hidden = filter_->selected_and_hidden(); hidden > 0)
        text += text_of(Message::SEARCH_HIDDEN, {number(hidden)});
    set_label(count_, text.empty() ? " " : text);
}

}  // namespace gw
