// SPDX-License-Identifier: MIT
//
// A refused or failed operation as a value: its subject, the reason, and the consequence for the user's
// fonts. Operations return an `Outcome`, or a `Result` if they have a value to return, and the caller decides
// what to do with it. Functions that return a number or nothing pass their failures to the program's
// listener. The engine itself prints nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace gw {

enum class Reason {
    SYSTEM,  ///< a reason of the system: see `Failure::error`
#define REASON(name, text) name,
#include "core/failures.def"
};

/// The name of the reason, as it stands above and in core/failures.def, for programs.
[[nodiscard]] const char* name_of(Reason reason);
/// The other way round; nothing for what is no name.
[[nodiscard]] std::optional<Reason> reason_called(std::string_view name);

enum class Sequel {
    NONE,
#define SEQUEL(name, text) name,
#include "core/failures.def"
};

struct Failure {
    std::string subject;  ///< usually a path; otherwise the operation
    Reason reason = Reason::SYSTEM;
    int error = 0;  ///< the `errno`, for a reason of the system
    Sequel sequel = Sequel::NONE;
    std::string detail = {};  ///< inserted into the text of the reason or the sequel

    /// The failure of a system call for `subject`.
    [[nodiscard]] static Failure of_system(std::string subject, int error);
    /// The same failure with its consequence.
    [[nodiscard]] Failure with(Sequel what_follows, std::string its_detail = {}) const;

    /// Whether the disk, or the user's share of it, is full.
    [[nodiscard]] bool is_lack_of_room() const;
    /// Whether what was looked for, or a directory on the way to it, is not there.
    [[nodiscard]] bool is_absence() const;
    /// The reason, in English; a reason of the system is in the language of the locale.
    [[nodiscard]] std::string reason_text() const;
    /// `text` with the detail in the place of "%s".
    [[nodiscard]] std::string with_detail(std::string text) const;
    /// "SUBJECT: REASON", and "; SEQUEL" if there is a consequence.
    [[nodiscard]] std::string text() const;

    bool operator==(const Failure&) const = default;
};

/// Success, or the failure. True for success.
class [[nodiscard]] Outcome {
  public:
    Outcome() = default;
    Outcome(Failure failure) : failure_(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return !failure_; }
    /// Only for a failure.
    [[nodiscard]] const Failure& failure() const { return *failure_; }
    /// The same outcome; a failure gets this consequence.
    [[nodiscard]] Outcome with(Sequel what_follows, std::string detail = {}) const;

    bool operator==(const Outcome&) const = default;

  private:
    std::optional<Failure> failure_;
};

inline Outcome done() {
    return {};
}

/// A value, or the failure. True when there is a value.
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
    /// Only for a failure.
    [[nodiscard]] const Failure& failure() const { return std::get<Failure>(content_); }

  private:
    std::variant<T, Failure> content_;
};

using FailureListener = void (*)(const Failure&);

/// Sets the listener, which gets the failures that no caller can get; null for none. Returns the old one.
FailureListener listen_to_failures(FailureListener listener);
/// Passes a failure to the listener.
void tell(const Failure& failure);
/// Passes the failure of an outcome, if it is one, to the listener. Returns whether the outcome is a success.
bool tell_unless_done(const Outcome& outcome);

}  // namespace gw
