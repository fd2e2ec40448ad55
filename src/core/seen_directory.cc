// SPDX-License-Identifier: MIT
//
// A name that the directory does not list may exist all the same: where case does not count, or where a file
// system takes two spellings of a letter for one. Such names are asked of the disk.
#include "core/seen_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

namespace gw {

namespace {

/// So many files are asked for before all names are read.
constexpr int FEW_QUESTIONS = 8;

constexpr unsigned long WRITING_IS_DOUBTFUL =
    STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND | STATX_ATTR_VERITY | STATX_ATTR_ENCRYPTED;

/// With an empty `name`, of the open file itself.
std::optional<SeenFile> look_at(int fd, const char* name, std::uint64_t* size = nullptr) {
    struct statx info = {};
    if (::statx(fd, name, *name == '\0' ? AT_EMPTY_PATH : 0, STATX_BASIC_STATS, &info) != 0)
        return std::nullopt;
    if (size != nullptr) *size = info.stx_size;
    return SeenFile{info.stx_mode, info.stx_uid, makedev(info.stx_dev_major, info.stx_dev_minor),
                    static_cast<blkcnt_t>(info.stx_blocks),
                    (info.stx_attributes & WRITING_IS_DOUBTFUL) != 0 || !S_ISREG(info.stx_mode)};
}

bool is_plain(std::string_view name) {
    return !name.empty() && name.size() <= NAME_MAX && name != "." && name != ".." &&
           std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < '\x7f' && c != '/'; });
}

std::string_view extension_of(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot);
}

std::string with_other_case(std::string name) {
    for (char& c : name) {
        const auto letter = static_cast<unsigned char>(c);
        c = static_cast<char>(std::islower(letter) != 0 ? std::toupper(letter) : std::tolower(letter));
    }
    return name;
}

}  // namespace

std::optional<SeenFile> look_at_file(const std::string& path) {
    return path.empty() ? std::nullopt : look_at(AT_FDCWD, path.c_str());
}

SeenDirectory::SeenDirectory(std::string path)
    : path_(std::move(path)), fd_(::open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

/// The descriptor and the name by which the system finds the file.
int SeenDirectory::place_of(const std::string& name, std::string& place) const {
    const bool is_below = fd_.is_open() && path_.ends_with('/') && !name.empty() && !name.starts_with('/');
    place = is_below ? name : path_of(name);
    return is_below ? fd_.get() : AT_FDCWD;
}

std::optional<SeenFile> SeenDirectory::ask_about(const std::string& name) const {
    std::string place;
    const int fd = place_of(name, place);
    return place.empty() ? std::nullopt : look_at(fd, place.c_str());
}

const std::optional<SeenFile>& SeenDirectory::look(const std::string& name) {
    if (const auto entry = names_.find(name); entry != names_.end()) {
        if (!entry->second.is_seen) return entry->second.see(ask_about(name));
        return entry->second.seen;
    }
    const auto [known, is_new] = seen_.try_emplace(name);
    if (is_new) known->second = ask_about(name);
    return known->second;
}

const std::optional<SeenFile>* SeenDirectory::known(const std::string& name) const {
    if (const auto entry = names_.find(name); entry != names_.end())
        return entry->second.is_seen ? &entry->second.seen : nullptr;
    const auto found = seen_.find(name);
    return found != seen_.end() ? &found->second : nullptr;
}

void SeenDirectory::remember(const std::string& name, const SeenFile& file) {
    const auto entry = names_.find(name);
    if (entry == names_.end()) {
        seen_[name] = file;
    } else {
        entry->second.see(file);
    }
}

bool SeenDirectory::ask_for(const std::string& name) const {
    struct stat info = {};
    std::string place;
    const int fd = place_of(name, place);
    return ::fstatat(fd, place.c_str(), &info, 0) == 0 || errno != ENOENT;
}

bool SeenDirectory::has(const std::string& name) {
    if (!are_names_read_ && ++asked_ > FEW_QUESTIONS) read_names();
    if (!names_answer_ || !is_plain(name)) return ask_for(name);
    if (!extensions_.contains(extension_of(name))) return false;
    const auto found = names_.find(name);
    if (found == names_.end()) return false;
    return found->second.is_file || ask_for(name);
}

void SeenDirectory::read_names() {
    are_names_read_ = true;
    const int fd = fd_.is_open() ? ::openat(fd_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    DIR* entries = fd >= 0 ? ::fdopendir(fd) : nullptr;
    if (entries == nullptr) {
        if (fd >= 0) ::close(fd);
        return;
    }
    errno = 0;
    std::vector<std::pair<std::size_t, bool>> found;  // where each name begins
    while (const dirent* entry = ::readdir(entries)) {
        found.emplace_back(names_text_.size(), entry->d_type == DT_REG || entry->d_type == DT_DIR);
        (names_text_ += entry->d_name) += '\0';
    }
    const bool is_complete = errno == 0;
    ::closedir(entries);
    names_.reserve(found.size());
    for (const auto& [begin, is_file] : found) {
        const std::string_view name(names_text_.data() + begin);
        names_.emplace(name, Entry{is_file});
        extensions_.insert(extension_of(name));
    }
    for (const auto& [name, answer] : std::exchange(seen_, {})) {
        const auto entry = names_.find(name);
        if (entry == names_.end()) {
            seen_.emplace(name, answer);
        } else {
            entry->second.see(answer);
        }
    }
    // Where files cannot be looked at, nobody knows that one is missing.
    names_answer_ = is_complete && path_.ends_with('/') &&
                    ::faccessat(fd_.get(), ".", X_OK, AT_EACCESS) == 0 && knows_case();
}

/// Whether the directory can have two names that differ in case alone.
bool SeenDirectory::knows_case() const {
    const auto sample = std::find_if(names_.begin(), names_.end(), [](const auto& entry) {
        return entry.second.is_file && is_plain(entry.first) &&
               with_other_case(std::string(entry.first)) != entry.first;
    });
    if (sample == names_.end()) return false;
    const std::string other = with_other_case(std::string(sample->first));
    return names_.contains(other) || !ask_for(other);
}

Result<Descriptor> SeenDirectory::open_to_read(const std::string& name) {
    if (!std::exchange(is_home_opened_, true)) {
        if (Result<Directory> home = Directory::open(path_); home) home_ = std::move(*home);
    }
    if (home_ && path_.ends_with('/') && is_plain(name)) {
        Descriptor file(
            ::openat(home_->fd(), name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
        std::uint64_t size = 0;
        const std::optional<SeenFile> info = file.is_open() ? look_at(file.get(), "", &size) : std::nullopt;
        if (info && S_ISREG(info->mode) && size <= static_cast<std::uint64_t>(Directory::FILE_LIMIT)) {
            remember(name, *info);
            return file;
        }
    }
    // A link, or no file to be read: this follows it, or says why not.
    Result<ReadableFile> file = gw::open_to_read(path_of(name));
    if (!file) return file.failure();
    return std::move(file->fd);
}

SeenDirectory& SeenDirectory::below(const std::string& name) {
    std::unique_ptr<SeenDirectory>& directory = below_[name];
    if (!directory) directory = std::make_unique<SeenDirectory>(path_of(name) + '/');
    return *directory;
}

}  // namespace gw
