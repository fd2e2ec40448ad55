// SPDX-License-Identifier: MIT
#include "modules/gw_fsm_list.h"

#include <algorithm>

GW_FSM_BASE* GW_FSM_LIST::get_fsm(int type) {
    const auto found =
        std::find_if(begin(), end(), [type](const GW_FSM_BASE* fsm) { return fsm->get_type() == type; });
    return found != end() ? *found : nullptr;
}

void GW_FSM_LIST::list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) {
    for (GW_FSM_BASE* fsm : *this) fsm->list_font_file_names(out, dir, recursive);
}

void GW_FSM_LIST::list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) {
    for (GW_FSM_BASE* fsm : *this) fsm->list_installed_font_file_names(out, fpe);
}

void GW_FSM_LIST::list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) {
    for (GW_FSM_BASE* fsm : *this) fsm->list_installed_font_names(out, fpe);
}

void GW_FSM_LIST::make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) {
    for (GW_FSM_BASE* fsm : *this) fsm->make_font_list(out, dir, recursive);
}

void GW_FSM_LIST::make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) {
    const GW_FONTDIR_FILE::Reading once(fpe->get_fontdir_file());
    for (GW_FSM_BASE* fsm : *this) fsm->make_installed_font_list(out, fpe);
}

void GW_FSM_LIST::list_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_DIR>& dirs, int recursive) {
    for (GW_DIR* dir : dirs) list_font_file_names(out, dir, recursive);
}

void GW_FSM_LIST::list_installed_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_FPE>& fpes) {
    for (GW_FPE* fpe : fpes) list_installed_font_file_names(out, fpe);
}

void GW_FSM_LIST::list_installed_font_names(GW_STRING_LIST& out, GW_LIST<GW_FPE>& fpes) {
    for (GW_FPE* fpe : fpes) list_installed_font_names(out, fpe);
}

void GW_FSM_LIST::make_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_DIR>& dirs, int recursive) {
    for (GW_DIR* dir : dirs) make_font_list(out, dir, recursive);
}

void GW_FSM_LIST::make_installed_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_FPE>& fpes) {
    for (GW_FPE* fpe : fpes) make_installed_font_list(out, fpe);
}

void GW_FSM_LIST::install_font(GWFont* font, GW_FPE* fpe) {
    if (GW_FSM_BASE* fsm = get_fsm(font->get_type()); fsm != nullptr) fsm->install_font(font, fpe);
}

void GW_FSM_LIST::make_font_visible(GWFont* font, GW_FPE* fpe) {
    if (GW_FSM_BASE* fsm = get_fsm(font->get_type()); fsm != nullptr) fsm->make_font_visible(font, fpe);
}

void GW_FSM_LIST::delete_font(GWFont* font) {
    if (GW_FSM_BASE* fsm = get_fsm(font->get_type()); fsm != nullptr) fsm->delete_font(font);
}

gw::Outcome GW_FSM_LIST::install(GWFont& font, GW_FPE& fpe) {
    GW_FSM_BASE* fsm = get_fsm(font.get_type());
    return fsm != nullptr ? fsm->install(font, fpe) : gw::done();
}

gw::Outcome GW_FSM_LIST::make_visible(GWFont& font, GW_FPE& fpe) {
    GW_FSM_BASE* fsm = get_fsm(font.get_type());
    return fsm != nullptr ? fsm->make_visible(font, fpe) : gw::done();
}

gw::Outcome GW_FSM_LIST::remove(GWFont& font) {
    GW_FSM_BASE* fsm = get_fsm(font.get_type());
    return fsm != nullptr ? fsm->remove(font) : gw::done();
}

gw::Outcome GW_FSM_LIST::can_install(GWFont& font) {
    const GW_FSM_BASE* fsm = get_fsm(font.get_type());
    return fsm != nullptr ? fsm->can_install(font) : gw::done();
}

void GW_FSM_LIST::install_font(GW_LIST<GWFont>* fonts, GW_FPE* fpe) {
    for (GWFont* font : *fonts) install_font(font, fpe);
}

void GW_FSM_LIST::make_font_visible(GW_LIST<GWFont>* fonts, GW_FPE* fpe) {
    for (GWFont* font : *fonts) make_font_visible(font, fpe);
}

void GW_FSM_LIST::delete_font(GW_LIST<GWFont>* fonts) {
    for (GWFont* font : *fonts) delete_font(font);
}
