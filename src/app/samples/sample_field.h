// SPDX-License-Identifier: MIT
//
// Text fields that show a text in a font of the user's choice.
#pragma once

#include <string>

#include "model/gw_alias.h"
#include "model/gw_font.h"

#include <X11/Intrinsic.h>

/// Shows `text` in the font at that size. If the server cannot make the font, the field becomes empty.
void display_text_in_font(Widget field, GWFont* font, const char* decipoints, const char* text);
void display_text_in_alias(Widget field, const GWAlias* alias, const char* text);
/// Shows `text` with a font set of a comma-separated list of names. Returns 1; or 0 when the server or the
/// locale cannot make such a font set: then the field keeps its fonts and its text.
int display_text_in_fontset(Widget field, const char* base_names, const char* text);
/// Empties the field without changing the sample text.
void clear_sample_textfield(Widget field);

namespace gw {

/// Like `display_text_in_font` and `display_text_in_alias`, with a result. They handle events, in which the
/// user may ask for something else: false when a newer request has come, whether or not the field shows this
/// one.
bool show_in_font(Widget field, GWFont* font, const std::string& decipoints, const std::string& text);
bool show_in_alias(Widget field, const GWAlias* alias, const std::string& text);

/// For a request that draws nothing itself: makes all earlier requests stale too.
void forget_older_samples();

}  // namespace gw
