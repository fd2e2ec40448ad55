// SPDX-License-Identifier: MIT
//
// The fields of an XLFD name (X Logical Font Description Conventions, version 1.5).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace gw {

/// Fourteen texts in one piece of memory, because lists have many thousands of them. At first all are empty.
/// A text has no NUL in it.
class XlfdFields {
  public:
    static constexpr std::size_t COUNT = 14;
    static constexpr std::size_t LIMIT = 127;  ///< bytes of a field; what is longer is cut off

    /// The field, 0 to 13, with a NUL behind it. Valid until the next change of any field.
    [[nodiscard]] const char* c_str(std::size_t field) const { return text_.c_str() + starts_.at(field); }
    [[nodiscard]] std::string_view operator[](std::size_t field) const { return c_str(field); }

    void set(std::size_t field, std::string_view value);
    /// Takes all fields from a name that begins with a dash.
    void take(std::string_view name);
    /// The name that the fields make.
    [[nodiscard]] std::string name() const;

  private:
    using Texts = std::array<std::string_view, COUNT>;
    void join(const Texts& texts);

    std::string text_;  // each field with a NUL behind it
    std::array<std::uint16_t, COUNT> starts_ = {};
};

}  // namespace gw
