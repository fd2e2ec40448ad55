// SPDX-License-Identifier: MIT
//
// Why one entry of a font list could not simply be installed or deleted, so that the user can decide. A
// conflict shares the ownership of the fonts and elements that it refers to, so they stay valid when the
// lists change.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/gw_base.h"
#include "core/ref.h"
#include "model/gw_font.h"
#include "model/gw_hrn_list.h"

class GWAlias;
class GW_FSM_LIST;

class GWConflict : public GW_BASE {
  public:
    enum TYPE { INSTALL = 1, DELETE = 2 };
    enum INFO : int { READ_ONLY = 11, SYSTEM_FONT = 12, PACKAGE = 13, SAME_NAME = 14, ALIAS = 15 };

    /// `element` is the entry, `other` the installed entry of the same name (installation), `dir_name` the
    /// destination (copied), `list` the list that holds the element (deletion). All but `type` may be null.
    GWConflict(TYPE type, GWHRNElement* element, GWAlias* alias, GWHRNElement* other, const char* dir_name,
               GWHRNList* list);

    /// Sets the flag of `info` and, for an installation, notes `font` as the installed font that the new one
    /// at (group, index) would replace, instead of one that was noted before. Values outside 11..15 change
    /// nothing.
    void set_conflict(INFO info, GWFont* font, unsigned group, unsigned index);
    /// Notes that the new font would replace this one too, which belongs to `element`.
    void add_conflicting_font(GWHRNElement* element, GWFont* font, unsigned group, unsigned index);
    /// The flag of `info`; 0 for any other value.
    [[nodiscard]] int is_conflict(INFO info) const;
    /// Notes that files of these packages would be deleted or replaced.
    void add_packages(const std::set<std::string>& names);
    /// The packages, separated by ", "; "" when there is none.
    [[nodiscard]] std::string get_packages() const;
    /// The installed fonts that would be replaced; none for a deletion.
    [[nodiscard]] std::vector<GWFont*> get_conflicting_fonts() const;
    /// The directory of the first installed font in the way; "" when there is none.
    std::string get_conflict_dir_name() const;
    /// The paths of the files of all fonts in the way, each once.
    [[nodiscard]] std::vector<std::string> get_conflict_files() const;

    /// Another program carries it out, which may replace what this user may not. For it only the fonts of
    /// these files are in the way, paths separated by ", ". Returns whether any of them is.
    bool entrust(const std::string& files);
    [[nodiscard]] bool is_entrusted() const { return entrusted; }

    /// Whether the user has a choice: not with read-only fonts and aliases.
    [[nodiscard]] bool can_be_decided() const { return !refuses_force(); }
    /// An installed font beside the one that would take its place. Either may be null: nothing takes the
    /// place of a font that is to be deleted, and an alias is no font. Both are valid as long as the
    /// conflict, until it is carried out.
    struct Compared {
        GWFont* installed = nullptr;
        GWFont* offered = nullptr;
    };
    /// The first such pair.
    [[nodiscard]] Compared get_compared_fonts() const;

    /// Installs in spite of the conflict and replaces the old fonts. Does nothing for a read-only or alias
    /// conflict, nor for one that another program carries out. When a font cannot be installed, the old font
    /// stays.
    void install_force(GW_FSM_LIST& modules, gw::FontReport& report);
    /// Deletes in spite of the conflict. Does nothing for a read-only or alias conflict. When a font cannot
    /// be deleted, it stays in its element, and the element in the list.
    void delete_force(GW_FSM_LIST& modules, gw::FontReport& report);
    // The same without a report; failures are passed to the listener.
    void install_force(GW_FSM_LIST& modules);
    void delete_force(GW_FSM_LIST& modules);

    [[nodiscard]] TYPE get_type() const { return type; }
    /// The entry's name in the lists at the time when the conflict was made.
    [[nodiscard]] const char* get_name() const { return name.c_str(); }
    /// The destination of an installation; null when there is none.
    [[nodiscard]] const char* get_dir_name() const { return dir_name ? dir_name->c_str() : nullptr; }
    [[nodiscard]] GWHRNElement* get_element() const { return element.get(); }
    [[nodiscard]] GWHRNElement* get_other_element() const { return other_element.get(); }
    /// No longer valid when the alias list has been filled again.
    [[nodiscard]] GWAlias* get_alias() const { return alias; }

  private:
    [[nodiscard]] bool refuses_force() const { return read_only || is_alias; }
    /// An installed font that a new one would replace, with the entry that it is in.
    struct InTheWay {
        gw::Ref<GWHRNElement> element;
        gw::Ref<GWFont> font;
    };
    gw::Outcome replace_on_disk(GWFont& font, const std::vector<InTheWay>& old, GW_FSM_LIST& modules) const;
    gw::Outcome install_one(const gw::Ref<GWFont>& font, const std::vector<InTheWay>& old,
                            GW_FSM_LIST& modules);
    void forget_replaced(const std::vector<InTheWay>& old);
    void list_installed(const gw::Ref<GWFont>& font);

    TYPE type;
    std::string name;
    bool read_only = false;
    bool same_name = false;
    bool package = false;
    std::set<std::string> packages;
    bool system_font = false;
    bool is_alias = false;
    bool entrusted = false;
    std::optional<std::string> dir_name;
    gw::Ref<GWHRNElement> element;
    gw::Ref<GWHRNElement> other_element;
    // The installed fonts of the same name, by group and index of the new font in the element's font table.
    std::map<std::pair<unsigned, unsigned>, std::vector<InTheWay>> conflicting_fonts;
    GWHRNList* hrn_list;
    GWAlias* alias;
};
