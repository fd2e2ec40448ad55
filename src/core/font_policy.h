// SPDX-License-Identifier: MIT
//
// What the program does with fonts as they are made today. By default nothing: font files, indexes and alias
// files are treated as ever. The resource `gw_modern_fonts` switches everything below on together; each place
// that differs asks for its own point.
#pragma once

namespace gw {

class FontPolicy {
  public:
    constexpr explicit FontPolicy(bool modern = false) : modern_(modern) {}

    /// Type 1 files are installed byte for byte. Copied as text, a ".pfb" file cannot be opened any more.
    [[nodiscard]] constexpr bool copies_outlines_exactly() const { return modern_; }
    /// Bitmap fonts compressed with gzip (".pcf.gz") are fonts.
    [[nodiscard]] constexpr bool takes_gzipped_bitmaps() const { return modern_; }
    /// A key in the header of a Type 1 font ends where a PostScript name ends ("/FamilyName(Utopia)"), and
    /// not only at a blank.
    [[nodiscard]] constexpr bool lets_values_touch_keys() const { return modern_; }
    /// A Type 1 file that its index lists under several encodings is one font; with it all its lines go.
    [[nodiscard]] constexpr bool lists_an_outline_once() const { return modern_; }
    /// Lines of an alias file that begin with "!" are comments.
    [[nodiscard]] constexpr bool knows_alias_comments() const { return modern_; }
    /// The names of bitmap fonts in lists have the charset, unless that is ISO 8859-1: one face may come in
    /// forty.
    [[nodiscard]] constexpr bool names_charsets() const { return modern_; }
    /// A sample for which the locale has no font set is drawn with the font itself.
    [[nodiscard]] constexpr bool draws_with_the_font_itself() const { return modern_; }

  private:
    bool modern_;
};

/// The policy of the whole program.
[[nodiscard]] const FontPolicy& font_policy();
/// Start-up says it once, before any font is listed.
void set_font_policy(FontPolicy policy);

}  // namespace gw
