// SPDX-License-Identifier: MIT
#include "app/kit/kept_text.h"

#include "app/kit/handles.h"
#include "app/kit/widgets.h"

#include <Xm/TextF.h>

namespace gw {

void KeptText::show(const std::string& text) {
    XmTextFieldSetString(field_, name_arg(text.c_str()));
    shown_again(text);
}

std::string KeptText::text() const {
    std::string now = field_text(field_);
    return now == shown_ ? text_ : now;
}

void KeptText::shown_again(const std::string& text) {
    text_ = text;
    shown_ = field_text(field_);
}

}  // namespace gw
