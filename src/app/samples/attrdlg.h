// SPDX-License-Identifier: MIT
//
// The attributes dialog: the attributes of one font or one alias. It stays open while other fonts are
// selected.
#pragma once

#include "model/gw_alias.h"
#include "model/gw_font.h"

#include <X11/Intrinsic.h>

extern Widget wi_attr_dlg;
extern int attr_dlg_managed;  ///< 1 while the dialog is shown
extern Widget wi_font_hrn_name, wi_font_xlfd_name, wi_font_loc_name;
extern Widget wi_foundry_name, wi_charset_name, wi_spacing_name;
extern Widget wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name;

Widget create_attr_dlg(const char* name, Widget parent);

/// Show the dialog with the attributes of a font (at `location`; null: the font's own) or of an alias.
void show_font_attributes(GWFont* font, const char* location);
void show_alias_attributes(const GWAlias* alias);
/// Empties all values; the dialog stays as it is.
void clear_attributes();
/// Non-zero while the dialog is shown.
int is_attr_dlg_displayed();
