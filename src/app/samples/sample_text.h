// SPDX-License-Identifier: MIT
//
// The text that samples show. It lives here and not in a text field: a field drops the characters that its
// current font has no width for.
#pragma once

#include <string>

#include "app/kit/signal.h"
#include "core/failure.h"

#include <X11/Intrinsic.h>

/// Bytes of the sample text.
inline constexpr std::size_t SAMPLE_TEXT_LIMIT = 1000;
extern std::string sample_text;

/// Keeps `text` as the sample text, in the user's file too, and shows it; 0 (and nothing changes) for the
/// superuser or when the file cannot be written, else 1.
int set_rc_sample_text(const char* text);

namespace gw {

/// The same, and why nothing changes.
Outcome keep_sample_text(const std::string& text);

}  // namespace gw

/// A sample field was changed; a user's edit becomes the sample text.
void set_sample_text_cb(Widget field, XtPointer client_data, XtPointer call_data);

namespace gw {

/// The text that the user keeps becomes the sample text.
void read_sample_text();

/// The sample text has become another one. The listener gets the field that it was typed into; null where it
/// was not.
Signal<Widget>& sample_text_changes();

}  // namespace gw
