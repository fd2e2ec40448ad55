// SPDX-License-Identifier: MIT
//
// List widgets: building, filling, and what is selected in them. Positions are 1-based. In a list with a
// filter (see row_filter.h) they are those of its rows, and what is hidden counts as well.
#pragma once

#include <string>
#include <vector>

#include "app/kit/handles.h"

#include <Xm/Xm.h>

namespace gw {

/// A list with scroll bars in which several items can be selected. Returns the list; its parent is the
/// scrolled window.
Widget scrolled_list(Widget parent, const char* name);
/// Makes the list wide enough for lines of `columns` characters.
void set_list_columns(Widget list, std::size_t columns);
/// Scrolls the list so that the position can be seen, unless it is hidden.
void show_position(Widget list, int position);
/// The first position that can be seen; 0 in an empty list.
int top_position(Widget list);
/// Makes the position the first that can be seen, as far as the list is long enough.
void set_top_position(Widget list, int position);

/// The strings of several lines, in the form that the toolkit takes.
class XmTexts {
  public:
    explicit XmTexts(const std::vector<std::string>& lines);
    /// Valid as long as this object lives.
    [[nodiscard]] XmStringTable table() { return table_.data(); }
    [[nodiscard]] int count() const { return static_cast<int>(table_.size()); }

  private:
    std::vector<XmText> owners_;
    std::vector<XmString> table_;
};

/// What a list shows for a line: control characters are escaped, because a line feed would look like two
/// lines, and the list's font can draw the characters.
std::string row_text(const std::string& line);
std::vector<std::string> row_texts(std::vector<std::string> lines);
/// Replaces the lines of the list, escaped. None of them is selected.
void fill_list(Widget list, const std::vector<std::string>& lines);
/// Adds the lines at the end of the list, unselected.
void append_to_list(Widget list, const std::vector<std::string>& lines);
/// Replaces a line, escaped. It is not selected then.
void replace_row(Widget list, int position, const std::string& line);
void delete_row(Widget list, int position);
int row_count(Widget list);

/// The selected positions of a list, ascending.
std::vector<int> selected_positions(Widget list);
/// The first of them; 0 when nothing is selected.
int selected_position(Widget list);
int selected_count(Widget list);
/// Selects these besides, without calling the selection callbacks. For lists of which several rows can be
/// selected.
void select_too(Widget list, const std::vector<int>& positions);
/// The same for items of the widget, whatever a filter hides.
void select_items_too(Widget list, const std::vector<int>& items);
/// Selects this one alone, as the user would: the callbacks are called.
void select_only(Widget list, int position);
void deselect_row(Widget list, int position);
void deselect_all(Widget list);

}  // namespace gw
