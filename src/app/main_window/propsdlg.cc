// SPDX-License-Identifier: MIT
#include "app/main_window/propsdlg.h"

#include <vector>

#include "app/common/help_requests.h"
#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/kept_text.h"
#include "app/kit/looks.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/rc_sample_text.h"
#include "app/samples/sample_text.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/TextF.h>

Widget wi_props_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;
constexpr short TEXT_COLUMNS = 45;
constexpr const char* INSTALLED_FONT = "-*-charter-medium-r-normal--*-180-75-75-p-*-iso8859-1";

gw::KeptText sample;

Widget message = nullptr;  // null where windows show no reasons

void say(const std::string& text) {
    if (message != nullptr) gw::set_label(message, text);
}

void reset_cb(Widget, XtPointer, XtPointer) {
    sample.show(get_rc_sample_text());
    say(" ");
}

/// Saves the text. Returns whether that worked.
bool apply() {
    const gw::Outcome kept = gw::keep_sample_text(sample.text());
    if (!kept && kept.failure().reason == gw::Reason::SYSTEM) gw::tell(kept.failure());
    say(kept ? " " : gw::failure_line(kept.failure()));
    return static_cast<bool>(kept);
}

void apply_cb(Widget, XtPointer, XtPointer) {
    apply();
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_props_dlg);
}

void ok_cb(Widget, XtPointer, XtPointer) {
    // The superuser has no sample text to correct.
    if (apply() || message == nullptr || gw::user_is_superuser()) XtUnmanageChild(wi_props_dlg);
}

/// The line that says why the text was not saved. It is wide enough for a long path from the beginning.
Widget create_message(Widget above) {
    message = gw::label(wi_props_dlg, "msg_label", " ");
    XtVaSetValues(message, XmNrecomputeSize, False, nullptr);
    Attach(message).below(above, 2).sides(GAP);
    return message;
}

}  // namespace

Widget create_props_dlg(const char* name, Widget parent) {
    wi_props_dlg = gw::form_dialog(parent, name, Message::PROPS_TITLE);
    Widget label = gw::label(wi_props_dlg, "sample_label", Message::PROPS_TEXT);
    Attach(label).top_form(GAP).sides(GAP);
    Widget text = gw::text_field(wi_props_dlg, "sample_textField");
    gw::use_fonts(text, gw::looks().sample_fonts, INSTALLED_FONT);
    sample = gw::KeptText(text);
    XtVaSetValues(text, XmNcolumns, TEXT_COLUMNS, nullptr);
    Attach(text).below(label, 2).sides(GAP);
    Widget line = gw::separator(wi_props_dlg, "separator");
    Attach(line).below(gw::window_policy().shows_reasons() ? create_message(text) : text, GAP).sides(0);

    Widget row = gw::form(wi_props_dlg, "button_form");
    Attach(row).below(line, GAP).sides(0).bottom_form(GAP);
    const std::vector<Widget> buttons = gw::fill_with_buttons(
        row, {{"ok_button", Message::PROPS_OK, ok_cb},
              {"apply_button", Message::PROPS_APPLY, apply_cb},
              {"reset_button", Message::PROPS_RESET, reset_cb},
              {"cancel_button", Message::PROPS_CANCEL, cancel_cb},
              gw::help_button("help_button", Message::PROPS_HELP, gw::HelpSection::SAMPLE_TEXT)});
    gw::end_dialog(wi_props_dlg, {buttons[0], buttons[3], text, cancel_cb});
    XtAddCallback(wi_props_dlg, XmNmapCallback, reset_cb, nullptr);
    return wi_props_dlg;
}

void start_props_dlg() {
    XtManageChild(wi_props_dlg);
}
