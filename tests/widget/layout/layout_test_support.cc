// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "widget/layout/layout_test_support.h"

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/kit/toolkit.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "platform/host_paths.h"
#include "support/own_server.h"
#include "widget/dialogs_test_support.h"

#include <Xm/CascadeBG.h>
#include <Xm/DrawingA.h>
#include <Xm/Label.h>
#include <Xm/LabelG.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/PushBG.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace gw::test {

namespace {

// A second screen with high resolution; the sandbox's, 1024 x 768, has a low one.
constexpr int FINE_WIDTH = 1920;
constexpr int FINE_HEIGHT = 1080;

/// A drawing area; those inside of scrolled windows are the toolkit's.
bool is_canvas(Widget w) {
    Boolean takes_focus = False;
    XtVaGetValues(w, XmNtraversalOn, &takes_focus, nullptr);
    // A picture that only shows something is none.
    return XmIsDrawingArea(w) && takes_focus != False && !XmIsScrolledWindow(XtParent(w));
}

}  // namespace

void each_part(Widget w, const std::function<void(Widget)>& look) {
    if (!XtIsComposite(w)) return;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        if (!XtIsManaged(children[i])) continue;
        look(children[i]);
        each_part(children[i], look);
    }
}

Box box_of(Widget w) {
    Position x = 0;
    Position y = 0;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
    return {x, y, width, height};
}

bool has_text(Widget w) {
    return XmIsLabel(w) || XmIsLabelGadget(w);
}

bool is_button(Widget w) {
    return XmIsPushButton(w) || XmIsPushButtonGadget(w);
}

bool is_scrolled(Widget w, Widget dialog) {
    for (w = XtParent(w); w != dialog; w = XtParent(w)) {
        if (XmIsScrolledWindow(w)) return true;
    }
    return false;
}

int ring_of(Widget w) {
    return is_button(w) ? 4 : 0;
}

Box box_on_screen(Widget w) {
    const Box box = box_of(w);
    Position x = 0;
    Position y = 0;
    XtTranslateCoords(w, 0, 0, &x, &y);
    return {x, y, box.width, box.height};
}

bool is_mapped(Widget w) {
    XWindowAttributes attributes = {};
    return !XtIsWidget(w) || (XGetWindowAttributes(display, XtWindow(w), &attributes) != 0 &&
                              attributes.map_state == IsViewable);
}

bool is_control(Widget w) {
    if (XmIsLabel(w) || XmIsLabelGadget(w)) {
        return is_button(w) || XmIsToggleButton(w) || XmIsCascadeButtonGadget(w);
    }
    return XmIsList(w) || XmIsText(w) || XmIsTextField(w) || is_canvas(w);
}

void Layout::SetUpTestSuite() {
    for (const char* name : {"LC_ALL", "LANG"}) ::setenv(name, SUITE.locale, 1);
    ::setenv("VANTORHOME", gw::INSTALLATION_ROOT, 1);
    home();
    if (SUITE.server_dpi != 0) static const OwnServer server(FINE_WIDTH, FINE_HEIGHT, SUITE.server_dpi);
    std::vector<std::string> arguments;
    for (const char* support : {"fontset", "printer"}) {
        arguments.insert(arguments.end(),
                         {"-xrm", std::string("Glyphward*gw_") + support + "_support: True"});
    }
    if (SUITE.xft_dpi != 0)
        arguments.insert(arguments.end(), {"-xrm", "Xft.dpi: " + std::to_string(SUITE.xft_dpi)});
    const std::string font = SUITE.font;
    if (!font.empty())
        arguments.insert(arguments.end(), {"-xrm", "Glyphward*gw_interface.fontName: " + font});
    const std::string modern = SUITE.modern_windows ? "True" : "False";
    for (const char* switched : {"fonts", "windows"}) {
        arguments.insert(arguments.end(),
                         {"-xrm", std::string("Glyphward*gw_modern_") + switched + ": " + modern});
    }
    start_program(arguments);
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), SUITE.locale);
}

void Layout::each_window(const std::function<void(Widget)>& look) {
    {
        SCOPED_TRACE("mainWindow");
        look(wi_mainwindow);
    }
    each_dialog([&](const Dialog&, Widget w) { look(w); });
}

void Layout::each_dialog(const std::function<void(const Dialog&, Widget)>& look) {
    for (const Dialog& dialog : dialogs()) {
        if (*dialog.widget == nullptr) {
            EXPECT_STREQ(dialog.name, "modify_fp_dlg") << "made for the superuser alone";
            EXPECT_NE(uid, 0);
            continue;
        }
        SCOPED_TRACE(dialog.name);
        Widget w = *dialog.widget;
        dialog.show();
        EXPECT_TRUE(pump_until([=] { return is_viewable(w); }));
        pump();
        look(dialog, w);
        close_box(w);
        XtUnmanageChild(w);  // some dialogs stay open
        pump();
    }
}

}  // namespace gw::test
