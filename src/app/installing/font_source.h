// SPDX-License-Identifier: MIT
//
// The source of fonts, which the install dialog and the printer's install dialog share: a choice in one of
// them changes both.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/kit/signal.h"
#include "drivers/gw_dir_driver.h"
#include "drivers/gw_files_driver.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

enum InstallFrom : int { FROM_DIRECTORY = 1, FROM_CDROM = 2, FROM_FLOPPY = 3, FROM_FILES = 4 };

extern GWHRNList current_hrn_list;    ///< the fonts of the source
extern unsigned current_hrn_count;    ///< its length after the last lookup
extern GWDriverBase* current_driver;  ///< null until a source is chosen
extern std::unique_ptr<GWDirDriver> current_dir_driver;
extern std::unique_ptr<GWFilesDriver> current_files_driver;
extern std::string current_dir;  ///< the last source directory, as it was chosen
extern int install_from;         ///< kind of the source

namespace gw {

/// Makes a directory, or the medium of that choice (floppy, else CD-ROM), the source. `lookup` is called with
/// its driver when the program is idle. A lookup that has not begun yet is dropped.
void use_directory(const char* dir, XtWorkProc lookup);
void use_medium(int choice, XtWorkProc lookup);
/// The same with these files and directories, at least one.
void use_files(std::vector<std::string> paths, XtWorkProc lookup);
[[nodiscard]] bool is_lookup_pending();

/// Does a lookup, with the busy cursor: fills `current_hrn_list` from the source, previews it, and emits
/// `source_changes`. Does nothing when another source has been chosen meanwhile.
void look_fonts_up(GWDriverBase* driver);

/// Removes the previewed source from the server's font path.
void stop_source_preview();

/// Emitted when the list of fonts has changed.
Signal<>& source_changes();
/// Emitted during the lookup of a large source, with names to look at until all are known. The list of fonts
/// is empty then, and no event is handled before `source_changes`.
Signal<const std::vector<std::string>&>& first_source_names();

/// The label for the source: "Fonts From " and the directory or the medium.
[[nodiscard]] std::string source_label();
/// Where a file of the source is, which is read through a link of ours.
[[nodiscard]] std::string original_path(const GW_FILE_SPEC& spec);
/// The location that the attributes dialog shows for fonts of the source.
[[nodiscard]] const char* source_location();

/// Fills `list` with the names of the source.
void show_source_names(Widget list);
/// The same with the first of them.
void show_source_names(Widget list, std::vector<std::string> first);
/// Selects all names of the source in `list`, except what is known to be unfit, without calling its selection
/// callbacks.
void select_all_of_source(Widget list);
/// The positions of the entries that can be chosen, 1-based and ascending.
[[nodiscard]] std::vector<int> offered_positions();
/// Shows the entry at this position of the source (1-based) again, in its place. What is selected stays so,
/// unless the entry cannot be chosen any more.
void show_source_entry(Widget list, int position);
/// Takes unfit entries out of what the user has just selected. Returns what the user should know of the
/// selection: why something cannot be chosen, or the hint about the one entry; "" when there is nothing.
std::string keep_to_what_is_offered(Widget list);
/// Shows the attributes of the font of the source at the selected position of `list`. Does nothing if the
/// main window's list has no font behind that position.
void show_source_attributes(Widget list);

}  // namespace gw
