// SPDX-License-Identifier: MIT
#include "fontfiles/whole_pcf.h"

#include <algorithm>
#include <vector>

#include "fontfiles/font_numbers.h"

namespace gw {

namespace {

enum Table : std::size_t {
    PROPERTIES = 1,
    ACCELERATORS = 2,
    METRICS = 4,
    BITMAPS = 8,
    INK_METRICS = 16,
    ENCODINGS = 32,
    SCALABLE_WIDTHS = 64,
    GLYPH_NAMES = 128,
    BDF_ACCELERATORS = 256,
};

constexpr std::size_t KIND_OF_FORMAT = 0xFFFFFF00;
constexpr std::size_t SHORT_METRICS = 0x100;
constexpr std::size_t WITH_INK = 0x100;
constexpr std::size_t HIGH_BYTE_FIRST = 4;
constexpr std::size_t PADDING = 3;
constexpr std::size_t MOST_GLYPHS = 0x10000;  // more cannot be in the encoding

void skip_properties(FontNumbers& table) {
    const std::size_t count = table.u32();
    table.skip(9 * count + (4 - count % 4) % 4);
    table.skip(table.u32());
}

void skip_accelerators(FontNumbers& table, std::size_t format) {
    table.skip((format & KIND_OF_FORMAT) == WITH_INK ? 68 : 44);
}

void skip_metrics(FontNumbers& table, std::size_t format) {
    if ((format & KIND_OF_FORMAT) == SHORT_METRICS)
        table.skip(5 * table.u16());
    else
        table.skip(12 * table.u32());
}

/// There are four sizes, for each way to pad rows; the format says which one is that of the file.
void skip_bitmaps(FontNumbers& table, std::size_t format) {
    table.skip(4 * table.u32());
    std::size_t size = 0;
    for (std::size_t padding = 0; padding < 4; ++padding) {
        const std::size_t one = table.u32();
        if (padding == (format & PADDING)) size = one;
    }
    table.skip(size);
}

void skip_encodings(FontNumbers& table) {
    const std::size_t first_column = table.u16();
    const std::size_t last_column = table.u16();
    const std::size_t first_row = table.u16();
    const std::size_t last_row = table.u16();
    table.skip(2);
    if (last_column >= first_column && last_row >= first_row)
        table.skip(2 * (last_column - first_column + 1) * (last_row - first_row + 1));
}

void skip_names(FontNumbers& table) {
    table.skip(4 * table.u32());
    table.skip(table.u32());
}

struct Opened {
    FontNumbers numbers;
    std::size_t format;
};

Opened opened(const FontBytes& bytes, std::size_t start) {
    Opened table = {FontNumbers(bytes, start, FontNumbers::Order::LOW_FIRST), 0};
    table.format = table.numbers.u32();
    if ((table.format & HIGH_BYTE_FIRST) != 0) table.numbers.set_order(FontNumbers::Order::HIGH_FIRST);
    return table;
}

bool is_whole_table(const FontBytes& bytes, std::size_t type, std::size_t start) {
    auto [table, format] = opened(bytes, start);
    switch (type) {
        case PROPERTIES:
            skip_properties(table);
            break;
        case ACCELERATORS:
        case BDF_ACCELERATORS:
            skip_accelerators(table, format);
            break;
        case METRICS:
        case INK_METRICS:
            skip_metrics(table, format);
            break;
        case BITMAPS:
            skip_bitmaps(table, format);
            break;
        case ENCODINGS:
            skip_encodings(table);
            break;
        case SCALABLE_WIDTHS:
            table.skip(4 * table.u32());
            break;
        case GLYPH_NAMES:
            skip_names(table);
            break;
        default:
            break;
    }
    return table.is_inside();
}

/// The size of a glyph's bitmap, in pixels; 0 where the metrics turn it inside out.
struct Extent {
    std::size_t width;
    std::size_t height;
};

std::size_t span(std::size_t low, std::size_t high) {
    return high > low ? high - low : 0;
}

/// A signed number, moved up so that none is below 0.
std::size_t lifted(std::size_t number, std::size_t zero) {
    return (number + zero) & (2 * zero - 1);
}

Extent next_extent(FontNumbers& metrics, bool is_short) {
    constexpr std::size_t BYTE_ZERO = 0x80;
    constexpr std::size_t WORD_ZERO = 0x8000;
    const std::size_t zero = is_short ? BYTE_ZERO : WORD_ZERO;
    const auto next = [&] { return is_short ? metrics.u8() : lifted(metrics.u16(), WORD_ZERO); };
    const std::size_t left = next();
    const std::size_t right = next();
    next();
    const std::size_t ascent = next();
    const std::size_t descent = next();
    if (!is_short) metrics.skip(2);
    return {span(left, right), span(2 * zero, ascent + descent)};
}

std::vector<Extent> extents_in(const FontBytes& bytes, std::size_t metrics) {
    Opened table = opened(bytes, metrics);
    const bool is_short = (table.format & KIND_OF_FORMAT) == SHORT_METRICS;
    const std::size_t count = is_short ? table.numbers.u16() : table.numbers.u32();
    std::vector<Extent> extents;
    while (extents.size() < std::min(count, MOST_GLYPHS))
        extents.push_back(next_extent(table.numbers, is_short));
    return extents;
}

/// Whether the bitmap of each glyph lies among the bitmaps.
bool has_all_bitmaps(const FontBytes& bytes, std::size_t metrics, std::size_t bitmaps) {
    const std::vector<Extent> extents = extents_in(bytes, metrics);
    Opened table = opened(bytes, bitmaps);
    FontNumbers sizes = table.numbers;
    sizes.skip(4 * sizes.u32());
    sizes.skip(4 * (table.format & PADDING));
    const std::size_t all = sizes.u32();
    const std::size_t row_unit = std::size_t{1} << (table.format & PADDING);
    if (std::min(table.numbers.u32(), MOST_GLYPHS) != extents.size()) return false;
    return std::all_of(extents.begin(), extents.end(), [&](const Extent& extent) {
        const std::size_t start = table.numbers.u32();
        const std::size_t row = ((extent.width + 7) / 8 + row_unit - 1) / row_unit * row_unit;
        return start <= all && row * extent.height <= all - start;
    });
}

}  // namespace

bool is_whole_pcf(const FontBytes& bytes) {
    FontNumbers contents(bytes, 4, FontNumbers::Order::LOW_FIRST);
    const std::size_t count = contents.u32();
    std::size_t metrics = 0;
    std::size_t bitmaps = 0;
    for (std::size_t i = 0; i < count && contents.is_inside(); ++i) {
        const std::size_t type = contents.u32();
        contents.skip(8);  // format and size
        const std::size_t start = contents.u32();
        if (!contents.is_inside() || !is_whole_table(bytes, type, start)) return false;
        if (type == METRICS) metrics = start;
        if (type == BITMAPS) bitmaps = start;
    }
    return contents.is_inside() && metrics != 0 && bitmaps != 0 && has_all_bitmaps(bytes, metrics, bitmaps);
}

}  // namespace gw
