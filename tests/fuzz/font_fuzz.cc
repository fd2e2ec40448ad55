// SPDX-License-Identifier: MIT
//
// Fonts from anybody: the verdict on a file, and what is read from one that opens.
//
// An input is a font, or, so that seeds of binary fonts are texts too, a line that names a font made here,
// and patches: "PLACE BYTES" writes bytes (in hexadecimal) over those at a place, "cut PLACE" ends the font
// there.
#include <algorithm>
#include <charconv>
#include <map>

#include "fontfiles/font_verdict.h"
#include "fontfiles/script_sample.h"
#include "fontfiles/unicode_text.h"
#include "fuzz.h"
#include "tests/support/bitmap_maker.h"
#include "tests/support/sfnt_maker.h"

namespace {

constexpr long MOST_FACES = 3;
constexpr std::size_t MOST_GLYPHS = 20;

const std::map<std::string, std::string, std::less<>>& made_fonts() {
    static const std::map<std::string, std::string, std::less<>> fonts = {
        {"truetype\n", gw::test::SfntMaker().make()},
        {"collection\n", gw::test::SfntMaker().make_collection(2, 2)},
        {"bdf\n", gw::test::BitmapMaker().make_bdf()},
        {"pcf\n", gw::test::BitmapMaker().make_pcf()},
    };
    return fonts;
}

std::size_t number_in(std::string_view& line, int base) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number, base);
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    line.remove_prefix(std::min<std::size_t>(line.size(), 1));
    return number;
}

void patch(std::string& font, std::string_view line) {
    const bool is_cut = line.starts_with("cut ");
    if (is_cut) line.remove_prefix(4);
    std::size_t place = number_in(line, 10);
    if (is_cut && place < font.size()) font.resize(place);
    for (; line.size() >= 2 && place < font.size(); line.remove_prefix(2), ++place) {
        std::string_view byte = line.substr(0, 2);
        font[place] = static_cast<char>(number_in(byte, 16));
    }
}

std::string font_of(std::string_view input) {
    std::vector<std::string> lines = gw::fuzz::lines_of(input);
    const auto made = lines.empty() ? made_fonts().end() : made_fonts().find(lines.front());
    if (made == made_fonts().end()) return std::string(input);
    std::string font = made->second;
    for (std::size_t i = 1; i < lines.size(); ++i) patch(font, lines[i]);
    return font;
}

void try_name(const std::string& name, std::string_view input) {
    GW_MUST_HOLD(gw::is_utf8(name), input);
    GW_MUST_HOLD(gw::as_one_line(name, name.size()) == name, input);
}

void try_glyph(const gw::FontFace& font, unsigned long glyph, std::string_view input) {
    try_name(font.glyph_name(glyph), input);
    const gw::Result<gw::GlyphImage> image = font.draw(glyph, 24);
    if (!image) return;
    const auto pixels = static_cast<std::size_t>(image->width) * static_cast<std::size_t>(image->height);
    GW_MUST_HOLD(image->rows.size() == pixels, input);
}

/// The characters are in order, and each has the glyph that it is found with.
void try_characters(const gw::FontFace& font, std::string_view input) {
    const std::vector<gw::FontFace::Character> characters = font.characters();
    for (std::size_t i = 0; i < characters.size(); ++i) {
        GW_MUST_HOLD(i == 0 || characters[i - 1].code <= characters[i].code, input);
        if (i >= MOST_GLYPHS) continue;
        GW_MUST_HOLD(font.has(characters[i].code), input);
        try_glyph(font, characters[i].glyph, input);
    }
    GW_MUST_HOLD(gw::is_utf8(gw::sample_letters(font, "Aa")), input);
}

/// Returns how many faces the file has.
long try_face(const std::string& path, long number, std::string_view input) {
    const gw::Result<gw::FontFace> font = gw::FontFace::open(path, number);
    if (!font) return 0;
    const gw::FaceFacts& facts = font->facts();
    try_name(facts.family, input);
    try_name(facts.style, input);
    try_name(facts.charset, input);
    GW_MUST_HOLD(facts.faces >= 1, input);
    try_characters(*font, input);
    return facts.faces;
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    const std::string path = directory().write("font", font_of(input));
    const Verdict verdict = judge(path);
    long faces = 1;
    for (long number = 0; number < std::min(faces, MOST_FACES); ++number) {
        faces = try_face(path, number, input);
        GW_MUST_HOLD(faces > 0 || verdict.kind != Verdict::Kind::OK, input);
    }
}
