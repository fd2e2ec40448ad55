// SPDX-License-Identifier: MIT
//
// Fonts for the tests of the model, made of variations of one XLFD name, with files where a test needs them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/gw_conflict.h"
#include "model/gw_font.h"
#include "model/gw_hrn_list.h"
#include "support/font_maker.h"
#include "support/temp_dir.h"

namespace gw::test {

/// "-adobe-courier-medium-r-normal--SIZE-DECIPOINTS-RES-RES-m-WIDTH-iso8859-1" and its variations.
struct Xlfd {
    std::string foundry = "adobe";
    std::string family = "courier";
    std::string weight = "medium";
    std::string slant = "r";
    std::string decipoints = "120";
    std::string resolution = "75";
    std::string width = "70";
    std::string charset = "iso8859-1";

    [[nodiscard]] std::string str() const {
        return '-' + foundry + '-' + family + '-' + weight + '-' + slant + "-normal--12-" + decipoints + '-' +
               resolution + '-' + resolution + "-m-" + width + '-' + charset;
    }
};

inline Ref<GWFont> make_font(const std::string& name, GWFont::GW_FONT_TYPE type = GWFont::BITMAP_FONT) {
    Ref<GWFont> font(new GWFont(type));
    if (type == GWFont::TYPE0_FONT || type == GWFont::TYPE3_FONT) {
        font->set_ps_name(name.c_str());
    } else {
        font->set_xlfd_name(name.c_str());
    }
    return font;
}

inline Ref<GWFont> make_font(const Xlfd& name, GWFont::GW_FONT_TYPE type = GWFont::BITMAP_FONT) {
    return make_font(name.str(), type);
}

/// Gives the font the files `names` of `dir`, whether they exist or not.
inline void place(GWFont& font, const std::string& dir, const std::vector<std::string>& names) {
    auto files = std::make_unique<GW_FSPEC_LIST>();
    for (const std::string& name : names) {
        files->append(new GW_FILE_SPEC(name.c_str(), dir.c_str(), FILE_TYPE_REGULAR, EXT_PCF));
    }
    font.set_dir_name(dir.c_str());
    font.set_font_file_list(std::move(files));
}

/// A font with one missing file in a missing directory, which makes it read-only.
inline Ref<GWFont> make_read_only_font(const std::string& name,
                                       GWFont::GW_FONT_TYPE type = GWFont::BITMAP_FONT) {
    Ref<GWFont> font = make_font(name, type);
    place(*font, "/nonexistent/", {"font.pcf"});
    return font;
}

/// A module list with a recording module for each of the two types in use. `calls` has "install NAME DIR" and
/// "delete NAME", with "outline " before them for the Type 1 module.
struct RecordingModules {
    RecordingModules() {
        list.append(&outline);
        list.append(&bitmap);
        calls.clear();
    }
    RecordingModule outline{GWFont::TYPE1_FONT, "outline "};
    RecordingModule bitmap{GWFont::BITMAP_FONT};
    GW_FSM_LIST list;
    std::vector<std::string>& calls = RecordingModule::calls();
};

/// The names of a list's elements, in list order.
inline std::vector<std::string> names_of(const GWHRNList& list) {
    std::vector<std::string> names;
    for (const GWHRNElement* elem : list) names.emplace_back(elem->get_name());
    return names;
}

}  // namespace gw::test
