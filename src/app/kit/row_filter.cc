// SPDX-License-Identifier: MIT
#include "app/kit/row_filter.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"

#include <Xm/List.h>

namespace gw {

namespace {

// A list of 50,000 rows takes the toolkit longer than a keystroke may: what is seen at once comes first.
constexpr std::size_t AT_ONCE = 500;
constexpr std::size_t AT_A_TIME = 4000;

std::map<Widget, RowFilter*>& filters() {
    static std::map<Widget, RowFilter*> by_list;
    return by_list;
}

/// The selected items of the widget, by place.
std::vector<int> selected_places(Widget list) {
    int* places = nullptr;
    int count = 0;
    if (XmListGetSelectedPos(list, &places, &count) == False) return {};
    const XtOwned<int> owned(places);
    return {places, places + count};
}

unsigned modifiers_of(const XEvent& event) {
    switch (event.type) {
        case KeyPress:
        case KeyRelease:
            return event.xkey.state;
        case ButtonPress:
        case ButtonRelease:
            return event.xbutton.state;
        case MotionNotify:
            return event.xmotion.state;
        default:
            return 0;
    }
}

/// Whether the user has not only added to what was selected, or taken away from it. What the toolkit says of
/// it is right for the mouse only.
bool begins_anew(Widget list, const XmListCallbackStruct* selected) {
    if (selected == nullptr) return false;
    // Arrow keys have no event.
    if (selected->event == nullptr) return selected->selected_item_count == 1;
    unsigned char mode = XmNORMAL_MODE;
    XtVaGetValues(list, XmNselectionMode, &mode, nullptr);
    return mode == XmNORMAL_MODE && (modifiers_of(*selected->event) & (ShiftMask | ControlMask)) == 0;
}

}  // namespace

RowFilter::RowFilter(Widget list, Wanted wanted, std::function<void()> changed)
    : list_(list), wanted_(std::move(wanted)), changed_(std::move(changed)) {
    filters()[list] = this;
    XtAddCallback(list, XmNextendedSelectionCallback, selected_cb, this);
}

RowFilter::~RowFilter() {
    if (filling_ != 0) XtRemoveWorkProc(filling_);
    XtRemoveCallback(list_, XmNextendedSelectionCallback, selected_cb, this);
    filters().erase(list_);
}

RowFilter* RowFilter::of(Widget list) {
    const auto found = filters().find(list);
    return found != filters().end() ? found->second : nullptr;
}

/// A selection that begins anew leaves nothing selected that the user does not see.
void RowFilter::selected_cb(Widget list, XtPointer filter, XtPointer call_data) {
    auto* self = static_cast<RowFilter*>(filter);
    const auto* selected = static_cast<const XmListCallbackStruct*>(call_data);
    if (self->hidden_selection_.empty() || !begins_anew(list, selected)) return;
    self->hidden_selection_.clear();
    self->changed_();
}

int RowFilter::place_of(int position) const {
    const auto found = std::lower_bound(shown_.begin(), shown_.end(), position);
    return found != shown_.end() && *found == position ? static_cast<int>(found - shown_.begin()) + 1 : 0;
}

int RowFilter::row_at(int place) const {
    return place >= 1 && place <= shown_count() ? shown_[static_cast<std::size_t>(place - 1)] : 0;
}

std::vector<int> RowFilter::wanted_rows() {
    const std::vector<bool> wanted = wanted_(std::exchange(are_new_, false));
    std::vector<int> rows(lines_.size());
    std::iota(rows.begin(), rows.end(), 1);
    if (wanted.size() == lines_.size())
        std::erase_if(rows, [&wanted](int row) { return !wanted[static_cast<std::size_t>(row - 1)]; });
    return rows;
}

// --- filling the widget ----------------------------------------------------------

void RowFilter::add_rows(std::size_t most) {
    constexpr int AT_THE_END = 0;
    const std::size_t end = std::min(shown_.size(), filled_ + most);
    std::vector<std::string> lines;
    lines.reserve(end - filled_);
    for (; filled_ < end; ++filled_) lines.push_back(lines_[static_cast<std::size_t>(shown_[filled_] - 1)]);
    XmTexts texts(lines);
    if (texts.count() > 0) XmListAddItemsUnselected(list_, texts.table(), texts.count(), AT_THE_END);
}

Boolean RowFilter::fill_more(XtPointer filter) {
    auto* self = static_cast<RowFilter*>(filter);
    self->add_rows(AT_A_TIME);
    if (self->filled_ < self->shown_.size()) return False;
    self->filling_ = 0;
    return True;
}

void RowFilter::complete() {
    if (filling_ != 0) XtRemoveWorkProc(filling_);
    filling_ = 0;
    add_rows(shown_.size());
}

void RowFilter::show(std::vector<int> rows, std::size_t at_once) {
    shown_ = std::move(rows);
    filled_ = 0;
    XmListDeleteAllItems(list_);
    add_rows(at_once);
    if (filled_ < shown_.size() && filling_ == 0) filling_ = XtAppAddWorkProc(app, fill_more, this);
}

void RowFilter::apply() {
    std::vector<int> rows = wanted_rows();
    if (rows != shown_) {
        const std::vector<int> selected = selection();
        hidden_selection_.clear();
        show(std::move(rows), AT_ONCE);
        select_too(selected);
        if (!selected.empty() && is_shown(selected.front())) show_position(list_, selected.front());
    }
    changed_();
}

void RowFilter::fill(std::vector<std::string> lines) {
    lines_ = std::move(lines);
    are_new_ = true;
    hidden_selection_.clear();
    const std::vector<int> rows = wanted_rows();
    show(rows, rows.size());
    changed_();
}

void RowFilter::append(const std::vector<std::string>& lines) {
    lines_.insert(lines_.end(), lines.begin(), lines.end());
    are_new_ = true;
    apply();
}

void RowFilter::replace(int position, std::string line) {
    if (position < 1 || position > count()) return;
    lines_[static_cast<std::size_t>(position - 1)] = line;
    are_new_ = true;
    const int place = place_of(position);
    if (place == 0 || static_cast<std::size_t>(place) > filled_) return;
    const std::vector<std::string> one = {std::move(line)};
    XmTexts items(one);
    XmListReplaceItemsPosUnselected(list_, items.table(), 1, place);
}

void RowFilter::erase(int position) {
    if (position < 1 || position > count()) return;
    if (const int place = place_of(position); place != 0) {
        if (static_cast<std::size_t>(place) <= filled_) {
            XmListDeletePos(list_, place);
            --filled_;
        }
        shown_.erase(shown_.begin() + (place - 1));
    }
    lines_.erase(lines_.begin() + (position - 1));
    are_new_ = true;
    std::erase(hidden_selection_, position);
    const auto move_up = [position](int& row) { row -= row > position ? 1 : 0; };
    std::for_each(shown_.begin(), shown_.end(), move_up);
    std::for_each(hidden_selection_.begin(), hidden_selection_.end(), move_up);
    changed_();
}

// --- what is selected --------------------------------------------------------------

std::vector<int> RowFilter::selection() {
    std::vector<int> rows = hidden_selection_;
    for (const int place : selected_places(list_)) rows.push_back(row_at(place));
    std::sort(rows.begin(), rows.end());
    return rows;
}

void RowFilter::select_too(const std::vector<int>& positions) {
    const std::size_t hidden_before = hidden_selection_.size();
    std::vector<int> places;
    for (const int position : positions) {
        if (position < 1 || position > count()) continue;
        if (const int place = place_of(position); place != 0) {
            if (XmListPosSelected(list_, place) == False) places.push_back(place);
        } else {
            hidden_selection_.push_back(position);
        }
    }
    std::sort(hidden_selection_.begin(), hidden_selection_.end());
    hidden_selection_.erase(std::unique(hidden_selection_.begin(), hidden_selection_.end()),
                            hidden_selection_.end());
    if (!places.empty() && static_cast<std::size_t>(places.back()) > filled_) complete();
    select_items_too(list_, places);
    if (hidden_selection_.size() != hidden_before) changed_();
}

void RowFilter::deselect(int position) {
    if (const int place = place_of(position); place != 0) {
        XmListDeselectPos(list_, place);
    } else if (std::erase(hidden_selection_, position) != 0) {
        changed_();
    }
}

void RowFilter::deselect_all() {
    XmListDeselectAllItems(list_);
    if (hidden_selection_.empty()) return;
    hidden_selection_.clear();
    changed_();
}

int RowFilter::place_in_widget(int position) {
    const int place = place_of(position);
    if (static_cast<std::size_t>(place) > filled_) complete();
    return place;
}

}  // namespace gw
