// SPDX-License-Identifier: MIT
//
// What a sample is drawn with: the locale's font set of one or more fonts, or one font itself. A font that
// the server lists may still be one that it cannot open.
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

/// What `text` is drawn with in the font of that one name: a font set, which knows the locale's characters,
/// or else, where the font policy has it, the font itself. Nothing when neither has a width for letters, nor
/// the font set for `text`.
[[nodiscard]] std::optional<SampleFont> make_sample_font(std::string name, const std::string& text);

/// The font set of a comma-separated list of names; empty when the locale or the server cannot make one, or
/// an entry of the list cannot be the name of a font.
[[nodiscard]] FontSet make_font_set(std::string_view names);

/// Has `x_error_handler` take the place of the toolkit's handler.
void take_over_font_errors();

}  // namespace gw

/// Errors of opening a font end here: a size that is missing only leaves the sample empty. All others go to
/// the handler in place before.
int x_error_handler(Display* d, XErrorEvent* event);
