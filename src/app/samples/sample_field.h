// SPDX-License-Identifier: MIT
//
// Text fields that show a text in a font of the user's choice.
#pragma once

#include <string>

#include "app/kit/signal.h"
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
/// The same for a font that is known by its full name only. `file` is the font's, "" when it is not known.
bool show_in_name(Widget field, const std::string& xlfd, const std::string& text, const std::string& file);

/// Says in the label, from now on, why the field shows no sample; "" otherwise.
void explain_samples_in(Widget field, Widget status);

/// Emitted with a field and the name of the font that it has no sample of, or with "" when it shows a sample,
/// or is to show none.
Signal<Widget, const std::string&>& sample_absences();

/// The resolution of the screen in dots per inch: what the desktop says, or else what the server says.
[[nodiscard]] int screen_resolution();

/// Says that the entry which is selected has no font any more.
void explain_missing_font(Widget field);

/// For a request that draws nothing itself: makes all earlier requests stale too.
void forget_older_samples();

}  // namespace gw
