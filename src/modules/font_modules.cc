// SPDX-License-Identifier: MIT
#include "modules/font_modules.h"

#include "core/font_policy.h"
#include "modules/font_naming.h"
#include "store/leftovers.h"

void gw::append_font_modules(GW_FSM_LIST& list) {
    know_lines_by(line_of_font_file);
#define FONT_TYPE(name, number, word, naming, form, module) list.append(&module());
#define TODAYS_FONT_TYPE(name, number, word, naming, form, module) \
    if (font_policy().takes_todays_formats()) list.append(&module());
#define UNUSED_FONT_TYPE(name, number, word, naming, form)
#include "model/font_types.def"
}
