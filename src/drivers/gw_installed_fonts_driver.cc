// SPDX-License-Identifier: MIT
#include "drivers/gw_installed_fonts_driver.h"

#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/path_element.h"
#include "modules/gw_fsm_list.h"
#include "store/directory_change.h"

// Lists the fonts of the configured font path, whatever the session's font path is. A change of fonts that
// was killed in the middle is taken back first, so that the list shows whole fonts. Directories that do not
// answer are left out, also by the list of aliases, which is made after this one.
void GWInstalledFontsDriver::get_hrn_list(GWHRNList& out) {
    unsigned count = 0;
    const GW_LIST<GW_STRING>& path = *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count);
    for (const std::string& dir : gw::find_silent(path))
        gw::tell(gw::Failure{dir, gw::Reason::SILENT}.with(gw::Sequel::FONTS_NOT_LISTED));
    GW_LIST<GWFont> fonts;
    for (const std::string& dir : gw::directories_to_list(path)) {
        gw::tell_unless_done(gw::settle(dir));
        GW_FPE fpe(dir.c_str());
        the_fsm_list.make_installed_font_list(fonts, &fpe);
    }
    out.add_fonts(fonts);
    out.tell_apart();
}
