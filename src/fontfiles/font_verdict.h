// SPDX-License-Identifier: MIT
//
// Whether a font can be installed: a look at the file before it goes in.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "fontfiles/font_bytes.h"
#include "fontfiles/font_face.h"

namespace gw {

struct Verdict {
    enum class Kind {
        OK,
        DAMAGED,          ///< something is missing or cannot be read
        NOT_A_FONT,       ///< something else
        EMPTY,            ///< no bytes, or no characters
        NOT_FOR_SERVERS,  ///< a good font that no X server opens
        UNREADABLE,       ///< it cannot be opened, or not within the limits of memory and time
    };
    Kind kind = Kind::OK;
    Failure why = {};  ///< unless it is `OK`
    /// What the first face says of itself; none when the look at the file did not come so far.
    std::optional<FaceFacts> facts = {};
};

/// Looks at all of a file: whether it is complete, whether FreeType opens its faces (the first hundred), and
/// whether their glyphs can be loaded: some of an outline font, all of a bitmap font. Unpacking and opening
/// may take a second of the processor each; a font of which not all glyphs have been loaded after a third of
/// a second is judged by those that have been.
[[nodiscard]] Verdict judge(const std::string& path);
/// The same for a file that is open already.
[[nodiscard]] Verdict judge(const std::shared_ptr<const FontBytes>& bytes);
/// What it means for a font that opening it has failed like this.
[[nodiscard]] Verdict verdict_of(const Failure& failure);

}  // namespace gw
