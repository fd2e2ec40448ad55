// SPDX-License-Identifier: MIT
#include "app/samples/sample_field.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "app/kit/busy_windows.h"
#include "app/kit/generation.h"
#include "app/kit/handles.h"
#include "app/samples/sample_font.h"

#include <Xm/TextF.h>
#include <Xm/Xm.h>

namespace {

using gw::FontSet;
using gw::LoadedFont;
using gw::SampleFont;

constexpr unsigned XLFD_BUFFER = 2000;

/// The font that each sample field shows. The font list does not own its font, so the font must live longer.
std::map<Widget, SampleFont>& shown_fonts() {
    static std::map<Widget, SampleFont> fonts;
    return fonts;
}

void forget_field_cb(Widget field, XtPointer, XtPointer) {
    shown_fonts().erase(field);
}

void put_text(Widget field, const std::string& text) {
    XmTextFieldSetString(field, gw::name_arg(text.c_str()));
}

XmFontListEntry font_list_entry(const SampleFont& font) {
    const bool is_set = std::holds_alternative<FontSet>(font);
    const XtPointer drawn_with =
        is_set ? static_cast<XtPointer>(std::get<FontSet>(font).get()) : std::get<LoadedFont>(font).get();
    return XmFontListEntryCreate(gw::name_arg(XmFONTLIST_DEFAULT_TAG),
                                 is_set ? XmFONT_IS_FONTSET : XmFONT_IS_FONT, drawn_with);
}

/// Shows `text` in `font`. The field keeps its height: the window must not change its size from font to font.
void draw(Widget field, SampleFont font, const std::string& text) {
    Dimension height = 0;
    XtVaGetValues(field, XmNheight, &height, nullptr);
    XmFontListEntry entry = font_list_entry(font);
    const gw::FontList fonts(XmFontListAppendEntry(nullptr, entry));
    gw::free_entry(entry);
    XtVaSetValues(field, XmNfontList, fonts.get(), nullptr);
    XtVaSetValues(field, XmNheight, height, nullptr);
    auto& shown = shown_fonts();
    if (!shown.contains(field)) XtAddCallback(field, XmNdestroyCallback, forget_field_cb, nullptr);
    shown[field] = std::move(font);
    put_text(field, text);
}

/// Showing the busy cursor handles events, so a newer selection may be shown while an older one is still
/// waiting. The older one must not replace it.
gw::Generation requests;

bool show_in_xlfd(Widget field, std::string_view name, std::string_view words) {
    // Copies: the events that are handled here may change the originals.
    const std::string xlfd(name);
    const std::string text(words);
    const gw::Generation::Ticket ticket = requests.begin();
    {
        const gw::BusyWindows busy;
        if (requests.is_stale(ticket)) return false;
        if (std::optional<SampleFont> font = gw::make_sample_font(xlfd, text); font) {
            draw(field, std::move(*font), text);
        } else {
            clear_sample_textfield(field);
        }
    }
    return !requests.is_stale(ticket);
}

}  // namespace

namespace gw {

// The record of an outline font has no size, so it gets the wanted one for a moment.
bool show_in_font(Widget field, GWFont* font, const std::string& decipoints, const std::string& text) {
    const std::string own_size = font->get_field(GWFont::POINT_SIZE);
    if (!font->is_bitmap()) font->set_field(GWFont::POINT_SIZE, decipoints.c_str());
    char xlfd[XLFD_BUFFER] = "";
    font->construct_xlfd_name(nullptr, xlfd, XLFD_BUFFER - 1);
    font->set_field(GWFont::POINT_SIZE, own_size.c_str());
    return show_in_xlfd(field, xlfd, text);
}

bool show_in_alias(Widget field, const GWAlias* alias, const std::string& text) {
    return show_in_xlfd(field, alias->get_alias_name(), text);
}

void forget_older_samples() {
    requests.begin();
}

}  // namespace gw

void display_text_in_font(Widget field, GWFont* font, const char* decipoints, const char* text) {
    gw::show_in_font(field, font, decipoints, text);
}

void display_text_in_alias(Widget field, const GWAlias* alias, const char* text) {
    gw::show_in_alias(field, alias, text);
}

int display_text_in_fontset(Widget field, const char* base_names, const char* text) {
    FontSet set = gw::make_font_set(base_names);
    if (!set) return 0;
    draw(field, std::move(set), text);
    return 1;
}

void clear_sample_textfield(Widget field) {
    put_text(field, "");
}
