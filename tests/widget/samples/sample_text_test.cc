// SPDX-License-Identifier: MIT
//
// Samples in the main window: which sizes and resolutions a font offers, what is drawn, and how the sample
// text is stored.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "app/common/status_line.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "app/samples/rc_sample_text.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_font.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text.h"
#include "app/samples/sample_text_cb.h"
#include "support/under_policy.h"

#include "widget/dialogs_test_support.h"

#include <X11/Xproto.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

using namespace gw::test;
using Texts = std::vector<std::string>;

constexpr const char* DEFAULT_TEXT = "Aa Bb Cc Xx Yy Zz 0123456789";
bool is_root() {
    return ::geteuid() == 0;
}

class Sample : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        sample_text = DEFAULT_TEXT;
        size_menu = find(wi_toplevel, "_size_option_menu");
        res_menu = find(wi_toplevel, "_res_option_menu");
        select(wi_hrn_list, {});
        pump();
    }
    [[nodiscard]] Widget pulldown(Widget menu) const {
        Widget submenu = nullptr;
        XtVaGetValues(menu, XmNsubMenuId, &submenu, nullptr);
        return submenu;
    }
    Widget size_menu = nullptr;
    Widget res_menu = nullptr;
};

TEST_F(Sample, AnOutlineFontOffersSixSizesAndShowsTheLargest) {
    select(wi_hrn_list, {outline_position()});
    pump();
    EXPECT_EQ(choices(pulldown(size_menu)), (Texts{"10", "12", "14", "18", "24", "36"}));
    EXPECT_EQ(chosen(size_menu), "36");
    EXPECT_TRUE(XtIsSensitive(size_menu));
    EXPECT_EQ(choices(pulldown(res_menu)), Texts{"75 X 75"});
    EXPECT_FALSE(XtIsSensitive(res_menu));
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
    EXPECT_GT(ink(wi_installed_sample_textfield), 100);
}

TEST_F(Sample, ABitmapFontOffersItsOwnSizesAndResolutions) {
    const int position = bitmap_position();
    ASSERT_GT(position, 0);
    unsigned count = 0;
    Texts points;
    for (const std::string& size :
         the_installed_hrn_list.get_point_sizes(static_cast<unsigned>(position), count)) {
        points.push_back(size.substr(0, size.size() - 1));
    }
    ASSERT_GT(points.size(), 2U);
    select(wi_hrn_list, {position});
    pump();
    EXPECT_EQ(choices(pulldown(size_menu)), points);
    EXPECT_EQ(chosen(size_menu), points.back()) << "the largest";
    EXPECT_TRUE(XtIsSensitive(res_menu));
    EXPECT_EQ(choices(pulldown(res_menu)), (Texts{"75 X 75", "100 X 100"}));
    EXPECT_EQ(chosen(res_menu), "100 X 100") << "the last";
    EXPECT_GT(ink(wi_installed_sample_textfield), 100);
}

TEST_F(Sample, ChoosingASizeOrAResolutionDrawsAnew) {
    select(wi_hrn_list, {bitmap_position()});
    pump();
    const int largest = ink(wi_installed_sample_textfield);
    ASSERT_TRUE(choose(size_menu, "10"));
    pump();
    EXPECT_EQ(chosen(res_menu), "100 X 100");
    const int small = ink(wi_installed_sample_textfield);
    EXPECT_GT(small, 50);
    EXPECT_NE(small, largest);
    ASSERT_TRUE(choose(res_menu, "75 X 75"));
    pump();
    EXPECT_NE(ink(wi_installed_sample_textfield), small);
}

TEST_F(Sample, ManyFontsInTurnKeepTheWindowAsItIs) {
    Dimension width = 0;
    Dimension height = 0;
    Dimension field_height = 0;
    XtVaGetValues(wi_toplevel, XmNwidth, &width, XmNheight, &height, nullptr);
    XtVaGetValues(wi_installed_sample_textfield, XmNheight, &field_height, nullptr);
    for (int position = 1; position < the_installed_hrn_count; position += 37) {
        select(wi_hrn_list, {position});
        pump();
        Dimension now_width = 0;
        Dimension now_height = 0;
        Dimension now_field = 0;
        XtVaGetValues(wi_toplevel, XmNwidth, &now_width, XmNheight, &now_height, nullptr);
        XtVaGetValues(wi_installed_sample_textfield, XmNheight, &now_field, nullptr);
        ASSERT_EQ(now_width, width) << position;
        ASSERT_EQ(now_height, height) << position;
        ASSERT_EQ(now_field, field_height) << position;
    }
}

TEST_F(Sample, AFontThatNoFontSetCanBeMadeOfLeavesTheFieldEmpty) {
    const UnderPolicy plain(false);
    const int position = symbol_position();
    ASSERT_GT(position, 0);
    select(wi_hrn_list, {outline_position()});
    pump();
    select(wi_hrn_list, {position});
    pump();
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
    EXPECT_EQ(sample_text, DEFAULT_TEXT);
    select(wi_hrn_list, {outline_position()});
    pump();
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT)
        << "the text is there again with the next font";
}

TEST_F(Sample, AnAliasHasNoChoices) {
    ASSERT_GT(the_alias_count, 0);
    int position = 0;
    for (const GWAlias* alias : the_alias_list) {
        ++position;
        if (std::string(alias->get_alias_name()) == "fixed") break;
    }
    select(wi_hrn_list, {the_installed_hrn_count + position});
    pump();
    EXPECT_FALSE(XtIsSensitive(size_menu));
    EXPECT_FALSE(XtIsSensitive(res_menu));
    EXPECT_TRUE(XtIsSensitive(wi_installed_sample_textfield));
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
}

TEST_F(Sample, SeveralOrNoSelectedFontsShowNone) {
    for (const bool several : {true, false}) {
        select(wi_hrn_list, {outline_position()});
        pump();
        if (several) {
            select(wi_hrn_list, {1, 2});
        } else {
            select(wi_hrn_list, {});
        }
        pump();
        EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
        for (Widget w : {wi_installed_sample_textfield, size_menu, res_menu})
            EXPECT_FALSE(XtIsSensitive(w)) << several;
        EXPECT_EQ(sample_text, DEFAULT_TEXT);
    }
}

TEST_F(Sample, WhatTheUserTypesBecomesTheSampleText) {
    select(wi_hrn_list, {outline_position()});
    pump();
    type_into(wi_installed_sample_textfield, "Hamburgefonts");
    pump();
    EXPECT_EQ(sample_text, "Hamburgefonts");
    select(wi_hrn_list, {bitmap_position()});
    pump();
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "Hamburgefonts");
}

TEST_F(Sample, WhatTheProgramShowsDoesNot) {
    XmTextFieldSetString(wi_installed_sample_textfield, gw::name_arg("by the program"));
    EXPECT_EQ(sample_text, DEFAULT_TEXT);
    clear_sample_textfield(wi_installed_sample_textfield);
    EXPECT_EQ(sample_text, DEFAULT_TEXT);
}

TEST_F(Sample, ALongTextIsBounded) {
    select(wi_hrn_list, {outline_position()});
    pump();
    type_into(wi_installed_sample_textfield, std::string(5000, 'x'));
    EXPECT_EQ(sample_text.size(), 1000U);
}

TEST_F(Sample, CallbacksSurviveASelectionThatHasJustGone) {
    select(wi_hrn_list, {bitmap_position()});
    pump();
    XmListDeselectAllItems(wi_hrn_list);
    EXPECT_TRUE(choose(size_menu, "10"));
    EXPECT_TRUE(choose(res_menu, "75 X 75"));
    set_sample_text_cb(wi_installed_sample_textfield, nullptr, nullptr);
    XtCallCallbacks(wi_hrn_list, XmNextendedSelectionCallback, nullptr);
    pump();
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
}

TEST_F(Sample, AListWithoutMenusShowsOneSize) {
    sample_text_cb_struct record;
    record.sample_field = wi_installed_sample_textfield;
    record.list = wi_hrn_list;
    record.hrn_list = &the_installed_hrn_list;
    for (const int position : {outline_position(), bitmap_position()}) {
        XmListDeselectAllItems(wi_hrn_list);
        XmListSelectPos(wi_hrn_list, position, False);
        clear_sample_textfield(wi_installed_sample_textfield);
        hrn_list_sample_cb(wi_hrn_list, &record, nullptr);
        pump();
        EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT) << position;
        EXPECT_GT(ink(wi_installed_sample_textfield), 100) << position;
    }
}

TEST_F(Sample, ErrorsOfOpeningAFontEndQuietly) {
    XErrorEvent event{};
    event.request_code = X_OpenFont;
    EXPECT_EQ(x_error_handler(display, &event), 0);
}

TEST_F(Sample, LabelsAreMadeOfTwoTextsAndBounded) {
    update_label(wi_main_window_status_label, "one ", "two");
    EXPECT_EQ(gw::label_of(wi_main_window_status_label), "one two");
    update_label(wi_main_window_status_label, nullptr, nullptr);
    EXPECT_EQ(gw::label_of(wi_main_window_status_label), "");
    update_label(wi_main_window_status_label, std::string(9000, 'x').c_str(), std::string(9000, 'y').c_str());
    EXPECT_EQ(gw::label_of(wi_main_window_status_label).size(), 9999U);
    update_label(wi_main_window_status_label, " ", nullptr);
}

TEST_F(Sample, TheListShowsFontsAndThenAliases) {
    const Texts shown = items(wi_hrn_list);
    ASSERT_EQ(shown.size(), static_cast<std::size_t>(the_installed_hrn_count + the_alias_count));
    EXPECT_EQ(shown.front(), the_installed_hrn_list.get_elem_at_pos(1)->get_name());
    EXPECT_EQ(shown[static_cast<std::size_t>(the_installed_hrn_count)],
              the_alias_list.get_elem_at_pos(1)->get_hrn_name());
    EXPECT_EQ(shown.back(), the_alias_list.get_elem_at_pos(the_alias_count)->get_hrn_name());
}

// --- the stored text ---------------------------------------------------------

class KeptText : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        remove_file();
        sample_text = DEFAULT_TEXT;
    }
    void TearDown() override { remove_file(); }

  private:
    // Other tests of the program leave a stored text behind.
    static void remove_file() { ::unlink(home().file(".glyphwdrc").c_str()); }
};

TEST_F(KeptText, IsReadFromTheUsersFile) {
    const std::string long_text(3000, 'x');
    const struct {
        std::string bytes;
        std::string text;
    } cases[] = {
        {"SampleText:Hello\n", "Hello"},
        {"SampleText:Hello", "Hello"},
        {"other: line\n  SampleText: two words \nSampleText:second\n", " two words "},
        {"SampleText:\n", ""},
        {"no keyword\n", DEFAULT_TEXT},
        {"", DEFAULT_TEXT},
        {"SampleText:" + long_text + "\n", long_text.substr(0, 1000 - 11)},
        {"SampleText:caf\xc3\xa9 \xe9\n", "caf\xc3\xa9 \xe9"},
    };
    for (const auto& c : cases) {
        home().write(".glyphwdrc", c.bytes);
        EXPECT_EQ(get_rc_sample_text(), is_root() ? DEFAULT_TEXT : c.text) << c.bytes.substr(0, 60);
    }
}

TEST_F(KeptText, WithoutAReadableFileIsTheDefault) {
    EXPECT_EQ(get_rc_sample_text(), DEFAULT_TEXT);
    home().make_dir(".glyphwdrc");
    EXPECT_EQ(get_rc_sample_text(), DEFAULT_TEXT) << "a directory";
    ::rmdir(home().file(".glyphwdrc").c_str());
    ::chmod(home().write(".glyphwdrc", "SampleText:x\n").c_str(), 0);
    EXPECT_EQ(get_rc_sample_text(), DEFAULT_TEXT) << "unreadable";
    ::unsetenv("HOME");
    EXPECT_EQ(get_rc_sample_text(), DEFAULT_TEXT) << "no home";
    home();
    ::setenv("HOME", home().path().substr(0, home().path().size() - 1).c_str(), 1);
}

TEST_F(KeptText, OfTheSuperuserNeverChanges) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    sample_text = DEFAULT_TEXT;
    EXPECT_EQ(set_rc_sample_text("new"), 0);
    EXPECT_EQ(sample_text, DEFAULT_TEXT);
    EXPECT_FALSE(home().exists(".glyphwdrc"));
}

TEST_F(KeptText, OfAUserIsWrittenWholeAndShown) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    home().write(".glyphwdrc", "other: line\nSampleText:old\n");
    select(wi_hrn_list, {outline_position()});
    EXPECT_EQ(set_rc_sample_text("brand new"), 1);
    EXPECT_EQ(home().read(".glyphwdrc"), "SampleText:brand new");
    EXPECT_EQ(sample_text, "brand new");
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "brand new");
    EXPECT_EQ(get_rc_sample_text(), "brand new");
}

TEST_F(KeptText, KeepsTheFilesModeAndALinkToIt) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    ::chmod(home().write("dotfiles/rc", "SampleText:old\n").c_str(), 0600);
    ASSERT_EQ(::symlink("dotfiles/rc", home().file(".glyphwdrc").c_str()), 0);
    EXPECT_EQ(get_rc_sample_text(), "old");
    EXPECT_EQ(set_rc_sample_text("through the link"), 1);
    struct stat info = {};
    ASSERT_EQ(::lstat(home().file(".glyphwdrc").c_str(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    EXPECT_EQ(home().read("dotfiles/rc"), "SampleText:through the link");
    ASSERT_EQ(::unlink(home().file(".glyphwdrc").c_str()), 0);
    ::chmod(home().write(".glyphwdrc", "SampleText:old\n").c_str(), 0600);
    EXPECT_EQ(set_rc_sample_text("new"), 1);
    ASSERT_EQ(::lstat(home().file(".glyphwdrc").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0600U);
}

TEST_F(KeptText, WithoutAHomeIsTheSampleTextOfThisRun) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    ::unsetenv("HOME");
    EXPECT_EQ(set_rc_sample_text("homeless"), 1);
    EXPECT_EQ(sample_text, "homeless");
    ::setenv("HOME", home().path().substr(0, home().path().size() - 1).c_str(), 1);
    EXPECT_FALSE(home().exists(".glyphwdrc"));
}

TEST_F(KeptText, IsNotReadFromAPipe) {
    ASSERT_EQ(::mkfifo(home().file(".glyphwdrc").c_str(), 0600), 0);
    EXPECT_EQ(get_rc_sample_text(), DEFAULT_TEXT) << "and nobody waits for a writer";
}

// Runs in a process of its own because of its locale.
TEST(LongText, EndsWithAWholeCharacter) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", "C.UTF-8", 1);
            start_at_home();
            const std::string full(SAMPLE_TEXT_LIMIT - 1, 'a');
            if (set_rc_sample_text((full + "\xc3\xa9").c_str()) != 1 || sample_text != full) std::_Exit(2);
            if (set_rc_sample_text((full + "aa").c_str()) != 1 || sample_text != full + "a") std::_Exit(3);
            const std::string broken(SAMPLE_TEXT_LIMIT + 5, '\xff');
            if (set_rc_sample_text(broken.c_str()) != 1 || sample_text.size() != SAMPLE_TEXT_LIMIT)
                std::_Exit(4);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeptText, ThatCannotBeWrittenChangesNothing) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    sample_text = DEFAULT_TEXT;
    ::chmod(home().write(".glyphwdrc", "SampleText:old\n").c_str(), 0444);
    EXPECT_EQ(set_rc_sample_text("new"), 0);
    EXPECT_EQ(home().read(".glyphwdrc"), "SampleText:old\n");
    EXPECT_EQ(sample_text, DEFAULT_TEXT);
}

TEST(PointSizes, AreConvertedByADigit) {
    EXPECT_EQ(convert_to_decipoint("12"), "120");
    EXPECT_EQ(convert_to_point("120"), "12");
    EXPECT_EQ(convert_to_point(""), "");
    EXPECT_EQ(convert_to_decipoint(""), "0");
}

// --- locales -----------------------------------------------------------------

// One process for each locale, because the locale is chosen at start-up.
class InLocale : public testing::TestWithParam<const char*> {};

TEST_P(InLocale, ALatinFontIsDrawnAndASymbolFontIsNot) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", GetParam(), 1);
            start_at_home();
            gw::set_font_policy(gw::FontPolicy(false));
            select(wi_hrn_list, {outline_position()});
            pump();
            const bool drawn = shown_text(wi_installed_sample_textfield) == DEFAULT_TEXT &&
                               ink(wi_installed_sample_textfield) > 100;
            select(wi_hrn_list, {symbol_position()});
            pump();
            const bool empty = shown_text(wi_installed_sample_textfield).empty();
            std::_Exit(drawn ? empty ? 0 : 3 : 2);
        },
        testing::ExitedWithCode(0), "");
}

TEST_P(InLocale, FontsOfEveryCharsetOfOneByteAreDrawnWithThemselvesWhereThePolicyHasIt) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", GetParam(), 1);
            start_at_home();
            gw::set_font_policy(gw::FontPolicy(true));
            int charset = 0;
            for (const auto& [registry, encoding] :
                 {std::pair("adobe", "fontspecific"), {"koi8", "r"}, {"iso10646", "1"}, {"iso8859", "1"}}) {
                ++charset;
                select(wi_hrn_list,
                       {position_where([name = registry, code = encoding](const GWHRNElement& elem) {
                           return has_charset(elem, name, code);
                       })});
                pump();
                if (shown_text(wi_installed_sample_textfield) != DEFAULT_TEXT) std::_Exit(charset);
                if (ink(wi_installed_sample_textfield) < 100) std::_Exit(10 + charset);
            }
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Locales, InLocale,
                         testing::Values("C", "C.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8", "en_US"));

}  // namespace
