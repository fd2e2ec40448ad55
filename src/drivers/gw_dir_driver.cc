// SPDX-License-Identifier: MIT
#include "drivers/gw_dir_driver.h"

#include <unistd.h>

#include "drivers/engine_globals.h"
#include "drivers/staging.h"
#include "platform/host_paths.h"

namespace {

constexpr const char* USER_DIR_LINK = "link";
constexpr const char* SCRATCH_LINK = "tmp";

std::string below_staging(const char* name) {
    return std::string(gw::STAGING_DIR) + name;
}

}  // namespace

GWDirDriver::GWDirDriver(const char* dir) : user_dir(dir) {}

void GWDirDriver::get_hrn_list(GWHRNList& out) {
    if (!gw::tell_unless_done(gw::prepare_staging(gw::STAGING_DIR, USER_DIR_LINK, user_dir.c_str()))) return;
    // A link that exists already is left as it is.
    [[maybe_unused]] const int made = ::symlink(gw::SCRATCH_ROOT, below_staging(SCRATCH_LINK).c_str());
    preview_dir = gw::STAGING_DIR;
    gw::stage_fonts(out, the_fsm_list, below_staging(USER_DIR_LINK).c_str(), 0, gw::STAGING_DIR);
}

void GWDirDriver::make_upr_file(GW_DIR* dir) {
    if (!preview_dir) {
        dir->make_upr_file(0, nullptr);
        return;
    }
    GW_DIR((*preview_dir + '/' + USER_DIR_LINK).c_str()).make_upr_file(0, preview_dir->c_str());
}
