// SPDX-License-Identifier: MIT
//
// Names of fonts, font sets and directories as people and programs write them: in resource files, on command
// lines, in the middle of a sentence.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/question.h"

namespace gw::diagnosis {

/// Asks about a name: a font, a font set if it has several, or a path. A question without a name if there is
/// nothing in it.
[[nodiscard]] Question question_about(std::string_view name);

/// Asks about each entry of a font list of Motif ("name=tag,name2;name3:tag2"): an entry that ends in a
/// colon, or whose names are separated by semicolons, is a font set.
[[nodiscard]] std::vector<Question> questions_about_list(std::string_view list);

/// What a path says, in any of the ways in which a path of fonts is written ("~/", "file://"): as it would
/// stand on a font path. "" if it is none.
[[nodiscard]] std::string path_in(std::string_view text);

/// The questions in a line that is no message: a resource, a command line, names and paths. `is_alone` when
/// the whole text is this line: then it may be a path with blanks.
[[nodiscard]] std::vector<Question> questions_in_line(std::string_view line, bool is_alone);

/// Whether the text begins as the full name of a font does, or a pattern for one.
[[nodiscard]] bool begins_full_name(std::string_view text);

}  // namespace gw::diagnosis
