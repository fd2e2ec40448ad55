// SPDX-License-Identifier: MIT
#include "app/installing/lines_dialog.h"

#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"

#include <Xm/Form.h>
#include <Xm/List.h>

namespace gw {

namespace {

constexpr int GAP = 8;
constexpr int VISIBLE_LINES = 10;
constexpr std::size_t LINE_COLUMNS = 70;

}  // namespace

Widget LinesDialog::create(const char* name, Widget parent, Message title, Message close_text,
                           XtCallbackProc close) {
    dialog_ = form_dialog(parent, name, title);
    sentence_ = label(dialog_, "count_label", " ");
    Attach(sentence_).top_form(GAP).sides(GAP);
    const BottomRow row =
        bottom_row(dialog_, {"msg_label", "button_form", "separator"}, {{"close_button", close_text, close}});
    lines_ = scrolled_list(dialog_, "lines_list");
    XtVaSetValues(lines_, XmNvisibleItemCount, VISIBLE_LINES, nullptr);
    set_list_columns(lines_, LINE_COLUMNS);
    Attach(XtParent(lines_)).below(sentence_, 2).sides(GAP).above(row.separator, GAP);
    end_dialog(dialog_, {row.buttons[0], row.buttons[0], row.buttons[0], close});
    return dialog_;
}

void LinesDialog::show(const std::string& sentence, const std::vector<std::string>& lines) {
    set_label(sentence_, sentence.empty() ? " " : sentence);
    fill_list(lines_, lines);
}

}  // namespace gw
