// SPDX-License-Identifier: MIT
//
// What callbacks have in common.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// Calls `Function(client data as Record*)`, the casts between the toolkit's pointers and ours being made
/// here alone.
template <class Record, void (*Function)(Widget, Record*, XtPointer)>
void thunk(Widget w, XtPointer client_data, XtPointer call_data) {
    Function(w, static_cast<Record*>(client_data), call_data);
}

/// A callback that calls a function of ours, or shows a dialog.
template <void (*Function)()>
void call_cb(Widget, XtPointer, XtPointer) {
    Function();
}
template <Widget& Dialog>
void show_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(Dialog);
}

/// The callback of a control that does nothing and yet is not insensitive; of a close box, a window that
/// stays.
inline void do_nothing_cb(Widget, XtPointer, XtPointer) {}

}  // namespace gw
