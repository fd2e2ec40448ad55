// SPDX-License-Identifier: MIT
//
// The two objects of the running program that the drivers reach for. The application makes them; tests make
// their own.
#pragma once

class GWFontPath;
class GW_FSM_LIST;

/// The font path of the running installation; null until start-up has made it.
extern GWFontPath* the_font_path;
/// The type modules in use.
extern GW_FSM_LIST the_fsm_list;
