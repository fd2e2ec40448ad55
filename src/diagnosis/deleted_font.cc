// SPDX-License-Identifier: MIT
#include "diagnosis/deleted_font.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "diagnosis/name_difference.h"
#include "diagnosis/server_update.h"
#include "diagnosis/undo.h"
#include "diagnosis/xlfd_fields.h"
#include "fontpath/trash_places.h"
#include "model/deleted_fonts.h"
#include "platform/user_name.h"

namespace gw::diagnosis {

namespace {

/// Whether programs that ask for the pattern would get a font of that name. An outline has every size.
bool is_what_was_asked_for(const std::string& font, const std::string& pattern) {
    if (matches(font, pattern)) return true;
    const std::optional<XlfdFields> fields = fields_of(font);
    const std::optional<XlfdFields> wanted = fields_of_pattern(pattern);
    return fields && wanted && fields->is_scalable() && differences(*fields, *wanted).empty();
}

/// What the question asks for: its own name, and what aliases make of it that lead nowhere.
std::vector<std::string> names_asked_for(const Answer& answer) {
    std::vector<std::string> names = {answer.question.name};
    for (const UselessAlias& alias : answer.font.useless) names.push_back(alias.font);
    return names;
}

bool matches_question(const DeletedFont& font, const Answer& answer) {
    if (answer.question.wanted == Wanted::FILE) {
        return std::any_of(font.files.begin(), font.files.end(),
                           [&](const std::string& file) { return font.dir + file == answer.question.name; });
    }
    for (const std::string& wanted : names_asked_for(answer)) {
        for (const std::string& name : font.font_names) {
            if (is_what_was_asked_for(name, wanted)) return true;
        }
    }
    return false;
}

bool may_change(const std::string& directory) {
    return ::faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

Cure cure_for(const DeletedFont& font) {
    return {.remedy = Remedy::BRING_BACK,
            .what = {Said::CURE_BRING_BACK, {font.name, font.dir}},
            .element = font.dir,
            .wanted = font.entry,
            .font = font.file_names.front()};
}

/// The font that the cure is about, as it is in the trash now.
std::optional<DeletedFont> font_of(const Cure& cure) {
    for (DeletedFont& font : deleted_fonts({cure.element})) {
        const bool has_file =
            std::find(font.file_names.begin(), font.file_names.end(), cure.font) != font.file_names.end();
        if (font.entry == cure.wanted && has_file) return std::move(font);
    }
    return std::nullopt;
}

}  // namespace

void add_deleted_fonts(Answer& answer, const Surroundings& surroundings) {
    const Wanted wanted = answer.question.wanted;
    const bool is_about_a_font = wanted == Wanted::FONT || wanted == Wanted::FILE;
    if (answer.works || !is_about_a_font || answer.place == ServerPlace::ELSEWHERE) return;
    std::vector<Cure> cures;
    std::size_t found = 0;
    for (const DeletedFont& font : deleted_fonts(trash_places(surroundings.configured), look_into_trash)) {
        if (!matches_question(font, answer)) continue;
        if (++found > MOST_DELETED) break;
        answer.verdict.push_back(
            {Said::WAS_DELETED, {font.name, font.dir, local_time_text(font.time), user_name(font.user)}});
        if (may_change(font.dir)) cures.push_back(cure_for(font));
    }
    answer.cures.insert(answer.cures.begin(), cures.begin(), cures.end());
}

Result<Deed> bring_back(const Cure& cure, ServerView& server, const Surroundings& surroundings) {
    const std::optional<DeletedFont> font = font_of(cure);
    if (!font) return Failure{cure.element, Reason::NOT_IN_TRASH};
    const ReturnOfFonts result = bring_fonts_back({*font});
    if (!result.left.empty()) return result.left.front().second;
    Deed deed{{Said::DONE_BROUGHT_BACK, {font->name, font->dir}}, {}, {}};
    const auto added = update(server, font->dir, surroundings.configured, deed.remarks);
    deed.undo = once(cure.element, [came = result.came, added, &server]() -> Outcome {
        Outcome out = take_out_again(came);
        if (out) look_again(server, added);
        return out;
    });
    return deed;
}

}  // namespace gw::diagnosis
