// SPDX-License-Identifier: MIT
//
// The source in the install dialog: how it is chosen, the list of its fonts, and what is selected there.
#pragma once

#include <string>
#include <vector>

#include <X11/Intrinsic.h>

namespace installdlg {

/// Other parts of the dialog that show what is selected.
struct SelectionWidgets {
    Widget status;
    Widget install_button;
    Widget attr_button;
    Widget sample_field;
};

/// Creates the row in which a source is chosen, with its form in `row`. Returns the separator below it.
Widget create_source_choice(Widget dialog, Widget& row);
/// Creates the list of fonts with its title. Returns their form.
Widget create_font_list(Widget dialog);
/// Called once when the whole dialog is there: from now on what happens to the source is shown.
void connect_source(const SelectionWidgets& widgets);

/// The list of the fonts in the source.
[[nodiscard]] Widget source_list();

/// Callbacks of the directory chooser and of the media dialog.
void from_dir_specified_cb(const char* dir);
void rmedia_specified_cb(int choice);
/// The same for files and directories, at least one, which are absolute paths. One directory alone is the
/// source as if the user had chosen it.
void files_specified(const std::vector<std::string>& paths);
/// A work procedure: true when there is nothing more to do.
Boolean font_lookup_work_proc(XtPointer driver);

/// Callbacks of buttons.
void select_all_cb(Widget button, XtPointer, XtPointer);
void attr_dlg_cb(Widget button, XtPointer, XtPointer);

}  // namespace installdlg
