// SPDX-License-Identifier: MIT
//
// What is inside a font file: its names, its characters, its glyphs, as FreeType reads them. A font is opened
// from any file, also from a hostile one: memory and time are bounded.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fontfiles/font_bytes.h"

namespace gw {

/// By the content of the file, not by its name.
enum class FontFormat { TYPE1, CID, TRUETYPE, OPENTYPE_CFF, BDF, PCF, OTHER };

struct FaceFacts {
    FontFormat format = FontFormat::OTHER;
    /// UTF-8, as the font says it, on one line, without control characters; "" where it has none.
    std::string family;
    std::string style;
    long faces = 1;  ///< in the file
    /// In this face: glyphs 0 to `glyphs - 1`, or 1 to `glyphs` of BDF and PCF, whose glyph 0 is a copy of
    /// another.
    long glyphs = 0;
    bool scalable = false;
    bool is_cid_keyed = false;
    bool fixed_pitch = false;
    std::vector<int> pixel_sizes;  ///< of its bitmaps, in the order of the file
    std::string charset;           ///< "iso10646-1" and the like of a BDF or PCF font; "" otherwise
    std::string notice;            ///< what PostScript outlines say of their maker, as `family`
    bool may_be_changed = true;    ///< false if its maker has reserved every use but drawing
};

/// A glyph in shades of grey: 0 is paper, 255 is ink.
struct GlyphImage {
    int width = 0;
    int height = 0;
    int left = 0;                    ///< from the origin to the first column, to the right
    int top = 0;                     ///< from the baseline to the first row, upwards
    int advance = 0;                 ///< from its origin to that of the next glyph, to the right
    std::vector<std::uint8_t> rows;  ///< `width` bytes for each row, the top row first
};

class FontFace {
  public:
    /// Opens a face of a font file; 0 is the first. Fails as `FontBytes::open` does, and with
    /// `Reason::EMPTY_FILE`, `NOT_A_FONT`, `DAMAGED_FONT`, `NO_SUCH_FACE` or `TAKES_TOO_LONG`.
    static Result<FontFace> open(const std::string& path, long face = 0);
    /// The same for a file that is open already. The bytes are shared by its faces.
    static Result<FontFace> open(std::shared_ptr<const FontBytes> bytes, long face = 0);

    FontFace(FontFace&& other) noexcept;
    FontFace& operator=(FontFace&& other) noexcept;
    ~FontFace();

    [[nodiscard]] const FaceFacts& facts() const;

    struct Character {
        char32_t code;
        unsigned long glyph;
    };
    /// The characters that have a glyph, in ascending order: Unicode if `has_unicode`, else the font's own
    /// codes.
    [[nodiscard]] std::vector<Character> characters() const;
    /// Whether the characters are known by Unicode: the font says so, or its charset is known.
    [[nodiscard]] bool has_unicode() const;
    /// Whether the character, as `characters` counts them, has a glyph.
    [[nodiscard]] bool has(char32_t character) const;
    /// The glyph of the character; 0 if it has none.
    [[nodiscard]] unsigned long glyph_of(char32_t character) const;
    /// The name that the font has for a glyph; "" where it has none.
    [[nodiscard]] std::string glyph_name(unsigned long glyph) const;

    /// The glyph at a size of 1 to `MOST_PIXELS` pixels; of a bitmap font in the size nearest to that. Fails
    /// with `Reason::DAMAGED_GLYPH`, also for a glyph that is not in the font.
    [[nodiscard]] Result<GlyphImage> draw(unsigned long glyph, int pixels) const;
    /// Whether the glyph can be loaded at all; of a bitmap font in its size number `strike`.
    [[nodiscard]] Outcome load(unsigned long glyph, int strike = 0) const;

    static constexpr int MOST_PIXELS = 512;

  private:
    class Opened;
    explicit FontFace(std::unique_ptr<Opened> opened);

    std::unique_ptr<Opened> opened_;
};

}  // namespace gw
