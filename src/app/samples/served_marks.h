// SPDX-License-Identifier: MIT
//
// Which rows of the list of installed fonts have fonts that the running server does not have. Looked at are
// the directories only: asking the server for the names of 10,000 fonts takes it longer than listing them.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fontpath/path_element.h"
#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

namespace gw {

/// The directories of a server's font path.
class ServedDirectories {
  public:
    /// The directories of `path`, and those that its catalogues lead to.
    ServedDirectories(const std::vector<std::string>& path, PathHost host);

    /// Whether fonts of the directory may be had. True for every one if the path has an element that does not
    /// say which fonts it brings, such as a font server.
    [[nodiscard]] bool has(std::string_view directory);
    /// Whether one of the element's fonts may be had. True for an element without fonts.
    [[nodiscard]] bool has_some_of(const GWHRNElement& element);

  private:
    void add_catalogue(const std::string& directory);
    [[nodiscard]] ElementIdentity identity(const std::string& directory) const;

    PathHost host_;
    bool is_open_ = false;
    std::set<ElementIdentity> served_;
    std::map<std::string, bool> known_;
    std::string last_;  // what was asked last: mostly, the next row has the same directory
    bool has_last_ = false;
};

/// The rows of the list of installed fonts, fonts first, each with its mark. Nothing is marked when the
/// server cannot be asked.
[[nodiscard]] std::vector<std::string> marked_rows();
/// Whether `marked_rows` would mark other rows now than at its last call.
[[nodiscard]] bool are_marks_out_of_date();

}  // namespace gw
