// SPDX-License-Identifier: MIT
//
// What the user decides about conflicts, and how that is carried out. The dialog shows it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/conflicts/preconflictdlg.h"
#include "app/program/conflict_lists.h"
#include "core/gw_list.h"
#include "model/font_report.h"
#include "model/gw_conflict.h"

namespace gw {

class ControlledWork;

enum class Resolution { UNDECIDED, KEEP_AS_IS, FORCE, READ_ONLY };

class Decisions {
  public:
    /// Begins with these conflicts (not owned, not empty), all of them undecided. `success` fonts are done
    /// already.
    void begin(unsigned success, GW_LIST<GWConflict>* list);
    void forget();

    /// Null when there is nothing to decide.
    [[nodiscard]] GW_LIST<GWConflict>* list() const { return shown_.list(); }
    [[nodiscard]] bool installs() const { return type_ == GWConflict::INSTALL; }
    [[nodiscard]] GWConflict::TYPE type() const { return type_; }
    /// Fonts that are done, with those that `carry_out` has done.
    [[nodiscard]] unsigned success_count() const { return success_count_; }
    [[nodiscard]] int count() const { return static_cast<int>(resolutions_.size()); }
    /// The conflict at the 1-based position; null when there is none.
    [[nodiscard]] GWConflict* conflict_at(int position) const;
    /// `position` is one of them.
    [[nodiscard]] Resolution at(int position) const;
    /// Whether another program carries them out.
    [[nodiscard]] bool are_entrusted() const;
    /// The positions of those that are decided so.
    [[nodiscard]] std::vector<int> forced() const;
    /// Decides about one; those that are read-only stay so.
    void decide(int position, Resolution resolution);
    [[nodiscard]] bool has_undecided() const;

    /// Installs or deletes the fonts that are decided so, makes that final, and tells the server. `report`
    /// gets what was done and what failed. Where windows control work, the user may stop it: returns the
    /// positions that were not tried then.
    std::vector<int> carry_out(FontReport& report);

  private:
    std::size_t carry_out_each(const std::vector<int>& positions, ControlledWork& work, FontReport& report);
    [[nodiscard]] bool force_and_tell(GWConflict& conflict, FontReport& all);
    void make_final(FontReport& report);
    void tell_server(const std::vector<int>& carried_out) const;

    ConflictView shown_;
    unsigned success_count_ = 0;
    GWConflict::TYPE type_ = GWConflict::INSTALL;
    std::vector<Resolution> resolutions_;  // by position - 1
};

/// Those of the dialog.
Decisions& decisions();

/// The word for a resolution in the user's language; "" for one that the user has not made.
[[nodiscard]] std::string resolution_word(Resolution resolution, bool installs);
/// Why there is a conflict, in several lines.
[[nodiscard]] std::string conflict_detail(const GWConflict& conflict);
/// The same but for the font of the same name; each line begins with a newline.
[[nodiscard]] std::string other_reasons(const GWConflict& conflict);

}  // namespace gw
