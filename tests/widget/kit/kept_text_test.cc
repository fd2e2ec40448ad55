// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "app/kit/kept_text.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/samples/sample_field.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Shell.h>
#include <Xm/Xm.h>

namespace {

using gw::KeptText;
using gw::test::shown_text;
using gw::test::type_into;

// In the C locale, in which the tests run, a font set draws ASCII alone.
constexpr const char* LATIN = "-*-courier-medium-r-normal--*-120-75-75-*-*-iso8859-1";
const std::string WITH_OTHER_CHARACTERS = "caf\xc3\xa9 \xe6\x97\xa5";

class KeptTextTest : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        shell = XtCreatePopupShell("kept", topLevelShellWidgetClass, wi_toplevel, nullptr, 0);
        field = gw::text_field(shell, "field");
        ASSERT_EQ(display_text_in_fontset(field, LATIN, ""), 1);
        kept = KeptText(field);
    }
    void TearDown() override { XtDestroyWidget(shell); }
    Widget shell = nullptr;
    Widget field = nullptr;
    KeptText kept;
};

TEST_F(KeptTextTest, BeginsEmpty) {
    EXPECT_EQ(kept.text(), "");
    EXPECT_EQ(kept.field(), field);
}

TEST_F(KeptTextTest, KeepsWhatTheFieldDrops) {
    kept.show(WITH_OTHER_CHARACTERS);
    ASSERT_NE(shown_text(field), WITH_OTHER_CHARACTERS);
    EXPECT_EQ(kept.text(), WITH_OTHER_CHARACTERS);
}

TEST_F(KeptTextTest, IsWhatTheUserTypes) {
    kept.show(WITH_OTHER_CHARACTERS);
    type_into(field, "typed");
    EXPECT_EQ(kept.text(), "typed");
    type_into(field, "");
    EXPECT_EQ(kept.text(), "");
}

TEST_F(KeptTextTest, AnEditThatIsTakenBackLosesNothing) {
    kept.show(WITH_OTHER_CHARACTERS);
    const std::string shown = shown_text(field);
    type_into(field, shown + "x");
    type_into(field, shown);
    EXPECT_EQ(kept.text(), WITH_OTHER_CHARACTERS);
}

TEST_F(KeptTextTest, TheNextTextTakesThePlaceOfAnEdit) {
    kept.show("first");
    type_into(field, "typed");
    kept.show("second");
    EXPECT_EQ(kept.text(), "second");
    EXPECT_EQ(shown_text(field), "second");
}

// Another font drops other characters: the field's text changes, and the user has typed nothing.
TEST_F(KeptTextTest, ShownAgainInAnotherFontItIsStillWhole) {
    kept.show(WITH_OTHER_CHARACTERS);
    XtVaSetValues(field, XmNvalue, "caf", nullptr);
    kept.shown_again(WITH_OTHER_CHARACTERS);
    EXPECT_EQ(kept.text(), WITH_OTHER_CHARACTERS);
    type_into(field, "ca");
    EXPECT_EQ(kept.text(), "ca");
}

}  // namespace
