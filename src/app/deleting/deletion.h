// SPDX-License-Identifier: MIT
//
// Deletes the fonts that are selected in the main window: asks, deletes one font per idle step, and reports
// what could not be deleted.
#pragma once

#include <X11/Intrinsic.h>

/// The callback of both Delete controls.
void delete_btn_cb(Widget w, XtPointer client_data, XtPointer call_data);
/// The user's answer; 0 changes nothing.
void delete_confirmed_cb(char confirmed);
/// The work procedure: true when there is nothing more to do.
Boolean delete_work_proc(XtPointer work);
