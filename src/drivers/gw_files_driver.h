// SPDX-License-Identifier: MIT
//
// Lists fonts of files and directories that the user has chosen one by one, wherever they are, and stages
// them for preview. A file is read where it is, so that the files that belong to it, as the metrics of a Type
// 1 font, are found beside it.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "drivers/gw_driver_base.h"

class GWFilesDriver : public GWDriverBase {
  public:
    /// One directory of the source.
    struct Place {
        std::string dir;  ///< as the user has chosen it, with a slash at its end
        /// The link in the staging directory through which its fonts are found: a number, because a line of
        /// an index has little room.
        std::string link;
        /// The files that were chosen; none when all of the directory was.
        std::optional<std::set<std::string, std::less<>>> names;
    };

    /// `paths` are absolute. What is no directory counts as a file.
    explicit GWFilesDriver(const std::vector<std::string>& paths);

    void get_hrn_list(GWHRNList& out) override;
    /// Does nothing: samples do not need resource files, and the directories may be large.
    void make_upr_file(GW_DIR* dir) override;

    /// The directories, in the order in which they were chosen.
    [[nodiscard]] const std::vector<Place>& get_places() const { return places; }
    /// Where a font file is that was found through a link of the staging directory.
    [[nodiscard]] std::string original_path(const GW_FILE_SPEC& spec) const;

  private:
    std::vector<Place> places;
};
