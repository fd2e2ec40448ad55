// SPDX-License-Identifier: MIT
//
// The objects that live from start-up to exit and that all windows share.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "core/gw_list.h"
#include "drivers/engine_globals.h"
#include "drivers/gw_alias_driver.h"
#include "drivers/gw_installed_fonts_driver.h"
#include "drivers/gw_rem_media_driver.h"
#include "fontpath/gw_font_path.h"
#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"

#include <X11/Intrinsic.h>

extern GWHRNList the_installed_hrn_list;
extern GWInstalledFontsDriver the_installed_fonts_driver;
extern GWAliasDriver the_alias_driver;
extern GW_SORTED_LIST<GWAlias>
    the_alias_list;  ///< its aliases belong to the program: see `release_program_objects`
extern GW_REM_MEDIA_DRIVER the_cdrom_driver;
extern GW_REM_MEDIA_DRIVER the_floppy_driver;
extern GW_LIST<GWConflict> the_conflict_list;  ///< its conflicts belong to the program
extern GW_T1_FSM& the_t1_fsm;
extern GW_PCF_FSM& the_pcf_fsm;

/// Lengths of the two lists when they were last filled. The main window shows fonts at positions 1 to
/// `the_installed_hrn_count`, and aliases after them.
extern int the_installed_hrn_count;
extern int the_alias_count;

extern int uid;           ///< effective user id
extern int user_is_root;  ///< 1 if `uid` is 0; set at the end of start-up

/// The application resources.
struct GwResources {
    Boolean fontset_support;
    Boolean printer_support;
    int codeset_num;
    String locale_sample_text;
};
extern GwResources Gw_resrc;

/// The resources for what the program can do beyond earlier releases; see core/font_policy.h and
/// window_policy.h.
struct GwModernResources {
    Boolean modern_fonts;
    Boolean modern_windows;
};
extern GwModernResources Gw_modern_resrc;

namespace gw {

/// Whether `uid` is the superuser's.
[[nodiscard]] bool user_is_superuser();

}  // namespace gw

/// Sets `the_installed_hrn_count`. Call this when the installed-name list has become longer or shorter.
void count_installed_fonts();

/// Fills the installed-name list and the alias list from the font path, releasing what they held.
void fill_program_lists();

namespace gw {

/// Whether the directory in which fonts are installed is put on the font path. To begin with it is, but for
/// the superuser only where the install dialog lets them choose (see `WindowPolicy::offers_destinations`).
[[nodiscard]] bool installation_joins_path();
void set_installation_joins_path(bool joins);
/// Whether it is the superuser who has to put directories on the font path, and is to be told so.
[[nodiscard]] bool font_path_waits_for_superuser();

}  // namespace gw

/// Tells the running server about an installation into `dir`. An ordinary user's directory gets its resource
/// file. If installations join the path, it is added to the font paths of the user (the superuser: of
/// everybody) and of the session. In every case the server reads its
/// directories again, because `dir` may have been one of them already. Returns what could not be done.
std::vector<gw::Failure> show_installation_to_server(const std::string& dir);

/// Releases all elements of the lists at exit.
void release_program_objects();
