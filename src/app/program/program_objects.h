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
/// `the_installed_hrn_count`, aliases behind them.
extern int the_installed_hrn_count;
extern int the_alias_count;

extern int uid;           ///< effective user id
extern int user_is_root;  ///< 1 from the end of start-up on when `uid` is 0

/// The application resources.
struct GwResources {
    Boolean fontset_support;
    Boolean printer_support;
    int codeset_num;
    String locale_sample_text;
};
extern GwResources Gw_resrc;

/// What the program does beyond them; see core/font_policy.h and window_policy.h.
struct GwModernResources {
    Boolean modern_fonts;
    Boolean modern_windows;
};
extern GwModernResources Gw_modern_resrc;

namespace gw {

/// Whether `uid` is the superuser's.
[[nodiscard]] bool user_is_superuser();

}  // namespace gw

/// To be called when the installed-name list has become longer or shorter: brings its count up to date.
void count_installed_fonts();

/// Fills the installed-name list and the alias list from the font path, releasing what they held.
void fill_program_lists();

/// What an installation into `dir` means to the running server. An ordinary user's directory gets its
/// resource file and goes on the font path of the user and of the session; in every case the server rereads
/// its directories, for `dir` may have been among them before. Returns what could not be done.
std::vector<gw::Failure> show_installation_to_server(const std::string& dir);

/// Releases what the lists refer to, at the end of the run.
void release_program_objects();
