// SPDX-License-Identifier: MIT
//
// Whether the directories of the font path are as they were when their fonts were listed.
#pragma once

namespace gw {

/// The lists of fonts and aliases are about to be read.
void begin_listing();
/// What was read last, or what the program itself has done to fonts since then, is all in the lists.
void note_listed_indexes();
/// False when an index, an alias file or a directory itself was changed by somebody else since then. Looks at
/// the directories that have answered when they were listed.
[[nodiscard]] bool are_indexes_as_listed();

}  // namespace gw
