// SPDX-License-Identifier: MIT
//
// Reading a file that somebody else has put there: it may be a named pipe, which would wait for a writer for
// ever, a device, or larger than the memory.
#pragma once

#include <cstddef>
#include <string>

namespace gw::psres {

struct FileBytes {
    std::string bytes;
    std::string failure;  ///< why there are none; empty when the file was read
};

/// The first `limit` bytes of a plain file, or of what a link to one leads to. Anything else is not opened.
[[nodiscard]] FileBytes read_plain_file(const std::string& path, std::size_t limit);

/// Whether the path leads to a plain file.
[[nodiscard]] bool is_plain_file(const std::string& path);

}  // namespace gw::psres
