// SPDX-License-Identifier: MIT
#include "diagnosis/alias_edit.h"

#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/host_paths.h"
#include "store/directory_change.h"

namespace gw::diagnosis {

namespace {

constexpr mode_t PERMISSIONS = 07777;
constexpr int MOST_ATTEMPTS = 5;
const std::string ALIASES(ALIAS_FILE_NAME);

bool is_same(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// The file as it is, and its text. Nothing, with an empty text, where it is missing.
struct Looked {
    std::optional<struct stat> info;
    std::string text;
};

Result<Looked> look(const Directory& dir) {
    struct stat info = {};
    if (!dir.look_at(ALIASES, info)) {
        if (errno == ENOENT) return Looked{};
        return Failure::of_system(dir.path_of(ALIASES), errno);
    }
    if (!S_ISREG(info.st_mode)) return Failure{dir.path_of(ALIASES), Reason::NOT_OURS};
    Result<std::string> text = dir.read(ALIASES);
    if (!text) return text.failure();
    return Looked{info, std::move(*text)};
}

Outcome put_text(DirectoryChange& change, const std::optional<struct stat>& old, const std::string& text) {
    auto file = change.stage(ALIASES);
    if (!file) return file.failure();
    if (old) {
        file->set_mode(old->st_mode & PERMISSIONS);
        file->be_later_than(*old);
    }
    file->write(text);
    if (Outcome finished = file->finish(); !finished) return finished;
    return change.put(*file);
}

}  // namespace

Outcome edit_aliases(const std::string& directory, bool makes_index, const AliasEdit& edited) {
    const auto change = DirectoryChange::begin(directory);
    if (!change) return change.failure();
    if (makes_index) {
        if (Outcome made = (*change)->make_index(); !made) return made;
    }
    for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
        const Result<Looked> before = look((*change)->dir());
        if (!before) return before.failure();
        const Result<std::string> text = edited(before->text);
        if (!text) return text.failure();
        if (*text == before->text) return makes_index ? (*change)->commit() : done();
        struct stat now = {};
        const bool is_there = (*change)->dir().look_at(ALIASES, now);
        if (is_there != before->info.has_value() || (is_there && !is_same(now, *before->info))) continue;
        if (text->empty()) {
            (*change)->take_out(ALIASES, false);
        } else if (Outcome put = put_text(**change, before->info, *text); !put) {
            return put;
        }
        return (*change)->commit();
    }
    return Failure::of_system(directory + ALIASES, EAGAIN);
}

Result<std::string> alias_text_in(const Directory& dir) {
    Result<Looked> looked = look(dir);
    if (!looked) return looked.failure();
    return std::move(looked->text);
}

}  // namespace gw::diagnosis
