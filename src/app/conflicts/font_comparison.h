// SPDX-License-Identifier: MIT
//
// Two fonts of one name side by side: what they look like, and what their files are. Of a conflict without a
// second font only one side is shown.
#pragma once

#include <string>
#include <vector>

#include "app/samples/file_sample.h"
#include "model/gw_conflict.h"

#include <X11/Intrinsic.h>

namespace gw {

/// It must live as long as its widgets.
class FontComparison {
  public:
    FontComparison() = default;
    FontComparison(const FontComparison&) = delete;
    FontComparison& operator=(const FontComparison&) = delete;

    /// Fills the form.
    void create(Widget form);
    /// Whether conflicts have a new font.
    void show_both_sides(bool both);
    void show(const GWConflict& conflict);
    void clear();

  private:
    struct Side {
        Widget title, sample, file, directory, size, owner;
        FileSample picture;
    };
    void create_side(Widget form, Side& side, const std::string& name);
    [[nodiscard]] static std::vector<Widget> parts_of(const Side& side);
    static void show_font(Side& side, GWFont* font, std::size_t files, const std::string& packages);
    static void show_sample(Side& side, GWFont& font);

    Side old_ = {};
    Side new_ = {};
    Widget detail_ = nullptr;
};

}  // namespace gw
