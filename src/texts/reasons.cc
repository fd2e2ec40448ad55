// SPDX-License-Identifier: MIT
#include "texts/reasons.h"

#include <optional>

#include "texts/messages.h"

namespace gw {

namespace {

/// The words for a reason of the program, not of the system.
std::string reason_message(Reason reason) {
    switch (reason) {
        case Reason::SYSTEM:
            break;
#define REASON(name, text) \
    case Reason::name:     \
        return text_of(Message::REASON_##name);
#include "core/failures.def"
    }
    return "";
}

Message message_for(Sequel sequel) {
    switch (sequel) {
        case Sequel::NONE:
            break;
        case Sequel::FONT_LEFT_OUT:
            return Message::FOLLOWS_LEFT_OUT;
        case Sequel::FONT_STAYS:
            return Message::FOLLOWS_STAYS;
        case Sequel::FILE_REMAINS:
            return Message::FILE_REMAINS;
        case Sequel::FONT_PATH_STAYS:
            return Message::FOLLOWS_PATH_STAYS;
        case Sequel::NOT_USED:
            return Message::FOLLOWS_NOT_USED;
        case Sequel::NO_SAMPLES:
            return Message::FOLLOWS_NO_SAMPLES;
        case Sequel::FONTSETS_IN_MEMORY:
            return Message::FOLLOWS_IN_MEMORY;
        case Sequel::FONTSETS_STAY:
            return Message::FOLLOWS_FONTSETS_STAY;
        case Sequel::SESSION_PATH_STAYS:
            return Message::FOLLOWS_SESSION_STAYS;
        case Sequel::NOT_LISTED_NEXT_TIME:
            return Message::NOT_LISTED_NEXT_TIME;
        case Sequel::UNKNOWN_TO_PROGRAMS:
            return Message::UNKNOWN_TO_PROGRAMS;
        case Sequel::FILE_NOT_READ:
            return Message::FOLLOWS_NOT_READ;
        case Sequel::LOST_BY_MKFONTDIR:
            return Message::LOST_BY_MKFONTDIR;
        case Sequel::NOT_KEPT:
            return Message::NOT_KEPT;
        case Sequel::FONTS_NOT_LISTED:
            break;
    }
    return Message::FONTS_NOT_LISTED;
}

}  // namespace

std::string reason_in_language(const Failure& failure) {
    return failure.reason == Reason::SYSTEM ? failure.reason_text()
                                            : failure.with_detail(reason_message(failure.reason));
}

std::string reason_in_language(const EveryoneAnswer::Why& why) {
    if (why.code == EveryoneAnswer::NAME_TAKEN && why.detail.empty())
        return text_of(Message::EVERYONE_NAME_TAKEN);
    if (why.code == EveryoneAnswer::NAME_TAKEN) return text_of(Message::SAYS_FONT_HAS_NAME, {why.detail});
    const std::optional<Reason> reason = reason_called(why.code);
    if (!reason) return why.reason;
    return reason_in_language({.subject = "", .reason = *reason, .error = why.error, .detail = why.detail});
}

std::string sequel_in_language(const Failure& failure) {
    return failure.sequel == Sequel::NONE ? "" : failure.with_detail(text_of(message_for(failure.sequel)));
}

}  // namespace gw
