// SPDX-License-Identifier: MIT
//
// The common part of the PCF, Type 0 and Type 3 modules. They never open a font file but take names from a
// directory's index; when a source directory has none, `mkfontdir` makes one in a scratch directory.
// Compressed files are not unpacked.
#pragma once

#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "core/gw_reg_exp.h"
#include "core/gw_token_table.h"
#include "model/font_place.h"
#include "modules/gw_fsm_base.h"

namespace gw {

class IndexedModule : public AnsweringModule {
  public:
    using Extension = std::pair<int, const char*>;

    void list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) override;
    void list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) override;
    void list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) override;
    void make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) override;
    void make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) override;
    Outcome install(GWFont& font, GW_FPE& fpe) override;
    Outcome make_visible(GWFont& font, GW_FPE& fpe) override;
    Outcome remove(GWFont& font) override;
    Outcome can_install(GWFont& font) const override;
    using GW_FSM_BASE::list_font_file_names;
    using GW_FSM_BASE::list_installed_font_file_names;
    using GW_FSM_BASE::list_installed_font_names;
    using GW_FSM_BASE::make_font_list;
    using GW_FSM_BASE::make_installed_font_list;

    /// A new font of the module's type made of one file in `dir`; the caller owns it.
    [[nodiscard]] std::unique_ptr<GWFont> make_font(GW_DIR* dir, const GW_STRING* file_name,
                                                    const GW_STRING* font_name) const;
    /// Makes the directory `tmp_dir` (mode 0744) and in it a link to each file, up to the first failure.
    static Outcome link_into_new_directory(const std::string& tmp_dir, const GW_FSPEC_LIST& files);
    /// The same with a number as result: 1 after a failure, else 0.
    static int mkdir_and_slink(const char* tmp_dir, const GW_FSPEC_LIST* files);

  protected:
    /// `todays_extensions` are accepted only if the font policy takes today's formats.
    IndexedModule(int type, std::initializer_list<Extension> extensions,
                  std::pair<const char*, const char*> suffixes, const char* scratch_dir,
                  std::initializer_list<Extension> todays_extensions = {});

    /// Whether an index entry with this file name is a font of this module.
    [[nodiscard]] virtual bool takes(const char* file_name);
    /// The file name that `make_font_visible` enters in the index.
    [[nodiscard]] virtual std::string visible_name(const GW_FILE_SPEC& spec, const GW_FPE& fpe) const;

  private:
    [[nodiscard]] std::unique_ptr<GWFont> make_font_of(FontPlace& place, const char* file_name) const;
    void append_indexed_fonts(GW_LIST<GWFont>& out, GW_DIR& dir, GW_FONTDIR_FILE& index,
                              const GW_FSPEC_LIST* files);
    void append_named_fonts(GW_LIST<GWFont>& out, const GW_DIR& dir, GW_FSPEC_LIST& files,
                            GW_FONTDIR_FILE& index);
    static bool make_scratch_index(const std::string& scratch, const GW_FSPEC_LIST& files);
    [[nodiscard]] bool takes_todays_forms() const;

    GW_TOKEN_TABLE file_names;
    GW_TOKEN_TABLE all_file_names;  // with today's
    std::vector<Extension> todays_extensions;
    std::pair<const char*, const char*> suffixes;
    GW_REG_EXP first_suffix;
    GW_REG_EXP second_suffix;
    const char* scratch_dir;
};

}  // namespace gw
