// SPDX-License-Identifier: MIT
#include "app/samples/sample_field.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "app/kit/busy_windows.h"
#include "app/kit/generation.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "app/samples/enlarged_sample.h"
#include "app/samples/sample_font.h"
#include "fontfiles/font_face.h"
#include "fontfiles/script_sample.h"
#include "texts/messages.h"

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
    gw::sample_absences().emit(field, "");
}

/// Showing the busy cursor handles events, so a newer selection may be shown while an older one is still
/// waiting. The older one must not replace it.
gw::Generation requests;

std::map<Widget, Widget>& status_labels() {
    static std::map<Widget, Widget> labels;
    return labels;
}

/// With "", takes back what was said last, and nothing that others have said.
void say(Widget field, const std::string& text) {
    static std::string said;
    const auto label = status_labels().find(field);
    if (label == status_labels().end()) return;
    if (text.empty() && (said.empty() || gw::label_of(label->second) != said)) return;
    update_label(label->second, text.empty() ? " " : text.c_str(), nullptr);
    said = text;
}

std::string explanation(gw::NoSample reason) {
    switch (reason) {
        case gw::NoSample::NOT_LISTED:
            return gw::text_of(gw::Message::NOT_ON_THE_SERVER);
        case gw::NoSample::NOT_OPENED:
            return gw::text_of(gw::Message::NOT_OPENED_BY_SERVER);
        case gw::NoSample::NO_LETTERS:
            return gw::text_of(gw::Message::NOT_DRAWN_IN_LOCALE);
    }
    return "";
}

/// Whether the name has a size that the font was made for. The server scales outlines to any resolution.
bool is_bitmap_name(const std::string& xlfd) {
    GWFont font(GWFont::BITMAP_FONT);
    font.set_xlfd_name(xlfd.c_str());
    return std::string(font.get_field(GWFont::AVERAGE_WIDTH)) != "0";
}

/// Letters that the font in the file has, for one that cannot show the sample text.
std::string own_letters(const std::string& file, const std::string& text) {
    if (file.empty() || !gw::window_policy().explains_samples()) return "";
    const gw::Result<gw::FontFace> face = gw::FontFace::open(file);
    return face ? gw::sample_letters(*face, text) : "";
}

bool is_blank(const std::string& text) {
    return text.find_first_not_of(" \t\n") == std::string::npos;
}

/// Whether the font in the file has none of the characters of the text, nor any others.
bool has_nothing_to_show(const std::string& file, const std::string& text) {
    if (file.empty()) return false;
    const gw::Result<gw::FontFace> face = gw::FontFace::open(file);
    return face && gw::sample_letters(*face, text).empty();
}

/// Says why a sample is empty although its font could be had: there is no text, or the font has no characters
/// for it.
void explain_what_is_drawn(Widget field, const std::string& text, const std::string& file) {
    if (!gw::window_policy().explains_samples()) return;
    if (is_blank(text)) {
        say(field, gw::text_of(gw::Message::NO_SAMPLE_TEXT));
    } else if (has_nothing_to_show(file, text)) {
        say(field, gw::text_of(gw::Message::NO_SUCH_CHARACTERS));
    }
}

void draw_or_explain(Widget field, const std::string& xlfd, const std::string& text,
                     const std::string& file) {
    say(field, "");
    if (std::optional<SampleFont> font = gw::make_sample_font(xlfd, text); font) {
        // It is about to lose the font that it has.
        gw::enlarge_sample(field, nullptr, "");
        draw(field, std::move(*font), text);
        if (is_bitmap_name(xlfd)) gw::enlarge_sample(field, &shown_fonts()[field], text);
        explain_what_is_drawn(field, text, file);
        return;
    }
    gw::enlarge_sample(field, nullptr, "");
    if (const std::string letters = own_letters(file, text); !letters.empty() && letters != text) {
        if (std::optional<SampleFont> font = gw::make_font_for(xlfd, letters); font)
            return draw(field, std::move(*font), letters);
    }
    clear_sample_textfield(field);
    if (!gw::window_policy().explains_samples()) return;
    say(field, explanation(gw::why_no_sample(xlfd)));
    gw::sample_absences().emit(field, xlfd);
}

/// `file` is the font's, "" when it is not known.
bool show_in_xlfd(Widget field, std::string_view name, std::string_view words, const std::string& file = {}) {
    // Copies: the events that are handled here may change the originals.
    const std::string xlfd(name);
    const std::string text(words);
    const gw::Generation::Ticket ticket = requests.begin();
    {
        const gw::BusyWindows busy;
        if (requests.is_stale(ticket)) return false;
        draw_or_explain(field, xlfd, text, file);
    }
    return !requests.is_stale(ticket);
}

std::string first_file_of(const GWFont& font) {
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    return files != nullptr && !files->is_empty() ? (*files->begin())->get_path() : "";
}

/// Gives an outline font a size and, if windows do so, the resolution of the screen, for a moment.
class Sized {
  public:
    Sized(GWFont& font, const std::string& decipoints) : font_(font) {
        for (std::size_t i = 0; i < FIELDS.size(); ++i) before_[i] = font.get_field(FIELDS[i]);
        if (font.is_bitmap()) return;
        font.set_field(GWFont::POINT_SIZE, decipoints.c_str());
        if (!gw::window_policy().explains_samples()) return;
        const std::string resolution = std::to_string(gw::screen_resolution());
        font.set_field(GWFont::RESOLUTION_X, resolution.c_str());
        font.set_field(GWFont::RESOLUTION_Y, resolution.c_str());
    }
    ~Sized() {
        for (std::size_t i = 0; i < FIELDS.size(); ++i) font_.set_field(FIELDS[i], before_[i].c_str());
    }
    Sized(const Sized&) = delete;
    Sized& operator=(const Sized&) = delete;

  private:
    static constexpr std::array<GWFont::FIELD, 3> FIELDS = {GWFont::POINT_SIZE, GWFont::RESOLUTION_X,
                                                            GWFont::RESOLUTION_Y};
    GWFont& font_;
    std::array<std::string, FIELDS.size()> before_;
};

}  // namespace

namespace gw {

bool show_in_font(Widget field, GWFont* font, const std::string& decipoints, const std::string& text) {
    char xlfd[XLFD_BUFFER] = "";
    {
        const Sized sized(*font, decipoints);
        font->construct_xlfd_name(nullptr, xlfd, XLFD_BUFFER - 1);
    }
    return show_in_xlfd(field, xlfd, text, first_file_of(*font));
}

Signal<Widget, const std::string&>& sample_absences() {
    static Signal<Widget, const std::string&> absences;
    return absences;
}

void explain_samples_in(Widget field, Widget status) {
    status_labels()[field] = status;
}

int screen_resolution() {
    static constexpr int FEWEST = 50;
    static constexpr int MOST = 600;
    static constexpr double MILLIMETRES = 25.4;
    const char* wanted = XGetDefault(display, "Xft", "dpi");
    int resolution = wanted != nullptr ? std::atoi(wanted) : 0;
    const int height = DisplayHeightMM(display, DefaultScreen(display));
    if (resolution <= 0 && height > 0)
        resolution = static_cast<int>(
            std::lround(DisplayHeight(display, DefaultScreen(display)) * MILLIMETRES / height));
    return std::clamp(resolution, FEWEST, MOST);
}

bool show_in_alias(Widget field, const GWAlias* alias, const std::string& text) {
    return show_in_xlfd(field, alias->get_alias_name(), text);
}

bool show_in_name(Widget field, const std::string& xlfd, const std::string& text, const std::string& file) {
    return show_in_xlfd(field, xlfd, text, file);
}

void forget_older_samples() {
    requests.begin();
}

void explain_missing_font(Widget field) {
    if (window_policy().explains_samples()) say(field, text_of(Message::NO_FONT_OF_ENTRY));
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
    gw::enlarge_sample(field, nullptr, "");
    put_text(field, "");
    gw::sample_absences().emit(field, "");
}
