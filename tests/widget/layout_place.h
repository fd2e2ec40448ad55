// SPDX-License-Identifier: MIT
//
// Where the layout is looked at, in which locale and on which screen: each place has an executable of its
// own.
#pragma once

namespace gw::test {

extern const char* const LAYOUT_LOCALE;
/// The language of its texts as data/locales.txt calls it, or "C".
extern const char* const LAYOUT_LANGUAGE;
/// Dots per inch: of the screen, and of the desktop's fonts. 0 leaves those of the sandbox.
extern const int LAYOUT_SERVER_DPI;
extern const int LAYOUT_XFT_DPI;

}  // namespace gw::test
