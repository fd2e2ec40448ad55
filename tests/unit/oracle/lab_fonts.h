// SPDX-License-Identifier: MIT
//
// Bitmap fonts of any name and height for comparisons with a real X server.
#pragma once

#include <string>

namespace gw::test {

/// The full name of a size of a family.
inline std::string lab_name(const std::string& family, int pixels, int points,
                            const std::string& rest = "75-75-c-80") {
    return "-lab-" + family + "-medium-r-normal--" + std::to_string(pixels) + '-' + std::to_string(points) +
           '-' + rest + "-iso8859-1";
}

/// A font with one letter. Without a charset, X servers end when they open it beside outlines
/// (libXfont2 2.0.6).
inline std::string lab_bdf(const std::string& name, int ascent) {
    const std::string height = std::to_string(ascent);
    return "STARTFONT 2.1\nFONT " + name + "\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 4\n" +
           "CHARSET_REGISTRY \"ISO8859\"\nCHARSET_ENCODING \"1\"\nFONT_ASCENT " + height +
           "\nFONT_DESCENT 0\nENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\n" +
           "SWIDTH 1000 0\nDWIDTH 8 0\nBBX 8 8 0 "
           "0\nBITMAP\nFF\nFF\nFF\nFF\nFF\nFF\nFF\nFF\nENDCHAR\nENDFONT\n";
}

}  // namespace gw::test
