// SPDX-License-Identifier: MIT
//
// Lists the installed fonts: what the configured font path reaches, by the indexes of its directories. Each
// listing asks all directories anew whether they answer, and tells which do not.
#pragma once

#include "drivers/gw_driver_base.h"

class GWInstalledFontsDriver : public GWDriverBase {
  public:
    void get_hrn_list(GWHRNList& out) override;
};
