// SPDX-License-Identifier: MIT
//
// The three dialogs for the fonts of a printer. They list sources, printers and installed fonts. The controls
// that would change a printer are there, but insensitive.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_pr_install_dlg;
extern Widget wi_pr_delete_dlg;
extern Widget wi_pr_modify_fp_dlg;

Widget create_pr_install_dlg(const char* name, Widget parent);
Widget create_pr_delete_dlg(const char* name, Widget parent);
Widget create_pr_modify_fp_dlg(const char* name, Widget parent);

/// Fills the menu of printers from the directory of the print service. Without printers it is insensitive.
void update_wi_pr_install_dlg_for_menu();
/// Shows the installed fonts in the delete dialog.
void update_wi_pr_delete_dlg_scrolledlist();
/// Empties the list: the font path of a printer is not known.
void update_wi_pr_modify_fp_dlg_scrolledlist();

namespace printerdlg {

/// Callbacks of the directory chooser and of the media dialog.
void from_dir_specified_cb(const char* dir);
void rmedia_specified_cb(int choice);
/// The chosen destination is ignored.
void to_dir_specified_cb(const char* dir);

/// A work procedure: true when there is nothing more to do.
Boolean font_lookup_work_proc(XtPointer driver);

}  // namespace printerdlg
