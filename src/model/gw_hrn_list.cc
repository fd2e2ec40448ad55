// SPDX-License-Identifier: MIT
#include "model/gw_hrn_list.h"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "core/font_policy.h"
#include "core/long_work.h"
#include "core/text.h"
#include "model/distinctions.h"
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

bool is_bitmap(const GWFont* font) {
    return font != nullptr && font->is_bitmap();
}

/// Whether one of the elements has taken the font.
bool is_taken(GWFont* font, const gw::BitmapIndex::Elements& elements) {
    return std::any_of(elements.begin(), elements.end(),
                       [font](GWHRNElement* elem) { return elem->add_font(font, 0) != 0; });
}

bool is_system_font(const GWFont& font) {
    const char* dir = font.get_dir_name();
    return dir != nullptr && std::string_view(dir).find(gw::SYSTEM_FONT_DIR) != std::string_view::npos;
}

}  // namespace

std::string GWHRNElement::PointSize::resolution(std::size_t place) const {
    GWFont& font = *fonts.at(place);
    if (is_xlfd_name(font.get_xlfd_name()) == 0) return "0";
    const std::string x = font.get_field(GWFont::RESOLUTION_X);
    return gw::truncated(x + " X " + font.get_field(GWFont::RESOLUTION_Y), SIZE_TEXT_LIMIT);
}

unsigned long GWHRNElement::renamings = 0;
unsigned long GWHRNElement::regroupings = 0;

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
    disk_space.reset();
    PointSize slot;
    if (is_xlfd_name(font->get_xlfd_name()) != 0) {
        slot.point_size = size_text(*font);
    } else {
        slot.point_size = "00";
    }
    slot.fonts.push_back(shared);
    slots.clear();
    slots.push_back(std::move(slot));
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

    ++regroupings;
    // It may come to represent the entry.
    font->set_distinction(representative->get_distinction());
    const std::string point_size = size_text(*font);
    auto slot = std::find_if(slots.begin(), slots.end(),
                             [&](const PointSize& known) { return known.point_size == point_size; });
    if (slot == slots.end()) {
        if (slots.size() >= MAX_POINT_SIZES && force == 0) return 0;
        const int decipoints = std::atoi(point_size.c_str());
        const auto bigger = std::find_if(slots.begin(), slots.end(), [=](const PointSize& known) {
            return std::atoi(known.point_size.c_str()) > decipoints;
        });
        slot = slots.insert(bigger, {point_size, {}});
    } else if (slot->fonts.size() >= MAX_FONTS_PER_SIZE && force == 0) {
        return 0;
    }
    slot->fonts.emplace_back(font);
    if (disk_space) *disk_space += font->get_disk_space();
    if (read_only == 0) read_only = font->is_read_only() ? 1 : 0;
    return 1;
}

int GWHRNElement::del_font(GWFont* font) {
    ++regroupings;
    for (PointSize& slot : slots) {
        for (std::size_t i = 0; i < slot.fonts.size(); ++i) {
            if (slot.fonts[i].get() != font) continue;
            if (disk_space) *disk_space -= std::min(*disk_space, font->get_disk_space());
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
        std::vector<std::string> resolutions;
        for (std::size_t i = 0; i < slot.fonts.size(); ++i) resolutions.push_back(slot.resolution(i));
        count = static_cast<unsigned>(resolutions.size());
        return resolutions;
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
            if (slot.resolution(i) == resolution) return slot.fonts[i].get();
        }
    }
    return representative;
}

unsigned GWHRNElement::get_disk_space() const {
    if (disk_space) return *disk_space;
    disk_space = 0;
    for (const PointSize& slot : slots) {
        for (const gw::Ref<GWFont>& font : slot.fonts) *disk_space += font->get_disk_space();
    }
    return *disk_space;
}

void GWHRNElement::set_distinction(const std::string& text) {
    for (const PointSize& slot : slots) {
        for (const gw::Ref<GWFont>& font : slot.fonts) font->set_distinction(text);
    }
    compose_name();
}

void GWHRNElement::compose_name() {
    if (GWFont* font = get_representative(); font != nullptr) name = font->get_hrn_name();
    ++renamings;
}

const std::string& GWHRNElement::get_distinction() const {
    static const std::string NONE;
    const GWFont* font = get_representative();
    return font != nullptr ? font->get_distinction() : NONE;
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

bool GWHRNElement::has_conflict_of_type(GWHRNList& installed, GW_LIST<GWConflict>& conflicts,
                                        const char* dir) {
    const GWFont::GW_FONT_TYPE type = get_representative()->get_type();
    for (GWHRNElement* elem : installed) {
        const GWFont* other = elem->get_representative();
        if (other == nullptr || other->get_type() != type) continue;
        if (_hrn_elem_conflict(elem, conflicts, dir) != 0) return true;
    }
    return false;
}

/// Whether any name of a font belongs to another file, of any type. One conflict has all fonts in the way.
bool GWHRNElement::has_conflict_of_names(GWHRNList& installed, GW_LIST<GWConflict>& conflicts,
                                         const char* dir) {
    std::unique_ptr<GWConflict> conflict;
    const auto note = [&](GWHRNElement* elem, GWFont* in_the_way, unsigned group, unsigned index) {
        if (!conflict)
            conflict =
                std::make_unique<GWConflict>(GWConflict::INSTALL, this, nullptr, elem, dir, &installed);
        const bool is_read_only = in_the_way->is_read_only();
        conflict->set_conflict(is_read_only ? GWConflict::READ_ONLY : GWConflict::SAME_NAME, nullptr, group,
                               index);
        if (is_system_font(*in_the_way))
            conflict->set_conflict(GWConflict::SYSTEM_FONT, nullptr, group, index);
        conflict->add_conflicting_font(elem, in_the_way, group, index);
    };
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            GWFont& font = *slots[group].fonts[index];
            for (GWHRNElement* elem : installed) {
                for (const PointSize& slot : elem->slots) {
                    for (const gw::Ref<GWFont>& other : slot.fonts) {
                        if (font.shares_a_name(*other)) note(elem, other.get(), group, index);
                    }
                }
            }
        }
    }
    if (!conflict) return false;
    conflicts.append(conflict.release());
    return true;
}

bool GWHRNElement::is_stopped(GWHRNList& installed, const GW_SORTED_LIST<GWAlias>& aliases,
                              GW_LIST<GWConflict>& conflicts, const char* dir, gw::FontReport& report) {
    const GWFont* representative = get_representative();
    if (representative == nullptr) return false;
    // Kept: a font has a conflict only with fonts of its own type.
    const bool is_in_conflict = gw::font_policy().enters_all_names()
                                    ? has_conflict_of_names(installed, conflicts, dir)
                                    : has_conflict_of_type(installed, conflicts, dir);
    return is_in_conflict || (!representative->is_postscript_named() && is_named_like(aliases, report));
}

int GWHRNElement::install_fonts(const char* dir, GWHRNList& installed, GW_SORTED_LIST<GWAlias>& aliases,
                                GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts,
                                gw::FontReport& report) {
    if (get_representative() == nullptr) return DONE;  // nothing to do
    if (is_stopped(installed, aliases, conflicts, dir, report)) return CONFLICT;
    // Kept: of each size only as many fonts are installed as there are sizes.
    int result = FAILED;
    for (const PointSize& slot : slots) {
        for (std::size_t j = 0; j < slot.fonts.size(); ++j) {
            GWFont& font = *slot.fonts[j];
            if (gw::is_given_up()) return result;
            if (j >= slots.size()) {
                report.note(font, gw::Failure{font.get_xlfd_name(), gw::Reason::TOO_MANY_OF_ONE_SIZE});
                continue;
            }
            const gw::Outcome outcome = font.install(dir, modules);
            // What the user gives up has not failed.
            if (!outcome && gw::is_given_up()) return result;
            if (!report.note(font, outcome, dir)) continue;
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
            const std::vector<gw::IndexName> names = font->get_all_names();
            const bool taken = std::any_of(aliases.begin(), aliases.end(), [&](const GWAlias* alias) {
                return std::any_of(names.begin(), names.end(), [&](const gw::IndexName& own) {
                    return ::strcasecmp(own.xlfd.c_str(), alias->get_alias_name()) == 0;
                });
            });
            if (!taken) continue;
            report.note(*font, gw::Failure{font->get_xlfd_name(), gw::Reason::NAME_OF_AN_ALIAS});
            return true;
        }
    }
    return false;
}

/// The packages of a font that could be deleted. Empty, with a note in the report, when the package manager
/// does not answer: then nothing is deleted.
std::optional<std::set<std::string>> GWHRNElement::packages_of(GWFont& font, gw::FontReport& report) {
    if (font.is_read_only()) return std::set<std::string>();
    const gw::Result<std::set<std::string>> packages = gw::packages_of(font);
    if (packages) return *packages;
    report.note(font, packages.failure().with(gw::Sequel::FONT_STAYS));
    return std::nullopt;
}

int GWHRNElement::ask_before_deletion(GW_LIST<GWConflict>& conflicts, GWHRNList& list,
                                      gw::FontReport& report) {
    std::unique_ptr<GWConflict> conflict;
    for (unsigned group = 0; group < slots.size(); ++group) {
        for (unsigned index = 0; index < slots[group].fonts.size(); ++index) {
            GWFont* font = slots[group].fonts[index].get();
            const std::optional<std::set<std::string>> packages = packages_of(*font, report);
            if (!packages) return FAILED;
            if (!font->is_read_only() && !is_system_font(*font) && packages->empty()) continue;
            if (!conflict) {
                conflict =
                    std::make_unique<GWConflict>(GWConflict::DELETE, this, nullptr, nullptr, nullptr, &list);
            }
            if (font->is_read_only()) {
                conflict->set_conflict(GWConflict::READ_ONLY, font, group, index);
            } else if (is_system_font(*font)) {
                conflict->set_conflict(GWConflict::SYSTEM_FONT, font, group, index);
            }
            conflict->add_packages(*packages);
        }
    }
    if (!conflict) return DONE;
    conflicts.append(conflict.release());
    return CONFLICT;
}

int GWHRNElement::delete_fonts(GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts, GWHRNList& list,
                               gw::FontReport& report) {
    if (const int asked = ask_before_deletion(conflicts, list, report); asked != DONE) return asked;
    std::vector<gw::Ref<GWFont>> fonts;
    for (const PointSize& slot : slots) fonts.insert(fonts.end(), slot.fonts.begin(), slot.fonts.end());
    bool all_deleted = true;
    for (const gw::Ref<GWFont>& font : fonts) {
        const gw::Outcome removed = font->remove(modules);
        if (!removed && gw::is_given_up()) return FAILED;
        if (report.note(*font, removed)) {
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
    if (is_bitmap(font) && is_taken(font, index.elements_for(*font, *this))) return;
    insert(new GWHRNElement(font));
}

void GWHRNList::add_fonts(const GW_LIST<GWFont>& fonts) {
    if (!is_empty()) {
        for (GWFont* font : fonts) add_font(font);
        return;
    }
    gw::BitmapIndex bitmaps;
    std::vector<gw::Ref<GWHRNElement>> owned;
    std::vector<GWHRNElement*> elements;
    for (GWFont* font : fonts) {
        const gw::Ref<GWFont> shared(font);
        if (is_bitmap(font) && is_taken(font, bitmaps.added_for(*font))) continue;
        owned.emplace_back(new GWHRNElement(font));
        elements.push_back(owned.back().get());
        bitmaps.add(elements.back(), *this);
    }
    insert_all(std::move(elements));
    for (gw::Ref<GWHRNElement>& element : owned) element.leave();
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

void GWHRNList::tell_apart() {
    if (!gw::font_policy().tells_names_apart() || told_apart == known_state()) return;
    const gw::ListState before = state();
    gw::tell_apart(std::vector<GWHRNElement*>(begin(), end()));
    if (state() != before) sort_again();
    told_apart = known_state();
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
