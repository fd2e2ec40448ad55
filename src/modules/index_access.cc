// SPDX-License-Identifier: MIT
#include "modules/index_access.h"

#include <cstdio>
#include <vector>

#include "core/gw_reg_exp.h"

namespace gw {

namespace {

bool can_be_read_back(const std::string& file_name, const std::string& line) {
    return file_name.find_first_of(" \n") == std::string::npos && line.find('\n') == line.size() - 1 &&
           line.size() < static_cast<std::size_t>(GW_FONTDIR_FILE::LINE_BUFFER);
}

std::string line_text(GWFont& font, const std::string& file_name) {
    return file_name + ' ' + font.get_xlfd_name() + '\n';
}

}  // namespace

std::optional<std::string> index_line(GWFont& font, const std::string& file_name) {
    std::string line = line_text(font, file_name);
    if (can_be_read_back(file_name, line)) return line;
    std::fprintf(stderr, "glyphward: %s: this name does not fit into a font index; the font is left out\n",
                 file_name.c_str());
    return std::nullopt;
}

bool can_be_indexed(GWFont& font) {
    const GW_FILE_SPEC* first = first_file(font);
    return first != nullptr && can_be_read_back(first->get_name(), line_text(font, first->get_name()));
}

bool enter_in_index(GWFont& font, GW_FPE& fpe, const std::string& file_name) {
    const std::optional<std::string> line = index_line(font, file_name);
    return line && fpe.get_fontdir_file().append_line(line->c_str()) != 0;
}

const GW_FILE_SPEC* first_file(const GWFont& font) {
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    return files != nullptr && !files->is_empty() ? *files->begin() : nullptr;
}

std::string remove_files_and_entry(const GWFont& font) {
    std::string last_dir;
    if (font.get_font_file_list() == nullptr) return last_dir;
    bool struck_out = false;
    for (const GW_FILE_SPEC* spec : *font.get_font_file_list()) {
        last_dir = spec->get_dir();
        if (!struck_out) {
            struck_out =
                GW_FPE(spec->get_dir()).get_fontdir_file().delete_font_file_line(spec->get_name()) != 0;
        }
        spec->remove();
    }
    return last_dir;
}

void list_indexed_files(GW_FSPEC_LIST& out, GW_FPE& fpe, std::initializer_list<const char*> patterns) {
    GW_STRING_LIST names;
    const ElementsOwner names_owner(names);
    fpe.get_fontdir_file().get_inst_font_file_names(names);

    GW_STRING_LIST matching;
    const ElementsOwner matching_owner(matching);
    for (const char* pattern : patterns) {
        GW_REG_EXP suffix(pattern);
        names.match(matching, &suffix);
    }
    matching.make_file_spec_list(out, fpe.get_element());
}

std::unordered_map<std::string, std::string> font_names_by_file(GW_FPE& fpe) {
    std::vector<GW_FONTDIR_FILE::Entry> entries;
    fpe.get_fontdir_file().get_entries(entries);
    std::unordered_map<std::string, std::string> names;
    for (GW_FONTDIR_FILE::Entry& entry : entries) {
        names.try_emplace(std::move(entry.file_name), std::move(entry.font_name));
    }
    return names;
}

void append_font_names(GW_STRING_LIST& out, const GW_FSPEC_LIST& files, GW_FPE& fpe) {
    const auto names = font_names_by_file(fpe);
    for (const GW_FILE_SPEC* spec : files) {
        if (const auto found = names.find(spec->get_name()); found != names.end()) {
            out.append(new GW_STRING(found->second.c_str()));
        }
    }
}

}  // namespace gw
