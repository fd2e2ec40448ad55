// SPDX-License-Identifier: MIT
//
// Which fonts are nearest to a name that no font has, and what keeps each from being the one. Only names are
// compared: no file is opened, and no server asked.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "diagnosis/answer.h"

namespace gw::diagnosis {

/// A font that may be near: one line of an index or alias file, or a name that the server lists.
struct Candidate {
    std::string name;     ///< a full XLFD name with its 14 fields, or an alias
    std::string file;     ///< absolute path; "" when it is not known
    std::string element;  ///< of the server's path, or the directory that is not on it
    bool is_served = false;
};

/// The nearest of the candidates to `wanted`, a pattern, a full name or an alias: at most `most`, the nearest
/// first. Among equals a served one comes first, and then the order of the candidates decides. A face is
/// there once: of its sizes the nearest, of the charsets of an outline the nearest, and of equal names the
/// first that is served. What has nothing in common with `wanted` is left out.
///
/// An outline, whose index has no size, has every size: its name in the result has the sizes that `wanted`
/// asks for. A name without 14 fields is compared with the aliases among the candidates; a pattern that has
/// fewer fields because of an asterisk is compared with full names, each asterisk standing for any number of
/// fields.
[[nodiscard]] std::vector<NearFont> find_nearest(const std::string& wanted,
                                                 const std::vector<Candidate>& candidates,
                                                 std::size_t most = MOST_NEAR);

}  // namespace gw::diagnosis
