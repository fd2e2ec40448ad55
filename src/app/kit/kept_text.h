// SPDX-License-Identifier: MIT
//
// Keeps the whole text of a text field: the field itself drops the characters that its font lacks.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

/// As long as the user changes nothing, the part that the field shows stands for the whole text.
class KeptText {
  public:
    KeptText() = default;
    explicit KeptText(Widget text_field) : field_(text_field) {}

    /// Shows `text` in the field, as far as its font can.
    void show(const std::string& text);
    /// The text that was shown last; or, when the user has changed the field, the text in the field.
    [[nodiscard]] std::string text() const;
    /// Call this when the field shows `text`, which is this text, in another font than before.
    void shown_again(const std::string& text);

    [[nodiscard]] Widget field() const { return field_; }

  private:
    Widget field_ = nullptr;
    std::string text_;
    std::string shown_;  ///< what the field showed of it
};

}  // namespace gw
