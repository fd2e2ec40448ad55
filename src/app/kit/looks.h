// SPDX-License-Identifier: MIT
//
// How the parts of windows look where the toolkit's own look does not do: in lists, the fonts; in toggles and
// fields, the state. Start-up decides whether.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <X11/Intrinsic.h>
#include <Xm/Xm.h>

namespace gw {

struct Looks {
    /// The scalable fixed-width font of lists; null where they have the fonts that resources give them.
    XmRenderTable name_fonts = nullptr;
    XmRenderTable notice_fonts = nullptr;  ///< for the notice at the start
    XmRenderTable sample_fonts = nullptr;  ///< for sample texts that are in no font of their own
    /// Fonts that the installed resource file gives to some widgets. One that has another is left alone,
    /// because somebody has chosen it.
    std::vector<std::string> installed_fonts;
    /// What is set, and what is insensitive, is seen at a glance.
    bool shows_states = false;
    /// Windows have no bevel of their own inside of the window manager's frame, and fit on the screen.
    bool fits_screen = false;
    /// The server is not asked for what nobody sees: the symbol of a message without one, and what makes a
    /// list scroll while something is dragged over its scroll bars, though nothing can be dropped on it.
    bool spares_requests = false;
};

/// Called once at start-up, before any window is made.
void set_looks(const Looks& looks);
[[nodiscard]] const Looks& looks();

/// Realizes a shell, and maps it when it has its size.
void realize_on_screen(Widget shell);
/// Makes a window's content no higher and no wider than the screen, less the window manager's frame.
void keep_on_screen(Widget content);

/// Whether the screen has room for few lines of the interface's font, as one of 1080 pixels with 192 dots per
/// inch has. False where windows are not fitted to the screen.
[[nodiscard]] bool is_screen_low(Widget w);
/// How many pixels a size in font units is, along an orientation (XmHORIZONTAL, XmVERTICAL).
[[nodiscard]] int in_pixels(Widget w, int font_units, unsigned char orientation);

/// Gives a widget these fonts, unless somebody has chosen others for it by a resource. `fonts` may be null;
/// `installed` is one more font that the installed resource file gives to this widget.
void use_fonts(Widget w, XmRenderTable fonts, std::string_view installed = "");

/// A toggle of a radio box whose indicator is a disc while it is set.
void show_choice(Widget toggle);
/// A field that is insensitive has the colour of its window. Call this when it has become so, or sensitive.
void show_sensitivity(Widget field);

}  // namespace gw
