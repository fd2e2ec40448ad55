// SPDX-License-Identifier: MIT
#include "store/leftovers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/file_writer.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontfiles/index_text.h"
#include "store/directory_change.h"
#include "store/journal.h"

namespace gw {

namespace {

/// In the order in which they are looked at: a font that was being replaced is worth more.
enum class Kind { KEPT, OLD, TEMPORARY };
constexpr std::array<std::pair<Kind, std::string_view>, 3> SUFFIXES = {
    {{Kind::KEPT, ".gwkept"}, {Kind::OLD, ".gwold"}, {Kind::TEMPORARY, ".gwtmp"}}};
constexpr std::string_view FONT_SUFFIXES[] = {".pcf", ".pcf.gz", ".pcf.Z", ".pfa", ".pfb"};
constexpr std::string_view METRICS_SUFFIX = ".afm";
constexpr mode_t PERMISSIONS = 0777;
// What is more waits for the next time.
constexpr std::size_t MOST_IN_ONE_GO = 200;
constexpr off_t MOST_BYTES_IN_ONE_GO = 256L * 1024 * 1024;

LineOfFontFile& line_of_font_file() {
    static LineOfFontFile function = nullptr;
    return function;
}

bool is_font(std::string_view name) {
    return std::any_of(std::begin(FONT_SUFFIXES), std::end(FONT_SUFFIXES),
                       [&](std::string_view suffix) { return name.ends_with(suffix); });
}

/// A file that was left, and the name that it had, or was to have. Both may begin with "afm/".
struct Leftover {
    Kind kind;
    std::string name;
    std::string hidden;
    bool operator<(const Leftover& other) const {
        return std::tie(name, kind) < std::tie(other.name, other.kind);
    }
};

std::optional<Leftover> parsed(const std::string& hidden, const std::string& parent) {
    for (const auto& [kind, suffix] : SUFFIXES) {
        if (!hidden.starts_with('.') || !hidden.ends_with(suffix) || hidden.size() < suffix.size() + 2)
            continue;
        const std::string name = hidden.substr(1, hidden.size() - suffix.size() - 1);
        // Other small files are made under such names too; the next write takes those away.
        if (kind == Kind::TEMPORARY && !is_font(name) && !name.ends_with(METRICS_SUFFIX)) return std::nullopt;
        if (journal::can_name(name)) return Leftover{kind, parent + name, parent + hidden};
    }
    return std::nullopt;
}

/// Whether a run of ours, under the name of somebody who may do everything here, can have left it. A second
/// name it has only beside its first one.
bool can_be_left(const struct stat& info, const std::string& name, const Directory& dir,
                 const Directory& fonts) {
    const bool is_known =
        info.st_uid == fonts.info().st_uid || is_superuser(info.st_uid) || info.st_uid == ::geteuid();
    if (!S_ISREG(info.st_mode) || !is_known) return false;
    struct stat first = {};
    return info.st_nlink == 1 || (info.st_nlink == 2 && dir.look_at(name, first) &&
                                  first.st_ino == info.st_ino && first.st_dev == info.st_dev);
}

/// Appends what was left in one directory; `parent` is its place in the font directory.
void append_leftovers(std::vector<Leftover>& leftovers, const Directory& dir, const Directory& fonts,
                      const std::string& parent) {
    for (const std::string& name : dir.names()) {
        const std::optional<Leftover> leftover = parsed(name, parent);
        struct stat info = {};
        if (leftover && dir.look_at(name, info) &&
            can_be_left(info, leftover->name.substr(parent.size()), dir, fonts))
            leftovers.push_back(*leftover);
    }
}

std::vector<Leftover> leftovers_in(const Directory& fonts) {
    std::vector<Leftover> leftovers;
    append_leftovers(leftovers, fonts, fonts, "");
    const std::string metrics(journal::METRICS);
    struct stat info = {};
    if (fonts.look_at(metrics, info) && S_ISDIR(info.st_mode)) {
        if (const Result<Directory> dir = fonts.below(metrics); dir)
            append_leftovers(leftovers, *dir, fonts, metrics + '/');
    }
    std::sort(leftovers.begin(), leftovers.end());
    return leftovers;
}

bool is_listed(const DirectoryChange& change, const std::string& file_name) {
    return !change.font_names(file_name).empty();
}

/// The files that have each font name. The server takes small and capital letters for the same.
class Successors {
  public:
    explicit Successors(const DirectoryChange& change) : change_(change) {}

    /// Whether another file, which is there, has the font name of this line.
    bool has(const std::string& line) {
        know_index();
        std::string file_name;
        std::string font_name;
        split_index_line(line, file_name, font_name);
        const auto found = files_.find(lower_case(font_name));
        if (found == files_.end()) return false;
        return std::any_of(found->second.begin(), found->second.end(), [&](const std::string& file) {
            return file != file_name && change_.will_have(file);
        });
    }
    /// A file is there now, with all of its lines.
    void add(const std::string& file_name) {
        if (!knows_index_) return;
        for (const std::string& font : change_.font_names(file_name))
            files_[lower_case(font)].insert(file_name);
    }

  private:
    // Each file is looked at once, however many lines and leftovers there are.
    void know_index() {
        if (std::exchange(knows_index_, true)) return;
        for (const IndexEntry& entry : index_entries(change_.index())) {
            if (change_.will_have(entry.file_name))
                files_[lower_case(entry.font_name)].insert(entry.file_name);
        }
    }

    const DirectoryChange& change_;
    std::unordered_map<std::string, std::set<std::string>> files_;
    bool knows_index_ = false;
};

/// One directory's leftovers, step by step.
class Clearing {
  public:
    explicit Clearing(DirectoryChange& change) : change_(change), successors_(change) {}

    /// Whether no more can be brought back this time.
    [[nodiscard]] bool is_full() const { return is_full_; }

    Outcome clear(const Leftover& leftover) {
        struct stat info = {};
        const bool has_file = look_at(leftover.name, info);
        if (leftover.kind == Kind::TEMPORARY) return take_away(leftover);
        if (!has_file) return bring_back(leftover);
        return leftover.kind == Kind::KEPT && lost_its_line(leftover, info) ? bring_back_line(leftover)
                                                                            : take_away(leftover);
    }

    /// What was done. To be told when it is final.
    [[nodiscard]] const std::vector<Failure>& news() const { return news_; }

  private:
    [[nodiscard]] bool look_at(const std::string& name, struct stat& info) const {
        return ::fstatat(change_.dir().fd(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
    }

    Outcome take_away(const Leftover& leftover) {
        if (!change_.take_out(leftover.hidden, true))
            return Failure{change_.dir().path_of(leftover.hidden), Reason::NAME_UNFIT_FOR_INDEX};
        note(leftover, Reason::TAKEN_AWAY);
        return done();
    }

    /// The run was killed after it had taken the font out of the index, and before it took the file.
    [[nodiscard]] bool lost_its_line(const Leftover& leftover, const struct stat& file) const {
        struct stat kept = {};
        return is_font(leftover.name) && !is_listed(change_, leftover.name) &&
               look_at(leftover.hidden, kept) && kept.st_ino == file.st_ino && kept.st_dev == file.st_dev;
    }

    Outcome bring_back_line(const Leftover& leftover) {
        const std::optional<std::string> line = line_of(leftover);
        if (!line || successors_.has(*line)) return take_away(leftover);
        change_.enter(*line);
        successors_.add(leftover.name);
        change_.take_out(leftover.hidden, true);
        note(leftover, Reason::LISTED_AGAIN);
        return done();
    }

    Outcome bring_back(const Leftover& leftover) {
        const DirectoryChange::Mark before = change_.mark();
        if (Outcome copied = copy_back(leftover); !copied || is_full_) return copied;
        const bool wants_line = is_font(leftover.name) && !is_listed(change_, leftover.name);
        const std::optional<std::string> line = wants_line ? line_of(leftover) : std::nullopt;
        if (line && leftover.kind == Kind::KEPT && successors_.has(*line)) {
            change_.take_back_to(before);
            return take_away(leftover);
        }
        if (line) change_.enter(*line);
        successors_.add(leftover.name);
        change_.take_out(leftover.hidden, false);
        note(leftover, wants_line && !line ? Reason::BROUGHT_BACK_UNLISTED : Reason::BROUGHT_BACK);
        return done();
    }

    /// Makes the file from the one that was set aside, with its owner and permissions.
    Outcome copy_back(const Leftover& leftover) {
        struct stat info = {};
        const Result<std::string> bytes = read(leftover.hidden, info);
        if (!bytes) return bytes.failure();
        const auto size = static_cast<off_t>(bytes->size());
        is_full_ = size > bytes_left_;
        if (is_full_) return done();
        bytes_left_ -= size;
        Result<DirectoryChange::StagedFile> file = change_.stage(leftover.name);
        if (!file) return file.failure();
        file->set_owner({info.st_uid, info.st_gid});
        file->set_mode(info.st_mode & PERMISSIONS);
        file->write(*bytes);
        if (Outcome finished = file->finish(); !finished) return finished;
        return change_.put(*file);
    }

    Result<std::string> read(const std::string& name, struct stat& info) const {
        const std::string path = change_.dir().path_of(name);
        const Descriptor file(
            ::openat(change_.dir().fd(), name.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
        if (!file.is_open() || ::fstat(file.get(), &info) != 0) return Failure::of_system(path, errno);
        if (info.st_nlink != 1) return Failure{path, Reason::NOT_OURS};
        return read_open_file(file.get(), path);
    }

    [[nodiscard]] std::optional<std::string> line_of(const Leftover& leftover) const {
        const LineOfFontFile function = line_of_font_file();
        return function != nullptr ? function(change_.dir().path(), leftover.name) : std::nullopt;
    }

    void note(const Leftover& leftover, Reason reason) {
        news_.push_back(
            {.subject = change_.dir().path_of(leftover.hidden), .reason = reason, .detail = leftover.name});
    }

    DirectoryChange& change_;
    Successors successors_;
    std::vector<Failure> news_;
    off_t bytes_left_ = MOST_BYTES_IN_ONE_GO;
    bool is_full_ = false;
};

}  // namespace

bool has_leftovers(const Directory& fonts) {
    return !leftovers_in(fonts).empty();
}

bool clear_leftovers(DirectoryChange& change) {
    std::vector<Leftover> leftovers = leftovers_in(change.dir());
    if (leftovers.empty()) return false;
    leftovers.resize(std::min(leftovers.size(), MOST_IN_ONE_GO));
    Clearing clearing(change);
    for (const Leftover& leftover : leftovers) {
        const DirectoryChange::Mark before = change.mark();
        const Outcome cleared = clearing.clear(leftover);
        if (!cleared) change.take_back_to(before);
        tell_unless_done(cleared);
        if (clearing.is_full()) break;
    }
    // Nobody has asked for what goes here to go.
    const bool keeps = change.keeps_in_trash();
    change.keep_in_trash(false);
    if (tell_unless_done(change.commit())) {
        for (const Failure& news : clearing.news()) tell(news);
    }
    change.keep_in_trash(keeps);
    return true;
}

void know_lines_by(LineOfFontFile function) {
    line_of_font_file() = function;
}

}  // namespace gw
