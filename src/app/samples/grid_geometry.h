// SPDX-License-Identifier: MIT
//
// Where the cells of a grid are, of which a window shows some rows. Cells are counted from 0, row by row.
// Sizes are in pixels; positions are those of the window.
#pragma once

#include <algorithm>
#include <optional>

namespace gw {

struct GridGeometry {
    int cells = 0;
    int cell_width = 1;
    int cell_height = 1;
    int width = 1;  ///< of the window
    int height = 1;

    [[nodiscard]] int columns() const { return std::max(1, width / cell_width); }
    /// Of the whole grid.
    [[nodiscard]] int rows() const { return (cells + columns() - 1) / columns(); }
    /// That the window shows completely; at least one.
    [[nodiscard]] int whole_rows() const { return std::max(1, height / cell_height); }
    /// The first row of the window when it shows the end of the grid.
    [[nodiscard]] int last_top() const { return std::max(0, rows() - whole_rows()); }
    [[nodiscard]] int clamped_top(int row) const { return std::clamp(row, 0, last_top()); }
    [[nodiscard]] int row_of(int cell) const { return cell / columns(); }

    /// The first row of the window that shows the cell, and otherwise moves as little as possible from `top`.
    [[nodiscard]] int top_showing(int cell, int top) const {
        const int row = row_of(cell);
        return clamped_top(std::clamp(top, row - whole_rows() + 1, row));
    }

    /// The cells that the window shows, also in part: from `first` to `last - 1`.
    struct Range {
        int first;
        int last;
    };
    [[nodiscard]] Range shown(int top) const {
        const int first = top * columns();
        const int partial_rows = (height + cell_height - 1) / cell_height;
        return {std::min(first, cells), std::min(first + partial_rows * columns(), cells)};
    }

    struct Corner {
        int x;
        int y;
    };
    /// The upper left corner of a cell.
    [[nodiscard]] Corner corner_of(int cell, int top) const {
        return {cell % columns() * cell_width, (row_of(cell) - top) * cell_height};
    }
    /// The cell at a point; none beside the columns and below the last cell.
    [[nodiscard]] std::optional<int> cell_at(int x, int y, int top) const {
        if (x < 0 || y < 0 || x >= columns() * cell_width) return std::nullopt;
        const int cell = (top + y / cell_height) * columns() + x / cell_width;
        return cell < cells ? std::optional(cell) : std::nullopt;
    }
};

}  // namespace gw
