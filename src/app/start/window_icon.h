// SPDX-License-Identifier: MIT
//
// The icon of the main window. Dialogs are transient for that window, so window managers do not list them on
// their own.
#pragma once

#include <cstdint>
#include <vector>

// X headers come last.
#include <Xm/Xm.h>

namespace gw {

/// A square image: `size` times `size` pixels 0xAARRGGBB, row by row from the top.
struct IconImage {
    unsigned size;
    const std::uint32_t* pixels;
};

/// All sizes, ascending. The build makes them from data/icon.
std::vector<IconImage> icon_images();

/// Gives the realized `shell` the icon in both forms: the property _NET_WM_ICON in all sizes, and the pixmap
/// and mask of WM_HINTS, which mwm shows. Only screens with true colours get the pixmap.
void set_window_icon(Widget shell);

}  // namespace gw
