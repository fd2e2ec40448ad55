// SPDX-License-Identifier: MIT
//
// The cure that gives a font another name.
#pragma once

#include "core/failure.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

Result<Deed> add_alias(const Cure& cure, ServerView& server, const Surroundings& surroundings);

}  // namespace gw::diagnosis
