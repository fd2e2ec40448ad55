// SPDX-License-Identifier: MIT
//
// What a sample is drawn with: a font set of the locale, with one or more fonts, or one font itself. The
// server may list a font and yet be unable to open it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include <X11/Xlib.h>

namespace gw {

struct FontSetCloser {
    void operator()(XFontSet set) const;
};
using FontSet = std::unique_ptr<std::remove_pointer_t<XFontSet>, FontSetCloser>;

struct FontCloser {
    void operator()(XFontStruct* font) const;
};
using LoadedFont = std::unique_ptr<XFontStruct, FontCloser>;

using SampleFont = std::variant<FontSet, LoadedFont>;

/// What `text` is drawn with in the font of that name: a font set, which knows the characters of the locale,
/// or else the font itself, if the font policy says so. Nothing when neither has a width for letters, nor the
/// font set for `text`.
[[nodiscard]] std::optional<SampleFont> make_sample_font(std::string name, const std::string& text);

/// The same for a text that the font has, whether or not it has Latin letters.
[[nodiscard]] std::optional<SampleFont> make_font_for(std::string name, const std::string& text);

/// Why there is no sample in the font of that name.
enum class NoSample {
    NOT_LISTED,  ///< the server does not know the name
    NOT_OPENED,  ///< the server knows it, and cannot open the font
    NO_LETTERS,  ///< the locale has no way to draw the font's characters
};
[[nodiscard]] NoSample why_no_sample(std::string name);

/// The font set of a comma-separated list of names. Empty if the locale or the server cannot make it, or if
/// an entry of the list cannot be the name of a font.
[[nodiscard]] FontSet make_font_set(std::string_view names);

enum class ServerAnswer {
    OPENS,
    REFUSES,       ///< it lists the name, and cannot open the font
    HAS_NO_ROOM,   ///< the same: what the file says asks for more memory than there is
    KNOWS_NOTHING  ///< it does not list the name
};
/// Asks the server to open the font of that name, and closes it again.
[[nodiscard]] ServerAnswer ask_server_for_font(std::string name);

/// Makes `x_error_handler` the handler of X errors, in place of the toolkit's.
void take_over_font_errors();

}  // namespace gw

/// Ignores errors of opening a font: a missing size only leaves the sample empty. All other errors go to the
/// previous handler.
int x_error_handler(Display* d, XErrorEvent* event);
