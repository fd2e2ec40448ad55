// SPDX-License-Identifier: MIT
//
// Which pixels the X server sets for a text in a font, and whether a window shows just these. Include it
// last.
#pragma once

#include <string>
#include <vector>

namespace gw::e2e {

class DrawnText {
  public:
    /// Lets the server draw the text. There is no ink when it has no font of exactly this name or pattern.
    DrawnText(const std::string& font, const std::string& text);

    [[nodiscard]] int ink() const;
    /// Whether the text, in black on another colour, is somewhere in the picture, whose rows have `width`
    /// pixels.
    [[nodiscard]] bool is_in(const std::vector<unsigned long>& picture, int width) const;
    bool operator==(const DrawnText&) const = default;

  private:
    [[nodiscard]] bool is_at(const std::vector<bool>& black, int picture_width, int x, int y) const;
    [[nodiscard]] bool has_ink(int x, int y) const {
        return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                       static_cast<std::size_t>(x)];
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<bool> pixels_;  // row by row
};

}  // namespace gw::e2e
