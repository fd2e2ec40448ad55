// SPDX-License-Identifier: MIT
#include "diagnosis/pasted_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "fontpath/catalogue.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NARROWEST_TERMINAL = 72;  // whose right edge cuts lines

constexpr std::array<std::pair<std::string_view, char>, 16> TYPOGRAPHY = {{
    {"\u2018", '\''},
    {"\u2019", '\''},
    {"\u201A", '\''},
    {"\u201B", '\''},
    {"\u2039", '\''},
    {"\u203A", '\''},
    {"\u201C", '"'},
    {"\u201D", '"'},
    {"\u201E", '"'},
    {"\u201F", '"'},
    {"\u00AB", '"'},
    {"\u00BB", '"'},
    {"\u00A0", ' '},
    {"\u202F", ' '},
    {"\u2010", '-'},
    {"\u2011", '-'},
}};

unsigned char byte_of(char c) {
    return static_cast<unsigned char>(c);
}

/// The bytes of the UTF-8 character at the beginning of `text`; 0 if there is none.
std::size_t character_length(std::string_view text) {
    const unsigned char first = byte_of(text[0]);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xC2 && first < 0xE0 ? 2
                               : first >= 0xE0 && first < 0xF0 ? 3
                               : first >= 0xF0 && first < 0xF5 ? 4
                                                               : 0;
    if (length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte_of(text[i]) & 0xC0) != 0x80) return 0;
    if (length < 3) return length;
    // Overlong forms, surrogates, and what is above the last character.
    const unsigned char second = byte_of(text[1]);
    const bool is_wrong = (first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) ||
                          (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90);
    return is_wrong ? 0 : length;
}

/// The bytes of the escape sequence of a terminal at the beginning of `text`; 0 if there is none.
std::size_t escape_length(std::string_view text) {
    constexpr std::size_t LONGEST = 40;
    if (text.size() < 2 || text[0] != '\x1B' || text[1] != '[') return 0;
    for (std::size_t i = 2; i < std::min(text.size(), LONGEST); ++i) {
        if (text[i] >= '@' && text[i] <= '~') return i + 1;
        if (text[i] < ' ' || text[i] > '?') return 0;
    }
    return 0;
}

/// The bytes of a backslash at the end of a line, with the line end; 0 if there is none.
std::size_t continuation_length(std::string_view text) {
    if (text.starts_with("\\\n")) return 2;
    return text.starts_with("\\\r\n") ? 3 : 0;
}

/// The bytes of the marks of a quoted mail, "> > " or "| ", at the beginning of a line; 0 if there are none.
std::size_t quote_marks_length(std::string_view line) {
    constexpr std::string_view MARKS = ">|";
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || MARKS.find(line[first]) == std::string_view::npos) return 0;
    return std::min(line.find_first_not_of(">| \t", first), line.size());
}

/// Whether the character is seen by nobody: a place to divide a word at, a joiner, the mark of the byte
/// order.
bool is_invisible(std::string_view character) {
    constexpr auto INVISIBLE =
        std::to_array<std::string_view>({"\u00AD", "\u200B", "\u200C", "\u200D", "\u2060", "\uFEFF"});
    return std::find(INVISIBLE.begin(), INVISIBLE.end(), character) != INVISIBLE.end();
}

/// What the markup of HTML has for characters that messages have around and in names.
constexpr auto ENTITIES = std::to_array<std::pair<std::string_view, char>>({{"&quot;", '"'},
                                                                            {"&#34;", '"'},
                                                                            {"&#x22;", '"'},
                                                                            {"&apos;", '\''},
                                                                            {"&#39;", '\''},
                                                                            {"&#x27;", '\''},
                                                                            {"&lt;", '<'},
                                                                            {"&gt;", '>'},
                                                                            {"&nbsp;", ' '},
                                                                            {"&amp;", '&'}});

/// Adds it; before a quote without the backslashes by which JSON and shells mark that.
void add_character(char c, std::string& result) {
    while (c == '"' && result.ends_with('\\')) result.pop_back();
    result += c;
}

/// Ends what may be an entity at the end of `result`. Of one that was marked up twice the "&" stays, and is
/// the beginning of the next.
void add_semicolon(std::string& result) {
    result += ';';
    const auto* entity = std::find_if(ENTITIES.begin(), ENTITIES.end(),
                                      [&](const auto& entry) { return result.ends_with(entry.first); });
    if (entity == ENTITIES.end()) return;
    result.resize(result.size() - entity->first.size());
    // A quoted mail.
    if (entity->second == '>' && (result.empty() || result.back() == '\n')) return;
    add_character(entity->second, result);
}

/// Takes a character that is not ASCII from `text`.
void take_character(std::string_view& text, std::string& result) {
    const std::size_t length = character_length(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    const auto* plain = std::find_if(TYPOGRAPHY.begin(), TYPOGRAPHY.end(),
                                     [&](const auto& entry) { return entry.first == character; });
    if (plain != TYPOGRAPHY.end())
        add_character(plain->second, result);
    else if (length == 0)
        result += '?';
    else if (!is_invisible(character) &&
             !(length == 2 && byte_of(character[0]) == 0xC2 && byte_of(character[1]) < 0xA0))  // C1 controls
        result += character;
    text.remove_prefix(character.size());
}

/// Takes an ASCII character from `text`.
void take_ascii(std::string_view& text, std::string& result) {
    const char c = text[0];
    if (c == '\n' || c == '\r')
        result += c == '\r' && text.substr(1).starts_with('\n') ? "" : "\n";
    else if (c == ';')
        add_semicolon(result);
    else
        add_character(c < ' ' || c == '\x7F' ? ' ' : c, result);
    text.remove_prefix(1);
}

bool belongs_to_word(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || byte_of(c) >= 0x80;
}

/// Whether a blank stays where a line with this end, and of this length, goes on with this beginning.
bool is_between_words(char end, char beginning, std::size_t line_length) {
    return belongs_to_word(end) && belongs_to_word(beginning) && line_length < NARROWEST_TERMINAL;
}

// --- numbers of lines ----------------------------------------------------------

/// The number that a line begins with, as "grep -n", "cat -n" and editors print it: "13: text", "    13
/// text".
struct LineNumber {
    int number = 0;
    char separator = '\0';
    std::size_t length = 0;  // with the separator; 0 for a line without a number
};

LineNumber line_number(std::string_view line) {
    constexpr std::size_t MOST_DIGITS = 7;
    const std::size_t first = std::min(line.find_first_not_of(' '), line.size());
    const std::size_t last = std::min(line.find_first_not_of("0123456789", first), line.size());
    if (last == first || last - first > MOST_DIGITS || last == line.size()) return {};
    const char separator = line[last];
    if (separator != ':' && separator != ' ' && separator != '|') return {};
    int number = 0;
    std::from_chars(line.data() + first, line.data() + last, number);
    return {number, separator, last + 1};
}

bool follows(const LineNumber& next, const LineNumber& line) {
    return line.length > 0 && next.separator == line.separator && next.number == line.number + 1;
}

/// Without the numbers of lines, which are in at least two lines that follow each other.
std::string without_line_numbers(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    LineNumber before;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::size_t next_end = std::min(text.find('\n', std::min(end + 1, text.size())), text.size());
        const LineNumber line = line_number(text.substr(start, end - start));
        const std::string_view next = text.substr(std::min(end + 1, text.size()), next_end - end);
        const bool is_numbered = follows(line, before) || follows(line_number(next), line);
        const std::size_t behind = std::min(end + 1, text.size());
        result += text.substr(start + (is_numbered ? line.length : 0),
                              behind - start - (is_numbered ? line.length : 0));
        before = line;
        start = behind;
    }
    return result;
}

// --- brackets ------------------------------------------------------------------

constexpr std::string_view OPENING = "([{<";
constexpr std::string_view CLOSING = ")]}>";

/// How many brackets of each kind are open at the end of a text; less than 0 where too many are closed.
class OpenBrackets {
  public:
    explicit OpenBrackets(std::string_view text) {
        for (const char c : text) count(c, 1);
    }
    /// Whether the bracket has no other one; what is no bracket has none to miss.
    [[nodiscard]] bool is_alone(char c) const {
        const std::size_t opening = OPENING.find(c);
        const std::size_t closing = CLOSING.find(c);
        return (opening != std::string_view::npos && open_[opening] > 0) ||
               (closing != std::string_view::npos && open_[closing] < 0);
    }
    void take_off(char c) { count(c, -1); }

  private:
    void count(char c, long by) {
        if (const std::size_t kind = OPENING.find(c); kind != std::string_view::npos) open_[kind] += by;
        if (const std::size_t kind = CLOSING.find(c); kind != std::string_view::npos) open_[kind] -= by;
    }
    std::array<long, OPENING.size()> open_ = {};
};

bool are_brackets_around(std::string_view text) {
    const std::size_t kind = text.empty() ? std::string_view::npos : OPENING.find(text.front());
    return kind != std::string_view::npos && text.back() == CLOSING[kind];
}

}  // namespace

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool is_quote(char c) {
    return c == '"' || c == '\'' || c == '`';
}

std::string readable(std::string_view pasted, std::size_t most) {
    std::string_view rest = pasted.substr(0, most);
    std::string result;
    result.reserve(rest.size());
    while (!rest.empty()) {
        const bool begins_line = result.empty() || result.back() == '\n';
        if (const std::size_t marks = begins_line ? quote_marks_length(rest) : 0; marks != 0) {
            rest.remove_prefix(marks);
        } else if (const std::size_t escape = escape_length(rest); escape != 0) {
            rest.remove_prefix(escape);
        } else if (const std::size_t continuation = continuation_length(rest); continuation != 0) {
            rest.remove_prefix(continuation);
            while (rest.starts_with(' ') || rest.starts_with('\t')) rest.remove_prefix(1);
        } else if (byte_of(rest[0]) < 0x80) {
            take_ascii(rest, result);
        } else {
            take_character(rest, result);
        }
    }
    return without_line_numbers(result);
}

std::string unwrapped(std::string_view text, std::size_t before) {
    std::string result;
    std::size_t line = 0;  // where the line that is read begins in `text`
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\n') {
            result += text[i];
            continue;
        }
        const std::size_t next = text.find_first_not_of(" \t\n", i);
        const bool had_blank = result.ends_with(' ');
        while (result.ends_with(' ') || result.ends_with('\t')) result.pop_back();
        if (next == std::string_view::npos) break;
        const bool is_word = !result.empty() && belongs_to_word(result.back()) && belongs_to_word(text[next]);
        if (is_word && (had_blank || is_between_words(result.back(), text[next], before + i - line)))
            result += ' ';
        before = 0;
        line = text.rfind('\n', next) + 1;
        i = next - 1;
    }
    return result;
}

std::string_view without_blanks(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view bare(std::string_view text) {
    constexpr std::string_view PUNCTUATION = ":;,.!";
    OpenBrackets brackets(text);
    for (std::size_t size = text.size() + 1; size != text.size();) {
        size = text.size();
        text = without_blanks(text);
        const bool is_in_brackets = are_brackets_around(text);
        if (!text.empty() && (is_in_brackets || is_quote(text.front()) || brackets.is_alone(text.front()))) {
            brackets.take_off(text.front());
            text.remove_prefix(1);
        }
        // A catalogue that names no directory is an element all the same.
        if (is_catalogue(text) && directory_of_catalogue(text).empty()) return text;
        if (!text.empty() && (is_in_brackets || is_quote(text.back()) || brackets.is_alone(text.back()) ||
                              PUNCTUATION.find(text.back()) != PUNCTUATION.npos)) {
            brackets.take_off(text.back());
            text.remove_suffix(1);
        }
    }
    return text;
}

}  // namespace gw::diagnosis
