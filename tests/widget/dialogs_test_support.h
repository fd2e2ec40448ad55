// SPDX-License-Identifier: MIT
//
// The program with a private home directory, and look-ups for tests of samples and dialogs. Include it last.
#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "app/program/program_objects.h"
#include "core/text.h"
#include "support/temp_dir.h"
#include "widget/widget_test_support.h"

#include <X11/Xutil.h>

namespace gw::test {

/// The home directory of the program in this process. It is made before the program starts.
inline const TempDir& home() {
    static const TempDir dir;
    ::setenv("HOME", dir.path().substr(0, dir.path().size() - 1).c_str(), 1);
    return dir;
}

inline void start_at_home() {
    home();
    start_program();
}

/// The 1-based position of the first name element that satisfies the condition; 0 when there is none.
inline int position_where(const std::function<bool(const GWHRNElement&)>& condition) {
    int position = 0;
    for (const GWHRNElement* elem : the_installed_hrn_list) {
        ++position;
        if (condition(*elem)) return position;
    }
    return 0;
}

inline bool has_charset(const GWHRNElement& elem, const std::string& registry, const std::string& encoding) {
    const GWFont* font = elem.get_representative();
    return font != nullptr && registry == font->get_field(GWFont::CHARSET_REGISTRY) &&
           encoding == font->get_field(GWFont::CHARSET_ENCODING);
}

/// The position of a name of Latin-1 fonts that begins with `start`, in any case: the font policy decides
/// which of its letters are capitals.
inline int latin_position(const std::string& start) {
    return position_where([&](const GWHRNElement& elem) {
        return lower_case(elem.get_name()).starts_with(lower_case(start)) &&
               has_charset(elem, "iso8859", "1");
    });
}
inline int outline_position() {
    return latin_position("Century schoolbook l Bold [Type-1]");
}
inline int bitmap_position() {
    return latin_position("Courier Medium [Bitmap]");
}
/// The position of a symbol font, whose charset belongs to no locale.
inline int symbol_position() {
    return position_where(
        [](const GWHRNElement& elem) { return has_charset(elem, "adobe", "fontspecific"); });
}

/// The number of pixels of the widget's window that do not have its most frequent colour; a border of four
/// pixels is ignored.
inline int ink(Widget w) {
    constexpr int BORDER = 4;
    XSync(XtDisplay(w), False);
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(w, XmNwidth, &width, XmNheight, &height, nullptr);
    XImage* image = XGetImage(XtDisplay(w), XtWindow(w), BORDER, BORDER, width - 2U * BORDER,
                              height - 2U * BORDER, AllPlanes, ZPixmap);
    if (image == nullptr) return -1;
    std::vector<unsigned long> pixels;
    for (int y = 0; y < image->height; ++y) {
        for (int x = 0; x < image->width; ++x) pixels.push_back(XGetPixel(image, x, y));
    }
    XDestroyImage(image);
    Pixel background = 0;
    XtVaGetValues(w, XmNbackground, &background, nullptr);
    int different = 0;
    for (const unsigned long pixel : pixels) different += pixel != background ? 1 : 0;
    return different;
}

}  // namespace gw::test
