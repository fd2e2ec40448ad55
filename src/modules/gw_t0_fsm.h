// SPDX-License-Identifier: MIT
//
// The module for Type 0 composite PostScript fonts (".ps", ".ps.Z"). It takes every entry of an index,
// whatever the file is called, and makes fonts visible under their full path.
#pragma once

#include <string>

#include "modules/indexed_module.h"

class GW_T0_FSM : public gw::IndexedModule {
  public:
    GW_T0_FSM();

  protected:
    [[nodiscard]] bool takes(const char* file_name) override;
    [[nodiscard]] std::string visible_name(const GW_FILE_SPEC& spec, const GW_FPE& fpe) const override;
};
