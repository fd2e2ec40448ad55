// SPDX-License-Identifier: MIT
//
// The tool's messages on standard error, one line each: "makepsres: PATH: REASON".
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace gw::psres {

/// `text` on one line: control characters are shown as "?".
[[nodiscard]] std::string one_line(std::string_view text);

class Notices {
  public:
    /// Writes to `stream`, which must outlive this object. When `is_quiet`, only `failed` writes.
    Notices(std::ostream& stream, bool is_quiet) : out(stream), quiet(is_quiet) {}

    /// Reports something that is left out or could not be read; the run continues.
    void skipped(std::string_view path, std::string_view reason);
    /// Reports why the run fails, also when quiet.
    void failed(std::string_view path, std::string_view reason);

  private:
    void say(std::string_view path, std::string_view reason);

    std::ostream& out;
    bool quiet;
};

}  // namespace gw::psres
