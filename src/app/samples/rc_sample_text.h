// SPDX-License-Identifier: MIT
//
// The sample text that the program saves for each user in ".glyphwdrc", and conversions of point sizes.
// Nothing here uses a widget.
#pragma once

#include <string>

#include "core/failure.h"

/// The text of the user's file; the default text for the superuser, or when there is no file that can be
/// read.
std::string get_rc_sample_text();

/// Saves `text` in the user's file, which is written anew. Fails for the superuser and when the file cannot
/// be written. Without a home directory nothing is written, and that is no failure.
gw::Outcome keep_rc_sample_text(const std::string& text);
/// The same as a number: 1 or 0.
int write_rc_sample_text(const char* text);

/// Points to decipoints ("12" to "120") and back ("120" to "12").
std::string convert_to_decipoint(const char* pt);
std::string convert_to_point(const char* dp);
