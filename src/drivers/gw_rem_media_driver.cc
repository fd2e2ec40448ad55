// SPDX-License-Identifier: MIT
#include "drivers/gw_rem_media_driver.h"

#include <array>

#include "drivers/engine_globals.h"
#include "drivers/staging.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace {

struct Medium {
    const char* word;
    const char* mount_point;
    const char* staging;
    const char* link_target;
};

constexpr std::array<Medium, 2> MEDIA = {{
    {"floppy", gw::FLOPPY_MOUNT, gw::STAGING_FLOPPY, gw::FLOPPY_ROOT},
    {"cdrom", gw::CDROM_MOUNT, gw::STAGING_CDROM, gw::CDROM_ROOT},
}};

const Medium* medium_of(int kind) {
    return kind == GW_REM_MEDIA_DRIVER::FLOPPY || kind == GW_REM_MEDIA_DRIVER::CDROM
               ? &MEDIA[static_cast<std::size_t>(kind)]
               : nullptr;
}

}  // namespace

GW_REM_MEDIA_DRIVER::GW_REM_MEDIA_DRIVER(int kind) : medium_kind(kind) {
    if (const Medium* medium = medium_of(kind); medium != nullptr) preview_dir = medium->staging;
}

void GW_REM_MEDIA_DRIVER::get_hrn_list(GWHRNList& out) {
    get_fsml_hrn_list(out, &the_fsm_list);
}

void GW_REM_MEDIA_DRIVER::get_fsml_hrn_list(GWHRNList& out, GW_FSM_LIST* modules) {
    const Medium* medium = medium_of(medium_kind);
    if (medium == nullptr) return;
    const std::string staging = gw::scratch_path(medium->staging);
    if (!gw::tell_unless_done(gw::prepare_staging(staging, medium->word, medium->link_target))) return;
    preview_dir = staging;
    GWHRNList found(0);
    gw::stage_fonts(found, *modules, medium->mount_point, 1, staging);
    out.merge(found);
}
