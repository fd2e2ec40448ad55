// SPDX-License-Identifier: MIT
#include "drivers/gw_driver_base.h"

#include <cstring>

#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "platform/scratch.h"

namespace {

/// The 1-based position of the first element equal to `dir` in the list for `t`; 0 when there is none.
int position_in(GWFontPath::TYPE t, const char* dir) {
    unsigned count = 0;
    int position = 0;
    for (const GW_STRING* element : *the_font_path->get_fpe_list(t, count)) {
        ++position;
        if (std::strcmp(element->get_str(), dir) == 0) return position;
    }
    return 0;
}

}  // namespace

int GWDriverBase::set_font_path(const char* dir) {
    const GW_STRING element(dir);
    if (position_in(GWFontPath::ALL_FP, dir) == 0) {
        the_font_path->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1);
    }
    // Kept: a directory that is on the path already counts as not added.
    if (position_in(GWFontPath::SESSION_FP, dir) != 0) return 0;
    return the_font_path->insert_after_pos(GWFontPath::SESSION_FP, &element, -1);
}

std::vector<gw::Failure> GWDriverBase::put_on_font_path(const std::string& dir) {
    const GW_STRING element(dir.c_str());
    std::vector<gw::Failure> failures;
    const auto add_to = [&](GWFontPath::TYPE t, gw::Sequel without) {
        const gw::Outcome added = the_font_path->insert(t, element, -1);
        if (added) return;
        // That the session's path was not touched at all says more.
        const bool is_told = added.failure().sequel != gw::Sequel::NONE;
        failures.push_back(is_told ? added.failure() : added.failure().with(without, dir));
    };
    if (position_in(GWFontPath::ALL_FP, dir.c_str()) == 0)
        add_to(GWFontPath::USER_APPEND_FP, gw::Sequel::NOT_LISTED_NEXT_TIME);
    if (position_in(GWFontPath::SESSION_FP, dir.c_str()) == 0)
        add_to(GWFontPath::SESSION_FP, gw::Sequel::UNKNOWN_TO_PROGRAMS);
    return failures;
}

void GWDriverBase::start_preview() {
    // When the directory is not ours, the listing has reported it already.
    if (!preview_dir || !gw::holds_scratch_dir(*preview_dir)) return;
    if (position_in(GWFontPath::SESSION_FP, preview_dir->c_str()) != 0) {
        the_font_path->rehash_session_fp();
        return;
    }
    GW_DIR staging(preview_dir->c_str());
    make_upr_file(&staging);
    const GW_STRING element(preview_dir->c_str());
    the_font_path->insert_after_pos(GWFontPath::SESSION_FP, &element, -1);
}

// An element that was added to the session font path is in its list twice. If one of the two stayed, the next
// preview would believe that the server still has the directory.
void GWDriverBase::stop_preview() {
    if (!preview_dir) return;
    for (int position = position_in(GWFontPath::SESSION_FP, preview_dir->c_str()); position != 0;
         position = position_in(GWFontPath::SESSION_FP, preview_dir->c_str())) {
        if (the_font_path->delete_pos(GWFontPath::SESSION_FP, position) == 0) return;
    }
}

void GWDriverBase::make_upr_file(GW_DIR* dir) {
    dir->make_upr_file(1, nullptr);
}
