// SPDX-License-Identifier: MIT
#include "app/samples/glyph_painter.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "app/kit/handles.h"

#include <X11/Xutil.h>

namespace gw {

namespace {

constexpr unsigned FULL = 255;

struct ImageDeleter {
    /// The pixels belong to somebody else.
    void operator()(XImage* image) const {
        image->data = nullptr;
        XDestroyImage(image);
    }
};
using Image = std::unique_ptr<XImage, ImageDeleter>;

/// A colour value between two, in the bits of `mask`.
unsigned long between(unsigned long paper, unsigned long ink, unsigned long mask, unsigned shade) {
    if (mask == 0) return 0;
    const unsigned long lowest = mask & (~mask + 1);
    const unsigned long from = (paper & mask) / lowest;
    const unsigned long to = (ink & mask) / lowest;
    return (from * (FULL - shade) + to * shade + FULL / 2) / FULL * lowest;
}

XRectangle rectangle(const GlyphPainter::Box& box) {
    return {static_cast<short>(box.x), static_cast<short>(box.y),
            static_cast<unsigned short>(std::max(box.width, 0)),
            static_cast<unsigned short>(std::max(box.height, 0))};
}

}  // namespace

GlyphPainter::GlyphPainter(Widget area)
    : display_(XtDisplay(area)), window_(XtWindow(area)), gc_(XCreateGC(display_, window_, 0, nullptr)) {
    XtVaGetValues(area, XmNforeground, &foreground_, XmNbackground, &background_, nullptr);
    XGetWindowAttributes(display_, window_, &attributes_);
    shades_ = shades();
}

GlyphPainter::~GlyphPainter() {
    XFreeGC(display_, gc_);
}

GlyphPainter::Shades GlyphPainter::shades() const {
    Shades made = {};
    const Visual* visual = attributes_.visual;
    for (unsigned shade = 0; shade <= FULL; ++shade) {
        unsigned long& pixel = made[shade];
        // Where a pixel value is only a number of a colour, there are no shades.
        pixel = shade > FULL / 2 ? foreground_ : background_;
        if (visual->c_class != TrueColor) continue;
        pixel = 0;
        for (const unsigned long mask : {visual->red_mask, visual->green_mask, visual->blue_mask})
            pixel |= between(background_, foreground_, mask, shade);
    }
    return made;
}

void GlyphPainter::use_ink(bool is_inverse) const {
    XSetForeground(display_, gc_, is_inverse ? background_ : foreground_);
    XSetBackground(display_, gc_, is_inverse ? foreground_ : background_);
}

void GlyphPainter::clear() const {
    XClearWindow(display_, window_);
}

void GlyphPainter::frame(const Box& box, bool is_inverse, bool has_focus) const {
    use_ink(!is_inverse);
    XRectangle inside = rectangle(box);
    XFillRectangles(display_, window_, gc_, &inside, 1);
    constexpr unsigned FAINT = 64;
    XSetForeground(display_, gc_, shades_[FAINT]);
    XDrawRectangle(display_, window_, gc_, box.x, box.y, static_cast<unsigned>(box.width),
                   static_cast<unsigned>(box.height));
    if (!has_focus) return;
    use_ink(is_inverse);
    XDrawRectangle(display_, window_, gc_, box.x + 2, box.y + 2, static_cast<unsigned>(box.width - 4),
                   static_cast<unsigned>(box.height - 4));
}

void GlyphPainter::text(XmRenderTable fonts, const std::string& text, const Box& box, bool is_inverse) const {
    use_ink(is_inverse);
    const XmText string = xm_text(text);
    XRectangle clip = rectangle(box);
    XmStringDraw(display_, window_, fonts, string.get(), gc_, clip.x, clip.y, clip.width, XmALIGNMENT_CENTER,
                 XmSTRING_DIRECTION_L_TO_R, &clip);
}

void GlyphPainter::glyph(const GlyphImage& picture, const Box& box, int pixels, bool is_inverse) const {
    if (picture.width <= 0 || picture.height <= 0) return;
    const auto width = static_cast<unsigned>(picture.width);
    const auto height = static_cast<unsigned>(picture.height);
    const Image image(XCreateImage(display_, attributes_.visual, static_cast<unsigned>(attributes_.depth),
                                   ZPixmap, 0, nullptr, width, height, 32, 0));
    if (!image) return;
    std::vector<char> bytes(static_cast<std::size_t>(image->bytes_per_line) * height);
    image->data = bytes.data();
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const unsigned ink = picture.rows[static_cast<std::size_t>(y) * width + static_cast<unsigned>(x)];
            XPutPixel(image.get(), x, y, shades_[is_inverse ? FULL - ink : ink]);
        }
    }
    const int baseline = box.y + (box.height + pixels) / 2 - pixels / 4;
    const int left = box.x + (box.width - picture.width) / 2;
    const int top = pixels > 0 ? baseline - picture.top : box.y + (box.height - picture.height) / 2;
    XRectangle clip = rectangle(box);
    XSetClipRectangles(display_, gc_, 0, 0, &clip, 1, Unsorted);
    XPutImage(display_, window_, gc_, image.get(), 0, 0, left, top, width, height);
    XSetClipMask(display_, gc_, None);
}

void GlyphPainter::cross(const Box& box, bool is_inverse) const {
    use_ink(is_inverse);
    const int size = std::min(box.width, box.height) / 2;
    const int x = box.x + (box.width - size) / 2;
    const int y = box.y + (box.height - size) / 2;
    XDrawLine(display_, window_, gc_, x, y, x + size, y + size);
    XDrawLine(display_, window_, gc_, x, y + size, x + size, y);
}

}  // namespace gw
