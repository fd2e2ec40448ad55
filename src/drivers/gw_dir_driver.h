// SPDX-License-Identifier: MIT
//
// Lists the fonts of one directory that the user has chosen, and stages them for preview.
#pragma once

#include <string>

#include "drivers/gw_driver_base.h"

class GWDirDriver : public GWDriverBase {
  public:
    explicit GWDirDriver(const char* dir);

    void get_hrn_list(GWHRNList& out) override;
    /// Builds the resource file of the staged directory in the staging directory; without one, that of `dir`
    /// in `dir`.
    void make_upr_file(GW_DIR* dir) override;

  private:
    std::string user_dir;
};
