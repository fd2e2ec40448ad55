// SPDX-License-Identifier: MIT
//
// A text field's text, whole: the field itself drops the characters that its font lacks.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

/// What the field shows of a text stands for the whole of it, as long as the user changes nothing.
class KeptText {
  public:
    KeptText() = default;
    explicit KeptText(Widget text_field) : field_(text_field) {}

    /// The field shows `text`, as far as its font can.
    void show(const std::string& text);
    /// The text that was shown last; when the user has changed what the field shows of it, that.
    [[nodiscard]] std::string text() const;
    /// To be called when the field shows `text`, which is this text, in another font than before.
    void shown_again(const std::string& text);

    [[nodiscard]] Widget field() const { return field_; }

  private:
    Widget field_ = nullptr;
    std::string text_;
    std::string shown_;  ///< what the field showed of it
};

}  // namespace gw
