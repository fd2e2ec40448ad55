// SPDX-License-Identifier: MIT
//
// The combination of locale, screen and font that a layout program tests.
#pragma once

namespace gw::test {

struct LayoutSuite {
    const char* locale;
    const char* language;  ///< of its texts as data/locales.txt calls it, or "C"
    int server_dpi;        ///< how fine the server's screen is; 0: the sandbox's
    int xft_dpi;           ///< what the desktop says of the fonts on it; 0: nothing
    bool modern_windows;   ///< whether the windows are those of `gw_modern_windows`
    const char* font;      ///< the scalable font of the interface, or "" for the resource file's
};
extern const LayoutSuite SUITE;

}  // namespace gw::test
