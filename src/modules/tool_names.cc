// SPDX-License-Identifier: MIT
//
// An index lists only one of two fonts that have a name in common. So each font file gets a directory of its
// own, with a link to it, and the tool goes through many directories in one run: it is its
// start that takes long. It writes one index behind the other to its output. Which index is whose is known
// only when all of them are as expected. Otherwise some font has ended the tool or has a line feed in its
// name, and the files are asked about again, in smaller and smaller runs.
#include "modules/tool_names.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "core/text.h"
#include "fontfiles/font_bytes.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

using Names = std::vector<std::vector<IndexName>>;
using Progress = std::function<bool(std::size_t)>;
using Meanwhile = std::function<void(std::size_t)>;
using Clock = std::chrono::steady_clock;

enum Tool : std::uint8_t { OUTLINES, BITMAPS };
constexpr const char* COMMANDS[] = {"mkfontscale", "mkfontdir"};

struct Extension {
    std::string_view text;  // as the link has it
    Tool tool;
};
constexpr Extension EXTENSIONS[] = {
    {".ttf", OUTLINES},   {".ttc", OUTLINES},   {".otf", OUTLINES},  {".otc", OUTLINES},
    {".pfa", OUTLINES},   {".pfb", OUTLINES},   {".bdf", BITMAPS},   {".pcf", BITMAPS},
    {".bdf.gz", BITMAPS}, {".pcf.gz", BITMAPS}, {".bdf.Z", BITMAPS}, {".pcf.Z", BITMAPS},
};

/// The extension by which a tool takes the file; null when none does.
const Extension* extension_of(std::string_view path) {
    const std::string name = lower_case(path.substr(path.rfind('/') + 1));
    const auto* found =
        std::find_if(std::begin(EXTENSIONS), std::end(EXTENSIONS),
                     [&](const Extension& extension) { return name.ends_with(lower_case(extension.text)); });
    return found != std::end(EXTENSIONS) ? found : nullptr;
}

/// A file that a tool is asked about.
struct FontFile {
    std::size_t place;  // in the caller's list
    std::string link;   // what it is called in the tool's directory
};
using FontFiles = std::vector<FontFile>;

/// The name of the file, as far as an index can have it. The tool calls a font without a name by that of its
/// file.
std::string link_name(std::string_view path, std::string_view extension) {
    std::string name(path.substr(path.rfind('/') + 1));
    const auto is_unfit = [](char c) { return (c >= 0 && c <= ' ') || c == '\x7F'; };
    std::replace_if(name.begin(), name.end(), is_unfit, '_');
    if (name.front() == ':') name.front() = '_';  // that begins the number of a face
    return name.replace(name.size() - extension.size(), extension.size(), extension);
}

std::string numbered(std::size_t number) {
    static constexpr std::size_t DIGITS = 8;
    const std::string digits = std::to_string(number);
    return std::string(DIGITS - std::min(DIGITS, digits.size()), '0') + digits;
}

/// A directory for each file, with a link to it. The shell's "*" has them in the same order.
class Links {
  public:
    Links() : base_(ShortLivedDirectory::Medium::MEMORY) {}
    ~Links() {
        for (const auto& [dir, link] : made_) {
            ::unlink(link.c_str());
            ::rmdir(dir.c_str());
        }
    }
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;

    Outcome make(const FontFile* first, std::size_t count, const std::vector<std::string>& paths) {
        if (base_.path().empty()) return Failure::of_system("mkdtemp", errno);
        made_.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const std::string dir = base_.path() + '/' + numbered(i);
            const std::string link = dir + '/' + first[i].link;
            if (::mkdir(dir.c_str(), S_IRWXU) != 0) return Failure::of_system(dir, errno);
            made_.emplace_back(dir, link);
            if (::symlink(paths[first[i].place].c_str(), link.c_str()) != 0)
                return Failure::of_system(link, errno);
        }
        return done();
    }
    [[nodiscard]] const std::string& path() const { return base_.path(); }

  private:
    ShortLivedDirectory base_;
    std::vector<std::pair<std::string, std::string>> made_;
};

/// Takes the text up to the separator away from the front of `text`, and the separator; none without one.
std::optional<std::string_view> taken_until(std::string_view& text, char separator) {
    const std::size_t length = text.find(separator);
    if (length == std::string_view::npos) return std::nullopt;
    const std::string_view part = text.substr(0, length);
    text.remove_prefix(length + 1);
    return part;
}

template <class Number>
bool is_number(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

/// "LINK XLFD", or ":FACE:LINK XLFD".
std::optional<IndexName> name_in(std::string_view line, std::string_view link) {
    int face = 0;
    if (line.starts_with(':')) {
        line.remove_prefix(1);
        const std::optional<std::string_view> number = taken_until(line, ':');
        if (!number || !is_number(*number, face) || face < 0) return std::nullopt;
    }
    if (taken_until(line, ' ') != link || line.empty()) return std::nullopt;
    return IndexName{face, std::string(line)};
}

/// Takes one index away from the front of `text`: the number of its lines, and the lines.
std::optional<std::vector<IndexName>> taken_index(std::string_view& text, std::string_view link) {
    std::size_t count = 0;
    const std::optional<std::string_view> number = taken_until(text, '\n');
    if (!number || !is_number(*number, count)) return std::nullopt;
    std::vector<IndexName> names;
    for (; count > 0; --count) {
        const std::optional<std::string_view> line = taken_until(text, '\n');
        std::optional<IndexName> name = line ? name_in(*line, link) : std::nullopt;
        if (!name) return std::nullopt;
        names.push_back(std::move(*name));
    }
    return names;
}

/// The indexes of all files; none when they are not exactly these.
std::optional<Names> indexes_in(std::string_view text, const FontFile* first, std::size_t count) {
    Names indexes;
    for (std::size_t i = 0; i < count; ++i) {
        std::optional<std::vector<IndexName>> index = taken_index(text, first[i].link);
        if (!index) return std::nullopt;
        indexes.push_back(std::move(*index));
    }
    return text.empty() ? std::optional(std::move(indexes)) : std::nullopt;
}

// A font that keeps the tool busy, or makes it ask for memory, only costs its names. So the tool's share of
// the processor is limited, besides the whole time, which a slow disk may use up.
constexpr std::size_t SECONDS_AT_LEAST = 5;
constexpr std::size_t FONTS_IN_A_SECOND = 50;
constexpr std::size_t KILOBYTES_OF_MEMORY = 1024UL * 1024;

/// Limits that are lower already stay.
std::string command_over(Tool tool, std::size_t files, const std::string& base, const std::string& output) {
    const std::size_t seconds = SECONDS_AT_LEAST + files / FONTS_IN_A_SECOND;
    return "exec > " + output + " 2> /dev/null; ulimit -S -t " + std::to_string(seconds) + "; ulimit -S -v " +
           std::to_string(KILOBYTES_OF_MEMORY) + "; exec " + COMMANDS[tool] + " -o - -- " +
           shell_quoted(base) + (files > 0 ? "/*" : "");
}

struct Answer {
    std::optional<Names> indexes;
    bool was_stopped;  // because it took too long
};

/// Whether the command has run, with whatever end. A shell's status for one that cannot be run is 126 or 127.
bool has_run(const Outcome& outcome) {
    if (outcome || outcome.failure().reason == Reason::NO_ANSWER) return true;
    const Failure& failure = outcome.failure();
    return failure.reason == Reason::COMMAND_FAILED && failure.detail != "126" && failure.detail != "127";
}

/// How many files to ask about at a time: as many as take about a second, so that progress is told.
class Pace {
  public:
    [[nodiscard]] std::size_t files() const { return files_; }
    void took(std::size_t files, Clock::duration time) {
        using Seconds = std::chrono::duration<double>;
        const double share = Seconds(AIM) / std::max<Seconds>(time, Seconds(AIM) / GROWTH);
        files_ = std::clamp(static_cast<std::size_t>(static_cast<double>(files) * share), LEAST, MOST);
    }

  private:
    static constexpr std::chrono::seconds AIM{1};
    static constexpr int GROWTH = 8;
    static constexpr std::size_t LEAST = 8;
    static constexpr std::size_t MOST = 2000;
    std::size_t files_ = 256;
};

/// The questions to one tool.
class Questions {
  public:
    Questions(Tool tool, const std::vector<std::string>& paths, const Meanwhile& meanwhile, Names& names)
        : tool_(tool), paths_(paths), meanwhile_(meanwhile), names_(names) {}

    void add(FontFile file) { files_.push_back(std::move(file)); }

    /// Calls `goes_on` with the number of files that are done after each run. Stops when that returns false;
    /// then this does too.
    Result<bool> ask(const Progress& goes_on) {
        Pace pace;
        for (std::size_t next = 0; next < files_.size();) {
            const std::size_t count = std::min(pace.files(), files_.size() - next);
            const Clock::time_point start = Clock::now();
            const FontFile* const first = files_.data() + next;
            const Outcome asked = ask_about(first, count, [&] {
                for (std::size_t i = 0; meanwhile_ && i < count; ++i) meanwhile_(first[i].place);
            });
            if (!asked) return asked.failure();
            pace.took(count, Clock::now() - start);
            next += count;
            if (!goes_on(next)) return false;
        }
        return true;
    }

  private:
    Outcome ask_about(const FontFile* first, std::size_t count,
                      const std::function<void()>& while_it_runs = {}) {
        Result<Answer> answer = run(first, count, LONG_WORK, while_it_runs);
        if (!answer) return answer.failure();
        if (answer->was_stopped) {
            if (Outcome answers = answers_at_all(); !answers) return answers;
        }
        if (answer->indexes) {
            answers_ = true;
            for (std::size_t i = 0; i < count; ++i) names_[first[i].place] = std::move((*answer->indexes)[i]);
            return done();
        }
        return count > 1 ? ask_about_parts(first, count) : done();
    }

    Outcome ask_about_parts(const FontFile* first, std::size_t count) {
        static constexpr std::size_t PARTS = 32;
        const std::size_t part = std::max<std::size_t>(count / PARTS, 1);
        for (std::size_t i = 0; i < count; i += part) {
            if (Outcome asked = ask_about(first + i, std::min(part, count - i)); !asked) return asked;
        }
        return done();
    }

    /// Whether it is a font that takes so long, and not the tool itself.
    Outcome answers_at_all() {
        if (answers_) return done();
        const Result<Answer> answer = run(nullptr, 0, MOMENTS, {});
        if (!answer) return answer.failure();
        if (answer->was_stopped) return Failure{COMMANDS[tool_], Reason::NO_ANSWER};
        answers_ = true;
        return done();
    }

    [[nodiscard]] Result<Answer> run(const FontFile* first, std::size_t count,
                                     std::chrono::milliseconds limit,
                                     const std::function<void()>& while_it_runs) const {
        Links links;
        if (const Outcome made = links.make(first, count, paths_); !made) return made.failure();
        const UnnamedScratchFile output;
        if (output.path().empty()) return Failure::of_system(COMMANDS[tool_], ENOMEM);
        RunningCommand command(command_over(tool_, count, links.path(), output.path()));
        if (while_it_runs) while_it_runs();
        const Outcome ended = command.end(limit);
        if (!has_run(ended)) {
            Failure failure = ended.failure();
            failure.subject = COMMANDS[tool_];
            return failure;
        }
        const Result<std::string> text = output.read();
        return Answer{ended && text ? indexes_in(*text, first, count) : std::nullopt,
                      !ended && ended.failure().reason == Reason::NO_ANSWER};
    }

    Tool tool_;
    const std::vector<std::string>& paths_;
    const Meanwhile& meanwhile_;
    Names& names_;
    FontFiles files_;
    bool answers_ = false;
};

/// Whether the tool can unpack the file without much time and memory; it would go on to the end of any file.
/// The content decides what is unpacked, not the name.
bool may_be_unpacked(const std::string& path, std::string_view suffix, off_t size) {
    static constexpr off_t LARGEST_RATIO_OF_GZIP = 1032;
    static constexpr off_t LIMIT = FontBytes::UNPACKED_LIMIT;
    if (suffix.ends_with(".gz") && size < LIMIT / LARGEST_RATIO_OF_GZIP) return true;
    const Result<FontBytes> bytes = FontBytes::open(path);
    return bytes || (bytes.failure().reason != Reason::TOO_LARGE_UNPACKED &&
                     bytes.failure().reason != Reason::NOT_A_FONT);
}

/// Whether the tool may see the file.
bool is_for_tool(const std::string& path, const Extension& extension) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    return extension.tool == OUTLINES || may_be_unpacked(path, extension.text, info.st_size);
}

}  // namespace

Result<Names> tool_names(const std::vector<std::string>& paths, const Progress& progress,
                         const Meanwhile& meanwhile) {
    constexpr std::size_t FILES_BETWEEN = 64;
    Names names(paths.size());
    Questions questions[] = {{OUTLINES, paths, meanwhile, names}, {BITMAPS, paths, meanwhile, names}};
    std::size_t done = 0;
    for (std::size_t place = 0; place < paths.size(); ++place) {
        const Extension* extension = extension_of(paths[place]);
        if (extension != nullptr && is_for_tool(paths[place], *extension)) {
            questions[extension->tool].add({place, link_name(paths[place], extension->text)});
        } else {
            ++done;
        }
        // Compressed files are unpacked for this.
        const bool is_time = place % FILES_BETWEEN == FILES_BETWEEN - 1;
        if (is_time && progress && !progress(done)) return names;
    }
    for (Questions& to_tool : questions) {
        std::size_t answered = 0;
        const auto goes_on = [&](std::size_t count) {
            answered = count;
            return !progress || progress(done + answered);
        };
        const Result<bool> asked = to_tool.ask(goes_on);
        if (!asked) return asked.failure();
        if (!*asked) break;
        done += answered;
    }
    return names;
}

Result<std::vector<IndexName>> tool_names_of(const std::string& path) {
    Result<Names> names = tool_names(std::vector{path});
    if (!names) return names.failure();
    return std::move(names->front());
}

}  // namespace gw
