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

SeenDirectory::Entry* SeenDirectory::find(std::string_view name) {
    for (const std::size_t place : recent_) {
        if (place < names_.size() && names_[place] == name) return &entries_[place];
    }
    const std::optional<std::size_t> place = names_.find(name);
    if (!place) return nullptr;
    recent_.at(next_recent_++ % recent_.size()) = *place;
    return &entries_[*place];
}

SeenDirectory::Entry& SeenDirectory::at(std::string_view name) {
    if (Entry* entry = find(name); entry != nullptr) return *entry;
    const std::size_t place = recent_.at(next_recent_++ % recent_.size()) = names_.add(name);
    entries_.resize(names_.size());
    return entries_[place];
}

const std::optional<SeenFile>& SeenDirectory::look(const std::string& name) {
    Entry& entry = at(name);
    if (!std::exchange(entry.is_seen, true)) entry.seen = ask_about(name);
    return entry.seen;
}

const std::optional<SeenFile>* SeenDirectory::known(const std::string& name) {
    const Entry* entry = find(name);
    return entry != nullptr && entry->is_seen ? &entry->seen : nullptr;
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
    if (!extensions_.find(extension_of(name))) return false;
    const Entry* found = find(name);
    return found != nullptr && found->is_listed && (found->is_file || ask_for(name));
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
    while (const dirent* entry = ::readdir(entries)) {
        const std::string_view name = entry->d_name;
        Entry& listed = at(name);
        listed.is_listed = true;
        listed.is_file = entry->d_type == DT_REG || entry->d_type == DT_DIR;
        extensions_.add(extension_of(name));
    }
    const bool is_complete = errno == 0;
    ::closedir(entries);
    // Where files cannot be looked at, nobody knows that one is missing.
    names_answer_ = is_complete && path_.ends_with('/') &&
                    ::faccessat(fd_.get(), ".", X_OK, AT_EACCESS) == 0 && knows_case();
}

/// Whether the directory can have two names that differ in case alone.
bool SeenDirectory::knows_case() const {
    for (std::size_t place = 0; place < names_.size(); ++place) {
        const std::string name(names_[place]);
        const std::string other = with_other_case(name);
        if (!entries_[place].is_listed || !entries_[place].is_file || !is_plain(name) || other == name)
            continue;
        const std::optional<std::size_t> known = names_.find(other);
        return (known && entries_[*known].is_listed) || !ask_for(other);
    }
    return false;
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
            Entry& entry = at(name);
            entry.is_seen = true;
            entry.seen = info;
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
