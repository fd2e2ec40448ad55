// SPDX-License-Identifier: MIT
#include "texts/messages.h"

#include "core/text.h"

#include <cstddef>
#include <iterator>

namespace {

// NOLINTNEXTLINE(performance-no-int-to-ptr): POSIX uses this value for "no catalogue"
const nl_catd NO_CATALOGUE = reinterpret_cast<nl_catd>(-1);

}  // namespace

nl_catd catd = NO_CATALOGUE;

namespace gw {

namespace {

constexpr MessageEntry TABLE[] = {
#define MSG(set, number, name, text) {set, number, text},
#include "texts/messages.def"
#undef MSG
};

constexpr bool is_ascending() {
    for (std::size_t i = 1; i < std::size(TABLE); ++i) {
        const MessageEntry& before = TABLE[i - 1];
        const MessageEntry& entry = TABLE[i];
        if (entry.set < before.set || (entry.set == before.set && entry.number <= before.number))
            return false;
    }
    return true;
}
static_assert(is_ascending(), "sets and numbers ascend, and no pair stands twice");

bool is_open() {
    return catd != NO_CATALOGUE;
}

}  // namespace

const char* text_of(Message message) {
    return text_or(message, TABLE[static_cast<std::size_t>(message)].text);
}

const char* english_text_of(Message message) {
    return TABLE[static_cast<std::size_t>(message)].text;
}

const char* text_or(Message message, const char* other_default) {
    const MessageEntry& entry = TABLE[static_cast<std::size_t>(message)];
    return ::catgets(catd, entry.set, entry.number, other_default);
}

// Not a printf format: a translation is only data.
std::string text_of(Message message, unsigned number) {
    std::string text = text_of(message);
    const std::size_t place = text.find("%d");
    if (place != std::string::npos) text.replace(place, 2, std::to_string(number));
    return text;
}

std::string text_of(Message message, std::initializer_list<std::string_view> details) {
    std::vector<std::string> words;
    for (const std::string_view detail : details) words.push_back(escaped(detail));
    return filled(text_of(message), words);
}

std::string text_of(Message one, Message many, unsigned number) {
    return number == 1 ? text_of(one) : text_of(many, number);
}

std::string count_text(unsigned number, Message message) {
    return std::to_string(number) + ' ' + text_of(message);
}

std::span<const MessageEntry> message_table() {
    return TABLE;
}

void open_catalogue() {
    catd = ::catopen("glyphward", NL_CAT_LOCALE);
}

void close_catalogue() {
    if (!is_open()) return;
    ::catclose(catd);
    catd = NO_CATALOGUE;
}

}  // namespace gw
