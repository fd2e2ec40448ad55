// SPDX-License-Identifier: MIT
//
// Deleting the fonts that are selected in the main window: the question, one font per idle step, and what
// could not be deleted.
#pragma once

#include <X11/Intrinsic.h>

/// The callback of both Delete controls.
void delete_btn_cb(Widget w, XtPointer client_data, XtPointer call_data);
/// What the user has answered; 0 changes nothing.
void delete_confirmed_cb(char confirmed);
/// The work procedure: true when there is nothing more to do.
Boolean delete_work_proc(XtPointer work);
