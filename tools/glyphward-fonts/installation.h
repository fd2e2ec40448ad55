// SPDX-License-Identifier: MIT
//
// The installation of fonts into a directory, row by row, as a part of one action of the user.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "model/font_report.h"
#include "store/font_action.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/destination.h"
#include "glyphward-fonts/font_notes.h"
#include "glyphward-fonts/host.h"

namespace gw::fonts {

class Installation {
  public:
    Installation(std::string directory, IfThere if_there, Host& host, Report& report)
        : directory_(std::move(directory)), if_there_(if_there), host_(host), report_(report) {}

    /// Installs them, or with `dry_run` finds out what it would do. A signal (see interruption.h) ends it,
    /// and the font in work is left out.
    void install(GWHRNList& sources);
    /// A dry run is about what the superuser would do, who may replace every font.
    void try_as_superuser() { is_superusers_ = true; }
    /// Fonts that could not be made final have failed.
    void note_failures_of_commit();
    [[nodiscard]] FontReport& failures() { return failures_; }
    /// What happened to each font.
    [[nodiscard]] const FontNotes& notes() const { return notes_; }
    /// Whether the directory, which has one of the fonts already, is on no font path: a run before this one
    /// did not come to its end.
    [[nodiscard]] bool is_left_off_path() const { return found_in_directory_ && !is_on_path(directory_); }
    Tally tally;

  private:
    void install_row(GWHRNElement& row);
    void decide(GWConflict& conflict);
    void replace(GWConflict& conflict, const std::string& why);
    bool is_refused(GWHRNElement& row);
    [[nodiscard]] bool may_replace(const GWConflict& conflict) const;
    void fail(const std::string& font, const Failure& why);
    void note(FontNotes::Note what);
    std::vector<FontReport::Entry> take_failures();
    void note_failures();

    std::string directory_;
    IfThere if_there_;
    Host& host_;
    Report& report_;
    bool is_superusers_ = false;
    bool found_in_directory_ = false;
    std::vector<std::string> files_;  // of the row in work, without those of fonts that have failed
    FontReport failures_;
    FontNotes notes_;
};

/// Makes what was done final. What cannot be is a failure in these reports, with this consequence. Returns
/// what `undo` calls it; "" where nothing can be undone.
std::string commit(FontAction& action, std::initializer_list<FontReport*> reports, Sequel sequel,
                   Report& report);

}  // namespace gw::fonts
