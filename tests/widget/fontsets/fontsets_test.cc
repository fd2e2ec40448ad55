// SPDX-License-Identifier: MIT
//
// The fontsets dialogs with a private fontset file: what they show, how a fontset changes, and what is
// written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <clocale>
#include <string>
#include <vector>

#include "app/fontsets/codesets.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "model/gw_font.h"
#include "widget/dialogs_test_support.h"

// X headers come last.
#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

using gw::test::choices;
using gw::test::find;
using gw::test::items;
using gw::test::press;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* LOCALE = "ja_JP.UTF-8";
constexpr const char* FILE_NAME = "lib/locale/ja_JP.UTF-8/VT_FONT_SETS/Vantor.fs";
constexpr const char* LATIN = "-misc-fixed-medium-r-normal--14-130-75-75-c-70-iso8859-1";
constexpr const char* KATAKANA = "-misc-fixed-medium-r-normal--14-130-75-75-c-70-jisx0201.1976-0";
constexpr const char* KANJI = "-misc-fixed-medium-r-normal--14-130-75-75-c-140-jisx0208.1983-0";
constexpr const char* LARGE_KANJI = "-jis-fixed-medium-r-normal--24-230-75-75-c-240-jisx0208.1983-0";

std::string definition(const std::string& name, const std::vector<std::string>& fonts) {
    std::string text = name + ":definition";
    for (const std::string& font : fonts) text += ",\\\n\t" + font;
    return text + "\n";
}

const std::string TWO_SETS = "! of the test\n" + definition("-small-set", {LATIN, KATAKANA, KANJI}) +
                             definition("-large-set", {LATIN, LARGE_KANJI});

class FontsetsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        ::setenv("LANG", LOCALE, 1);
        ::setenv("LC_MESSAGES", "C", 1);
        ::setenv("VANTORHOME", root().c_str(), 1);
        root().write(FILE_NAME, TWO_SETS);
        gw::test::home();
        gw::test::start_program({"-xrm", "Glyphward*gw_fontset_support: True", "-xrm",
                                 "Glyphward*gw_locale_sample_text: Aa \xe6\xbc\xa2\xe5\xad\x97"});
    }
    static const TempDir& root() {
        static const TempDir dir;
        return dir;
    }
    void SetUp() override {
        ASSERT_TRUE(press(find(wi_toplevel, "_fontsets_dlg_button")));
        begin_with(TWO_SETS);
    }
    void TearDown() override {
        for (Widget dialog : {wi_delete_set_dlg, wi_new_set_dlg, wi_sample_text_dlg, wi_fontsets_dlg})
            press(find(dialog, "cancel_button"));
        user_is_root = ::geteuid() == 0 ? 1 : 0;
    }

    static void begin_with(const std::string& bytes) {
        root().write(FILE_NAME, bytes);
        ASSERT_TRUE(press(part("reset_button")));
    }
    static Widget part(const char* name) { return find(wi_fontsets_dlg, name); }
    static std::string message() { return gw::label_of(part("msg_label")); }
    static std::vector<std::string> offered_sets() {
        Widget pulldown = nullptr;
        XtVaGetValues(part("choose_menu"), XmNsubMenuId, &pulldown, nullptr);
        return choices(pulldown);
    }
    static std::vector<std::string> members() {
        const std::vector<std::string> all = items(part("scrolledlist"));
        std::vector<std::string> selected;
        for (const int position : gw::selected_positions(part("scrolledlist")))
            selected.push_back(all[static_cast<std::size_t>(position) - 1]);
        return selected;
    }
    /// Clicks the line of that font.
    static void click(const std::string& xlfd) {
        const std::vector<std::string> all = items(part("scrolledlist"));
        const auto line = std::find(all.begin(), all.end(), xlfd);
        ASSERT_NE(line, all.end()) << xlfd;
        XmListSelectPos(part("scrolledlist"), static_cast<int>(line - all.begin()) + 1, True);
        gw::test::pump();
    }
    static void name_new_set(const std::string& name) {
        ASSERT_TRUE(press(part("new_set_button")));
        XmTextFieldSetString(find(wi_new_set_dlg, "name_text"), gw::name_arg(name.c_str()));
        ASSERT_TRUE(press(find(wi_new_set_dlg, "ok_button")));
    }
    static void delete_sets(std::initializer_list<int> positions) {
        ASSERT_TRUE(press(part("delete_set_button")));
        gw::test::select(find(wi_delete_set_dlg, "scrolledlist"), positions);
        ASSERT_TRUE(press(find(wi_delete_set_dlg, "delete_button")));
    }
};

TEST_F(FontsetsTest, ShowsTheFirstFontsetOfTheLocale) {
    EXPECT_EQ(gw::test::title_of(wi_fontsets_dlg), "Glyph Warden - Modify Font Set");
    EXPECT_EQ(gw::test::title_of(wi_delete_set_dlg), "Glyph Warden - Dlete Set");
    EXPECT_EQ(gw::test::title_of(wi_new_set_dlg), "Glyph Warden - New Set");
    EXPECT_EQ(gw::test::title_of(wi_sample_text_dlg), "Glyph Warden - Sample Text");
    EXPECT_EQ(gw::label_of(part("choose_label")), "Choose a Fontsets:");
    EXPECT_EQ(gw::label_of(part("members_label")), "= members of current fontset");
    EXPECT_THAT(offered_sets(), ElementsAre("-small-set", "-large-set"));
    EXPECT_EQ(gw::test::chosen(part("choose_menu")), "-small-set");
    EXPECT_THAT(members(), testing::UnorderedElementsAre(KATAKANA, KANJI)) << "Latin fonts are not offered";
    EXPECT_EQ(message(), " ");
    EXPECT_FALSE(XtIsSensitive(part("help_button")));
}

TEST_F(FontsetsTest, OffersRomanKatakanaAndKanjiFonts) {
    const std::vector<std::string> fonts = items(part("scrolledlist"));
    ASSERT_GE(fonts.size(), 4U);
    for (const std::string& font : fonts) EXPECT_NE(font.find("-jisx02"), std::string::npos) << font;
}

TEST_F(FontsetsTest, DrawsJapaneseTextInTheFontset) {
    ASSERT_TRUE(gw::test::pump_until([] { return gw::test::is_viewable(wi_fontsets_dlg); }));
    const int small = gw::test::ink(part("sample_text"));
    EXPECT_GT(small, 50);
    ASSERT_TRUE(gw::test::choose(part("choose_menu"), "-large-set"));
    EXPECT_THAT(members(), ElementsAre(LARGE_KANJI));
    EXPECT_EQ(message(), " ");
    gw::test::pump();
    EXPECT_NE(gw::test::ink(part("sample_text")), small);
}

TEST_F(FontsetsTest, FontsThatTheServerLacksAreNotFound) {
    begin_with(definition("-lacking", {"-no-such-font-r-normal--8-80-75-75-c-80-jisx0208.1983-0"}));
    EXPECT_EQ(message(), "Not found.");
}

TEST_F(FontsetsTest, AFontTakesThePlaceOfTheMemberOfItsCharacterSet) {
    click(LARGE_KANJI);
    EXPECT_THAT(members(), testing::UnorderedElementsAre(KATAKANA, LARGE_KANJI));
    EXPECT_EQ(root().read(FILE_NAME), TWO_SETS) << "nothing is written yet";
    user_is_root = 1;
    ASSERT_TRUE(press(part("apply_button")));
    EXPECT_EQ(root().read(FILE_NAME), "! of the test\n" + definition("-large-set", {LATIN, LARGE_KANJI}) +
                                          definition("-small-set", {LATIN, KATAKANA, LARGE_KANJI}));
}

TEST_F(FontsetsTest, OnlyRootWrites) {
    user_is_root = 0;
    click(LARGE_KANJI);
    ASSERT_TRUE(press(part("apply_button")));
    EXPECT_EQ(message(), "Olny root can modify...");
    EXPECT_EQ(root().read(FILE_NAME), TWO_SETS);
    ASSERT_TRUE(press(part("ok_button")));
    EXPECT_TRUE(XtIsManaged(wi_fontsets_dlg)) << "the refusal stays on the screen";
}

TEST_F(FontsetsTest, RootsOkClosesTheDialog) {
    user_is_root = 1;
    ASSERT_TRUE(press(part("ok_button")));
    EXPECT_FALSE(XtIsManaged(wi_fontsets_dlg));
    EXPECT_EQ(root().read(FILE_NAME), TWO_SETS) << "what was not touched is written back unchanged";
}

TEST_F(FontsetsTest, ResetDiscardsWhatIsNotApplied) {
    click(LARGE_KANJI);
    delete_sets({2});
    ASSERT_TRUE(press(part("reset_button")));
    EXPECT_THAT(offered_sets(), ElementsAre("-small-set", "-large-set"));
    EXPECT_THAT(items(find(wi_delete_set_dlg, "scrolledlist")), ElementsAre("-small-set", "-large-set"));
    EXPECT_THAT(members(), testing::UnorderedElementsAre(KATAKANA, KANJI));
}

TEST_F(FontsetsTest, ANewSetHasTheMembersOfTheCurrentOne) {
    name_new_set("-new-set");
    EXPECT_FALSE(XtIsManaged(wi_new_set_dlg));
    EXPECT_THAT(offered_sets(), ElementsAre("-small-set", "-large-set", "-new-set"));
    EXPECT_THAT(items(find(wi_delete_set_dlg, "scrolledlist")),
                ElementsAre("-new-set", "-small-set", "-large-set"));
    user_is_root = 1;
    ASSERT_TRUE(press(part("apply_button")));
    EXPECT_EQ(root().read(FILE_NAME), TWO_SETS + definition("-new-set", {LATIN, KATAKANA, KANJI}));
}

TEST_F(FontsetsTest, ANameWithoutADashIsRefused) {
    for (const char* name : {"", "set"}) {
        name_new_set(name);
        EXPECT_TRUE(XtIsManaged(wi_new_set_dlg));
        EXPECT_EQ(gw::label_of(find(wi_new_set_dlg, "msg_label")), "Please input begining with '-'.");
    }
    press(find(wi_new_set_dlg, "cancel_button"));
    EXPECT_EQ(gw::label_of(find(wi_new_set_dlg, "msg_label")), " ");
    EXPECT_EQ(gw::field_text(find(wi_new_set_dlg, "name_text")), "");
}

TEST_F(FontsetsTest, DeletingTheLastSetHidesTheMenu) {
    delete_sets({2});
    EXPECT_THAT(offered_sets(), ElementsAre("-small-set"));
    EXPECT_TRUE(XtIsManaged(part("choose_menu")));
    EXPECT_FALSE(XtIsSensitive(find(wi_delete_set_dlg, "delete_button")));
    delete_sets({1});
    EXPECT_FALSE(XtIsManaged(part("choose_menu")));
    EXPECT_THAT(items(find(wi_delete_set_dlg, "scrolledlist")), IsEmpty());
    EXPECT_THAT(members(), IsEmpty());
    user_is_root = 1;
    ASSERT_TRUE(press(part("apply_button")));
    EXPECT_EQ(root().read(FILE_NAME), "! of the test\n");
}

TEST_F(FontsetsTest, WithoutAFileThereIsNoFontsetUntilFontsAreSelected) {
    std::filesystem::remove(root().file(FILE_NAME));
    ASSERT_TRUE(press(part("reset_button")));
    EXPECT_EQ(message(), "There is no font set");
    EXPECT_FALSE(XtIsManaged(part("choose_menu")));
    name_new_set("-first");
    EXPECT_EQ(gw::label_of(find(wi_new_set_dlg, "msg_label")), "Please select font names.");
    click(KANJI);
    EXPECT_THAT(members(), ElementsAre(KANJI));
    ASSERT_TRUE(press(find(wi_new_set_dlg, "ok_button")));
    EXPECT_THAT(offered_sets(), ElementsAre("-first"));
    EXPECT_TRUE(XtIsManaged(part("choose_menu")));
    user_is_root = 1;
    ASSERT_TRUE(press(part("apply_button")));
    EXPECT_EQ(root().read(FILE_NAME), definition("-first", {KANJI}));
}

TEST_F(FontsetsTest, TheSampleTextGoesThroughItsCodesets) {
    const std::string text = "Aa \xe6\xbc\xa2\xe5\xad\x97";
    ASSERT_TRUE(press(part("sample_text_button")));
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(wi_sample_text_dlg, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    std::vector<Widget> fields;
    for (Cardinal i = 0; i < count; ++i) {
        if (std::string(XtName(children[i])) == "codeset_text") fields.push_back(children[i]);
    }
    ASSERT_EQ(fields.size(), 3U);
    EXPECT_EQ(gw::label_of(find(wi_sample_text_dlg, "codeset_label")), "Codeset 0");
    ASSERT_TRUE(press(find(wi_sample_text_dlg, "apply_button")));
    EXPECT_EQ(fontsetsdlg::sample(), text) << "nothing is lost, whatever the fields can show";
    XmTextFieldSetString(fields[0], gw::name_arg("new"));
    XmTextFieldSetString(fields[1], gw::name_arg("er"));
    ASSERT_TRUE(press(find(wi_sample_text_dlg, "ok_button")));
    EXPECT_EQ(fontsetsdlg::sample(), "newer");
    EXPECT_FALSE(XtIsManaged(wi_sample_text_dlg));
    ASSERT_TRUE(press(part("sample_text_button")));
    ASSERT_TRUE(press(find(wi_sample_text_dlg, "reset_button")));
    EXPECT_EQ(fontsetsdlg::sample(), text);
}

TEST_F(FontsetsTest, WithoutItsVariablesNothingIsReadOrWritten) {
    for (const char* variable : {"VANTORHOME", "LANG"}) {
        const std::string value = std::getenv(variable);
        ::unsetenv(variable);
        testing::internal::CaptureStdout();
        press(part("reset_button"));
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  std::string("ERROR: ") + variable + " dose not set\n");
        EXPECT_EQ(message(), "There is no font set");
        EXPECT_FALSE(XtIsManaged(part("choose_menu")));
        click(KANJI);
        user_is_root = 1;
        press(part("apply_button"));
        EXPECT_FALSE(std::filesystem::exists("/tmp/Vantor.fs"));
        ::setenv(variable, value.c_str(), 1);
    }
    EXPECT_EQ(root().read(FILE_NAME), TWO_SETS);
}

TEST_F(FontsetsTest, ADirectoryNameThatIsTooLongIsRefused) {
    const std::string value = std::getenv("VANTORHOME");
    ::setenv("VANTORHOME", ("/" + std::string(60, 'v')).c_str(), 1);
    testing::internal::CaptureStderr();
    press(part("reset_button"));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("too long"), std::string::npos);
    EXPECT_EQ(message(), "There is no font set");
    EXPECT_FALSE(std::filesystem::exists("/tmp/Vantor.fs"));
    ::setenv("VANTORHOME", value.c_str(), 1);
}

TEST_F(FontsetsTest, AFileThatCannotBeWrittenIsSaidInTheDialogWhereWindowsShowReasons) {
    const std::string path = root().file(FILE_NAME);
    for (const bool modern : {false, true}) {
        SCOPED_TRACE(modern);
        begin_with(TWO_SETS);
        std::filesystem::remove(path);
        std::filesystem::create_directory(path);
        user_is_root = 1;
        gw::set_window_policy(gw::WindowPolicy(modern));
        EXPECT_TRUE(press(part("ok_button")));
        gw::set_window_policy(gw::WindowPolicy(false));
        EXPECT_EQ(message(), modern ? root().path() + '/' + FILE_NAME + ": Is a directory" : " ");
        EXPECT_EQ(XtIsManaged(wi_fontsets_dlg), modern ? True : False) << "it stays to say why";
        std::filesystem::remove(path);
        EXPECT_TRUE(modern || press(find(wi_toplevel, "_fontsets_dlg_button")));
    }
}

TEST(Codesets, AreToldApartByTwoBits) {
    EXPECT_EQ(gw::codeset_of('A'), 0U);
    EXPECT_EQ(gw::codeset_of(0x30001234), 1U);
    EXPECT_EQ(gw::codeset_of(0x10001234), 2U);
    EXPECT_EQ(gw::codeset_of(0x20001234), 3U);
    EXPECT_EQ(gw::codeset_of(0x6f22), 0U) << "such a C library does not tell";
}

TEST(Codesets, NoByteIsLost) {
    for (const std::string& text : {std::string("ab\xe6\xbc\xa2z"), std::string("\xff\xfe broken"),
                                    std::string("cut \xe6\xbc"), std::string()}) {
        std::string joined;
        for (const std::string& part : gw::split_by_codeset(text, 3)) joined += part;
        EXPECT_EQ(joined, text);
    }
    EXPECT_TRUE(gw::split_by_codeset("text", 0).empty());
}

}  // namespace
