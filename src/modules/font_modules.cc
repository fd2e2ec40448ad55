// SPDX-License-Identifier: MIT
#include "modules/font_modules.h"

void gw::append_font_modules(GW_FSM_LIST& list) {
#define FONT_TYPE(name, number, word, naming, form, module) list.append(&module());
#define UNUSED_FONT_TYPE(name, number, word, naming, form)
#include "model/font_types.def"
}
