// SPDX-License-Identifier: MIT
//
// The interface of the font type modules. A module knows which files belong to its format, how to read fonts
// out of a directory or an index, and how to install, expose and delete a font of its format.
#pragma once

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
    /// Copies the font's files into the element's directory and registers them: all of it or nothing.
    virtual void install_font(GWFont* font, GW_FPE* fpe) = 0;
    /// Registers a font whose files the element can reach already, without copying.
    virtual void make_font_visible(GWFont* font, GW_FPE* fpe) = 0;
    /// Removes the font's files and its registrations. A font whose file cannot be removed stays registered.
    virtual void delete_font(GWFont* font) = 0;
    /// Whether `install_font` takes the font. It reports one that it leaves out, and writes nothing for it.
    [[nodiscard]] virtual bool can_install(GWFont* /*font*/) const { return true; }

    // The same for every item of a list, in list order.
    void list_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_DIR>& dirs, int recursive);
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_LIST<GW_FPE>& fpes);
    void list_installed_font_names(GW_STRING_LIST& out, GW_LIST<GW_FPE>& fpes);
    void make_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_DIR>& dirs, int recursive);
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_LIST<GW_FPE>& fpes);
    void install_font(GW_LIST<GWFont>* fonts, GW_FPE* fpe);
    void make_font_visible(GW_LIST<GWFont>* fonts, GW_FPE* fpe);
    void delete_font(GW_LIST<GWFont>* fonts);

    /// Whether the last `install_font` or `delete_font` did all that it was asked to. What failed was taken
    /// back and said on standard error.
    [[nodiscard]] bool was_done() const { return done; }

  protected:
    void note_outcome(bool all_done) { done = all_done; }

  private:
    int type_id;
    bool done = true;
};
