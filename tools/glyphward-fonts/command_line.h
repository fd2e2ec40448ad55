// SPDX-License-Identifier: MIT
//
// The command line of `glyphward-fonts`: which command is meant, and its options.
#pragma once

namespace gw::fonts {

/// Runs what the arguments say, and returns the exit status of the program (see `Status`). Help and the
/// version are printed without looking at anything.
int run(int argc, char** argv);

}  // namespace gw::fonts
