// SPDX-License-Identifier: MIT
//
// One element of the X font path, seen as a font directory with its index and, when it has one, its alias
// file.
#pragma once

#include <memory>
#include <string>

#include "core/gw_dir.h"
#include "core/gw_list.h"
#include "fontfiles/gw_alias_file.h"
#include "fontfiles/gw_fontdir_file.h"

class GW_FPE : public GW_DIR {
  public:
    /// `dir` is used unchanged; elements of a font path normally end in "/".
    explicit GW_FPE(const char* dir);

    /// The path text as given to the constructor.
    [[nodiscard]] const char* get_element() const { return element.get_str(); }
    [[nodiscard]] GW_FONTDIR_FILE& get_fontdir_file() { return fontdir_file; }

    /// Non-zero when both path texts are equal as given, so a path with and one without a trailing slash are
    /// different.
    int equal(const GW_FPE* other) const;

    /// Makes the directory named by the element's text followed directly by "afm" (mode 0777 before the
    /// umask); returns `mkdir`'s result. Kept: the directory for metrics is named without a slash.
    int make_afm_dir();

    /// The file of the font that `alias_name` stands for, looked up in this element's alias file and index
    /// and then, when `fpe_list` is not null, in the indexes of its elements. On success the font name is
    /// stored in `font_name_out`; null when not found.
    std::unique_ptr<GW_FILE_SPEC> get_alias_file_spec(std::string& font_name_out, const char* alias_name,
                                                      GW_LIST<GW_FPE>* fpe_list);

    /// The name under which this element's index lists the font file `spec`: its bare name.
    [[nodiscard]] virtual std::string index_name(const GW_FILE_SPEC& spec) const;

  private:
    GW_STRING element;
    GW_FONTDIR_FILE fontdir_file;
    std::unique_ptr<GW_ALIAS_FILE> alias_file;  // null when the directory had none at construction
};

/// A staging directory, whose index refers to fonts elsewhere through links in the staging directory: the X
/// server joins the directory and the index's name, and follows a link to a directory on the way.
class GWStagingFpe : public GW_FPE {
  public:
    using GW_FPE::GW_FPE;

    /// The file's path relative to the staging directory when it lies below it ("link/9x15.pcf"), otherwise
    /// its absolute path without the leading "/" ("cdrom/cdrom0/sub/9x15.pcf"). If the font policy takes any
    /// file name, a file with one that an index cannot have gets a stand-in in the staging directory.
    [[nodiscard]] std::string index_name(const GW_FILE_SPEC& spec) const override;

  private:
    [[nodiscard]] std::string make_stand_in(const GW_FILE_SPEC& spec) const;

    mutable unsigned stand_ins = 0;
};
