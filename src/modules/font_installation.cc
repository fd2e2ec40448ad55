// SPDX-License-Identifier: MIT
#include "modules/font_installation.h"

#include <utility>

#include "modules/index_access.h"
#include "platform/package_owner.h"
#include "store/font_action.h"

namespace gw {

namespace {

/// The package of a file that is there; "" when it is in none.
std::string package_of(const std::string& path) {
    const PackageOwners owners = ask_package_owners({path});
    return owners.empty() ? "" : owners.begin()->second;
}

}  // namespace

FontInstallation::FontInstallation(GWFont& the_font, GW_FPE& element, DirectoryChange& the_change)
    : font(the_font), fpe(element), change(the_change) {}

void FontInstallation::make_afm_dir() {
    metrics_dir = change.make_metrics_dir();
}

Outcome FontInstallation::accept(DirectoryChange::StagedFile copy) {
    if (change.changes_a_file(copy) && is_file_of_another(copy.name().c_str(), font, change))
        return Failure{copy.path(), Reason::FILE_OF_ANOTHER_FONT};
    if (const std::string package = change.changes_a_file(copy) ? package_of(copy.path()) : "";
        !package.empty())
        return Failure{.subject = copy.path(), .reason = Reason::IN_A_PACKAGE, .detail = package};
    copies.push_back(std::move(copy));
    return done();
}

Outcome FontInstallation::finish() {
    const Result<std::string> line = index_line(font, first_file(font)->get_name());
    if (!line) return line.failure();
    for (const DirectoryChange::StagedFile& copy : copies) {
        if (Outcome put = change.put(copy); !put) return put;
    }
    change.enter(*line);
    return done();
}

Outcome install_in_change(GWFont& font, GW_FPE& fpe,
                          const std::function<Outcome(FontInstallation&, const DirectoryChange&)>& steps) {
    if (Outcome possible = can_be_indexed(font); !possible) return possible;
    bool is_begun = false;
    Outcome outcome = in_change(fpe.get_path(), [&](DirectoryChange& change) {
        is_begun = true;
        if (Outcome made = change.make_index(); !made) return made;
        FontInstallation installation(font, fpe, change);
        const Outcome copied = steps(installation, change);
        return copied ? installation.finish() : copied;
    });
    if (outcome || is_begun || outcome.failure().reason != Reason::SYSTEM) return outcome;
    if (outcome.failure().subject.find(OWN_DIRECTORY_NAME) == std::string::npos) return outcome;
    // The user knows nothing of the directory that a change needs.
    return Failure::of_system(fpe.get_path() + std::string(first_file(font)->get_name()),
                              outcome.failure().error);
}

}  // namespace gw
