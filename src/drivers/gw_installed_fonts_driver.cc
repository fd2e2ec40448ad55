// SPDX-License-Identifier: MIT
#include "drivers/gw_installed_fonts_driver.h"

#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "modules/gw_fsm_list.h"
#include "store/directory_change.h"

// Lists the fonts of the configured font path, whatever the session's font path is. A change of fonts that
// was killed in the middle is taken back first, so that the list shows whole fonts.
void GWInstalledFontsDriver::get_hrn_list(GWHRNList& out) {
    unsigned count = 0;
    for (const GW_STRING* element : *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count)) {
        if (element->get_str()[0] != '/') continue;
        gw::tell_unless_done(gw::settle(element->get_str()));
        GW_FPE fpe(element->get_str());
        GW_LIST<GWFont> fonts;
        the_fsm_list.make_installed_font_list(fonts, &fpe);
        for (GWFont* font : fonts) out.add_font(font);
    }
}
