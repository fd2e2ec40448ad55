// SPDX-License-Identifier: MIT
#include "app/program/failures.h"

#include <cstdio>
#include <utility>

#include "app/kit/messages.h"
#include "core/text.h"

namespace gw {

namespace {

const std::string INDENTATION(4, ' ');
constexpr std::size_t MOST_LINES = 10000;  // of a disk that fails at every file

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
    return failure.reason == Reason::SYSTEM ? failure.reason_text()
                                            : failure.with_detail(reason_message(failure.reason));
}

/// The words in windows for what follows from a failure; "" when the window itself shows it.
std::string sequel_message(Sequel sequel) {
    switch (sequel) {
        case Sequel::NOT_LISTED_NEXT_TIME:
            return text_of(Message::NOT_LISTED_NEXT_TIME);
        case Sequel::UNKNOWN_TO_PROGRAMS:
            return text_of(Message::UNKNOWN_TO_PROGRAMS);
        case Sequel::FILE_REMAINS:
            return text_of(Message::FILE_REMAINS);
        case Sequel::FONTS_NOT_LISTED:
            return text_of(Message::FONTS_NOT_LISTED);
        default:
            return "";
    }
}

std::string& scratch_failure() {
    static std::string line;
    return line;
}

std::string& listing_failures() {
    static std::string line;
    return line;
}

/// Adds what a list lacks to the line about it.
void note_for_list(const Failure& failure) {
    if (!listing_failures().empty()) listing_failures() += "  ";
    listing_failures() += failure_line(failure) + "; " + failure.with_detail(sequel_message(failure.sequel));
}

std::vector<std::string>& gathered() {
    static std::vector<std::string> lines;
    return lines;
}

void gather(const std::string& line) {
    if (gathered().size() < MOST_LINES) gathered().push_back(line);
}

void gather_sequel(const Failure& failure) {
    const std::string follows = failure.with_detail(sequel_message(failure.sequel));
    if (!follows.empty()) gather(INDENTATION + follows);
}

}  // namespace

void say_on_standard_error(const Failure& failure) {
    // Kept: some lines on standard error do not name the program.
    const bool as_perror = failure.reason == Reason::SYSTEM && failure.sequel == Sequel::NONE;
    std::fprintf(stderr, "%s%s\n", as_perror ? "" : "glyphward: ", failure.text().c_str());
}

void hear_failure(const Failure& failure) {
    say_on_standard_error(failure);
    if (failure.sequel == Sequel::NOT_USED || failure.sequel == Sequel::SESSION_PATH_STAYS)
        scratch_failure() = failure_line(failure);
    if (failure.sequel == Sequel::FONTS_NOT_LISTED) note_for_list(failure);
    gather(failure_line(failure));
    gather_sequel(failure);
}

void hear_new_failures(FontReport& report) {
    for (const FontReport::Entry& entry : report.take_new()) {
        if (!was_always_silent(entry.why.reason)) say_on_standard_error(entry.why);
        gather(escaped(entry.font) + ": " + reason_in_words(entry.why));
        gather(INDENTATION + escaped(entry.why.subject));
        gather_sequel(entry.why);
    }
}

std::vector<std::string> gathered_failures() {
    return gathered();
}

void forget_failures() {
    gathered().clear();
}

std::string take_scratch_failure() {
    return std::exchange(scratch_failure(), "");
}

std::string take_listing_failures() {
    return std::exchange(listing_failures(), "");
}

std::string failure_line(const Failure& failure) {
    return escaped(failure.subject) + ": " + reason_in_words(failure);
}

}  // namespace gw
