// SPDX-License-Identifier: MIT
//
// Fonts that programs do not find because somebody has deleted them: they may be in a trash, and come back.
#pragma once

#include "core/failure.h"
#include "diagnosis/answer.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

/// No more deleted fonts are named in an answer.
inline constexpr std::size_t MOST_DELETED = 3;

/// Adds to an answer which fonts that match the question are in a trash that this user can look into, and
/// what brings them back. Nothing is changed.
void add_deleted_fonts(Answer& answer, const Surroundings& surroundings);

/// Brings the font back; undone, it goes into the trash again.
Result<Deed> bring_back(const Cure& cure, ServerView& server, const Surroundings& surroundings);

}  // namespace gw::diagnosis
