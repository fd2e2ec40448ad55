// SPDX-License-Identifier: MIT
//
// What is wrong with a command line, in the user's language: the library that reads it knows English only.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace gw::fonts {

[[nodiscard]] std::string in_words(const CLI::ParseError& error);

/// For a value that is one of these words; the help shows them.
[[nodiscard]] CLI::Validator one_of(std::vector<std::string> words);
/// For a number that counts from 1.
[[nodiscard]] CLI::Validator from_one();
/// For a value that has at least a character.
[[nodiscard]] CLI::Validator not_empty();

}  // namespace gw::fonts
