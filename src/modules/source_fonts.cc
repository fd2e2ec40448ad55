// SPDX-License-Identifier: MIT
#include "modules/source_fonts.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/font_policy.h"
#include "core/long_work.h"
#include "core/text.h"
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
void take_facts(GWFont& font, const FaceFacts& facts) {
    if (font.is_bitmap()) return;
    if (!facts.family.empty()) font.set_family_in_font(facts.family);
    if (facts.format == FontFormat::OPENTYPE_CFF) font.set_conversion(conversion());
}

/// What a look at the file has found, before the names of the font are known.
struct Look {
    std::optional<FaceFacts> facts;
    std::optional<Verdict> verdict;  // when fonts are judged at once
};

Look look_at(const GWFont& font, bool is_judged) {
    const std::string& path = first_file(font)->get_path();
    Look look;
    if (is_given_up()) return look;
    if (is_judged) {
        Verdict verdict = judge(path);
        // What was given up in the middle says nothing about the font.
        if (is_given_up()) return look;
        look.facts = std::exchange(verdict.facts, std::nullopt);
        look.verdict = std::move(verdict);
    }
    if (look.facts || font.is_bitmap()) return look;
    const Result<FontFace> face = FontFace::open(path);
    if (face) look.facts = face->facts();
    return look;
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
    if (why.reason != Reason::GIVEN_UP) tell(why.with(Sequel::NOT_USED));
    for (GWFont* font : fonts) {
        if (!has_name_in_header(*font)) refuse(*font, why, "[No Name]");
    }
}

/// The weight of a style, as XLFD names have it.
const char* weight_of(std::string style) {
    style = lower_case(style);
    std::erase(style, ' ');
    // What is part of a longer word comes after that.
    static constexpr std::pair<std::string_view, const char*> WEIGHTS[] = {
        {"extrabold", "extrabold"}, {"semibold", "semibold"},     {"demi", "semibold"}, {"bold", "bold"},
        {"black", "black"},         {"extralight", "extralight"}, {"light", "light"},   {"thin", "thin"},
    };
    for (const auto& [word, weight] : WEIGHTS) {
        if (style.find(word) != std::string::npos) return weight;
    }
    return "medium";
}

std::string slant_of(const std::string& style) {
    const std::string lower = lower_case(style);
    if (lower.find("italic") != std::string::npos) return "i";
    return lower.find("oblique") != std::string::npos ? "o" : "r";
}

std::string name_at_sight(const FaceFacts& facts) {
    std::string family = facts.family;
    std::replace(family.begin(), family.end(), '-', ' ');
    return "-misc-" + family + '-' + weight_of(facts.style) + '-' + slant_of(facts.style) +
           "-normal--0-0-0-0-p-0-" + (facts.charset.empty() ? "iso8859-1" : facts.charset);
}

void name_at_sight(GWFont& font) {
    if (has_name_in_header(font))
        return font.set_field(GWFont::WEIGHT_NAME, weight_of(font.get_field(GWFont::WEIGHT_NAME)));
    const std::string& path = first_file(font)->get_path();
    const Result<FontFace> face = FontFace::open(path);
    if (!face || face->facts().family.empty()) {
        font.set_obstacle({path, Reason::NO_NAMES});
        return;
    }
    font.set_xlfd_name(name_at_sight(face->facts()).c_str());
    if (!font.is_bitmap()) font.set_family_in_font(face->facts().family);
}

/// The font is judged from now on, and by this.
Outcome take_verdict(GWFont& font, const Verdict& verdict) {
    font.set_checked();
    const bool is_for_conversion = verdict.kind == Verdict::Kind::NOT_FOR_SERVERS && font.get_conversion();
    if (verdict.kind == Verdict::Kind::OK) return done();
    Outcome converter = is_for_conversion ? can_convert() : Outcome(verdict.why);
    if (!converter) refuse(font, converter.failure(), mark_of(verdict));
    return converter;
}

/// What notes the fonts now; null when they are named at once.
NamedTogether* named_together = nullptr;

bool are_judged_when_named = false;
bool are_named_at_sight = false;

}  // namespace

NamedAtSight::NamedAtSight() {
    are_named_at_sight = true;
}

NamedAtSight::~NamedAtSight() {
    are_named_at_sight = false;
}

NamedTogether::NamedTogether() {
    named_together = this;
}

NamedTogether::~NamedTogether() {
    named_together = nullptr;
    name_source_fonts(fonts_);
}

JudgedWhenNamed::JudgedWhenNamed() {
    are_judged_when_named = true;
}

JudgedWhenNamed::~JudgedWhenNamed() {
    are_judged_when_named = false;
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
    if (are_named_at_sight) {
        for (GWFont* font : fonts) name_at_sight(*font);
        return;
    }
    if (named_together != nullptr) {
        named_together->fonts_.insert(named_together->fonts_.end(), fonts.begin(), fonts.end());
        return;
    }
    std::vector<std::string> paths;
    paths.reserve(fonts.size());
    for (const GWFont* font : fonts) paths.emplace_back(first_file(*font)->get_path());
    const bool is_judged = are_judged_when_named && font_policy().checks_source_fonts();
    std::vector<Look> looks(fonts.size());
    Result<std::vector<std::vector<IndexName>>> names =
        tool_names(paths, {}, [&](std::size_t i) { looks[i] = look_at(*fonts[i], is_judged); });
    if (!names) return refuse_nameless(fonts, names.failure());
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        GWFont& font = *fonts[i];
        std::vector<IndexName>& found = (*names)[i];
        if (!found.empty()) {
            font.set_index_names(std::move(found));
            if (looks[i].facts) take_facts(font, *looks[i].facts);
            if (looks[i].verdict) (void)take_verdict(font, *looks[i].verdict);
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
    return take_verdict(font, verdict);
}

}  // namespace gw
