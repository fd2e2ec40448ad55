// SPDX-License-Identifier: MIT
//
// The list of strings, with two operations that the font-directory files need.
#pragma once

#include "core/gw_list.h"
#include "core/gw_string.h"

class GW_FILE_SPEC;
class GW_REG_EXP;

class GW_STRING_LIST : public GW_LIST<GW_STRING> {
  public:
    /// Appends to `out` a new copy of every element that matches `re`, in list order. The copies belong to
    /// `out`'s owner.
    void match(GW_STRING_LIST& out, GW_REG_EXP* re) const;

    /// Appends to `out`, for every string, a new specification of the file of that name in `dir`, with file
    /// type 2 (not yet determined) and extension type 7 (unknown). They belong to `out`'s owner.
    void make_file_spec_list(GW_LIST<GW_FILE_SPEC>& out, const char* dir) const;
};
