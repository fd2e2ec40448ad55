// SPDX-License-Identifier: MIT
//
// What became of the fonts that were to be installed or deleted, gathered font by font, so that the user can
// be told at the end which of them were not, and why.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "model/gw_font.h"

namespace gw {

class FontReport {
  public:
    /// One font to which nothing was done.
    struct Entry {
        std::string font;  ///< its human-readable name
        Failure why;
    };

    /// Notes how it went with `font`; returns whether it was done.
    bool note(GWFont& font, const Outcome& outcome);
    /// Takes the entries of `other` over, behind its own.
    void append(const FontReport& other);
    void clear() { entries.clear(); }
    /// Hands the failures to the listener for failures, but for what has always been left out without a word.
    void tell() const;

    [[nodiscard]] const std::vector<Entry>& failed() const { return entries; }

  private:
    std::vector<Entry> entries;
};

}  // namespace gw
