// SPDX-License-Identifier: MIT
#include "app/start/answers.h"

#include <cstdio>
#include <string_view>

namespace gw {

namespace {

constexpr const char* HELP =
    "Usage: glyphward [TOOLKIT-OPTION]... [FILE]...\n"
    "\n"
    "Lists, previews, installs and deletes the fonts of an X installation, in windows. Files and\n"
    "directories with fonts are offered for installation.\n"
    "\n"
    "  -display DISPLAY   use this X server\n"
    "  -xrm RESOURCE      set a resource, as in a resource file\n"
    "  --help             print this\n"
    "  --version          print the version\n"
    "\n"
    "The manual page, glyphward(1), has the other options. For scripts there is glyphward-fonts(1).\n";

}  // namespace

bool answers_on_the_terminal(int argc, char** argv) {
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--help") {
        std::fputs(HELP, stdout);
    } else if (first == "--version") {
        std::puts("glyphward " GLYPHWARD_VERSION);
    } else {
        return false;
    }
    return true;
}

}  // namespace gw
