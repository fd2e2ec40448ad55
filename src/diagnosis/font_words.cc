// SPDX-License-Identifier: MIT
#include "diagnosis/font_words.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <optional>

#include "core/text.h"
#include "diagnosis/pasted_text.h"
#include "fontpath/catalogue.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NONE = std::string_view::npos;
constexpr int FIELDS = 14;
constexpr std::size_t LONGEST_NAME = 255;  // of the X protocol
constexpr auto FONT_EXTENSIONS = std::to_array<std::string_view>(
    {".pcf", ".pcf.gz", ".pcf.Z", ".bdf", ".bdf.gz", ".bdf.Z", ".snf", ".snf.gz", ".snf.Z", ".pfa", ".pfb",
     ".ttf", ".ttc", ".otf", ".otc", ".spd", ".afm"});

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int hyphens_of(std::string_view text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '-'));
}

// --- paths ---------------------------------------------------------------------

int hex_value(char c) {
    if (is_digit(c)) return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// The path of an address: without its host, and with "%20" as a blank. "" for one with control characters.
std::string path_of_address(std::string_view rest) {
    const std::size_t slash = rest.find('/');
    if (slash == NONE) return "";
    std::string path;
    for (std::size_t i = slash; i < rest.size(); ++i) {
        const bool is_code = rest[i] == '%' && i + 2 < rest.size() && hex_value(rest[i + 1]) >= 0 &&
                             hex_value(rest[i + 2]) >= 0;
        const char code =
            is_code ? static_cast<char>(hex_value(rest[i + 1]) * 16 + hex_value(rest[i + 2])) : rest[i];
        if (static_cast<unsigned char>(code) < ' ' || code == '\x7F') return "";
        path += code;
        if (is_code) i += 2;
    }
    return path;
}

std::string below_home(std::string_view rest) {
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return "";
    return std::string(without_trailing_slashes(home)) + std::string(rest);
}

bool is_font_file(std::string_view path) {
    const std::string_view file = path.substr(path.rfind('/') + 1);
    const std::string extension = font_extension(file);
    return std::find(FONT_EXTENSIONS.begin(), FONT_EXTENSIONS.end(), extension) != FONT_EXTENSIONS.end();
}

/// Elements of a font path that are no paths of files.
bool is_other_element(std::string_view text) {
    return is_catalogue(text) || text.starts_with("tcp/") || text.starts_with("unix/") || text == "built-ins";
}

// --- names ---------------------------------------------------------------------

/// The longest of the names in a list.
std::size_t longest_of(std::string_view names) {
    std::size_t longest = 0;
    for (std::size_t start = 0; start < names.size();) {
        const std::size_t end = std::min(names.find(',', start), names.size());
        longest = std::max(longest, end - start);
        start = end + 1;
    }
    return longest;
}

/// What is wrong with the form of a name, or of the names of a set.
std::vector<Sentence> notes_about(std::string_view name) {
    std::vector<Sentence> notes;
    const int fields = hyphens_of(name);
    const bool is_open = name.find('*') != NONE;
    if (const std::size_t longest = longest_of(name); longest > LONGEST_NAME)
        notes.push_back({Said::NAME_TOO_LONG, {std::to_string(longest)}});
    if (!name.starts_with('-') || name.find(',') != NONE) return notes;
    if (fields > FIELDS)
        notes.push_back({Said::TOO_MANY_FIELDS, {std::to_string(fields)}});
    else if (fields < FIELDS && !is_open)
        notes.push_back({Said::TOO_FEW_FIELDS, {std::to_string(fields)}});
    return notes;
}

/// Whether it is a name for fontconfig: "Monospace:size=10", "xft:Mono".
bool is_fontconfig_name(std::string_view name) {
    const std::size_t colon = name.find(':');
    if (name.starts_with('-') || name.starts_with('*') || colon == NONE || colon == 0) return false;
    return lower_case(name.substr(0, colon)) == "xft" || name.find('=', colon) != NONE;
}

/// The base names of a font set, without blanks around them and empty ones between them.
std::string base_names(std::string_view names) {
    std::string result;
    while (!names.empty()) {
        const std::size_t comma = std::min(names.find(','), names.size());
        const std::string_view name = bare(names.substr(0, comma));
        if (!name.empty()) result.append(result.empty() ? "" : ",").append(name);
        names.remove_prefix(std::min(comma + 1, names.size()));
    }
    return result;
}

Question question_about_names(std::string_view text) {
    Question question;
    question.name = base_names(text);
    if (question.name.find(',') != NONE) question.wanted = Wanted::FONTSET;
    question.notes = notes_about(question.name);
    if (is_fontconfig_name(question.name)) question.notes.push_back({Said::NAME_FOR_FONTCONFIG});
    return question;
}

/// Takes the text up to one of `ends`, which may be in quotes, and the end itself.
std::string_view take_until(std::string_view& text, std::string_view ends) {
    char quote = '\0';
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        if (quote != '\0')
            quote = text[at] == quote ? '\0' : quote;
        else if (text[at] == '"')
            quote = '"';
        else if (ends.find(text[at]) != NONE)
            break;
    }
    const std::string_view taken = text.substr(0, at);
    text.remove_prefix(at);
    return taken;
}

// --- lines ---------------------------------------------------------------------

void add(std::vector<Question>& questions, Question question) {
    if (!question.name.empty() && questions.size() < MOST_QUESTIONS) questions.push_back(std::move(question));
}

void add(std::vector<Question>& questions, std::vector<Question> others) {
    for (Question& question : others) add(questions, std::move(question));
}

/// A word of a command line or sentence; what is in quotes is one word.
std::string_view take_word(std::string_view& text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    if (text.empty()) return {};
    std::size_t end = 0;
    if (is_quote(text.front())) {
        const std::size_t close = text.find(text.front(), 1);
        end = close == NONE ? text.size() : close + 1;
    } else {
        while (end < text.size() && !is_blank(text[end])) ++end;
    }
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(end);
    return word;
}

/// The last component of a resource's name, in lower case.
std::string resource_of(std::string_view key) {
    const std::size_t last = key.find_last_of(".*?");
    return lower_case(last == NONE ? key : key.substr(last + 1));
}

/// Whether fonts can be the value of this resource.
bool has_fonts(std::string_view resource) {
    while (!resource.empty() && is_digit(resource.back())) resource.remove_suffix(1);
    constexpr auto ENDS = std::to_array<std::string_view>({"font", "fontlist", "fontset", "fontname",
                                                           "rendertable", "fontnormal", "fontbold",
                                                           "fontitalic", "fontdirectory", "fontsymbol"});
    return std::any_of(ENDS.begin(), ENDS.end(),
                       [&](std::string_view end) { return resource.ends_with(end); });
}

bool is_key(std::string_view key) {
    return !key.empty() && (is_letter(key[0]) || key[0] == '*' || key[0] == '?') &&
           std::all_of(key.begin(), key.end(), [](char c) {
               return is_letter(c) || is_digit(c) || c == '*' || c == '.' || c == '?' || c == '_' || c == '-';
           });
}

/// The questions in a line of a resource file. No value if it is none.
std::optional<std::vector<Question>> questions_in_resource(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == NONE || !is_key(without_blanks(line.substr(0, colon)))) return {};
    const std::string resource = resource_of(without_blanks(line.substr(0, colon)));
    if (!has_fonts(resource)) return {};
    const std::string_view value = without_blanks(line.substr(colon + 1));
    std::vector<Question> questions;
    if (resource.ends_with("fontset")) {
        Question question = question_about(value);
        if (question.wanted == Wanted::FONT) question.wanted = Wanted::FONTSET;
        add(questions, std::move(question));
    } else if (resource.ends_with("list") || resource.ends_with("table")) {
        // The names in a render table may be those of its renditions; they are no fonts then.
        const bool is_tags = resource.ends_with("table") && value.find('-') == NONE;
        if (!is_tags) add(questions, questions_about_list(value));
    } else {
        add(questions, question_about(value));
    }
    return questions;
}

/// The full name at the beginning of `text`. Only foundry and family have blanks: "new century schoolbook".
std::string_view full_name_at(std::string_view text) {
    constexpr std::size_t LONGEST_WORD = 40;
    std::size_t end = 0;
    int hyphens = 0;
    for (; end < text.size(); ++end) {
        const char c = text[end];
        if (is_quote(c) || c == '\n' || c == '\t') break;
        if (c == '-') ++hyphens;
        if (c == ',') hyphens = 0;  // the next name of a set
        if (c != ' ') continue;
        const bool follows_comma = end > 0 && text[end - 1] == ',';
        const std::string_view next = text.substr(end, LONGEST_WORD);
        const bool is_inside = hyphens == 1 || hyphens == 2;
        if (!follows_comma && !(is_inside && next.find('-') != NONE && next.find(" -") == NONE)) break;
    }
    return text.substr(0, end);
}

/// Options of programs that take the name of a font.
bool is_font_option(std::string_view word) {
    constexpr auto OPTIONS = std::to_array<std::string_view>(
        {"-fn", "-font", "--font", "-fb", "-fw", "-fwb", "-fi", "-fx", "-fontset", "--fn", "-bf", "-nf",
         "-mf", "-hf", "-fontList", "-fontlist", "-boldfont", "-normalfont"});
    return std::find(OPTIONS.begin(), OPTIONS.end(), word) != OPTIONS.end() ||
           (word.size() > 5 && word.starts_with('-') && lower_case(word).ends_with("font") &&
            hyphens_of(word) <= 2);
}

/// A word, or the full name that begins with it.
std::vector<Question> questions_in_word(std::string_view& text) {
    std::vector<Question> questions;
    if (begins_full_name(text)) {
        const std::string_view name = full_name_at(text);
        text.remove_prefix(name.size());
        add(questions, question_about(name));
        return questions;
    }
    const std::string_view word = take_word(text);
    if (is_font_option(word)) {
        std::string_view value = text;
        while (!value.empty() && is_blank(value.front())) value.remove_prefix(1);
        const std::string_view name = begins_full_name(value) ? full_name_at(value) : take_word(value);
        if (begins_full_name(text)) value.remove_prefix(name.size());
        add(questions, question_about(name));
        text = value;
    } else if (word.starts_with("--font=") || word.starts_with("-font=")) {
        add(questions, question_about(word.substr(word.find('=') + 1)));
    } else if (is_quote(word.front()) && bare(word).size() + 2 <= word.size()) {
        add(questions, questions_in_line(bare(word), false));
    } else if (!path_in(bare(word)).empty() && !word.ends_with(':')) {
        for (std::string_view paths = word; !paths.empty();) {
            add(questions, question_about(take_until(paths, ",")));
            if (!paths.empty()) paths.remove_prefix(1);
        }
    }
    return questions;
}

}  // namespace

bool begins_full_name(std::string_view text) {
    if (text.size() < 3 || (text[0] != '-' && text[0] != '*')) return false;
    // An option has one or two hyphens.
    const std::string_view word = text.substr(0, std::min(text.find_first_of(" \t\n,\"'"), text.size()));
    const int hyphens = hyphens_of(word);
    if (hyphens >= 4 || (hyphens >= 2 && word.find('*') != NONE)) return true;
    if (hyphens != 2 || word.starts_with("--")) return false;
    // A family of several words: "-adobe-new century schoolbook-medium-r-..."
    return hyphens_of(text.substr(0, LONGEST_NAME)) >= 6 && text.substr(0, LONGEST_NAME).find(" -") == NONE;
}

std::string path_in(std::string_view text) {
    if (text.starts_with("file:/")) return path_of_address(text.substr(text.starts_with("file://") ? 7 : 5));
    if (text.starts_with("~/") || text == "~") return below_home(text.substr(1));
    return text.starts_with('/') || is_other_element(text) ? std::string(text) : "";
}

Question question_about(std::string_view name) {
    const std::string text = unwrapped(bare(name));
    const std::string path = path_in(text);
    const bool is_no_name = text.starts_with("file:/") || text.starts_with('~');
    if (path.empty()) return is_no_name ? Question() : question_about_names(text);
    Question question;
    question.wanted = is_font_file(path) ? Wanted::FILE : Wanted::DIRECTORY;
    question.name = path;
    return question;
}

std::vector<Question> questions_about_list(std::string_view list) {
    std::vector<Question> questions;
    while (!list.empty()) {
        std::string_view entry = take_until(list, ",");
        if (!list.empty()) list.remove_prefix(1);
        const std::string_view names = take_until(entry, "=:");
        Question question;
        std::string text = unwrapped(bare(names));
        if (text.find(';') != NONE || entry.starts_with(':')) question.wanted = Wanted::FONTSET;
        std::replace(text.begin(), text.end(), ';', ',');
        question.name = base_names(text);
        question.notes = notes_about(question.name);
        add(questions, std::move(question));
    }
    return questions;
}

std::vector<Question> questions_in_line(std::string_view line, bool is_alone) {
    line = without_blanks(line);
    std::vector<Question> questions;
    if (line.empty() || line.starts_with('!') || line.starts_with('#')) return questions;
    if (std::optional<std::vector<Question>> found = questions_in_resource(line)) return *found;
    if (is_alone && !path_in(bare(line)).empty() && line.find(": ") == NONE && line.find(',') == NONE) {
        add(questions, question_about(line));
        return questions;
    }
    while (!without_blanks(line).empty() && questions.size() < MOST_QUESTIONS) {
        line = without_blanks(line);
        add(questions, questions_in_word(line));
    }
    return questions;
}

}  // namespace gw::diagnosis
