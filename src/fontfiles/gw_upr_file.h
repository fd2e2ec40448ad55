// SPDX-License-Identifier: MIT
//
// The reader of a directory's PostScript resource file "glyphwd.upr": it tells which section a line belongs
// to. The file itself is always rebuilt by `makepsres` (see `GW_DIR::make_upr_file`), never written here.
#pragma once

#include "core/gw_file.h"
#include "core/gw_token_table.h"

class GW_UPR_FILE : public GW_FILE {
  public:
    /// The sections, by the id that a header line yields.
    enum RES_TYPE {
        FONT_OUTLINE,
        FONT_PREBUILT,
        FONT_AFM,
        FONT_BDF,
        FONT_FAMILY,
        FORM,
        PATTERN,
        ENCODING,
        PROC_SET,
        PRIVATE,
        NO_SECTION,
    };
    static constexpr int LINE_BUFFER = 128;

    GW_UPR_FILE(const char* name, const char* dir, int file_type);

    /// The section whose keyword is the whole line, without its newline; `NO_SECTION` for any other line.
    int get_line_res_type(const char* line) const;
    /// The context in which the lines behind a section header are read: the section's own number.
    [[nodiscard]] int get_context(int res_type) const;
    /// Reads the open file to its end and classifies every line that does not begin with "."; `res_type` and
    /// `data` are not written anywhere. Returns 1. Kept: a line for a resource file is classified and not
    /// written.
    int put_res_data_line(int res_type, const char* data);

  private:
    GW_TOKEN_TABLE res_types;
};
