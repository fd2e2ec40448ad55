// SPDX-License-Identifier: MIT
#include "app/program/failures.h"

#include <cstdio>

#include "app/kit/messages.h"

namespace gw {

namespace {

/// The window's words for a reason that is not the system's.
const char* reason_message(Reason reason) {
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

}  // namespace

void say_on_standard_error(const Failure& failure) {
    // Kept: some lines on standard error do not name the program.
    const bool as_perror = failure.reason == Reason::SYSTEM && failure.sequel == Sequel::NONE;
    std::fprintf(stderr, "%s%s\n", as_perror ? "" : "glyphward: ", failure.text().c_str());
}

std::string reason_text(const Failure& failure) {
    return failure.reason == Reason::SYSTEM ? failure.reason_text() : reason_message(failure.reason);
}

}  // namespace gw
