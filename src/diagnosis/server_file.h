// SPDX-License-Identifier: MIT
//
// What becomes of a font file when an X server opens it (libXfont2): some failures let the server look on for
// the name, others end its search.
#pragma once

#include <string>

namespace gw::diagnosis {

enum class FileOpening {
    OPENED,
    NOT_OPENED,  ///< the server looks on, in the next element
    DAMAGED,     ///< the server has begun to read it, and gives up
};

/// Opens a bitmap font as the server does. The path is of a file that is there and may be read.
[[nodiscard]] FileOpening open_bitmap_file(const std::string& path);

/// Opens a face of a file of outlines; 0 is the first.
[[nodiscard]] FileOpening open_outline_file(const std::string& path, int face);

}  // namespace gw::diagnosis
