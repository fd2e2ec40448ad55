// SPDX-License-Identifier: MIT
#include "model/gw_conflict.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "core/long_work.h"
#include "model/gw_alias.h"
#include "model/packaged_fonts.h"
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
    if (type == INSTALL && font != nullptr)
        conflicting_fonts[{group, index}] = {{other_element, gw::Ref<GWFont>(font)}};
}

void GWConflict::add_conflicting_font(GWHRNElement* in_element, GWFont* font, unsigned group,
                                      unsigned index) {
    conflicting_fonts[{group, index}].push_back({gw::Ref<GWHRNElement>(in_element), gw::Ref<GWFont>(font)});
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

void GWConflict::add_packages(const std::set<std::string>& names) {
    package = package || !names.empty();
    packages.insert(names.begin(), names.end());
}

std::string GWConflict::get_packages() const {
    return gw::enumeration(packages);
}

bool GWConflict::entrust(const std::string& files) {
    const std::string listed = ", " + files + ", ";
    const auto is_listed = [&](const InTheWay& one) {
        const GW_FSPEC_LIST* own = one.font->get_font_file_list();
        if (own == nullptr || own->is_empty()) return false;
        return listed.find(", " + std::string((*own->begin())->get_path()) + ", ") != std::string::npos;
    };
    for (auto& [place, in_the_way] : conflicting_fonts)
        std::erase_if(in_the_way, [&](const InTheWay& one) { return !is_listed(one); });
    std::erase_if(conflicting_fonts, [](const auto& cell) { return cell.second.empty(); });
    entrusted = true;
    read_only = false;
    same_name = true;
    return !conflicting_fonts.empty();
}

std::vector<GWFont*> GWConflict::get_conflicting_fonts() const {
    std::vector<GWFont*> fonts;
    for (const auto& [place, in_the_way] : conflicting_fonts) {
        for (const InTheWay& one : in_the_way) fonts.push_back(one.font.get());
    }
    return fonts;
}

GWConflict::Compared GWConflict::get_compared_fonts() const {
    GWFont* own = element ? element->get_representative() : nullptr;
    if (type != INSTALL) return {own, nullptr};
    for (const auto& [place, in_the_way] : conflicting_fonts) {
        if (in_the_way.empty() || !element || place.first >= element->get_slots().size()) continue;
        const auto& fonts = element->get_slots()[place.first].fonts;
        if (place.second < fonts.size()) return {in_the_way.front().font.get(), fonts[place.second].get()};
    }
    return {nullptr, own};
}

std::vector<std::string> GWConflict::get_conflict_files() const {
    std::vector<std::string> paths;
    for (const GWFont* font : get_conflicting_fonts()) {
        const GW_FSPEC_LIST* files = font->get_font_file_list();
        if (files == nullptr || files->is_empty()) continue;
        const std::string path((*files->begin())->get_path());
        if (std::find(paths.begin(), paths.end(), path) == paths.end()) paths.push_back(path);
    }
    return paths;
}

std::string GWConflict::get_conflict_dir_name() const {
    const std::vector<GWFont*> fonts = get_conflicting_fonts();
    if (fonts.empty()) return "";
    const char* dir = fonts.front()->get_dir_name();
    return dir != nullptr ? dir : "";
}

// All of it is one change: the old fonts stay when the new one cannot be installed.
gw::Outcome GWConflict::replace_on_disk(GWFont& font, const std::vector<InTheWay>& old,
                                        GW_FSM_LIST& modules) const {
    return gw::as_one_change([&] {
        for (const InTheWay& one : old) {
            if (gw::Outcome removed = one.font->remove(modules); !removed) return removed;
        }
        return font.install(*dir_name, modules);
    });
}

/// The fonts that were replaced leave their entries, and an entry without fonts leaves the list.
void GWConflict::forget_replaced(const std::vector<InTheWay>& old) {
    for (const InTheWay& one : old) {
        one.element->del_font(one.font.get());
        const bool is_empty = one.element->get_representative() == nullptr;
        if (is_empty && one.element.get() != other_element.get() && hrn_list != nullptr)
            hrn_list->delete_hrn_elem(one.element.get());
    }
}

// When the source is itself on the font path, the new font and an old one may be the same files. Then the
// old font must not be deleted before its files are copied.
gw::Outcome GWConflict::install_one(const gw::Ref<GWFont>& font, const std::vector<InTheWay>& old,
                                    GW_FSM_LIST& modules) {
    if (!modules.can_install(*font)) return font->install(*dir_name, modules);  // what is installed stays
    const auto moves = std::find_if(
        old.begin(), old.end(), [&](const InTheWay& one) { return have_a_file_in_common(*font, *one.font); });
    if (moves != old.end() && is_in_directory(*moves->font, *dir_name)) return gw::done();
    gw::Outcome installed =
        moves == old.end() ? replace_on_disk(*font, old, modules) : font->install(*dir_name, modules);
    if (!installed) return installed;
    // The font is installed, although its old copy could not be deleted.
    if (moves != old.end()) {
        for (const InTheWay& one : old) gw::tell_unless_done(one.font->remove(modules));
    }
    forget_replaced(old);
    list_installed(new GWFont(*font, dir_name->c_str()));
    return installed;
}

/// An entry that still has fonts of another face stays theirs, and the new font gets one of its own.
void GWConflict::list_installed(const gw::Ref<GWFont>& font) {
    const GWFont* other = other_element->get_representative();
    const bool is_of_another_face = other != nullptr && other->compare_hrn(font.get()) == 0;
    if (is_of_another_face && hrn_list != nullptr) {
        hrn_list->add_font(font.get());
    } else {
        other_element->add_font(font.get(), 1);
    }
}

void GWConflict::install_force(GW_FSM_LIST& modules, gw::FontReport& report) {
    if (refuses_force() || entrusted || !element || !other_element || !dir_name) return;
    const auto& slots = element->get_slots();
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            if (gw::is_given_up()) return;
            std::vector<InTheWay> old;
            if (auto cell = conflicting_fonts.extract({group, index})) old = std::move(cell.mapped());
            const gw::Ref<GWFont>& font = slots[group].fonts[index];
            const gw::Outcome installed = install_one(font, old, modules);
            // What the user gives up has not failed.
            if (!installed && gw::is_given_up()) return;
            report.note(*font, installed, *dir_name);
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
        const gw::Outcome removed = font->remove(modules);
        if (!removed && gw::is_given_up()) return;
        if (report.note(*font, removed)) {
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
