// SPDX-License-Identifier: MIT
//
// A driver is a source of fonts for a list on the screen. It can put a staging directory on the running
// server's font path for a while, so that the server can draw samples of fonts that are not installed yet.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "core/gw_dir.h"
#include "model/gw_hrn_list.h"

class GWDriverBase {
  public:
    GWDriverBase() = default;
    virtual ~GWDriverBase() = default;
    GWDriverBase(const GWDriverBase&) = delete;
    GWDriverBase& operator=(const GWDriverBase&) = delete;

    /// Adds the fonts of this source to `out`.
    virtual void get_hrn_list(GWHRNList& out) = 0;
    /// Makes sure that `dir` is on the configured and on the session font path. Returns 0 when it was on the
    /// session font path already, otherwise the result of adding it.
    virtual int set_font_path(const char* dir);
    /// The same, and what of it could not be done.
    std::vector<gw::Failure> put_on_font_path(const std::string& dir);
    /// The same for everybody: on the font path of the database that is in force, unless an element of the
    /// configured font path is this directory already, and on the session's.
    std::vector<gw::Failure> put_on_everyones_font_path(const std::string& dir);
    /// Puts the preview directory on the session font path. When it is there already, only asks the server to
    /// read it again. A directory that is a link or belongs to someone else is not used.
    virtual void start_preview();
    /// Takes the preview directory off the session font path.
    virtual void stop_preview();
    /// Has the PostScript resource file of `dir` built anew.
    virtual void make_upr_file(GW_DIR* dir);

    /// The staging directory; unset until there is one.
    [[nodiscard]] const std::optional<std::string>& get_preview_dir() const { return preview_dir; }

  protected:
    std::optional<std::string> preview_dir;
};
