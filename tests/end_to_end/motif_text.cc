// SPDX-License-Identifier: MIT
//
// A Motif program as there are many: a text widget, whose font is that of the resource "fontList".
#include <Xm/Text.h>

int main(int argc, char** argv) {
    XtAppContext context = nullptr;
    Widget shell = XtVaOpenApplication(&context, "MotifText", nullptr, 0, &argc, argv, nullptr,
                                       sessionShellWidgetClass, nullptr);
    XtVaCreateManagedWidget("text", xmTextWidgetClass, shell, XmNcolumns, 30, XmNcursorPositionVisible, False,
                            XmNvalue, argc > 1 ? argv[1] : "", nullptr);
    XtRealizeWidget(shell);
    XtAppMainLoop(context);
}
