// SPDX-License-Identifier: MIT
//
// OpenType fonts with PostScript outlines, made into TrueType fonts: X servers list the former, and open
// none.
//
// FontForge does it, as a program of its own. Of 167 such fonts, with 2,300 names, it keeps every character,
// and a server opens the result under every name. In later runs of mkfontscale all names but four come back:
// those in the encoding of a symbol font, which a TrueType font cannot have. The other candidate, cfftot1,
// makes Type 1 fonts. It is four times as fast, but 1,379 of the names are gone after mkfontscale, a fifth of
// the glyphs has no Unicode code any more, and it refuses the CID-keyed fonts of East Asia.
#pragma once

#include <string>

#include "core/failure.h"

namespace gw {

/// The extension of the files that `convert_outlines` makes.
extern const char* const CONVERTED_EXTENSION;

/// Whether the program that converts is installed. The failure (`Reason::CONVERTER_MISSING`) names its
/// package.
Outcome can_convert();

/// Converts a font of the file; face 0 is the first. Returns the path of a new file in the scratch space,
/// which the caller removes. The same font gives the same bytes. Takes a tenth of a second for most fonts,
/// and 10 to 20 seconds and 1.5 GB of memory for one of 65,000 characters.
///
/// The failure is one of `can_convert` or `FontFace::open`, or `Reason::NOTHING_TO_CONVERT` (no PostScript
/// outlines in OpenType), `MAY_NOT_BE_CONVERTED`, `NOT_CONVERTED` (damaged, as a rule) or
/// `NOT_CONVERTED_IN_TIME`, or `GIVEN_UP`: then the converter has ended, and nothing is left.
Result<std::string> convert_outlines(const std::string& path, int face = 0);

}  // namespace gw
