// SPDX-License-Identifier: MIT
//
// Goes through the numbers of a binary font file. What lies behind the end of the file is 0, and is
// remembered.
#pragma once

#include <array>

#include "fontfiles/font_bytes.h"

namespace gw {

class FontNumbers {
  public:
    enum class Order { LOW_FIRST, HIGH_FIRST };

    FontNumbers(const FontBytes& bytes, std::size_t start, Order order)
        : bytes_(bytes), place_(start), order_(order), is_inside_(start <= bytes.size()) {}

    void set_order(Order order) { order_ = order; }
    std::size_t u8() { return take(1); }
    std::size_t u16() { return take(2); }
    std::size_t u32() { return take(4); }
    /// Goes on behind so many bytes.
    void skip(std::size_t count) {
        is_inside_ = is_inside_ && count <= bytes_.size() - place_;
        if (is_inside_) place_ += count;
    }
    /// Whether everything until here is in the file.
    [[nodiscard]] bool is_inside() const { return is_inside_; }
    [[nodiscard]] std::size_t place() const { return place_; }

  private:
    std::size_t take(std::size_t count) {
        std::array<unsigned char, 4> raw = {};
        const std::size_t start = place_;
        skip(count);
        if (!is_inside_ || bytes_.read(start, raw.data(), count) != count) {
            is_inside_ = false;
            return 0;
        }
        std::size_t number = 0;
        for (std::size_t i = 0; i < count; ++i)
            number = number << 8 | raw[order_ == Order::HIGH_FIRST ? i : count - 1 - i];
        return number;
    }

    const FontBytes& bytes_;
    std::size_t place_;
    Order order_;
    bool is_inside_;
};

}  // namespace gw
