// SPDX-License-Identifier: MIT
#include "app/samples/enlarged_sample.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <variant>

#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "texts/messages.h"

#include <X11/Xutil.h>
#include <Xm/DrawingA.h>
#include <Xm/Form.h>
#include <Xm/ToggleB.h>

namespace gw {

namespace {

constexpr int DENSE = 144;
constexpr double ORDINARY = 96;
constexpr int GAP = 8;

struct Enlarged {
    Widget picture = nullptr;
    Widget button = nullptr;
    int factor = 1;
    const SampleFont* font = nullptr;
    std::string text;
};

std::map<Widget, Enlarged>& all_enlarged() {
    static std::map<Widget, Enlarged> all;
    return all;
}

struct ImageDeleter {
    void operator()(XImage* image) const { XDestroyImage(image); }
};
using Image = std::unique_ptr<XImage, ImageDeleter>;

/// A drawing surface of the picture's depth, in its background colour, with a graphics context.
class Surface {
  public:
    Surface(Widget like, unsigned width, unsigned height) {
        Pixel foreground = 0;
        Pixel background = 0;
        int depth = 0;
        XtVaGetValues(like, XmNforeground, &foreground, XmNbackground, &background, XmNdepth, &depth,
                      nullptr);
        pixmap_ = XCreatePixmap(display, XtWindow(like), width, height, static_cast<unsigned>(depth));
        gc_ = XCreateGC(display, pixmap_, 0, nullptr);
        XSetForeground(display, gc_, background);
        XFillRectangle(display, pixmap_, gc_, 0, 0, width, height);
        XSetForeground(display, gc_, foreground);
        XSetBackground(display, gc_, background);
    }
    ~Surface() {
        XFreeGC(display, gc_);
        XFreePixmap(display, pixmap_);
    }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    [[nodiscard]] Pixmap pixmap() const { return pixmap_; }
    [[nodiscard]] GC gc() const { return gc_; }

  private:
    Pixmap pixmap_;
    GC gc_;
};

void draw_text(const Surface& surface, const SampleFont& font, const std::string& text) {
    const auto length = static_cast<int>(text.size());
    if (const auto* set = std::get_if<FontSet>(&font)) {
        const int baseline = -XExtentsOfFontSet(set->get())->max_logical_extent.y;
        XmbDrawString(display, surface.pixmap(), set->get(), surface.gc(), 1, baseline, text.c_str(), length);
        return;
    }
    const LoadedFont& one = std::get<LoadedFont>(font);
    XSetFont(display, surface.gc(), one->fid);
    XDrawString(display, surface.pixmap(), surface.gc(), 1, one->ascent, text.c_str(), length);
}

/// A copy of the image in which every pixel is a square of `factor` pixels.
Image enlarged(XImage& image, int factor) {
    const auto width = static_cast<unsigned>(image.width * factor);
    const auto height = static_cast<unsigned>(image.height * factor);
    Image large(XCreateImage(display, DefaultVisual(display, DefaultScreen(display)),
                             static_cast<unsigned>(image.depth), ZPixmap, 0, nullptr, width, height,
                             image.bitmap_pad, 0));
    if (!large) return large;
    large->data = static_cast<char*>(std::calloc(static_cast<std::size_t>(large->bytes_per_line), height));
    if (large->data == nullptr) return nullptr;
    for (int y = 0; y < large->height; ++y) {
        for (int x = 0; x < large->width; ++x)
            XPutPixel(large.get(), x, y, XGetPixel(&image, x / factor, y / factor));
    }
    return large;
}

void paint(const Enlarged& sample) {
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(sample.picture, XmNwidth, &width, XmNheight, &height, nullptr);
    const auto columns = static_cast<unsigned>(std::max(1, width / sample.factor));
    const auto rows = static_cast<unsigned>(std::max(1, height / sample.factor));
    const Surface surface(sample.picture, columns, rows);
    draw_text(surface, *sample.font, sample.text);
    const Image small(XGetImage(display, surface.pixmap(), 0, 0, columns, rows, AllPlanes, ZPixmap));
    if (!small) return;
    const Image large = enlarged(*small, sample.factor);
    if (!large) return;
    XPutImage(display, XtWindow(sample.picture), surface.gc(), large.get(), 0, 0, 0, 0,
              columns * static_cast<unsigned>(sample.factor), rows * static_cast<unsigned>(sample.factor));
}

/// Shows the picture if there is something to show in it.
void update(const Enlarged& sample) {
    if (!XtIsRealized(sample.picture)) return;
    if (sample.font == nullptr || XmToggleButtonGetState(sample.button) == 0) {
        XtUnmapWidget(sample.picture);
        return;
    }
    XtMapWidget(sample.picture);
    XRaiseWindow(display, XtWindow(sample.picture));
    XClearWindow(display, XtWindow(sample.picture));
    paint(sample);
}

void update_cb(Widget, XtPointer sample, XtPointer) {
    update(*static_cast<Enlarged*>(sample));
}

void paint_cb(Widget, XtPointer client_data, XtPointer) {
    const auto& sample = *static_cast<Enlarged*>(client_data);
    if (sample.font != nullptr) paint(sample);
}

void text_changed_cb(Widget field, XtPointer client_data, XtPointer) {
    auto& sample = *static_cast<Enlarged*>(client_data);
    if (sample.font == nullptr) return;
    sample.text = field_text(field);
    update(sample);
}

void forget_cb(Widget field, XtPointer, XtPointer) {
    all_enlarged().erase(field);
}

}  // namespace

int enlargement(int resolution) {
    if (resolution < DENSE) return 1;
    return std::max(2, static_cast<int>(std::lround(resolution / ORDINARY)));
}

void create_enlarged_sample(Widget form, Widget field, int factor) {
    if (factor < 2) return;
    Enlarged& sample = all_enlarged()[field];
    sample.factor = factor;
    sample.button =
        XtVaCreateManagedWidget("_enlarge_button", xmToggleButtonWidgetClass, form, XmNlabelString,
                                xm_text(text_of(Message::ENLARGE)).get(), XmNset, XmSET, nullptr);
    Attach(sample.button).right_form(GAP).bottom_form(GAP);
    sample.picture = XtVaCreateManagedWidget(
        "_enlarged_sample", xmDrawingAreaWidgetClass, form, XmNtraversalOn, False, XmNmappedWhenManaged,
        False, XmNtopAttachment, XmATTACH_OPPOSITE_WIDGET, XmNtopWidget, field, XmNbottomAttachment,
        XmATTACH_OPPOSITE_WIDGET, XmNbottomWidget, field, XmNleftAttachment, XmATTACH_OPPOSITE_WIDGET,
        XmNleftWidget, field, XmNrightAttachment, XmATTACH_OPPOSITE_WIDGET, XmNrightWidget, field, nullptr);
    Pixel foreground = 0;
    Pixel background = 0;
    XtVaGetValues(field, XmNforeground, &foreground, XmNbackground, &background, nullptr);
    XtVaSetValues(sample.picture, XmNforeground, foreground, XmNbackground, background, nullptr);
    XtAddCallback(sample.button, XmNvalueChangedCallback, update_cb, &sample);
    XtAddCallback(sample.picture, XmNexposeCallback, paint_cb, &sample);
    XtAddCallback(field, XmNvalueChangedCallback, text_changed_cb, &sample);
    XtAddCallback(field, XmNdestroyCallback, forget_cb, nullptr);
}

void enlarge_sample(Widget field, const SampleFont* font, const std::string& text) {
    const auto found = all_enlarged().find(field);
    if (found == all_enlarged().end()) return;
    found->second.font = font;
    found->second.text = text;
    update(found->second);
}

}  // namespace gw
