// SPDX-License-Identifier: MIT
#include "store/joint_change.h"

#include <dirent.h>
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <random>
#include <set>
#include <utility>

#include "core/file_calls.h"
#include "store/directory_change.h"

namespace gw {

namespace {

constexpr const char* FINAL = "final-";

template <class Kind>
std::vector<Kind> records_of(const std::vector<journal::Record>& records) {
    std::vector<Kind> found;
    for (const journal::Record& record : records) {
        if (const Kind* that = std::get_if<Kind>(&record)) found.push_back(*that);
    }
    return found;
}

/// What the leading directory says, or why it cannot be asked. A place where something can be mounted says
/// nothing.
Result<bool> has_final(const journal::With& with) {
    const Result<Directory> leader = Directory::open(with.path);
    const Result<Directory> own =
        leader ? leader->below(OwnDirectory::NAME) : Result<Directory>(leader.failure());
    if (!own) return own.failure();
    struct stat info = {};
    if (!own->look_at(final_name(with.token), info))
        return errno == ENOENT ? Result<bool>(false) : Result<bool>(Failure::of_system(own->path(), errno));
    return is_trusted(own->info(), leader->info()) && is_trusted(info, leader->info());
}

/// Whether the other directory is there and has nothing left that asks for this token.
bool is_done_with(const std::string& token, const std::string& path) {
    const Result<Directory> other = Directory::open(path);
    const Result<Directory> own =
        other ? other->below(OwnDirectory::NAME) : Result<Directory>(other.failure());
    if (!own) return false;
    struct stat info = {};
    if (own->look_at(OwnDirectory::JOURNAL, info) && info.st_size > journal::MOST_BYTES) return false;
    const Result<std::string> text = own->read(OwnDirectory::JOURNAL);
    if (!text) return text.failure().is_absence();
    return text->find("\nwith " + token + ' ') == std::string::npos;
}

/// The other directories of a joint change. None when that cannot be read, or is more than what is left to be
/// read in one go.
std::optional<std::set<std::string>> directories_in(const Directory& own, const std::string& name,
                                                    off_t& bytes_left) {
    struct stat info = {};
    if (!own.look_at(name, info) || !S_ISREG(info.st_mode) || info.st_size > bytes_left) return std::nullopt;
    bytes_left -= info.st_size;
    const Result<std::string> text = own.read(name);
    const auto records = text ? journal::parse(*text, own.path_of(name))
                              : Result<std::vector<journal::Record>>(text.failure());
    if (!records) return std::nullopt;
    std::set<std::string> paths;
    for (const journal::And& other : records_of<journal::And>(*records)) paths.insert(other.path);
    return paths;
}

}  // namespace

std::string new_joint_token() {
    constexpr const char* DIGITS = "0123456789abcdef";
    constexpr int LENGTH = 24;
    std::random_device random;
    std::string token;
    for (int i = 0; i < LENGTH; ++i) token += DIGITS[random() % 16];
    return token;
}

std::string final_name(const std::string& token) {
    return FINAL + token;
}

std::optional<std::string> joint_path(const Directory& dir) {
    std::error_code unknown;
    const std::string path =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(dir.fd()), unknown).string();
    return !unknown && journal::can_be_path(path) ? std::optional(path) : std::nullopt;
}

Result<bool> is_final(const Directory& fonts, const std::vector<journal::Record>& records) {
    const std::vector<journal::With> with = records_of<journal::With>(records);
    if (with.empty()) return false;
    Result<bool> answer = has_final(with.front());
    // What has brought nothing in brings back what it has taken out, and that is somewhere in any case.
    const bool brings_in =
        !records_of<journal::Put>(records).empty() || !records_of<journal::Back>(records).empty();
    if (answer || !brings_in) return answer ? *answer : false;
    if (!answer.failure().is_absence()) return Failure{fonts.path(), Reason::UNFINISHED};
    return Failure{.subject = fonts.path(), .reason = Reason::WAITS_FOR, .detail = with.front().path};
}

std::vector<std::string> final_names(const Directory& own) {
    std::vector<std::string> names = own.names();
    std::erase_if(names, [](const std::string& name) { return !name.starts_with(FINAL); });
    return names;
}

void finish_joint_changes(const OwnDirectory& own) {
    // Directories that lead each other would be gone through in every order.
    static bool is_finishing = false;
    if (std::exchange(is_finishing, true)) return;
    off_t bytes_left = journal::MOST_BYTES;
    std::size_t directories_left = MOST_JOINED;
    for (const std::string& name : final_names(own.dir())) {
        const std::optional<std::set<std::string>> others = directories_in(own.dir(), name, bytes_left);
        if (!others || others->size() > directories_left) continue;
        directories_left -= others->size();
        bool is_needed = false;
        for (const std::string& other : *others) {
            (void)settle(other);
            is_needed = is_needed || !is_done_with(name.substr(std::string_view(FINAL).size()), other);
        }
        if (!is_needed) (void)file_calls().unlink(own.dir().fd(), name.c_str(), 0);
    }
    is_finishing = false;
}

}  // namespace gw
