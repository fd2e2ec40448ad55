// SPDX-License-Identifier: MIT
//
// Where the layout is looked at: each place has an executable of its own.
#pragma once

namespace gw::test {

struct LayoutSuite {
    const char* locale;
    const char* language;  ///< of its texts as data/locales.txt calls it, or "C"
    int server_dpi;        ///< how fine the server's screen is; 0: the sandbox's
    int xft_dpi;           ///< what the desktop says of the fonts on it; 0: nothing
};
extern const LayoutSuite SUITE;

}  // namespace gw::test
