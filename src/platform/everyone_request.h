// SPDX-License-Identifier: MIT
//
// An ordinary user's request that fonts are installed for everyone. The polkit service asks for an
// administrator's password and starts our program as the superuser (see docs/EVERYONE.md); the fonts are read
// here, with the rights of the user, and sent to it. Nothing here waits: the caller does, in a loop of its
// own.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "platform/font_stream.h"

namespace gw {

/// Whether this machine can ask for a password: pkexec, our program and its policy are there.
[[nodiscard]] bool can_ask_for_everyone();

/// The command that does it. It asks nothing itself: a program that the desktop or the caller has started
/// does.
[[nodiscard]] std::vector<std::string> everyones_command();

/// For tests: this command is there and is the one that does it; an empty one takes that back.
void set_everyones_command(std::vector<std::string> command);

/// What an administrator would type to install these files and directories.
[[nodiscard]] std::string administrators_command(const std::vector<std::string>& paths);

struct SentFile {
    std::string name;  ///< in the stream
    std::string path;
    std::uint64_t size = 0;  ///< set by `leave_out_unsendable`
};

/// Takes out of the list what cannot be sent, and returns why: it cannot be read, its name is none for a
/// stream or is taken by a file before it, it is too large, or there are too many.
std::vector<Failure> leave_out_unsendable(std::vector<SentFile>& files);

/// What came of a request.
struct EveryoneAnswer {
    enum class Kind {
        ANSWERED,        ///< see the other members
        NOT_GIVEN,       ///< the question for the password was dismissed
        NOT_AUTHORISED,  ///< the password was wrong, or nobody could be asked
        CANCELLED,       ///< before anything was installed
        NO_ANSWER,       ///< the program did not start, or did not answer
    };
    /// What the program gives as a reason; see docs/JSON.md. "" and 0 where there is none.
    struct Why {
        std::string reason;  ///< in English
        std::string code;
        std::string detail;
        int error = 0;
    };
    struct Font {
        std::string font;
        std::string result;  ///< "installed", "replaced", "kept", "already there" or "failed"
        Why why;
        std::vector<std::string> files = {};  ///< by their names in the stream; none in an older program's
    };
    struct Problem {
        std::string subject;
        Why why;
    };
    /// The code for a font whose name others have; the detail is their files, separated by ", ", where they
    /// can be replaced.
    static constexpr const char* NAME_TAKEN = "NAME_TAKEN";

    Kind kind = Kind::NO_ANSWER;
    int status = 0;  ///< the program's exit status
    bool changed = false;
    std::vector<Font> fonts;
    std::vector<Problem> problems;
};

/// Reads the program's answer; the kind is `NO_ANSWER` for a text that is none.
[[nodiscard]] EveryoneAnswer read_everyones_answer(const std::string& text);

class EveryoneRequest {
  public:
    /// For files that `leave_out_unsendable` has left.
    EveryoneRequest(std::vector<SentFile> files, NameTaken decision);
    /// Cancels what is not over.
    ~EveryoneRequest();
    EveryoneRequest(const EveryoneRequest&) = delete;
    EveryoneRequest& operator=(const EveryoneRequest&) = delete;

    /// Starts the command.
    Outcome start(const std::vector<std::string>& command);
    /// Where the next bytes are written, and the answer is read; -1 when there is nothing to be written or
    /// read any more.
    [[nodiscard]] int sending_end() const { return is_sent_ ? -1 : to_.get(); }
    [[nodiscard]] int answering_end() const { return from_.get(); }
    /// Writes or reads what is possible without waiting, and a bounded amount of it.
    void send_more();
    void read_more();
    /// All is sent: the fonts are being installed.
    [[nodiscard]] bool is_sent() const { return is_sent_; }
    [[nodiscard]] bool is_over() const { return is_over_; }
    /// Before all is sent, nothing will be installed; later, no more fonts than those that are whole and the
    /// one in work. The answer still comes.
    void cancel();
    /// When it is over.
    [[nodiscard]] EveryoneAnswer answer() const;

  private:
    bool has_more_to_send();
    bool begin_next_file();
    void finish();

    std::vector<SentFile> files_;
    std::size_t next_ = 0;  // the file that is sent, or the one behind the last
    Descriptor file_;
    std::uint64_t left_ = 0;  // bytes of it
    bool has_ended_ = false;  // the mark of the end is in `waiting_`, or sent
    std::string waiting_;     // bytes that are to be written
    Descriptor to_;
    Descriptor from_;
    pid_t child_ = -1;
    std::string text_;
    int status_ = -1;
    bool is_sent_ = false;
    bool is_over_ = false;
    bool is_cancelled_ = false;
};

}  // namespace gw
