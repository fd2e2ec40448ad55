// SPDX-License-Identifier: MIT
#include "drivers/gw_files_driver.h"

#include <sys/stat.h>

#include <charconv>
#include <deque>
#include <string_view>
#include <unordered_map>

#include "core/directory.h"
#include "core/text.h"
#include "drivers/engine_globals.h"
#include "drivers/staging.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace {

bool is_directory(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

/// Whether its files may be read through it; tells when they may not.
bool is_usable(const std::string& dir) {
    const gw::Result<gw::Directory> opened = gw::Directory::open(dir);
    if (opened || opened.failure().reason != gw::Reason::NOT_OURS) return true;
    gw::tell(opened.failure().with(gw::Sequel::NOT_USED));
    return false;
}

}  // namespace

GWFilesDriver::GWFilesDriver(const std::vector<std::string>& paths) {
    std::unordered_map<std::string, std::size_t> known;
    const auto place_at = [&](const std::string& dir) -> Place& {
        const auto [found, is_new] = known.try_emplace(dir, places.size());
        if (is_new) places.push_back({dir, std::to_string(places.size() + 1), {{}}});
        return places[found->second];
    };
    for (const std::string& path : paths) {
        if (is_directory(path)) {
            place_at(gw::with_trailing_slash(path)).names.reset();
        } else {
            const std::size_t slash = path.rfind('/');
            Place& place = place_at(path.substr(0, slash + 1));
            if (place.names) place.names->insert(path.substr(slash + 1));
        }
    }
}

void GWFilesDriver::get_hrn_list(GWHRNList& out) {
    const std::string staging = gw::scratch_path(gw::STAGING_DIR);
    std::deque<GW_DIR> sources;
    for (const Place& place : places) {
        if (!is_usable(place.dir)) continue;
        const gw::Outcome linked = sources.empty() ? gw::prepare_staging(staging, place.link, place.dir)
                                                   : gw::link_in_scratch_dir(staging, place.link, place.dir);
        if (!gw::tell_unless_done(linked)) return;
        GW_DIR& source = sources.emplace_back((staging + place.link).c_str());
        if (place.names) source.choose(*place.names);
    }
    if (sources.empty()) return;
    preview_dir = staging;
    gw::stage_fonts(out, the_fsm_list, sources, 0, staging);
}

void GWFilesDriver::make_upr_file(GW_DIR*) {}

std::string GWFilesDriver::original_path(const GW_FILE_SPEC& spec) const {
    const std::string_view dir = gw::without_trailing_slashes(spec.get_dir());
    const std::string_view link = dir.substr(dir.rfind('/') + 1);
    std::size_t number = 0;
    std::from_chars(link.data(), link.data() + link.size(), number);
    if (number == 0 || number > places.size()) return spec.get_path();
    return places[number - 1].dir + spec.get_name();
}
