// SPDX-License-Identifier: MIT
//
// The rows of the list of installed fonts as plain values, and which of them a command is about.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

#include "glyphward-fonts/report.h"

namespace gw::fonts {

struct Row {
    std::string shown;               ///< as the window shows it
    std::string name;                ///< without the mark "[Read Only]"
    std::string format;              ///< "type1", "truetype", "opentype", "bitmap", "alias"
    std::vector<std::string> xlfds;  ///< all names that programs can ask for
    std::vector<std::string> files;  ///< paths, metrics among them
    std::vector<std::string> sizes;  ///< of a bitmap font, decipoints
    unsigned kilobytes = 0;          ///< of the disk
    std::string directory;           ///< of its fonts; of several the first
    std::string font;                ///< of an alias: what it stands for
    std::string owner;               ///< the user whose the first file is; "" when it is missing
    bool is_read_only = false;
    GWHRNElement* element = nullptr;  ///< null for an alias
};

[[nodiscard]] Row row_of(GWHRNElement& element);
[[nodiscard]] Row row_of(const GWAlias& alias);
[[nodiscard]] Json in_json(const Row& row);

/// Why programs get nothing from a row: a file that is missing, or that is no good font. None for a row that
/// is in order, and for an alias.
[[nodiscard]] std::optional<Failure> fault_of(const Row& row);

/// What the user names on the command line: a row's name, one of its XLFD names, or the path or name of one
/// of its files, whole and in any case; "*", "?" and "[...]" stand for anything, as in the shell.
class Pattern {
  public:
    explicit Pattern(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] bool matches(const Row& row) const;
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    [[nodiscard]] bool matches(const std::string& name) const;
    std::string text_;
};

/// The rows of a list that any of the patterns matches, in its order; all where there is no pattern. A
/// pattern that matches nothing is a trouble of the report, and a failure of the tally if there is one.
[[nodiscard]] std::vector<Row> chosen(const std::vector<Row>& rows, const std::vector<std::string>& patterns,
                                      Report& report, Tally* tally = nullptr);

}  // namespace gw::fonts
