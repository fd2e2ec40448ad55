// SPDX-License-Identifier: MIT
#include "app/start/interface_font.h"

#include <langinfo.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "app/kit/handles.h"
#include "app/kit/looks.h"
#include "app/program/window_policy.h"
#include "app/start/fallback_resources.h"

#include <X11/Shell.h>
#include <X11/Xresource.h>
#include <Xm/Screen.h>

namespace gw {

namespace {

constexpr const char* DIGITS = "0123456789";
constexpr int DIGIT_COUNT = 10;
constexpr double UNITS_OF_A_LINE = 2.2;  // as in the toolkit
constexpr int LEAST_UNIT = 7;            // windows then have their built-in sizes

const char* const TABLES[] = {XmNlabelRenderTable, XmNbuttonRenderTable, XmNtextRenderTable};

XmRenderTable table_of(Widget shell, const char* resource) {
    XmRenderTable table = nullptr;
    XtVaGetValues(shell, resource, &table, nullptr);
    return table;
}

bool draws(XmRenderTable table) {
    const XmText digits = xm_text(DIGITS);
    return table != nullptr && XmStringWidth(table, digits.get()) > 0;
}

bool is_scalable(XmRendition rendition) {
    XmFontType type = XmFONT_IS_FONT;
    Arg args[1];
    XtSetArg(args[0], XmNfontType, &type);
    XmRenditionRetrieve(rendition, args, 1);
    return type == XmFONT_IS_XFT;
}

bool has_scalable_font(XmRenderTable table) {
    XmStringTag* tags = nullptr;
    const int count = XmRenderTableGetTags(table, &tags);
    const XtOwned<XmStringTag> owned(tags);
    bool found = false;
    for (int i = 0; i < count; ++i) {
        const XtOwned<char> tag(tags[i]);
        XmRendition rendition = XmRenderTableGetRendition(table, tag.get());
        found = found || is_scalable(rendition);
        XmRenditionFree(rendition);
    }
    return found;
}

/// Whether the toolkit can draw the locale's characters in a scalable font.
bool suits_locale(const char* resource) {
    const std::string_view codeset = nl_langinfo(CODESET);
    constexpr std::string_view ASCII = "ANSI_X3.4-1968";
    const bool is_for_fields = resource == std::string_view(XmNtextRenderTable);
    return codeset == "UTF-8" ||
           (codeset == ASCII && (!is_for_fields || window_policy().scales_with_the_screen()));
}

/// The renditions of the resource file are for scalable fonts, and there are none. A table that is made from
/// them later would have no font either.
void rename_renditions(Display* d) {
    XrmDatabase resources = XrmGetDatabase(d);
    for (const std::string rendition :
         {"gw_interface", "gw_monospace", "gw_names", "gw_notice", "gw_sample"}) {
        const std::string prefix = "Glyphward*" + rendition + '.';
        XrmPutStringResource(&resources, (prefix + XmNfontType).c_str(), "FONT_IS_FONT");
        XrmPutStringResource(&resources, (prefix + XmNfontName).c_str(), "fixed");
    }
}

/// Gives `shell` the table of a new shell to which the program's resources do not apply.
void use_toolkit_table(Widget shell, const char* resource) {
    Widget plain =
        XtAppCreateShell("plain", "Plain", applicationShellWidgetClass, XtDisplayOfObject(shell), nullptr, 0);
    XtVaSetValues(shell, resource, table_of(plain, resource), nullptr);
    XtDestroyWidget(plain);
}

void set_font_units(Widget shell) {
    XmRenderTable labels = table_of(shell, XmNlabelRenderTable);
    const XmText digits = xm_text(DIGITS);
    const int width = XmStringWidth(labels, digits.get()) / DIGIT_COUNT;
    const int height = static_cast<int>(std::lround(XmStringHeight(labels, digits.get()) / UNITS_OF_A_LINE));
    XtVaSetValues(XmGetXmScreen(XtScreenOfObject(shell)), XmNhorizontalFontUnit, std::max(width, LEAST_UNIT),
                  XmNverticalFontUnit, std::max(height, LEAST_UNIT), nullptr);
}

/// The table that the resource file describes under that name; null when it has no scalable font, or when the
/// interface has none. It stays as long as the program.
XmRenderTable scalable_table(Widget shell, const char* name) {
    XrmValue from = {static_cast<unsigned>(std::string_view(name).size() + 1), name_arg(name)};
    XmRenderTable table = nullptr;
    XrmValue to = {sizeof table, reinterpret_cast<XPointer>(&table)};
    const bool is_made =
        XtConvertAndStore(shell, name_arg(XmRString), &from, name_arg(XmRRenderTable), &to) != False;
    return is_made && draws(table) && has_scalable_font(table) ? table : nullptr;
}

void choose_looks(Widget shell) {
    Looks looks;
    looks.installed_fonts = {INSTALLED_LIST_FONT, INSTALLED_NOTICE_FONT};
    looks.fits_screen = window_policy().scales_with_the_screen();
    looks.spares_requests = window_policy().spares_requests();
    looks.shows_states = window_policy().shows_states_clearly();
    if (window_policy().scales_with_the_screen() && has_scalable_font(table_of(shell, XmNtextRenderTable))) {
        looks.name_fonts = scalable_table(shell, "gw_names");
        looks.notice_fonts = scalable_table(shell, "gw_notice");
        looks.sample_fonts = scalable_table(shell, "gw_sample");
    }
    set_looks(looks);
}

}  // namespace

void prepare_interface_font(Widget shell) {
    for (const char* resource : TABLES) {
        XmRenderTable table = table_of(shell, resource);
        const bool there = draws(table);
        if (there && (suits_locale(resource) || !has_scalable_font(table))) continue;
        if (!there) rename_renditions(XtDisplayOfObject(shell));
        use_toolkit_table(shell, resource);
    }
    set_font_units(shell);
    choose_looks(shell);
}

}  // namespace gw
