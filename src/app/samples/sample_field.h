// SPDX-License-Identifier: MIT
//
// Text fields that show a text in a font that is not the interface's.
#pragma once

#include <string>

#include "model/gw_alias.h"
#include "model/gw_font.h"

#include <X11/Intrinsic.h>

/// Shows `text` in the font at that size; a font that the server cannot make leaves the field empty.
void display_text_in_font(Widget field, GWFont* font, const char* decipoints, const char* text);
void display_text_in_alias(Widget field, const GWAlias* alias, const char* text);
/// Shows `text` in the fonts of a comma-separated list of names together; 0, and the field keeps its fonts
/// and its text, when the server or the locale cannot make a font set of them, else 1.
int display_text_in_fontset(Widget field, const char* base_names, const char* text);
/// Empties the field; the sample text stays.
void clear_sample_textfield(Widget field);

namespace gw {

/// What `display_text_in_font` and `display_text_in_alias` do, with an answer. They serve events on the way,
/// in which the user may ask for something else: false when a newer request has come, whether or not the
/// field shows this one.
bool show_in_font(Widget field, GWFont* font, const std::string& decipoints, const std::string& text);
bool show_in_alias(Widget field, const GWAlias* alias, const std::string& text);

/// A request that draws nothing itself makes those before it stale too.
void forget_older_samples();

}  // namespace gw
