// SPDX-License-Identifier: MIT
//
// Finds rows of a list of fonts by words that the user types.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

namespace gw {

/// The formats that lists are searched by.
enum class SearchedFormat { TYPE1, TRUETYPE, OPENTYPE, BITMAP, ALIAS };
inline constexpr std::size_t SEARCHED_FORMATS = 5;

/// What is known of a row: all names, files and directories of its fonts, in lower case.
struct SearchedRow {
    std::string text;
    SearchedFormat format = SearchedFormat::BITMAP;
    std::vector<std::string> directories;  ///< each once
};

[[nodiscard]] SearchedRow searched_row(const GWHRNElement& element);
[[nodiscard]] SearchedRow searched_row(const GWAlias& alias);

/// Words, all of which a row must have, in any order and as parts of other words too, whatever their case.
class FontSearch {
  public:
    explicit FontSearch(std::string_view typed = "");

    [[nodiscard]] bool finds(const SearchedRow& row) const;
    /// Whether nothing is asked for, so that it finds all rows.
    [[nodiscard]] bool is_empty() const { return words_.empty(); }

  private:
    std::vector<std::string> words_;
};

}  // namespace gw
