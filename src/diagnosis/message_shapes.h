// SPDX-License-Identifier: MIT
//
// Finds the messages of programs about fonts in a text, by their shapes (message_shapes.def).
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "diagnosis/sentence.h"

namespace gw::diagnosis {

/// What a message has to say about the font.
enum class About {
    FONT,        ///< its name
    SET,         ///< the base names of a font set
    LIST,        ///< a font list of Motif: names with tags
    ELEMENT,     ///< the place of an element on a font path, counted from 0
    NOTHING,     ///< not even its name
    NO_DEFAULT,  ///< not even its name; it is the font that the toolkit takes when all others fail
    NO_DEFAULT_SET,
    SOME_CHARSETS,  ///< not even its name; it is a font set
    PATH,           ///< it is about the font path
    NO_FONT,        ///< it is not about a font
};

struct Message {
    std::size_t begin = 0;  ///< of the part of the text that the shape matches
    std::size_t end = 0;
    About about = About::NOTHING;
    Said said = Said::NOTHING_ASKED;  ///< what the message means
    std::string_view program;         ///< the only one that prints it; "" if there are several
    std::string_view name;            ///< a part of the text; it may go over several lines
};

/// The messages of a text that has been made `readable`, in its order. They do not overlap.
[[nodiscard]] std::vector<Message> find_messages(std::string_view text);

}  // namespace gw::diagnosis
