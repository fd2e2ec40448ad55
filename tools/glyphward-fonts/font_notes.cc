// SPDX-License-Identifier: MIT
#include "glyphward-fonts/font_notes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/text.h"

namespace gw::fonts {

namespace {

constexpr std::array WORDS = {
    Message::SAYS_INSTALLED,     Message::SAYS_WOULD_INSTALL, Message::SAYS_REPLACED,
    Message::SAYS_WOULD_REPLACE, Message::SAYS_DELETED,       Message::SAYS_WOULD_DELETE,
    Message::SAYS_ALREADY,       Message::SAYS_KEPT,          Message::SAYS_FAILED};
static_assert(WORDS.size() == static_cast<std::size_t>(FontNotes::Result::FAILED) + 1);

Message word_for(FontNotes::Result result) {
    return WORDS[static_cast<std::size_t>(result)];
}

}  // namespace

void FontNotes::fail(const std::vector<FontReport::Entry>& fonts) {
    for (const FontReport::Entry& entry : fonts) {
        bool is_known = false;
        for (Note& note : notes_) {
            if (!note.is_change() || name_without_mark(note.font) != entry.font) continue;
            note.result = Result::FAILED;
            note.why = in_words(entry.why);
            note.code = in_code(entry.why);
            is_known = true;
        }
        if (!is_known) add({entry.font, Result::FAILED, in_words(entry.why), in_code(entry.why)});
    }
}

bool FontNotes::has_change() const {
    return std::any_of(notes_.begin(), notes_.end(), [](const Note& note) { return note.is_change(); });
}

void FontNotes::tell(Report& report) const {
    Json fonts = Json::array();
    for (const Note& note : notes_) {
        const Message what = word_for(note.result);
        const std::string why = report.as_called(note.why);
        report.line(escaped(note.font) + ": " + text_of(what) +
                    (why.empty() ? "" : " (" + escaped(why) + ')'));
        fonts.push_back({{"font", in_json(note.font)}, {"result", english_text_of(what)}});
        if (!why.empty()) fonts.back()["reason"] = in_json(why);
        fonts.back().update(note.code);
        for (const std::string& file : note.files)
            fonts.back()["files"].push_back(in_json(report.as_called(file)));
    }
    report.document()["fonts"] = fonts;
    report.document()["changed"] = has_change();
}

std::string result_in_language(const std::string& result) {
    const auto* word = std::find_if(WORDS.begin(), WORDS.end(),
                                    [&](Message message) { return result == english_text_of(message); });
    return word == WORDS.end() ? result : text_of(*word);
}

std::string without_marks(const std::string& shown) {
    std::string name = shown;
    for (const std::string_view mark : {"[Read Only]", "[No Name]"}) {
        if (!name.ends_with(mark)) continue;
        name.resize(name.size() - mark.size());
        name.resize(name.find_last_not_of(' ') + 1);
    }
    return name;
}

}  // namespace gw::fonts
