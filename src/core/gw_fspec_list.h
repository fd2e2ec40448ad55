// SPDX-License-Identifier: MIT
//
// The list of file specifications, and ways to select from it.
//
// The specifications belong to whoever built the list. Every `separate_by_...` operation appends new copies,
// never the same objects, and a copy is of unknown extension (7).
#pragma once

#include "core/gw_file_spec.h"
#include "core/gw_list.h"

class GW_DIR;
class GW_REG_EXP;

class GW_FSPEC_LIST : public GW_LIST<GW_FILE_SPEC> {
  public:
    /// Appends to `out` a copy of every element of that file type, or of one of the `types`, in list order.
    void separate_by_file_type(GW_FSPEC_LIST& out, int file_type) const;
    void separate_by_file_type(GW_FSPEC_LIST& out, const GW_LIST<GW_INT>* types) const;
    /// The same for elements of that file type and that extension type, or one of `exts`.
    void separate_by_ext_type(GW_FSPEC_LIST& out, int ext_type, int file_type) const;
    void separate_by_ext_type(GW_FSPEC_LIST& out, const GW_LIST<GW_INT>* exts, int file_type) const;
    /// The same for elements whose names match `re`.
    void separate_by_matching_file_name(GW_FSPEC_LIST& out, GW_REG_EXP* re) const;

    /// The sum of the files' sizes in bytes. Kept: asking a list for its size overwrites its count. The count
    /// is then the size of the last file, so the list must not be counted or indexed any more.
    long file_size();
    /// 1 when every file exists (1 for an empty list), else 0.
    [[nodiscard]] int exist() const;
    /// Copies every file, in list order, into `target`; files that cannot be read are skipped silently.
    /// Returns 1.
    int copy(GW_DIR* target) const;
};
