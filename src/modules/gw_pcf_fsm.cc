// SPDX-License-Identifier: MIT
#include "modules/gw_pcf_fsm.h"

#include "modules/font_modules.h"
#include "platform/host_paths.h"

GW_FSM_BASE& gw::bitmap_module() {
    static GW_PCF_FSM module;
    return module;
}

GW_PCF_FSM::GW_PCF_FSM()
    : IndexedModule(GWFont::BITMAP_FONT, {{gw::EXT_PCF, ".pcf"}, {gw::EXT_PCF_Z, ".pcf.Z"}},
                    {".pcf$", ".pcf.Z$"}, gw::SCRATCH_PCF_DIR,
                    {{gw::EXT_PCF_GZ, ".pcf.gz"},
                     {gw::EXT_BDF, ".bdf"},
                     {gw::EXT_BDF_Z, ".bdf.Z"},
                     {gw::EXT_BDF_GZ, ".bdf.gz"}}) {}
