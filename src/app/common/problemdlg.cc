// SPDX-License-Identifier: MIT
#include "app/common/problemdlg.h"

#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/widgets.h"
#include "texts/messages.h"

#include <Xm/Form.h>

Widget wi_problem_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;
constexpr std::size_t MOST_LINES = 8;

Widget wi_reason_label = nullptr;
Decision decision = Decision::NONE;

template <Decision ANSWER>
void answer_cb(Widget, XtPointer, XtPointer) {
    decision = ANSWER;
    XtUnmanageChild(wi_problem_dlg);
}

std::string first_lines(const std::vector<std::string>& lines) {
    std::string text;
    for (std::size_t i = 0; i < lines.size() && i < MOST_LINES; ++i)
        text += (text.empty() ? "" : "\n") + lines[i];
    if (lines.size() > MOST_LINES)
        text += '\n' + gw::text_of(Message::AND_MORE, static_cast<unsigned>(lines.size() - MOST_LINES));
    return text;
}

}  // namespace

Widget create_problem_dlg(const char* name, Widget parent) {
    wi_problem_dlg = gw::form_dialog(parent, name, Message::PROBLEM_TITLE);
    XtVaSetValues(wi_problem_dlg, XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL, nullptr);
    Widget heading = gw::label(wi_problem_dlg, "heading_label", Message::NOT_DONE);
    Attach(heading).top_form(GAP).sides(GAP);
    wi_reason_label = gw::label(wi_problem_dlg, "reason_label", " ");
    Attach(wi_reason_label).below(heading, 2).sides(GAP);
    Widget question = gw::label(wi_problem_dlg, "question_label", Message::PROBLEM_QUESTION);
    Attach(question).below(wi_reason_label, GAP).sides(GAP);
    const std::vector<Widget> buttons =
        gw::button_row(wi_problem_dlg, question,
                       {{"skip_button", Message::SKIP, answer_cb<Decision::SKIP>},
                        {"skip_all_button", Message::SKIP_ALL, answer_cb<Decision::SKIP_ALL>},
                        {"stop_button", Message::STOP, answer_cb<Decision::STOP>}});
    gw::end_dialog(wi_problem_dlg, {buttons[0], buttons[2], buttons[0], answer_cb<Decision::STOP>});
    return wi_problem_dlg;
}

void start_problem_dlg(const std::vector<std::string>& lines) {
    decision = Decision::NONE;
    gw::set_label(wi_reason_label, first_lines(lines));
    XtManageChild(wi_problem_dlg);
}

void stop_problem_dlg() {
    XtUnmanageChild(wi_problem_dlg);
}

Decision problem_decision() {
    return decision;
}
