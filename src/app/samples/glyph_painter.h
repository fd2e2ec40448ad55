// SPDX-License-Identifier: MIT
//
// Draws cells of a grid into a window: frames, short texts, and glyphs in shades between the widget's
// foreground and background.
#pragma once

#include <array>
#include <string>

#include "fontfiles/font_face.h"

#include <Xm/Xm.h>

namespace gw {

/// For one round of drawing: it has the colours that the widget has when it is made.
class GlyphPainter {
  public:
    struct Box {
        int x, y, width, height;
    };

    /// `area` must be realized.
    explicit GlyphPainter(Widget area);
    ~GlyphPainter();
    GlyphPainter(const GlyphPainter&) = delete;
    GlyphPainter& operator=(const GlyphPainter&) = delete;

    /// Empties the window.
    void clear() const;
    /// A line around the box, whose inside becomes empty. Where `is_inverse`, background and foreground
    /// change places. A cell with the focus has a second line inside.
    void frame(const Box& box, bool is_inverse, bool has_focus) const;
    /// The text in the middle of the box.
    void text(XmRenderTable fonts, const std::string& text, const Box& box, bool is_inverse) const;
    /// The glyph in the middle of the box, cut off at its edges. With `pixels`, the size of the font, all
    /// glyphs have their baseline at one height; with 0 the middle of the glyph is in the middle of the box.
    void glyph(const GlyphImage& image, const Box& box, int pixels, bool is_inverse) const;
    /// In the place of a glyph that cannot be drawn.
    void cross(const Box& box, bool is_inverse) const;

  private:
    using Shades = std::array<unsigned long, 256>;  // pixel values from paper to ink
    [[nodiscard]] Shades shades() const;
    void use_ink(bool is_inverse) const;

    Display* display_;
    Window window_;
    XWindowAttributes attributes_ = {};
    GC gc_;
    Pixel foreground_ = 0;
    Pixel background_ = 0;
    Shades shades_ = {};
};

}  // namespace gw
