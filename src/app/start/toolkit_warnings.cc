// SPDX-License-Identifier: MIT
#include "app/start/toolkit_warnings.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "core/text.h"

#include <X11/Intrinsic.h>

namespace gw {

namespace {

// When the machine does not have the locale, other programs say so too. All texts are English then.
bool is_locale_noise(std::string_view warning) {
    return warning.find("locale not supported by C library") != std::string_view::npos;
}

void quiet_about_fonts(String warning) {
    if (!is_font_noise(warning) && !is_locale_noise(warning))
        std::fprintf(stderr, "glyphward: %s\n", warning);
}

/// In place of the toolkit's function that puts the words of a warning together: for the superuser it does
/// not, because old systems had no safe way to do so, and warns instead that it will not. Nobody could tell
/// what that is about.
void put_together(String name, String type, String kind, String text, String* words, Cardinal* count) {
    constexpr int LONGEST = 1024;
    std::array<char, LONGEST> found = {};
    XtGetErrorDatabaseText(name, type, kind, text, found.data(), LONGEST);
    std::vector<std::string> all;
    for (Cardinal i = 0; words != nullptr && count != nullptr && i < *count; ++i)
        all.emplace_back(words[i] != nullptr ? words[i] : "");
    std::string warning = filled(found.data(), all);
    quiet_about_fonts(warning.data());
}

}  // namespace

// When the server lacks a font, the toolkit replaces it; when a font lacks a character, the toolkit leaves it
// out. The user need not read about either on the terminal.
bool is_font_noise(std::string_view warning) {
    for (const std::string_view noise :
         {"to type Font", "Missing charsets", "not supported in font", "Cannot load font", "No font found"}) {
        if (warning.find(noise) != std::string_view::npos) return true;
    }
    return false;
}

void listen_to_toolkit() {
    XtSetWarningHandler(quiet_about_fonts);
    if (::geteuid() == 0 || ::getuid() != ::geteuid()) XtSetWarningMsgHandler(put_together);
}

}  // namespace gw
