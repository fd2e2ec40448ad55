// SPDX-License-Identifier: MIT
//
// Lists the fonts of a floppy disk or CD-ROM, in all its directories, and stages them for preview.
#pragma once

#include "drivers/gw_driver_base.h"

class GW_FSM_LIST;

class GW_REM_MEDIA_DRIVER : public GWDriverBase {
  public:
    enum KIND { FLOPPY = 0, CDROM = 1 };

    /// A driver of any other kind lists nothing and has no preview directory.
    explicit GW_REM_MEDIA_DRIVER(int kind);

    void get_hrn_list(GWHRNList& out) override;
    void get_fsml_hrn_list(GWHRNList& out, GW_FSM_LIST* modules);

  private:
    int medium_kind;
};
