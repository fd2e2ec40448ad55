// SPDX-License-Identifier: MIT
#include "modules/gw_t0_fsm.h"

#include "platform/host_paths.h"

GW_T0_FSM::GW_T0_FSM()
    : IndexedModule(GWFont::TYPE0_FONT, {{gw::EXT_PS, ".ps"}, {gw::EXT_PS_Z, ".ps.Z"}}, {".ps$", ".ps.Z$"},
                    gw::SCRATCH_TYPE0_DIR) {}

// Kept: every entry of an index is a Type 0 font.
bool GW_T0_FSM::takes(const char* /*file_name*/) {
    return true;
}

std::string GW_T0_FSM::visible_name(const GW_FILE_SPEC& spec, const GW_FPE& /*fpe*/) const {
    return spec.get_path();
}
