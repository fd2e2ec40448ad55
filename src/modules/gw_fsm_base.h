// SPDX-License-Identifier: MIT
//
// The interface of the font type modules. A module knows which files belong to its format, how to read fonts
// from a directory or an index, and how to install, preview and delete a font of its format.
#pragma once

#include "core/failure.h"
#include "core/gw_base.h"
#include "core/gw_fspec_list.h"
#include "core/gw_list.h"
#include "core/gw_string_list.h"
#include "fontpath/gw_fpe.h"
#include "model/gw_font.h"

class GW_FSM_BASE : public GW_BASE {
  public:
    explicit GW_FSM_BASE(int type) : type_id(type) {}

    /// The `GWFont::GW_FONT_TYPE` of the fonts that this module handles.
    [[nodiscard]] int get_type() const { return type_id; }

    // Records and specifications that are appended belong to the output list's owner. `recursive` is passed
    // on to the directory listing.
    virtual void list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) = 0;
    virtual void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) = 0;
    virtual void list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) = 0;
    virtual void make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) = 0;
    virtual void make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) = 0;
    /// Copies the font's files into the element's directory and registers them, completely or not at all.
    virtual void install_font(GWFont* font, GW_FPE* fpe) = 0;
    /// Registers a font whose files can already be found through the element, without copying them.
    virtual void make_font_visible(GWFont* font, GW_FPE* fpe) = 0;
    /// Removes the font's files and its registrations. A font whose file cannot be removed stays registered.
    virtual void delete_font(GWFont* font) = 0;

    // The last three operations with an outcome. Our modules implement these; the operations above then pass
    // failures to the listener. For other modules every operation counts as a success.

    virtual gw::Outcome install(GWFont& font, GW_FPE& fpe);
    virtual gw::Outcome make_visible(GWFont& font, GW_FPE& fpe);
    virtual gw::Outcome remove(GWFont& font);
    /// Whether `install` accepts the font. Nothing is written for a font that it does not accept.
    virtual gw::Outcome can_install(GWFont& font) const;

    // The same operations for every item of a list, in list order.
    void list_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_DIR>& dirs, int recursive);
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_FPE>& fpes);
    void list_installed_font_names(GW_STRING_LIST& out, GW_LIST<GW_FPE>& fpes);
    void make_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_DIR>& dirs, int recursive);
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_FPE>& fpes);
    void install_font(GW_LIST<GWFont>* fonts, GW_FPE* fpe);
    void make_font_visible(GW_LIST<GWFont>* fonts, GW_FPE* fpe);
    void delete_font(GW_LIST<GWFont>* fonts);

  private:
    int type_id;
};

namespace gw {

/// A module whose three changing operations have outcomes.
class AnsweringModule : public GW_FSM_BASE {
  public:
    using GW_FSM_BASE::delete_font;
    using GW_FSM_BASE::GW_FSM_BASE;
    using GW_FSM_BASE::install_font;
    using GW_FSM_BASE::make_font_visible;

    void install_font(GWFont* font, GW_FPE* fpe) override { tell_unless_done(install(*font, *fpe)); }
    void make_font_visible(GWFont* font, GW_FPE* fpe) override {
        tell_unless_done(make_visible(*font, *fpe));
    }
    void delete_font(GWFont* font) override { tell_unless_done(remove(*font)); }

    Outcome install(GWFont& font, GW_FPE& fpe) override = 0;
    Outcome make_visible(GWFont& font, GW_FPE& fpe) override = 0;
    Outcome remove(GWFont& font) override = 0;
};

}  // namespace gw
