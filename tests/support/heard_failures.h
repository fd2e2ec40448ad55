// SPDX-License-Identifier: MIT
//
// Hears the failures that the engine tells during a scope.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "core/failure.h"

namespace gw {

/// How GoogleTest shows a failure.
inline void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.text();
}

}  // namespace gw

namespace gw::test {

class HeardFailures {
  public:
    HeardFailures() : before_(listen_to_failures(hear)) { heard().clear(); }
    ~HeardFailures() { listen_to_failures(before_); }
    HeardFailures(const HeardFailures&) = delete;
    HeardFailures& operator=(const HeardFailures&) = delete;

    [[nodiscard]] const std::vector<Failure>& all() const { return heard(); }
    /// Their texts, each in a line.
    [[nodiscard]] std::string text() const {
        std::string lines;
        for (const Failure& failure : heard()) lines += failure.text() + '\n';
        return lines;
    }

  private:
    static std::vector<Failure>& heard() {
        static std::vector<Failure> failures;
        return failures;
    }
    static void hear(const Failure& failure) { heard().push_back(failure); }

    FailureListener before_;
};

/// What an outcome says, or "" where it was done.
inline std::string text_of(const Outcome& outcome) {
    return outcome ? "" : outcome.failure().text();
}

}  // namespace gw::test
