// SPDX-License-Identifier: MIT
//
// The program as its users see it: under a window manager, with mouse and keyboard.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* ATTRIBUTES = "Glyph Warden - Font Attributes";
constexpr const char* SAMPLE_TEXT = "Glyph Warden - Set Sample Text";
constexpr const char* INFORMATION = "Glyph Warden - Information";

class Glyphward : public ProgramTest {
  protected:
    /// Waits until the sample differs from `before`.
    bool sample_changes(const std::vector<unsigned long>& before) {
        return wait_until([&] { return sample() != before; });
    }
    [[nodiscard]] std::vector<unsigned long> sample() const { return desktop.settled_pixels(main->sample()); }
    [[nodiscard]] int ink_of_sample() const {
        const std::vector<unsigned long> pixels = sample();
        return static_cast<int>(std::count_if(pixels.begin(), pixels.end(),
                                              [&](unsigned long pixel) { return pixel != pixels.front(); }));
    }
    void select_first_font() {
        ASSERT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }))
            << "no sample of the first font";
    }
    /// Presses the Attributes button and waits for the dialog.
    bool opens_attributes() {
        return follows([&] { return desktop.is_visible(ATTRIBUTES); },
                       [&] { desktop.click_middle(main->attributes_button); });
    }
    /// Clicks a line and waits until the sample differs from `before`.
    bool click_changes_sample(int line, const std::vector<unsigned long>& before) {
        return follows([&] { return sample() != before; }, [&] { main->click_line(line); });
    }
};

TEST_F(Glyphward, DrawsASampleOfTheFontThatIsClicked) {
    start();
    EXPECT_FALSE(main->sample_is_drawn());
    select_first_font();
    desktop.picture("main-window");
    EXPECT_TRUE(click_changes_sample(5, sample())) << "an italic after an upright";
    EXPECT_EQ(program->errors(), "");
}

// Such a server has "fixed" and "cursor", and nothing that the resource file asks for.
TEST_F(Glyphward, ShowsItsListsOnAServerWithoutFonts) {
    desktop.set_font_path({"built-ins"});
    for (const char* locale : {"C", "de_DE.UTF-8"}) {
        start({{"LANG", locale}, {"LC_ALL", locale}});
        EXPECT_GT(desktop.ink(desktop.place_of(main->list)), 1000) << locale;
        main->click_line(0);
        desktop.park_pointer();
        desktop.picture(std::string("no-server-fonts-") + locale);
        EXPECT_EQ(program->errors(), "") << locale;
        desktop.ask_to_close(main->window);
        EXPECT_EQ(program->wait_for_exit(), 0);
        EXPECT_EQ(program->errors(), "") << locale;
    }
}

// The first four fonts belong to one face; the next is an italic.
TEST_F(Glyphward, GoesThroughTheListByKeyboard) {
    start();
    select_first_font();
    const auto before = sample();
    for (int line = 0; line < 4; ++line) desktop.key("Down");
    EXPECT_TRUE(sample_changes(before));
}

TEST_F(Glyphward, OffersSizesByMouseAndKeyboard) {
    start();
    select_first_font();
    const auto largest = sample();
    ASSERT_TRUE(follows([&] { return sample() != largest; }, [&] { main->choose_above(main->size_menu, 2); }))
        << "18 points instead of 36";
    const int small = ink_of_sample();
    desktop.picture("smaller-size");
    const auto now = sample();
    EXPECT_TRUE(follows([&] { return sample() != now; }, [&] { main->choose_above(main->size_menu, 1); }));
    EXPECT_LT(ink_of_sample(), small);
}

TEST_F(Glyphward, ShowsAttributesByButtonAndMenuAndClosesThem) {
    start();
    select_first_font();
    ASSERT_TRUE(opens_attributes());
    desktop.picture("attributes");
    const Rectangle place = desktop.place_of(desktop.window_titled(ATTRIBUTES));
    const int centre = place.x + place.width / 2;
    EXPECT_NEAR(centre, 512, 30);
    const auto shown = desktop.pixels(place);
    EXPECT_TRUE(follows([&] { return desktop.pixels(place) != shown; }, [&] { main->click_line(5); }))
        << "it follows the selection";
    desktop.ask_to_close(desktop.window_titled(ATTRIBUTES));
    EXPECT_TRUE(desktop.disappears(ATTRIBUTES));

    ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(main->window); }));
    ASSERT_NE(open_by_menu("f", "a", ATTRIBUTES), 0U);
    desktop.key("Escape");
    EXPECT_TRUE(desktop.disappears(ATTRIBUTES));
}

TEST_F(Glyphward, SeveralSelectedFontsHaveNoSampleAndNoAttributes) {
    start();
    select_first_font();
    // A second click with the key held would deselect the line again.
    ASSERT_TRUE(follows([&] { return !main->sample_is_drawn(); },
                        [&] {
                            main->click_line(0);
                            main->click_line(3, "Control_L");
                        }));
    desktop.picture("several-selected");
    desktop.click_middle(main->attributes_button);
    // When the next action works, the click before it had no effect.
    select_first_font();
    EXPECT_FALSE(desktop.is_visible(ATTRIBUTES));
}

TEST_F(Glyphward, ShowsAnAliasAtTheEndOfTheList) {
    start();
    select_first_font();
    const auto first_font = desktop.settled_pixels(main->sample());
    // The last alias is of a symbol font, which only `gw_modern_fonts` draws: with itself.
    const auto alias_is_shown = [&] {
        if (is_as_ever()) return !main->sample_is_drawn();
        return main->sample_is_drawn() && desktop.settled_pixels(main->sample()) != first_font;
    };
    ASSERT_TRUE(follows(alias_is_shown, [&] { desktop.key("Control_L", "End"); }));
    // For an alias, the attributes of the next alias are shown; for the last one, none.
    ASSERT_TRUE(follows([&] { return desktop.is_visible(ATTRIBUTES); },
                        [&] {
                            desktop.key("Up");
                            desktop.click_middle(main->attributes_button);
                        }));
    desktop.picture("alias");
    EXPECT_TRUE(program->is_running());
}

// With the resources as they are installed everybody has the dialog.
TEST_F(Glyphward, TheFontPathIsTheSuperusersToModify) {
    start();
    if (is_root() || !is_as_ever()) {
        ASSERT_NE(open_by_menu("o", "m", "Glyph Warden - Modify Font Path"), 0U);
        desktop.picture("modify-font-path");
        desktop.key("Escape");
        EXPECT_TRUE(desktop.disappears("Glyph Warden - Modify Font Path"));
        return;
    }
    ASSERT_NE(open_by_menu("o", "m", INFORMATION), 0U);
    desktop.picture("only-root");
    desktop.key("Return");
    EXPECT_TRUE(desktop.disappears(INFORMATION));
}

TEST_F(Glyphward, TheSampleTextIsNotTheSuperusersToSet) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    start();
    main->choose("o", "s");
    desktop.dismiss_menu();
    ASSERT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }));
    EXPECT_FALSE(desktop.is_visible(SAMPLE_TEXT));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Glyphward, KeepsTheSampleTextOfAUser) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    start();
    select_first_font();
    const auto before = sample();
    ASSERT_NE(open_by_menu("o", "s", SAMPLE_TEXT), 0U);
    desktop.key("Home");
    desktop.type("Warden ");
    desktop.picture("set-sample-text");
    desktop.key("Return");
    ASSERT_TRUE(desktop.disappears(SAMPLE_TEXT)) << "Return is Ok";
    EXPECT_EQ(home.read(".glyphwdrc"), "SampleText:Warden Aa Bb Cc Xx Yy Zz 0123456789");
    ASSERT_TRUE(sample_changes(before));
    const auto kept = sample();

    const TempDir next_home;
    std::filesystem::copy_file(home.file(".glyphwdrc"), next_home.file(".glyphwdrc"));
    program.reset();
    ASSERT_TRUE(desktop.disappears(MainWindow::TITLE));
    start({{"HOME", next_home.path()}});
    select_first_font();
    EXPECT_TRUE(wait_until([&] { return sample() == kept; })) << "the next start shows the kept text";
}

TEST_F(Glyphward, EscapeLeavesTheSampleTextAlone) {
    if (is_root()) GTEST_SKIP() << "the dialog is a user's";
    start();
    ASSERT_NE(open_by_menu("o", "s", SAMPLE_TEXT), 0U);
    desktop.type("x");
    desktop.key("Escape");
    EXPECT_TRUE(desktop.disappears(SAMPLE_TEXT));
    EXPECT_FALSE(home.exists(".glyphwdrc"));
}

TEST_F(Glyphward, TypingIntoTheSampleIsKeptFromFontToFont) {
    start();
    select_first_font();
    const auto before = sample();
    desktop.click(main->sample_field, 40, 30);
    desktop.key("Home");
    desktop.type("mmm");
    ASSERT_TRUE(sample_changes(before));
    main->click_line(5);
    main->click_line(0);
    EXPECT_TRUE(wait_until([&] { return main->sample_is_drawn() && sample() != before; }));
}

TEST_F(Glyphward, ExitEndsWithStatusZero) {
    start();
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_F(Glyphward, TheCloseBoxEndsWithStatusZero) {
    start();
    desktop.ask_to_close(main->window);
    EXPECT_EQ(program->wait_for_exit(), 0);
}

TEST_F(Glyphward, RunsWithoutAHome) {
    start({{"HOME", std::nullopt}});
    EXPECT_TRUE(program->is_running());
    EXPECT_EQ(leave(), 0);
}

class GlyphwardIn : public Glyphward, public testing::WithParamInterface<const char*> {};

TEST_P(GlyphwardIn, StartsAndDrawsQuietly) {
    start({{"LC_ALL", GetParam()}, {"LANG", GetParam()}});
    select_first_font();
    desktop.picture(std::string("locale-") + GetParam());
    EXPECT_EQ(program->errors(), "");
}

INSTANTIATE_TEST_SUITE_P(Locales, GlyphwardIn, testing::Values("C", "C.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8"));

// A font path with many broken elements: the fonts that do exist are listed all the same.
TEST_F(Glyphward, StartsOnABrokenFontPath) {
    const TempDir fonts;
    ::chmod(fonts.c_str(), 0755);
    const std::string good = "a.pcf -x-aardvark-medium-r-normal--8-80-75-75-c-80-iso8859-1\n";
    fonts.write("wrong count/fonts.dir", "77\n" + good);
    fonts.write("negative/fonts.dir", "-1\n" + good);
    fonts.write("huge/fonts.dir", "99999999999\n" + good);
    fonts.write("it's $(touch oops)/fonts.dir", "2\n" + std::string(5000, 'x') + "\n" + good);
    fonts.write("bytes/fonts.dir", "1\n\xff\xfe \xe9\n");
    fonts.write("bytes/fonts.alias", "\"never closed\n\xff -x\n");
    fonts.write("closed/fonts.dir", "1\n" + good);
    ::chmod(fonts.file("closed").c_str(), 0);
    std::vector<std::string> path = {"tcp/fontserver:7100", "/" + std::string(1100, 'd'), "/nonexistent/"};
    for (const char* name : {"wrong count", "negative", "huge", "it's $(touch oops)", "bytes", "closed"}) {
        path.push_back(fonts.file(name) + "/");
    }
    std::string old_config;
    constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";
    if (is_root()) {
        old_config = TempDir::read_bytes(CONFIG);
        std::string joined;
        for (const std::string& element : path) joined += ',' + element;
        std::ofstream(CONFIG) << old_config.substr(0, old_config.find('\n')) << joined << ",,\n";
    } else {
        std::ofstream file(home.file(".VTfontpath"));
        file << "\n";  // elements after an empty line go before the installation's
        for (const std::string& element : path) {
            std::string escaped;
            for (const char c : element)
                escaped += c == '\'' || c == '$' || c == '(' || c == ')' ? std::string("\\\\") + c
                                                                         : std::string(1, c);
            file << escaped << '\n';
        }
    }
    start();
    main->click_line(0);
    EXPECT_TRUE(program->is_running());
    desktop.picture("broken-font-path");
    EXPECT_EQ(leave(), 0) << program->errors();
    EXPECT_FALSE(std::filesystem::exists("oops"));
    if (is_root()) std::ofstream(CONFIG) << old_config;
}

/// A private X server, which the test can end.
class OwnServer {
  public:
    OwnServer() {
        int numbers[2] = {-1, -1};
        if (::pipe(numbers) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            const std::string out = std::to_string(numbers[1]);
            ::execlp("Xvfb", "Xvfb", "-displayfd", out.c_str(), "-noreset", "-nolisten", "tcp", "-screen",
                     "0", "1024x768x24", nullptr);
            ::_exit(127);
        }
        ::close(numbers[1]);
        char digits[16] = "";
        std::size_t length = 0;
        while (length + 1 < sizeof digits && ::read(numbers[0], digits + length, 1) == 1 &&
               digits[length] != '\n')
            ++length;
        digits[length] = '\0';
        ::close(numbers[0]);
        name_ = std::string(":") + digits;
    }
    ~OwnServer() { take_away(); }
    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;
    void take_away() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
    [[nodiscard]] const std::string& name() const { return name_; }

  private:
    pid_t pid_ = -1;
    std::string name_;
};

TEST(GlyphwardWithoutDisplay, EndsWithOneLineWhenTheDisplayGoesAway) {
    OwnServer server;
    Program program({{"DISPLAY", server.name()}});
    {
        const Desktop desktop(server.name().c_str());
        ASSERT_TRUE(desktop.appears(MainWindow::TITLE)) << program.errors();
    }
    server.take_away();
    EXPECT_EQ(program.wait_for_exit(), 1);
    EXPECT_EQ(program.errors(), "glyphward: the connection to the display is lost\n");
}

TEST(GlyphwardWithoutDisplay, SaysThatItHasNone) {
    Program program({{"DISPLAY", std::nullopt}});
    const std::optional<int> status = program.wait_for_exit();
    ASSERT_TRUE(status.has_value());
    EXPECT_NE(*status, 0);
    EXPECT_NE(program.errors().find("display"), std::string::npos) << program.errors();
}

}  // namespace
