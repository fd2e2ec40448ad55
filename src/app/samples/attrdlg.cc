// SPDX-License-Identifier: MIT
#include "app/samples/attrdlg.h"

#include <memory>
#include <string>

#include "app/common/help_requests.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/looks.h"
#include "app/kit/widgets.h"
#include "app/program/shown_names.h"
#include "app/program/window_policy.h"
#include "app/samples/font_details.h"
#include "core/font_policy.h"
#include "core/text.h"
#include "model/gw_xlfd_name.h"
#include "model/packaged_fonts.h"
#include "platform/package_owner.h"
#include "texts/messages.h"

#include <Xm/Form.h>

Widget wi_attr_dlg = nullptr;
int attr_dlg_managed = 0;
Widget wi_font_hrn_name, wi_font_xlfd_name, wi_font_loc_name;
Widget wi_foundry_name, wi_charset_name, wi_spacing_name;
Widget wi_package_name;  // null unless windows show packages, and not with the details
Widget wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;
constexpr std::size_t USUAL_NAME = 60;  // characters that fit into the dialog when it appears
constexpr int VALUE_COLUMN = 24;        // the width of the labels, in hundredths of the dialog's

/// Null where windows do not show them.
std::unique_ptr<gw::FontDetails>& details() {
    static std::unique_ptr<gw::FontDetails> of_the_dialog;
    return of_the_dialog;
}

bool shows_details() {
    return gw::window_policy().shows_font_details() && gw::font_policy().enters_all_names();
}

void close_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_attr_dlg);
    attr_dlg_managed = 0;
    if (details()) details()->clear();
}

void show_dialog() {
    if (attr_dlg_managed != 0) return;
    XtManageChild(wi_attr_dlg);
    attr_dlg_managed = 1;
}

void set_value(Widget value, const char* text) {
    update_label(value, text != nullptr ? gw::escaped(text).c_str() : nullptr, nullptr);
}

/// Only with the row for packages.
void show_package(const std::string& packages) {
    if (wi_package_name != nullptr) set_value(wi_package_name, packages.c_str());
}

/// Puts `row` below `above`, or on top of its form when `above` is null.
void stack(Widget row, Widget above) {
    if (above != nullptr) {
        Attach(row).below(above, GAP);
    } else {
        Attach(row).top_form(GAP);
    }
}

/// A label, which is returned through `label`, and beside it, in the value column, its value. The next row is
/// attached to the label, because an empty value has no height.
Widget value_row(Widget parent, const char* label_name, Message text, const char* value_name, Widget above,
                 Widget& label) {
    label = gw::label(parent, label_name, text);
    Widget value = gw::label(parent, value_name, std::string(USUAL_NAME, ' '));
    stack(label, above);
    stack(value, above);
    Attach(label).columns(0, VALUE_COLUMN);
    Attach(value).columns(VALUE_COLUMN, 100);
    return value;
}

/// Makes the scrolled window just high enough for one line and a scroll bar: with the details below, the
/// dialog needs the height.
void make_low(Widget scroll, Widget line) {
    Widget bar = nullptr;
    Dimension shadow = 0;
    Dimension space = 0;
    XtVaGetValues(scroll, XmNhorizontalScrollBar, &bar, XmNshadowThickness, &shadow, XmNspacing, &space,
                  nullptr);
    const int height = gw::natural_height(line) + gw::natural_height(bar) + 2 * shadow + space;
    XtVaSetValues(scroll, XmNheight, height, nullptr);
}

/// The same with the value in a scrolled window, which is returned through `scroll`, so that names and paths
/// of any length can be read.
Widget scrolled_row(Widget parent, const char* label_name, Message text, const char* value_name,
                    const char* scroll_name, Widget above, Widget& scroll) {
    Widget label = gw::label(parent, label_name, text);
    scroll = gw::scrolled_window(parent, scroll_name);
    Widget value = gw::label(scroll, value_name, " ");
    if (shows_details()) make_low(scroll, value);
    stack(label, above);
    stack(scroll, above);
    Attach(label).columns(0, VALUE_COLUMN);
    Attach(scroll).columns(VALUE_COLUMN, 100);
    return value;
}

/// A form as wide as the dialog, with a separator below it; returns the separator.
Widget section(Widget dialog, const char* name, const char* separator_name, Widget above, Widget& out_form) {
    out_form = gw::form(dialog, name);
    Attach(out_form).sides(GAP).below(above, 0);
    Widget line = gw::separator(dialog, separator_name);
    Attach(line).sides(0).below(out_form, GAP);
    return line;
}

void create_font_section(Widget parent) {
    Widget name_scroll = nullptr;
    Widget location_scroll = nullptr;
    wi_font_xlfd_name = scrolled_row(parent, "xlfd_label", Message::ATTR_XLFD, "xlfd_name",
                                     "_font_xlfd_scroll", nullptr, name_scroll);
    wi_font_loc_name = scrolled_row(parent, "loc_label", Message::ATTR_LOCATION, "loc_name",
                                    "_font_loc_scroll", name_scroll, location_scroll);
    Attach(location_scroll).bottom_form(0);
}

void create_foundry_section(Widget parent) {
    Widget row = nullptr;
    wi_foundry_name = value_row(parent, "foundry_label", Message::ATTR_FOUNDRY, "foundry_name", nullptr, row);
    wi_charset_name = value_row(parent, "charset_label", Message::ATTR_CHARSET, "charset_name", row, row);
    wi_spacing_name = value_row(parent, "spacing_label", Message::ATTR_SPACING, "spacing_name", row, row);
    wi_package_name = nullptr;
    if (gw::window_policy().shows_packages() && !shows_details())
        wi_package_name = value_row(parent, "package_label", Message::ATTR_PACKAGE, "package_name", row, row);
}

void create_alias_section(Widget parent) {
    Widget row = nullptr;
    wi_alias_hrn_name = value_row(parent, "alias_label", Message::ATTR_ALIAS, "alias_name", nullptr, row);
    set_value(wi_alias_hrn_name, gw::text_of(Message::ATTR_ALIAS_NAME));
    Widget name_scroll = nullptr;
    Widget location_scroll = nullptr;
    wi_alias_xlfd_name = scrolled_row(parent, "xlfd_label", Message::ATTR_ALIAS_XLFD, "xlfd_name",
                                      "_alias_xlfd_scroll", row, name_scroll);
    wi_alias_loc_name = scrolled_row(parent, "loc_label", Message::ATTR_ALIAS_LOCATION, "loc_name",
                                     "_alias_loc_scroll", name_scroll, location_scroll);
    Attach(location_scroll).bottom_form(0);
}

/// Labels of a narrow section need more of its width.
void widen_labels(Widget form) {
    constexpr int WIDE_COLUMN = 45;
    WidgetList rows = nullptr;
    Cardinal count = 0;
    XtVaGetValues(form, XmNchildren, &rows, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        int left = 0;
        XtVaGetValues(rows[i], XmNleftPosition, &left, nullptr);
        XtVaSetValues(rows[i], left == VALUE_COLUMN ? XmNleftPosition : XmNrightPosition, WIDE_COLUMN,
                      nullptr);
    }
}

/// On a low screen the details need the height of one of these sections.
void put_beside(Widget alias, Widget foundry, Widget above) {
    constexpr int MIDDLE = 45;
    XtUnmanageChild(XtNameToWidget(XtParent(alias), "separator3"));
    Attach(foundry).columns(0, MIDDLE);
    Attach(alias).below(above, 0).columns(MIDDLE + 1, 100);
    for (Widget section : {alias, foundry}) widen_labels(section);
}

/// The file of the font, its names and its characters; returns the separator below them.
Widget create_details_section(Widget dialog, Widget above) {
    Widget form = nullptr;
    Widget line = section(dialog, "details_template", "separator5", above, form);
    details() = std::make_unique<gw::FontDetails>(form);
    // The record must not outlive the widgets.
    XtAddCallback(
        form, XmNdestroyCallback, [](Widget, XtPointer, XtPointer) { details().reset(); }, nullptr);
    return line;
}

/// Gives the details the height that the user adds to the dialog.
void let_details_grow(Widget dialog, Widget form, Widget message) {
    XtVaSetValues(message, XmNtopAttachment, XmATTACH_NONE, nullptr);
    XtVaSetValues(form, XmNtopAttachment, XmATTACH_NONE, nullptr);
    Widget line = XtNameToWidget(dialog, "separator5");
    XtVaSetValues(line, XmNtopAttachment, XmATTACH_NONE, nullptr);
    Attach(form).above(message, 0);
    Attach(line).above(form, GAP);
    Attach(XtNameToWidget(dialog, "details_template")).above(line, GAP);
}

void create_buttons(Widget dialog, Widget above) {
    Widget form = gw::form(dialog, "button_form");
    Attach(form).sides(0).below(above, GAP);
    Widget close =
        gw::fill_with_buttons(form, {{"close_button", Message::ATTR_CLOSE, close_cb, nullptr, 20, 40},
                                     gw::help_button("help_dlg_button", Message::ATTR_HELP,
                                                     gw::HelpSection::ATTRIBUTES, gw::do_nothing_cb, 60, 80)})
            .front();

    Widget message = gw::label(dialog, "msg_label", " ");
    Attach(message).sides(GAP).below(form, 0).bottom_form(0);
    if (details()) let_details_grow(dialog, form, message);
    gw::end_dialog(dialog, {close, close, form, close_cb});
}

/// The words for the spacing codes. An unknown code is shown as it is.
std::string spacing_word(const char* spacing) {
    const std::string code = gw::lower_case(spacing);
    if (code == "m") return gw::text_of(Message::SPACING_MONO);
    if (code == "p") return gw::text_of(Message::SPACING_PROPORTIONAL);
    if (code == "c") return gw::text_of(Message::SPACING_CHARCELL);
    return spacing;
}

}  // namespace

Widget create_attr_dlg(const char* name, Widget parent) {
    wi_attr_dlg = gw::form_dialog(parent, name, Message::ATTR_TITLE);
    // The dialog stays open while the user selects fonts, and must not change its size with every name.
    XtVaSetValues(wi_attr_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    Widget font_label = gw::label(wi_attr_dlg, "hrn_label", Message::ATTR_FONT);
    Attach(font_label).top_form(GAP).left_form(GAP);
    wi_font_hrn_name = gw::label(wi_attr_dlg, "hrn_name", " ");
    Attach(wi_font_hrn_name).top_form(GAP).right_of(font_label, GAP).right_form(GAP);
    Widget line = gw::separator(wi_attr_dlg, "separator1");
    Attach(line).sides(0).below(font_label, GAP);

    Widget part = nullptr;
    line = section(wi_attr_dlg, "font_template", "separator2", line, part);
    create_font_section(part);
    Widget foundry = nullptr;
    Widget below_font = line;
    line = section(wi_attr_dlg, "foundry_template", "separator3", line, foundry);
    create_foundry_section(foundry);
    line = section(wi_attr_dlg, "alias_template", "separator4", line, part);
    create_alias_section(part);
    if (shows_details() && gw::is_screen_low(wi_attr_dlg)) put_beside(part, foundry, below_font);
    if (shows_details()) line = create_details_section(wi_attr_dlg, line);
    create_buttons(wi_attr_dlg, line);
    gw::BusyWindows::include(wi_attr_dlg);
    return wi_attr_dlg;
}

void show_font_attributes(GWFont* font, const char* location, const GWHRNElement* entry) {
    show_dialog();
    const bool postscript = font->is_postscript_named();
    const char* name = postscript ? font->get_ps_name() : font->get_xlfd_name();
    const bool xlfd = !postscript && is_xlfd_name(name) != 0;
    set_value(wi_font_hrn_name, gw::name_for_window(font->get_hrn_name()).c_str());
    set_value(wi_font_xlfd_name, name);
    set_value(wi_font_loc_name, location != nullptr ? location : font->get_dir_name());
    set_value(wi_charset_name, xlfd ? font->get_charset_hrn_name() : nullptr);
    set_value(wi_foundry_name, xlfd ? font->get_field(GWFont::FOUNDRY) : " ");
    set_value(wi_spacing_name, xlfd ? spacing_word(font->get_field(GWFont::SPACING)).c_str() : " ");
    for (Widget value : {wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name}) set_value(value, nullptr);
    if (details()) details()->show(*font, entry);
    if (wi_package_name == nullptr) return;
    gw::forget_package_owners();
    const gw::Result<std::set<std::string>> packages = gw::packages_of(*font);
    if (!packages) gw::tell(packages.failure());
    show_package(packages ? gw::enumeration(*packages) : "");
}

void show_alias_attributes(const GWAlias* alias) {
    show_dialog();
    set_value(wi_alias_hrn_name, gw::name_for_window(alias->get_hrn_name()).c_str());
    set_value(wi_alias_xlfd_name, alias->get_alias_name());
    set_value(wi_alias_loc_name, alias->get_dir_name());
    set_value(wi_font_hrn_name, gw::name_for_window(alias->get_font_hrn_name()).c_str());
    set_value(wi_font_xlfd_name, alias->get_font_name());
    for (Widget value : {wi_font_loc_name, wi_foundry_name, wi_charset_name, wi_spacing_name})
        set_value(value, nullptr);
    show_package("");
    if (details()) details()->clear();
}

void clear_attributes() {
    for (Widget value :
         {wi_font_hrn_name, wi_font_xlfd_name, wi_font_loc_name, wi_foundry_name, wi_charset_name,
          wi_spacing_name, wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name}) {
        set_value(value, nullptr);
    }
    show_package("");
    if (details()) details()->clear();
}

int is_attr_dlg_displayed() {
    return attr_dlg_managed;
}

namespace gw {

FontDetails* font_details() {
    return details().get();
}

void release_shown_font() {
    if (details()) details()->clear();
}

}  // namespace gw
