// SPDX-License-Identifier: MIT
#include "modules/font_installation.h"

#include <utility>

#include "modules/index_access.h"
#include "modules/source_fonts.h"
#include "platform/package_owner.h"
#include "store/font_action.h"

namespace gw {

namespace {

/// Whether a file that is there may be replaced: it is in no package.
Outcome may_be_replaced(const std::string& path) {
    const Result<PackageOwners> owners = ask_package_owners({path});
    if (!owners) return owners.failure();
    if (owners->empty()) return done();
    return Failure{.subject = path, .reason = Reason::IN_A_PACKAGE, .detail = owners->begin()->second};
}

}  // namespace

FontInstallation::FontInstallation(GWFont& the_font, GW_FPE& element, DirectoryChange& the_change)
    : font(the_font), fpe(element), change(the_change) {}

void FontInstallation::make_afm_dir() {
    metrics_dir = change.make_metrics_dir();
}

Outcome FontInstallation::accept(DirectoryChange::StagedFile copy) {
    if (change.changes_a_file(copy)) {
        if (is_file_of_another(copy.name().c_str(), font, change))
            return Failure{copy.path(), Reason::FILE_OF_ANOTHER_FONT};
        if (Outcome allowed = may_be_replaced(copy.path()); !allowed) return allowed;
    }
    copies.push_back(std::move(copy));
    return done();
}

Outcome FontInstallation::finish() {
    const GW_FILE_SPEC& first = *first_file(font);
    const std::string name = font.name_in_copy(first);
    const Result<IndexLines> found = index_lines(font, name);
    if (!found) return found.failure();
    for (DirectoryChange::StagedFile& copy : copies) {
        if (Outcome put = change.put(copy); !put) return put;
    }
    for (const std::string& line : found->lines) change.enter(line);
    // That a font was converted says so already.
    if (name != first.get_name() && !font.get_conversion())
        font.remark({.subject = first.get_path(), .reason = Reason::RENAMED_IN_COPY, .detail = name});
    if (found->left_out > 0)
        font.remark({.subject = first.get_path(),
                     .reason = Reason::NAMES_LEFT_OUT,
                     .detail = std::to_string(found->left_out)});
    return done();
}

Outcome install_in_change(GWFont& font, GW_FPE& fpe,
                          const std::function<Outcome(FontInstallation&, const DirectoryChange&)>& steps) {
    if (Outcome possible = can_be_indexed(font); !possible) return possible;
    if (Outcome sound = check_source_font(font); !sound) return sound;
    bool is_begun = false;
    const auto install = [&](DirectoryChange& change) {
        is_begun = true;
        if (Outcome made = change.make_index(); !made) return made;
        FontInstallation installation(font, fpe, change);
        const Outcome copied = steps(installation, change);
        return copied ? installation.finish() : copied;
    };
    Outcome outcome = in_change(fpe.get_path(), install, IfMissing::MAKE);
    if (outcome || is_begun || outcome.failure().reason != Reason::SYSTEM) return outcome;
    if (outcome.failure().subject != fpe.get_path()) return outcome;
    // Each font that is left out has a message of its own.
    return Failure::of_system(fpe.get_path() + std::string(first_file(font)->get_name()),
                              outcome.failure().error);
}

}  // namespace gw
