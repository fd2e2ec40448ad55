// SPDX-License-Identifier: MIT
//
// The fontset file of the staged installation: every font of it is on the server's font path, and every
// fontset draws Japanese.
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "fontfiles/gw_fontset_file.h"
#include "model/gw_font.h"
#include "platform/host_paths.h"

#include <X11/Xlib.h>

namespace {

constexpr const char* LOCALE = "ja_JP.UTF-8";

struct DisplayClose {
    void operator()(Display* display) const { XCloseDisplay(display); }
};

class StagedFontsets : public testing::Test {
  protected:
    StagedFontsets()
        : display(XOpenDisplay(nullptr)),
          file((std::string(gw::INSTALLATION_ROOT) + gw::LOCALE_FONT_PATH_DIR + LOCALE + gw::FONTSET_DIR)
                   .c_str(),
               gw::FONTSET_FILE_NAME, 0) {}
    ~StagedFontsets() override { std::setlocale(LC_ALL, "C"); }

    void SetUp() override {
        ASSERT_NE(display, nullptr) << "this test wants the sandbox's X server";
        ASSERT_NE(std::setlocale(LC_ALL, LOCALE), nullptr);
        ASSERT_GE(file.get_fontsets().get_count(), 3);
    }

    std::unique_ptr<Display, DisplayClose> display;
    GW_FONTSET_FILE file;
};

TEST_F(StagedFontsets, NameFontsOfTheServer) {
    for (const GWFontSet* fontset : file.get_fontsets()) {
        std::set<std::string> charsets;
        for (GWFont* font : fontset->get_fonts()) {
            int count = 0;
            char** names = XListFonts(display.get(), font->get_xlfd_name(), 1, &count);
            EXPECT_EQ(count, 1) << font->get_xlfd_name();
            XFreeFontNames(names);
            charsets.emplace(font->get_field(GWFont::CHARSET_REGISTRY));
        }
        for (const char* charset : {"iso8859", "jisx0201.1976", "jisx0208.1983"})
            EXPECT_TRUE(charsets.contains(charset)) << fontset->get_name() << " lacks " << charset;
    }
}

TEST_F(StagedFontsets, HaveWidthsForJapanese) {
    for (const GWFontSet* fontset : file.get_fontsets()) {
        char** missing = nullptr;
        int missing_count = 0;
        char* replacement = nullptr;
        const XFontSet made =
            XCreateFontSet(display.get(), fontset->get_base_names(), &missing, &missing_count, &replacement);
        XFreeStringList(missing);
        ASSERT_NE(made, nullptr) << fontset->get_name();
        const auto width = [made](std::string_view text) {
            return XmbTextEscapement(made, text.data(), static_cast<int>(text.size()));
        };
        const int latin = width("A");
        EXPECT_GT(latin, 0) << fontset->get_name();
        EXPECT_EQ(width("\xef\xbd\xb1"), latin) << fontset->get_name() << ": half-width katakana";
        EXPECT_EQ(width("\xe3\x81\x82"), 2 * latin) << fontset->get_name() << ": hiragana";
        EXPECT_EQ(width("\xe6\xbc\xa2"), 2 * latin) << fontset->get_name() << ": kanji";
        XFreeFontSet(display.get(), made);
    }
}

}  // namespace
