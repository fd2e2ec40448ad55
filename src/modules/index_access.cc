// SPDX-License-Identifier: MIT
#include "modules/index_access.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "core/directory.h"
#include "core/file_calls.h"
#include "core/font_policy.h"
#include "core/gw_reg_exp.h"
#include "core/rights.h"
#include "platform/host_paths.h"
#include "store/font_action.h"

namespace gw {

namespace {

/// Bitmap fonts have the names that their makers wrote, whatever is in them.
bool is_one_line(std::string_view font_name) {
    return std::none_of(font_name.begin(), font_name.end(),
                        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
}

bool can_be_read_back(const std::string& file_name, const std::string& line) {
    return file_name.find_first_of(" \n") == std::string::npos && line.find('\n') == line.size() - 1 &&
           line.size() < static_cast<std::size_t>(GW_FONTDIR_FILE::LINE_BUFFER);
}

/// Whether the file's directory lets this user remove it; a success for a missing file.
Outcome can_be_removed(const GW_FILE_SPEC& spec) {
    const std::string path(spec.get_path());
    const std::string dir = path.substr(0, path.rfind('/') + 1);  // for "afm/NAME" this is the subdirectory
    struct stat file = {};
    struct stat home = {};
    if (::lstat(path.c_str(), &file) != 0 || ::stat(dir.c_str(), &home) != 0) return done();
    const uid_t user = ::geteuid();
    if ((home.st_mode & S_ISVTX) != 0 && !is_superuser(user) && user != file.st_uid && user != home.st_uid)
        return Failure::of_system(path, EPERM);
    if (::faccessat(AT_FDCWD, dir.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return Failure::of_system(path, errno);
    return done();
}

/// What stands in the place of a font's first file may be no file at all.
Outcome is_no_directory(const GW_FILE_SPEC& spec) {
    struct stat info = {};
    const bool is_directory = ::lstat(spec.get_path(), &info) == 0 && S_ISDIR(info.st_mode);
    return is_directory ? Outcome(Failure::of_system(spec.get_path(), EISDIR)) : done();
}

/// Whether this user may change the index, if it lists the file.
Outcome can_be_struck_out(const GW_FILE_SPEC& spec) {
    GW_FONTDIR_FILE index(spec.get_dir(), FILE_TYPE_REGULAR);
    if (::faccessat(AT_FDCWD, index.get_path(), W_OK, AT_EACCESS) == 0) return done();
    const int error = errno;
    if (index.get_font_name(spec.get_name())) return Failure::of_system(index.get_path(), error);
    return done();
}

bool is_latin1(std::string_view font_name) {
    return font_name.ends_with("-iso8859-1");
}

/// How the index lists the file with options, as it does the fonts of a collection behind the first one.
std::vector<std::string> fields_with_options(const std::string& file_name, const GWFont& font) {
    std::set<std::string> fields;
    for (const IndexName& name : font.get_index_names()) {
        if (!name.options.empty()) fields.insert(name.options + file_name);
        if (name.face != 0) fields.insert(index_field(file_name, name.face));
    }
    return {fields.begin(), fields.end()};
}

/// Removes the lines of the font's file from the index: all of them or one. Returns their number.
Result<int> strike_out(DirectoryChange& change, const std::string& file_name, const GWFont& font) {
    // Kept: deleting an outline removes one line of several.
    const bool all = !font.is_bitmap() && font_policy().lists_an_outline_once();
    const int most = all ? std::numeric_limits<int>::max() : 1;
    int struck = change.strike_out(file_name, most);
    if (all) {
        for (const std::string& field : fields_with_options(file_name, font))
            struck += change.strike_out(field, most);
    }
    if (struck > 0) return struck;
    // Readers take a line that is too long for two, and may find the file's name in the second.
    if (change.font_names(file_name).empty()) return 0;
    return Failure{change.dir().path_of(FONT_INDEX_NAME), Reason::NOT_IN_THE_INDEX};
}

/// Removes a file that an index names in a subdirectory. A name that leads out of the directory, by ".." or
/// by a link, is refused.
Outcome remove_below(const std::string& dir, const std::string& name) {
    Result<Directory> home = Directory::open(dir);
    std::string_view rest = name;
    for (std::size_t slash = rest.find('/'); home && slash != std::string_view::npos;
         slash = rest.find('/')) {
        const std::string part(rest.substr(0, slash));
        rest.remove_prefix(slash + 1);
        struct stat info = {};
        if (part.empty() || part == "..") return Failure::of_system(dir + name, EPERM);
        if (!home->look_at(part, info))
            return errno == ENOENT ? done() : Failure::of_system(dir + name, errno);
        if (S_ISLNK(info.st_mode)) return Failure{dir + name, Reason::NOT_OURS};
        home = home->below(part);
    }
    if (!home) return home.failure();
    if (rest.empty() || file_calls().unlink(home->fd(), std::string(rest).c_str(), 0) == 0 || errno == ENOENT)
        return done();
    return Failure::of_system(dir + name, errno);
}

/// Lets the file go with the change.
void take_out(DirectoryChange& change, const GW_FILE_SPEC& spec, bool is_first) {
    if (change.take_out(spec.get_name(), !is_first)) return;
    const std::string dir(spec.get_dir());
    const std::string name(spec.get_name());
    change.afterwards(dir + name,
                      [dir, name] { tell_unless_done(remove_below(dir, name).with(Sequel::FILE_REMAINS)); });
}

std::string line_text(GWFont& font, const std::string& file_name) {
    return file_name + ' ' + font.get_xlfd_name() + '\n';
}

}  // namespace

Result<std::string> index_line(GWFont& font, const std::string& file_name) {
    std::string line = line_text(font, file_name);
    if (can_be_read_back(file_name, line)) return line;
    return Failure{file_name, Reason::NAME_UNFIT_FOR_INDEX};
}

Result<IndexLines> index_lines(GWFont& font, const std::string& file_name) {
    IndexLines found;
    for (const IndexName& name : font.get_all_names()) {
        std::string line = index_field(file_name, name.face) + ' ' + name.xlfd + '\n';
        if (is_one_line(name.xlfd) && can_be_read_back(file_name, line)) {
            found.lines.push_back(std::move(line));
        } else {
            ++found.left_out;
        }
    }
    if (found.lines.empty()) return Failure{file_name, Reason::NAME_UNFIT_FOR_INDEX};
    return found;
}

Outcome can_be_indexed(GWFont& font) {
    const GW_FILE_SPEC* first = first_file(font);
    if (first == nullptr) return Failure{font.get_hrn_name(), Reason::NO_FILE};
    if (font.get_obstacle()) return *font.get_obstacle();
    const Result<IndexLines> lines = index_lines(font, font.name_in_copy(*first));
    return lines ? done() : Outcome(lines.failure());
}

bool is_file_of_another(const char* file_name, GWFont& font, const DirectoryChange& change) {
    const std::vector<std::string> listed = change.font_names(file_name);
    const std::vector<IndexName> own = font.get_all_names();
    return !listed.empty() && std::none_of(listed.begin(), listed.end(), [&](const std::string& name) {
        return std::any_of(own.begin(), own.end(), [&](const IndexName& mine) {
            return ::strcasecmp(name.c_str(), mine.xlfd.c_str()) == 0;
        });
    });
}

Outcome enter_in_index(GWFont& font, GW_FPE& fpe, const std::string& file_name) {
    const Result<IndexLines> found = index_lines(font, file_name);
    if (!found) return found.failure();
    for (const std::string& line : found->lines) {
        if (Outcome entered = fpe.get_fontdir_file().enter(line.c_str()); !entered) return entered;
    }
    return done();
}

const GW_FILE_SPEC* first_file(const GWFont& font) {
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    return files != nullptr && !files->is_empty() ? *files->begin() : nullptr;
}

Outcome remove_files_and_entry(const GWFont& font, const std::function<void()>& afterwards) {
    if (font.get_font_file_list() == nullptr) return done();
    const GW_FSPEC_LIST& files = *font.get_font_file_list();
    if (Outcome allowed = files.is_empty() ? done() : is_no_directory(**files.begin()); !allowed)
        return allowed;
    for (const GW_FILE_SPEC* spec : files) {
        if (Outcome allowed = can_be_removed(*spec); !allowed) return allowed;
        if (Outcome allowed = can_be_struck_out(*spec); !allowed) return allowed;
    }
    return as_one_change([&] {
        bool is_struck = false;
        for (const GW_FILE_SPEC* spec : files) {
            Outcome removed = in_change(spec->get_dir(), [&](DirectoryChange& change) {
                if (!is_struck) {
                    const Result<int> struck = strike_out(change, spec->get_name(), font);
                    if (!struck) return Outcome(struck.failure());
                    is_struck = *struck > 0;
                }
                take_out(change, *spec, spec == *files.begin());
                if (afterwards) change.afterwards("", afterwards);
                return done();
            });
            if (!removed) return removed;
        }
        return done();
    });
}

std::vector<std::string_view> indexed_names(const GW_FONTDIR_FILE::Contents& index,
                                            std::initializer_list<const char*> patterns) {
    std::vector<std::string_view> names;
    std::string name;
    for (const char* pattern : patterns) {
        GW_REG_EXP end(pattern);
        for (const IndexEntryView& entry : index.entries) {
            name = entry.file_name;
            // A file's name ends at a NUL.
            if (end.string_match(name.c_str()) != 0)
                names.push_back(entry.file_name.substr(0, std::strlen(name.c_str())));
        }
    }
    return names;
}

void append_specs(GW_FSPEC_LIST& out, const std::vector<std::string_view>& names, GW_FPE& fpe) {
    for (const std::string_view name : names)
        out.append(new GW_FILE_SPEC(std::string(name).c_str(), fpe.get_element(), FILE_TYPE_UNDETERMINED,
                                    EXT_UNKNOWN));
}

void list_indexed_files(GW_FSPEC_LIST& out, GW_FPE& fpe, std::initializer_list<const char*> patterns) {
    const auto index = fpe.get_fontdir_file().contents();
    append_specs(out, indexed_names(*index, patterns), fpe);
}

std::vector<ListedFile> listed_files(GW_FPE& fpe, const std::function<bool(std::string_view)>& takes) {
    const auto index = fpe.get_fontdir_file().contents();
    std::vector<ListedFile> files;
    std::unordered_map<std::string_view, std::size_t> places;
    places.reserve(index->entries.size());
    for (const IndexEntryView& entry : index->entries) {
        const IndexedFile file = indexed_file(entry.file_name);
        if (!takes(file.name)) continue;
        const auto [place, is_new] = places.try_emplace(file.name, files.size());
        if (is_new) files.push_back({std::string(file.name), {}});
        files[place->second].names.push_back(
            {file.face, std::string(entry.font_name), std::string(file.options)});
    }
    return files;
}

FontNames::FontNames(const GW_FONTDIR_FILE::Contents& index) {
    names_.reserve(index.entries.size());
    places_.reserve(index.entries.size());
    for (const IndexEntryView& entry : index.entries) {
        const auto [place, is_first] = places_.try_emplace(entry.file_name, names_.size());
        if (is_first) names_.push_back(entry);
        std::string_view& known = names_[place->second].font_name;
        const bool fits_better =
            font_policy().lists_an_outline_once() && is_latin1(entry.font_name) && !is_latin1(known);
        if (!is_first && fits_better) known = entry.font_name;
    }
}

std::optional<std::string_view> FontNames::of(std::string_view file) {
    if (next_ >= names_.size() || names_[next_].file_name != file) {
        const auto place = places_.find(file);
        if (place == places_.end()) return std::nullopt;
        next_ = place->second;
    }
    return names_[next_++].font_name;
}

void append_font_names(GW_STRING_LIST& out, const GW_FSPEC_LIST& files, GW_FPE& fpe) {
    const auto index = fpe.get_fontdir_file().contents();
    FontNames names(*index);
    for (const GW_FILE_SPEC* spec : files) {
        if (const auto name = names.of(spec->get_name()))
            out.append(new GW_STRING(std::string(*name).c_str()));
    }
}

}  // namespace gw
