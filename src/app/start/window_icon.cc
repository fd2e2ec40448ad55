// SPDX-License-Identifier: MIT
#include "app/start/window_icon.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <memory>

#include "app/kit/toolkit.h"

#include <X11/Shell.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>

namespace gw {

namespace {

constexpr unsigned HINT_SIZE = 48;      // pixels of the pixmap; window managers do not scale it
constexpr std::uint32_t OPAQUE = 0x80;  // without blending, a pixel with at least this alpha is shown

unsigned channel(std::uint32_t argb, unsigned shift) {
    return argb >> shift & 0xFFU;
}

/// Xlib takes the 32-bit values of a property as longs.
void set_property(Widget shell) {
    std::vector<unsigned long> cardinals;
    for (const IconImage& image : icon_images()) {
        cardinals.insert(cardinals.end(), {image.size, image.size});
        cardinals.insert(cardinals.end(), image.pixels, image.pixels + std::size_t{image.size} * image.size);
    }
    Display* d = XtDisplay(shell);
    XChangeProperty(d, XtWindow(shell), XInternAtom(d, "_NET_WM_ICON", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(cardinals.data()),
                    static_cast<int>(cardinals.size()));
}

/// Scales `value`, 0 to 255, to the bits of `mask`.
unsigned long in_mask(unsigned value, unsigned long mask) {
    const auto depth = static_cast<unsigned>(std::popcount(mask));
    const unsigned long scaled = depth >= 8 ? std::uint64_t{value} << (depth - 8) : value >> (8 - depth);
    return scaled << static_cast<unsigned>(std::countr_zero(mask));
}

struct ImageDeleter {
    void operator()(XImage* image) const { XDestroyImage(image); }
};

/// A pixmap of that depth. `pixel_of` converts each pixel of the image.
template <class PixelOf>
Pixmap make_pixmap(Screen* screen, const IconImage& image, unsigned depth, PixelOf pixel_of) {
    Display* d = DisplayOfScreen(screen);
    const std::unique_ptr<XImage, ImageDeleter> drawn(XCreateImage(d, DefaultVisualOfScreen(screen), depth,
                                                                   depth == 1 ? XYPixmap : ZPixmap, 0,
                                                                   nullptr, image.size, image.size, 32, 0));
    if (!drawn) return None;
    // XDestroyImage frees it.
    drawn->data = static_cast<char*>(std::calloc(static_cast<std::size_t>(drawn->bytes_per_line),
                                                 static_cast<std::size_t>(drawn->height)));
    if (drawn->data == nullptr) return None;
    for (unsigned i = 0; i < image.size * image.size; ++i) {
        XPutPixel(drawn.get(), static_cast<int>(i % image.size), static_cast<int>(i / image.size),
                  pixel_of(image.pixels[i]));
    }
    Pixmap pixmap = XCreatePixmap(d, RootWindowOfScreen(screen), image.size, image.size, depth);
    GC context = XCreateGC(d, pixmap, 0, nullptr);
    XPutImage(d, pixmap, context, drawn.get(), 0, 0, 0, 0, image.size, image.size);
    XFreeGC(d, context);
    return pixmap;
}

/// The pixmaps are never freed, because a window manager may draw them at any time.
void set_hints(Widget shell) {
    Screen* screen = XtScreen(shell);
    const Visual* visual = DefaultVisualOfScreen(screen);
    const std::vector<IconImage> images = icon_images();
    const auto image =
        std::find_if(images.begin(), images.end(), [](const IconImage& i) { return i.size == HINT_SIZE; });
    if (image == images.end() || visual->c_class != TrueColor) return;
    const Pixmap pixmap = make_pixmap(screen, *image, static_cast<unsigned>(DefaultDepthOfScreen(screen)),
                                      [=](std::uint32_t argb) {
                                          return in_mask(channel(argb, 16), visual->red_mask) |
                                                 in_mask(channel(argb, 8), visual->green_mask) |
                                                 in_mask(channel(argb, 0), visual->blue_mask);
                                      });
    const Pixmap mask = make_pixmap(
        screen, *image, 1, [](std::uint32_t argb) { return channel(argb, 24) >= OPAQUE ? 1UL : 0UL; });
    XtVaSetValues(shell, XmNiconPixmap, pixmap, XmNiconMask, mask, nullptr);
}

}  // namespace

void set_window_icon(Widget shell) {
    set_property(shell);
    set_hints(shell);
}

}  // namespace gw
