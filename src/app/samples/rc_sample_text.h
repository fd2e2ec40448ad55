// SPDX-License-Identifier: MIT
//
// The sample text as it is kept between runs, per user, in ".glyphwdrc"; and the conversions of point sizes.
// No widget is touched here.
#pragma once

#include <string>

/// The text of the user's file; the default for the superuser and where there is no file to read.
std::string get_rc_sample_text();

/// Keeps `text` for the user: the file is rewritten whole. 0 for the superuser or when the file cannot be
/// written, else 1; without a home directory there is nothing to write, which is fine.
int write_rc_sample_text(const char* text);

/// Points to decipoints ("12" to "120") and back ("120" to "12").
std::string convert_to_decipoint(const char* pt);
std::string convert_to_point(const char* dp);
