// SPDX-License-Identifier: MIT
//
// The module for PCF bitmap fonts (".pcf", ".pcf.Z"; ".pcf.gz" if the font policy says so).
#pragma once

#include "modules/indexed_module.h"

class GW_PCF_FSM : public gw::IndexedModule {
  public:
    GW_PCF_FSM();
};
