// SPDX-License-Identifier: MIT
#include "app/main_window/undo_line.h"

#include "app/common/status_line.h"
#include "app/deleting/bringing_back.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/widgets.h"
#include "app/program/undo_record.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "texts/messages.h"

#include <Xm/Form.h>

namespace gw {

namespace {

constexpr int GAP = 8;

Widget wi_undo_button = nullptr;

/// The button keeps its place while there is nothing to undo, so that no other part of the window moves.
void show_what_can_be_undone() {
    if (wi_undo_button == nullptr) return;
    const UndoRecord& record = undo_record();
    const bool can_undo = !record.entries.empty() && !the_wp_cl_data.is_in_progress();
    const bool deletion = record.kind == UndoableWork::DELETION;
    if (can_undo)
        set_label(wi_undo_button, text_of(deletion ? Message::UNDO_DELETION : Message::UNDO_REPLACEMENT));
    activate(wi_undo_button, can_undo ? 1 : 0);
    XtSetMappedWhenManaged(wi_undo_button, can_undo ? True : False);
}

void work_permitted(bool) {
    show_what_can_be_undone();
}

void forget_cb(Widget, XtPointer, XtPointer) {
    wi_undo_button = nullptr;
}

}  // namespace

Widget create_status_line(Widget parent) {
    if (!window_policy().brings_deleted_fonts_back())
        return wi_main_window_status_label = label(parent, "_status_message", " ");
    Widget line = form(parent, "_status_form");
    wi_main_window_status_label = label(line, "_status_message", " ");
    wi_undo_button = push_button(line, "_undo_button", Message::UNDO_DELETION);
    XtAddCallback(wi_undo_button, XmNactivateCallback, call_cb<undo_last_work>, nullptr);
    XtAddCallback(wi_undo_button, XmNdestroyCallback, forget_cb, nullptr);
    Attach(wi_undo_button).top_form(0).bottom_form(0).right_form(GAP);
    Attach(wi_main_window_status_label)
        .top_form(centring_offset(wi_main_window_status_label, wi_undo_button))
        .left_form(GAP)
        .left_of(wi_undo_button, GAP);
    undo_changes().connect(show_what_can_be_undone);
    work_permissions().connect(work_permitted);
    show_what_can_be_undone();
    return line;
}

}  // namespace gw
