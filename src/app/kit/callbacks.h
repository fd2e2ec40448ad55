// SPDX-License-Identifier: MIT
//
// Helpers for callbacks.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// Calls `Function` with the client data as `Record*`. Only here are the toolkit's pointers cast to ours.
template <class Record, void (*Function)(Widget, Record*, XtPointer)>
void thunk(Widget w, XtPointer client_data, XtPointer call_data) {
    Function(w, static_cast<Record*>(client_data), call_data);
}

/// Callbacks that call a function without arguments, and that show a dialog.
template <void (*Function)()>
void call_cb(Widget, XtPointer, XtPointer) {
    Function();
}
template <Widget& Dialog>
void show_cb(Widget, XtPointer, XtPointer) {
    XtManageChild(Dialog);
}

/// For a control that does nothing although it is sensitive, and for a close box that does not close its
/// window.
inline void do_nothing_cb(Widget, XtPointer, XtPointer) {}

}  // namespace gw
