// SPDX-License-Identifier: MIT
//
// The deletion of fonts, row by row, as a part of one action of the user.
#pragma once

#include <vector>

#include "model/font_report.h"

#include "glyphward-fonts/font_notes.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/rows.h"

namespace gw::fonts {

class Deletion {
  public:
    /// `forces`: fonts of the system and of packages go, too.
    Deletion(bool forces, Host& host, Report& report) : forces_(forces), host_(host), report_(report) {}

    /// Deletes the rows, or with `dry_run` finds out what it would do. A signal (see interruption.h) ends it,
    /// and the font in work stays.
    void remove(const std::vector<Row>& rows);
    /// Fonts whose deletion could not be made final have failed.
    void note_failures_of_commit();
    [[nodiscard]] FontReport& failures() { return failures_; }
    /// What happened to each row.
    [[nodiscard]] const FontNotes& notes() const { return notes_; }
    Tally tally;

  private:
    void remove(const Row& row);
    void note_kept(const Row& row, const std::string& why);
    void note_deleted(const Row& row);
    void note_failures();
    std::vector<FontReport::Entry> take_failures();
    void decide(const Row& row, GWConflict& conflict);

    bool forces_;
    Host& host_;
    Report& report_;
    FontReport failures_;
    FontNotes notes_;
};

}  // namespace gw::fonts
