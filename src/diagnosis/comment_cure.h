// SPDX-License-Identifier: MIT
//
// The cure for a "fonts.alias" that the server refuses, and for aliases that lead nowhere: their lines become
// comments, in which the user finds them again.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

Result<Deed> comment_out(const Cure& cure, ServerView& server, const Surroundings& surroundings);

/// The numbers, "3, 7"; of many only the first ones.
[[nodiscard]] std::string line_numbers(const std::vector<int>& lines);

}  // namespace gw::diagnosis
