// SPDX-License-Identifier: MIT
//
// What a login with the installed package does to the fonts that programs get from the X server, which has
// the distribution's font path. This program is not started as a suite: the package's test starts each test
// in a session of the ordinary user, and makes the fonts that the tests expect to come with the login.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <X11/Xlib.h>

namespace {

constexpr int MOST_NAMES = 100000;
constexpr const char* LOGIN = "set -e; . /etc/X11/Xsession.d/60glyphward-session";

/// What programs ask for. Each opens on a machine with the recommended font packages.
constexpr const char* PATTERNS[] = {
    // bitmap fonts by their full names
    "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1",
    "-adobe-helvetica-medium-r-normal--17-120-100-100-p-88-iso8859-1",
    "-adobe-courier-medium-r-normal--12-120-75-75-m-70-iso8859-1",
    "-adobe-times-medium-i-normal--24-240-75-75-p-125-iso8859-1",
    "-b&h-lucida-bold-i-normal-sans-17-120-100-100-p-108-iso8859-1",
    "-misc-fixed-medium-r-normal--13-120-75-75-c-80-iso8859-1",
    "-misc-fixed-medium-r-semicondensed--13-120-75-75-c-60-iso10646-1",
    "-sony-fixed-medium-r-normal--16-120-100-100-c-80-iso8859-1",
    "-MISC-FIXED-MEDIUM-R-NORMAL--15-140-75-75-C-90-ISO8859-1",
    // bitmap fonts by points or pixels, whichever resolution is found first
    "-adobe-helvetica-bold-r-normal--*-120-*",
    "-adobe-helvetica-medium-r-normal--*-100-*-*-p-*-iso8859-1",
    "-adobe-courier-bold-o-normal--*-140-*-*-m-*-iso8859-1",
    "-adobe-times-bold-r-normal--*-180-*-*-p-*-iso8859-1",
    "-adobe-new century schoolbook-medium-r-normal--*-240-*-*-p-*-iso8859-1",
    "-b&h-lucidatypewriter-medium-r-normal-sans-*-100-*-*-m-*-iso8859-1",
    "-adobe-symbol-medium-r-normal--*-120-*-*-p-*-adobe-fontspecific",
    "-adobe-helvetica-bold-r-normal--14-*-*-*-p-*-iso8859-1",
    "-adobe-helvetica-medium-r-normal--20-*-*-*-p-*-iso8859-1",
    // sizes for which there are no bitmap fonts, with an outline or a scaled bitmap in their place
    "-adobe-helvetica-medium-r-normal--16-*-*-*-p-*-iso8859-1",
    "-adobe-helvetica-medium-r-normal--21-*-*-*-p-*-iso8859-1",
    "-adobe-helvetica-bold-o-normal--37-*-*-*-p-*-iso8859-1",
    "-adobe-courier-medium-r-normal--15-*-*-*-m-*-iso8859-1",
    "-adobe-times-medium-r-normal--29-*-*-*-p-*-iso8859-1",
    "-adobe-times-bold-i-normal--0-130-75-75-p-0-iso8859-1",
    "-b&h-lucida-medium-r-normal-sans-23-*-*-*-p-*-iso8859-1",
    "-b&h-lucidatypewriter-bold-r-normal-sans-31-*-*-*-m-*-iso8859-1",
    "-adobe-symbol-medium-r-normal--33-*-*-*-p-*-adobe-fontspecific",
    "-misc-fixed-medium-r-normal--33-*-*-*-c-*-iso8859-1",
    "-*-helvetica-medium-r-normal--*-115-*-*-p-*-iso8859-1",
    // outlines
    "-urw-nimbus sans l-regular-r-normal--17-*-*-*-p-*-iso8859-1",
    "-urw-nimbus mono l-bold-o-normal--0-120-100-100-p-0-iso8859-1",
    "-urw-nimbus roman no9 l-regular-r-normal--24-*-*-*-p-*-iso8859-1",
    "-bitstream-bitstream charter-medium-r-normal--18-*-*-*-p-*-iso8859-1",
    "-bitstream-bitstream charter-bold-r-normal--*-140-*-*-p-*-iso8859-1",
    "-bitstream-courier 10 pitch-medium-r-normal--14-*-*-*-m-*-iso8859-1",
    "-urw-*-medium-r-normal--19-*-*-*-p-*-iso8859-2",
    // wildcards that many fonts match
    "*",
    "-*",
    "-*-*-*-*-*-*-*-*-*-*-*-*-*-*",
    "-*-*-medium-r-*-*-12-*-*-*-*-*-*-*",
    "-*-*-bold-r-*-*-*-140-*-*-*-*-iso8859-1",
    "-*-helvetica-*-*-*-*-*-120-*-*-*-*-*-*",
    "-*-times-medium-r-*-*-18-*",
    "-*-courier-bold-*-*-*-*-100-*",
    "*-14-*-iso8859-1",
    "*charter*",
    "*lucida*-24-*",
    "-*-*-*-r-normal-*-*-*-*-*-c-*-iso8859-1",
    "-*-fixed-medium-r-*-*-13-*-*-*-*-*-*-*",
    "-adobe-?elvetica-bold-r-normal--18-*-75-75-*-*-iso8859-1",
    // aliases
    "fixed",
    "variable",
    "6x13",
    "9x15bold",
    "10x20",
    "7x14",
    "12x24",
    "nil2",
    "cursor",
    "lucidasans-12",
    "lucidasanstypewriter-bold-10",
    "5x8",
    // other character sets
    "-*-*-*-*-*-*-*-*-*-*-*-*-iso10646-1",
    "-*-fixed-bold-r-*-*-*-*-*-*-*-*-iso10646-1",
    "-*-helvetica-medium-r-normal--*-120-*-*-*-*-iso10646-1",
    "-*-*-*-*-*-*-*-*-*-*-*-*-koi8-r",
    "-*-*-medium-r-*-*-20-*-*-*-*-*-koi8-r",
    "-cronyx-fixed-medium-r-normal--*-100-*-*-c-*-koi8-r",
    "-*-fixed-*-*-*-*-*-*-*-*-*-*-iso8859-5",
    "-*-*-medium-r-normal-*-*-*-*-*-*-*-iso8859-2",
    "-*-fixed-medium-r-normal--14-*-*-*-*-*-jisx0208.1983-0",
    "-*-*-*-*-*-*-*-*-*-*-*-*-adobe-fontspecific",
};

using Names = std::multiset<std::string>;
/// To each pattern what the server says of the font: all of its reply to QueryFont.
using Answers = std::map<std::string, std::string>;

class ServerFonts : public testing::Test {
  protected:
    ServerFonts() {
        // A new session begins with the server's own font path.
        EXPECT_EQ(std::system("xset fp default"), 0);
    }
    ~ServerFonts() override { XCloseDisplay(display_); }

    [[nodiscard]] std::string answer(const char* pattern) const {
        XFontStruct* font = XLoadQueryFont(display_, pattern);
        if (font == nullptr) return {};
        std::string bytes;
        const auto append = [&bytes](const void* data, std::size_t size) {
            bytes.append(static_cast<const char*>(data), size);
        };
        for (const unsigned number : {font->direction, font->min_char_or_byte2, font->max_char_or_byte2,
                                      font->min_byte1, font->max_byte1, font->default_char})
            append(&number, sizeof number);
        for (const int number : {font->all_chars_exist, font->ascent, font->descent, font->n_properties})
            append(&number, sizeof number);
        append(&font->min_bounds, sizeof font->min_bounds);
        append(&font->max_bounds, sizeof font->max_bounds);
        // One of the properties is the name of the font.
        for (int i = 0; i < font->n_properties; ++i) {
            append(&font->properties[i].name, sizeof(Atom));
            append(&font->properties[i].card32, sizeof(unsigned long));
        }
        if (font->per_char != nullptr) {
            const std::size_t rows = font->max_byte1 - font->min_byte1 + 1;
            const std::size_t columns = font->max_char_or_byte2 - font->min_char_or_byte2 + 1;
            append(font->per_char, rows * columns * sizeof(XCharStruct));
        }
        XFreeFont(display_, font);
        return bytes;
    }
    [[nodiscard]] Answers answers() const {
        Answers all;
        for (const char* pattern : PATTERNS) all[pattern] = answer(pattern);
        return all;
    }
    [[nodiscard]] int pixels(const char* pattern) const {
        XFontStruct* font = XLoadQueryFont(display_, pattern);
        if (font == nullptr) return 0;
        unsigned long value = 0;
        const Atom property = XInternAtom(display_, "PIXEL_SIZE", False);
        if (XGetFontProperty(font, property, &value) == 0) value = 0;
        XFreeFont(display_, font);
        return static_cast<int>(value);
    }
    [[nodiscard]] Names names() const {
        int count = 0;
        char** listed = XListFonts(display_, "*", MOST_NAMES, &count);
        Names all(listed, listed + count);
        XFreeFontNames(listed);
        return all;
    }
    [[nodiscard]] std::vector<std::string> path() const {
        int count = 0;
        char** elements = XGetFontPath(display_, &count);
        std::vector<std::string> all(elements, elements + count);
        XFreeFontPath(elements);
        return all;
    }
    static Names added(const Names& before, const Names& after) {
        Names more;
        std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                            std::inserter(more, more.end()));
        return more;
    }

    Display* display_{XOpenDisplay(nullptr)};
};

// The fonts that come with the login have names that the server knows already, and others.
TEST_F(ServerFonts, StayWhatTheyWereAtALogin) {
    const std::vector<std::string> path_before = path();
    const Answers before = answers();
    const Names names_before = names();
    EXPECT_GE(before.size(), 60U);
    for (const auto& [pattern, bytes] : before) EXPECT_FALSE(bytes.empty()) << "no font for " << pattern;

    ASSERT_EQ(std::system(LOGIN), 0);
    std::vector<std::string> expected = path_before;
    expected.insert(expected.end(), {"/etc/vantor/glyphwd_fonts/", "/home/glyph/glyphwd_fonts/"});
    EXPECT_EQ(path(), expected);
    for (const auto& [pattern, bytes] : answers())
        EXPECT_EQ(bytes == before.at(pattern), true) << "another font for " << pattern;
    const Names names_after = names();
    EXPECT_TRUE(added(names_after, names_before).empty()) << "names are lost";
    Names coming;
    std::ifstream lines("/home/glyph/names-that-come");
    for (std::string line; std::getline(lines, line);) coming.insert(line);
    ASSERT_FALSE(coming.empty());
    EXPECT_EQ(added(names_before, names_after), coming);
    EXPECT_NE(answer("-own-helvetica-*"), "");

    ASSERT_EQ(std::system(LOGIN), 0);
    EXPECT_EQ(path(), expected) << "the second time";
}

// The superuser has changed the font path, so its order counts: bitmap fonts are scaled before outlines, and
// those of 75 dots per inch come first.
TEST_F(ServerFonts, AreThoseOfAChosenOrder) {
    const Answers before = answers();
    EXPECT_EQ(pixels("-adobe-helvetica-bold-r-normal--*-120-*"), 17);
    ASSERT_EQ(std::system(LOGIN), 0);
    EXPECT_EQ(pixels("-adobe-helvetica-bold-r-normal--*-120-*"), 12);
    const Answers after = answers();
    const auto differing = std::count_if(before.begin(), before.end(), [&](const auto& answer) {
        return after.at(answer.first) != answer.second;
    });
    EXPECT_GT(differing, 5);
}

}  // namespace
