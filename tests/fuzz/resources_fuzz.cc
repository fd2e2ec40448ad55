// SPDX-License-Identifier: MIT
//
// The PostScript resource file of a font directory. The first two lines of an input are a name and a path
// that are entered, the rest is the file.
#include <algorithm>

#include "fontfiles/gw_upr_file.h"
#include "fuzz.h"
#include "makepsres/resource_file.h"
#include "makepsres/resource_set.h"

namespace {

/// All entries of a file, in a set that writes them.
void try_writing_again(const gw::psres::ResourceFile& file, std::string_view text) {
    gw::psres::ResourceSet set;
    for (const gw::psres::Section& section : file.sections) {
        for (const gw::psres::Entry& entry : section.entries) {
            if (gw::psres::can_be_written(section.name) && gw::psres::can_be_written(entry.line))
                set.add_line(section.name, entry.name, entry.line);
        }
    }
    const std::string written = set.text("", file.exclusive);
    const auto again = gw::psres::parse_resource_file(written);
    GW_MUST_HOLD(again.has_value() && again->complete && again->exclusive == file.exclusive, written);
    for (const std::string& line : gw::fuzz::lines_of(written))
        GW_MUST_HOLD(line.size() <= gw::psres::LONGEST_LINE, written);
    for (const gw::psres::Section& section : again->sections) {
        for (const gw::psres::Entry& entry : section.entries)
            GW_MUST_HOLD(set.has(section.name, entry.name), text);
    }
}

/// A name and a path are read back as they were written.
void try_entry(const std::string& name, const std::string& path) {
    if (name.empty() || !gw::psres::can_be_written(name) || !gw::psres::can_be_written(path)) return;
    gw::psres::ResourceSet set;
    set.add_file(gw::psres::FONT_OUTLINE, name, '/' + path);
    const std::string written = set.text("", false);
    const auto file = gw::psres::parse_resource_file(written);
    GW_MUST_HOLD(file.has_value() && file->complete && file->sections.size() == 1, written);
    const gw::psres::Section& section = file->sections[0];
    GW_MUST_HOLD(section.name == gw::psres::FONT_OUTLINE && section.entries.size() == 1, written);
    GW_MUST_HOLD(section.entries[0].name == name, written);
    GW_MUST_HOLD(section.entries[0].file == '/' + path, written);
}

void try_sections(std::string_view text) {
    gw::fuzz::directory().write("glyphwd.upr", text);
    GW_UPR_FILE file("glyphwd.upr", gw::fuzz::directory().c_str(), gw::FILE_TYPE_REGULAR);
    GW_MUST_HOLD(file.open("r") == 1, text);
    GW_MUST_HOLD(file.put_res_data_line(GW_UPR_FILE::FONT_OUTLINE, "") == 1, text);
    file.close();
    for (const std::string& line : gw::fuzz::lines_of(text)) {
        const int section = file.get_line_res_type(line.c_str());
        GW_MUST_HOLD(section >= 0 && section <= GW_UPR_FILE::NO_SECTION, text);
    }
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view text = input;
    const std::string name(take_line(text));
    const std::string path(take_line(text));
    try_entry(name, path);
    try_sections(text);
    const auto file = psres::parse_resource_file(text);
    if (file) try_writing_again(*file, text);
}
