// SPDX-License-Identifier: MIT
//
// A name under which an index lists a font. A scalable font has one for each of its encodings.
#pragma once

#include <string>

namespace gw {

struct IndexName {
    int face = 0;      ///< 0-based place of the font in its file, which may be a collection
    std::string xlfd;  ///< the whole XLFD name
    /// What an index that was read has in front of the file's name (":1:", ":fn=1:"); "" for one to be
    /// written.
    std::string options = {};

    friend bool operator==(const IndexName&, const IndexName&) = default;
};

}  // namespace gw
