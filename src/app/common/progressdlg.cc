// SPDX-License-Identifier: MIT
#include "app/common/progressdlg.h"

#include <algorithm>

#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/messages.h"
#include "app/kit/widgets.h"

#include <Xm/Form.h>
#include <Xm/Scale.h>

Widget wi_progress_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;

Widget wi_progress_label = nullptr;
Widget wi_progress_scale = nullptr;
int scale_value = 0;  // what the scale must show

// So that the user cannot move it.
void scale_cb(Widget scale, XtPointer, XtPointer) {
    int value = 0;
    XmScaleGetValue(scale, &value);
    if (value != scale_value) XmScaleSetValue(scale, scale_value);
}

}  // namespace

Widget create_progress_dlg(const char* name, Widget parent) {
    wi_progress_dlg = gw::form_dialog(parent, name, Message::PROGRESS_TITLE);
    wi_progress_label = gw::label(wi_progress_dlg, "action_label", Message::PROGRESS_LABEL);
    Attach(wi_progress_label).top_form(GAP).sides(GAP);

    Arg args[2];
    XtSetArg(args[0], XmNorientation, XmHORIZONTAL);
    XtSetArg(args[1], XmNshowValue, True);
    wi_progress_scale = XmCreateScale(wi_progress_dlg, gw::name_arg("progress_scale"), args, 2);
    XtManageChild(wi_progress_scale);
    Attach(wi_progress_scale).below(wi_progress_label, GAP).sides(GAP).bottom_form(GAP);
    XtAddCallback(wi_progress_scale, XmNvalueChangedCallback, scale_cb, nullptr);
    // The texts are set while the dialog is hidden. It must not shrink to fit them.
    XtVaSetValues(wi_progress_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    // The user cannot close it: it disappears when the work is done.
    gw::end_dialog(wi_progress_dlg, {.close = gw::do_nothing_cb});
    return wi_progress_dlg;
}

void start_progress_dlg(int min, int max, const char* title, const char* label) {
    if (min > max) return;
    scale_value = min;
    // A scale has at least one step.
    XtVaSetValues(wi_progress_scale, XmNminimum, min, XmNmaximum, std::max(max, min + 1), XmNvalue, min,
                  nullptr);
    set_window_title(wi_progress_dlg, title);
    gw::set_label(wi_progress_label, label);
    XtManageChild(wi_progress_dlg);
    gw::draw_at_once(wi_progress_dlg);
}

void update_progress_dlg(int value) {
    scale_value = value;
    XmScaleSetValue(wi_progress_scale, value);
    process_xt_events();
}

void stop_progress_dlg() {
    XtUnmanageChild(wi_progress_dlg);
}
