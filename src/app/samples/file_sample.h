// SPDX-License-Identifier: MIT
//
// The sample of a font that the X server does not have, drawn from its file, in the place of the field with
// the sample.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "fontfiles/font_face.h"

#include <X11/Intrinsic.h>

namespace gw {

class FileSample {
  public:
    FileSample() = default;
    FileSample(const FileSample&) = delete;
    FileSample& operator=(const FileSample&) = delete;

    /// Makes the picture in the field's form. It covers the field while it shows anything. The sample must
    /// live as long as the widgets.
    void create(Widget form, Widget field, const char* name = "_file_sample");
    /// Draws `text`, or letters that the font has, `pixels` high, in a face of the file; 0 is the first.
    /// Fails when the file cannot be drawn; then the picture is hidden.
    Outcome show(const std::string& file, const std::string& text, int pixels, long face = 0);
    void hide();

    [[nodiscard]] Widget picture() const { return picture_; }

  private:
    void paint() const;

    Widget picture_ = nullptr;
    std::vector<GlyphImage> glyphs_;  ///< in their order
    int pixels_ = 0;
};

}  // namespace gw
