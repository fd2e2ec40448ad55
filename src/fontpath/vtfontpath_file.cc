// SPDX-License-Identifier: MIT
#include "fontpath/vtfontpath_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string_view>

#include "core/file_calls.h"
#include "core/replace_file.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/font_path_files.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

// Kept: lines of a font path file are run by the shell. So they may contain variables ("$HOME/fonts").
// The ":" is for a command in the last line: its failure is not one of reading the file.
constexpr const char* EXPAND_LINES = "while read input\ndo\neval echo $input\n:\ndone < %s > %s";
constexpr mode_t USER_FILE_MODE = 0644;
constexpr mode_t PERMISSION_BITS = 0777;
constexpr std::string_view BLANKS = " \t";

// The first blank line ends the append section. Kept: later groups of a font path file come first.
void take_sections(std::string_view text, VtFontPath& elements) {
    bool in_append_section = true;
    std::size_t position = 0;
    for (const std::string_view line : lines_of(text)) {
        const std::size_t start = line.find_first_not_of(BLANKS);
        if (start == std::string_view::npos) {
            in_append_section = false;
            position = 0;
        } else if (in_append_section) {
            elements.append.emplace_back(line.substr(start));
        } else {
            const auto place = elements.prepend.begin() + static_cast<std::ptrdiff_t>(position++);
            elements.prepend.emplace(place, line.substr(start));
        }
    }
}

/// What the shell makes of the lines, also of only some of them; `outcome` tells whether it was all.
std::string expanded(const std::string& path, const std::string& lines, Outcome& outcome) {
    const UnnamedScratchFile input(lines);
    const UnnamedScratchFile output;
    if (input.path().empty() || output.path().empty()) {
        outcome = Failure::of_system(path, ENOMEM);
        return "";
    }
    outcome = run_command(EXPAND_LINES, {input.path(), output.path()}, MOMENTS);
    // The command itself says nothing to the user of the file.
    if (!outcome)
        outcome =
            Failure{path, outcome.failure().reason, outcome.failure().error, {}, outcome.failure().detail};
    const Result<std::string> text = output.read();
    if (!text && outcome) outcome = text.failure();
    return text ? *text : "";
}

/// The lines that mean the same without a shell. As in the shell, a last line without a newline does not
/// count.
std::string without_shell_lines(const std::string& path, std::string_view text, Outcome& outcome) {
    std::string plain;
    text = text.substr(0, text.rfind('\n') + 1);
    for (const std::string_view line : lines_of(text)) {
        const std::string_view words = line.substr(std::min(line.find_first_not_of(BLANKS), line.size()));
        if (words.empty() ||
            (vtfontpath_line(words) == words && words.find_first_of("$~") == std::string_view::npos)) {
            plain.append(words).append("\n");
        } else {
            outcome = Failure{path, Reason::NOT_EXPANDED};
        }
    }
    return plain;
}

/// Whether only the superuser can change what has this name.
bool is_superusers(const std::filesystem::path& path) {
    struct stat info = {};
    if (::lstat(path.c_str(), &info) != 0 || !is_superuser(info.st_uid)) return false;
    return S_ISLNK(info.st_mode) || (info.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool is_superusers_with_all_above(const std::filesystem::path& path) {
    for (std::filesystem::path level = path;; level = level.parent_path()) {
        if (!is_superusers(level)) return false;
        if (level == level.parent_path()) return true;
    }
}

Outcome back_up(const std::string& path) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) return done();
    const Result<std::string> old = read_file(path);
    if (!old) return old.failure();
    const mode_t mode = info.st_mode & PERMISSION_BITS;
    const std::string backup = path + ".bak";
    // A file with other names is not written through: it may be anybody's.
    if (::lstat(backup.c_str(), &info) == 0 && (!S_ISREG(info.st_mode) || info.st_nlink != 1))
        (void)file_calls().unlink(AT_FDCWD, backup.c_str(), 0);
    return replace_file(backup, *old, mode);
}

}  // namespace

VtFontPath read_vtfontpath(const std::string& path) {
    VtFontPath elements;
    const Result<std::string> lines = read_file(path);
    if (!lines) {
        const int error = lines.failure().error;
        if (error != ENOENT && error != ENOTDIR) elements.outcome = lines.failure();
        return elements;
    }
    const bool may_expand = !runs_as_superuser() || is_in_superusers_hands(path);
    take_sections(may_expand ? expanded(path, *lines, elements.outcome)
                             : without_shell_lines(path, *lines, elements.outcome),
                  elements);
    return elements;
}

Outcome write_vtfontpath(const std::string& path, const std::string& text) {
    // Kept: the backup of a font path file stays.
    if (Outcome kept = back_up(path); !kept) return kept;
    std::error_code missing;
    const std::string file = std::filesystem::canonical(path, missing).string();
    return replace_file(missing ? path : file, text, USER_FILE_MODE);
}

bool is_in_superusers_hands(const std::string& path) {
    std::error_code missing;
    const std::filesystem::path file = std::filesystem::canonical(path, missing);
    if (missing) return false;
    return is_superusers_with_all_above(file) &&
           is_superusers_with_all_above(std::filesystem::absolute(path));
}

}  // namespace gw
