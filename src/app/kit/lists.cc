// SPDX-License-Identifier: MIT
#include "app/kit/lists.h"

#include <algorithm>

#include "core/text.h"

#include <Xm/List.h>

namespace gw {

Widget scrolled_list(Widget parent, const char* name) {
    Arg args[3];
    XtSetArg(args[0], XmNselectionPolicy, XmEXTENDED_SELECT);
    XtSetArg(args[1], XmNlistSizePolicy, XmCONSTANT);
    XtSetArg(args[2], XmNscrollBarDisplayPolicy, XmSTATIC);
    Widget list = XmCreateScrolledList(parent, name_arg(name), args, 3);
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
    int top = 0;
    int visible = 0;
    XtVaGetValues(list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    if (position < top) XmListSetPos(list, position);
    if (position >= top + visible) XmListSetBottomPos(list, position);
}

XmTexts::XmTexts(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        owners_.push_back(xm_text(line));
        table_.push_back(owners_.back().get());
    }
}

std::vector<std::string> escaped(std::vector<std::string> lines) {
    for (std::string& line : lines) line = escaped(line);
    return lines;
}

void fill_list(Widget list, const std::vector<std::string>& lines) {
    XmListDeleteAllItems(list);
    append_to_list(list, lines);
}

void append_to_list(Widget list, const std::vector<std::string>& lines) {
    constexpr int AT_THE_END = 0;
    XmTexts texts(escaped(lines));
    if (texts.count() > 0) XmListAddItemsUnselected(list, texts.table(), texts.count(), AT_THE_END);
}

std::vector<int> selected_positions(Widget list) {
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
    return count;
}

}  // namespace gw
