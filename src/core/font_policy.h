// SPDX-License-Identifier: MIT
//
// How the program treats today's fonts. By default every point below is off: font files, indexes and alias
// files are treated as they always were. The resource `gw_modern_fonts` switches all points on together; each
// place in the code asks for its own point.
#pragma once

namespace gw {

class FontPolicy {
  public:
    /// `marks` is for programs whose lists can say what is wrong with a font.
    constexpr explicit FontPolicy(bool modern = false, bool marks = false)
        : modern_(modern), marks_(modern && marks) {}

    /// Type 1 files are installed byte for byte. Copied as text, a ".pfb" file cannot be opened any more.
    [[nodiscard]] constexpr bool copies_outlines_exactly() const { return modern_; }
    /// A key in the header of a Type 1 font ends where a PostScript name ends ("/FamilyName(Utopia)"), and
    /// not only at a blank.
    [[nodiscard]] constexpr bool lets_values_touch_keys() const { return modern_; }
    /// A Type 1 file that its index lists under several encodings is one font, and deleting it removes all
    /// its lines.
    [[nodiscard]] constexpr bool lists_an_outline_once() const { return modern_; }
    /// Lines of an alias file that begin with "!" are comments.
    [[nodiscard]] constexpr bool knows_alias_comments() const { return modern_; }
    /// The fonts of a directory are listed although the font path has attributes for the X server behind it
    /// ("DIR/:unscaled"), and once, however often the directory is on the path.
    [[nodiscard]] constexpr bool knows_path_attributes() const { return modern_; }
    /// The fonts of a catalogue are listed: an element of the font path that is a directory of links to font
    /// directories ("catalogue:DIR").
    [[nodiscard]] constexpr bool knows_catalogues() const { return modern_; }
    /// The names of bitmap fonts in lists include the charset, unless it is ISO 8859-1: a face may exist in
    /// forty charsets.
    [[nodiscard]] constexpr bool names_charsets() const { return modern_; }
    /// A sample for which the locale has no font set is drawn with the font itself.
    [[nodiscard]] constexpr bool draws_with_the_font_itself() const { return modern_; }
    /// TrueType, OpenType and BDF fonts are fonts, and bitmap fonts compressed with gzip (".pcf.gz").
    [[nodiscard]] constexpr bool takes_todays_formats() const { return modern_; }
    /// The extension of a font file is the end of its name, in any case ("Foo.v2.PFB"). A blank in the name
    /// becomes "_" in the copy, which has its extension in lower case.
    [[nodiscard]] constexpr bool takes_any_file_name() const { return modern_; }
    /// A font has all the names that mkfontscale and mkfontdir give its file, and a conflict with every font
    /// that has one of them.
    [[nodiscard]] constexpr bool enters_all_names() const { return modern_; }
    /// A font of a source is looked into before it is installed: what is damaged, or no font, is refused.
    [[nodiscard]] constexpr bool checks_source_fonts() const { return modern_; }
    /// Lists of a source have what cannot be installed too, with a mark ("[Damaged]").
    [[nodiscard]] constexpr bool marks_what_is_unfit() const { return marks_; }
    /// "fonts.scale" has the lines of outline fonts that "fonts.dir" has, so that mkfontdir keeps them.
    [[nodiscard]] constexpr bool keeps_scalable_index() const { return modern_; }
    /// A directory gets its first index together with its first font. Otherwise it gets one without entries
    /// before, which stays where the font is not installed.
    [[nodiscard]] constexpr bool makes_index_with_first_font() const { return modern_; }
    /// Each word of a name in the list begins with a capital, and no two entries of the list read the same.
    [[nodiscard]] constexpr bool tells_names_apart() const { return modern_; }
    /// Scratch files stand in a private directory of each run, so any number of runs can work at once.
    [[nodiscard]] constexpr bool has_private_scratch() const { return modern_; }

  private:
    bool modern_;
    bool marks_;
};

/// The policy of the whole program.
[[nodiscard]] const FontPolicy& font_policy();
/// Called once at start-up, before any font is listed.
void set_font_policy(FontPolicy policy);

}  // namespace gw
