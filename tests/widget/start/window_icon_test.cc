// SPDX-License-Identifier: MIT
//
// The icon and the class of the main window, as a window manager reads them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <vector>

#include "app/kit/toolkit.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Xatom.h>
#include <X11/Xutil.h>

namespace {

using testing::ElementsAre;

struct XDeleter {
    void operator()(void* storage) const { XFree(storage); }
};
struct ImageDeleter {
    void operator()(XImage* image) const { XDestroyImage(image); }
};
using PixmapImage = std::unique_ptr<XImage, ImageDeleter>;

struct Icon {
    unsigned long width;
    unsigned long height;
    std::vector<unsigned long> pixels;
};

class WindowIcon : public testing::Test {
  protected:
    static void SetUpTestSuite() { gw::test::start_program(); }

    /// The images in _NET_WM_ICON; empty when the property ends in the middle of an image.
    static std::vector<Icon> icons() {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display, XtWindow(wi_toplevel), XInternAtom(display, "_NET_WM_ICON", False), 0,
                           1 << 20, False, XA_CARDINAL, &type, &format, &count, &rest, &bytes);
        const std::unique_ptr<unsigned char, XDeleter> owned(bytes);
        EXPECT_EQ(type, XA_CARDINAL);
        EXPECT_EQ(format, 32);
        EXPECT_EQ(rest, 0U);
        const auto* value = reinterpret_cast<const unsigned long*>(bytes);
        std::vector<Icon> result;
        for (unsigned long i = 0; i + 2 <= count;) {
            Icon icon = {value[i], value[i + 1], {}};
            i += 2;
            if (i + icon.width * icon.height > count) return {};
            icon.pixels.assign(value + i, value + i + icon.width * icon.height);
            i += icon.width * icon.height;
            result.push_back(std::move(icon));
        }
        return result;
    }
    static PixmapImage image_of(Pixmap pixmap) {
        Window root = 0;
        int x = 0;
        int y = 0;
        unsigned width = 0;
        unsigned height = 0;
        unsigned border = 0;
        unsigned depth = 0;
        if (XGetGeometry(display, pixmap, &root, &x, &y, &width, &height, &border, &depth) == 0)
            return nullptr;
        return PixmapImage(
            XGetImage(display, pixmap, 0, 0, width, height, AllPlanes, depth == 1 ? XYPixmap : ZPixmap));
    }
};

TEST_F(WindowIcon, IsThereInFourSizes) {
    std::vector<unsigned long> sizes;
    for (const Icon& icon : icons()) {
        sizes.push_back(icon.width);
        EXPECT_EQ(icon.width, icon.height);
        const unsigned long middle = icon.pixels[icon.pixels.size() / 2 + icon.width / 2];
        EXPECT_EQ(icon.pixels.front() >> 24 & 0xFF, 0U) << "the corner is clear at " << icon.width;
        EXPECT_EQ(middle >> 24 & 0xFF, 0xFFU) << "the middle is not at " << icon.width;
        const std::set<unsigned long> colours(icon.pixels.begin(), icon.pixels.end());
        EXPECT_GE(colours.size(), 5U) << icon.width;
    }
    EXPECT_THAT(sizes, ElementsAre(16, 32, 48, 64));
}

TEST_F(WindowIcon, IsInTheHintsForWindowManagersThatKnowNoOther) {
    const std::unique_ptr<XWMHints, XDeleter> hints(XGetWMHints(display, XtWindow(wi_toplevel)));
    ASSERT_NE(hints, nullptr);
    ASSERT_EQ(hints->flags & (IconPixmapHint | IconMaskHint), IconPixmapHint | IconMaskHint);
    const PixmapImage pixmap = image_of(hints->icon_pixmap);
    const PixmapImage mask = image_of(hints->icon_mask);
    ASSERT_NE(pixmap, nullptr);
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(pixmap->depth, DefaultDepthOfScreen(screen));
    EXPECT_EQ(mask->depth, 1);
    const std::vector<Icon> all = icons();
    const auto same = std::find_if(all.begin(), all.end(), [](const Icon& icon) { return icon.width == 48; });
    ASSERT_NE(same, all.end());
    ASSERT_EQ(pixmap->width, 48);
    ASSERT_EQ(pixmap->height, 48);
    ASSERT_EQ(mask->width, 48);
    ASSERT_EQ(mask->height, 48);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 48; ++x) {
            const unsigned long argb =
                same->pixels[static_cast<std::size_t>(y) * 48 + static_cast<std::size_t>(x)];
            ASSERT_EQ(XGetPixel(mask.get(), x, y), argb >> 31 & 1) << x << ", " << y;
            // The sandbox's screen has eight bits for each colour, red first.
            ASSERT_EQ(XGetPixel(pixmap.get(), x, y) & 0xFFFFFF, argb & 0xFFFFFF) << x << ", " << y;
        }
    }
}

TEST_F(WindowIcon, StandsBesideTheClassThatTheDesktopLooksFor) {
    XClassHint hint = {};
    ASSERT_NE(XGetClassHint(display, XtWindow(wi_toplevel), &hint), 0);
    const std::unique_ptr<char, XDeleter> name(hint.res_name);
    const std::unique_ptr<char, XDeleter> class_name(hint.res_class);
    EXPECT_STREQ(name.get(), "glyphward");
    EXPECT_STREQ(class_name.get(), "Glyphward");
}

}  // namespace
