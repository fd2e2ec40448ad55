// SPDX-License-Identifier: MIT
#include "app/installing/convertdlg.h"

#include <utility>

#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/handles.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_convert_dlg = nullptr;

namespace {

using gw::Message;

constexpr std::size_t MOST_LINES = 12;

void (*_go_on)() = nullptr;

void ok_cb(Widget, XtPointer, XtPointer) {
    auto* const go_on = std::exchange(_go_on, nullptr);
    XtUnmanageChild(wi_convert_dlg);
    if (go_on != nullptr) go_on();
}

std::string conversion_line(const GWFont& font, const GW_FILE_SPEC& file) {
    return gw::text_of(Message::CONVERT_BECOMES, {file.get_name(), font.name_in_copy(file)});
}

}  // namespace

Widget create_convert_dlg(const char* name, Widget parent) {
    wi_convert_dlg = gw::message_dialog(parent, name, XmDIALOG_QUESTION, gw::text_of(Message::CONVERT_TITLE),
                                        gw::text_of(Message::CONVERT_QUESTION), {XmDIALOG_HELP_BUTTON});
    const gw::XmText ok = gw::xm_text(gw::text_of(Message::CONVERT_OK));
    const gw::XmText cancel = gw::xm_text(gw::text_of(Message::CONVERT_CANCEL));
    XtVaSetValues(wi_convert_dlg, XmNokLabelString, ok.get(), XmNcancelLabelString, cancel.get(), nullptr);
    XtAddCallback(wi_convert_dlg, XmNokCallback, ok_cb, nullptr);
    XtAddCallback(wi_convert_dlg, XmNcancelCallback, gw::call_cb<stop_convert_dlg>, nullptr);
    gw::end_dialog(wi_convert_dlg, {.close = gw::call_cb<stop_convert_dlg>});
    return wi_convert_dlg;
}

void start_convert_dlg(const std::vector<std::string>& lines, void (*go_on)()) {
    std::string question = std::string(gw::text_of(Message::CONVERT_QUESTION)) + "\n ";
    for (std::size_t i = 0; i < lines.size() && i < MOST_LINES; ++i) question += '\n' + lines[i];
    if (lines.size() > MOST_LINES)
        question += '\n' + gw::text_of(Message::AND_MORE, static_cast<unsigned>(lines.size() - MOST_LINES));
    const gw::XmText text = gw::xm_text(question);
    XtVaSetValues(wi_convert_dlg, XmNmessageString, text.get(), nullptr);
    _go_on = go_on;
    XtManageChild(wi_convert_dlg);
}

void stop_convert_dlg() {
    _go_on = nullptr;
    if (wi_convert_dlg != nullptr) XtUnmanageChild(wi_convert_dlg);
}

namespace gw {

std::vector<std::string> conversions(const GWHRNList& list, const std::vector<int>& positions) {
    std::vector<std::string> lines;
    for (const int position : positions) {
        const GWHRNElement* elem = list.get_elem_at_pos(position);
        const GWFont* font = elem != nullptr ? elem->get_representative() : nullptr;
        if (font == nullptr || !font->get_conversion() || font->get_font_file_list() == nullptr) continue;
        for (const GW_FILE_SPEC* file : *font->get_font_file_list())
            lines.push_back(conversion_line(*font, *file));
    }
    return lines;
}

}  // namespace gw
