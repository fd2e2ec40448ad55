// SPDX-License-Identifier: MIT
#include "modules/gw_t3_fsm.h"

#include "platform/host_paths.h"

GW_T3_FSM::GW_T3_FSM()
    : IndexedModule(GWFont::TYPE3_FONT, {{gw::EXT_PS, ".ps"}, {gw::EXT_PS_Z, ".ps.Z"}}, {".ps$", ".ps.Z$"},
                    gw::SCRATCH_TYPE3_DIR) {}
