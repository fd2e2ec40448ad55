// SPDX-License-Identifier: MIT
#include "app/kit/attach.h"

#include <algorithm>

namespace gw {

const Attach& Attach::to_form(const char* attachment, const char* offset_name, int offset) const {
    XtVaSetValues(w_, attachment, XmATTACH_FORM, offset_name, offset, nullptr);
    return *this;
}

const Attach& Attach::to_widget(const char* attachment, const char* widget_name, const char* offset_name,
                                Widget w, int offset) const {
    XtVaSetValues(w_, attachment, XmATTACH_WIDGET, widget_name, w, offset_name, offset, nullptr);
    return *this;
}

const Attach& Attach::columns(int left, int right) const {
    XtVaSetValues(w_, XmNleftAttachment, XmATTACH_POSITION, XmNleftPosition, left, XmNrightAttachment,
                  XmATTACH_POSITION, XmNrightPosition, right, nullptr);
    return *this;
}

int natural_height(Widget w) {
    XtWidgetGeometry natural = {};
    XtQueryGeometry(w, nullptr, &natural);
    return natural.height;
}

int centring_offset(Widget low, Widget tall) {
    return std::max((natural_height(tall) - natural_height(low)) / 2, 0);
}

}  // namespace gw
