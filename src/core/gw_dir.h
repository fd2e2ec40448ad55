// SPDX-License-Identifier: MIT
//
// One directory, and the lists of its files.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "core/gw_file_spec.h"
#include "core/gw_list.h"
#include "core/gw_string.h"

class GW_REG_EXP;
class GW_TOKEN_TABLE;

class GW_DIR {
  public:
    /// `path` gets a trailing "/" when it has none.
    explicit GW_DIR(const char* path);
    virtual ~GW_DIR() = default;
    GW_DIR(const GW_DIR&) = delete;
    GW_DIR& operator=(const GW_DIR&) = delete;

    /// The directory, ending in "/"; owned by this object.
    [[nodiscard]] const char* get_path() const { return path.get_str(); }

    /// From now on only the files with these names are listed, and no subdirectories.
    void choose(std::set<std::string, std::less<>> names) { chosen = std::move(names); }
    /// Whether an entry of this name is listed.
    [[nodiscard]] bool has_chosen(std::string_view name) const { return !chosen || chosen->contains(name); }

    virtual void print(const char* prefix, GW_FILE* file) const;
    /// 1 when both path texts are equal.
    int equal(const GW_DIR* other) const;

    /// Whether `name` has an extension that `table` knows: 1 or 0. `ext_type` becomes its id, or the table's
    /// default id. The extension is everything after the first dot. Kept: the extension of a font file begins
    /// at its first dot. So "Foo.Bold.pfa" and "a.b.c.d" are refused, unless the font policy knows extensions
    /// at the end.
    static int file_name_check(const char* name, const GW_TOKEN_TABLE* table, int& ext_type);

    /// Appends the subdirectories and, with a `table`, the files whose names it accepts, in the order of
    /// `readdir`. Returns 0 when the directory cannot be opened, else 1. The specifications belong to `out`'s
    /// owner.
    int get_dir_file_spec_list(GW_LIST<GW_FILE_SPEC>& out, const GW_TOKEN_TABLE* table) const;
    /// The same; with `recursive` the directories in `out` are then listed in turn, breadth first. Kept: the
    /// last directory of a recursive listing is not descended into. Each directory is listed once, however
    /// many links lead to it. Moves `out`'s cursor.
    int get_file_spec_list(GW_LIST<GW_FILE_SPEC>& out, int recursive, const GW_TOKEN_TABLE* table) const;
    /// As `get_dir_file_spec_list`, with only the entries whose names match `re`.
    int get_matching_file_spec_list(GW_LIST<GW_FILE_SPEC>* out, GW_REG_EXP* re,
                                    const GW_TOKEN_TABLE* table) const;

    /// Runs `makepsres` to build the PostScript resource file "glyphwd.upr" of this directory again, in
    /// `work_dir`, or in the directory itself when `work_dir` is null. With `rescan_all` non-zero the
    /// directories below and their resource files are scanned too. Returns 1; when the tool is missing the
    /// directory is left without a resource file.
    int make_upr_file(int rescan_all, const char* work_dir) const;

  protected:
    GW_STRING path;

  private:
    std::optional<std::set<std::string, std::less<>>> chosen;
};
