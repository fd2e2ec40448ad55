// SPDX-License-Identifier: MIT
//
// The module for Type 1 outline fonts: an outline file ".pfa" or ".pfb" and optional metrics ".afm", beside
// it or in the subdirectory "afm". Files with the same prefix, which is the name up to its first dot, belong
// to one font.
#pragma once

#include <memory>
#include <string>

#include "core/gw_token_table.h"
#include "fontfiles/gw_foundry_file.h"
#include "modules/gw_fsm_base.h"

class GW_T1_FSM : public gw::AnsweringModule {
  public:
    GW_T1_FSM();

    void list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) override;
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) override;
    void list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) override;
    void make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) override;
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) override;
    gw::Outcome install(GWFont& font, GW_FPE& fpe) override;
    gw::Outcome make_visible(GWFont& font, GW_FPE& fpe) override;
    gw::Outcome remove(GWFont& font) override;
    gw::Outcome can_install(GWFont& font) const override;
    using GW_FSM_BASE::list_font_file_names;
    using GW_FSM_BASE::list_installed_font_file_names;
    using GW_FSM_BASE::list_installed_font_names;
    using GW_FSM_BASE::make_font_list;
    using GW_FSM_BASE::make_installed_font_list;

    // The following functions append specifications, which belong to `out`'s owner, and return elements of
    // `out`.

    /// The file's name up to its first dot.
    static std::string get_matching_file_spec_prefix(const GW_FILE_SPEC* spec);
    /// Appends PREFIX.pfb, PREFIX.pfa and PREFIX.afm, each if it exists in `dir`. Returns the outline file,
    /// ".pfa" before ".pfb", or null.
    static const GW_FILE_SPEC* get_dir_aux_file_spec_list(GW_FSPEC_LIST& out, const GW_DIR* dir,
                                                          const char* prefix);
    /// Appends "afm/PREFIX" or else "afm/PREFIX.afm" if it exists in `dir`. Returns 1.
    static int get_afm_aux_file_spec_list(GW_FSPEC_LIST& out, const char* dir, const char* prefix);
    /// Appends all files of the font of `spec`. Returns the outline file, or null.
    static const GW_FILE_SPEC* get_aux_fspec_list(GW_FSPEC_LIST* out, const GW_FILE_SPEC* spec);

    /// A new font that owns `files`, with its fields read from `outline`; the caller owns the font.
    std::unique_ptr<GWFont> make_font(gw::FontPlace& place, const GW_FILE_SPEC* outline,
                                      std::unique_ptr<GW_FSPEC_LIST> files);
    /// Appends one font for each prefix among `files`, and removes the files of these fonts from `files` (the
    /// specifications still belong to their owner). Kept: a file that is not one of its own font ends the
    /// listing.
    void build_font_list(GW_LIST<GWFont>& out, GW_FSPEC_LIST& files);

  private:
    GW_TOKEN_TABLE file_names;
    GW_TOKEN_TABLE header_keys;
    GW_FOUNDRY_FILE foundries;
};
