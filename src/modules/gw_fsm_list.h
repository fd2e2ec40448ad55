// SPDX-License-Identifier: MIT
//
// The modules in use. A listing asks all of them, in list order; an operation on a font is passed to the
// module of its type.
//
// The application owns the modules and keeps them for its whole run.
#pragma once

#include "modules/gw_fsm_base.h"

class GW_FSM_LIST : public GW_LIST<GW_FSM_BASE> {
  public:
    /// The first module of that type, or null.
    GW_FSM_BASE* get_fsm(int type);

    void list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive);
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe);
    void list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe);
    void make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive);
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe);

    void list_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_DIR>& dirs, int recursive);
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_FPE>& fpes);
    void list_installed_font_names(GW_STRING_LIST& out, GW_LIST<GW_FPE>& fpes);
    void make_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_DIR>& dirs, int recursive);
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_FPE>& fpes);

    /// For a font whose type has no module nothing is done and nothing reported.
    void install_font(GWFont* font, GW_FPE* fpe);
    void make_font_visible(GWFont* font, GW_FPE* fpe);
    void delete_font(GWFont* font);
    /// The same with the module's outcome; a success when no module has the font's type.
    gw::Outcome install(GWFont& font, GW_FPE& fpe);
    gw::Outcome make_visible(GWFont& font, GW_FPE& fpe);
    gw::Outcome remove(GWFont& font);
    /// Whether the module of the font's type accepts it; true when there is no such module.
    gw::Outcome can_install(GWFont& font);
    void install_font(GW_LIST<GWFont>* fonts, GW_FPE* fpe);
    void make_font_visible(GW_LIST<GWFont>* fonts, GW_FPE* fpe);
    void delete_font(GW_LIST<GWFont>* fonts);
};
