// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace gw::test {

/// The readable part of a bold Type 1 font, from which lists take its name. It has no glyphs.
inline std::string type1_header(const std::string& family) {
    return "%!PS-AdobeFont-1.0: " + family + "\n/FamilyName (" + family +
           ") def\n/Weight (Bold) def\n/ItalicAngle 0 def\n/Notice (Adobe) def\n"
           "/Encoding StandardEncoding def\ncurrentfile eexec\n";
}

}  // namespace gw::test
