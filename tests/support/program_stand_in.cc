// SPDX-License-Identifier: MIT
//
// Defines the two program-wide objects that the drivers use, for tests without the program.
#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "modules/gw_fsm_list.h"

GWFontPath* the_font_path = nullptr;
GW_FSM_LIST the_fsm_list;
