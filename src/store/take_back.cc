// SPDX-License-Identifier: MIT
#include "store/take_back.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>

#include "core/file_calls.h"
#include "fontfiles/index_text.h"
#include "platform/host_paths.h"
#include "store/index_file.h"
#include "store/joint_change.h"
#include "store/trash_bin.h"

namespace gw {

namespace {

const std::string INDEX(FONT_INDEX_NAME);

Outcome fails_unless(bool fine, const std::string& path) {
    return fine ? done() : Outcome(Failure::of_system(path, errno));
}

/// Whether somebody was writing `made` over `old` when this was read. A longer file grows first, by zeros;
/// the end of a shorter one is overwritten with newlines first, and is cut in the end.
bool is_between(std::string_view now, std::string_view old, std::string_view made) {
    if (now.size() != old.size() && now.size() != std::max(old.size(), made.size()) &&
        now.size() != made.size())
        return false;
    const auto at = [](std::string_view text, std::size_t i) { return i < text.size() ? text[i] : '\0'; };
    for (std::size_t i = 0; i < now.size(); ++i) {
        const bool is_covered = now[i] == '\n' && i >= std::min(old.size(), made.size());
        if (now[i] != at(old, i) && now[i] != at(made, i) && !is_covered) return false;
    }
    return true;
}

/// Whether a file can have the text with that many of each line.
bool can_have_occurrences(std::string_view text, const LineNumbers& wanted) {
    constexpr std::size_t ROOM_FOR_COUNT = 16;
    std::size_t size = text.size() + ROOM_FOR_COUNT;
    for (const auto& [line, number] : occurrences(text, wanted)) {
        const int missing = wanted.find(line)->second - number;
        if (missing > 0) size += static_cast<std::size_t>(missing) * line.size();
    }
    return size <= static_cast<std::size_t>(Directory::FILE_LIMIT);
}

class TakingBack {
  public:
    TakingBack(const Directory& fonts, const OwnDirectory& own) : fonts_(fonts), own_(own) {}

    Outcome operator()(const journal::Put& put) const {
        const Result<PlaceBelow> place = PlaceBelow::of(fonts_, put.name);
        struct stat info = {};
        if (!place || !place->dir().look_at(place->name(), info) || !put.stamp.fits(info)) return done();
        return fails_unless(file_calls().unlink(place->dir().fd(), place->name().c_str(), 0) == 0,
                            fonts_.path_of(put.name));
    }

    Outcome operator()(const journal::Out& out) const {
        const std::string aside = std::to_string(out.number);
        struct stat info = {};
        if (!own_.set_aside().look_at(aside, info)) {
            return errno == ENOENT ? done() : Outcome(Failure::of_system(fonts_.path_of(out.name), errno));
        }
        Result<PlaceBelow> place = PlaceBelow::of(fonts_, out.name);
        if (!place && place.failure().error == ENOENT) {
            const std::string parent = out.name.substr(0, out.name.find('/'));
            (void)file_calls().make_dir(fonts_.fd(), parent.c_str(), 0777);
            place = PlaceBelow::of(fonts_, out.name);
        }
        if (!place) return place.failure();
        if (place->dir().has(place->name())) return done();
        return fails_unless(file_calls().rename(own_.set_aside().fd(), aside.c_str(), place->dir().fd(),
                                                place->name().c_str()) == 0,
                            fonts_.path_of(out.name));
    }

    // An entry that somebody has removed takes nothing back. The file stays, and has no line.
    Outcome operator()(const journal::Back& back) const {
        const Result<PlaceBelow> place = PlaceBelow::of(fonts_, back.name);
        struct stat info = {};
        if (!place || !place->dir().look_at(place->name(), info) || !back.stamp.fits(info)) return done();
        const Result<Directory> entry = trash_entry_of(fonts_, own_.dir(), back.entry);
        if (!entry) return entry.failure().is_absence() ? done() : Outcome(entry.failure());
        const std::string number = std::to_string(back.number);
        if (entry->has(number)) return done();
        const int error = place->rename_to(*entry, number);
        return error == 0 ? done() : Outcome(Failure::of_system(fonts_.path_of(back.name), error));
    }

    Outcome operator()(const journal::MadeDir& made) const {
        const bool gone = file_calls().unlink(fonts_.fd(), made.name.c_str(), AT_REMOVEDIR) == 0;
        return fails_unless(
            gone || errno == ENOENT || errno == ENOTEMPTY || errno == EEXIST || errno == ENOTDIR,
            fonts_.path_of(made.name));
    }

    Outcome operator()(const journal::Line& line) {
        lines_[line.text] = line.number;
        return done();
    }

    Outcome operator()(const journal::Index& index) {
        index_ = index;
        is_written_ = true;
        return done();
    }

    Outcome operator()(const journal::Overwrite&) {
        is_overwritten_ = true;
        return done();
    }

    Outcome operator()(const journal::Register& lines) const {
        constexpr const char* LINES = OwnDirectory::LINES;
        struct stat info = {};
        const bool has_now = own_.dir().look_at(LINES, info);
        if (has_now && !lines.stamp.fits(info)) return done();
        bool is_back = true;
        if (own_.set_aside().has(LINES)) {
            is_back = file_calls().rename(own_.set_aside().fd(), LINES, own_.dir().fd(), LINES) == 0;
        } else if (has_now && !lines.was) {
            is_back = file_calls().unlink(own_.dir().fd(), LINES, 0) == 0;
        }
        return fails_unless(is_back, own_.dir().path_of(LINES));
    }

    Outcome operator()(const journal::With&) const { return done(); }
    Outcome operator()(const journal::And&) const { return done(); }

    Outcome index() const {
        if (is_overwritten_) return overwritten_index();
        if (!is_written_) return done();
        struct stat now = {};
        struct stat old = {};
        const bool has_now = fonts_.look_at(INDEX, now);
        const bool has_old = own_.set_aside().look_at(INDEX, old);
        if (has_now && has_old && now.st_ino == old.st_ino) return done();  // it was not replaced yet
        const bool is_ours = has_now && index_.stamp.fits(now);
        if (has_old && (!has_now || is_ours)) return bring_back_index();
        if (!index_.was && is_ours)
            return fails_unless(file_calls().unlink(fonts_.fd(), INDEX.c_str(), 0) == 0,
                                fonts_.path_of(INDEX));
        return has_now ? lines_in(now) : done();
    }

  private:
    // Between two links to the same file `rename` does nothing, but these are two files.
    [[nodiscard]] Outcome bring_back_index() const {
        return fails_unless(
            file_calls().rename(own_.set_aside().fd(), INDEX.c_str(), fonts_.fd(), INDEX.c_str()) == 0,
            fonts_.path_of(INDEX));
    }

    /// What was written in place is overwritten again, unless somebody has changed it since.
    [[nodiscard]] Outcome overwritten_index() const {
        struct stat info = {};
        if (!fonts_.look_at(INDEX, info)) {
            if (errno != ENOENT) return Failure::of_system(fonts_.path_of(INDEX), errno);
            return own_.set_aside().has(INDEX) ? bring_back_index() : done();
        }
        struct stat content = {};
        const Result<std::string> now = read_index(fonts_, content);
        if (!now) return now.failure();
        const Result<std::string> old = own_.read(own_.set_aside(), INDEX);
        const Result<std::string> made = own_.read(own_.made(), INDEX);
        for (const Result<std::string>* text : {&old, &made}) {
            if (!*text && text->failure().reason == Reason::NOT_OURS) return text->failure();
        }
        if (!old || !made || !is_between(*now, *old, *made)) return lines_in(info);
        return *now == *old ? done() : overwrite_index(fonts_, info, *old);
    }

    /// The index is another program's, or was overwritten: only our lines are set right.
    [[nodiscard]] Outcome lines_in(const struct stat& info) const {
        struct stat content = {};
        const Result<std::string> bytes = read_index(fonts_, content);
        if (!bytes) return bytes.failure();
        if (!can_have_occurrences(*bytes, lines_)) return Failure::of_system(fonts_.path_of(INDEX), EFBIG);
        const std::string text = with_occurrences(*bytes, lines_);
        return text == *bytes ? done() : overwrite_index(fonts_, info, text);
    }

    const Directory& fonts_;
    const OwnDirectory& own_;
    LineNumbers lines_;
    journal::Index index_{};
    bool is_written_ = false;
    bool is_overwritten_ = false;
};

}  // namespace

Result<PlaceBelow> PlaceBelow::of(const Directory& fonts, const std::string& name) {
    PlaceBelow place(fonts, name);
    const std::size_t slash = name.find('/');
    if (slash == std::string::npos) return place;
    Result<Directory> metrics = fonts.below(name.substr(0, slash));
    if (!metrics) return metrics.failure();
    place.metrics_ = std::move(*metrics);
    place.name_ = name.substr(slash + 1);
    return place;
}

int PlaceBelow::rename_to(const Directory& to, const std::string& new_name) const {
    struct stat info = {};
    if (dir().look_at(name_, info) && S_ISDIR(info.st_mode)) return EISDIR;
    return file_calls().rename(dir().fd(), name_.c_str(), to.fd(), new_name.c_str()) == 0 ? 0 : errno;
}

// A failure does not keep the rest from being taken back.
Outcome take_back(const Directory& fonts, const OwnDirectory& own,
                  const std::vector<journal::Record>& records) {
    TakingBack step(fonts, own);
    Outcome first_failure;
    const auto heed = [&](const Outcome& outcome) {
        if (!outcome && first_failure) first_failure = outcome;
    };
    for (auto record = records.rbegin(); record != records.rend(); ++record) heed(std::visit(step, *record));
    heed(step.index());
    (void)file_calls().sync(fonts.fd());
    return first_failure;
}

namespace {

using FileNumbers = std::set<std::pair<dev_t, ino_t>>;

/// The files that have a name in our directory and another one.
FileNumbers files_with_two_names(const Directory& made) {
    FileNumbers files;
    for (const std::string& name : made.names()) {
        struct stat info = {};
        if (made.look_at(name, info) && S_ISREG(info.st_mode) && info.st_nlink > 1)
            files.emplace(info.st_dev, info.st_ino);
    }
    return files;
}

Outcome remove_names_of(const FileNumbers& files, const Directory& dir) {
    Outcome first_failure;
    for (const std::string& name : dir.names()) {
        struct stat info = {};
        if (!dir.look_at(name, info) || !files.contains({info.st_dev, info.st_ino})) continue;
        const Outcome gone =
            fails_unless(file_calls().unlink(dir.fd(), name.c_str(), 0) == 0, dir.path_of(name));
        if (!gone && first_failure) first_failure = gone;
    }
    return first_failure;
}

/// A file that came with many others has both names until it is on the disk with its record. Where the power
/// failed before, the journal does not say what has come.
Outcome take_back_arrivals(const Directory& fonts, const OwnDirectory& own) {
    const FileNumbers files = files_with_two_names(own.made());
    if (files.empty()) return done();
    Outcome gone = remove_names_of(files, fonts);
    const Result<Directory> metrics = fonts.below(std::string(journal::METRICS));
    if (gone && metrics) gone = remove_names_of(files, *metrics);
    (void)file_calls().sync(fonts.fd());
    return gone;
}

}  // namespace

Outcome recover(const Directory& fonts, const OwnDirectory& own) {
    struct stat info = {};
    if (!own.dir().look_at(OwnDirectory::JOURNAL, info)) {
        if (errno != ENOENT) return Failure::of_system(own.dir().path_of(OwnDirectory::JOURNAL), errno);
        TrashBin::keep_what_was_set_aside(fonts, own);
        own.clear();
        return done();
    }
    // Killed before its first record: nothing was begun.
    if (info.st_size == 0 && S_ISREG(info.st_mode)) return own.remove_journal();
    if (info.st_size > journal::MOST_BYTES)
        return Failure{own.dir().path_of(OwnDirectory::JOURNAL), Reason::NOT_A_JOURNAL};
    const Result<std::string> text = own.read(OwnDirectory::JOURNAL);
    if (!text) return text.failure();
    const auto records = journal::parse(*text, own.dir().path_of(OwnDirectory::JOURNAL));
    if (!records) return records.failure();
    const Result<bool> is_done = is_final(fonts, *records);
    if (!is_done) return is_done.failure();
    if (!*is_done) {
        if (Outcome taken = take_back(fonts, own, *records); !taken) return taken;
        if (Outcome taken = take_back_arrivals(fonts, own); !taken) return taken;
        if (Outcome forgotten = own.forget_trash(); !forgotten) return forgotten;
    }
    if (Outcome gone = own.remove_journal(); !gone) return gone;
    TrashBin::keep_what_was_set_aside(fonts, own);
    own.clear();
    return done();
}

}  // namespace gw
