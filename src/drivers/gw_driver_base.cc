// SPDX-License-Identifier: MIT
#include "drivers/gw_driver_base.h"

#include <algorithm>
#include <cstring>

#include "core/font_policy.h"
#include "drivers/engine_globals.h"
#include "fontpath/catalogue.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/path_element.h"
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

/// Whether a catalogue of the font path for `t` has this directory.
bool is_in_catalogue(GWFontPath::TYPE t, const std::string& dir) {
    unsigned count = 0;
    const GW_LIST<GW_STRING>& elements = *the_font_path->get_fpe_list(t, count);
    return gw::font_policy().knows_catalogues() &&
           std::any_of(elements.begin(), elements.end(), [&](const GW_STRING* element) {
               return gw::is_catalogue(element->get_str()) && gw::stands_for(element->get_str(), dir);
           });
}

/// Whether the font path for `t` has this directory, by whatever path.
bool has_directory(GWFontPath::TYPE t, const std::string& dir) {
    const gw::ElementIdentity wanted = gw::identity_of_element(dir);
    unsigned count = 0;
    const GW_LIST<GW_STRING>& elements = *the_font_path->get_fpe_list(t, count);
    return std::any_of(elements.begin(), elements.end(),
                       [&](const GW_STRING* element) {
                           return gw::identity_of_element(element->get_str()) == wanted;
                       }) ||
           is_in_catalogue(t, dir);
}

void insert_at_end(std::vector<gw::Failure>& failures, GWFontPath::TYPE t, const std::string& dir,
                   gw::Sequel without) {
    const gw::Outcome added = the_font_path->insert(t, GW_STRING(dir.c_str()), -1);
    if (added) return;
    // That the session's path was not touched at all says more.
    const bool is_told = added.failure().sequel != gw::Sequel::NONE;
    failures.push_back(is_told ? added.failure() : added.failure().with(without, dir));
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
    std::vector<gw::Failure> failures;
    const auto lacks = [&](GWFontPath::TYPE t) {
        return position_in(t, dir.c_str()) == 0 && !is_in_catalogue(t, dir);
    };
    if (lacks(GWFontPath::ALL_FP))
        insert_at_end(failures, GWFontPath::USER_APPEND_FP, dir, gw::Sequel::NOT_LISTED_NEXT_TIME);
    if (lacks(GWFontPath::SESSION_FP))
        insert_at_end(failures, GWFontPath::SESSION_FP, dir, gw::Sequel::UNKNOWN_TO_PROGRAMS);
    return failures;
}

std::vector<gw::Failure> GWDriverBase::put_on_everyones_font_path(const std::string& dir) {
    std::vector<gw::Failure> failures;
    unsigned hosts = 0;
    the_font_path->get_fpe_list(GWFontPath::HOST_FP, hosts);
    const GWFontPath::TYPE in_force = hosts > 0 ? GWFontPath::HOST_FP : GWFontPath::INSTALLATION_FP;
    if (!has_directory(GWFontPath::ALL_FP, dir))
        insert_at_end(failures, in_force, dir, gw::Sequel::NOT_LISTED_NEXT_TIME);
    if (!has_directory(GWFontPath::SESSION_FP, dir))
        insert_at_end(failures, GWFontPath::SESSION_FP, dir, gw::Sequel::UNKNOWN_TO_PROGRAMS);
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
