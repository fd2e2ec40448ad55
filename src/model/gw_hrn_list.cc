// SPDX-License-Identifier: MIT
#include "model/gw_hrn_list.h"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "core/text.h"
#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_xlfd_name.h"
#include "model/packaged_fonts.h"
#include "modules/gw_fsm_list.h"
#include "platform/host_paths.h"

namespace {

std::string size_text(const GWFont& font) {
    return gw::truncated(font.get_field(GWFont::POINT_SIZE), GWHRNElement::SIZE_TEXT_LIMIT);
}

std::string resolution_text(const GWFont& font) {
    const std::string x = font.get_field(GWFont::RESOLUTION_X);
    return gw::truncated(x + " X " + font.get_field(GWFont::RESOLUTION_Y), GWHRNElement::SIZE_TEXT_LIMIT);
}

bool is_bitmap(const GWFont* font) {
    return font != nullptr && font->is_bitmap();
}

bool is_system_font(const GWFont& font) {
    const char* dir = font.get_dir_name();
    return dir != nullptr && std::string_view(dir).find(gw::SYSTEM_FONT_DIR) != std::string_view::npos;
}

}  // namespace

unsigned long GWHRNElement::renamings = 0;

GWHRNElement::GWHRNElement(GWFont* font) {
    _initialize_hrn_element(font);
}

GWHRNElement::GWHRNElement(const GWHRNElement& other)
    : GW_BASE(other),
      RefCounted(other),
      read_only(other.read_only),
      disk_space(other.disk_space),
      slots(other.slots) {
    if (GWFont* font = get_representative(); font != nullptr) name = font->get_hrn_name();
}

GWHRNElement::~GWHRNElement() = default;

void GWHRNElement::_initialize_hrn_element(GWFont* font) {
    const gw::Ref<GWFont> shared(font);
    if (!name.empty()) ++renamings;
    disk_space = font->get_disk_space();
    PointSize slot;
    if (is_xlfd_name(font->get_xlfd_name()) != 0) {
        slot.point_size = size_text(*font);
        slot.resolutions.push_back(resolution_text(*font));
    } else {
        slot.point_size = "00";
        slot.resolutions.emplace_back("0");
    }
    slot.fonts.push_back(shared);
    slots.assign(1, slot);
    name = font->get_hrn_name();
    read_only = font->is_read_only() ? 1 : 0;
}

int GWHRNElement::add_font(GWFont* font, int force) {
    const GWFont* representative = get_representative();
    const bool fits = is_bitmap(representative) && is_bitmap(font) &&
                      is_xlfd_name(font->get_xlfd_name()) != 0 && representative->compare_hrn(font) != 0;
    if (!fits) {
        if (force != 0) _initialize_hrn_element(font);
        return force != 0 ? 1 : 0;
    }

    const std::string point_size = size_text(*font);
    auto slot = std::find_if(slots.begin(), slots.end(),
                             [&](const PointSize& known) { return known.point_size == point_size; });
    if (slot == slots.end()) {
        if (slots.size() >= MAX_POINT_SIZES && force == 0) return 0;
        const int decipoints = std::atoi(point_size.c_str());
        const auto bigger = std::find_if(slots.begin(), slots.end(), [=](const PointSize& known) {
            return std::atoi(known.point_size.c_str()) > decipoints;
        });
        slot = slots.insert(bigger, {point_size, {}, {}});
    } else if (slot->fonts.size() >= MAX_FONTS_PER_SIZE && force == 0) {
        return 0;
    }
    slot->resolutions.push_back(resolution_text(*font));
    slot->fonts.emplace_back(font);
    disk_space += font->get_disk_space();
    if (read_only == 0) read_only = font->is_read_only() ? 1 : 0;
    return 1;
}

int GWHRNElement::del_font(GWFont* font) {
    for (PointSize& slot : slots) {
        for (std::size_t i = 0; i < slot.fonts.size(); ++i) {
            if (slot.fonts[i].get() != font) continue;
            disk_space -= std::min(disk_space, font->get_disk_space());
            slot.resolutions.erase(slot.resolutions.begin() + static_cast<std::ptrdiff_t>(i));
            slot.fonts.erase(slot.fonts.begin() + static_cast<std::ptrdiff_t>(i));
            return 1;
        }
    }
    return 0;
}

std::vector<std::string> GWHRNElement::get_point_sizes(unsigned& count) const {
    std::vector<std::string> sizes;
    for (const PointSize& slot : slots) sizes.push_back(slot.point_size);
    count = static_cast<unsigned>(sizes.size());
    return sizes;
}

std::vector<std::string> GWHRNElement::get_res(const char* point_size, unsigned& count) const {
    count = 0;
    if (point_size == nullptr) return {};
    for (const PointSize& slot : slots) {
        if (slot.point_size != point_size) continue;
        count = static_cast<unsigned>(slot.resolutions.size());
        return slot.resolutions;
    }
    return {};
}

GWFont* GWHRNElement::get_representative() const {
    for (const PointSize& slot : slots) {
        if (!slot.fonts.empty()) return slot.fonts.front().get();
    }
    return nullptr;
}

GWFont* GWHRNElement::get_font(const char* point_size, const char* resolution) const {
    GWFont* representative = get_representative();
    if (!is_bitmap(representative) || point_size == nullptr || resolution == nullptr) return representative;
    for (const PointSize& slot : slots) {
        if (slot.point_size != point_size) continue;
        for (std::size_t i = 0; i < slot.fonts.size(); ++i) {
            if (slot.resolutions[i] == resolution) return slot.fonts[i].get();
        }
    }
    return representative;
}

int GWHRNElement::compare(const GWHRNElement* other) const {
    return ::strcasecmp(get_name(), other->get_name());
}

int GWHRNElement::_hrn_elem_conflict(GWHRNElement* installed_elem, GW_LIST<GWConflict>& conflicts,
                                     const char* dir) {
    std::unique_ptr<GWConflict> conflict;
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            GWFont* font = slots[group].fonts[index].get();
            for (const PointSize& installed_slot : installed_elem->slots) {
                for (const gw::Ref<GWFont>& installed : installed_slot.fonts) {
                    if (font->fontcmp(installed.get()) == 0) continue;
                    if (!conflict) {
                        conflict = std::make_unique<GWConflict>(GWConflict::INSTALL, this, nullptr,
                                                                installed_elem, dir, nullptr);
                    }
                    conflict->set_conflict(
                        installed->is_read_only() ? GWConflict::READ_ONLY : GWConflict::SAME_NAME,
                        installed.get(), group, index);
                    if (is_system_font(*installed))
                        conflict->set_conflict(GWConflict::SYSTEM_FONT, installed.get(), group, index);
                }
            }
        }
    }
    if (!conflict) return 0;
    conflicts.append(conflict.release());
    return 1;
}

int GWHRNElement::install_fonts(const char* dir, GWHRNList& installed, GW_SORTED_LIST<GWAlias>& aliases,
                                GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts,
                                gw::FontReport& report) {
    const GWFont* representative = get_representative();
    if (representative == nullptr) return DONE;  // nothing to do
    const GWFont::GW_FONT_TYPE type = representative->get_type();
    for (GWHRNElement* elem : installed) {
        const GWFont* other = elem->get_representative();
        if (other == nullptr || other->get_type() != type) continue;
        if (_hrn_elem_conflict(elem, conflicts, dir) != 0) return CONFLICT;
    }
    if (!representative->is_postscript_named() && is_named_like(aliases, report)) return CONFLICT;
    // Kept: of each size only as many fonts are installed as there are sizes.
    int result = FAILED;
    for (const PointSize& slot : slots) {
        for (std::size_t j = 0; j < slot.fonts.size(); ++j) {
            GWFont& font = *slot.fonts[j];
            if (j >= slots.size()) {
                report.note(font, gw::Failure{font.get_xlfd_name(), gw::Reason::TOO_MANY_OF_ONE_SIZE});
                continue;
            }
            if (!report.note(font, font.install(dir, modules), dir)) continue;
            installed.add_font(new GWFont(font, dir));
            result = DONE;
        }
    }
    return result;
}

int GWHRNElement::install_fonts(const char* dir, GWHRNList& installed, GW_SORTED_LIST<GWAlias>& aliases,
                                GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts) {
    gw::FontReport report;
    const int result = install_fonts(dir, installed, aliases, modules, conflicts, report);
    report.tell();
    return result;
}

/// Whether an alias has the name of one of the fonts; if so, the font is recorded in the report.
bool GWHRNElement::is_named_like(const GW_SORTED_LIST<GWAlias>& aliases, gw::FontReport& report) const {
    for (const PointSize& slot : slots) {
        for (const gw::Ref<GWFont>& font : slot.fonts) {
            // Kept: a font whose name is an alias is not installed and has no conflict.
            const bool taken = std::any_of(aliases.begin(), aliases.end(), [&](const GWAlias* alias) {
                return ::strcasecmp(font->get_xlfd_name(), alias->get_alias_name()) == 0;
            });
            if (!taken) continue;
            report.note(*font, gw::Failure{font->get_xlfd_name(), gw::Reason::NAME_OF_AN_ALIAS});
            return true;
        }
    }
    return false;
}

int GWHRNElement::delete_fonts(GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts, GWHRNList& list,
                               gw::FontReport& report) {
    std::unique_ptr<GWConflict> conflict;
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            GWFont* font = slots[group].fonts[index].get();
            const std::string packages = font->is_read_only() ? "" : gw::packages_of(*font);
            if (!font->is_read_only() && !is_system_font(*font) && packages.empty()) continue;
            if (!conflict) {
                conflict =
                    std::make_unique<GWConflict>(GWConflict::DELETE, this, nullptr, nullptr, nullptr, &list);
            }
            if (font->is_read_only()) {
                conflict->set_conflict(GWConflict::READ_ONLY, font, group, index);
            } else if (is_system_font(*font)) {
                conflict->set_conflict(GWConflict::SYSTEM_FONT, font, group, index);
            }
            if (!packages.empty()) conflict->set_package(packages);
        }
    }
    if (conflict) {
        conflicts.append(conflict.release());
        return CONFLICT;
    }
    std::vector<gw::Ref<GWFont>> fonts;
    for (const PointSize& slot : slots) fonts.insert(fonts.end(), slot.fonts.begin(), slot.fonts.end());
    bool all_deleted = true;
    for (const gw::Ref<GWFont>& font : fonts) {
        if (report.note(*font, font->remove(modules))) {
            del_font(font.get());
        } else {
            all_deleted = false;
        }
    }
    if (!all_deleted) return FAILED;
    slots.clear();
    return DONE;
}

int GWHRNElement::delete_fonts(GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts, GWHRNList& list) {
    gw::FontReport report;
    const int result = delete_fonts(modules, conflicts, list, report);
    report.tell();
    return result;
}

GWHRNList::~GWHRNList() {
    clear();
}

void GWHRNList::clear() {
    for (GWHRNElement* elem : *this) gw::Ref<GWHRNElement>::adopt(elem);
    GW_SORTED_LIST<GWHRNElement>::clear();
}

int GWHRNList::insert(GWHRNElement* elem) {
    gw::Ref<GWHRNElement> owned(elem);
    const bool index_is_current = index.is_current(*this);
    GW_SORTED_LIST<GWHRNElement>::insert(elem);
    if (index_is_current) index.follow_insertion(elem, *this);
    owned.leave();
    return 1;
}

gw::Ref<GWHRNElement> GWHRNList::release_at_pos(int pos) {
    return gw::Ref<GWHRNElement>::adopt(zap_elem_at_pos(pos));
}

// Only elements of the font's key can take it, so only these are asked, in list order.
void GWHRNList::add_font(GWFont* font) {
    const gw::Ref<GWFont> shared(font);
    if (is_bitmap(font)) {
        const gw::BitmapIndex::Elements& elements = index.elements_for(*font, *this);
        if (std::any_of(elements.begin(), elements.end(),
                        [font](GWHRNElement* elem) { return elem->add_font(font, 0) != 0; })) {
            return;
        }
    }
    insert(new GWHRNElement(font));
}

int GWHRNList::delete_at_pos(unsigned pos, GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts) {
    GWHRNElement* elem = get_elem_at_pos(static_cast<int>(pos));
    if (elem == nullptr) return 0;
    const int result = elem->delete_fonts(modules, conflicts, *this, report);
    if (result == GWHRNElement::DONE) release_at_pos(static_cast<int>(pos));
    return result;
}

int GWHRNList::install_at_pos(unsigned pos, const char* dir, GWHRNList& installed,
                              GW_SORTED_LIST<GWAlias>& aliases, GW_FSM_LIST& modules,
                              GW_LIST<GWConflict>& conflicts) {
    GWHRNElement* elem = get_elem_at_pos(static_cast<int>(pos));
    return elem != nullptr ? elem->install_fonts(dir, installed, aliases, modules, conflicts, report) : 0;
}

unsigned GWHRNList::get_disk_space(unsigned pos) const {
    const GWHRNElement* elem = get_elem_at_pos(static_cast<int>(pos));
    return elem != nullptr ? elem->get_disk_space() : 0;
}

std::vector<std::string> GWHRNList::get_point_sizes(unsigned pos, unsigned& number) const {
    number = 0;
    const GWHRNElement* elem = get_elem_at_pos(static_cast<int>(pos));
    return elem != nullptr ? elem->get_point_sizes(number) : std::vector<std::string>();
}

std::vector<std::string> GWHRNList::get_res_for_pt_size(unsigned pos, const char* point_size,
                                                        unsigned& number) const {
    number = 0;
    const GWHRNElement* elem = get_elem_at_pos(static_cast<int>(pos));
    return elem != nullptr ? elem->get_res(point_size, number) : std::vector<std::string>();
}

void GWHRNList::merge(const GWHRNList& other) {
    for (const GWHRNElement* elem : other) insert(new GWHRNElement(*elem));
}

void GWHRNList::delete_hrn_elem(GWHRNElement* elem) {
    int pos = 0;
    for (const GWHRNElement* candidate : *this) {
        ++pos;
        if (candidate != elem) continue;
        release_at_pos(pos);
        return;
    }
}
