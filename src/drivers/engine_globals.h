// SPDX-License-Identifier: MIT
//
// The two program-wide objects that the drivers use. The application defines them; each test defines its own.
#pragma once

class GWFontPath;
class GW_FSM_LIST;

/// The font path of the running installation; null until start-up has made it.
extern GWFontPath* the_font_path;
/// The type modules in use.
extern GW_FSM_LIST the_fsm_list;
