// SPDX-License-Identifier: MIT
//
// What the user wants to know: the name of a font, found in whatever was pasted. Messages of programs are
// recognised by their shapes (see message_shapes.def, which says which program prints what).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/sentence.h"

namespace gw::diagnosis {

enum class Wanted {
    FONT,       ///< `name` is a pattern, an alias or the full name of a font
    FONTSET,    ///< `name` is a comma-separated list of base font names, as `XCreateFontSet` takes it
    FILE,       ///< `name` is the absolute path of a font file
    DIRECTORY,  ///< `name` is an absolute path, or an element of a font path
    PATH,       ///< the font path as a whole; `element` is the one that a message is about
};

struct Question {
    Wanted wanted = Wanted::FONT;
    std::string name = {};
    int element = 0;                   ///< 1-based place on the server's path; 0 for none
    std::string program = {};          ///< that printed the message; "" when it did not say
    std::string line = {};             ///< what it was found in
    std::vector<Sentence> notes = {};  ///< what the message itself means, in words
};

/// No more is read of what was pasted, and no more questions are found in it.
inline constexpr std::size_t MOST_PASTED = 1 << 20;
inline constexpr std::size_t MOST_QUESTIONS = 50;

/// The questions in a pasted text, in its order, each once. Lines that are no message and have no name of a
/// font are passed over, unless there is nothing else: then a single word is taken as a name. A message
/// without a name ("Missing charsets in String to FontSet conversion") belongs to the name in the lines
/// around it.
[[nodiscard]] std::vector<Question> read_questions(std::string_view pasted);

}  // namespace gw::diagnosis
