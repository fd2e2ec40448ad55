// SPDX-License-Identifier: MIT
#include "modules/gw_fsm_base.h"

gw::Outcome GW_FSM_BASE::install(GWFont& font, GW_FPE& fpe) {
    install_font(&font, &fpe);
    return gw::done();
}

gw::Outcome GW_FSM_BASE::make_visible(GWFont& font, GW_FPE& fpe) {
    make_font_visible(&font, &fpe);
    return gw::done();
}

gw::Outcome GW_FSM_BASE::remove(GWFont& font) {
    delete_font(&font);
    return gw::done();
}

gw::Outcome GW_FSM_BASE::can_install(GWFont& /*font*/) const {
    return gw::done();
}

void GW_FSM_BASE::list_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_DIR>& dirs, int recursive) {
    for (GW_DIR* dir : dirs) list_font_file_names(out, dir, recursive);
}

void GW_FSM_BASE::list_installed_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_FPE>& fpes) {
    for (GW_FPE* fpe : fpes) list_installed_font_file_names(out, fpe);
}

void GW_FSM_BASE::list_installed_font_names(GW_STRING_LIST& out, GW_LIST<GW_FPE>& fpes) {
    for (GW_FPE* fpe : fpes) list_installed_font_names(out, fpe);
}

void GW_FSM_BASE::make_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_DIR>& dirs, int recursive) {
    for (GW_DIR* dir : dirs) make_font_list(out, dir, recursive);
}

void GW_FSM_BASE::make_installed_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_FPE>& fpes) {
    for (GW_FPE* fpe : fpes) make_installed_font_list(out, fpe);
}

void GW_FSM_BASE::install_font(GW_LIST<GWFont>* fonts, GW_FPE* fpe) {
    for (GWFont* font : *fonts) install_font(font, fpe);
}

void GW_FSM_BASE::make_font_visible(GW_LIST<GWFont>* fonts, GW_FPE* fpe) {
    for (GWFont* font : *fonts) make_font_visible(font, fpe);
}

void GW_FSM_BASE::delete_font(GW_LIST<GWFont>* fonts) {
    for (GWFont* font : *fonts) delete_font(font);
}
