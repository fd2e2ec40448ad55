// SPDX-License-Identifier: MIT
//
// The source of fonts that the install dialog and the printer's install dialog share: choosing one in either
// replaces it in both.
#pragma once

#include <memory>
#include <string>

#include "app/kit/signal.h"
#include "drivers/gw_dir_driver.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

enum InstallFrom : int { FROM_DIRECTORY = 1, FROM_CDROM = 2, FROM_FLOPPY = 3 };

extern GWHRNList current_hrn_list;    ///< the fonts of the source
extern unsigned current_hrn_count;    ///< names in it after the last lookup
extern GWDriverBase* current_driver;  ///< null until a source is chosen
extern std::unique_ptr<GWDirDriver> current_dir_driver;
extern std::string current_dir;  ///< the last source directory, as it was chosen
extern int install_from;         ///< kind of the source

namespace gw {

/// Makes a directory, or the medium of that choice (floppy, else CD-ROM), the source, and has `lookup` called
/// with its driver when the program is idle. A lookup that was still to come is dropped.
void use_directory(const char* dir, XtWorkProc lookup);
void use_medium(int choice, XtWorkProc lookup);
[[nodiscard]] bool is_lookup_pending();

/// The work of a lookup, under the busy cursor: fills `current_hrn_list` from the source, previews it, and
/// tells whoever shows it. Nothing when another source has been chosen meanwhile.
void look_fonts_up(GWDriverBase* driver);

/// Takes the source that is previewed off the server's font path.
void stop_source_preview();

/// There is another list of fonts.
Signal<>& source_changes();

/// The label for the source: "Fonts From " and the directory or the medium.
[[nodiscard]] std::string source_label();
/// What the attributes dialog shows as the location of the source's fonts.
[[nodiscard]] const char* source_location();

/// Selects all names of the source in `list`, without calling its selection callbacks.
void select_all_of_source(Widget list);
/// Shows the attributes of the font of the source at the position that is selected in `list`. Nothing for
/// positions from the last of the main window's list on.
void show_source_attributes(Widget list);

}  // namespace gw
