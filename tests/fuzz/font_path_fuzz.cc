// SPDX-License-Identifier: MIT
//
// The font path file of a user, which the shell reads: each line of an input is an element, and the input is
// also a file that somebody has written. What is written is read back the same, so the shell gets nothing to
// run. An element that begins with "~" or has a "$" is meant for the shell, and is left out here. Attributes
// of a database hold the same elements between commas.
#include <stdlib.h>

#include <optional>

#include "fontpath/font_path_files.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/vtfontpath_file.h"
#include "fuzz.h"
#include "platform/host_paths.h"

namespace {

using Elements = std::vector<std::string>;

constexpr std::size_t MOST_ELEMENTS = 40;

Elements texts_of(const gw::ElementList& list) {
    Elements texts;
    for (const GW_STRING* element : list) texts.emplace_back(element->get_str());
    return texts;
}

void fill(gw::ElementList& list, const Elements& elements) {
    for (const std::string& element : elements) list.append(new GW_STRING(element.c_str()));
}

void try_joining(const Elements& elements, std::string_view input) {
    gw::ElementList list;
    gw::ElementList pieces;
    const gw::ElementsOwner owner(list);
    const gw::ElementsOwner second_owner(pieces);
    Elements expected;
    for (const std::string& element : elements) {
        if (element.find(',') == std::string::npos) expected.push_back(element);
    }
    fill(list, expected);
    const std::optional<std::string> value = gw::create_fpe_string(list);
    GW_MUST_HOLD(value.has_value() != expected.empty(), input);
    if (value) gw::split_fpe_string(pieces, value->c_str());
    GW_MUST_HOLD(texts_of(pieces) == expected, input);
}

/// Elements in the two sections of the file; the shell's answer is what was written.
void try_shell(const Elements& append, const Elements& prepend, std::string_view input) {
    gw::ElementList append_list;
    gw::ElementList prepend_list;
    const gw::ElementsOwner owner(append_list);
    const gw::ElementsOwner second_owner(prepend_list);
    fill(append_list, append);
    fill(prepend_list, prepend);
    const std::optional<std::string> text = gw::vtfontpath_text(append_list, prepend_list);
    GW_MUST_HOLD(text.has_value(), input);
    gw::fuzz::directory().write(".VTfontpath", *text);

    GWFontPath path(gw::INSTALLATION_ROOT);
    unsigned count = 0;
    GW_MUST_HOLD(texts_of(*path.get_fpe_list(GWFontPath::USER_APPEND_FP, count)) == append, *text);
    GW_MUST_HOLD(texts_of(*path.get_fpe_list(GWFontPath::USER_PREPEND_FP, count)) == prepend, *text);
}

/// `text` with nothing in it that the shell would do more with than split it into words.
std::string harmless(std::string_view text) {
    constexpr std::string_view KEPT = "abcdefghijklmnopqrstuvwxyz0123456789/.,:@%=+_ \n";
    std::string result(text);
    for (char& c : result) {
        if (KEPT.find(c) == std::string_view::npos) c = '_';
    }
    return result;
}

/// A line with one blank between its words.
std::string words_of(const std::string& line) {
    std::string words;
    for (const char c : line) {
        if (c != ' ' || (!words.empty() && words.back() != ' ')) words += c;
    }
    if (words.ends_with(' ')) words.pop_back();
    return words;
}

/// A file that somebody has written by hand: the elements in front of the first blank line, and the groups
/// behind it, of which the last one comes first.
void try_written_by_hand(std::string_view input) {
    const std::string text = harmless(input);
    std::vector<Elements> groups(1);
    // The shell reads no line without its newline.
    for (const std::string& line : gw::fuzz::lines_of(text.substr(0, text.rfind('\n') + 1))) {
        const std::string words = words_of(line.substr(0, line.size() - 1));
        if (words.empty()) {
            groups.emplace_back();
        } else {
            groups.back().push_back(words);
        }
    }
    Elements prepend;
    for (auto group = groups.rbegin(); group + 1 != groups.rend(); ++group)
        prepend.insert(prepend.end(), group->begin(), group->end());
    gw::fuzz::directory().write(".VTfontpath", text);
    const gw::VtFontPath read = gw::read_vtfontpath(gw::fuzz::directory().file(".VTfontpath"));
    GW_MUST_HOLD(static_cast<bool>(read.outcome), text);
    GW_MUST_HOLD(read.append == groups.front(), text);
    GW_MUST_HOLD(read.prepend == prepend, text);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    ::setenv("HOME", directory().file("").c_str(), 1);
    Elements elements;
    for (std::string_view rest = input; !rest.empty() && elements.size() < MOST_ELEMENTS;) {
        const std::string element(before_nul(take_line(rest)));
        if (!element.empty()) elements.push_back(element);
    }
    try_joining(elements, input);
    std::erase_if(elements, [](const std::string& element) {
        return !vtfontpath_line(element) || element.starts_with('~') ||
               element.find('$') != std::string::npos;
    });
    const auto half = elements.begin() + static_cast<std::ptrdiff_t>(elements.size() / 2);
    try_written_by_hand(input);
    if (!elements.empty()) try_shell({elements.begin(), half}, {half, elements.end()}, input);
}
