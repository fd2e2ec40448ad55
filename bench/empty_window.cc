// SPDX-License-Identifier: MIT
//
// A Motif window with an empty list, and nothing else: what such a window costs whoever opens it.
#include <X11/Intrinsic.h>
#include <Xm/List.h>

int main(int argc, char** argv) {
    XtAppContext context = nullptr;
    Widget shell = XtAppInitialize(&context, "EmptyWindow", nullptr, 0, &argc, argv, nullptr, nullptr, 0);
    char name[] = "list";
    XtManageChild(XmCreateScrolledList(shell, name, nullptr, 0));
    XtRealizeWidget(shell);
    XtAppMainLoop(context);
}
