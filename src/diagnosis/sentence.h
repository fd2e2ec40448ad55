// SPDX-License-Identifier: MIT
//
// What the diagnosis says, as values: windows show them in the user's language, commands in English.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gw::diagnosis {

enum class Said {
#define SENTENCE(number, name, text) name,
#include "diagnosis/sentences.def"
#undef SENTENCE
};

struct Sentence {
    Said said;
    std::vector<std::string> details = {};  ///< for "{1}" to "{9}" of its text

    bool operator==(const Sentence&) const = default;
};

/// `text` with the details, escaped, in the places of "{1}" to "{9}". A place without a detail stays empty.
[[nodiscard]] std::string filled_in(std::string_view text, const std::vector<std::string>& details);

[[nodiscard]] std::string in_english(const Sentence& sentence);

}  // namespace gw::diagnosis
