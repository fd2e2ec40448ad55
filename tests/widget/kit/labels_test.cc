// SPDX-License-Identifier: MIT
//
// Labels and buttons whose texts change: they have room for them, whatever the font is.
#include <gtest/gtest.h>

#include <string>

#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <Xm/Form.h>

namespace {

using gw::Attach;
using gw::Message;

struct Size {
    Dimension width;
    Dimension height;
};

Size size_of(Widget w) {
    Size size = {};
    XtVaGetValues(w, XmNwidth, &size.width, XmNheight, &size.height, nullptr);
    return size;
}

Size natural_size(Widget w) {
    XtWidgetGeometry natural = {};
    XtQueryGeometry(w, nullptr, &natural);
    return {natural.width, natural.height};
}

constexpr const char* SHORT_TEXT = "Ok";
constexpr const char* LONG_TEXT = "Leave\nOriginals";

enum class Along { WIDTH, HEIGHT };

/// A dialog in which a button and an area are side by side, so that they are equally high, or one above the
/// other, so that they are equally wide. The area has the size that LONG_TEXT needs in the button.
class Labels : public testing::TestWithParam<Along> {
  protected:
    void SetUp() override {
        gw::test::start_program();
        dialog_ = gw::form_dialog(wi_toplevel, "kit_dlg", Message::PROPS_TITLE);
        area_ = gw::form(dialog_, "area");
        button_ = gw::push_button(dialog_, "button", Message::PRECONFLICT_OK);
        gw::set_label(button_, LONG_TEXT);
        needed_ = natural_size(button_);
        gw::set_label(button_, SHORT_TEXT);
        set_area(needed_);
        place();
        XtManageChild(dialog_);
        ASSERT_TRUE(gw::test::pump_until([this] { return gw::test::is_viewable(dialog_); }));
        ASSERT_EQ(along(size_of(button_)), along(needed_));
        ASSERT_LT(along(natural_size(button_)), along(needed_));
    }
    void TearDown() override {
        XtDestroyWidget(XtParent(dialog_));
        gw::test::pump();
    }
    static Dimension along(Size size) { return GetParam() == Along::WIDTH ? size.width : size.height; }
    void set_area(Size size) const {
        XtVaSetValues(area_, XmNwidth, size.width, XmNheight, size.height, nullptr);
    }

    Widget dialog_ = nullptr;
    Widget area_ = nullptr;
    Widget button_ = nullptr;
    Size needed_ = {};

  private:
    void place() const {
        if (GetParam() == Along::WIDTH) {
            Attach(area_).top_form(0).sides(0);
            Attach(button_).below(area_, 0).sides(0);
        } else {
            Attach(area_).top_form(0).bottom_form(0).left_form(0);
            Attach(button_).top_form(0).bottom_form(0).right_of(area_, 0);
        }
    }
};

// A text that fits the button as it is gave the form no reason to remember its size. When the dialog became
// smaller, the button got the size of its old text.
TEST_P(Labels, ATextThatFitsExactlyIsShownWhenTheDialogBecomesSmaller) {
    gw::set_label(button_, LONG_TEXT);
    EXPECT_EQ(along(size_of(button_)), along(needed_));
    set_area({10, 10});
    EXPECT_EQ(along(size_of(button_)), along(needed_));
    EXPECT_EQ(along(size_of(dialog_)), along(needed_));
}

TEST_P(Labels, TheDialogBecomesSmallerWithAShorterText) {
    gw::set_label(button_, LONG_TEXT);
    set_area({10, 10});
    gw::set_label(button_, SHORT_TEXT);
    EXPECT_LT(along(size_of(dialog_)), along(needed_));
    EXPECT_EQ(along(size_of(button_)), along(natural_size(button_)));
}

INSTANTIATE_TEST_SUITE_P(Of, Labels, testing::Values(Along::WIDTH, Along::HEIGHT),
                         [](const testing::TestParamInfo<Along>& way) {
                             return way.param == Along::WIDTH ? "Width" : "Height";
                         });

}  // namespace
