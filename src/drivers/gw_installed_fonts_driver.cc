// SPDX-License-Identifier: MIT
#include "drivers/gw_installed_fonts_driver.h"

#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "modules/gw_fsm_list.h"

// Lists the fonts of the configured font path, whatever the session's font path is.
void GWInstalledFontsDriver::get_hrn_list(GWHRNList& out) {
    unsigned count = 0;
    for (const GW_STRING* element : *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count)) {
        if (element->get_str()[0] != '/') continue;
        GW_FPE fpe(element->get_str());
        GW_LIST<GWFont> fonts;
        the_fsm_list.make_installed_font_list(fonts, &fpe);
        for (GWFont* font : fonts) out.add_font(font);
    }
}
