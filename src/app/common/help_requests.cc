// SPDX-License-Identifier: MIT
#include "app/common/help_requests.h"

#include "app/kit/handles.h"
#include "app/program/window_policy.h"

namespace gw {

namespace {

void open_section_cb(Widget, XtPointer heading, XtPointer) {
    help_requests().emit(static_cast<const char*>(heading));
}

}  // namespace

const char* heading_of(HelpSection section) {
    switch (section) {
        case HelpSection::INSTALLING:
            return "INSTALLING FONTS";
        case HelpSection::DELETED_FONTS:
            return "DELETED FONTS";
        case HelpSection::SUMMARY:
            return "   What happened";
        case HelpSection::CONFLICTS:
            return "   Two fonts of one name";
        case HelpSection::OTHER_MEDIA:
            return "   Other media";
        case HelpSection::ATTRIBUTES:
            return "FONT ATTRIBUTES";
        case HelpSection::MISSING_FONTS:
            return "WHY A FONT IS MISSING";
        case HelpSection::SAMPLE_TEXT:
            return "SAMPLE TEXT";
        case HelpSection::MODIFY_FONT_PATH:
            return "   The dialog \"Modify Font Path\"";
        case HelpSection::FONTSETS:
            return "FONTSETS";
        case HelpSection::PRINTER:
            return "FONTS OF A PRINTER";
    }
    return "";
}

Signal<const char*>& help_requests() {
    static Signal<const char*> requests;
    return requests;
}

RowButton help_button(const char* name, Message text, HelpSection section, XtCallbackProc otherwise, int left,
                      int right) {
    if (!window_policy().answers_help_buttons()) return {name, text, otherwise, nullptr, left, right};
    return {name, text, open_section_cb, name_arg(heading_of(section)), left, right};
}

}  // namespace gw
