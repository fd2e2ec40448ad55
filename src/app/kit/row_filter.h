// SPDX-License-Identifier: MIT
//
// Hides rows of a list. The functions of lists.h then mean rows by their positions, and not what the list
// widget happens to show of them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <X11/Intrinsic.h>

namespace gw {

class RowFilter {
  public:
    /// Says for each row whether it is wanted. `are_new` when the rows are others than at the last call. A
    /// result of another length wants all rows.
    using Wanted = std::function<std::vector<bool>(bool are_new)>;

    /// The filter of this list from now on, until it is destroyed. Made before the list has callbacks: its
    /// own is called before the others. `changed` is called when rows are shown or hidden, when they are
    /// replaced, and when another number of hidden ones is selected.
    RowFilter(Widget list, Wanted wanted, std::function<void()> changed);
    ~RowFilter();
    RowFilter(const RowFilter&) = delete;
    RowFilter& operator=(const RowFilter&) = delete;

    /// Null for a list that shows all its rows.
    static RowFilter* of(Widget list);

    /// Shows what is wanted now. What was selected stays selected, also where it is hidden; no callback is
    /// called.
    void apply();

    [[nodiscard]] int count() const { return static_cast<int>(lines_.size()); }
    [[nodiscard]] int shown_count() const { return static_cast<int>(shown_.size()); }
    [[nodiscard]] int selected_and_hidden() const { return static_cast<int>(hidden_selection_.size()); }
    [[nodiscard]] bool is_shown(int position) const { return place_of(position) != 0; }

    // What lists.h does with a list that has a filter. Lines are escaped.

    void fill(std::vector<std::string> lines);
    void append(const std::vector<std::string>& lines);
    void replace(int position, std::string line);
    void erase(int position);
    [[nodiscard]] std::vector<int> selection();
    void select_too(const std::vector<int>& positions);
    void deselect(int position);
    void deselect_all();
    /// Where the row is in the widget, which has it then; 0 when it is hidden.
    int place_in_widget(int position);
    /// The row at a place of the widget; 0 when there is none.
    [[nodiscard]] int row_at(int place) const;

  private:
    static void selected_cb(Widget list, XtPointer filter, XtPointer call_data);
    static Boolean fill_more(XtPointer filter);
    [[nodiscard]] int place_of(int position) const;
    [[nodiscard]] std::vector<int> wanted_rows();
    void show(std::vector<int> rows, std::size_t at_once);
    void add_rows(std::size_t most);
    void complete();

    Widget list_;
    Wanted wanted_;
    std::vector<std::string> lines_;
    bool are_new_ = true;
    std::vector<int> shown_;             ///< the rows that are not hidden, ascending
    std::size_t filled_ = 0;             ///< how many of these the widget has already
    XtWorkProcId filling_ = 0;           ///< gives it the others
    std::vector<int> hidden_selection_;  ///< ascending
    std::function<void()> changed_;
};

}  // namespace gw
