// SPDX-License-Identifier: MIT
#include "app/kit/lists.h"

#include <algorithm>

#include "app/kit/looks.h"
#include "app/kit/row_filter.h"
#include "core/text.h"
#include "fontfiles/unicode_text.h"

#include <Xm/List.h>

namespace gw {

Widget scrolled_list(Widget parent, const char* name) {
    Arg args[4];
    XtSetArg(args[0], XmNselectionPolicy, XmEXTENDED_SELECT);
    XtSetArg(args[1], XmNlistSizePolicy, XmCONSTANT);
    XtSetArg(args[2], XmNscrollBarDisplayPolicy, XmSTATIC);
    XtSetArg(args[3], XmNautoDragModel, XmAUTO_DRAG_DISABLED);
    Widget list = XmCreateScrolledList(parent, name_arg(name), args, looks().spares_requests ? 4 : 3);
    use_fonts(list, looks().name_fonts);
    XtManageChild(list);
    return list;
}

void set_list_columns(Widget list, std::size_t columns) {
    XmFontList fonts = nullptr;
    XtVaGetValues(list, XmNfontList, &fonts, nullptr);
    const XmText line = xm_text(std::string(columns, 'n'));
    XtVaSetValues(list, XmNwidth, XmStringWidth(fonts, line.get()), nullptr);
}

void show_position(Widget list, int position) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr)
        position = filter->place_in_widget(position);
    if (position == 0) return;
    int top = 0;
    int visible = 0;
    XtVaGetValues(list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    if (position < top) XmListSetPos(list, position);
    if (position >= top + visible) XmListSetBottomPos(list, position);
}

int top_position(Widget list) {
    int top = 0;
    XtVaGetValues(list, XmNtopItemPosition, &top, nullptr);
    const RowFilter* filter = RowFilter::of(list);
    return filter != nullptr ? filter->row_at(top) : top;
}

void set_top_position(Widget list, int position) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr)
        position = filter->place_in_widget(position);
    int visible = 0;
    int count = 0;
    XtVaGetValues(list, XmNvisibleItemCount, &visible, XmNitemCount, &count, nullptr);
    position = std::min(position, std::max(1, count - visible + 1));
    if (position > 0 && count > 0) XmListSetPos(list, position);
}

XmTexts::XmTexts(const std::vector<std::string>& lines) {
    owners_.reserve(lines.size());
    table_.reserve(lines.size());
    for (const std::string& line : lines) {
        owners_.push_back(xm_row(line));
        table_.push_back(owners_.back().get());
    }
}

std::string row_text(const std::string& line) {
    std::string shown = escaped(line);
    // The toolkit draws in scalable fonts what is UTF-8, and nothing behind the first byte that is not. The
    // names in indexes are in Latin-1.
    if (looks().name_fonts != nullptr && !is_utf8(shown)) shown = utf8_from_latin1(shown);
    return shown;
}

std::vector<std::string> row_texts(std::vector<std::string> lines) {
    for (std::string& line : lines) line = row_text(line);
    return lines;
}

void fill_list(Widget list, const std::vector<std::string>& lines) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->fill(row_texts(lines));
    XmListDeleteAllItems(list);
    append_to_list(list, lines);
}

void append_to_list(Widget list, const std::vector<std::string>& lines) {
    constexpr int AT_THE_END = 0;
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->append(row_texts(lines));
    XmTexts texts(row_texts(lines));
    if (texts.count() > 0) XmListAddItemsUnselected(list, texts.table(), texts.count(), AT_THE_END);
}

void replace_row(Widget list, int position, const std::string& line) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr)
        return filter->replace(position, row_text(line));
    XmTexts items({row_text(line)});
    XmListReplaceItemsPosUnselected(list, items.table(), 1, position);
}

void delete_row(Widget list, int position) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->erase(position);
    XmListDeletePos(list, position);
}

int row_count(Widget list) {
    if (const RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->count();
    int count = 0;
    XtVaGetValues(list, XmNitemCount, &count, nullptr);
    return count;
}

std::vector<int> selected_positions(Widget list) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->selection();
    int* positions = nullptr;
    int count = 0;
    if (XmListGetSelectedPos(list, &positions, &count) == False) return {};
    const XtOwned<int> owned(positions);
    std::vector<int> result(positions, positions + count);
    std::sort(result.begin(), result.end());
    return result;
}

int selected_position(Widget list) {
    const std::vector<int> positions = selected_positions(list);
    return positions.empty() ? 0 : positions.front();
}

int selected_count(Widget list) {
    int count = 0;
    XtVaGetValues(list, XmNselectedItemCount, &count, nullptr);
    const RowFilter* filter = RowFilter::of(list);
    return count + (filter != nullptr ? filter->selected_and_hidden() : 0);
}

void select_too(Widget list, const std::vector<int>& positions) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->select_too(positions);
    select_items_too(list, positions);
}

void select_items_too(Widget list, const std::vector<int>& items) {
    if (items.empty()) return;
    unsigned char mode = XmNORMAL_MODE;
    XtVaGetValues(list, XmNselectionMode, &mode, nullptr);
    // With the list's own policy each item would take the place of all others. A change of the policy changes
    // the mode, too, which says what a key or a click does to what is selected.
    XtVaSetValues(list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    for (const int item : items) XmListSelectPos(list, item, False);
    XtVaSetValues(list, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
    XtVaSetValues(list, XmNselectionMode, mode, nullptr);
}

void select_only(Widget list, int position) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr)
        position = filter->place_in_widget(position);
    if (position != 0) XmListSelectPos(list, position, True);
}

void deselect_row(Widget list, int position) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->deselect(position);
    XmListDeselectPos(list, position);
}

void deselect_all(Widget list) {
    if (RowFilter* filter = RowFilter::of(list); filter != nullptr) return filter->deselect_all();
    XmListDeselectAllItems(list);
}

}  // namespace gw
