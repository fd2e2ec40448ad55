// SPDX-License-Identifier: MIT
//
// The font path file of a user, which the shell reads: each line of an input is an element. What is written
// is read back the same, so the shell gets nothing to run. An element that begins with "~" or has a "$" is
// meant for the shell, and is left out here. Attributes of a database hold the same elements between commas.
#include <stdlib.h>

#include <optional>

#include "fontpath/font_path_files.h"
#include "fontpath/gw_font_path.h"
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
    if (!elements.empty()) try_shell({elements.begin(), half}, {half, elements.end()}, input);
}
