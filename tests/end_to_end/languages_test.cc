// SPDX-License-Identifier: MIT
//
// The program in other languages: titles of windows, mnemonics of menus, and no complaint about a language
// that it does not speak.
#include <ostream>

#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"

namespace {

using namespace gw::e2e;

/// What a user of this locale sees and types.
struct Language {
    const char* locale;
    const char* install_keys[2];  ///< of the menu and of its entry
    const char* install_title;
    const char* about_keys[2];
    const char* about_title;
    bool has_latin1 = true;  ///< the charset of the first font of the list
};

void PrintTo(const Language& language, std::ostream* out) {
    *out << language.locale;
}

constexpr Language ENGLISH = {"C", {"f", "i"}, "Glyph Warden - Install", {"h", "a"}, "About Glyph Warden"};

class InLanguage : public ProgramTest, public testing::WithParamInterface<Language> {
  protected:
    Window open(const char* const (&keys)[2], const char* title) {
        return opens(title, [&] {
            main->take_keyboard();
            main->choose(keys[0], keys[1]);
        });
    }
    void expect_windows(const Language& language) {
        expect_title(open(language.about_keys, language.about_title), language.about_title);
        EXPECT_TRUE(leave_window(language.about_title, Leaving::ESCAPE, nullptr));
        expect_title(open(language.install_keys, language.install_title), language.install_title);
    }
    /// The window is there. Today's windows have the title in UTF-8, too, whatever the locale's encoding is.
    void expect_title(Window window, const char* title) const {
        ASSERT_NE(window, 0U) << title;
        for (const char* property : {"_NET_WM_NAME", "_NET_WM_ICON_NAME"})
            EXPECT_EQ(desktop.utf8_property(window, property), is_as_ever() ? "" : title) << property;
    }
    /// Uses the close box, which needs no mnemonic.
    void expect_quiet_end() {
        desktop.ask_to_close(main->window);
        EXPECT_EQ(program->wait_for_exit(), 0);
        EXPECT_EQ(program->errors(), "");
    }
};

using NoLanguage = InLanguage;

TEST_P(InLanguage, WindowsAndMenusAreTranslated) {
    start({{"LANG", GetParam().locale}});
    if (GetParam().has_latin1) {
        ASSERT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }));
    }
    desktop.picture(std::string("language-main-") + GetParam().locale);
    expect_windows(GetParam());
    desktop.picture(std::string("language-install-") + GetParam().locale);
    EXPECT_TRUE(press(GetParam().install_title, "_cancel_button"));
    expect_quiet_end();
}

constexpr Language german(const char* locale, bool has_latin1 = true) {
    return {locale,
            {"s", "i"},
            "Glyph Warden - Installieren",
            {"h", "g"},
            "\xc3\x9c"
            "ber Glyph Warden",
            has_latin1};
}
constexpr Language japanese(const char* locale) {
    return {locale,
            {"f", "i"},
            "Glyph Warden - "
            "\xe3\x82\xa4\xe3\x83\xb3\xe3\x82\xb9\xe3\x83\x88\xe3\x83\xbc\xe3\x83\xab",
            {"h", "a"},
            "Glyph Warden \xe3\x81\xab\xe3\x81\xa4\xe3\x81\x84\xe3\x81\xa6"};
}
constexpr Language FRENCH = {
    "fr_FR.UTF-8", {"p", "i"}, "Glyph Warden - Installer", {"a", "g"}, "\xc3\x80 propos de Glyph Warden"};
constexpr Language SPANISH = {
    "es_ES.UTF-8", {"f", "i"}, "Glyph Warden - Instalar", {"a", "g"}, "Acerca de Glyph Warden"};

INSTANTIATE_TEST_SUITE_P(Locales, InLanguage,
                         testing::Values(german("de_DE.UTF-8"), german("de_DE"), german("de_AT@euro", false),
                                         FRENCH, SPANISH, japanese("ja_JP.UTF-8"), japanese("ja_JP.eucjp")));

// A locale whose language has no catalogue, and a locale that the machine does not have.
TEST_F(NoLanguage, OtherLocalesAreEnglish) {
    for (const char* locale : {"pl_PL.UTF-8", "xx_YY"}) {
        start({{"LANG", locale}});
        expect_windows(ENGLISH);
        EXPECT_TRUE(press(ENGLISH.install_title, "_cancel_button"));
        expect_quiet_end();
    }
}

// The resources are still those of the locale.
TEST_F(NoLanguage, ACatalogueThatIsMissingLeavesTheTextsEnglish) {
    start({{"LANG", "de_DE.UTF-8"}, {"NLSPATH", "/nonexistent/%L/%N.cat"}});
    Language mixed = german("de_DE.UTF-8");
    mixed.install_title = ENGLISH.install_title;
    mixed.about_title = ENGLISH.about_title;
    expect_windows(mixed);
    EXPECT_TRUE(press(ENGLISH.install_title, "_cancel_button"));
    expect_quiet_end();
}

}  // namespace
