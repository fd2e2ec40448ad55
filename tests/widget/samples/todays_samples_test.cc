// SPDX-License-Identifier: MIT
//
// Samples of today's fonts: the encodings of an outline font, letters of a script that is not Latin, and what
// is said when there is no sample. Each test runs in a process of its own with a font directory of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "app/common/status_line.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/samples/enlarged_sample.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_text.h"
#include "app/start/main_start.h"
#include "core/font_policy.h"
#include "support/bitmap_maker.h"
#include "support/temp_dir.h"

#include "widget/dialogs_test_support.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <Xm/List.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;

const std::string NOTO = "/usr/share/fonts/truetype/noto/";

/// A directory with fonts of Debian's packages, one that is cut off, and one of nothing but a control
/// character, on the path of server and program.
class Directory {
  public:
    Directory() {
        for (const std::string& path : {std::string("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"),
                                        NOTO + "NotoSansDevanagari-Regular.ttf"})
            std::filesystem::copy(path, dir_.path());
        const std::string bitmap = TempDir::read_bytes("/usr/share/fonts/X11/misc/6x13-ISO8859-1.pcf.gz");
        dir_.write("cut.pcf.gz", bitmap.substr(0, bitmap.size() / 2));
        dir_.write("void.pcf", BitmapMaker{.family = "Void", .codes = {1}}.make_pcf());
        if (std::system(("mkfontscale '" + dir_.path() + "' && mkfontdir '" + dir_.path() + "'").c_str()) !=
            0)
            std::_Exit(90);
        const std::string index = dir_.read("fonts.dir");
        const std::size_t count = index.find('\n');
        dir_.write("fonts.dir", std::to_string(std::stoi(index) + 2) + index.substr(count) +
                                    "cut.pcf.gz -x-cut-medium-r-normal--13-120-75-75-c-60-iso8859-1\n"
                                    "void.pcf -x-void-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
        std::filesystem::permissions(
            dir_.path(), std::filesystem::perms::others_exec | std::filesystem::perms::others_read,
            std::filesystem::perm_options::add);
    }
    void list() const {
        int count = 0;
        char** before = XGetFontPath(display, &count);
        std::string element = dir_.path();
        std::vector<char*> elements(before, before + count);
        elements.push_back(element.data());
        XSetFontPath(display, elements.data(), count + 1);
        XFreeFontPath(before);
        const TempDir installation;
        installation.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t" + element + "\n");
        delete the_font_path;
        the_font_path = new GWFontPath(installation.path().substr(0, installation.path().size() - 1).c_str());
        fill_program_lists();
        update_wi_installed_hrn_list();
    }

  private:
    TempDir dir_;
};

int row_of(const std::string& beginning) {
    int position = 0;
    for (const GWHRNElement* elem : the_installed_hrn_list) {
        ++position;
        if (std::string(elem->get_name()).starts_with(beginning)) return position;
    }
    std::fprintf(stderr, "no %s\n", beginning.c_str());
    std::_Exit(91);
}

void select_row(const std::string& beginning) {
    select(wi_hrn_list, {row_of(beginning)});
    pump();
}

std::string status() {
    return gw::label_of(wi_main_window_status_label);
}

/// Ends the process of a test. The server's font path is again what it was.
[[noreturn]] void end(int status) {
    int count = 0;
    char** path = XGetFontPath(display, &count);
    XSetFontPath(display, path, count - 1);
    XSync(display, False);
    std::_Exit(status);
}

class TodaysSamples : public testing::Test {
  protected:
    TodaysSamples() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

void start_in(const char* locale, const Directory& fonts) {
    ::setenv("LC_ALL", locale, 1);
    home();
    start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    fonts.list();
}

TEST_F(TodaysSamples, OfferTheEncodingsOfAnOutlineFont) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            select_row("Dejavu Sans Medium");
            Widget menu = find(wi_toplevel, "_enc_option_menu");
            if (gw::chosen_entry(menu) != "iso8859-1" || !XtIsSensitive(menu)) end(2);
            Widget pulldown = nullptr;
            XtVaGetValues(menu, XmNsubMenuId, &pulldown, nullptr);
            const std::vector<Widget> entries = gw::entries_of(pulldown);
            std::set<std::string> charsets;
            for (Widget entry : entries) charsets.insert(gw::label_of(entry));
            if (charsets.size() != entries.size() || charsets.size() < 15) end(3);
            for (Widget entry : entries) {
                if (gw::label_of(entry) != "koi8-r") continue;
                XtVaSetValues(menu, XmNmenuHistory, entry, nullptr);
                XtCallCallbacks(entry, XmNactivateCallback, nullptr);
            }
            pump();
            const GWFont* font =
                the_installed_hrn_list.get_elem_at_pos(row_of("Dejavu Sans Medium"))->get_representative();
            if (std::string(font->get_field(GWFont::CHARSET_REGISTRY)) != "koi8") end(4);
            if (ink(wi_installed_sample_textfield) < 100) end(5);
            end(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(TodaysSamples, OfAFontWithoutLatinLettersHaveLettersOfItsOwn) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            select_row("Noto Sans Devanagari");
            const std::string text = shown_text(wi_installed_sample_textfield);
            // UTF-8 of U+0900 to U+097F.
            if (text.find("\xE0\xA4") == std::string::npos) end(2);
            if (text.find('A') != std::string::npos) end(3);
            end(ink(wi_installed_sample_textfield) > 100 ? 0 : 4);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(TodaysSamples, SayWhenTheServerCannotOpenTheFont) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            select_row("Cut Medium");
            if (!shown_text(wi_installed_sample_textfield).empty()) end(2);
            if (status() != "The X server lists this font, but cannot open it.") end(3);
            select_row("Dejavu Sans Medium");
            end(status() == " " ? 0 : 4);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(TodaysSamples, SayThatThereIsNoTextToShow) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            for (const char* text : {"", "  \t"}) {
                sample_text = text;
                select_row("Dejavu Sans Medium");
                if (status() != "There is no sample: the sample text is empty. Type one into the field.")
                    end(2);
                const std::string shown = shown_text(wi_installed_sample_textfield);
                if (shown.find_first_not_of(" \t") != std::string::npos) end(3);
                sample_text = "Text";
                select_row("Dejavu Sans Medium");
                if (status() != " ") end(4);
            }
            end(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(TodaysSamples, SayThatTheFontHasNoCharacters) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            select_row("Void Medium");
            if (status() != "There is no sample: this font has none of the characters of the sample text.")
                end(2);
            select_row("Dejavu Sans Medium");
            end(status() == " " ? 0 : 3);
        },
        testing::ExitedWithCode(0), "");
}

// Its fonts have gone meanwhile, or there is nothing behind the position any more.
TEST_F(TodaysSamples, SayThatTheEntryHasNoFontAnyMore) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            const std::string words = "There is no sample: this entry has no font any more.";
            GWHRNElement* element = the_installed_hrn_list.get_elem_at_pos(row_of("Void Medium"));
            element->del_font(element->get_representative());
            select_row("Void Medium");
            if (status() != words || !shown_text(wi_installed_sample_textfield).empty()) end(2);
            select_row("Dejavu Sans Medium");
            if (status() != " ") end(3);
            const int behind = the_installed_hrn_list.get_count() + the_alias_count + 1;
            for (int i = gw::row_count(wi_hrn_list); i < behind; ++i)
                XmListAddItemUnselected(wi_hrn_list, gw::xm_text("nothing behind it").get(), 0);
            select(wi_hrn_list, {behind});
            pump();
            end(status() == words ? 0 : 4);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(TodaysSamples, AreDrawnAtTheResolutionOfTheScreen) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            start_in("C.UTF-8", fonts);
            select_row("Dejavu Sans Medium");
            const std::string resolution = std::to_string(gw::screen_resolution());
            const std::string entry = gw::chosen_entry(find(wi_toplevel, "_res_option_menu"));
            end(entry == resolution + " X " + resolution ? 0 : 2);
        },
        testing::ExitedWithCode(0), "");
}

TEST(Enlargement, IsAWholeFactorFrom144DotsPerInchOn) {
    EXPECT_EQ(gw::enlargement(75), 1);
    EXPECT_EQ(gw::enlargement(143), 1);
    EXPECT_EQ(gw::enlargement(144), 2);
    EXPECT_EQ(gw::enlargement(192), 2);
    EXPECT_EQ(gw::enlargement(288), 3);
}

TEST_F(TodaysSamples, OfBitmapsAreEnlargedOnADenseScreen) {
    EXPECT_EXIT(
        {
            const Directory fonts;
            ::setenv("LC_ALL", "C.UTF-8", 1);
            home();
            // What the desktop says, as a session sets it before its programs start.
            Display* d = XOpenDisplay(nullptr);
            const std::string resources = "Xft.dpi:\t144\n";
            XChangeProperty(d, DefaultRootWindow(d), XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(resources.data()),
                            static_cast<int>(resources.size()));
            XSync(d, False);
            start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
            XDeleteProperty(d, DefaultRootWindow(d), XA_RESOURCE_MANAGER);
            XCloseDisplay(d);
            Widget button = find(wi_toplevel, "_enlarge_button");
            Widget picture = find(wi_toplevel, "_enlarged_sample");
            if (button == nullptr || picture == nullptr) std::_Exit(2);
            const auto is_shown = [&] {
                XWindowAttributes attributes = {};
                XGetWindowAttributes(display, XtWindow(picture), &attributes);
                return attributes.map_state != IsUnmapped;
            };
            select(wi_hrn_list, {bitmap_position()});
            pump();
            if (!is_shown()) std::_Exit(3);
            // The window may be larger than the screen: only a part of the picture is looked at. Every pixel
            // of the font is a square of four.
            XImage* image = XGetImage(display, XtWindow(picture), 0, 0, 300, 20, AllPlanes, ZPixmap);
            if (image == nullptr) std::_Exit(5);
            int inked = 0;
            for (int y = 0; y < 20; y += 2) {
                for (int x = 0; x < 300; x += 2) {
                    const unsigned long pixel = XGetPixel(image, x, y);
                    inked += pixel != XGetPixel(image, 299, 0) ? 1 : 0;
                    if (pixel != XGetPixel(image, x + 1, y + 1)) std::_Exit(7);
                }
            }
            XDestroyImage(image);
            if (inked < 50) std::_Exit(8);
            XmToggleButtonSetState(button, False, True);
            pump();
            if (is_shown()) std::_Exit(4);
            XmToggleButtonSetState(button, True, True);
            select(wi_hrn_list, {outline_position()});
            pump();
            std::_Exit(is_shown() ? 6 : 0);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
