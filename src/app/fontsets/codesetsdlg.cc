// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <vector>

#include "app/common/help_requests.h"
#include "app/fontsets/codesets.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/kept_text.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/TextF.h>

Widget wi_sample_text_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace fontsetsdlg;

constexpr int GAP = 8;
constexpr short TEXT_COLUMNS = 45;
constexpr int MOST_CODESETS = 10;  // more would not fit into the dialog

std::vector<gw::KeptText> wi_sample_text_dlg_cs_text;  // by codeset

void apply_cb(Widget, XtPointer, XtPointer) {
    std::string text;
    for (const gw::KeptText& part : wi_sample_text_dlg_cs_text) text += part.text();
    set_sample(text);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_sample_text_dlg);
}

void ok_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    apply_cb(w, client_data, call_data);
    XtUnmanageChild(wi_sample_text_dlg);
}

void reset_cb(Widget, XtPointer, XtPointer) {
    set_wi_sample_text_dlg(fontsetdlg_cb.locale_sample_text.c_str());
    set_sample(fontsetdlg_cb.locale_sample_text);
}

}  // namespace

Widget create_sample_text_dlg(const char* name, Widget parent) {
    wi_sample_text_dlg = gw::form_dialog(parent, name, Message::CODESETS_TITLE);
    const int count = std::clamp(Gw_resrc.codeset_num, 1, MOST_CODESETS);
    Widget above = nullptr;
    for (int codeset = 0; codeset < count; ++codeset) {
        Widget label = gw::label(wi_sample_text_dlg, "codeset_label",
                                 gw::text_of(Message::CODESET, static_cast<unsigned>(codeset)));
        Widget field = gw::text_field(wi_sample_text_dlg, "codeset_text");
        XtVaSetValues(field, XmNcolumns, TEXT_COLUMNS, nullptr);
        Attach(label).left_form(GAP);
        Attach(field).right_of(label, GAP).right_form(GAP);
        if (above == nullptr) {
            Attach(label).top_form(GAP + 6);
            Attach(field).top_form(GAP);
        } else {
            Attach(label).below(above, GAP + 6);
            Attach(field).below(above, GAP);
        }
        above = field;
        wi_sample_text_dlg_cs_text.emplace_back(field);
    }
    const std::vector<Widget> buttons =
        gw::button_row(wi_sample_text_dlg, above,
                       {{"ok_button", Message::CODESETS_OK, ok_cb},
                        {"apply_button", Message::CODESETS_APPLY, apply_cb},
                        {"reset_button", Message::CODESETS_RESET, reset_cb},
                        {"cancel_button", Message::CODESETS_CANCEL, cancel_cb},
                        gw::help_button("help_button", Message::CODESETS_HELP, gw::HelpSection::FONTSETS)});
    gw::end_dialog(wi_sample_text_dlg,
                   {buttons[0], buttons[3], wi_sample_text_dlg_cs_text.front().field(), cancel_cb});
    return wi_sample_text_dlg;
}

void set_wi_sample_text_dlg(const char* text) {
    const std::vector<std::string> parts =
        gw::split_by_codeset(text, static_cast<unsigned>(wi_sample_text_dlg_cs_text.size()));
    for (std::size_t codeset = 0; codeset < parts.size(); ++codeset)
        wi_sample_text_dlg_cs_text[codeset].show(parts[codeset]);
}
