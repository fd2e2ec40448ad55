// SPDX-License-Identifier: MIT
//
// The module for Type 3 PostScript fonts (".ps", ".ps.Z").
#pragma once

#include "modules/indexed_module.h"

class GW_T3_FSM : public gw::IndexedModule {
  public:
    GW_T3_FSM();
};
