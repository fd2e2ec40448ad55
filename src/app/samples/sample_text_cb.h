// SPDX-License-Identifier: MIT
//
// Draws the sample line in the font that is selected in a list.
#pragma once

#include "app/samples/sample_record.h"

#include <X11/Intrinsic.h>

/// Installs the handler of X errors and reads the user's sample text.
void init_sample_text_cb_module();

/// The selection callback of a list that shows samples.
void hrn_list_sample_cb(Widget list, sample_text_cb_struct* record, XtPointer call_data);
