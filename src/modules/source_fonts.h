// SPDX-License-Identifier: MIT
//
// What the modules find out about the fonts of a source, which no index lists: their names and families, and
// whether they can be installed at all.
#pragma once

#include <vector>

#include "core/failure.h"
#include "fontfiles/font_verdict.h"
#include "model/gw_font.h"

namespace gw {

/// The mark in lists for what is wrong with a font ("[Damaged]"); "" when nothing is.
[[nodiscard]] std::string mark_of(const Verdict& verdict);

/// Gives each font (by its first file) the names that an index would have for it, and its family as the font
/// writes it. A font without any name gets an obstacle, unless it has a name already. One that has PostScript
/// outlines in OpenType will be converted.
void name_source_fonts(const std::vector<GWFont*>& fonts);

/// As long as one exists, `name_source_fonts` only notes the fonts; the end of it names them all. The tools
/// take long to start, so fonts of many directories are named in one run.
class NamedTogether {
  public:
    NamedTogether();
    ~NamedTogether();
    NamedTogether(const NamedTogether&) = delete;
    NamedTogether& operator=(const NamedTogether&) = delete;

  private:
    std::vector<GWFont*> fonts_;
    friend void name_source_fonts(const std::vector<GWFont*>& fonts);
};

/// As long as one exists, `name_source_fonts` runs no tool, and is a hundred times as fast: a font gets one
/// name, of the family and the style that it calls itself. That is for a list that waits for all names, which
/// need not be the same. A font that does not say what it is gets an obstacle.
class NamedAtSight {
  public:
    NamedAtSight();
    ~NamedAtSight();
    NamedAtSight(const NamedAtSight&) = delete;
    NamedAtSight& operator=(const NamedAtSight&) = delete;
};

/// As long as one exists, fonts are judged when they are named, while the tools run: that is where no list
/// waits to be shown, and every font is to be judged anyhow.
class JudgedWhenNamed {
  public:
    JudgedWhenNamed();
    ~JudgedWhenNamed();
    JudgedWhenNamed(const JudgedWhenNamed&) = delete;
    JudgedWhenNamed& operator=(const JudgedWhenNamed&) = delete;
};

/// Looks into the font's file, at the first call: damaged files, and files that are no fonts, are an obstacle
/// from then on. A success if the font policy does not ask for it.
Outcome check_source_font(GWFont& font);

}  // namespace gw
