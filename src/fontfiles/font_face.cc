// SPDX-License-Identifier: MIT
#include "fontfiles/font_face.h"

#include <ft2build.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include FT_FREETYPE_H
#include FT_BDF_H
#include FT_CID_H
#include FT_FONT_FORMATS_H
#include FT_MODULE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_IDS_H
#include FT_SFNT_NAMES_H
#include FT_TYPE1_TABLES_H

#include "core/text.h"
#include "fontfiles/charset_table.h"
#include "fontfiles/font_memory.h"
#include "fontfiles/sfnt_names.h"
#include "fontfiles/time_limit.h"
#include "fontfiles/unicode_text.h"

namespace gw {

namespace {

constexpr std::size_t LONGEST_NAME = 200;  // in characters
constexpr long MOST_FACES = 0xFFFF;        // FreeType has other uses for the higher bits of a number
constexpr double OPENING_SECONDS = 1.0;    // of processor time
constexpr double GLYPH_SECONDS = 0.5;
// Bare bones: no hinting, whose programs may run for long.
constexpr FT_Int32 LOAD_FLAGS = FT_LOAD_NO_HINTING | FT_LOAD_NO_AUTOHINT;
constexpr int LARGEST_GLYPH = 8;  // in units of the size that was asked for

/// The font's bytes as FreeType asks for them. When the time is up there are no more.
class FontStream {
  public:
    explicit FontStream(std::shared_ptr<const FontBytes> bytes) : bytes_(std::move(bytes)), record_() {
        record_.size = bytes_->size();
        record_.descriptor.pointer = this;
        record_.read = &read;
    }
    FontStream(const FontStream&) = delete;
    FontStream& operator=(const FontStream&) = delete;

    void allow(double seconds) {
        limit_ = TimeLimit(seconds);
        is_late_ = false;
    }
    [[nodiscard]] bool is_late() const { return is_late_; }
    [[nodiscard]] FT_Stream get() { return &record_; }
    [[nodiscard]] const FontBytes& bytes() const { return *bytes_; }

  private:
    static constexpr unsigned LOOKS_AT_CLOCK = 64;  // the clock is looked at once in so many reads

    /// A count of 0 asks whether the offset can be gone to; 0 means yes.
    static unsigned long read(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                              unsigned long count) {
        FontStream& self = *static_cast<FontStream*>(stream->descriptor.pointer);
        if (self.reads_++ % LOOKS_AT_CLOCK == 0 && self.limit_.is_over()) self.is_late_ = true;
        if (count == 0) return self.is_late_ || offset > self.bytes_->size() ? 1 : 0;
        return self.is_late_ ? 0 : self.bytes_->read(offset, buffer, count);
    }

    std::shared_ptr<const FontBytes> bytes_;
    FT_StreamRec record_;
    TimeLimit limit_{OPENING_SECONDS};
    unsigned reads_ = 0;
    bool is_late_ = false;
};

struct CloseLibrary {
    void operator()(FT_Library library) const { FT_Done_Library(library); }
};
using Library = std::unique_ptr<FT_LibraryRec_, CloseLibrary>;

/// FreeType without what no font of an X server needs.
Library library_in(FontMemory& memory) {
    FT_Library made = nullptr;
    if (FT_New_Library(memory.get(), &made) != FT_Err_Ok) return nullptr;
    Library library(made);
    FT_Add_Default_Modules(made);
    for (const char* name : {"autofitter", "ot-svg", "bsdf", "sdf", "winfonts", "pfr", "type42"}) {
        if (FT_Module module = FT_Get_Module(made, name)) FT_Remove_Module(made, module);
    }
    return library;
}

struct CloseFace {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};

/// Whether the file begins as a font does.
bool begins_as_font(const FontBytes& bytes) {
    using namespace std::string_view_literals;
    static constexpr std::array BEGINNINGS = {"\x00\x01\x00\x00"sv,
                                              "true"sv,
                                              "OTTO"sv,
                                              "ttcf"sv,
                                              "\x01"
                                              "fcp"sv,
                                              "STARTFONT "sv,
                                              "%!PS-AdobeFont"sv,
                                              "%!FontType"sv,
                                              "%!PS-Adobe-3.0 Resource-CIDFont"sv,
                                              "\x80\x01"sv};
    const std::string beginning = bytes.part(0, 40);
    return std::any_of(BEGINNINGS.begin(), BEGINNINGS.end(),
                       [&](std::string_view known) { return beginning.starts_with(known); });
}

Failure failure_of_opening(FT_Error error, const FontStream& stream, long face) {
    const FontBytes& bytes = stream.bytes();
    if (stream.is_late()) return {bytes.path(), Reason::TAKES_TOO_LONG};
    if (face > 0 && error == FT_Err_Invalid_Argument)
        return {.subject = bytes.path(), .reason = Reason::NO_SUCH_FACE, .detail = std::to_string(face + 1)};
    return {bytes.path(), begins_as_font(bytes) ? Reason::DAMAGED_FONT : Reason::NOT_A_FONT};
}

FontFormat format_of(FT_Face face) {
    static constexpr std::array<std::pair<std::string_view, FontFormat>, 5> FORMATS = {
        {{"Type 1", FontFormat::TYPE1},
         {"CID Type 1", FontFormat::CID},
         {"TrueType", FontFormat::TRUETYPE},
         {"BDF", FontFormat::BDF},
         {"PCF", FontFormat::PCF}}};
    const char* text = FT_Get_Font_Format(face);
    const std::string_view name = text == nullptr ? "" : text;
    if (name == "CFF") return FT_IS_SFNT(face) ? FontFormat::OPENTYPE_CFF : FontFormat::OTHER;
    for (const auto& [known, format] : FORMATS)
        if (name == known) return format;
    return FontFormat::OTHER;
}

std::string shown_name(const char* name) {
    const std::string_view bytes = name == nullptr ? "" : name;
    return as_one_line(is_utf8(bytes) ? std::string(bytes) : utf8_from_latin1(bytes), LONGEST_NAME);
}

void take_names(FaceFacts& facts, FT_Face face) {
    if (!FT_IS_SFNT(face)) {
        facts.family = shown_name(face->family_name);
        facts.style = shown_name(face->style_name);
        return;
    }
    facts.family =
        as_one_line(sfnt_name(face, {TT_NAME_ID_TYPOGRAPHIC_FAMILY, TT_NAME_ID_FONT_FAMILY}), LONGEST_NAME);
    facts.style = as_one_line(sfnt_name(face, {TT_NAME_ID_TYPOGRAPHIC_SUBFAMILY, TT_NAME_ID_FONT_SUBFAMILY}),
                              LONGEST_NAME);
}

std::string charset_of(FT_Face face) {
    const char* encoding = nullptr;
    const char* registry = nullptr;
    if (FT_Get_BDF_Charset_ID(face, &encoding, &registry) != FT_Err_Ok) return "";
    if (encoding == nullptr || registry == nullptr) return "";
    return lower_case(as_one_line(std::string(registry) + '-' + encoding, LONGEST_NAME));
}

/// FreeType's flag of this name is for fonts that are not in OpenType.
bool is_cid_keyed(FT_Face face) {
    FT_Bool is_keyed = 0;
    return FT_IS_CID_KEYED(face) ||
           (FT_Get_CID_Is_Internally_CID_Keyed(face, &is_keyed) == FT_Err_Ok && is_keyed != 0);
}

std::string notice_of(FT_Face face) {
    PS_FontInfoRec info = {};
    return FT_Get_PS_Font_Info(face, &info) == FT_Err_Ok ? shown_name(info.notice) : "";
}

bool may_be_changed(FT_Face face) {
    constexpr FT_UShort EMBEDDING = 0x000F;
    return (FT_Get_FSType_Flags(face) & EMBEDDING) != FT_FSTYPE_RESTRICTED_LICENSE_EMBEDDING;
}

/// A number that FreeType refuses stays one that it refuses.
FT_UInt glyph_number(unsigned long glyph) {
    return static_cast<FT_UInt>(std::min(glyph, 0xFFFFFFFFUL));
}

int rounded_pixels(FT_Pos size) {
    return static_cast<int>((size + 32) >> 6);
}

/// FreeType puts a copy of the default character of these before their glyphs.
bool is_bitmap_file(FontFormat format) {
    return format == FontFormat::BDF || format == FontFormat::PCF;
}

FaceFacts facts_of(FT_Face face) {
    FaceFacts facts;
    facts.format = format_of(face);
    take_names(facts, face);
    facts.faces = std::max(face->num_faces, 1L);
    facts.glyphs = face->num_glyphs - (is_bitmap_file(facts.format) ? 1 : 0);
    facts.scalable = FT_IS_SCALABLE(face);
    facts.is_cid_keyed = is_cid_keyed(face);
    facts.fixed_pitch = FT_IS_FIXED_WIDTH(face);
    for (int i = 0; i < face->num_fixed_sizes; ++i)
        facts.pixel_sizes.push_back(rounded_pixels(face->available_sizes[i].y_ppem));
    facts.charset = charset_of(face);
    facts.notice = notice_of(face);
    facts.may_be_changed = may_be_changed(face);
    return facts;
}

/// FreeType's picture as ours. Its pitch is negative if the lowest row comes first.
GlyphImage image_of(const FT_GlyphSlotRec_& slot) {
    const FT_Bitmap& bitmap = slot.bitmap;
    GlyphImage image{.width = static_cast<int>(bitmap.width),
                     .height = static_cast<int>(bitmap.rows),
                     .left = slot.bitmap_left,
                     .top = slot.bitmap_top,
                     .advance = static_cast<int>(slot.advance.x >> 6),
                     .rows = {}};
    image.rows.reserve(std::size_t{bitmap.width} * bitmap.rows);
    for (int y = 0; y < image.height; ++y) {
        const int line = bitmap.pitch < 0 ? image.height - 1 - y : y;
        const unsigned char* row = bitmap.buffer + std::ptrdiff_t{line} * std::abs(bitmap.pitch);
        for (int x = 0; x < image.width; ++x) {
            const bool is_mono = bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
            const bool is_set = is_mono && (row[x / 8] & (0x80 >> x % 8)) != 0;
            image.rows.push_back(is_mono ? static_cast<std::uint8_t>(is_set ? 255 : 0) : row[x]);
        }
    }
    return image;
}

}  // namespace

class FontFace::Opened {
  public:
    explicit Opened(std::shared_ptr<const FontBytes> bytes)
        : stream_(std::move(bytes)), library_(library_in(memory_)) {}

    Outcome open(long number) {
        const FontBytes& bytes = stream_.bytes();
        if (bytes.size() == 0) return Failure{bytes.path(), Reason::EMPTY_FILE};
        if (number < 0 || number > MOST_FACES)
            return failure_of_opening(FT_Err_Invalid_Argument, stream_, number);
        FT_Open_Args how = {};
        how.flags = FT_OPEN_STREAM;
        how.stream = stream_.get();
        stream_.allow(OPENING_SECONDS);
        FT_Face made = nullptr;
        const FT_Error error = FT_Open_Face(library_.get(), &how, number, &made);
        if (error != FT_Err_Ok) return failure_of_opening(error, stream_, number);
        face_.reset(made);
        facts_ = facts_of(made);
        choose_charmap();
        return done();
    }

    [[nodiscard]] FT_Face face() const { return face_.get(); }
    [[nodiscard]] const FaceFacts& facts() const { return facts_; }
    [[nodiscard]] bool has_unicode() const { return has_unicode_; }
    /// In the order of their codes.
    [[nodiscard]] std::vector<Character> characters() const {
        return translated_.empty() ? coded() : translated_;
    }
    [[nodiscard]] unsigned long glyph_of(char32_t character) const {
        if (translated_.empty()) return FT_Get_Char_Index(face(), character);
        const auto found = std::lower_bound(translated_.begin(), translated_.end(), character, &is_before);
        return found != translated_.end() && found->code == character ? found->glyph : 0;
    }
    void allow(double seconds) { stream_.allow(seconds); }

    [[nodiscard]] Failure damaged_glyph(unsigned long glyph) const {
        return {.subject = stream_.bytes().path(),
                .reason = Reason::DAMAGED_GLYPH,
                .detail = std::to_string(glyph)};
    }

  private:
    void choose_charmap() {
        has_unicode_ = FT_Select_Charmap(face(), FT_ENCODING_UNICODE) == FT_Err_Ok;
        if (has_unicode_ || face()->num_charmaps == 0) return;
        FT_Set_Charmap(face(), face()->charmaps[0]);
        translate(CharsetTable(facts_.charset));
    }

    static bool is_before(const Character& a, char32_t code) { return a.code < code; }

    /// By Unicode, if the charset of the font's codes is known.
    void translate(const CharsetTable& table) {
        if (!table.is_known()) return;
        for (const Character& character : coded()) {
            const char32_t unicode = table.unicode_of(character.code);
            if (unicode != 0) translated_.push_back({unicode, character.glyph});
        }
        std::stable_sort(translated_.begin(), translated_.end(),
                         [](const Character& a, const Character& b) { return is_before(a, b.code); });
        has_unicode_ = !translated_.empty();
    }

    /// The characters by the codes of the chosen charmap.
    [[nodiscard]] std::vector<Character> coded() const {
        std::vector<Character> all;
        FT_UInt glyph = 0;
        FT_ULong code = FT_Get_First_Char(face(), &glyph);
        while (glyph != 0 && code <= 0x10FFFF) {
            all.push_back({static_cast<char32_t>(code), glyph});
            const FT_ULong next = FT_Get_Next_Char(face(), code, &glyph);
            if (next <= code) break;
            code = next;
        }
        return all;
    }

    // In this order: the face needs its library, the library its memory and its stream.
    FontMemory memory_;
    FontStream stream_;
    Library library_;
    std::unique_ptr<FT_FaceRec_, CloseFace> face_;
    FaceFacts facts_;
    bool has_unicode_ = false;
    std::vector<Character> translated_;  ///< of a bitmap font in an older charset
};

FontFace::FontFace(std::unique_ptr<Opened> opened) : opened_(std::move(opened)) {}
FontFace::FontFace(FontFace&& other) noexcept = default;
FontFace& FontFace::operator=(FontFace&& other) noexcept = default;
FontFace::~FontFace() = default;

Result<FontFace> FontFace::open(const std::string& path, long face) {
    Result<FontBytes> bytes = FontBytes::open(path);
    if (!bytes) return bytes.failure();
    return open(std::make_shared<const FontBytes>(std::move(*bytes)), face);
}

Result<FontFace> FontFace::open(std::shared_ptr<const FontBytes> bytes, long face) {
    auto opened = std::make_unique<Opened>(std::move(bytes));
    if (Outcome outcome = opened->open(face); !outcome) return outcome.failure();
    return FontFace(std::move(opened));
}

const FaceFacts& FontFace::facts() const {
    return opened_->facts();
}

std::vector<FontFace::Character> FontFace::characters() const {
    return opened_->characters();
}

bool FontFace::has_unicode() const {
    return opened_->has_unicode();
}

unsigned long FontFace::glyph_of(char32_t character) const {
    return opened_->glyph_of(character);
}

bool FontFace::has(char32_t character) const {
    return glyph_of(character) != 0;
}

std::string FontFace::glyph_name(unsigned long glyph) const {
    char name[128] = "";
    if (!FT_HAS_GLYPH_NAMES(opened_->face())) return "";
    if (FT_Get_Glyph_Name(opened_->face(), glyph_number(glyph), name, sizeof name) != FT_Err_Ok) return "";
    return shown_name(name);
}

namespace {

/// The bitmap size nearest to a size.
int nearest_strike(const std::vector<int>& sizes, int pixels) {
    const auto farther = [pixels](int a, int b) { return std::abs(a - pixels) < std::abs(b - pixels); };
    return static_cast<int>(std::min_element(sizes.begin(), sizes.end(), farther) - sizes.begin());
}

/// Whether the outline is of a size that a drawing can be made of.
bool is_drawable(const FT_GlyphSlotRec_& slot, int pixels) {
    if (slot.format != FT_GLYPH_FORMAT_OUTLINE) return slot.format == FT_GLYPH_FORMAT_BITMAP;
    FT_BBox box = {};
    FT_Outline_Get_CBox(&slot.outline, &box);
    const FT_Pos most = FT_Pos{64} * LARGEST_GLYPH * pixels;
    return box.xMin > -most && box.yMin > -most && box.xMax < most && box.yMax < most;
}

/// A character of a BDF font that has a size, but no bitmap, is one without a buffer for FreeType.
bool is_readable_bitmap(const FT_Bitmap& bitmap) {
    if (bitmap.buffer == nullptr) return bitmap.width == 0 || bitmap.rows == 0;
    const auto row = static_cast<unsigned>(std::abs(bitmap.pitch));
    if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO) return row >= (bitmap.width + 7) / 8;
    return bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && row >= bitmap.width;
}

}  // namespace

Result<GlyphImage> FontFace::draw(unsigned long glyph, int pixels) const {
    FT_Face face = opened_->face();
    pixels = std::clamp(pixels, 1, MOST_PIXELS);
    opened_->allow(GLYPH_SECONDS);
    const FT_UInt number = glyph_number(glyph);
    const FT_Error sized = facts().scalable
                               ? FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(pixels))
                               : FT_Select_Size(face, nearest_strike(facts().pixel_sizes, pixels));
    const FT_Int32 flags = LOAD_FLAGS | (facts().scalable ? FT_LOAD_NO_BITMAP : 0);
    if (sized != FT_Err_Ok || FT_Load_Glyph(face, number, flags) != FT_Err_Ok)
        return opened_->damaged_glyph(glyph);
    FT_GlyphSlot slot = face->glyph;
    if (!is_drawable(*slot, pixels) || FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != FT_Err_Ok)
        return opened_->damaged_glyph(glyph);
    if (!is_readable_bitmap(slot->bitmap)) return opened_->damaged_glyph(glyph);
    return image_of(*slot);
}

Outcome FontFace::load(unsigned long glyph, int strike) const {
    FT_Face face = opened_->face();
    opened_->allow(GLYPH_SECONDS);
    if (!facts().scalable && FT_Select_Size(face, strike) != FT_Err_Ok) return opened_->damaged_glyph(glyph);
    const FT_Int32 flags = LOAD_FLAGS | (facts().scalable ? FT_LOAD_NO_SCALE : 0);
    const bool is_loaded = FT_Load_Glyph(face, glyph_number(glyph), flags) == FT_Err_Ok;
    return is_loaded ? done() : Outcome(opened_->damaged_glyph(glyph));
}

}  // namespace gw
