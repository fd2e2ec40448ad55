// SPDX-License-Identifier: MIT
#include "end_to_end/pattern_font.h"

namespace gw::e2e {

namespace {

constexpr unsigned DESCENT = 2;

std::string hexadecimal(unsigned byte) {
    return {"0123456789ABCDEF"[byte >> 4U & 0xFU], "0123456789ABCDEF"[byte & 0xFU]};
}

}  // namespace

std::string PatternFont::xlfd() const {
    const std::string dpi = std::to_string(resolution);
    return "-own-" + family + '-' + weight + "-r-normal--" + std::to_string(pixels) + '-' +
           std::to_string(decipoints) + '-' + dpi + '-' + dpi + "-c-80-" + charset;
}

std::string PatternFont::bdf() const {
    const auto height = static_cast<unsigned>(pixels);
    const std::string box = "8 " + std::to_string(height) + " 0 -" + std::to_string(DESCENT);
    std::string text = "STARTFONT 2.1\nFONT " + xlfd() + "\nSIZE " + std::to_string(decipoints / 10) + ' ' +
                       std::to_string(resolution) + ' ' + std::to_string(resolution) + "\nFONTBOUNDINGBOX " +
                       box + "\nSTARTPROPERTIES 2\nFONT_ASCENT " + std::to_string(height - DESCENT) +
                       "\nFONT_DESCENT " + std::to_string(DESCENT) + "\nENDPROPERTIES\nCHARS 95\n";
    for (unsigned code = 32; code < 127; ++code) {
        text += "STARTCHAR c" + std::to_string(code) + "\nENCODING " + std::to_string(code) +
                "\nSWIDTH 667 0\nDWIDTH 8 0\nBBX " + box + "\nBITMAP\n";
        for (unsigned row = 0; row < height; ++row)
            text += hexadecimal(code == 32 ? 0 : code * (row * 2 + 3 + number * 2)) + '\n';
        text += "ENDCHAR\n";
    }
    return text + "ENDFONT\n";
}

}  // namespace gw::e2e
