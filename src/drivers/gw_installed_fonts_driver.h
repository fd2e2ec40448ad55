// SPDX-License-Identifier: MIT
//
// Lists the installed fonts: what the configured font path reaches, by the indexes of its directories.
#pragma once

#include "drivers/gw_driver_base.h"

class GWInstalledFontsDriver : public GWDriverBase {
  public:
    void get_hrn_list(GWHRNList& out) override;
};
