// SPDX-License-Identifier: MIT
//
// Fonts and a font type module for the tests of the model: fonts by their XLFD names, with files of a private
// directory where a test needs some, and a module that only writes down what it is asked to do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/gw_conflict.h"
#include "model/gw_font.h"
#include "model/gw_hrn_list.h"
#include "modules/gw_fsm_list.h"
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

/// A font with one file that does not exist, in a directory that does not: read-only by the rules.
inline Ref<GWFont> make_read_only_font(const std::string& name,
                                       GWFont::GW_FONT_TYPE type = GWFont::BITMAP_FONT) {
    Ref<GWFont> font = make_font(name, type);
    place(*font, "/nonexistent/", {"font.pcf"});
    return font;
}

/// Writes down, in order, "install NAME in DIR", "visible NAME in DIR" and "delete NAME".
class RecordingModule : public GW_FSM_BASE {
  public:
    using GW_FSM_BASE::delete_font;
    using GW_FSM_BASE::GW_FSM_BASE;
    using GW_FSM_BASE::install_font;
    using GW_FSM_BASE::list_font_file_names;
    using GW_FSM_BASE::list_installed_font_file_names;
    using GW_FSM_BASE::list_installed_font_names;
    using GW_FSM_BASE::make_font_list;
    using GW_FSM_BASE::make_font_visible;
    using GW_FSM_BASE::make_installed_font_list;

    void list_font_file_names(GW_FSPEC_LIST&, GW_DIR*, int) override {}
    void list_installed_font_file_names(GW_FSPEC_LIST&, GW_FPE*) override {}
    void list_installed_font_names(GW_STRING_LIST&, GW_FPE*) override {}
    void make_font_list(GW_LIST<GWFont>&, GW_DIR*, int) override {}
    void make_installed_font_list(GW_LIST<GWFont>&, GW_FPE*) override {}
    void install_font(GWFont* font, GW_FPE* fpe) override { note("install", font, fpe); }
    void make_font_visible(GWFont* font, GW_FPE* fpe) override { note("visible", font, fpe); }
    void delete_font(GWFont* font) override {
        calls.push_back(std::string("delete ") + font->get_xlfd_name());
    }

    std::vector<std::string> calls;

  private:
    void note(const char* what, GWFont* font, GW_FPE* fpe) {
        calls.push_back(std::string(what) + ' ' + font->get_xlfd_name() + " in " + fpe->get_element());
    }
};

/// A module list of one recording module for each of the two types in use.
struct RecordingModules {
    RecordingModules() {
        list.append(&outline);
        list.append(&bitmap);
    }
    RecordingModule outline{GWFont::TYPE1_FONT};
    RecordingModule bitmap{GWFont::BITMAP_FONT};
    GW_FSM_LIST list;
};

/// The names of a list's elements, in list order.
inline std::vector<std::string> names_of(const GWHRNList& list) {
    std::vector<std::string> names;
    for (const GWHRNElement* elem : list) names.emplace_back(elem->get_name());
    return names;
}

}  // namespace gw::test
