// SPDX-License-Identifier: MIT
//
// The cure that lets the X server read files and directories of this user's own. Nothing else gets other
// permissions: no link's target, no file with a second name, nothing that the cure does not name.
#pragma once

#include "core/failure.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

Result<Deed> make_readable(const Cure& cure, ServerView& server, const Surroundings& surroundings);

}  // namespace gw::diagnosis
