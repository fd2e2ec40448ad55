// SPDX-License-Identifier: MIT
//
// The 14 fields of a full name of a font (X Logical Font Description), and of a pattern for one.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace gw::diagnosis {

enum class Field : std::size_t {
    FOUNDRY,
    FAMILY,
    WEIGHT,
    SLANT,
    SETWIDTH,
    STYLE,
    PIXELS,
    POINTS,  ///< decipoints
    X_RESOLUTION,
    Y_RESOLUTION,
    SPACING,
    AVERAGE_WIDTH,  ///< tenths of a pixel
    REGISTRY,
    ENCODING,
};
inline constexpr std::size_t XLFD_FIELDS = 14;

/// By `Field`. The views are parts of the name.
class XlfdFields : public std::array<std::string_view, XLFD_FIELDS> {
  public:
    using std::array<std::string_view, XLFD_FIELDS>::operator[];
    std::string_view& operator[](Field field) { return (*this)[static_cast<std::size_t>(field)]; }
    std::string_view operator[](Field field) const { return (*this)[static_cast<std::size_t>(field)]; }

    /// An outline, or what else has every size: the sizes in its name are 0.
    [[nodiscard]] bool is_scalable() const;
};

/// The fields of a full name; no value if it has not 14 of them.
[[nodiscard]] std::optional<XlfdFields> fields_of(std::string_view name);

/// The fields of a pattern, "*" for what it leaves open. An asterisk may stand for several fields; where it
/// is not clear for how many, what stands behind it decides by its form ("bold" is a weight, "120" a size).
/// No value for what is no pattern of a full name.
[[nodiscard]] std::optional<XlfdFields> fields_of_pattern(std::string_view pattern);

/// Whether `text` matches a pattern with "*" and "?", letters in both cases.
[[nodiscard]] bool matches(std::string_view text, std::string_view pattern);

/// The number in a field; no value if it is none.
[[nodiscard]] std::optional<int> number_in(std::string_view field);

}  // namespace gw::diagnosis
