// SPDX-License-Identifier: MIT
//
// The modules that the program uses: those of the font types in model/font_types.def.
#pragma once

#include "modules/gw_fsm_list.h"

namespace gw {

// The module of each font type, which is made at its first use. Each is defined in the module's own file.
#define FONT_TYPE(name, number, word, naming, form, module) GW_FSM_BASE& module();
#define UNUSED_FONT_TYPE(name, number, word, naming, form)
#include "model/font_types.def"

/// Appends these modules in the order of the table, which is the order of listings; those of today's formats
/// only if the font policy takes these. From now on the lines of
/// fonts that are brought back are known (see store/leftovers.h).
void append_font_modules(GW_FSM_LIST& list);

}  // namespace gw
