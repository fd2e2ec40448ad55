// SPDX-License-Identifier: MIT
//
// What all commands of `glyphward-fonts` share: their options and their exit status.
#pragma once

#include <string>

#include "core/failure.h"

namespace gw::fonts {

struct Settings {
    bool json = false;     ///< one JSON document on standard output, and no other text there
    bool dry_run = false;  ///< nothing is changed; what would be is said
    bool quiet = false;    ///< no text on standard output
    bool nul = false;      ///< names end in a NUL byte, where they are read and written
    std::string root;      ///< the installation below this directory; "" for that of the running system
};

/// The exit status.
enum class Status {
    DONE = 0,       ///< yes, or done
    FAILED = 1,     ///< no, or some of it failed
    USAGE = 2,      ///< the command line is wrong
    ALREADY = 3,    ///< it was so already, and nothing was to be done
    COULD_NOT = 4,  ///< it could not ask, or could not begin
};

/// What has come of the parts of a command, and what that makes of the whole.
class Tally {
  public:
    void done() { done_ = true; }
    void already() { already_ = true; }
    void failed() { failed_ = true; }
    /// The same; somebody else's lock is told from other failures.
    void failed(const Failure& why) { (why.reason == Reason::IN_USE ? is_locked_ : failed_) = true; }
    /// What has come of the parts of another one, too.
    void add(const Tally& other) {
        done_ = done_ || other.done_;
        already_ = already_ || other.already_;
        add_failures(other);
    }
    void add_failures(const Tally& other) {
        failed_ = failed_ || other.failed_;
        is_locked_ = is_locked_ || other.is_locked_;
    }

    /// `FAILED` when a part failed, `COULD_NOT` when there was nothing but locks, `ALREADY` when no part had
    /// anything to do, or else `DONE`.
    [[nodiscard]] Status status() const {
        if (failed_ || (is_locked_ && done_)) return Status::FAILED;
        if (is_locked_) return Status::COULD_NOT;
        return already_ && !done_ ? Status::ALREADY : Status::DONE;
    }

  private:
    bool done_ = false;
    bool already_ = false;
    bool failed_ = false;
    bool is_locked_ = false;
};

}  // namespace gw::fonts
