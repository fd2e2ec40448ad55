// SPDX-License-Identifier: MIT
//
// The two objects of the running program that the drivers reach for, for tests that have no program around
// them.
#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "modules/gw_fsm_list.h"

GWFontPath* the_font_path = nullptr;
GW_FSM_LIST the_fsm_list;
