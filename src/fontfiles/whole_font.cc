// SPDX-License-Identifier: MIT
#include "fontfiles/whole_font.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "fontfiles/font_numbers.h"
#include "fontfiles/whole_bdf.h"
#include "fontfiles/whole_pcf.h"

namespace gw {

namespace {

using namespace std::string_view_literals;

constexpr auto HIGH_FIRST = FontNumbers::Order::HIGH_FIRST;
constexpr auto LOW_FIRST = FontNumbers::Order::LOW_FIRST;
constexpr std::size_t MOST_FACES = 100;
constexpr std::size_t TAIL = 8192;  // longer than the 512 zeros and what follows them, in any form

/// The tables of one font; `start` is the place of its directory.
bool is_whole_sfnt(const FontBytes& bytes, std::size_t start) {
    FontNumbers directory(bytes, start, HIGH_FIRST);
    directory.skip(4);
    const std::size_t count = directory.u16();
    directory.skip(6);
    for (std::size_t i = 0; i < count && directory.is_inside(); ++i) {
        directory.skip(8);
        FontNumbers table(bytes, directory.u32(), HIGH_FIRST);
        table.skip(directory.u32());
        if (!table.is_inside()) return false;
    }
    return directory.is_inside();
}

bool is_whole_collection(const FontBytes& bytes) {
    FontNumbers header(bytes, 8, HIGH_FIRST);
    const std::size_t count = header.u32();
    FontNumbers all = header;
    all.skip(4 * count);
    if (!all.is_inside()) return false;
    for (std::size_t i = 0; i < std::min(count, MOST_FACES); ++i)
        if (!is_whole_sfnt(bytes, header.u32())) return false;
    return true;
}

/// Whether the text that ends a Type 1 font is there, behind the encrypted part.
bool has_type1_end(const FontBytes& bytes) {
    const std::size_t start = bytes.size() - std::min(bytes.size(), TAIL);
    const std::string tail = bytes.part(start, TAIL);
    const std::size_t encrypted = start == 0 ? tail.find("eexec") : 0;
    return encrypted != std::string::npos && tail.find("cleartomark", encrypted) != std::string::npos;
}

/// A file of segments, each with a header: 0x80, its kind, and its size, which the end has not.
bool is_whole_pfb(const FontBytes& bytes) {
    constexpr std::size_t SEGMENT = 0x80;
    constexpr std::size_t END = 3;
    FontNumbers file(bytes, 0, LOW_FIRST);
    while (file.place() < bytes.size()) {
        const std::size_t mark = file.u8();
        const std::size_t kind = file.u8();
        if (mark != SEGMENT || !file.is_inside()) break;
        if (kind == END) return true;
        file.skip(file.u32());
        if (!file.is_inside()) return false;
    }
    return has_type1_end(bytes);
}

struct Format {
    std::string_view beginning;
    bool (*is_whole)(const FontBytes& bytes);
};
bool is_whole_font(const FontBytes& bytes) {
    return is_whole_sfnt(bytes, 0);
}
constexpr std::array<Format, 8> FORMATS = {{{"\x00\x01\x00\x00"sv, &is_whole_font},
                                            {"true", &is_whole_font},
                                            {"OTTO", &is_whole_font},
                                            {"ttcf", &is_whole_collection},
                                            {"\x80\x01", &is_whole_pfb},
                                            {"%!PS-AdobeFont", &has_type1_end},
                                            {"%!FontType", &has_type1_end},
                                            {"\1"
                                             "fcp",
                                             &is_whole_pcf}}};

}  // namespace

Outcome is_whole(const FontBytes& bytes) {
    const std::string beginning = bytes.part(0, 16);
    if (beginning.starts_with("STARTFONT")) return is_whole_bdf(bytes);
    for (const Format& format : FORMATS) {
        if (beginning.starts_with(format.beginning))
            return format.is_whole(bytes) ? done() : Outcome(Failure{bytes.path(), Reason::CUT_OFF});
    }
    return done();
}

}  // namespace gw
