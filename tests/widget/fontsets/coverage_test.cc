// SPDX-License-Identifier: MIT
//
// The fontsets dialog without its resource and without VANTORHOME: the installation's file, a sample in the
// locale's own text, and which character sets a fontset covers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <langinfo.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/fontsets/coverage.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "widget/dialogs_test_support.h"

#include <Xm/List.h>

namespace {

using gw::test::find;
using gw::test::press;
using gw::test::pump_until;
using gw::test::TempDir;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* LOCALE = "ja_JP.UTF-8";

class Coverage : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        ::setenv("LANG", LOCALE, 1);
        ::setenv("LC_MESSAGES", "C", 1);
        ::unsetenv("VANTORHOME");
        gw::test::home();
        gw::test::start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    void SetUp() override {
        ASSERT_EQ(Gw_resrc.fontset_support, False);
        ASSERT_TRUE(press(find(wi_toplevel, "_fontsets_dlg_button")));
        ASSERT_TRUE(pump_until([] { return gw::test::is_viewable(wi_fontsets_dlg); }));
    }
    void TearDown() override {
        ::unsetenv("VANTORHOME");
        press(part("reset_button"));
        press(part("cancel_button"));
    }

    static Widget part(const char* name) { return find(wi_fontsets_dlg, name); }
    static std::string message() { return gw::label_of(part("msg_label")); }
    /// The rows, without what separates their columns.
    static std::vector<std::string> rows() { return gw::test::items(part("coverage_list")); }
    /// The dialog with this file of fontsets instead of the installation's.
    static void begin_with(const TempDir& root, const std::string& bytes) {
        root.write(std::string("lib/locale/") + LOCALE + "/VT_FONT_SETS/Vantor.fs", bytes);
        ::setenv("VANTORHOME", root.path().substr(0, root.path().size() - 1).c_str(), 1);
        ASSERT_TRUE(press(part("reset_button")));
    }
};

TEST_F(Coverage, TheInstallationsFileIsThereWithoutVantorhome) {
    ASSERT_NE(fontsetdlg_cb.file, nullptr);
    EXPECT_THAT(std::string(fontsetdlg_cb.file->get_path()),
                StartsWith("/usr/vantor/lib/locale/ja_JP.UTF-8/"));
    EXPECT_FALSE(fontsetdlg_cb.file->get_fontsets().is_empty());
    EXPECT_TRUE(XtIsManaged(part("choose_menu")));
}

TEST_F(Coverage, TheSampleIsInTheLanguageOfTheLocale) {
    const std::string text = fontsetsdlg::sample();
    EXPECT_EQ(text, gw::text_of_locale());
    EXPECT_THAT(text, StartsWith("Aa "));
    EXPECT_THAT(text, HasSubstr(::nl_langinfo(DAY_1)));
    EXPECT_THAT(text, HasSubstr("\xe6\x97\xa5\xe6\x9b\x9c\xe6\x97\xa5")) << "Sunday";
    EXPECT_GT(gw::test::ink(part("sample_text")), 300);
}

TEST_F(Coverage, ShowsWhichCharacterSetsAreCovered) {
    EXPECT_THAT(rows(), Contains(StartsWith("jisx0208.1983-0covered-")));
    EXPECT_EQ(message(), " ");
}

TEST_F(Coverage, ShowsWhichCharacterSetsHaveNoFontAndWhichFontsAreNotWanted) {
    const TempDir root;
    begin_with(root,
               "-set:definition,\\\n"
               "\t-misc-fixed-medium-r-normal--14-130-75-75-c-70-iso8859-1,\\\n"
               "\t-misc-fixed-medium-r-normal--13-120-75-75-c-70-iso8859-5\n");
    EXPECT_THAT(rows(), Contains(StartsWith("iso8859-1covered")));
    EXPECT_THAT(rows(), Contains("jisx0208.1983-0no font"));
    EXPECT_THAT(rows(),
                Contains("iso8859-5not wanted-misc-fixed-medium-r-normal--13-120-75-75-c-70-iso8859-5"));
}

TEST_F(Coverage, ASetThatTheServerCannotMakeSaysWhatIsMissing) {
    const TempDir root;
    begin_with(root, "-set:definition,\\\n\t-no-such-font-r-normal--14-130-75-75-c-140-jisx0208.1983-0\n");
    EXPECT_THAT(message(),
                StartsWith("The X server cannot make this fontset. Character sets without a font: "));
    EXPECT_THAT(message(), HasSubstr("jisx0208.1983-0"));
    EXPECT_THAT(rows(), Contains("jisx0208.1983-0no font"));
}

TEST_F(Coverage, WithoutFontsetsThereIsNoCoverage) {
    const TempDir root;
    begin_with(root, "! nothing\n");
    EXPECT_EQ(message(), "There is no font set");
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(fontsetsdlg::sample(), gw::text_of_locale());
}

}  // namespace
