// SPDX-License-Identifier: MIT
//
// Which cures there are for what a diagnosis has found. They are planned from the answer, and from looks at
// the files that they would change; nothing is changed and the server is not asked.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"

namespace gw::diagnosis {

/// The cures for all of the answer but its own `cures`, the one that helps first. `BRING_BACK` is not among
/// them (see deleted_font.h).
[[nodiscard]] std::vector<Cure> plan_cures(const Answer& answer, const Surroundings& surroundings);

/// Whether the server has an answer already, and be it an alias that leads nowhere: a new alias is to hide
/// it.
[[nodiscard]] bool has_an_answer(const Answer& answer);

/// Makes the font `font` known by a name that programs which ask for `wanted` (a name, an alias or a pattern)
/// get; none where no alias can do that. The user chooses the font among `Answer::nearest`. `in_front` where
/// the server has an answer to `wanted` already, which the alias is to hide.
[[nodiscard]] std::optional<Cure> alias_cure(const std::string& wanted, const std::string& font,
                                             bool in_front, const Surroundings& surroundings);

}  // namespace gw::diagnosis
