// SPDX-License-Identifier: MIT
//
// All in one file, so that the objects are constructed in this order and destroyed in reverse order.
#include "app/program/program_objects.h"

#include "app/program/conflict_lists.h"
#include "app/program/listed_indexes.h"
#include "app/program/window_policy.h"
#include "core/rights.h"
#include "modules/font_modules.h"

GWHRNList the_installed_hrn_list(0);
GWInstalledFontsDriver the_installed_fonts_driver;
GWAliasDriver the_alias_driver;
GW_SORTED_LIST<GWAlias> the_alias_list(0);
GW_REM_MEDIA_DRIVER the_cdrom_driver(GW_REM_MEDIA_DRIVER::CDROM);
GW_REM_MEDIA_DRIVER the_floppy_driver(GW_REM_MEDIA_DRIVER::FLOPPY);
GW_LIST<GWConflict> the_conflict_list;
GW_T1_FSM& the_t1_fsm = static_cast<GW_T1_FSM&>(gw::type1_module());
GW_PCF_FSM& the_pcf_fsm = static_cast<GW_PCF_FSM&>(gw::bitmap_module());

int the_installed_hrn_count = 0;
int the_alias_count = 0;

int uid = 0;
int user_is_root = 0;
GwResources Gw_resrc = {};
GwModernResources Gw_modern_resrc = {};

bool gw::user_is_superuser() {
    return is_superuser(static_cast<uid_t>(uid));
}

namespace {

bool joins_path = true;

}  // namespace

bool gw::installation_joins_path() {
    return joins_path && (!user_is_superuser() || window_policy().offers_destinations());
}

bool gw::font_path_waits_for_superuser() {
    return user_is_superuser() && !installation_joins_path();
}

void gw::set_installation_joins_path(bool joins) {
    joins_path = joins;
}

void count_installed_fonts() {
    the_installed_hrn_count = the_installed_hrn_list.get_count();
}

void fill_program_lists() {
    if (gw::window_policy().shows_live_path()) gw::begin_listing();
    the_installed_hrn_list.clear();
    the_installed_fonts_driver.get_hrn_list(the_installed_hrn_list);
    count_installed_fonts();
    gw::delete_elements(the_alias_list);
    the_alias_driver.get_alias_list(the_alias_list);
    the_alias_count = the_alias_list.get_count();
}

std::vector<gw::Failure> show_installation_to_server(const std::string& dir) {
    std::vector<gw::Failure> failures;
    if (!gw::user_is_superuser()) {
        GW_DIR(dir.c_str()).make_upr_file(0, nullptr);
        if (gw::installation_joins_path()) failures = the_installed_fonts_driver.put_on_font_path(dir);
    } else if (gw::installation_joins_path()) {
        failures = the_installed_fonts_driver.put_on_everyones_font_path(dir);
    }
    the_font_path->rehash_session_fp();
    return failures;
}

void release_program_objects() {
    gw::release_conflicts();
    gw::delete_elements(the_alias_list);
    the_installed_hrn_list.clear();
    delete the_font_path;
    the_font_path = nullptr;
}
