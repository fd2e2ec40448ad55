// SPDX-License-Identifier: MIT
//
// The install dialog: a source of fonts with its list and sample, a destination, the disk space that is
// required and available, and the installation, one font per idle step.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_install_dlg;

Widget create_install_dlg(const char* name, Widget parent);

namespace installdlg {

/// Callbacks of the directory chooser and of the media dialog.
void from_dir_specified_cb(const char* dir);
void install_dir_specified_cb(const char* dir);
void rmedia_specified_cb(int choice);

/// Work procedures: true when there is nothing more to do.
Boolean font_lookup_work_proc(XtPointer driver);
Boolean install_work_proc(XtPointer work);

/// Makes `dir`, with a slash at its end, the destination.
void set_current_install_dir(const char* dir);
/// The number of free blocks for ordinary users in the file system of `path`. Kept: free blocks are shown as
/// kilobytes. 0 when the system does not tell.
int get_avail_space(const char* path);

}  // namespace installdlg
