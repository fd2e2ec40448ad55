// SPDX-License-Identifier: MIT
#include "app/kit/looks.h"

#include <algorithm>
#include <map>

#include "app/kit/handles.h"

#include <Xm/BulletinB.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>

namespace gw {

namespace {

Looks& chosen() {
    static Looks looks;
    return looks;
}

struct FontNames {
    String font_list;
    String render_table;
};

/// Null for what no resource says.
FontNames names_in_resources(Widget w) {
    static XtResource resources[] = {
        {name_arg(XmNfontList), name_arg(XmCFontList), name_arg(XmRString), sizeof(String),
         XtOffsetOf(FontNames, font_list), name_arg(XmRString), nullptr},
        {name_arg(XmNrenderTable), name_arg(XmCRenderTable), name_arg(XmRString), sizeof(String),
         XtOffsetOf(FontNames, render_table), name_arg(XmRString), nullptr},
    };
    FontNames names = {};
    XtGetApplicationResources(w, &names, resources, XtNumber(resources), nullptr, 0);
    return names;
}

bool has_chosen_fonts(Widget w, std::string_view installed) {
    const FontNames names = names_in_resources(w);
    if (names.render_table != nullptr) return true;
    const std::vector<std::string>& others = looks().installed_fonts;
    return names.font_list != nullptr && names.font_list != installed &&
           std::find(others.begin(), others.end(), names.font_list) == others.end();
}

Pixel background_of(Widget w) {
    Pixel background = 0;
    XtVaGetValues(w, XmNbackground, &background, nullptr);
    return background;
}

/// Those of the insensitive fields.
std::map<Widget, Pixel>& own_backgrounds() {
    static std::map<Widget, Pixel> backgrounds;
    return backgrounds;
}

constexpr int LOW_UNITS = 95;
constexpr int FRAME_UNITS = 5;  // font units that the window manager's frame has above and below

}  // namespace

int in_pixels(Widget w, int font_units, unsigned char orientation) {
    return XmConvertUnits(w, orientation, Xm100TH_FONT_UNITS, 100 * font_units, XmPIXELS);
}

void set_looks(const Looks& looks) {
    chosen() = looks;
}

const Looks& looks() {
    return chosen();
}

void realize_on_screen(Widget shell) {
    if (!looks().fits_screen) return XtRealizeWidget(shell);
    XtSetMappedWhenManaged(shell, False);
    XtRealizeWidget(shell);
    keep_on_screen(shell);
    XtSetMappedWhenManaged(shell, True);
    XtMapWidget(shell);
}

void keep_on_screen(Widget content) {
    if (!looks().fits_screen) return;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(content, XmNwidth, &width, XmNheight, &height, nullptr);
    Screen* screen = XtScreen(content);
    const int most_width = WidthOfScreen(screen) - in_pixels(content, 1, XmHORIZONTAL);
    const int most_height = HeightOfScreen(screen) - in_pixels(content, FRAME_UNITS, XmVERTICAL);
    if (width <= most_width && height <= most_height) return;
    // A dialog would grow again for its parts.
    if (XmIsBulletinBoard(content)) XtVaSetValues(content, XmNresizePolicy, XmRESIZE_NONE, nullptr);
    XtVaSetValues(content, XmNwidth, static_cast<Dimension>(std::min<int>(width, most_width)), XmNheight,
                  static_cast<Dimension>(std::min<int>(height, most_height)), nullptr);
}

bool is_screen_low(Widget w) {
    return looks().fits_screen && HeightOfScreen(XtScreen(w)) < in_pixels(w, LOW_UNITS, XmVERTICAL);
}

void use_fonts(Widget w, XmRenderTable fonts, std::string_view installed) {
    if (fonts != nullptr && !has_chosen_fonts(w, installed)) XtVaSetValues(w, XmNrenderTable, fonts, nullptr);
}

void show_choice(Widget toggle) {
    if (!looks().shows_states) return;
    Pixel chosen = 0;
    XtVaGetValues(toggle, XmNforeground, &chosen, nullptr);
    XtVaSetValues(toggle, XmNindicatorType, XmONE_OF_MANY_ROUND, XmNfillOnSelect, True, XmNselectColor,
                  chosen, XmNunselectColor, background_of(XtParent(toggle)), nullptr);
}

void show_sensitivity(Widget field) {
    if (!looks().shows_states || !(XmIsTextField(field) || XmIsText(field))) return;
    const bool is_sensitive = XtIsSensitive(field) != False;
    const auto own = own_backgrounds().find(field);
    if (is_sensitive && own != own_backgrounds().end()) {
        XtVaSetValues(field, XmNbackground, own->second, nullptr);
        own_backgrounds().erase(own);
    } else if (!is_sensitive && own == own_backgrounds().end()) {
        own_backgrounds()[field] = background_of(field);
        XtVaSetValues(field, XmNbackground, background_of(XtParent(field)), nullptr);
    }
}

}  // namespace gw
