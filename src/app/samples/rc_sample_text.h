// SPDX-License-Identifier: MIT
//
// The sample text as it is kept between runs, per user, in ".glyphwdrc"; and the conversions of point sizes.
// No widget is touched here.
#pragma once

#include <string>

#include "core/failure.h"

/// The text of the user's file; the default for the superuser and where there is no file to read.
std::string get_rc_sample_text();

/// Keeps `text` for the user: the file is rewritten whole. A failure for the superuser, and when the file
/// cannot be written; without a home directory there is nothing to write, which is fine.
gw::Outcome keep_rc_sample_text(const std::string& text);
/// The same as a number: 1 or 0.
int write_rc_sample_text(const char* text);

/// Points to decipoints ("12" to "120") and back ("120" to "12").
std::string convert_to_decipoint(const char* pt);
std::string convert_to_point(const char* dp);
