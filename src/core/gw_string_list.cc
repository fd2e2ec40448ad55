// SPDX-License-Identifier: MIT
#include "core/gw_string_list.h"

#include "core/gw_file_spec.h"
#include "core/gw_reg_exp.h"

void GW_STRING_LIST::match(GW_STRING_LIST& out, GW_REG_EXP* re) const {
    for (const GW_STRING* s : *this) {
        if (s->match(re) != 0) out.append(new GW_STRING(s));
    }
}

void GW_STRING_LIST::make_file_spec_list(GW_LIST<GW_FILE_SPEC>& out, const char* dir) const {
    for (const GW_STRING* s : *this) {
        out.append(new GW_FILE_SPEC(s->get_str(), dir, gw::FILE_TYPE_UNDETERMINED, gw::EXT_UNKNOWN));
    }
}
