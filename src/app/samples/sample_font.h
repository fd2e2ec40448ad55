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

/// The font set of a comma-separated list of names. Empty if the locale or the server cannot make it, or if
/// an entry of the list cannot be the name of a font.
[[nodiscard]] FontSet make_font_set(std::string_view names);

/// Makes `x_error_handler` the handler of X errors, in place of the toolkit's.
void take_over_font_errors();

}  // namespace gw

/// Ignores errors of opening a font: a missing size only leaves the sample empty. All other errors go to the
/// previous handler.
int x_error_handler(Display* d, XErrorEvent* event);
