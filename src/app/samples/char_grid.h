// SPDX-License-Identifier: MIT
//
// A scrollable grid of the characters of a font. It draws what the font file has, so the X server need not
// know the font. One widget shows all cells, and only glyphs that can be seen are drawn, each as a step of
// its own while the program is idle: a font with 65,000 characters takes no longer than one with a hundred.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/samples/glyph_painter.h"
#include "app/samples/grid_geometry.h"
#include "fontfiles/font_face.h"

#include <Xm/Xm.h>

namespace gw {

class CharacterGrid {
  public:
    /// Makes the widgets "chars_area" and "chars_bar" in a form; the caller attaches them. Codes are drawn in
    /// the fonts of `label`. `changed` is called when another character is selected, or none.
    CharacterGrid(Widget form, Widget label, std::function<void()> changed);
    ~CharacterGrid();
    CharacterGrid(const CharacterGrid&) = delete;
    CharacterGrid& operator=(const CharacterGrid&) = delete;

    /// Shows all characters of the face; none is selected.
    void show(FontFace face);
    /// Shows nothing, and closes the font.
    void clear();

    /// Selects the character and scrolls to it. False when the font does not have it: then the grid scrolls
    /// to where it would be, and nothing is selected.
    bool go_to(char32_t code);
    /// The code of the character whose glyph has that name, in any case; none when there is none.
    [[nodiscard]] std::optional<char32_t> code_of_name(const std::string& name) const;
    [[nodiscard]] std::optional<FontFace::Character> selected() const;
    /// Null when no font is shown.
    [[nodiscard]] const FontFace* face() const { return face_ ? &*face_ : nullptr; }

    /// Where the cells are, and the first row that is seen.
    [[nodiscard]] GridGeometry geometry() const;
    [[nodiscard]] int top() const { return top_; }
    /// How many glyphs have been drawn since the font is shown.
    [[nodiscard]] std::size_t drawn() const { return drawn_; }
    /// Whether glyphs that can be seen have still to be drawn.
    [[nodiscard]] bool is_drawing() const { return work_ != 0; }

    [[nodiscard]] Widget area() const { return area_; }
    [[nodiscard]] Widget bar() const { return bar_; }

  private:
    using Painter = GlyphPainter;

    void make_area(Widget form);
    void make_bar(Widget form);
    void measure_cells();
    void set_bar();
    void scroll_to(int row);
    void select(std::optional<int> cell);
    void move(const std::string& where);
    void draw();
    void draw_cell(const Painter& painter, int cell) const;
    void ask_for_glyphs();
    bool draw_next_glyph();
    [[nodiscard]] std::optional<int> first_missing_glyph() const;

    static CharacterGrid& of(Widget area);
    static void press_action(Widget area, XEvent* event, String* words, Cardinal* count);
    static void move_action(Widget area, XEvent* event, String* words, Cardinal* count);
    static void scroll_action(Widget area, XEvent* event, String* words, Cardinal* count);

    Widget area_ = nullptr;
    Widget bar_ = nullptr;
    Widget label_;
    std::function<void()> changed_;
    std::optional<FontFace> face_;
    std::vector<FontFace::Character> characters_;
    std::optional<int> selected_;
    int top_ = 0;
    int line_height_ = 1;   // of the codes, in pixels
    int glyph_height_ = 1;  // of the part of a cell above its code
    int cell_width_ = 1;
    int pixels_ = 1;  // the size that glyphs are drawn in
    bool has_focus_ = false;
    /// By cell; nothing for a glyph that cannot be drawn.
    std::unordered_map<int, std::optional<GlyphImage>> images_;
    std::size_t drawn_ = 0;
    XtWorkProcId work_ = 0;
};

}  // namespace gw
