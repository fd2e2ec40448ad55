// SPDX-License-Identifier: MIT
//
// One line of a "fonts.alias" file as the user sees it. Aliases are listed after the fonts and are always
// read-only.
#pragma once

#include <string>

#include "core/gw_base.h"

class GWAlias : public GW_BASE {
  public:
    GWAlias(const char* alias_name, const char* font_name, const char* dir);

    [[nodiscard]] const char* get_alias_name() const { return alias_name_.c_str(); }
    [[nodiscard]] const char* get_font_name() const { return font_name_.c_str(); }
    [[nodiscard]] const char* get_dir_name() const { return dir_.c_str(); }
    /// The displayed name of the alias, and that of the font it stands for.
    [[nodiscard]] const char* get_hrn_name() const { return hrn_name_.c_str(); }
    [[nodiscard]] const char* get_font_hrn_name() const { return font_hrn_name_.c_str(); }

    /// Adds `text` in parentheses to the displayed name; "" takes it away.
    void set_distinction(const std::string& text);
    [[nodiscard]] const std::string& get_distinction() const { return distinction_; }

    using GW_BASE::compare;
    /// `strcasecmp` of the displayed names.
    int compare(const GWAlias* other) const;

    /// The displayed name for an XLFD name.
    static std::string _construct_hrn(const char* xlfd, int is_alias);

  private:
    std::string alias_name_;
    std::string font_name_;
    std::string dir_;
    std::string hrn_name_;
    std::string font_hrn_name_;
    std::string distinction_;
};
