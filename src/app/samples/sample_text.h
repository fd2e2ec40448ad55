// SPDX-License-Identifier: MIT
//
// The text that samples show. It is kept here and not in a text field, because a field drops the characters
// that its font does not have.
#pragma once

#include <string>

#include "app/kit/signal.h"
#include "core/failure.h"

#include <X11/Intrinsic.h>

/// The greatest length of the sample text in bytes.
inline constexpr std::size_t SAMPLE_TEXT_LIMIT = 1000;
extern std::string sample_text;

/// Makes `text` the sample text, saves it in the user's file, and shows it. Returns 1; or 0 for the superuser
/// or when the file cannot be written: then nothing changes.
int set_rc_sample_text(const char* text);

namespace gw {

/// The same; a failure says why nothing changes.
Outcome keep_sample_text(const std::string& text);

}  // namespace gw

/// Callback for changes of a sample field: what the user types becomes the sample text.
void set_sample_text_cb(Widget field, XtPointer client_data, XtPointer call_data);

namespace gw {

/// Reads the sample text from the user's file.
void read_sample_text();

/// Emitted when the sample text has changed, with the field that the user typed it into, or null.
Signal<Widget>& sample_text_changes();

}  // namespace gw
