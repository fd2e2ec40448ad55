// SPDX-License-Identifier: MIT
//
// The texts for users, looked up in the message catalogue. The table is messages.def.
#pragma once

#include <nl_types.h>

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

extern nl_catd catd;  ///< the open message catalogue; -1 without one

namespace gw {

enum class Message {
#define MSG(set, number, name, text) name,
#include "texts/messages.def"
#undef MSG
};

/// The text in the user's language, or the default when there is no catalogue. Valid while the catalogue is
/// open.
const char* text_of(Message message);
/// The text of the table, whatever the user's language.
const char* english_text_of(Message message);
/// The same entry of the catalogue with another default.
const char* text_or(Message message, const char* other_default);
/// The same with `number` in place of its "%d".
std::string text_of(Message message, unsigned number);
/// The same with `details`, escaped, in place of its "%s", in order.
std::string text_of(Message message, std::initializer_list<std::string_view> details);

/// `one` where the number is 1, otherwise `many` with the number.
std::string text_of(Message one, Message many, unsigned number);

/// `number`, a blank, and the text. Kept: a count does not change the words after it.
std::string count_text(unsigned number, Message message);

/// One text with its numbers in the catalogue.
struct MessageEntry {
    int set;
    int number;
    const char* text;  ///< the default
};
/// All texts, in the order of `Message`.
std::span<const MessageEntry> message_table();

/// Opens the catalogue for the current locale. Without one the defaults are used.
void open_catalogue();
void close_catalogue();

}  // namespace gw
