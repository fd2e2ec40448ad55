// SPDX-License-Identifier: MIT
//
// A TrueType, an OpenType, a BDF and a TeX Type 1 font: an ordinary user installs them with the mouse, and in
// the next session other programs show text in them. This program is not started as a suite: the package's
// test starts each test in a session of the user.
//
// The fonts have families that no machine has, so that no other font can stand in for them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "end_to_end/other_program.h"
#include "end_to_end/pattern_font.h"
#include "end_to_end/waiting.h"

#include "end_to_end/drawn_text.h"
#include "end_to_end/todays_fonts.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* TEXT = "Glyph 0123 Warden";
constexpr const char* ATTRIBUTES = "Glyph Warden - Font Attributes";
constexpr const char* NOT_OFFERED = "Glyph Warden - Not Offered";
constexpr const char* QUESTION = "Glyph Warden - Convert Fonts";
constexpr const char* SUMMARY = "Glyph Warden - Summary";

struct SourceFont {
    const char* file;
    const char* installed_file;
    const char* original;       ///< an installed font; null for the font that the test makes
    const char* family_before;  ///< the name in the original, as long as `family`
    const char* family;
    const char* name_part;  ///< of all its names
    const char* charset;    ///< of the name that is used, one with Latin letters
};
constexpr SourceFont TRUETYPE{
    .file = "aardvark.ttf",
    .installed_file = "aardvark.ttf",
    .original = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf",
    .family_before = "DejaVu Sans Mono",
    .family = "Aardvark Written",
    .name_part = "-aardvark written-",
    .charset = "iso8859-1",
};
constexpr SourceFont OPENTYPE{
    .file = "aardwolf.otf",
    .installed_file = "aardwolf.ttf",
    .original = "/usr/share/fonts/opentype/urw-base35/NimbusMonoPS-Bold.otf",
    .family_before = "Nimbus Mono PS",
    .family = "Aardwolf Print",
    .name_part = "-aardwolf print-",
    .charset = "iso8859-1",
};
constexpr SourceFont BDF{
    .file = "aaltens.bdf",
    .installed_file = "aaltens.bdf",
    .original = nullptr,
    .family_before = nullptr,
    .family = "Aaltens",
    .name_part = "-aaltens-",
    .charset = "iso8859-1",
};
constexpr SourceFont TYPE1{
    .file = "aasvogel.pfb",
    .installed_file = "aasvogel.pfb",
    .original = "/usr/share/texmf/fonts/type1/public/lm/lmtt10.pfb",
    .family_before = "LMMono10",
    .family = "Aasvogel",
    .name_part = "-aasvogel-",
    .charset = "iso8859-2",
};
/// In the order of lists, where they are the first.
constexpr std::array FONTS{BDF, TRUETYPE, OPENTYPE, TYPE1};
constexpr int LAST_LINE = 3;

/// Text in UTF-16, the higher byte first, as the names in TrueType and OpenType fonts are.
std::string in_utf16(const std::string& ascii) {
    std::string text;
    for (const char c : ascii) text += {'\0', c};
    return text;
}

void replace_all(std::string& bytes, const std::string& before, const std::string& now) {
    for (std::size_t at = 0; (at = bytes.find(before, at)) != std::string::npos; at += now.size())
        bytes.replace(at, before.size(), now);
}

std::string bytes_of(const SourceFont& font) {
    if (font.original == nullptr) return PatternFont{.family = "aaltens"}.bdf();
    std::string bytes = TempDir::read_bytes(font.original);
    replace_all(bytes, font.family_before, font.family);
    replace_all(bytes, in_utf16(font.family_before), in_utf16(font.family));
    return bytes;
}

/// A name that has zeros for the sizes, for 24 pixels.
std::string of_24_pixels(std::string name) {
    replace_all(name, "--0-0-0-0-m-0-", "--24-*-*-*-m-*-");
    return name;
}

class FourFormats : public TodaysFontsTest {
  protected:
    void SetUp() override {
        ASSERT_FALSE(is_root());
        // A new session begins with the server's default font path, and sources its scripts like this.
        ASSERT_EQ(std::system("xset fp default"), 0);
        for (const SourceFont& font : FONTS) EXPECT_FALSE(server_has(font)) << "before the login";
        ASSERT_EQ(std::system("set -e; . /etc/X11/Xsession.d/60glyphward-session"), 0);
    }
    [[nodiscard]] std::string home_path() const override { return "/home/glyph/"; }
    [[nodiscard]] bool server_has(const SourceFont& font) const {
        return desktop.has_font('-' + std::string("*-") + font.family + "-*-" + font.charset);
    }

    /// Opens the install dialog on the fonts.
    void list_source() {
        for (const SourceFont& font : FONTS) source.write(font.file, bytes_of(font));
        start();
        open_on_source();
    }
    /// The first line about what the source has and the dialog does not offer, copied from the list of these.
    [[nodiscard]] std::string why_not_offered() {
        const Window lines_of = opens(NOT_OFFERED, [&] {
            desktop.click_middle(desktop.part_named(dialog->window, "_not_offered_button"));
        });
        desktop.picture("package-not-offered");
        desktop.click(desktop.part_named(lines_of, "lines_list"), 20, 10);
        desktop.key("Control_L", "Insert");
        const std::string line = desktop.clipboard();
        return press(NOT_OFFERED, "close_button") ? line : "";
    }
    /// Selects all of them, as far as they can be selected, and presses Install.
    void install_all() const {
        dialog->click_line(0);
        dialog->click_line(LAST_LINE, "Shift_L");
        desktop.picture("package-four-formats");
        desktop.click_middle(dialog->install_button);
    }
    /// Presses the leftmost button of a question. It is a gadget and has no window.
    void agree(const char* question) const {
        ASSERT_TRUE(desktop.appears(question));
        desktop.picture("package-question");
        const Window window = desktop.window_titled(question);
        const Rectangle place = desktop.place_of(window);
        desktop.click(window, 45, place.height - 30);
        ASSERT_TRUE(desktop.disappears(question));
    }
    void close_summary(const char* picture) {
        ASSERT_TRUE(desktop.appears(SUMMARY));
        desktop.settle();
        desktop.picture(picture);
        ASSERT_TRUE(press(SUMMARY, "ok_button"));
    }

    /// Selects the font in the main window, and in its attributes the name in the character set, and copies
    /// this: the first name with the mouse, others by keyboard.
    [[nodiscard]] std::string copied_name(int line, const char* charset) {
        main->take_keyboard();
        main->click_line(line);
        desktop.click_middle(main->attributes_button);
        if (!gets_keyboard(ATTRIBUTES)) return "";
        const Window attributes = desktop.window_titled(ATTRIBUTES);
        desktop.picture("package-attributes");
        const Window names = desktop.part_named(attributes, "names_list");
        desktop.click(names, 20, 10);
        desktop.click_middle(desktop.part_named(attributes, "copy_button"));
        std::string name = desktop.clipboard();
        desktop.click(names, 20, 10);
        for (std::string before; name != before && !name.ends_with(std::string("-") + charset);) {
            before = name;
            desktop.key("Down");
            desktop.key("Control_L", "c");
            name = desktop.clipboard();
        }
        return press(ATTRIBUTES, "close_button") ? name : "";
    }
    /// The names of all the fonts, for 24 pixels where they have no size of their own.
    [[nodiscard]] std::vector<std::string> copied_names() {
        std::vector<std::string> names;
        start();
        for (const SourceFont& font : FONTS)
            names.push_back(of_24_pixels(copied_name(static_cast<int>(names.size()), font.charset)));
        EXPECT_EQ(leave(), 0);
        desktop.attend_to_nothing();
        return names;
    }
    /// Starts the program and waits until its window shows the text in the font, as the server draws it.
    [[nodiscard]] bool shows(const DrawnText& text, const std::string& title,
                             const std::vector<std::string>& command) const {
        const OtherProgram other(command);
        const bool is_shown = wait_until([&] {
            const Window window = desktop.window_titled(title);
            return window != 0 &&
                   text.is_in(desktop.pixels(desktop.place_of(window)), desktop.place_of(window).width);
        });
        desktop.picture("package-" + title);
        return is_shown;
    }
    [[nodiscard]] bool xterm_shows(const DrawnText& text, const std::string& name, const char* file) const {
        const std::string title = std::string("xterm-") + file;
        const std::string print = std::string("printf '\\033[?25l") + TEXT + "'; read -r answer";
        return shows(text, title,
                     {"xterm", "-T", title, "-fn", name, "-fg", "black", "-bg", "white", "-geometry",
                      "30x3+100+100", "-e", "sh", "-c", print});
    }
    [[nodiscard]] bool motif_shows(const DrawnText& text, const std::string& name, const char* file) const {
        const std::string title = std::string("motif-") + file;
        return shows(text, title,
                     {MOTIF_TEXT_PROGRAM, "-title", title, "-xrm", "*fontList: " + name, "-fg", "black",
                      "-bg", "white", "-geometry", "+100+100", TEXT});
    }
};

TEST_F(FourFormats, AreInstalledWithTheMouse) {
    list_source();
    install_all();
    agree(QUESTION);
    for (const SourceFont& font : FONTS) {
        ASSERT_TRUE(arrives(font.installed_file)) << program->errors();
        EXPECT_TRUE(wait_until([&] { return server_has(font); })) << font.file;
    }
    close_summary("package-summary");
    EXPECT_EQ(leave(), 0);
}

TEST_F(FourFormats, AreDrawnInOtherProgramsTheNextDay) {
    for (const SourceFont& font : FONTS) EXPECT_TRUE(server_has(font)) << font.file;
    const std::vector<std::string> names = copied_names();
    std::vector<DrawnText> drawn{DrawnText("fixed", TEXT)};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string& name = names[i];
        EXPECT_THAT(name, AllOf(HasSubstr(FONTS[i].name_part), EndsWith(FONTS[i].charset)));
        const DrawnText text(name, TEXT);
        EXPECT_GT(text.ink(), 100) << name;
        EXPECT_THAT(drawn, Not(Contains(text))) << name << " looks like another font";
        drawn.push_back(text);
        EXPECT_TRUE(xterm_shows(text, name, FONTS[i].file)) << name;
        EXPECT_TRUE(motif_shows(text, name, FONTS[i].file)) << name;
    }
}

// The program that converts the OpenType font is not there.
TEST_F(FourFormats, AreThreeWithoutTheConverter) {
    list_source();
    EXPECT_EQ(why_not_offered(),
              "aardwolf.otf: the program that converts such fonts is not installed (package fontforge-nox)");
    install_all();
    close_summary("package-without-converter");
    for (const SourceFont& font : {BDF, TRUETYPE, TYPE1})
        ASSERT_TRUE(arrives(font.installed_file)) << font.file;
    EXPECT_THAT(installed("fonts.dir"), Not(HasSubstr("aardwolf")));
    for (const char* file : {OPENTYPE.file, OPENTYPE.installed_file}) EXPECT_EQ(installed(file), "") << file;
    EXPECT_EQ(leave(), 0);
    for (const SourceFont& font : FONTS) EXPECT_EQ(server_has(font), font.file != OPENTYPE.file) << font.file;
}

}  // namespace
