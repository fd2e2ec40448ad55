// SPDX-License-Identifier: MIT
//
// The modules for fonts in TrueType's file format: ".ttf" and ".ttc", and the same format called OpenType,
// ".otf" and ".otc". One file is one font, whatever number of names it has; a collection (".ttc") has the
// names of all its fonts. Without the font policy for today's formats they see no fonts.
//
// OpenType fonts may have PostScript outlines, which every X server lists and none opens. Such a font is
// installed as a converted copy, under the names of the original.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/gw_token_table.h"
#include "modules/gw_fsm_base.h"

namespace gw {

class SfntModule : public AnsweringModule {
  public:
    SfntModule(int type, std::initializer_list<std::pair<int, const char*>> extensions);

    void list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) override;
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) override;
    void list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) override;
    void make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) override;
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) override;
    Outcome install(GWFont& font, GW_FPE& fpe) override;
    Outcome make_visible(GWFont& font, GW_FPE& fpe) override;
    Outcome remove(GWFont& font) override;
    Outcome can_install(GWFont& font) const override;
    using GW_FSM_BASE::list_font_file_names;
    using GW_FSM_BASE::list_installed_font_file_names;
    using GW_FSM_BASE::list_installed_font_names;
    using GW_FSM_BASE::make_font_list;
    using GW_FSM_BASE::make_installed_font_list;

  private:
    [[nodiscard]] bool takes(std::string_view file_name) const;
    [[nodiscard]] std::unique_ptr<GWFont> make_font(FontPlace& place, const GW_FILE_SPEC& file) const;

    GW_TOKEN_TABLE file_names;
};

}  // namespace gw
