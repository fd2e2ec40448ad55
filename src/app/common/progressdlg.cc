// SPDX-License-Identifier: MIT
#include "app/common/progressdlg.h"

#include <algorithm>

#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/Scale.h>

Widget wi_progress_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;

Widget wi_progress_label = nullptr;
Widget wi_progress_scale = nullptr;
Widget wi_name_label = nullptr;     // null where windows do not control work,
Widget wi_cancel_button = nullptr;  // and this too
int scale_value = 0;                // what the scale must show
void (*cancel_work)() = nullptr;

// So that the user cannot move it.
void scale_cb(Widget scale, XtPointer, XtPointer) {
    int value = 0;
    XmScaleGetValue(scale, &value);
    if (value != scale_value) XmScaleSetValue(scale, scale_value);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    if (cancel_work != nullptr) cancel_work();
}

void set_scale(int min, int max) {
    scale_value = min;
    // A scale has at least one step.
    XtVaSetValues(wi_progress_scale, XmNminimum, min, XmNmaximum, std::max(max, min + 1), XmNvalue, min,
                  nullptr);
}

void create_scale(Widget dialog, bool shows_value) {
    Arg args[2];
    XtSetArg(args[0], XmNorientation, XmHORIZONTAL);
    XtSetArg(args[1], XmNshowValue, shows_value);
    wi_progress_scale = XmCreateScale(dialog, gw::name_arg("progress_scale"), args, 2);
    XtManageChild(wi_progress_scale);
    XtAddCallback(wi_progress_scale, XmNvalueChangedCallback, scale_cb, nullptr);
}

int height_of_all() {
    constexpr int GAPS = 10 * GAP;
    Dimension scale = 0;
    XtVaGetValues(wi_progress_scale, XmNheight, &scale, nullptr);
    return 3 * gw::natural_height(wi_progress_label) + scale + gw::natural_height(wi_cancel_button) + GAPS;
}

/// Below the count the name of the font in work, the scale, and the button.
void create_controls(Widget dialog) {
    wi_name_label = gw::label(dialog, "name_label", " ");
    // The window must not follow the lengths of names.
    XtVaSetValues(wi_name_label, XmNrecomputeSize, False, nullptr);
    Attach(wi_name_label).below(wi_progress_label, 2).sides(GAP);
    create_scale(dialog, false);
    XtVaSetValues(wi_progress_scale, XmNtraversalOn, False, nullptr);
    Attach(wi_progress_scale).below(wi_name_label, GAP).sides(GAP);
    wi_cancel_button =
        gw::button_row(dialog, wi_progress_scale,
                       {{"cancel_button", Message::PROGRESS_CANCEL, cancel_cb, nullptr, 35, 65}})
            .front();
    // The height that a resource gives is for the scale alone.
    XtVaSetValues(dialog, XmNheight, height_of_all(), nullptr);
    gw::set_progress_cancel(nullptr);
    gw::end_dialog(dialog, {nullptr, wi_cancel_button, wi_cancel_button, cancel_cb});
}

}  // namespace

Widget create_progress_dlg(const char* name, Widget parent) {
    wi_progress_dlg = gw::form_dialog(parent, name, Message::PROGRESS_TITLE);
    wi_progress_label = gw::label(wi_progress_dlg, "action_label", Message::PROGRESS_LABEL);
    Attach(wi_progress_label).top_form(GAP).sides(GAP);
    // The texts are set while the dialog is hidden. It must not shrink to fit them.
    XtVaSetValues(wi_progress_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    if (gw::window_policy().controls_work()) {
        create_controls(wi_progress_dlg);
        return wi_progress_dlg;
    }
    create_scale(wi_progress_dlg, true);
    Attach(wi_progress_scale).below(wi_progress_label, GAP).sides(GAP).bottom_form(GAP);
    // The user cannot close it: it disappears when the work is done.
    gw::end_dialog(wi_progress_dlg, {.close = gw::do_nothing_cb});
    return wi_progress_dlg;
}

void start_progress_dlg(int min, int max, const char* title, const char* label) {
    if (min > max) return;
    set_scale(min, max);
    set_window_title(wi_progress_dlg, title);
    gw::set_label(wi_progress_label, label);
    gw::show_progress_text(" ");
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

namespace gw {

void open_progress_dlg(int count, const char* title) {
    set_scale(0, count);
    set_window_title(wi_progress_dlg, title);
    show_progress_text(" ");
    XtManageChild(wi_progress_dlg);
}

void show_progress(int done, const std::string& count, const std::string& name) {
    scale_value = done;
    XmScaleSetValue(wi_progress_scale, done);
    set_label(wi_progress_label, count);
    show_progress_text(name);
}

void show_progress_text(const std::string& text) {
    if (wi_name_label != nullptr) set_label(wi_name_label, text.empty() ? " " : text);
}

void set_progress_cancel(void (*cancel)()) {
    cancel_work = cancel;
    if (wi_cancel_button != nullptr) activate(wi_cancel_button, cancel != nullptr ? 1 : 0);
}

}  // namespace gw
