// SPDX-License-Identifier: MIT
#include "modules/index_access.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "core/font_policy.h"
#include "core/gw_reg_exp.h"
#include "core/replace_file.h"

namespace gw {

namespace {

bool can_be_read_back(const std::string& file_name, const std::string& line) {
    return file_name.find_first_of(" \n") == std::string::npos && line.find('\n') == line.size() - 1 &&
           line.size() < static_cast<std::size_t>(GW_FONTDIR_FILE::LINE_BUFFER);
}

/// Whether the file's directory lets this user remove it; a missing file is no obstacle. Leaves the reason in
/// `errno`.
bool can_be_removed(const GW_FILE_SPEC& spec) {
    const std::string path(spec.get_path());
    const std::string dir = path.substr(0, path.rfind('/') + 1);  // that of "afm/NAME" is the subdirectory
    struct stat file {};
    struct stat home {};
    if (::lstat(path.c_str(), &file) != 0 || ::stat(dir.c_str(), &home) != 0) return true;
    const uid_t user = ::geteuid();
    if ((home.st_mode & S_ISVTX) != 0 && user != 0 && user != file.st_uid && user != home.st_uid) {
        errno = EPERM;
        return false;
    }
    return ::faccessat(AT_FDCWD, dir.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

/// Says why a font that was to be deleted stays; always false.
bool report_staying(const GW_FILE_SPEC& spec, int reason) {
    std::fprintf(stderr, "glyphward: %s: %s; the font stays\n", spec.get_path(), std::strerror(reason));
    return false;
}

bool is_latin1(std::string_view font_name) {
    return font_name.ends_with("-iso8859-1");
}

/// Strikes the file out of the index, as many of its lines as stand for the font; 0 when nothing was done.
int strike_out(GW_FONTDIR_FILE& index, const char* file_name, const GWFont& font) {
    const bool all = font.get_type() == GWFont::TYPE1_FONT && font_policy().lists_an_outline_once();
    return all ? index.delete_font_file_lines(file_name) : index.delete_font_file_line(file_name);
}

std::string line_text(GWFont& font, const std::string& file_name) {
    return file_name + ' ' + font.get_xlfd_name() + '\n';
}

}  // namespace

std::optional<std::string> index_line(GWFont& font, const std::string& file_name) {
    std::string line = line_text(font, file_name);
    if (can_be_read_back(file_name, line)) return line;
    report_left_out(file_name, "this name does not fit into a font index");
    return std::nullopt;
}

void report_left_out(const std::string& path, const char* reason) {
    std::fprintf(stderr, "glyphward: %s: %s; the font is left out\n", path.c_str(), reason);
}

bool can_be_indexed(GWFont& font) {
    const GW_FILE_SPEC* first = first_file(font);
    return first != nullptr && can_be_read_back(first->get_name(), line_text(font, first->get_name()));
}

bool is_file_of_another(const char* file_name, GWFont& font, GW_FPE& fpe) {
    std::vector<GW_FONTDIR_FILE::Entry> entries;
    fpe.get_fontdir_file().get_entries(entries);
    bool listed = false;
    for (const GW_FONTDIR_FILE::Entry& entry : entries) {
        if (entry.file_name != file_name) continue;
        if (::strcasecmp(entry.font_name.c_str(), font.get_xlfd_name()) == 0) return false;
        listed = true;
    }
    return listed;
}

bool enter_in_index(GWFont& font, GW_FPE& fpe, const std::string& file_name) {
    const std::optional<std::string> line = index_line(font, file_name);
    return line && fpe.get_fontdir_file().append_line(line->c_str()) != 0;
}

const GW_FILE_SPEC* first_file(const GWFont& font) {
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    return files != nullptr && !files->is_empty() ? *files->begin() : nullptr;
}

bool remove_files_and_entry(const GWFont& font) {
    if (font.get_font_file_list() == nullptr) return true;
    const GW_FSPEC_LIST& files = *font.get_font_file_list();
    for (const GW_FILE_SPEC* spec : files) {
        if (!can_be_removed(*spec)) return report_staying(*spec, errno);
        GW_FONTDIR_FILE index(spec->get_dir(), FILE_TYPE_REGULAR);
        if (::faccessat(AT_FDCWD, index.get_path(), W_OK, AT_EACCESS) == 0) continue;
        const int reason = errno;
        if (index.get_font_name(spec->get_name())) return report_staying(index, reason);
    }
    bool struck_out = false;
    for (const GW_FILE_SPEC* spec : files) {
        GW_FONTDIR_FILE index(spec->get_dir(), FILE_TYPE_REGULAR);
        const std::optional<std::string> before = struck_out ? std::nullopt : read_file(index.get_path());
        if (!struck_out) {
            struck_out = strike_out(index, spec->get_name(), font) != 0;
            const int reason = errno;
            if (!struck_out && index.get_font_name(spec->get_name())) return report_staying(index, reason);
        }
        if (::unlink(spec->get_path()) == 0 || errno == ENOENT || errno == ENOTDIR) continue;
        report_staying(*spec, errno);
        // Without its first file a font is gone, whatever remains of it.
        if (spec != *files.begin()) continue;
        if (struck_out && before && !replace_file(index.get_path(), *before)) report_staying(index, errno);
        return false;
    }
    return true;
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
        const auto [known, is_first] = names.try_emplace(std::move(entry.file_name), entry.font_name);
        const bool fits_better =
            font_policy().lists_an_outline_once() && is_latin1(entry.font_name) && !is_latin1(known->second);
        if (!is_first && fits_better) known->second = std::move(entry.font_name);
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
