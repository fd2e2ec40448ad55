// SPDX-License-Identifier: MIT
#include "app/program/failures.h"

#include <cstdio>

#include "app/kit/messages.h"

namespace gw {

namespace {

const std::string INDENTATION(4, ' ');

/// The words in windows for a reason of the program, not of the system.
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

std::string reason_in_words(const Failure& failure) {
    return failure.reason == Reason::SYSTEM ? failure.reason_text() : reason_message(failure.reason);
}

/// The words in windows for what follows from a failure; "" when the window itself shows it.
std::string sequel_message(Sequel sequel) {
    switch (sequel) {
        case Sequel::NOT_LISTED_NEXT_TIME:
            return text_of(Message::NOT_LISTED_NEXT_TIME);
        case Sequel::UNKNOWN_TO_PROGRAMS:
            return text_of(Message::UNKNOWN_TO_PROGRAMS);
        default:
            return "";
    }
}

}  // namespace

void say_on_standard_error(const Failure& failure) {
    // Kept: some lines on standard error do not name the program.
    const bool as_perror = failure.reason == Reason::SYSTEM && failure.sequel == Sequel::NONE;
    std::fprintf(stderr, "%s%s\n", as_perror ? "" : "glyphward: ", failure.text().c_str());
}

void say_on_standard_error(const FontReport& report) {
    for (const FontReport::Entry& entry : report.failed()) {
        if (!was_always_silent(entry.why.reason)) say_on_standard_error(entry.why);
    }
}

std::string failure_line(const Failure& failure) {
    return failure.subject + ": " + reason_in_words(failure);
}

std::vector<std::string> failure_lines(const Failure& failure) {
    std::vector<std::string> lines = {failure_line(failure)};
    if (std::string follows = sequel_message(failure.sequel); !follows.empty()) {
        if (const std::size_t place = follows.find("%s"); place != std::string::npos)
            follows.replace(place, 2, failure.detail);
        lines.push_back(INDENTATION + follows);
    }
    return lines;
}

std::vector<std::string> failure_lines(const FontReport& report) {
    std::vector<std::string> lines;
    for (const FontReport::Entry& entry : report.failed()) {
        lines.push_back(entry.font + ": " + reason_in_words(entry.why));
        lines.push_back(INDENTATION + entry.why.subject);
    }
    return lines;
}

}  // namespace gw
