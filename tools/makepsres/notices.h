// SPDX-License-Identifier: MIT
//
// What the tool says on standard error: one line each, "makepsres: PATH: what is the matter".
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace gw::psres {

/// `text` on one line: control characters are shown as "?".
[[nodiscard]] std::string one_line(std::string_view text);

class Notices {
  public:
    /// Writes to `stream`, which must outlive it; a quiet one says only what ends the run.
    Notices(std::ostream& stream, bool is_quiet) : out(stream), quiet(is_quiet) {}

    /// Something is left out, or could not be read; the run goes on.
    void skipped(std::string_view path, std::string_view reason);
    /// The run fails; said always.
    void failed(std::string_view path, std::string_view reason);

  private:
    void say(std::string_view path, std::string_view reason);

    std::ostream& out;
    bool quiet;
};

}  // namespace gw::psres
