// SPDX-License-Identifier: MIT
//
// What the attributes dialog says about the file of a font, as texts.
#pragma once

#include <string>
#include <vector>

#include "fontfiles/font_face.h"
#include "model/gw_hrn_list.h"

namespace gw {

/// What is known without opening a file.
struct ShownFont {
    Ref<GWFont> font;                ///< null for no font
    std::vector<std::string> paths;  ///< of its files; the first one is opened
    std::string file;                ///< the name of the first file
    std::string directory;           ///< of that file, ending in "/"
    long face = 0;                   ///< which font of the first file it is
    std::vector<std::string> names;  ///< all its names that programs can ask for
};

/// With an `entry` of a list that has bitmaps of several sizes, the names are those of all its sizes.
[[nodiscard]] ShownFont shown_font(GWFont& font, const GWHRNElement* entry);

/// What the files have on disk, in words; or why that is not known.
[[nodiscard]] std::string size_in_words(const std::vector<std::string>& paths);

/// What the font is; what it becomes when it is installed, if that is something else, or why it cannot be
/// installed, as far as that is known.
[[nodiscard]] std::string format_in_words(const FaceFacts& facts, bool is_compressed, const GWFont& font);

}  // namespace gw
