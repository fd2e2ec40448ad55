// SPDX-License-Identifier: MIT
//
// The cures that change font paths: a directory comes to them, a dead element leaves them.
#pragma once

#include "core/failure.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

Result<Deed> serve_directory(const Cure& cure, ServerView& server, const Surroundings& surroundings);
Result<Deed> read_again(const Cure& cure, ServerView& server);
Result<Deed> take_off_dead(const Cure& cure, ServerView& server);

}  // namespace gw::diagnosis
