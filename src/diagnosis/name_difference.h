// SPDX-License-Identifier: MIT
//
// How names of fonts differ, as numbers for a search and as sentences for people.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/sentence.h"
#include "diagnosis/xlfd_fields.h"

namespace gw::diagnosis {

/// How many letters must be changed, added, taken away or exchanged with their neighbour to make one name of
/// the other. Letters count as equal in both cases.
[[nodiscard]] int spelling_difference(std::string_view name, std::string_view other);

/// What two names of families, or foundries, that are not equal have in common.
enum class Likeness {
    SPELLING,  ///< one is the other, spelled wrongly
    DESIGN,    ///< the two are known to look much the same: helvetica, nimbus sans
    PART,      ///< one begins with the other: lucida, lucida bright
    NONE,
};
[[nodiscard]] Likeness likeness(std::string_view name, std::string_view other);

/// Each field that keeps a font from matching a pattern, the weightiest first; none if it matches. An outline
/// has every size.
[[nodiscard]] std::vector<Sentence> differences(const XlfdFields& font, const XlfdFields& wanted);

/// The pattern of a full name that somebody means by a name such as "lucidasans-bold-12" or "9x15"; "" if
/// that is not clear.
[[nodiscard]] std::string meant_by_alias(std::string_view name);

}  // namespace gw::diagnosis
