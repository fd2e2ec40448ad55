// SPDX-License-Identifier: MIT
#include "model/gw_conflict.h"

#include <filesystem>
#include <vector>

#include "model/gw_alias.h"
#include "modules/gw_fsm_list.h"
#include "store/font_action.h"

namespace {

bool same_place(const char* a, const char* b) {
    std::error_code missing;
    return std::filesystem::equivalent(a, b, missing);
}

bool have_a_file_in_common(const GWFont& a, const GWFont& b) {
    if (a.get_font_file_list() == nullptr || b.get_font_file_list() == nullptr) return false;
    for (const GW_FILE_SPEC* mine : *a.get_font_file_list()) {
        for (const GW_FILE_SPEC* theirs : *b.get_font_file_list()) {
            if (same_place(mine->get_path(), theirs->get_path())) return true;
        }
    }
    return false;
}

bool is_in_directory(const GWFont& font, const std::string& dir) {
    return font.get_dir_name() != nullptr && same_place(font.get_dir_name(), dir.c_str());
}

}  // namespace

GWConflict::GWConflict(TYPE kind, GWHRNElement* elem, GWAlias* the_alias, GWHRNElement* other,
                       const char* dir, GWHRNList* list)
    : type(kind),
      read_only(the_alias != nullptr),
      is_alias(the_alias != nullptr),
      element(elem),
      other_element(other),
      hrn_list(list),
      alias(the_alias) {
    if (dir != nullptr) dir_name = dir;
    if (elem != nullptr) name = elem->get_name();
    if (the_alias != nullptr) name = the_alias->get_hrn_name();
}

void GWConflict::set_conflict(INFO info, GWFont* font, unsigned group, unsigned index) {
    switch (info) {
        case READ_ONLY:
            read_only = true;
            break;
        case SYSTEM_FONT:
            system_font = true;
            break;
        case PACKAGE:
            package = true;
            break;
        case SAME_NAME:
            same_name = true;
            break;
        case ALIAS:
            is_alias = true;
            break;
        default:
            return;
    }
    if (type == INSTALL && font != nullptr) conflicting_fonts[{group, index}] = gw::Ref<GWFont>(font);
}

int GWConflict::is_conflict(INFO info) const {
    switch (info) {
        case READ_ONLY:
            return read_only ? 1 : 0;
        case SYSTEM_FONT:
            return system_font ? 1 : 0;
        case PACKAGE:
            return package ? 1 : 0;
        case SAME_NAME:
            return same_name ? 1 : 0;
        case ALIAS:
            return is_alias ? 1 : 0;
        default:
            return 0;
    }
}

void GWConflict::set_package(const std::string& names) {
    package = true;
    packages.insert(names);
}

std::string GWConflict::get_packages() const {
    std::string names;
    for (const std::string& one : packages) names += (names.empty() ? "" : ", ") + one;
    return names;
}

std::vector<GWFont*> GWConflict::get_conflicting_fonts() const {
    std::vector<GWFont*> fonts;
    for (const auto& [place, font] : conflicting_fonts) fonts.push_back(font.get());
    return fonts;
}

std::string GWConflict::get_conflict_dir_name() const {
    if (conflicting_fonts.empty()) return "";
    const char* dir = conflicting_fonts.begin()->second->get_dir_name();
    return dir != nullptr ? dir : "";
}

// Both are one change: the old font stays when the new one cannot be installed.
gw::Outcome GWConflict::replace_on_disk(GWFont& font, GWFont& old, GW_FSM_LIST& modules) const {
    return gw::as_one_change([&] {
        gw::Outcome removed = old.remove(modules);
        return removed ? font.install(*dir_name, modules) : removed;
    });
}

// When the source is itself on the font path, the new font and the old one may be the same files. Then the
// old font must not be deleted before its files are copied.
gw::Outcome GWConflict::install_one(const gw::Ref<GWFont>& font, const gw::Ref<GWFont>& old,
                                    GW_FSM_LIST& modules) {
    if (!modules.can_install(*font)) return font->install(*dir_name, modules);  // what is installed stays
    const bool moves = old && have_a_file_in_common(*font, *old);
    if (moves && is_in_directory(*old, *dir_name)) return gw::done();
    gw::Outcome installed =
        old && !moves ? replace_on_disk(*font, *old, modules) : font->install(*dir_name, modules);
    if (!installed) return installed;
    // The font is installed, although its old copy could not be deleted.
    if (moves) gw::tell_unless_done(old->remove(modules));
    if (old) other_element->del_font(old.get());
    const gw::Ref<GWFont> copy = new GWFont(*font, dir_name->c_str());
    other_element->add_font(copy.get(), 1);
    return installed;
}

void GWConflict::install_force(GW_FSM_LIST& modules, gw::FontReport& report) {
    if (refuses_force() || !element || !other_element || !dir_name) return;
    const auto& slots = element->get_slots();
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            gw::Ref<GWFont> old;
            if (auto cell = conflicting_fonts.extract({group, index})) old = std::move(cell.mapped());
            const gw::Ref<GWFont>& font = slots[group].fonts[index];
            report.note(*font, install_one(font, old, modules), *dir_name);
        }
    }
}

void GWConflict::delete_force(GW_FSM_LIST& modules, gw::FontReport& report) {
    if (refuses_force() || !element) return;
    std::vector<gw::Ref<GWFont>> fonts;
    for (const GWHRNElement::PointSize& slot : element->get_slots()) {
        fonts.insert(fonts.end(), slot.fonts.begin(), slot.fonts.end());
    }
    bool all_deleted = true;
    for (const gw::Ref<GWFont>& font : fonts) {
        if (report.note(*font, font->remove(modules))) {
            element->del_font(font.get());
        } else {
            all_deleted = false;
        }
    }
    if (all_deleted && hrn_list != nullptr) hrn_list->delete_hrn_elem(element.get());
}

void GWConflict::install_force(GW_FSM_LIST& modules) {
    gw::FontReport report;
    install_force(modules, report);
    report.tell();
}

void GWConflict::delete_force(GW_FSM_LIST& modules) {
    gw::FontReport report;
    delete_force(modules, report);
    report.tell();
}
