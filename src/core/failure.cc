// SPDX-License-Identifier: MIT
#include "core/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "core/text.h"

namespace gw {

namespace {

const char* text_of(Reason reason) {
    switch (reason) {
        case Reason::SYSTEM:
            break;
#define REASON(name, text) \
    case Reason::name:     \
        return text;
#include "core/failures.def"
    }
    return "";
}

const char* text_of(Sequel sequel) {
    switch (sequel) {
        case Sequel::NONE:
            break;
#define SEQUEL(name, text) \
    case Sequel::name:     \
        return text;
#include "core/failures.def"
    }
    return "";
}

struct Named {
    Reason reason;
    const char* name;
};
constexpr Named REASONS[] = {
    {Reason::SYSTEM, "SYSTEM"},
#define REASON(name, text) {Reason::name, #name},
#include "core/failures.def"
};

FailureListener& listener() {
    static FailureListener current = nullptr;
    return current;
}

}  // namespace

const char* name_of(Reason reason) {
    const auto* const found = std::find_if(std::begin(REASONS), std::end(REASONS),
                                           [&](const Named& each) { return each.reason == reason; });
    return found->name;  // all of them are there
}

std::optional<Reason> reason_called(std::string_view name) {
    const auto* const found = std::find_if(std::begin(REASONS), std::end(REASONS),
                                           [&](const Named& each) { return each.name == name; });
    return found != std::end(REASONS) ? std::optional<Reason>(found->reason) : std::nullopt;
}

Failure Failure::of_system(std::string subject, int error) {
    // A failed call without `errno` must not look like a success.
    return {.subject = std::move(subject), .error = error != 0 ? error : EIO};
}

Failure Failure::with(Sequel what_follows, std::string its_detail) const {
    Failure same = *this;
    same.sequel = what_follows;
    if (!its_detail.empty()) same.detail = std::move(its_detail);
    return same;
}

std::string Failure::with_detail(std::string text) const {
    if (const std::size_t place = text.find("%s"); place != std::string::npos)
        text.replace(place, 2, escaped(detail));
    return text;
}

bool Failure::is_lack_of_room() const {
    return reason == Reason::SYSTEM && (error == ENOSPC || error == EDQUOT);
}

bool Failure::is_absence() const {
    return reason == Reason::SYSTEM && (error == ENOENT || error == ENOTDIR);
}

std::string Failure::reason_text() const {
    return reason == Reason::SYSTEM ? std::strerror(error) : with_detail(text_of(reason));
}

std::string Failure::text() const {
    std::string what = escaped(subject) + ": " + reason_text();
    if (sequel == Sequel::NONE) return what;
    return what + "; " + with_detail(text_of(sequel));
}

Outcome Outcome::with(Sequel what_follows, std::string detail) const {
    return failure_ ? Outcome(failure_->with(what_follows, std::move(detail))) : *this;
}

FailureListener listen_to_failures(FailureListener new_listener) {
    return std::exchange(listener(), new_listener);
}

void tell(const Failure& failure) {
    if (listener() != nullptr) listener()(failure);
}

bool tell_unless_done(const Outcome& outcome) {
    if (!outcome) tell(outcome.failure());
    return static_cast<bool>(outcome);
}

}  // namespace gw
