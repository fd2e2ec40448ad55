// SPDX-License-Identifier: MIT
//
// Guards for work that handles events while the program is busy. In these events the user may ask for the
// same again, or for something else.
#pragma once

namespace gw {

/// Numbers the requests of one kind. Code that answers a request, and handles events meanwhile, must check
/// before it shows the answer whether a newer request has come:
///
///     const Generation::Ticket ticket = requests.begin();
///     ... events are served ...
///     if (requests.is_stale(ticket)) return;
class Generation {
  public:
    enum class Ticket : unsigned {};

    /// Begins a new request: all earlier tickets become stale.
    Ticket begin() { return newest_ = Ticket{static_cast<unsigned>(newest_) + 1}; }
    /// The ticket of the newest request.
    [[nodiscard]] Ticket newest() const { return newest_; }
    [[nodiscard]] bool is_stale(Ticket ticket) const { return ticket != newest_; }

    /// Says that the request was answered.
    void finish(Ticket ticket) { finished_ = ticket; }
    /// Whether the newest request has no answer yet. False before the first one.
    [[nodiscard]] bool is_pending() const { return finished_ != newest_; }

  private:
    Ticket newest_{};
    Ticket finished_{};
};

/// Marks work that must not run twice at the same time, until the end of a scope. The events that it handles
/// may start the same work again: then the second `Turn` is not the first, and the work must return at once.
class Turn {
  public:
    explicit Turn(Generation& work)
        : work_(work), is_first_(!work.is_pending()), ticket_(is_first_ ? work.begin() : work.newest()) {}
    ~Turn() {
        if (is_first_) work_.finish(ticket_);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// False while the same work already runs.
    [[nodiscard]] bool is_first() const { return is_first_; }

  private:
    Generation& work_;
    bool is_first_;
    Generation::Ticket ticket_;
};

}  // namespace gw
