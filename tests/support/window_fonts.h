// SPDX-License-Identifier: MIT
//
// The scalable fonts of the program's windows, the same in every test: the sizes of windows must not depend
// on which fonts a machine has.
#pragma once

#include <cstdlib>

namespace gw::test {

/// Chooses the fonts of tests/support/fonts.conf for this process and those that it starts, before the first
/// window is made. A test that has chosen others by FONTCONFIG_FILE keeps them.
inline void use_window_fonts() {
    ::setenv("FONTCONFIG_FILE", GLYPHWARD_TREE "/tests/support/fonts.conf", 0);
}

}  // namespace gw::test
