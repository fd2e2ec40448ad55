// SPDX-License-Identifier: MIT
//
// Every word of the text is compared with the beginnings of the shapes that have its first letter, and no
// part of a message is looked for further away than a message is long: so the time grows with the text alone.
#include "diagnosis/message_shapes.h"

#include <algorithm>
#include <array>
#include <optional>

#include "diagnosis/pasted_text.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NONE = std::string_view::npos;
constexpr std::size_t MOST_QUOTED = 1 << 16;  // a font set of many names
constexpr std::size_t MOST_UNQUOTED = 512;

struct Shape {
    std::string_view beginning;  // before "{}"
    std::string_view end;        // behind it; "" means the end of the line
    bool has_name;
    bool has_name_before;
    bool takes_next_line;
    About about;
    Said said;
    std::string_view program;
};

constexpr Shape shape(std::string_view text, About about, Said said, std::string_view programs) {
    constexpr std::string_view LINE = "{line}";
    const bool takes_next_line = text.ends_with(LINE);
    if (takes_next_line) text.remove_suffix(LINE.size());
    const std::string_view program = programs.find(' ') == NONE ? programs : "";
    const std::size_t name = text.find("{}");
    const bool is_before = name == 0;
    if (is_before) text.remove_prefix(2);
    if (is_before || name == NONE) return {text, "", false, is_before, takes_next_line, about, said, program};
    return {text.substr(0, name), text.substr(name + 2), true, false, takes_next_line, about, said, program};
}

constexpr auto SHAPES = std::to_array<Shape>({
#define SHAPE(text, about, said, programs) shape(text, About::about, Said::said, programs),
#include "diagnosis/message_shapes.def"
#undef SHAPE
});

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool is_word(char c) {
    return (c >= '0' && c <= '9') || (lower(c) >= 'a' && lower(c) <= 'z') || c == '_';
}

std::size_t behind_blanks(std::string_view text, std::size_t at) {
    while (at < text.size() && is_blank(text[at])) ++at;
    return at;
}

/// Where the text goes on behind `literal`, if it is there at `at`. Blanks are as good as a line end, a line
/// may have been wrapped anywhere, and all quotes are the same.
std::optional<std::size_t> behind(std::string_view text, std::size_t at, std::string_view literal) {
    for (std::size_t i = 0; i < literal.size(); ++i) {
        if (literal[i] == ' ') {
            if (at >= text.size() || !is_blank(text[at])) return {};
            at = behind_blanks(text, at);
            continue;
        }
        if (i > 0 && at < text.size() && text[at] == '\n') at = behind_blanks(text, at);
        const bool is_same = at < text.size() && (lower(text[at]) == lower(literal[i]) ||
                                                  (is_quote(literal[i]) && is_quote(text[at])));
        if (!is_same) return {};
        ++at;
    }
    return at;
}

std::size_t line_end(std::string_view text, std::size_t at) {
    return std::min(text.find('\n', at), text.size());
}

/// Where the quotation ends that begins behind `text[at - 1]`.
std::size_t closing_quote(std::string_view text, std::size_t at) {
    const char quote = text[at - 1] == '`' ? '\'' : text[at - 1];
    return text.substr(0, std::min(text.size(), at + MOST_QUOTED)).find(quote, at);
}

/// A name in quotes, with what must be behind it.
bool take_quoted(std::string_view text, const Shape& shape, Message& message) {
    const std::size_t close = closing_quote(text, message.end);
    if (close == NONE) return false;
    // The quote is the first character of the shape's end, or the shape does not mention it.
    const bool is_in_shape = !shape.end.empty() && is_quote(shape.end[0]);
    const std::optional<std::size_t> end =
        shape.end.empty() ? close + 1 : behind(text, is_in_shape ? close : close + 1, shape.end);
    if (!end) return false;
    message.name = text.substr(message.end, close - message.end);
    message.end = *end;
    return true;
}

/// A name between the two parts of the shape. What a message says without a name may go over several lines.
bool take_between(std::string_view text, const Shape& shape, Message& message) {
    const bool is_name =
        shape.about == About::FONT || shape.about == About::SET || shape.about == About::LIST;
    const std::size_t limit = std::min(message.end + MOST_UNQUOTED, text.size());
    const std::size_t last = is_name ? std::min(limit, line_end(text, message.end)) : limit;
    for (std::size_t at = message.end; at < last; ++at) {
        const std::optional<std::size_t> end = behind(text, at, shape.end);
        if (!end) continue;
        message.name = text.substr(message.end, at - message.end);
        message.end = *end;
        return true;
    }
    return false;
}

bool take_name(std::string_view text, const Shape& shape, Message& message) {
    if (message.end > 0 && is_quote(text[message.end - 1])) return take_quoted(text, shape, message);
    if (message.end < text.size() && is_quote(text[message.end])) {
        ++message.end;
        return take_quoted(text, shape, message);
    }
    if (!shape.end.empty()) return take_between(text, shape, message);
    const std::size_t end = line_end(text, message.end);
    message.name = text.substr(message.end, end - message.end);
    message.end = end;
    return !without_blanks(message.name).empty();
}

/// The word or quotation before the message, in its line.
std::string_view name_before(std::string_view text, std::size_t at) {
    std::string_view before = text.substr(0, at);
    before.remove_prefix(at - std::min(at, MOST_UNQUOTED));
    before = without_blanks(before.substr(before.rfind('\n') + 1));
    if (before.empty()) return before;
    const bool is_quoted = is_quote(before.back());
    if (is_quoted) before.remove_suffix(1);
    return before.substr(before.find_last_of(is_quoted ? "\"'`" : " \t") + 1);
}

std::optional<Message> message_at(std::string_view text, std::size_t at, const Shape& shape) {
    const std::optional<std::size_t> end = behind(text, at, shape.beginning);
    if (!end) return {};
    Message message{at, *end, shape.about, shape.said, shape.program, {}};
    if (shape.has_name && !take_name(text, shape, message)) return {};
    if (shape.has_name_before) {
        message.name = name_before(text, at);
        if (!message.name.empty())
            message.begin = static_cast<std::size_t>(message.name.data() - text.data());
    }
    if (shape.takes_next_line)
        message.end = line_end(text, std::min(line_end(text, message.end) + 1, text.size()));
    return message;
}

/// The first shape that matches; the table has the longer ones first.
std::optional<Message> message_at(std::string_view text, std::size_t at) {
    for (const Shape& shape : SHAPES) {
        if (lower(shape.beginning[0]) != lower(text[at])) continue;
        if (const std::optional<Message> message = message_at(text, at, shape)) return message;
    }
    return {};
}

}  // namespace

std::vector<Message> find_messages(std::string_view text) {
    std::vector<Message> messages;
    std::size_t at = 0;
    while (at < text.size()) {
        const bool begins_word = is_word(text[at]) && (at == 0 || !is_word(text[at - 1]));
        const std::optional<Message> message = begins_word ? message_at(text, at) : std::nullopt;
        if (message) messages.push_back(*message);
        at = message ? std::max(message->end, at + 1) : at + 1;
    }
    return messages;
}

}  // namespace gw::diagnosis
