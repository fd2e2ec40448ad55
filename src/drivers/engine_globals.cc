// SPDX-License-Identifier: MIT
#include "drivers/engine_globals.h"

#include "modules/gw_fsm_list.h"

GWFontPath* the_font_path = nullptr;
GW_FSM_LIST the_fsm_list;
