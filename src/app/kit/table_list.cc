// SPDX-License-Identifier: MIT
#include "app/kit/table_list.h"

#include <algorithm>

#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/kit/toolkit.h"

#include <Xm/List.h>

namespace gw {

namespace {

constexpr int DIGITS_BETWEEN_COLUMNS = 2;

XmText component(XmStringComponentType type, const char* value) {
    const unsigned length = value != nullptr ? static_cast<unsigned>(std::string_view(value).size()) : 0;
    return XmText(XmStringComponentCreate(type, length, name_arg(value)));
}

void append(XmText& string, XmText part) {
    string = XmText(XmStringConcat(string.get(), part.get()));
}

/// Without scalable fonts, those that the locale's resources give the list: others may lack its characters.
XmRenderTable fonts_of(Widget list) {
    if (looks().name_fonts != nullptr) return looks().name_fonts;
    XmRenderTable fonts = nullptr;
    XtVaGetValues(list, XmNrenderTable, &fonts, nullptr);
    return fonts;
}

int width_of(const std::string& text, XmRenderTable fonts) {
    const XmText string = xm_text(row_text(text));
    return XmStringWidth(fonts, string.get());
}

/// In pixels, of each column. The last text of a row has no column behind it: it may be a heading.
std::vector<int> column_widths(const std::vector<TableRow>& rows, XmRenderTable fonts) {
    std::vector<int> widths;
    for (const TableRow& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i + 1 < row.size() || row[i].is_number)
                widths[i] = std::max(widths[i], width_of(row[i].text, fonts));
        }
    }
    return widths;
}

/// The toolkit has no tabs that align at the right. The number's text, with the blanks that it needs for
/// that.
std::string at_the_right(const std::string& number, int column_width, XmRenderTable fonts) {
    const int blank = std::max(1, width_of(" ", fonts));
    const int missing = std::max(0, column_width - width_of(number, fonts));
    return std::string(static_cast<std::size_t>((missing + blank / 2) / blank), ' ') + number;
}

XmText string_of(const TableRow& row) {
    XmText string(nullptr);
    for (std::size_t column = 0; column < row.size(); ++column) {
        const char* rendition = tag_of(row[column].tone);
        append(string, component(XmSTRING_COMPONENT_RENDITION_BEGIN, rendition));
        if (column > 0) append(string, component(XmSTRING_COMPONENT_TAB, nullptr));
        append(string, xm_text(row_text(row[column].text)));
        append(string, component(XmSTRING_COMPONENT_RENDITION_END, rendition));
    }
    return string;
}

/// Where the columns after the first begin.
std::vector<int> column_stops(const std::vector<int>& widths, XmRenderTable fonts) {
    const int gap = width_of(std::string(DIGITS_BETWEEN_COLUMNS, '0'), fonts);
    std::vector<int> stops;
    for (std::size_t i = 0; i + 1 < widths.size(); ++i)
        stops.push_back((stops.empty() ? 0 : stops.back()) + widths[i] + gap);
    return stops;
}

std::vector<TableRow> aligned(std::vector<TableRow> rows, const std::vector<int>& widths,
                              XmRenderTable fonts) {
    for (TableRow& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (row[i].is_number) row[i].text = at_the_right(row[i].text, widths[i], fonts);
        }
    }
    return rows;
}

XmTabList make_tabs(const std::vector<int>& stops) {
    std::vector<XmTab> tabs;
    tabs.reserve(stops.size());
    for (const int stop : stops) {
        tabs.push_back(XmTabCreate(static_cast<float>(stop), XmPIXELS, XmABSOLUTE, XmALIGNMENT_BEGINNING,
                                   name_arg(".")));
    }
    XmTabList list = XmTabListInsertTabs(nullptr, tabs.data(), static_cast<Cardinal>(tabs.size()), 0);
    for (XmTab tab : tabs) XmTabFree(tab);
    return list;
}

}  // namespace

TableList::TableList(Widget list) : list_(list) {
    if (looks().name_fonts != nullptr) XtVaSetValues(list, XmNrenderTable, looks().name_fonts, nullptr);
}

void TableList::set_columns(const std::vector<int>& stops) {
    stops_ = stops;
    XmTabList tabs = make_tabs(stops);
    XmRenderTable table = with_tones(list_, fonts_of(list_), tabs);
    XtVaSetValues(list_, XmNrenderTable, table, nullptr);
    XmRenderTableFree(table);
    XmTabListFree(tabs);
}

void TableList::show(const std::vector<TableRow>& table, int selected) {
    if (selected == 0) selected = selected_position(list_);
    XmRenderTable fonts = fonts_of(list_);
    const std::vector<int> widths = column_widths(table, fonts);
    const std::vector<TableRow> rows = aligned(table, widths, fonts);
    if (const std::vector<int> stops = column_stops(widths, fonts); stops != stops_) set_columns(stops);
    // The toolkit loses its copies of selected lines that are replaced.
    if (rows != rows_) XmListDeselectAllItems(list_);
    const int shared = static_cast<int>(std::min(rows.size(), rows_.size()));
    for (int i = 0; i < shared; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (rows[at] == rows_[at]) continue;
        const XmText string = string_of(rows[at]);
        XmString item = string.get();
        XmListReplaceItemsPosUnselected(list_, &item, 1, i + 1);
    }
    const int surplus = static_cast<int>(rows_.size()) - shared;
    if (surplus > 0) XmListDeleteItemsPos(list_, surplus, shared + 1);
    for (std::size_t i = static_cast<std::size_t>(shared); i < rows.size(); ++i) {
        const XmText string = string_of(rows[i]);
        XmListAddItemUnselected(list_, string.get(), 0);
    }
    rows_ = rows;
    if (selected > 0 && selected != selected_position(list_)) XmListSelectPos(list_, selected, False);
}

}  // namespace gw
