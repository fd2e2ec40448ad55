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

bool is_absence(const Failure& failure) {
    return failure.reason == Reason::SYSTEM && (failure.error == ENOENT || failure.error == ENOTDIR);
}

/// What the leading directory says, or why it cannot be asked.
Result<bool> has_final(const journal::With& with) {
    const Result<Directory> leader = Directory::open(with.path);
    const Result<Directory> own =
        leader ? leader->below(OwnDirectory::NAME) : Result<Directory>(leader.failure());
    if (!own) return is_absence(own.failure()) ? Result<bool>(false) : Result<bool>(own.failure());
    struct stat info = {};
    if (!own->look_at(final_name(with.token), info))
        return errno == ENOENT ? Result<bool>(false) : Result<bool>(Failure::of_system(own->path(), errno));
    return is_trusted(own->info(), leader->info()) && is_trusted(info, leader->info());
}

/// Whether the other directory has nothing left that asks for this token.
bool is_done_with(const std::string& token, const std::string& path) {
    const Result<Directory> other = Directory::open(path);
    const Result<Directory> own =
        other ? other->below(OwnDirectory::NAME) : Result<Directory>(other.failure());
    if (!own) return is_absence(own.failure());
    const Result<std::string> text = own->read(OwnDirectory::JOURNAL);
    if (!text) return is_absence(text.failure());
    return text->find("\nwith " + token + ' ') == std::string::npos;
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
    if (answer || records_of<journal::Put>(records).empty()) return answer ? *answer : false;
    return Failure{fonts.path(), Reason::UNFINISHED};
}

std::vector<std::string> final_names(const Directory& own) {
    std::vector<std::string> names = own.names();
    std::erase_if(names, [](const std::string& name) { return !name.starts_with(FINAL); });
    return names;
}

void finish_joint_changes(const OwnDirectory& own) {
    for (const std::string& name : final_names(own.dir())) {
        const Result<std::string> text = own.dir().read(name);
        const auto records = text ? journal::parse(*text, own.dir().path_of(name))
                                  : Result<std::vector<journal::Record>>(text.failure());
        if (!records) continue;
        bool is_needed = false;
        for (const journal::And& other : records_of<journal::And>(*records)) {
            (void)settle(other.path);
            is_needed = is_needed || !is_done_with(name.substr(std::string_view(FINAL).size()), other.path);
        }
        if (!is_needed) (void)file_calls().unlink(own.dir().fd(), name.c_str(), 0);
    }
}

}  // namespace gw
