// SPDX-License-Identifier: MIT
//
// The one guard for work that serves events while the program is busy: in these events the user may ask for
// the same again, or for something else.
#pragma once

namespace gw {

/// Numbers the requests of one kind. Who answers a request and serves events meanwhile asks before it shows
/// the answer whether that is still wanted:
///
///     const Generation::Ticket ticket = requests.begin();
///     ... events are served ...
///     if (requests.is_stale(ticket)) return;
class Generation {
  public:
    enum class Ticket : unsigned {};

    /// A request comes: all tickets before this one are stale.
    Ticket begin() { return newest_ = Ticket{static_cast<unsigned>(newest_) + 1}; }
    /// The ticket of the request that came last.
    [[nodiscard]] Ticket newest() const { return newest_; }
    [[nodiscard]] bool is_stale(Ticket ticket) const { return ticket != newest_; }

    /// The request has its answer.
    void finish(Ticket ticket) { finished_ = ticket; }
    /// Whether the newest request is still without an answer. False before the first one.
    [[nodiscard]] bool is_pending() const { return finished_ != newest_; }

  private:
    Ticket newest_{};
    Ticket finished_{};
};

/// One piece of work for the length of a scope, of a kind that must not run twice at a time. Where the events
/// that it serves start the same again, the second one is not the first and leaves at once.
class Turn {
  public:
    explicit Turn(Generation& work)
        : work_(work), is_first_(!work.is_pending()), ticket_(is_first_ ? work.begin() : work.newest()) {}
    ~Turn() {
        if (is_first_) work_.finish(ticket_);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// False while another piece of this work runs.
    [[nodiscard]] bool is_first() const { return is_first_; }

  private:
    Generation& work_;
    bool is_first_;
    Generation::Ticket ticket_;
};

}  // namespace gw
