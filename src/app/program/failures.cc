// SPDX-License-Identifier: MIT
#include "app/program/failures.h"

#include <cstdio>
#include <utility>

#include "app/program/window_policy.h"
#include "core/text.h"
#include "texts/messages.h"
#include "texts/reasons.h"

namespace gw {

namespace {

const std::string INDENTATION(4, ' ');
constexpr std::size_t MOST_FAILURES = 5000;  // of a disk that fails at every file

/// What follows from the failure; "" when the window itself shows it.
std::string told_sequel(const Failure& failure) {
    switch (failure.sequel) {
        case Sequel::NOT_LISTED_NEXT_TIME:
        case Sequel::UNKNOWN_TO_PROGRAMS:
        case Sequel::FILE_REMAINS:
        case Sequel::LOST_BY_MKFONTDIR:
        case Sequel::NOT_KEPT:
        case Sequel::FONTS_NOT_LISTED:
            return sequel_in_language(failure);
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
    listing_failures() += failure_line(failure) + "; " + told_sequel(failure);
}

std::vector<FailureText>& gathered() {
    static std::vector<FailureText> failures;
    return failures;
}

void gather(FailureText text, const Failure& failure) {
    const std::string follows = told_sequel(failure);
    if (!follows.empty()) text.more.push_back(follows);
    if (gathered().size() < MOST_FAILURES) gathered().push_back(std::move(text));
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
    gather({escaped(failure.subject), reason_in_words(failure), {}}, failure);
}

void hear_new_failures(FontReport& report) {
    for (const FontReport::Entry& entry : report.take_new()) {
        if (!was_always_silent(entry.why.reason)) say_on_standard_error(entry.why);
        gather({escaped(entry.font), reason_in_words(entry.why), {escaped(entry.why.subject)}}, entry.why);
    }
}

const std::vector<FailureText>& gathered_failure_texts() {
    return gathered();
}

std::vector<std::string> lines_of(const std::vector<FailureText>& failures) {
    std::vector<std::string> lines;
    for (const FailureText& failure : failures) {
        lines.push_back(failure.what + ": " + failure.why);
        for (const std::string& more : failure.more) lines.push_back(INDENTATION + more);
    }
    return lines;
}

std::vector<std::string> gathered_failures() {
    return lines_of(gathered());
}

void forget_failures() {
    gathered().clear();
}

std::vector<std::string> remark_lines(const FontReport& report) {
    std::vector<std::string> lines;
    for (const FontReport::Entry& entry : report.remarks())
        lines.push_back(escaped(entry.font) + ": " + reason_in_words(entry.why));
    return lines;
}

std::string take_scratch_failure() {
    return std::exchange(scratch_failure(), "");
}

std::string take_listing_failures() {
    return std::exchange(listing_failures(), "");
}

std::string reason_in_words(const Failure& failure) {
    const bool is_one_name = failure.reason == Reason::NAMES_LEFT_OUT && failure.detail == "1";
    if (is_one_name && window_policy().speaks_in_sentences()) return text_of(Message::ONE_NAME_LEFT_OUT);
    return reason_in_language(failure);
}

std::string failure_line(const Failure& failure) {
    return escaped(failure.subject) + ": " + reason_in_words(failure);
}

}  // namespace gw
