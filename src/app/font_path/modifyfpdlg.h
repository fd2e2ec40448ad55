// SPDX-License-Identifier: MIT
//
// The modify font path dialog: the superuser edits the stored font path of the default installation or of
// another one.
#pragma once

#include <string>
#include <vector>

#include <X11/Intrinsic.h>

extern Widget wi_modify_fp_dlg;

Widget create_modify_fp_dlg(const char* name, Widget parent);
void start_modify_fp_dlg();

namespace modifyfpdlg {

/// Callbacks of the directory chooser: the root of another installation, and a new element.
void other_inst_specified_cb(const char* dir);
void new_fpe_dir_specified_cb(const char* dir);

/// 1 if `list` has `s`, else 0. 0 for null.
int fpe_exists(const char* s, const std::vector<std::string>& list);

}  // namespace modifyfpdlg
