// SPDX-License-Identifier: MIT
//
// A list whose lines are rows of columns, in the font for names or else in that of the interface. A cell may
// have a colour; its text says the same. Numbers stand at the right of their column.
#pragma once

#include <string>
#include <vector>

#include "app/kit/tones.h"

#include <X11/Intrinsic.h>

namespace gw {

struct Cell {
    std::string text;
    Tone tone = Tone::PLAIN;
    bool is_number = false;

    bool operator==(const Cell&) const = default;
};
using TableRow = std::vector<Cell>;

class TableList {
  public:
    TableList() = default;
    /// Makes `list`, a list widget, show rows from now on.
    explicit TableList(Widget list);

    /// Shows these rows, their control characters escaped. Lines that do not change keep their places on the
    /// screen. The selected line stays selected; if `selected` is not 0, that position is selected instead.
    /// No callback is called.
    void show(const std::vector<TableRow>& table, int selected = 0);

  private:
    void set_columns(const std::vector<int>& stops);

    Widget list_ = nullptr;
    std::vector<TableRow> rows_;
    std::vector<int> stops_;  ///< where the columns after the first begin, in pixels
};

}  // namespace gw
