// SPDX-License-Identifier: MIT
//
// A boxed integer: lists of them carry sets of file-type and extension codes.
#pragma once

#include "core/gw_base.h"

class GW_INT : public GW_BASE {
  public:
    explicit GW_INT(int v) : value(v) {}

    [[nodiscard]] int get_value() const { return value; }

  private:
    int value;
};
