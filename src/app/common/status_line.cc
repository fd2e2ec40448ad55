// SPDX-License-Identifier: MIT
#include "app/common/status_line.h"

#include "app/program/window_policy.h"
#include "texts/messages.h"

Widget wi_main_window_status_label = nullptr;

namespace gw {

std::string deleted_text(unsigned fonts) {
    if (!window_policy().brings_deleted_fonts_back()) return count_text(fonts, Message::FONTS_DELETED);
    return text_of(Message::ONE_FONT_DELETED, Message::MANY_FONTS_DELETED, fonts);
}

std::string installed_text(unsigned fonts) {
    if (!window_policy().speaks_in_sentences()) return count_text(fonts, Message::FONTS_INSTALLED);
    return text_of(Message::ONE_FONT_INSTALLED, Message::MANY_FONTS_INSTALLED, fonts);
}

}  // namespace gw
