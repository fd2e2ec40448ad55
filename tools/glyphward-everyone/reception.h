// SPDX-License-Identifier: MIT
//
// Receives the stream of fonts (see docs/EVERYONE.md) into a directory that only this user can enter.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "core/directory.h"
#include "platform/font_stream.h"
#include "platform/scratch.h"

namespace gw::everyone {

/// Who sends nothing for so long is not waited for.
inline constexpr std::chrono::seconds PATIENCE(60);

class Reception {
  public:
    Reception();

    /// Reads from the descriptor until the end of the stream is there. Returns "", or why nothing can be
    /// installed: the stream is wrong, is cut short or does not go on, there is no room for it, or the work
    /// is interrupted. A terminal is no stream.
    [[nodiscard]] std::string receive(int fd, std::chrono::milliseconds patience = PATIENCE);

    [[nodiscard]] NameTaken decision() const { return reader_.decision(); }
    /// The directory, ending in "/".
    [[nodiscard]] std::string directory() const { return directory_.path() + '/'; }
    /// The paths of the files that are to be installed: all but the metrics of a font that is among them.
    [[nodiscard]] std::vector<std::string> sources() const;

  private:
    bool begin_file(const std::string& name);
    bool take_bytes(std::string_view bytes);
    bool end_file();
    bool fail(int error);

    ShortLivedDirectory directory_;
    std::vector<std::string> names_;
    Descriptor file_;
    int error_ = 0;  // why a file could not be written
    FontStreamReader reader_;
};

}  // namespace gw::everyone
