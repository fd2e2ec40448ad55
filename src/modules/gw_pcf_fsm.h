// SPDX-License-Identifier: MIT
//
// The module for bitmap fonts: PCF (".pcf", ".pcf.Z") and, if the font policy takes today's formats, PCF
// compressed with gzip (".pcf.gz") and BDF (".bdf", ".bdf.Z", ".bdf.gz").
#pragma once

#include "modules/indexed_module.h"

class GW_PCF_FSM : public gw::IndexedModule {
  public:
    GW_PCF_FSM();
};
