// SPDX-License-Identifier: MIT
//
// Keeps the list of installed fonts as it is on the disk and on the server, whatever other programs do.
#pragma once

namespace gw {

/// From now on the list is filled again soon after another program has changed fonts of a listed directory:
/// not more often than once in a second, and not while fonts are installed or deleted or conflicts are
/// decided. What is selected stays selected, and the list is not scrolled. Rows whose fonts the server does
/// not have are marked.
void follow_other_programs();

/// The lists of fonts, which the program has changed or filled itself, are on the screen now.
void note_shown_fonts();

}  // namespace gw
