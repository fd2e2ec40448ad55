// SPDX-License-Identifier: MIT
//
// The module for PCF bitmap fonts (".pcf", ".pcf.Z"; ".pcf.gz" where the font policy has it).
#pragma once

#include "modules/indexed_module.h"

class GW_PCF_FSM : public gw::IndexedModule {
  public:
    GW_PCF_FSM();
};
