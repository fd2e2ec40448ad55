// SPDX-License-Identifier: MIT
//
// How every small file of the system is rewritten. For readers the file changes in place, with the same name,
// owner and mode. In case of a crash the change is atomic: the new bytes go to a hidden temporary file in the
// same directory, which is synchronised and renamed. Where the directory does not allow that, or the file has
// other links, the file is overwritten and truncated.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "core/failure.h"

namespace gw {

/// The bytes of a regular file, or why they cannot be read.
Result<std::string> read_file(const std::string& path);

/// Gives the file at `path` the content `bytes`, creating it when it is missing (mode 0644 unless `mode` is
/// given). An existing file keeps its owner, and its permission bits unless `mode` is given. Its modification
/// time grows by at least one whole second, because the X server compares whole seconds to decide whether it
/// rereads an index. After a failure the old content is in place, unless the file could only be overwritten
/// and the disk failed in the middle of that.
Outcome replace_file(const std::string& path, std::string_view bytes, std::optional<mode_t> mode = {});

}  // namespace gw
