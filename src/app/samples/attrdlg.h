// SPDX-License-Identifier: MIT
//
// The attributes dialog: the attributes of one font or one alias. It stays open while other fonts are
// selected.
#pragma once

#include "model/gw_alias.h"
#include "model/gw_font.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

extern Widget wi_attr_dlg;
extern int attr_dlg_managed;  ///< 1 while the dialog is shown
extern Widget wi_font_hrn_name, wi_font_xlfd_name, wi_font_loc_name;
extern Widget wi_foundry_name, wi_charset_name, wi_spacing_name;
extern Widget wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name;

Widget create_attr_dlg(const char* name, Widget parent);

/// Show the dialog with the attributes of a font (at `location`; null: the font's own) or of an alias.
/// `entry` is the entry of the list that the font was chosen from: the names of all its sizes are shown. The
/// file of the font is looked into later, while the program is idle.
void show_font_attributes(GWFont* font, const char* location, const GWHRNElement* entry = nullptr);
void show_alias_attributes(const GWAlias* alias);
/// Empties all values; the dialog stays as it is.
void clear_attributes();
/// Non-zero while the dialog is shown.
int is_attr_dlg_displayed();

namespace gw {

class FontDetails;

/// The lower part of the dialog; null where windows do not show the details of a font.
FontDetails* font_details();
/// Closes the file of the font that is shown, so that its medium can be ejected.
void release_shown_font();

}  // namespace gw
