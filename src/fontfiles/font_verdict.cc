// SPDX-License-Identifier: MIT
#include "fontfiles/font_verdict.h"

#include <algorithm>
#include <utility>

#include "fontfiles/time_limit.h"
#include "fontfiles/whole_font.h"

namespace gw {

namespace {

constexpr long MOST_FACES = 100;
constexpr unsigned long SOME_GLYPHS = 32;
constexpr double SECONDS = 0.3;

bool is_bitmap_file(const FaceFacts& facts) {
    return facts.format == FontFormat::BDF || facts.format == FontFormat::PCF;
}

/// Loads the glyphs from `first` to `last`, each as many behind the one before as `step` says.
Outcome load_range(const FontFace& font, unsigned long first, unsigned long last, unsigned long step,
                   int strike, const TimeLimit& limit) {
    for (unsigned long glyph = first; glyph <= last && !limit.is_over(); glyph += step)
        if (Outcome loaded = font.load(glyph, strike); !loaded) return loaded;
    return done();
}

Outcome load_ascii(const FontFace& font, const TimeLimit& limit) {
    for (char32_t letter = U'!'; letter <= U'~' && !limit.is_over(); ++letter) {
        const unsigned long glyph = font.glyph_of(letter);
        if (glyph == 0) continue;
        if (Outcome loaded = font.load(glyph); !loaded) return loaded;
    }
    return done();
}

Outcome load_glyphs(const FontFace& font, const TimeLimit& limit) {
    const FaceFacts& facts = font.facts();
    const auto count = static_cast<unsigned long>(facts.glyphs);
    if (is_bitmap_file(facts)) return load_range(font, 1, count, 1, 0, limit);
    const unsigned long step = std::max(count / SOME_GLYPHS, 1UL);
    if (Outcome some = load_range(font, 0, count - 1, step, 0, limit); !some) return some;
    if (Outcome last = font.load(count - 1); !last) return last;
    return load_ascii(font, limit);
}

Outcome check_face(const FontFace& font, const FontBytes& bytes, const TimeLimit& limit) {
    if (font.facts().glyphs <= 0) return Failure{bytes.path(), Reason::NO_GLYPHS};
    return load_glyphs(font, limit);
}

bool is_for_servers(FontFormat format) {
    return format != FontFormat::OPENTYPE_CFF && format != FontFormat::OTHER;
}

/// A font that is both damaged and not for servers is damaged.
Outcome check_faces(const std::shared_ptr<const FontBytes>& bytes, std::optional<FaceFacts>& first) {
    const TimeLimit limit(SECONDS);
    bool are_for_servers = true;
    long faces = 1;
    for (long number = 0; number < std::min(faces, MOST_FACES) && !limit.is_over(); ++number) {
        const Result<FontFace> font = FontFace::open(bytes, number);
        if (!font) return font.failure();
        if (number == 0) first = font->facts();
        faces = font->facts().faces;
        are_for_servers = are_for_servers && is_for_servers(font->facts().format);
        if (Outcome checked = check_face(*font, *bytes, limit); !checked) return checked;
    }
    return are_for_servers ? done() : Outcome(Failure{bytes->path(), Reason::NOT_FOR_SERVERS});
}

Verdict::Kind kind_of(Reason reason) {
    switch (reason) {
        case Reason::EMPTY_FILE:
        case Reason::NO_GLYPHS:
            return Verdict::Kind::EMPTY;
        case Reason::NOT_A_FONT:
            return Verdict::Kind::NOT_A_FONT;
        case Reason::DAMAGED_FONT:
        case Reason::CUT_OFF:
        case Reason::DAMAGED_GLYPH:
        case Reason::NO_SUCH_FACE:
        case Reason::NOT_UNPACKED:
            return Verdict::Kind::DAMAGED;
        case Reason::NOT_FOR_SERVERS:
            return Verdict::Kind::NOT_FOR_SERVERS;
        default:
            return Verdict::Kind::UNREADABLE;
    }
}

}  // namespace

Verdict verdict_of(const Failure& failure) {
    return {.kind = kind_of(failure.reason), .why = failure};
}

Verdict judge(const std::string& path) {
    Result<FontBytes> bytes = FontBytes::open(path);
    if (!bytes) return verdict_of(bytes.failure());
    return judge(std::make_shared<const FontBytes>(std::move(*bytes)));
}

Verdict judge(const std::shared_ptr<const FontBytes>& bytes) {
    if (const Outcome whole = is_whole(*bytes); !whole) return verdict_of(whole.failure());
    std::optional<FaceFacts> facts;
    const Outcome checked = check_faces(bytes, facts);
    Verdict verdict = checked ? Verdict{} : verdict_of(checked.failure());
    verdict.facts = std::move(facts);
    return verdict;
}

}  // namespace gw
