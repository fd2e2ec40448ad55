// SPDX-License-Identifier: MIT
#include "store/trash_manifest.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <utility>

#include "fontfiles/index_text.h"
#include "store/joint_change.h"
#include "store/journal.h"
#include "store/numbers.h"

namespace gw::trash {

namespace {

constexpr std::size_t ENTRY_DIGITS = 12;
constexpr std::size_t MOST_DIGITS = 64;

bool is_token(std::string_view text) {
    return !text.empty() && text.size() <= MOST_DIGITS &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

/// Reads a manifest line by line.
class Reader {
  public:
    /// False for a line that no manifest has at this place.
    bool take(std::string_view line) {
        if (manifest_.is_whole) return false;
        const std::string_view kind = take_word(line);
        if (kind == "entry") return take_entry(line);
        if (kind == "action") return take_action(line);
        if (kind == "user") return take_user(line);
        if (kind == "font" && line.empty()) return begin_font();
        if (kind == "end" && line.empty()) return end();
        if (manifest_.fonts.empty()) return false;
        KeptFont& font = manifest_.fonts.back();
        if (kind == "file") return take_file(font, line);
        if (kind == "line") return take_line(font.lines, line);
        if (kind == "scale") return take_line(font.scalable_lines, line);
        if (kind == "came") return take_came(font, line);
        if (kind == "twin") return take_twin(font, line);
        return false;
    }

    /// What was read. The last font may have been cut off.
    std::optional<Manifest> result() {
        if (manifest_.entry.empty() || manifest_.action.empty() || !has_user_) return std::nullopt;
        if (!manifest_.is_whole && !manifest_.fonts.empty()) manifest_.fonts.pop_back();
        return std::move(manifest_);
    }

  private:
    bool take_entry(std::string_view name) {
        if (!manifest_.entry.empty() || !time_of_entry(name)) return false;
        manifest_.entry = name;
        return true;
    }
    bool take_action(std::string_view token) {
        if (!manifest_.action.empty() || !is_token(token)) return false;
        manifest_.action = token;
        return true;
    }
    bool take_user(std::string_view number) {
        const auto user = number_in<uid_t>(number);
        if (!user || std::exchange(has_user_, true)) return false;
        manifest_.user = *user;
        return true;
    }
    bool begin_font() {
        if (!last_font_is_sound()) return false;
        manifest_.fonts.emplace_back();
        return true;
    }
    bool end() {
        manifest_.is_whole = true;
        return last_font_is_sound();
    }
    /// Each font has something, and the files of its lines are one file.
    bool last_font_is_sound() {
        if (manifest_.fonts.empty()) return true;
        const KeptFont& font = manifest_.fonts.back();
        if (font.files.empty() && font.lines.empty()) return false;
        const std::string name = font.file_name();
        const bool is_one = std::all_of(font.lines.begin(), font.lines.end(),
                                        [&](const std::string& line) { return file_of_line(line) == name; });
        return is_one && font_names_.insert(name).second;
    }
    bool take_file(KeptFont& font, std::string_view rest) {
        const auto number = number_in<unsigned>(take_word(rest));
        const auto size = number_in<off_t>(take_word(rest));
        if (!number || !size || *size < 0 || !journal::can_name(rest)) return false;
        if (!numbers_.insert(*number).second || !names_.insert(std::string(rest)).second) return false;
        font.files.push_back({*number, *size, std::string(rest)});
        return true;
    }
    static bool take_line(std::vector<std::string>& lines, std::string_view text) {
        std::string line = std::string(text) + '\n';
        if (!can_be_kept(line)) return false;
        lines.push_back(std::move(line));
        return true;
    }
    static bool take_came(KeptFont& font, std::string_view rest) {
        const auto stamp = take_stamp(rest, true);
        if (!stamp || !journal::can_name(rest)) return false;
        font.came.push_back({*stamp, std::string(rest)});
        return true;
    }
    static bool take_twin(KeptFont& font, std::string_view name) {
        if (!journal::can_name(name)) return false;
        font.twins.emplace_back(name);
        return true;
    }

    Manifest manifest_;
    bool has_user_ = false;
    std::set<unsigned> numbers_;
    std::set<std::string> names_;
    std::set<std::string> font_names_;
};

void append_font(std::string& text, const KeptFont& font) {
    text += "font\n";
    for (const KeptFile& file : font.files)
        text +=
            "file " + std::to_string(file.number) + ' ' + std::to_string(file.size) + ' ' + file.name + '\n';
    for (const std::string& line : font.lines) text += "line " + line;
    for (const std::string& line : font.scalable_lines) text += "scale " + line;
    for (const CameFile& file : font.came) text += "came " + file.stamp.text() + ' ' + file.name + '\n';
    for (const std::string& name : font.twins) text += "twin " + name + '\n';
}

}  // namespace

std::string KeptFont::file_name() const {
    if (!lines.empty()) return file_of_line(lines.front());
    return files.empty() ? std::string() : files.front().name;
}

std::vector<std::string> KeptFont::font_names() const {
    std::vector<std::string> names;
    for (const std::string& line : lines) {
        std::string file;
        split_index_line(line, file, names.emplace_back());
    }
    return names;
}

std::string new_entry_name(std::time_t time) {
    constexpr unsigned long A_SECOND = 1'000'000'000;
    constexpr std::time_t MOST_SECONDS = 3;  // more nanoseconds than that have no eight digits
    constexpr int DIGITS_OF_NANOSECONDS = 8;
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    // The second may be over: the clock that tells the time of day is some milliseconds behind.
    const auto since =
        static_cast<unsigned long>(std::clamp<std::time_t>(now.tv_sec - time, 0, MOST_SECONDS));
    char nanoseconds[DIGITS_OF_NANOSECONDS + 1];
    (void)std::snprintf(nanoseconds, sizeof nanoseconds, "%0*lx", DIGITS_OF_NANOSECONDS,
                        since * A_SECOND + static_cast<unsigned long>(now.tv_nsec));
    return std::to_string(time) + '-' + nanoseconds + new_joint_token().substr(0, ENTRY_DIGITS);
}

std::optional<std::time_t> time_of_entry(std::string_view name) {
    const std::size_t dash = name.find('-');
    if (dash == std::string_view::npos || !is_token(name.substr(dash + 1))) return std::nullopt;
    const auto time = number_in<std::time_t>(name.substr(0, dash));
    // The number is written in one way only.
    if (!time || std::to_string(*time) != name.substr(0, dash)) return std::nullopt;
    return time;
}

std::string file_of_line(std::string_view line) {
    std::string field;
    std::string font;
    split_index_line(line, field, font);
    return std::string(indexed_file(field).name);
}

bool can_be_kept(std::string_view line) {
    if (!line.ends_with('\n') || line.find('\n') != line.size() - 1) return false;
    line.remove_suffix(1);
    const bool is_printable = std::none_of(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
    return is_printable && begins_with_an_entry(line) && journal::can_name(file_of_line(line));
}

std::string text_of(const Manifest& manifest) {
    std::string text(HEADING);
    text += "entry " + manifest.entry + "\naction " + manifest.action + "\nuser " +
            std::to_string(manifest.user) + '\n';
    for (const KeptFont& font : manifest.fonts) append_font(text, font);
    return text + "end\n";
}

std::optional<Manifest> parse(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(MOST_BYTES) || !text.starts_with(HEADING)) return std::nullopt;
    text.remove_prefix(HEADING.size());
    Reader reader;
    for (std::size_t newline = text.find('\n'); newline != std::string_view::npos;
         newline = text.find('\n')) {
        if (!reader.take(text.substr(0, newline))) return std::nullopt;
        text.remove_prefix(newline + 1);
    }
    // Behind its end there is nothing.
    std::optional<Manifest> manifest = reader.result();
    if (manifest && manifest->is_whole && !text.empty()) return std::nullopt;
    return manifest;
}

}  // namespace gw::trash
