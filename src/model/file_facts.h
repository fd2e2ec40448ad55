// SPDX-License-Identifier: MIT
//
// What a file looks like from outside, so that two fonts of one name can be told from each other.
#pragma once

#include <sys/types.h>

#include <ctime>
#include <string>

#include "core/failure.h"

namespace gw {

struct FileFacts {
    off_t bytes = 0;
    std::time_t changed = 0;  ///< when its contents changed last
    uid_t owner = 0;
};

/// Links are followed. Fails when there is no such file.
Result<FileFacts> facts_of_file(const std::string& path);

/// Whether two files have the same bytes. Fails when one of them cannot be read, or is not a regular file
/// (`Reason::NOT_A_FILE`).
Result<bool> have_equal_bytes(const std::string& one, const std::string& another);

}  // namespace gw
