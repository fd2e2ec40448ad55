// SPDX-License-Identifier: MIT
//
// The fontset file of a locale. The first line of an input is a base font for a new fontset, the rest is the
// file.
#include <algorithm>

#include "fontfiles/gw_fontset_file.h"
#include "fuzz.h"

namespace {

constexpr const char* NAME = "Vantor.fs";

struct Shown {
    std::string name;
    std::string bases;
    bool operator==(const Shown&) const = default;
};

std::vector<Shown> shown(const GW_FONTSET_FILE& file) {
    std::vector<Shown> all;
    for (const GWFontSet* fontset : file.get_fontsets()) {
        const char* bases = fontset->get_base_names();
        all.push_back({fontset->get_name(), bases != nullptr ? bases : ""});
    }
    return all;
}

std::vector<Shown> read_again() {
    return shown(GW_FONTSET_FILE(gw::fuzz::directory().c_str(), NAME, gw::FILE_TYPE_REGULAR));
}

void try_unchanged(std::string_view text) {
    GW_FONTSET_FILE file(gw::fuzz::directory().c_str(), NAME, gw::FILE_TYPE_REGULAR);
    GW_MUST_HOLD(file.sync() == 1, text);
    GW_MUST_HOLD(gw::fuzz::directory().read(NAME) == text, text);
}

/// A fontset that is appended is read back, and all others stay.
void try_appending(std::string_view text, const std::string& base) {
    GW_FONTSET_FILE file(gw::fuzz::directory().c_str(), NAME, gw::FILE_TYPE_REGULAR);
    std::vector<Shown> expected = shown(file);
    auto* fontset = new GWFontSet("-new-set");
    fontset->append_base_font(base.c_str());
    const std::string stored = fontset->get_base_names();
    file.append_fontset(fontset);
    GW_MUST_HOLD(file.sync() == 1, text);
    expected.push_back({"-new-set", stored});
    GW_MUST_HOLD(read_again() == expected, gw::fuzz::directory().read(NAME));
}

/// Whether every line is read whole, and no line that begins with "-" lacks a name: such a line ends a
/// deletion but not a definition.
bool is_regular(std::string_view text) {
    const std::vector<std::string> lines = gw::fuzz::lines_of(text);
    return std::all_of(lines.begin(), lines.end(), [](const std::string& line) {
        const bool is_named = gw::fuzz::before_nul(line).find(':') != std::string_view::npos;
        return line.size() < GW_FONTSET_FILE::LINE_BUFFER && (is_named || !line.starts_with('-'));
    });
}

/// Deleting a fontset deletes all of its name, and no other.
void try_deleting(std::string_view text) {
    GW_FONTSET_FILE file(gw::fuzz::directory().c_str(), NAME, gw::FILE_TYPE_REGULAR);
    std::vector<Shown> expected = shown(file);
    if (expected.empty()) return;
    const std::string name = expected.front().name;
    const GWFontSet wanted(name.c_str());
    while (file.delete_fontset(&wanted) != 0) {
    }
    GW_MUST_HOLD(file.get_fontset(name.c_str()) == nullptr, text);
    std::erase_if(expected, [&](const Shown& one) { return one.name == name; });
    GW_MUST_HOLD(shown(file) == expected, text);
    GW_MUST_HOLD(file.sync() == 1, text);
    GW_MUST_HOLD(read_again() == expected, gw::fuzz::directory().read(NAME));
}

/// A base font's name as the windows make one: of an XLFD name.
bool is_base_font(std::string_view text) {
    return text.starts_with('-') && text.size() < 300 &&
           text.find_first_of(std::string_view(",\\\n\r\0", 5)) == std::string_view::npos &&
           text.find("definition") == std::string_view::npos;
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view text = input;
    const std::string base(take_line(text));
    directory().write(NAME, text);
    try_unchanged(text);
    if (is_regular(text)) try_deleting(text);
    directory().write(NAME, text);
    if (is_base_font(base)) try_appending(text, base);
}
