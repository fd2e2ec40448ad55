// SPDX-License-Identifier: MIT
//
// Fonts for tests, and a module that only records what it is asked to do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "modules/gw_fsm_list.h"

namespace gw::test {

/// An XLFD name of the bitmap kind.
inline std::string bitmap_xlfd(const std::string& family, const std::string& decipoints,
                               const std::string& dpi) {
    return "-adobe-" + family + "-medium-r-normal--" + "12-" + decipoints + '-' + dpi + '-' + dpi +
           "-m-70-iso8859-1";
}

inline GWFont* make_font(GWFont::GW_FONT_TYPE type, const std::string& xlfd) {
    auto* font = new GWFont(type);
    font->set_xlfd_name(xlfd.c_str());
    return font;
}

inline GWFont* make_bitmap(const std::string& family, const std::string& decipoints,
                           const std::string& dpi = "75") {
    return make_font(GWFont::BITMAP_FONT, bitmap_xlfd(family, decipoints, dpi));
}

inline GWFont* make_outline(const std::string& family) {
    return make_font(GWFont::TYPE1_FONT, "-adobe-" + family + "-medium-r-normal--0-0-0-0-p-0-iso8859-1");
}

/// Gives the font one file, which need not exist, in `dir`.
inline void give_file(GWFont& font, const char* name, const char* dir) {
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC(name, dir, FILE_TYPE_REGULAR, EXT_UNKNOWN));
    font.set_dir_name(dir);
    font.set_font_file_list(std::move(files));
}

class RecordingModule : public GW_FSM_BASE {
  public:
    explicit RecordingModule(int type, std::string label = "")
        : GW_FSM_BASE(type), label_(std::move(label)) {}

    void list_font_file_names(GW_FSPEC_LIST&, GW_DIR* dir, int recursive) override {
        note("files " + std::string(dir->get_path()) + (recursive != 0 ? " recursive" : ""));
    }
    void list_installed_font_file_names(GW_FSPEC_LIST&, GW_FPE* fpe) override {
        note("installed files " + at(fpe));
    }
    void list_installed_font_names(GW_STRING_LIST&, GW_FPE* fpe) override {
        note("installed names " + at(fpe));
    }
    void make_font_list(GW_LIST<GWFont>&, GW_DIR* dir, int recursive) override {
        note("fonts " + std::string(dir->get_path()) + (recursive != 0 ? " recursive" : ""));
    }
    void make_installed_font_list(GW_LIST<GWFont>&, GW_FPE* fpe) override {
        note("installed fonts " + at(fpe));
    }
    void install_font(GWFont* font, GW_FPE* fpe) override {
        note("install " + std::string(font->get_xlfd_name()) + " " + at(fpe));
    }
    void make_font_visible(GWFont* font, GW_FPE* fpe) override {
        note("show " + std::string(font->get_xlfd_name()) + " " + at(fpe));
    }
    void delete_font(GWFont* font) override { note("delete " + std::string(font->get_xlfd_name())); }
    Outcome install(GWFont& font, GW_FPE& fpe) override {
        install_font(&font, &fpe);
        return answer(font);
    }
    Outcome remove(GWFont& font) override {
        delete_font(&font);
        return answer(font);
    }
    using GW_FSM_BASE::delete_font;
    using GW_FSM_BASE::install_font;
    using GW_FSM_BASE::list_font_file_names;
    using GW_FSM_BASE::list_installed_font_file_names;
    using GW_FSM_BASE::list_installed_font_names;
    using GW_FSM_BASE::make_font_list;
    using GW_FSM_BASE::make_font_visible;
    using GW_FSM_BASE::make_installed_font_list;

    /// The font that this module fails to install and to delete.
    std::string refused;

    /// The calls to all modules of a test, in order.
    static std::vector<std::string>& calls() {
        static std::vector<std::string> all;
        return all;
    }

  private:
    static std::string at(const GW_FPE* fpe) { return fpe->get_element(); }
    void note(const std::string& what) const { calls().push_back(label_ + what); }
    [[nodiscard]] Outcome answer(GWFont& font) const {
        if (refused != font.get_xlfd_name()) return done();
        return Failure{refused, Reason::NOT_ALLOWED};
    }
    std::string label_;
};

}  // namespace gw::test
