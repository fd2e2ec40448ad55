// SPDX-License-Identifier: MIT
#include "app/samples/sample_font.h"

#include <algorithm>
#include <cstdlib>

#include "app/kit/toolkit.h"
#include "core/font_policy.h"
#include "core/text.h"

#include <X11/Xproto.h>

namespace gw {

void FontSetCloser::operator()(XFontSet set) const {
    XFreeFontSet(display, set);
}

void FontCloser::operator()(XFontStruct* font) const {
    XFreeFont(display, font);
}

namespace {

constexpr std::size_t LONGEST_FONT_NAME = 255;

XErrorHandler default_error_handler = nullptr;

/// When a list of names is blank, Xlib frees memory that it does not own. The server knows no longer names.
bool can_name_a_font(const std::string& name) {
    return name.size() <= LONGEST_FONT_NAME && name.find_first_not_of(" \t\n\v\f\r") != std::string::npos;
}

bool all_can_name_fonts(std::string_view names) {
    for (;;) {
        const std::size_t comma = names.find(',');
        if (!can_name_a_font(std::string(names.substr(0, comma)))) return false;
        if (comma == std::string_view::npos) return true;
        names.remove_prefix(comma + 1);
    }
}

int width_of(XFontSet set, const std::string& text) {
    return XmbTextEscapement(set, text.data(), static_cast<int>(text.size()));
}

/// It is normal that charsets are missing: a set of one font has only one.
FontSet open_font_set(const std::string& names) {
    char** missing = nullptr;
    int missing_count = 0;
    char* substitute = nullptr;
    FontSet set(XCreateFontSet(display, names.c_str(), &missing, &missing_count, &substitute));
    if (missing != nullptr) XFreeStringList(missing);
    return set;
}

/// The server has more than one error for a font file that it cannot read. None of them may end the program.
int ignore_font_errors(Display* d, XErrorEvent* event) {
    const bool about_fonts = event->request_code == X_OpenFont || event->request_code == X_QueryFont;
    return about_fonts ? 0 : x_error_handler(d, event);
}

/// The font with that name; empty if the server cannot open it.
LoadedFont load_font(const std::string& name) {
    const XErrorHandler before = XSetErrorHandler(ignore_font_errors);
    LoadedFont font(XLoadQueryFont(display, name.c_str()));
    XSync(display, False);
    XSetErrorHandler(before);
    return font;
}

unsigned char opening_error = Success;

int note_opening_error(Display* d, XErrorEvent* event) {
    if (event->request_code != X_OpenFont && event->request_code != X_CloseFont)
        return x_error_handler(d, event);
    // The error of closing a font that was not opened comes second.
    if (event->request_code == X_OpenFont) opening_error = event->error_code;
    return 0;
}

bool server_lists(const std::string& name) {
    int count = 0;
    char** names = XListFonts(display, name.c_str(), 1, &count);
    if (names != nullptr) XFreeFontNames(names);
    return count > 0;
}

bool has_letters(FontSet& set) {
    return set && width_of(set.get(), "A") > 0;
}

/// A font of two-byte characters has no letters: for a text of bytes it would draw its default character
/// only.
bool has_letters(LoadedFont& font) {
    return font && font->min_byte1 == 0 && font->min_char_or_byte2 <= 'A' && font->max_char_or_byte2 >= 'A' &&
           XTextWidth(font.get(), "A", 1) > 0;
}

}  // namespace

std::optional<SampleFont> make_sample_font(std::string name, const std::string& text) {
    if (!can_name_a_font(name)) return std::nullopt;
    // A comma would end the name. A question mark matches any one character.
    std::replace(name.begin(), name.end(), ',', '?');
    FontSet set = open_font_set(name);
    if (has_letters(set)) return set;
    // Kept: a sample without a font set is empty.
    if (font_policy().draws_with_the_font_itself()) {
        if (LoadedFont font = load_font(name); has_letters(font)) return font;
    }
    if (set && width_of(set.get(), text) > 0) return set;
    return std::nullopt;
}

std::optional<SampleFont> make_font_for(std::string name, const std::string& text) {
    if (!can_name_a_font(name)) return std::nullopt;
    std::replace(name.begin(), name.end(), ',', '?');
    if (FontSet set = open_font_set(name); set && width_of(set.get(), text) > 0) return set;
    // The toolkit draws Unicode with such a font in a UTF-8 locale, and bytes in any other.
    const bool is_unicode = lower_case(name).ends_with("-iso10646-1") && MB_CUR_MAX > 1;
    if (LoadedFont font = is_unicode ? load_font(name) : LoadedFont(); font) return font;
    return std::nullopt;
}

NoSample why_no_sample(std::string name) {
    if (!can_name_a_font(name)) return NoSample::NOT_LISTED;
    std::replace(name.begin(), name.end(), ',', '?');
    if (load_font(name)) return NoSample::NO_LETTERS;
    int count = 0;
    char** names = XListFonts(display, name.c_str(), 1, &count);
    if (names != nullptr) XFreeFontNames(names);
    return count > 0 ? NoSample::NOT_OPENED : NoSample::NOT_LISTED;
}

FontSet make_font_set(std::string_view names) {
    return all_can_name_fonts(names) ? open_font_set(std::string(names)) : FontSet();
}

ServerAnswer ask_server_for_font(std::string name) {
    std::replace(name.begin(), name.end(), ',', '?');
    if (!can_name_a_font(name) || !server_lists(name)) return ServerAnswer::KNOWS_NOTHING;
    XSync(display, False);
    opening_error = Success;
    const XErrorHandler before = XSetErrorHandler(note_opening_error);
    // The font is not queried: a server answers that with the widths of all its characters.
    XUnloadFont(display, XLoadFont(display, name.c_str()));
    XSync(display, False);
    XSetErrorHandler(before);
    if (opening_error == Success) return ServerAnswer::OPENS;
    return opening_error == BadAlloc ? ServerAnswer::HAS_NO_ROOM : ServerAnswer::REFUSES;
}

void take_over_font_errors() {
    const XErrorHandler before = XSetErrorHandler(x_error_handler);
    if (before != x_error_handler) default_error_handler = before;
}

}  // namespace gw

int x_error_handler(Display* d, XErrorEvent* event) {
    if (event->request_code == X_OpenFont) return 0;
    return gw::default_error_handler != nullptr ? gw::default_error_handler(d, event) : 0;
}
