// SPDX-License-Identifier: MIT
//
// The stored font path of one installation, as the modify font path dialog reads and writes it. The superuser
// edits the path of the installation, anybody else their own part of the composed one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/font_path/edited_path.h"
#include "core/failure.h"
#include "fontpath/gw_font_path.h"

namespace gw {

class PathSet {
  public:
    /// Reads the path of the installation below `root`; null for none.
    void read(const char* root);
    /// Whether another program has changed what is stored.
    [[nodiscard]] bool is_out_of_date() const { return font_path_ && font_path_->is_out_of_date(); }
    /// Reads it again if another program has changed it. Returns whether the path is another one now.
    bool catch_up();
    /// Writes `path`, which then is the stored one.
    Outcome store(const EditedPath& path);

    /// The root as the user chose it; "" before.
    [[nodiscard]] std::string root() const { return root_.value_or(""); }
    [[nodiscard]] bool is_read() const { return font_path_ != nullptr; }
    /// Whether this user may write the path now.
    [[nodiscard]] bool is_writeable() const;
    [[nodiscard]] const EditedPath& stored() const { return stored_; }
    /// What `store` has taken out of the configuration.
    [[nodiscard]] const std::vector<std::string>& removed() const { return removed_; }

  private:
    void compose();
    void take_stored(const EditedPath& path);

    std::optional<std::string> root_;
    std::unique_ptr<GWFontPath> font_path_;
    EditedPath stored_;
    std::vector<std::string> removed_;
};

/// What a new element of this user is.
[[nodiscard]] Origin origin_of_new_elements();

}  // namespace gw
