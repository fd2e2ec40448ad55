// SPDX-License-Identifier: MIT
#include "makepsres/make_index.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "core/new_file.h"
#include "makepsres/command_line.h"
#include "makepsres/font_name.h"
#include "makepsres/notices.h"
#include "makepsres/plain_file.h"
#include "makepsres/resource_file.h"
#include "makepsres/resource_set.h"
#include "makepsres/scan.h"

namespace gw::psres {

namespace {

constexpr std::size_t LARGEST_RESOURCE_FILE = 16UL << 20;
constexpr const char* LEFT_OUT = "; left out";

// Sections in which every entry names a file. In other sections an entry may or may not name one.
constexpr std::array<std::string_view, 8> SECTIONS_OF_FILES = {
    FONT_AFM, FONT_OUTLINE, "FontPrebuilt", "FontBDF", "Encoding", "Form", "Pattern", "ProcSet",
};
constexpr std::string_view FAMILIES = "FontFamily";
// Another indexer's private notes about the file as that indexer saw it.
constexpr std::string_view PRIVATE_NOTES = "mkpsresPrivate";

std::optional<std::string> font_name_in(const std::string& path, std::string_view head) {
    return is_metrics_name(path) ? metrics_font_name(head) : outline_font_name(head);
}

/// Whether the file is what an index says it is.
bool is_resource(const std::string& section, const std::string& name, const std::string& path) {
    const bool is_font =
        (section == FONT_OUTLINE && is_outline_name(path)) || (section == FONT_AFM && is_metrics_name(path));
    if (!is_font) return is_plain_file(path);
    return font_name_in(path, read_plain_file(path, SEARCHED_BYTES).bytes) == name;
}

bool is_same_file(const std::string& one, const std::string& other) {
    struct stat a = {};
    struct stat b = {};
    return ::stat(one.c_str(), &a) == 0 && ::stat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

class Index {
  public:
    Index(std::string output_path, Notices& where) : output(std::move(output_path)), notices(where) {}

    void add_fonts(const std::vector<std::string>& paths) {
        for (const std::string& path : paths) add_font(path);
    }

    /// Adds the entries of one directory's resource files; only those of the first file when that file says
    /// that it is exclusive.
    void add_resource_files(const std::vector<std::string>& paths) {
        for (const std::string& path : paths) {
            const std::optional<ResourceFile> file = read(path);
            if (!file) continue;
            add_entries(*file, path.substr(0, path.rfind('/') + 1));
            if (!file->exclusive || !path.ends_with("/PSres.upr")) continue;
            is_exclusive = is_exclusive || is_same_file(path, output);
            return;
        }
    }

    /// The bytes of the index; see ResourceSet::text.
    [[nodiscard]] std::string text(const std::string& directory) const {
        return resources.text(directory, is_exclusive);
    }

  private:
    void add_font(const std::string& path) {
        const FileBytes head = read_plain_file(path, SEARCHED_BYTES);
        if (!head.failure.empty()) {
            notices.skipped(path, head.failure + LEFT_OUT);
            return;
        }
        const std::optional<std::string> name = font_name_in(path, head.bytes);
        if (!name) {
            notices.skipped(path, std::string("no font name in it") + LEFT_OUT);
            return;
        }
        const std::string& there =
            resources.add_file(is_metrics_name(path) ? FONT_AFM : FONT_OUTLINE, *name, path);
        if (there != path) notices.skipped(path, *name + " is in " + there + LEFT_OUT);
    }

    std::optional<ResourceFile> read(const std::string& path) {
        const FileBytes content = read_plain_file(path, LARGEST_RESOURCE_FILE + 1);
        if (!content.failure.empty()) {
            notices.skipped(path, content.failure + LEFT_OUT);
            return std::nullopt;
        }
        std::optional<ResourceFile> file;
        if (content.bytes.size() <= LARGEST_RESOURCE_FILE) file = parse_resource_file(content.bytes);
        if (!file) {
            notices.skipped(path, std::string("this is no resource file") + LEFT_OUT);
        } else if (!file->complete) {
            notices.skipped(path, "this resource file breaks off; its end is left out");
        }
        return file;
    }

    void add_entries(const ResourceFile& file, const std::string& own_directory) {
        const std::string base = absolute_path(file.directory, own_directory);
        for (const Section& section : file.sections) {
            if (section.name == PRIVATE_NOTES || !can_be_written(section.name)) continue;
            for (const Entry& entry : section.entries) {
                if (!entry.name.empty() && can_be_written(entry.line))
                    add_entry(section.name, entry, entry.is_final ? own_directory : base);
            }
        }
    }

    void add_entry(const std::string& section, const Entry& entry, const std::string& base) {
        if (resources.has(section, entry.name)) return;
        const bool has_file = section != FAMILIES && entry.file && !entry.file->empty();
        const std::string path = has_file ? absolute_path(*entry.file, base) : std::string();
        if (std::find(SECTIONS_OF_FILES.begin(), SECTIONS_OF_FILES.end(), section) ==
            SECTIONS_OF_FILES.end()) {
            if (has_file && is_plain_file(path)) {
                resources.add_file(section, entry.name, path);
            } else {
                resources.add_line(section, entry.name, entry.line);
            }
        } else if (has_file && is_resource(section, entry.name, path)) {
            resources.add_file(section, entry.name, path);
        } else {
            notices.skipped(has_file ? path : base, section + ' ' + entry.name + " is not here" + LEFT_OUT);
        }
    }

    std::string output;
    Notices& notices;
    ResourceSet resources;
    bool is_exclusive = false;
};

/// Writes the file atomically; an old file stays when that fails.
bool write(const std::string& path, const std::string& bytes, Notices& notices) {
    struct stat info = {};
    if (::lstat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        notices.failed(path, "this is no plain file; nothing is written");
        return false;
    }
    NewFile file(path);
    file.write(bytes);
    if (!file.finish() || !file.put_in_place()) {
        notices.failed(path, file.outcome().failure().reason_text() + "; nothing is written");
        return false;
    }
    file.keep();
    return true;
}

/// Makes the paths absolute, without a slash at the end. One that cannot be made absolute stays as it is, and
/// listing it will fail.
std::vector<std::string> absolute_paths(const std::vector<std::string>& directories) {
    std::error_code error;
    const std::string current = std::filesystem::current_path(error).string();
    std::vector<std::string> paths;
    for (const std::string& directory : directories) {
        const bool can_be = directory.starts_with('/') || (!directory.empty() && !error);
        paths.push_back(can_be ? absolute_path(directory, current) : directory);
    }
    return paths;
}

int make_index(const CommandLine& line, std::ostream& err) {
    Notices notices(err, line.quiet);
    Index index(line.output, notices);
    const std::vector<std::string> directories = absolute_paths(line.directories);
    std::vector<std::vector<std::string>> resource_files;
    std::size_t listed = 0;
    for (const std::string& directory : directories) {
        const Depth depth = line.rescan ? Depth::WITH_EVERYTHING : Depth::FONT_DIRECTORY;
        FoundFiles found = scan(directory, depth, notices);
        if (found.was_read) ++listed;
        index.add_fonts(found.fonts);
        std::move(found.resource_files.begin(), found.resource_files.end(),
                  std::back_inserter(resource_files));
    }
    // Added last, so that the names in the font files themselves take precedence.
    for (const auto& paths : resource_files) index.add_resource_files(paths);
    // A mistyped directory must not empty an existing index.
    if (listed == 0) return FAILED;
    const bool is_written =
        write(line.output, index.text(directories.size() == 1 ? directories[0] : std::string()), notices);
    return is_written && listed == directories.size() ? DONE : FAILED;
}

}  // namespace

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    const CommandLine line = parse_command_line(arguments);
    switch (line.task) {
        case CommandLine::Task::HELP:
            out << usage();
            return DONE;
        case CommandLine::Task::VERSION:
            out << version();
            return DONE;
        case CommandLine::Task::COMPLAIN:
            err << "makepsres: " << one_line(line.complaint) << "; " << usage();
            return CALLED_WRONG;
        case CommandLine::Task::INDEX:
            break;
    }
    return make_index(line, err);
}

}  // namespace gw::psres
