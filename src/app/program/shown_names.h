// SPDX-License-Identifier: MIT
//
// Names of fonts as windows show them: with their marks ("[Read Only]", "[Damaged]") in the user's language
// and, in a list, in a column of their own.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

/// The name of an entry without "[Read Only]" and the blanks in front of it.
[[nodiscard]] std::string without_read_only_mark(std::string_view name);

/// The name with the mark in the user's language behind it, if it has one. As it is where windows show names
/// as they are.
[[nodiscard]] std::string name_for_window(std::string_view name);

/// The column in which the marks of fonts that are not installed stand in a list of these names, which may
/// have marks already.
[[nodiscard]] std::size_t mark_column_for_source(const std::vector<std::string>& names);
/// The row for a name in such a list. It does not have "[Read Only]": what may be removed is not the question
/// there. The name as it is where windows show names as they are.
[[nodiscard]] std::string name_for_source(std::string_view name, std::size_t mark_column);

/// The names in a list, each with what is to stand behind it: "[Read Only]", in one column, and then
/// `marks[i]`, which may be "" or missing, in the next one.
[[nodiscard]] std::vector<std::string> names_in_columns(const std::vector<std::string>& names,
                                                        const std::vector<std::string>& marks);

}  // namespace gw
