// SPDX-License-Identifier: MIT
//
// The texts of the message catalogues, language by language, and checks for mistakes in them.
#pragma once

#include <algorithm>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gw::catalogue {

/// One text, in UTF-8, under its numbers in the catalogue.
struct Entry {
    int set;
    int number;
    std::string_view text;
};
using Texts = std::vector<Entry>;

/// The table of texts: what the program shows without a catalogue.
inline Texts defaults() {
    return {
#define MSG(set, number, name, text) {set, number, text},
#include "texts/messages.def"
#undef MSG
    };
}

/// The texts that differ in English locales.
inline Texts corrections() {
    return {
#define MSG(set, number, text) {set, number, text},
#include "english.def"
#undef MSG
    };
}

inline Texts english() {
    const Texts corrected = corrections();
    Texts texts = defaults();
    for (Entry& entry : texts) {
        for (const Entry& other : corrected) {
            if (other.set == entry.set && other.number == entry.number) entry.text = other.text;
        }
    }
    return texts;
}

/// A language with its own text for every message.
struct Language {
    std::string_view name;
    Texts texts;
};

inline std::vector<Language> languages() {
#define MSG(set, number, text) {set, number, text},
    return {{"german",
             {
#include "german.def"
             }},
            {"french",
             {
#include "french.def"
             }},
            {"spanish",
             {
#include "spanish.def"
             }},
            {"japanese",
             {
#include "japanese.def"
             }}};
#undef MSG
}

/// The conversions ("%d", "%s", ...) of a text, in order; "%%" is one of them.
inline std::vector<std::string_view> places_of(std::string_view text) {
    std::vector<std::string_view> places;
    for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at)) {
        const std::size_t end = text.find_first_not_of("0123456789$.-+#hlqjzt", at + 1);
        places.push_back(text.substr(at, end != std::string_view::npos ? end + 1 - at : end));
        at += places.back().size();
    }
    return places;
}

/// The places for details ("{1}") of a text, sorted.
inline std::vector<std::string_view> details_of(std::string_view text) {
    std::vector<std::string_view> details;
    for (std::size_t at = text.find('{'); at != std::string_view::npos; at = text.find('{', at + 1))
        details.push_back(text.substr(at, 3));
    std::sort(details.begin(), details.end());
    return details;
}

/// The blanks and newlines that it begins with.
inline std::string_view beginning_of(std::string_view text) {
    return text.substr(0, std::min(text.find_first_not_of(" \n"), text.size()));
}

/// The newlines at its end; or one blank when it ends with any number of blanks; or nothing.
inline std::string_view end_of(std::string_view text) {
    if (text.ends_with(' ')) return " ";
    return text.substr(text.find_last_not_of('\n') + 1);
}

/// What a translation lacks compared with the original text; empty when nothing is missing.
inline std::string complaint(std::string_view text, std::string_view translation) {
    if (places_of(text) != places_of(translation)) return "has other places for numbers and names";
    if (details_of(text) != details_of(translation)) return "has other places for details";
    if (beginning_of(text) != beginning_of(translation)) return "begins with other blanks or newlines";
    if (end_of(text) != end_of(translation)) return "ends with other blanks or newlines";
    return translation.empty() ? "is empty" : "";
}

/// All mistakes in `translation`, one line each. It must have every text of `reference` exactly once, in the
/// same form, and no other text.
inline std::vector<std::string> complaints(std::span<const Entry> reference,
                                           std::span<const Entry> translation) {
    std::vector<std::string> lines;
    const auto complain = [&](std::pair<int, int> place, const std::string& what) {
        lines.push_back("set " + std::to_string(place.first) + ", number " + std::to_string(place.second) +
                        ": " + what);
    };
    std::map<std::pair<int, int>, std::string_view> translated;
    for (const Entry& entry : translation) {
        if (!translated.emplace(std::pair(entry.set, entry.number), entry.text).second)
            complain({entry.set, entry.number}, "stands there twice");
    }
    for (const Entry& entry : reference) {
        const std::pair place(entry.set, entry.number);
        const auto found = translated.find(place);
        if (found == translated.end()) {
            complain(place, "is missing");
            continue;
        }
        if (const std::string what = complaint(entry.text, found->second); !what.empty())
            complain(place, what);
        translated.erase(found);
    }
    for (const auto& [place, text] : translated) complain(place, "is no text of the program");
    return lines;
}

}  // namespace gw::catalogue
