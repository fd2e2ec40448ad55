// SPDX-License-Identifier: MIT
#include "end_to_end/drawn_text.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace gw::e2e {

namespace {

struct DisplayCloser {
    void operator()(Display* display) const { XCloseDisplay(display); }
};

}  // namespace

DrawnText::DrawnText(const std::string& font, const std::string& text) {
    const std::unique_ptr<Display, DisplayCloser> owned(XOpenDisplay(nullptr));
    Display* display = owned.get();
    if (display == nullptr) throw std::runtime_error("no display");
    XFontStruct* metrics = XLoadQueryFont(display, font.c_str());
    if (metrics == nullptr) return;
    const int length = static_cast<int>(text.size());
    width_ = XTextWidth(metrics, text.c_str(), length);
    height_ = metrics->ascent + metrics->descent;
    const auto width = static_cast<unsigned>(width_);
    const auto height = static_cast<unsigned>(height_);
    const Pixmap paper = XCreatePixmap(display, DefaultRootWindow(display), width, height, 1);
    GC gc = XCreateGC(display, paper, 0, nullptr);
    XSetForeground(display, gc, 0);
    XFillRectangle(display, paper, gc, 0, 0, width, height);
    XSetForeground(display, gc, 1);
    XSetFont(display, gc, metrics->fid);
    XDrawString(display, paper, gc, 0, metrics->ascent, text.c_str(), length);
    XImage* image = XGetImage(display, paper, 0, 0, width, height, 1, XYPixmap);
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) pixels_.push_back(XGetPixel(image, x, y) != 0);
    }
    XDestroyImage(image);
    XFreeGC(display, gc);
    XFreePixmap(display, paper);
    XFreeFont(display, metrics);
}

int DrawnText::ink() const {
    return static_cast<int>(std::count(pixels_.begin(), pixels_.end(), true));
}

bool DrawnText::is_in(const std::vector<unsigned long>& picture, int width) const {
    if (ink() == 0 || width == 0) return false;
    std::vector<bool> black;
    for (const unsigned long pixel : picture) black.push_back((pixel & 0xFFFFFFU) == 0);
    const int height = static_cast<int>(picture.size()) / width;
    for (int y = 0; y + height_ <= height; ++y) {
        for (int x = 0; x + width_ <= width; ++x) {
            if (is_at(black, width, x, y)) return true;
        }
    }
    return false;
}

bool DrawnText::is_at(const std::vector<bool>& black, int picture_width, int x, int y) const {
    for (int row = 0; row < height_; ++row) {
        for (int column = 0; column < width_; ++column) {
            const int at = (y + row) * picture_width + x + column;
            if (black[static_cast<std::size_t>(at)] != has_ink(column, row)) return false;
        }
    }
    return true;
}

}  // namespace gw::e2e
