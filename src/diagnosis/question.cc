// SPDX-License-Identifier: MIT
//
// A pasted text becomes entries: questions, and messages that mention no font. Each of these then goes to the
// question nearest to it.
#include "diagnosis/question.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "core/text.h"
#include "diagnosis/font_words.h"
#include "diagnosis/message_shapes.h"
#include "diagnosis/pasted_text.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NONE = std::string_view::npos;
constexpr std::size_t LONGEST_LINE_KEPT = 500;
constexpr std::size_t LONGEST_PROGRAM = 40;
constexpr std::size_t LINES_AROUND = 3;  // how far a message may be from the name that it is about

// What the X toolkit asks for when it has nothing else.
constexpr const char* TOOLKIT_FONT = "-*-*-*-R-*-*-*-120-*-*-*-*-ISO8859-*";
constexpr const char* TOOLKIT_FONTSET = "-*-*-*-R-*-*-*-120-*-*-*-*,*";

struct Entry {
    Question question;  // without a name for a message that mentions no font
    std::size_t line = 0;
    std::optional<About> message = {};  // none for what is no message
    bool is_placed = false;             // what it says has gone to another question
};

/// Which line of a text something is in, asked for in ascending order.
class LineCounter {
  public:
    explicit LineCounter(std::string_view text) : _text(text) {}
    std::size_t line_at(std::size_t at) {
        _line += static_cast<std::size_t>(std::count(_text.begin() + static_cast<std::ptrdiff_t>(_at),
                                                     _text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
        _at = at;
        return _line;
    }

  private:
    std::string_view _text;
    std::size_t _at = 0;
    std::size_t _line = 0;
};

bool is_program_character(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("._+-/").find(c) != NONE;
}

/// The program in a word such as "xterm:", "/usr/bin/xterm:", "xterm[123]:" or "[fvwm]"; "" if there is none.
std::string_view program_in(std::string_view word) {
    while (word.ends_with(':')) word.remove_suffix(1);
    if (word.starts_with('[')) word = word.substr(1, word.find(']') - 1);
    word = word.substr(0, word.find_first_of("[("));
    const bool is_name = std::all_of(word.begin(), word.end(), is_program_character);
    if (!is_name || word.ends_with('/')) return "";
    word = word.substr(word.rfind('/') + 1);
    const bool has_letter =
        std::any_of(word.begin(), word.end(), [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; });
    return has_letter && word.size() <= LONGEST_PROGRAM ? word : std::string_view();
}

/// Words that stand in front of messages, and are no programs; "E596" is vim's, and Xlib says "X Error of
/// failed request:".
bool is_label(std::string_view word) {
    const std::string plain = lower_case(word.substr(0, word.find(':')));
    const bool is_number =
        plain.size() > 1 && plain[0] == 'e' && plain.find_first_not_of("0123456789", 1) == NONE;
    return is_number || plain == "warning" || plain == "error" || plain == "xt" || plain == "abort" ||
           plain == "fatal" || plain == "request" || plain == "[libi3]";
}

/// The program that a line names in front of its message.
std::string program_before(std::string_view prefix) {
    std::string_view program;
    prefix = prefix.substr(prefix.size() - std::min(prefix.size(), LONGEST_LINE_KEPT));
    while (!without_blanks(prefix).empty()) {
        prefix = without_blanks(prefix);
        const std::size_t end = std::min(prefix.find_first_of(" \t"), prefix.size());
        const std::string_view word = prefix.substr(0, end);
        prefix.remove_prefix(end);
        if (is_label(word) || !(word.ends_with(':') || word.starts_with('['))) continue;
        if (const std::string_view found = program_in(word); !found.empty()) program = found;
    }
    return std::string(program);
}

std::string kept_line(std::string_view text) {
    return unwrapped(without_blanks(text.substr(0, LONGEST_LINE_KEPT)));
}

/// The place of an element that a message counts from 0; 0 if it is none.
int place_in(std::string_view number) {
    number = without_blanks(number);
    constexpr int MOST_ELEMENTS = 100000;
    int place = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), place);
    return error == std::errc() && end == number.data() + number.size() && place >= 0 && place < MOST_ELEMENTS
               ? place + 1
               : 0;
}

void demand_fontset(Question& question) {
    if (question.wanted == Wanted::FONT) question.wanted = Wanted::FONTSET;
}

/// The questions of a message, without what all of them have in common.
std::vector<Question> questions_of(const Message& message, std::size_t before_name) {
    if (message.about == About::NO_FONT) return {};
    const std::string name = unwrapped(message.name, before_name);
    if (message.about == About::LIST) return questions_about_list(name);
    Question question;
    if (message.about == About::FONT || message.about == About::SET) {
        question = question_about(name);
        if (message.about == About::SET) demand_fontset(question);
    } else if (message.about == About::ELEMENT || message.about == About::PATH) {
        question.wanted = Wanted::PATH;
        question.element = message.about == About::ELEMENT ? place_in(name) : 0;
    }
    return {question};
}

class Reader {
  public:
    explicit Reader(std::string_view text) : _text(text), _lines(text) {}

    std::vector<Question> read() {
        std::size_t at = 0;
        for (const Message& message : find_messages(_text)) {
            const std::size_t begin = line_begin(message.begin);
            if (begin > at) read_lines(at, begin);
            read_message(message);
            at = std::max(at, std::min(_text.find('\n', message.end), _text.size()));
            if (_entries.size() >= MOST_ENTRIES) break;
        }
        read_lines(at, _text.size());
        if (_entries.empty()) read_words();
        place_notes();
        return questions();
    }

  private:
    static constexpr std::size_t MOST_ENTRIES = 4 * MOST_QUESTIONS;  // the same name may be there many times

    [[nodiscard]] std::size_t line_begin(std::size_t at) const {
        const std::size_t end = at == 0 ? NONE : _text.rfind('\n', at - 1);
        return end == NONE ? 0 : end + 1;
    }

    /// The length of what stands in front of the name, in its line.
    [[nodiscard]] std::size_t before_name(const Message& message) const {
        if (message.name.empty()) return 0;
        const auto begin = static_cast<std::size_t>(message.name.data() - _text.data());
        return begin - line_begin(begin);
    }

    void add(Question question, std::size_t line, std::optional<About> message) {
        if (_entries.size() < MOST_ENTRIES) _entries.push_back({std::move(question), line, message});
    }

    void read_message(const Message& message) {
        const std::size_t begin = std::max(line_begin(message.begin), _read);
        const std::string program = program_before(_text.substr(begin, message.begin - begin));
        const std::size_t line = _lines.line_at(message.begin);
        for (Question& question : questions_of(message, before_name(message))) {
            question.program = program.empty() ? std::string(message.program) : program;
            question.line = kept_line(_text.substr(begin, message.end - begin));
            Sentence note{message.said};
            if (question.element > 0) note.details.push_back(std::to_string(question.element));
            // A place that no path has.
            else if (message.said == Said::ELEMENT_REFUSED)
                note.said = Said::PATH_REFUSED;
            question.notes.insert(question.notes.begin(), note);
            add(std::move(question), line, message.about);
        }
        _read = message.end;
    }

    /// A name that goes on in the next line, or a list of names that does.
    static bool goes_on(std::string_view line) {
        line = without_blanks(line);
        return line.ends_with(',') || (line.ends_with('-') && begins_full_name(line));
    }

    void read_lines(std::size_t begin, std::size_t end) {
        while (begin < end && _entries.size() < MOST_ENTRIES) {
            std::size_t line_end = std::min(_text.find('\n', begin), end);
            for (std::size_t from = begin; line_end < end && goes_on(_text.substr(from, line_end - from));) {
                from = line_end + 1;
                line_end = std::min(_text.find('\n', from), end);
            }
            read_line(begin, _text.substr(begin, line_end - begin));
            begin = line_end + 1;
        }
    }

    void read_line(std::size_t begin, std::string_view text) {
        if (without_blanks(text).empty()) return;
        const std::size_t line = _lines.line_at(begin);
        const std::string whole = unwrapped(text);
        const bool is_alone = without_blanks(_text) == without_blanks(text);
        for (Question& question : questions_in_line(whole, is_alone)) {
            question.line = kept_line(text);
            add(std::move(question), line, {});
        }
    }

    /// Whether a line of one word can be a name: it is neither the option of a command nor a resource.
    static bool can_be_name(std::string_view line, std::string_view word) {
        const bool is_option = word.starts_with('-') && !begins_full_name(word);
        const bool is_resource = line.ends_with(':') && line.starts_with('*');
        const bool is_one = word.find_first_of(" \t") == NONE || word.find(", ") != NONE;
        return is_one && !is_option && !is_resource && !word.empty() && word.size() <= LONGEST_LINE_KEPT;
    }

    /// There is nothing but words: each line of one word is a name.
    void read_words() {
        std::size_t line = 0;
        for (const std::string_view text : lines_of(_text)) {
            const std::string_view word = bare(text);
            if (can_be_name(without_blanks(text), word)) {
                Question question = question_about(word);
                question.line = kept_line(text);
                if (!question.name.empty() && question.name.find(' ') == NONE)
                    add(std::move(question), line, {});
            }
            if (_entries.size() >= MOST_ENTRIES) return;
            ++line;
        }
    }

    static bool is_without_name(const Entry& entry) {
        return entry.message && !entry.is_placed && entry.question.name.empty() &&
               entry.question.wanted != Wanted::PATH;
    }

    static bool is_about_set(const Entry& message) {
        return message.message == About::SOME_CHARSETS || message.message == About::NO_DEFAULT_SET;
    }

    /// Whether a message without a name can be about the font of `entry`.
    [[nodiscard]] static bool can_be_about(const Entry& message, const Entry& entry) {
        const Wanted wanted = entry.question.wanted;
        if (entry.question.name.empty() || (wanted != Wanted::FONT && wanted != Wanted::FONTSET))
            return false;
        const std::string& program = message.question.program;
        if (!program.empty() && !entry.question.program.empty() && program != entry.question.program)
            return false;
        return !is_about_set(message) || wanted == Wanted::FONTSET || !entry.message;
    }

    [[nodiscard]] bool is_near(std::size_t message, std::size_t other) const {
        const std::size_t first = std::min(message, other);
        const std::size_t last = std::max(message, other);
        return other < _entries.size() && _entries[last].line - _entries[first].line <= LINES_AROUND &&
               can_be_about(_entries[message], _entries[other]);
    }

    /// The entry that the message at `place` is about. The toolkit says that charsets are missing before it
    /// names the font set; other messages come after the name. What is no message can be in front and behind.
    Entry* entry_near(std::size_t place) {
        const bool comes_first = _entries[place].message == About::SOME_CHARSETS;
        for (const bool is_message : {true, false}) {
            for (std::size_t far = 1; far <= LINES_AROUND; ++far) {
                const std::size_t next = place + far;
                const std::size_t last = place - far;  // too large if there is none
                for (const std::size_t other : {last, next}) {
                    if (!is_near(place, other) || is_message != _entries[other].message.has_value()) continue;
                    if (!is_message || comes_first == (other == next)) return &_entries[other];
                }
            }
        }
        return nullptr;
    }

    static void add_note(Question& question, const Sentence& note) {
        if (std::find(question.notes.begin(), question.notes.end(), note) == question.notes.end())
            question.notes.push_back(note);
    }

    void place_note(std::size_t place) {
        Entry& entry = _entries[place];
        Entry* near = entry_near(place);
        if (near == nullptr) return;
        if (is_about_set(entry)) demand_fontset(near->question);
        if (near->question.program.empty()) near->question.program = entry.question.program;
        add_note(near->question, entry.question.notes.front());
        entry.is_placed = true;
    }

    /// The messages about the toolkit's own fonts get their names here, if they are about no other.
    void name_default(Entry& entry) {
        entry.question.wanted = entry.message == About::NO_DEFAULT_SET ? Wanted::FONTSET : Wanted::FONT;
        entry.question.name = entry.message == About::NO_DEFAULT_SET ? TOOLKIT_FONTSET : TOOLKIT_FONT;
    }

    void place_notes() {
        for (const bool is_default : {true, false}) {
            for (std::size_t i = 0; i < _entries.size(); ++i) {
                Entry& entry = _entries[i];
                const bool is_named =
                    entry.message == About::NO_DEFAULT || entry.message == About::NO_DEFAULT_SET;
                if (!is_without_name(entry) || is_named != is_default) continue;
                place_note(i);
                if (is_default && !entry.is_placed) name_default(entry);
            }
        }
        for (Entry& entry : _entries) {
            if (!is_without_name(entry)) continue;
            entry.question.wanted = Wanted::PATH;
            const Said said = entry.question.notes.front().said;
            if (said != Said::NAME_NOT_TOLD_TO_ROOT) entry.question.notes.push_back({Said::NAME_NOT_TOLD});
            if (said == Said::FONT_OR_COLOR) entry.question.notes.push_back({Said::PASTE_MORE});
        }
    }

    std::vector<Question> questions() {
        std::vector<Question> questions;
        for (Entry& entry : _entries) {
            Question& question = entry.question;
            if (entry.is_placed || (question.name.empty() && question.wanted != Wanted::PATH)) continue;
            const auto same = std::find_if(questions.begin(), questions.end(), [&](const Question& other) {
                return std::tie(other.wanted, other.name, other.element) ==
                       std::tie(question.wanted, question.name, question.element);
            });
            if (same == questions.end()) {
                if (questions.size() < MOST_QUESTIONS) questions.push_back(std::move(question));
                continue;
            }
            for (const Sentence& note : question.notes) add_note(*same, note);
        }
        return questions;
    }

    std::string_view _text;
    LineCounter _lines;
    std::vector<Entry> _entries;
    std::size_t _read = 0;  // the end of the last message
};

}  // namespace

std::vector<Question> read_questions(std::string_view pasted) {
    return Reader(readable(pasted, MOST_PASTED)).read();
}

}  // namespace gw::diagnosis
