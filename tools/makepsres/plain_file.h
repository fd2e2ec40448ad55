// SPDX-License-Identifier: MIT
//
// Reads files that somebody else has made. Such a file may be a named pipe, which would wait for a writer for
// ever, a device, or larger than the memory.
#pragma once

#include <cstddef>
#include <string>

namespace gw::psres {

struct FileBytes {
    std::string bytes;
    std::string failure;  ///< why there are none; empty when the file was read
};

/// The first `limit` bytes of a plain file; links are followed. Anything else is not opened.
[[nodiscard]] FileBytes read_plain_file(const std::string& path, std::size_t limit);

/// Whether the path is a plain file, or a link to one.
[[nodiscard]] bool is_plain_file(const std::string& path);

}  // namespace gw::psres
