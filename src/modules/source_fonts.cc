// SPDX-License-Identifier: MIT
#include "modules/source_fonts.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/font_policy.h"
#include "core/long_work.h"
#include "fontfiles/font_face.h"
#include "fontfiles/font_verdict.h"
#include "model/gw_xlfd_name.h"
#include "modules/index_access.h"
#include "modules/outline_conversion.h"
#include "modules/tool_names.h"

namespace gw {

namespace {

GWFont::Conversion conversion() {
    const bool becomes_truetype = std::string_view(CONVERTED_EXTENSION) == ".ttf";
    return {becomes_truetype ? GWFont::TRUETYPE_FONT : GWFont::TYPE1_FONT, CONVERTED_EXTENSION};
}

/// What the font itself says, besides the names in the index.
void look_inside(GWFont& font) {
    if (font.is_bitmap()) return;
    const Result<FontFace> face = FontFace::open(first_file(font)->get_path());
    if (!face) return;
    const FaceFacts& facts = face->facts();
    if (!facts.family.empty()) font.set_family_in_font(facts.family);
    if (facts.format == FontFormat::OPENTYPE_CFF) font.set_conversion(conversion());
}

/// Whether the module has found a name in the header of a Type 1 font, which the tools do not list.
bool has_name_in_header(GWFont& font) {
    return font.get_type() == GWFont::TYPE1_FONT && is_xlfd_name(font.get_xlfd_name()) != 0 &&
           *font.get_field(GWFont::TYPEFACE_NAME) != '\0';
}

/// Notes why the font cannot be installed, and for lists which mark it has.
void refuse(GWFont& font, const Failure& why, const std::string& mark) {
    font.set_obstacle(why);
    if (font_policy().marks_what_is_unfit()) font.set_mark(mark);
}

/// Without the tools only those fonts have names that bring their own.
void refuse_nameless(const std::vector<GWFont*>& fonts, const Failure& why) {
    tell(why.with(Sequel::NOT_USED));
    for (GWFont* font : fonts) {
        if (!has_name_in_header(*font)) refuse(*font, why, "[No Name]");
    }
}

/// What notes the fonts now; null when they are named at once.
NamedTogether* named_together = nullptr;

}  // namespace

NamedTogether::NamedTogether() {
    named_together = this;
}

NamedTogether::~NamedTogether() {
    named_together = nullptr;
    name_source_fonts(fonts_);
}

std::string mark_of(const Verdict& verdict) {
    switch (verdict.kind) {
        case Verdict::Kind::OK:
            return "";
        case Verdict::Kind::DAMAGED:
            return "[Damaged]";
        case Verdict::Kind::NOT_A_FONT:
            return "[Not a Font]";
        case Verdict::Kind::EMPTY:
            return "[Empty]";
        case Verdict::Kind::NOT_FOR_SERVERS:
            return "[Not for X]";
        case Verdict::Kind::UNREADABLE:
            return "[Unreadable]";
    }
    return "";
}

void name_source_fonts(const std::vector<GWFont*>& fonts) {
    if (named_together != nullptr) {
        named_together->fonts_.insert(named_together->fonts_.end(), fonts.begin(), fonts.end());
        return;
    }
    std::vector<std::string> paths;
    paths.reserve(fonts.size());
    for (const GWFont* font : fonts) paths.emplace_back(first_file(*font)->get_path());
    Result<std::vector<std::vector<IndexName>>> names = tool_names(paths);
    if (!names) return refuse_nameless(fonts, names.failure());
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        GWFont& font = *fonts[i];
        std::vector<IndexName>& found = (*names)[i];
        if (!found.empty()) {
            font.set_index_names(std::move(found));
            look_inside(font);
        } else if (!has_name_in_header(font)) {
            if (check_source_font(font))
                refuse(font, {first_file(font)->get_path(), Reason::NO_NAMES}, "[No Name]");
        }
    }
}

Outcome check_source_font(GWFont& font) {
    if (font.get_obstacle()) return *font.get_obstacle();
    if (!font_policy().checks_source_fonts() || font.is_checked() || first_file(font) == nullptr)
        return done();
    const Verdict verdict = judge(first_file(font)->get_path());
    if (is_given_up()) return Failure{first_file(font)->get_path(), Reason::GIVEN_UP};
    font.set_checked();
    const bool is_for_conversion = verdict.kind == Verdict::Kind::NOT_FOR_SERVERS && font.get_conversion();
    if (verdict.kind == Verdict::Kind::OK) return done();
    Outcome converter = is_for_conversion ? can_convert() : Outcome(verdict.why);
    if (!converter) refuse(font, converter.failure(), mark_of(verdict));
    return converter;
}

}  // namespace gw
