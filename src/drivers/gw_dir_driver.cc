// SPDX-License-Identifier: MIT
#include "drivers/gw_dir_driver.h"

#include "core/directory.h"
#include "drivers/engine_globals.h"
#include "drivers/staging.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace {

constexpr const char* USER_DIR_LINK = "link";
constexpr const char* SCRATCH_LINK = "tmp";

}  // namespace

GWDirDriver::GWDirDriver(const char* dir) : user_dir(dir) {}

void GWDirDriver::get_hrn_list(GWHRNList& out) {
    // None of its fonts could be read; an empty list would not say why.
    const gw::Result<gw::Directory> source = gw::Directory::open(user_dir);
    if (!source && source.failure().reason == gw::Reason::NOT_OURS)
        return gw::tell(source.failure().with(gw::Sequel::NOT_USED));
    const std::string staging = gw::scratch_path(gw::STAGING_DIR);
    if (!gw::tell_unless_done(gw::prepare_staging(staging, USER_DIR_LINK, user_dir))) return;
    (void)gw::link_in_scratch_dir(staging, SCRATCH_LINK, gw::scratch_path(gw::SCRATCH_ROOT));
    preview_dir = staging;
    gw::stage_fonts(out, the_fsm_list, (staging + USER_DIR_LINK).c_str(), 0, staging);
}

void GWDirDriver::make_upr_file(GW_DIR* dir) {
    if (!preview_dir) {
        dir->make_upr_file(0, nullptr);
        return;
    }
    GW_DIR((*preview_dir + '/' + USER_DIR_LINK).c_str()).make_upr_file(0, preview_dir->c_str());
}
