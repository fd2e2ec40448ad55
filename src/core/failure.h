// SPDX-License-Identifier: MIT
//
// A step that was refused or failed, as a value: what it was about, why, and what follows from it for the
// user's fonts. Steps answer with an `Outcome`, or with a `Result` where they have something to give; whoever
// asked decides what becomes of it. What happens where nobody asks (in the functions whose answer is a number
// or nothing) is handed to the program's listener. The engine itself prints nothing.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace gw {

enum class Reason {
    SYSTEM,  ///< what the system said: `Failure::error`
#define REASON(name, text) name,
#include "core/failures.def"
};

enum class Sequel {
    NONE,
#define SEQUEL(name, text) name,
#include "core/failures.def"
};

struct Failure {
    std::string subject;  ///< a path, mostly; otherwise what was tried
    Reason reason = Reason::SYSTEM;
    int error = 0;  ///< the `errno` of a reason of the system's
    Sequel sequel = Sequel::NONE;
    std::string detail = {};  ///< what the text of the sequel has a place for

    /// The failure of a call of the system about `subject`.
    [[nodiscard]] static Failure of_system(std::string subject, int error);
    /// The same failure with what follows from it.
    [[nodiscard]] Failure with(Sequel what_follows, std::string its_detail = {}) const;

    /// Why, in English or, for a reason of the system's, in the language of the locale.
    [[nodiscard]] std::string reason_text() const;
    /// "SUBJECT: REASON" and, where something follows, "; SEQUEL".
    [[nodiscard]] std::string text() const;

    bool operator==(const Failure&) const = default;
};

/// Done, or why not. True when it was done.
class [[nodiscard]] Outcome {
  public:
    Outcome() = default;
    Outcome(Failure failure) : failure_(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return !failure_; }
    /// Only of one that was not done.
    [[nodiscard]] const Failure& failure() const { return *failure_; }
    /// The same outcome; a failure with what follows from it.
    [[nodiscard]] Outcome with(Sequel what_follows, std::string detail = {}) const;

    bool operator==(const Outcome&) const = default;

  private:
    std::optional<Failure> failure_;
};

inline Outcome done() {
    return {};
}

/// A value, or why there is none. True when there is one.
template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : content_(std::move(value)) {}            // NOLINT(google-explicit-constructor)
    Result(Failure failure) : content_(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return std::holds_alternative<T>(content_); }
    [[nodiscard]] T& operator*() { return std::get<T>(content_); }
    [[nodiscard]] const T& operator*() const { return std::get<T>(content_); }
    [[nodiscard]] T* operator->() { return &std::get<T>(content_); }
    [[nodiscard]] const T* operator->() const { return &std::get<T>(content_); }
    /// Only of one without a value.
    [[nodiscard]] const Failure& failure() const { return std::get<Failure>(content_); }

  private:
    std::variant<T, Failure> content_;
};

using FailureListener = void (*)(const Failure&);

/// From now on `listener` hears of the failures that nobody asks for; null for nobody. Returns the one
/// before.
FailureListener listen_to_failures(FailureListener listener);
/// Hands a failure, or that of an outcome that was not done, to the listener.
void tell(const Failure& failure);
/// Returns whether it was done.
bool tell_unless_done(const Outcome& outcome);

}  // namespace gw
