// SPDX-License-Identifier: MIT
//
// The contents of the font lists: one element for each human-readable name, with all fonts of that name (for
// bitmap fonts, all point sizes and resolutions of one face). Installing and deleting the user's selection
// starts here.
//
// Owners: a `GWHRNList` owns its elements, and an element shares its fonts with its copies and with pending
// conflicts.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/gw_base.h"
#include "core/gw_list.h"
#include "core/ref.h"
#include "model/bitmap_index.h"
#include "model/font_report.h"
#include "model/gw_font.h"

class GWAlias;
class GWConflict;
class GWHRNList;
class GW_FSM_LIST;

class GWHRNElement : public GW_BASE, public gw::RefCounted {
  public:
    /// The limits of an element, unless a font is forced on it. A font beyond the limits gets a new element.
    static constexpr unsigned MAX_POINT_SIZES = 100;
    static constexpr unsigned MAX_FONTS_PER_SIZE = 20;
    static constexpr std::size_t SIZE_TEXT_LIMIT = 19;  ///< characters of a point-size or resolution text

    /// The results of `install_fonts` and `delete_fonts`.
    static constexpr int DONE = 2;
    static constexpr int CONFLICT = 1;
    static constexpr int FAILED = 0;

    /// The fonts of one point size.
    struct PointSize {
        std::string point_size;  ///< decipoints, as in the XLFD name
        std::vector<gw::Ref<GWFont>> fonts;
        /// The resolution of the font at that place, "75 X 75"; "0" when its name is no XLFD name.
        [[nodiscard]] std::string resolution(std::size_t place) const;
    };

    explicit GWHRNElement(GWFont* font);
    /// A copy that shares the fonts; its name is composed again.
    GWHRNElement(const GWHRNElement& other);
    ~GWHRNElement() override;
    GWHRNElement& operator=(const GWHRNElement&) = delete;

    /// Makes this the element of `font` alone.
    void _initialize_hrn_element(GWFont* font);
    /// 1 when the element took the font. A font that does not belong to this name is refused (0); with
    /// `force` non-zero the element becomes one of this font alone. When the font belongs here but the
    /// element is full, it is refused (0), and with `force` taken all the same.
    int add_font(GWFont* font, int force);
    /// Removes this font object; 1, or 0 when it is not in the element. Kept: a size stays when its last font
    /// goes.
    int del_font(GWFont* font);

    /// The point-size texts (decipoints) in ascending order, and their number.
    std::vector<std::string> get_point_sizes(unsigned& count) const;
    /// The resolution texts of that point size, and their number; empty and 0 for an unknown or null size.
    std::vector<std::string> get_res(const char* point_size, unsigned& count) const;
    /// The font of that point size and resolution; the representative when there is none, and always for
    /// outline fonts. Owned by the element; null only when the element has lost all its fonts.
    GWFont* get_font(const char* point_size, const char* resolution) const;
    /// The first font of the first size that has one; null when there is none.
    [[nodiscard]] GWFont* get_representative() const;

    // Installing and deleting record the outcome for each font in `report`. Without a report, failures are
    // passed to the listener.

    /// DONE, or CONFLICT when a conflict stopped it and nothing was written. FAILED when the modules
    /// installed none of the fonts. Where the work is given up, the font in work is taken back and those
    /// behind it stay in the source; neither is a failure.
    int install_fonts(const char* dir, GWHRNList& installed, GW_SORTED_LIST<GWAlias>& aliases,
                      GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts, gw::FontReport& report);
    int install_fonts(const char* dir, GWHRNList& installed, GW_SORTED_LIST<GWAlias>& aliases,
                      GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts);
    /// Finds out what would stop `install_fonts` before anything is written: a conflict, which is recorded,
    /// or an alias of the same name, which is noted in the report. Writes nothing.
    bool is_stopped(GWHRNList& installed, const GW_SORTED_LIST<GWAlias>& aliases,
                    GW_LIST<GWConflict>& conflicts, const char* dir, gw::FontReport& report);
    /// Finds out what would stop `delete_fonts` before anything is deleted: CONFLICT, which is recorded,
    /// FAILED, which is noted in the report, or DONE when nothing would.
    int ask_before_deletion(GW_LIST<GWConflict>& conflicts, GWHRNList& list, gw::FontReport& report);
    /// DONE, and the element is without sizes, or CONFLICT when a conflict stopped it and nothing was
    /// deleted. FAILED when a font could not be deleted: the element keeps that font.
    int delete_fonts(GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts, GWHRNList& list,
                     gw::FontReport& report);
    int delete_fonts(GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts, GWHRNList& list);
    /// 1 when a font of this element is the same as one of `installed_elem` and a conflict was recorded, else
    /// 0. The conflict belongs to `conflicts`' owner.
    int _hrn_elem_conflict(GWHRNElement* installed_elem, GW_LIST<GWConflict>& conflicts, const char* dir);

    /// Adds `text` to the names of the fonts; "" takes it away. The element's name follows.
    void set_distinction(const std::string& text);
    [[nodiscard]] const std::string& get_distinction() const;
    /// Composes the name again, because the mark of a font has changed.
    void compose_name();

    using GW_BASE::compare;
    /// `strcasecmp` of the names.
    int compare(const GWHRNElement* other) const;

    [[nodiscard]] const char* get_name() const { return name.c_str(); }
    [[nodiscard]] int is_read_only() const { return read_only; }
    /// Kilobytes, the sum over the fonts; measured when it is asked for.
    [[nodiscard]] unsigned get_disk_space() const;
    [[nodiscard]] const std::vector<PointSize>& get_slots() const { return slots; }

    /// Incremented whenever the name of any element may have changed.
    [[nodiscard]] static unsigned long get_renamings() { return renamings; }
    /// Incremented whenever any element may have got or lost a font.
    [[nodiscard]] static unsigned long get_regroupings() { return regroupings; }

  private:
    bool has_conflict_of_type(GWHRNList& installed, GW_LIST<GWConflict>& conflicts, const char* dir);
    bool has_conflict_of_names(GWHRNList& installed, GW_LIST<GWConflict>& conflicts, const char* dir);
    static std::optional<std::set<std::string>> packages_of(GWFont& font, gw::FontReport& report);
    [[nodiscard]] bool is_named_like(const GW_SORTED_LIST<GWAlias>& aliases, gw::FontReport& report) const;

    static unsigned long renamings;
    static unsigned long regroupings;

    int read_only = 0;
    mutable std::optional<unsigned> disk_space;  // none until somebody asks
    std::vector<PointSize> slots;
    std::string name;
};

/// Elements are ordered by their names, and these may change.
template <>
struct GW_SORT_KEY<GWHRNElement> {
    static int compare(const GWHRNElement& a, const GWHRNElement& b) { return a.compare(&b); }
    static unsigned long generation() { return GWHRNElement::get_renamings(); }
};

class GWHRNList : public GW_SORTED_LIST<GWHRNElement> {
  public:
    explicit GWHRNList(int descending) : GW_SORTED_LIST<GWHRNElement>(descending) {}
    ~GWHRNList();

    /// Puts the font under its name: into the first element that takes it, or into a new one. The font
    /// belongs to the elements.
    void add_font(GWFont* font);
    /// `add_font` for each of them, in a fraction of the time if the list is empty.
    void add_fonts(const GW_LIST<GWFont>& fonts);
    /// Takes `elem` into the list, which owns it from now on; returns 1.
    int insert(GWHRNElement* elem);
    /// Unlinks the element at `pos` and returns it; the caller owns it from now on. Null for a position
    /// without an element.
    gw::Ref<GWHRNElement> release_at_pos(int pos);
    /// Deletes the fonts of the element at `pos` (1-based) and, when that is done, the element. Returns DONE
    /// or CONFLICT, 0 for a position without an element.
    int delete_at_pos(unsigned pos, GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts);
    /// Installs the element at `pos` into `dir`; what `install_fonts` answers, 0 for a position without an
    /// element.
    int install_at_pos(unsigned pos, const char* dir, GWHRNList& installed, GW_SORTED_LIST<GWAlias>& aliases,
                       GW_FSM_LIST& modules, GW_LIST<GWConflict>& conflicts);
    /// The element's values; 0 or empty for a position without an element.
    unsigned get_disk_space(unsigned pos) const;
    std::vector<std::string> get_point_sizes(unsigned pos, unsigned& count) const;
    std::vector<std::string> get_res_for_pt_size(unsigned pos, const char* point_size, unsigned& count) const;
    /// Gives entries that read the same something that tells them apart: the charset, the foundry, or the
    /// file. The order follows. Does nothing unless the font policy says so.
    void tell_apart();
    /// Takes a copy of each element of `other`, in its order; `other` stays as it is and the fonts are
    /// shared.
    void merge(const GWHRNList& other);
    /// Releases every element.
    void clear();
    /// Releases this element object, if it is in the list.
    void delete_hrn_elem(GWHRNElement* elem);

    /// The fonts of this list that `install_at_pos` could not install or `delete_at_pos` could not delete
    /// since the report was last cleared. Fonts with a conflict are not among them.
    [[nodiscard]] gw::FontReport& get_report() { return report; }

  private:
    /// What the names depend on: the list and its elements, and the fonts of these.
    using KnownState = std::pair<gw::ListState, unsigned long>;
    [[nodiscard]] KnownState known_state() const { return {state(), GWHRNElement::get_regroupings()}; }

    std::optional<KnownState> told_apart;  // the state in which no names are to be told apart
    gw::BitmapIndex index;
    gw::FontReport report;
};
