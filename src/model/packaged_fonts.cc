// SPDX-License-Identifier: MIT
#include "model/packaged_fonts.h"

#include <set>
#include <string>
#include <vector>

#include "platform/package_owner.h"

namespace gw {

namespace {

void append_files(std::vector<std::string>& paths, const GWFont& font) {
    if (font.get_font_file_list() == nullptr) return;
    for (const GW_FILE_SPEC* file : *font.get_font_file_list()) paths.emplace_back(file->get_path());
}

}  // namespace

Result<std::set<std::string>> packages_of(const GWFont& font) {
    std::vector<std::string> paths;
    append_files(paths, font);
    const Result<PackageOwners> owners = package_owners(paths);
    if (!owners) return owners.failure();
    std::set<std::string> names;
    for (const auto& [path, owner] : *owners) names.insert(owner);
    return names;
}

std::string enumeration(const std::set<std::string>& names) {
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : ", ") + name;
    return all;
}

void ask_packages_of(const std::vector<const GWFont*>& fonts) {
    std::vector<std::string> paths;
    for (const GWFont* font : fonts) append_files(paths, *font);
    (void)package_owners(paths);
}

Outcome mark_packages(GW_LIST<GWConflict>& conflicts) {
    std::vector<const GWFont*> fonts;
    for (const GWConflict* conflict : conflicts) {
        for (const GWFont* font : conflict->get_conflicting_fonts()) fonts.push_back(font);
    }
    ask_packages_of(fonts);
    for (GWConflict* conflict : conflicts) {
        for (const GWFont* font : conflict->get_conflicting_fonts()) {
            const Result<std::set<std::string>> names = packages_of(*font);
            if (!names) return names.failure();
            conflict->add_packages(*names);
        }
    }
    return done();
}

}  // namespace gw
