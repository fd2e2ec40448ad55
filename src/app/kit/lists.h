// SPDX-License-Identifier: MIT
//
// List widgets: building, filling, and what is selected in them.
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
/// Scrolls the list so that the position can be seen.
void show_position(Widget list, int position);

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

/// The lines with their control characters escaped: one that has a line feed would look like two.
std::vector<std::string> escaped(std::vector<std::string> lines);
/// Replaces the lines of the list, escaped. None of them is selected.
void fill_list(Widget list, const std::vector<std::string>& lines);
/// Adds the lines at the end of the list, unselected.
void append_to_list(Widget list, const std::vector<std::string>& lines);

/// The selected positions of a list, 1-based and ascending.
std::vector<int> selected_positions(Widget list);
/// The first of them; 0 when nothing is selected.
int selected_position(Widget list);
int selected_count(Widget list);

}  // namespace gw
