// SPDX-License-Identifier: MIT
#include "diagnosis/index_cure.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <set>
#include <utility>

#include "core/font_policy.h"
#include "core/text.h"
#include "diagnosis/server_update.h"
#include "diagnosis/undo.h"
#include "fontfiles/index_text.h"
#include "fontfiles/scalable_index.h"
#include "fontfiles/server_index.h"
#include "modules/tool_names.h"
#include "store/directory_change.h"

namespace gw::diagnosis {

namespace {

constexpr int MOST_ATTEMPTS = 5;
constexpr std::size_t LONGEST_LINE = 1024;  // that the server's own buffers take
constexpr std::size_t MOST_SAID = 10;       // files that are left out

/// Whether there is a file that a server would open. It does not follow a link in the place of a bitmap font.
bool server_opens(const Directory& dir, const std::string& name) {
    // What begins with a slash is in the directory all the same.
    const std::string below = "./" + name;
    struct stat info = {};
    const bool is_bitmap = renderer_of(name) == FontRenderer::BITMAP;
    return ::fstatat(dir.fd(), below.c_str(), &info, is_bitmap ? AT_SYMLINK_NOFOLLOW : 0) == 0 &&
           S_ISREG(info.st_mode) && info.st_size > 0;
}

/// Collects the lines of an index.
class Lines {
  public:
    explicit Lines(const Directory& dir) : dir_(dir) {}

    /// Takes over the lines of an index that are sound and about files that are there.
    void take_over(std::string_view text) {
        const std::vector<std::string_view> lines = lines_of(text);
        const std::size_t first = begins_with_an_entry(text) ? 0 : 1;
        for (std::size_t i = first; i < lines.size(); ++i) {
            if (is_sound(lines[i])) add(lines[i]);
        }
    }
    void add(std::string_view line) {
        std::string file;
        std::string font;
        split_index_line(line, file, font);
        if (!known_.insert(std::string(line)).second) return;
        files_.emplace(indexed_file(file).name);
        fonts_.insert(lower_case(font));
        text_.append(line).append("\n");
        ++count_;
    }
    [[nodiscard]] bool has_file(const std::string& name) const { return files_.contains(name); }
    [[nodiscard]] bool has_font(std::string_view name) const { return fonts_.contains(lower_case(name)); }
    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] std::string text() const { return std::to_string(count_) + '\n' + text_; }

  private:
    [[nodiscard]] bool is_sound(std::string_view line) const {
        std::string file;
        std::string font;
        split_index_line(line, file, font);
        const bool is_printable = std::none_of(line.begin(), line.end(), [](char c) {
            return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
        });
        if (file.empty() || font.find_first_not_of(' ') == std::string::npos || !is_printable) return false;
        if (line.size() >= LONGEST_LINE) return false;
        return server_opens(dir_, std::string(indexed_file(file).name));
    }

    const Directory& dir_;
    std::string text_;
    int count_ = 0;
    std::set<std::string> known_;
    std::set<std::string, std::less<>> files_;
    std::set<std::string> fonts_;
};

/// The files that the lines do not have, in the order of their names.
std::vector<std::string> unlisted(const Directory& dir, const Lines& lines) {
    std::vector<std::string> names = dir.names();
    std::erase_if(names, [&](const std::string& name) {
        return name.starts_with('.') || lines.has_file(name) || !server_opens(dir, name);
    });
    std::sort(names.begin(), names.end());
    return names;
}

bool fits_index(const std::string& file) {
    return !file.starts_with(':') &&
           std::none_of(file.begin(), file.end(), [](char c) { return (c >= 0 && c <= ' ') || c == '\x7F'; });
}

/// Enters the names of a file; false when it has some and none fits.
bool enter(Lines& lines, const std::string& file, const std::vector<IndexName>& names) {
    bool is_in = names.empty();
    for (const IndexName& name : names) {
        const std::string line = index_field(file, name.face) + ' ' + name.xlfd;
        const bool fits = fits_index(file) && line.size() + 1 < INDEX_LINE_BUFFER;
        is_in = is_in || fits;
        if (fits && !lines.has_font(name.xlfd)) lines.add(line);
    }
    return is_in;
}

struct Made {
    DirectoryChange::Indexes before;
    DirectoryChange::Indexes after;
    MadeIndex index;
};

/// Makes the indexes anew, in one change. Other programs may write them meanwhile.
Result<Made> make_indexes(const std::string& directory, const Progress& progress) {
    for (int attempt = 1;; ++attempt) {
        const auto change = DirectoryChange::begin(directory);
        if (!change) return change.failure();
        Result<DirectoryChange::Indexes> before = (*change)->indexes();
        if (!before) return before.failure();
        const Directory& dir = (*change)->dir();
        Result<MadeIndex> index = made_index(dir, (*change)->index(), progress);
        if (!index) return index.failure();
        // Where the program keeps no "fonts.scale", a change leaves it alone.
        auto scalable = font_policy().keeps_scalable_index()
                            ? made_scalable_index(dir, before->fonts_scale, index->text)
                            : before->fonts_scale;
        Made made{*before, {index->text, std::move(scalable)}, *index};
        (*change)->replace_indexes(made.after);
        const Outcome committed = (*change)->commit();
        if (committed) return made;
        if (committed.failure().error != EAGAIN || attempt == MOST_ATTEMPTS) return committed.failure();
    }
}

/// Puts the old indexes back, unless somebody has written them since.
Outcome put_back(const std::string& directory, const DirectoryChange::Indexes& before,
                 const DirectoryChange::Indexes& after) {
    const auto change = DirectoryChange::begin(directory);
    if (!change) return change.failure();
    const Result<DirectoryChange::Indexes> now = (*change)->indexes();
    if (!now) return now.failure();
    if (*now != after) return Failure{directory, Reason::CHANGED_SINCE};
    (*change)->replace_indexes(before);
    return (*change)->commit();
}

}  // namespace

Result<MadeIndex> made_index(const Directory& dir, std::string_view old, const Progress& progress) {
    Lines lines(dir);
    lines.take_over(old);
    const std::vector<std::string> files = unlisted(dir, lines);
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const std::string& file : files) paths.push_back(dir.path_of(file));
    bool goes_on = true;
    const auto names = tool_names(paths, [&](std::size_t done) {
        goes_on = goes_on && (!progress || progress(done, paths.size()));
        return goes_on;
    });
    if (!names) return names.failure();
    if (!goes_on) return Failure::of_system(dir.path(), ECANCELED);
    MadeIndex made;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!enter(lines, files[i], (*names)[i])) made.left_out.push_back(files[i]);
    }
    made.text = lines.text();
    made.lines = lines.count();
    return made;
}

std::optional<std::string> made_scalable_index(const Directory& dir, const std::optional<std::string>& old,
                                               std::string_view index) {
    Lines lines(dir);
    if (old) lines.take_over(*old);
    for (const std::string_view line : lines_of(index)) {
        std::string file;
        std::string font;
        split_index_line(line, file, font);
        if (!font.empty() && has_outlines(file)) lines.add(line);
    }
    if (!old && lines.count() == 0) return std::nullopt;
    return lines.text();
}

Result<Deed> make_index(const Cure& cure, ServerView& server, const Surroundings& surroundings,
                        const Progress& progress) {
    const std::string directory = with_trailing_slash(cure.element);
    const Result<Made> made = make_indexes(directory, progress);
    if (!made) return made.failure();
    Deed deed{{Said::DONE_MADE_INDEX, {cure.element, std::to_string(made->index.lines)}}, {}, {}};
    for (const std::string& file : made->index.left_out) {
        if (deed.remarks.size() < MOST_SAID) deed.remarks.push_back({Said::LEFT_OUT_OF_INDEX, {file}});
    }
    const auto added = update(server, directory, surroundings.configured, deed.remarks);
    deed.undo = once(cure.element,
                     [directory, before = made->before, after = made->after, added, &server]() -> Outcome {
                         Outcome back = put_back(directory, before, after);
                         if (back) look_again(server, added);
                         return back;
                     });
    return deed;
}

}  // namespace gw::diagnosis
