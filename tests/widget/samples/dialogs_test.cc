// SPDX-License-Identifier: MIT
//
// The attributes dialog and the dialog that sets the sample text.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/propsdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_text.h"
#include "support/font_maker.h"

#include "widget/dialogs_test_support.h"

#include <Xm/TextF.h>

namespace {

using namespace gw::test;

bool is_root() {
    return ::geteuid() == 0;
}

class Attributes : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        select(wi_hrn_list, {});
        remake();
    }
    void TearDown() override {
        if (attr_dlg_managed != 0) press(find(wi_attr_dlg, "close_button"));
        pump();
    }
    /// Makes the dialog again, as at the start of the program: it never shrinks after a long name.
    static void remake() {
        XtDestroyWidget(XtParent(wi_attr_dlg));
        pump();
        create_attr_dlg("attr_dlg", wi_toplevel);
    }
    static std::string value(Widget w) { return gw::label_of(w); }
};

TEST_F(Attributes, HasItsWidgetsFromTopToBottom) {
    const struct {
        const char* name;
        const char* text;
    } labels[] = {
        {"hrn_label", "Font: "},
        {"font_template.xlfd_label", "XLFD Name:"},
        {"font_template.loc_label", "Location:"},
        {"foundry_template.foundry_label", "Foundry:"},
        {"foundry_template.charset_label", "Character Set:"},
        {"foundry_template.spacing_label", "Spacing:"},
        {"alias_template.alias_label", "Alias:"},
        {"alias_template.xlfd_label", "XLFD Name:"},
        {"alias_template.loc_label", "Location:"},
        {"button_form.close_button", "Close"},
        {"button_form.help_dlg_button", "Help..."},
        {"msg_label", " "},
    };
    for (const auto& label : labels) {
        Widget w = find(wi_attr_dlg, label.name);
        ASSERT_NE(w, nullptr) << label.name;
        EXPECT_EQ(gw::label_of(w), label.text) << label.name;
    }
    for (const char* name :
         {"hrn_name", "separator1", "separator2", "separator3", "separator4", "_font_xlfd_scroll",
          "_font_loc_scroll", "_alias_xlfd_scroll", "_alias_loc_scroll", "foundry_name", "charset_name",
          "spacing_name", "alias_name", "xlfd_name", "loc_name"}) {
        EXPECT_NE(find(wi_attr_dlg, name), nullptr) << name;
    }
    EXPECT_EQ(title_of(wi_attr_dlg), "Glyph Warden - Font Attributes");
    for (const char* name : {"details_template", "separator5", "names_list", "chars_area", "package_label"})
        EXPECT_EQ(find(wi_attr_dlg, name), nullptr) << name << " is for windows that say more";
}

TEST_F(Attributes, ShowAFont) {
    const gw::Ref<GWFont> font(
        make_font(GWFont::TYPE1_FONT, "-adobe-times-bold-i-normal--0-0-0-0-M-0-iso8859-1"));
    give_file(*font, "t.pfa", "/nonexistent");
    EXPECT_EQ(is_attr_dlg_displayed(), 0);
    show_font_attributes(font.get(), nullptr);
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_attr_dlg); }));
    EXPECT_EQ(is_attr_dlg_displayed(), 1);
    EXPECT_EQ(value(wi_font_hrn_name), font->get_hrn_name());
    EXPECT_EQ(value(wi_font_xlfd_name), "-adobe-times-bold-i-normal--0-0-0-0-M-0-iso8859-1");
    EXPECT_EQ(value(wi_font_loc_name), "/nonexistent");
    EXPECT_EQ(value(wi_foundry_name), "adobe");
    EXPECT_EQ(value(wi_charset_name), " ISO-Latin-1");
    EXPECT_EQ(value(wi_spacing_name), "Monospace");
    for (Widget w : {wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name}) EXPECT_EQ(value(w), "");
    show_font_attributes(font.get(), "from the floppy");
    EXPECT_EQ(value(wi_font_loc_name), "from the floppy");
}

TEST_F(Attributes, NameTheSpacing) {
    const struct {
        const char* code;
        const char* word;
    } cases[] = {{"m", "Monospace"},
                 {"M", "Monospace"},
                 {"p", "Proportional"},
                 {"P", "Proportional"},
                 {"c", "CharCell"},
                 {"C", "CharCell"},
                 {"x", "x"},
                 {"", ""}};
    for (const auto& c : cases) {
        const gw::Ref<GWFont> font(
            make_font(GWFont::TYPE1_FONT, std::string("-a-b-c-r-n--0-0-0-0-") + c.code + "-0-iso8859-1"));
        show_font_attributes(font.get(), nullptr);
        EXPECT_EQ(value(wi_spacing_name), c.word) << c.code;
    }
}

TEST_F(Attributes, ShowAPostScriptFontByItsPostScriptName) {
    const gw::Ref<GWFont> font(new GWFont(GWFont::TYPE0_FONT));
    font->set_ps_name("Ryumin-Light");
    show_font_attributes(font.get(), nullptr);
    EXPECT_EQ(value(wi_font_xlfd_name), "Ryumin-Light");
    EXPECT_EQ(value(wi_foundry_name), " ");
    EXPECT_EQ(value(wi_spacing_name), " ");
    EXPECT_EQ(value(wi_charset_name), "");
    EXPECT_EQ(value(wi_font_loc_name), "");
}

TEST_F(Attributes, OfAFontWithoutXlfdNameHaveNoCharset) {
    const gw::Ref<GWFont> font(make_font(GWFont::BITMAP_FONT, "fixed"));
    show_font_attributes(font.get(), nullptr);
    EXPECT_EQ(value(wi_font_xlfd_name), "fixed");
    EXPECT_EQ(value(wi_charset_name), "");
    EXPECT_EQ(value(wi_foundry_name), " ");
}

TEST_F(Attributes, OfAnAliasEmptyWhatAFontShowed) {
    const gw::Ref<GWFont> font(
        make_font(GWFont::TYPE1_FONT, "-adobe-times-bold-i-normal--0-0-0-0-p-0-iso8859-1"));
    show_font_attributes(font.get(), "/somewhere/");
    const GWAlias alias("fixed", "-misc-fixed-medium-r-normal--13-120-75-75-c-60-iso8859-1", "/fonts/");
    show_alias_attributes(&alias);
    EXPECT_EQ(value(wi_alias_hrn_name), alias.get_hrn_name());
    EXPECT_EQ(value(wi_alias_xlfd_name), "fixed");
    EXPECT_EQ(value(wi_alias_loc_name), "/fonts/");
    EXPECT_EQ(value(wi_font_hrn_name), alias.get_font_hrn_name());
    EXPECT_EQ(value(wi_font_xlfd_name), "-misc-fixed-medium-r-normal--13-120-75-75-c-60-iso8859-1");
    for (Widget w : {wi_font_loc_name, wi_charset_name, wi_foundry_name, wi_spacing_name})
        EXPECT_EQ(value(w), "");
    clear_attributes();
    for (Widget w :
         {wi_alias_hrn_name, wi_alias_xlfd_name, wi_alias_loc_name, wi_font_hrn_name, wi_font_xlfd_name}) {
        EXPECT_EQ(value(w), "");
    }
    EXPECT_EQ(is_attr_dlg_displayed(), 1) << "emptying leaves the dialog where it is";
}

TEST_F(Attributes, FollowTheSelection) {
    select(wi_hrn_list, {outline_position()});
    pump();
    ASSERT_TRUE(press(find(wi_toplevel, "_attributes_button1")));
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_attr_dlg); }));
    EXPECT_NE(value(wi_font_xlfd_name).find("century schoolbook"), std::string::npos);
    select(wi_hrn_list, {bitmap_position()});
    pump();
    EXPECT_NE(value(wi_font_xlfd_name).find("courier"), std::string::npos);
    ASSERT_TRUE(choose(find(wi_toplevel, "_size_option_menu"), "10"));
    pump();
    EXPECT_NE(value(wi_font_xlfd_name).find("-100-"), std::string::npos)
        << "the chosen size: " << value(wi_font_xlfd_name);
    select(wi_hrn_list, {the_installed_hrn_count + 1});
    pump();
    EXPECT_EQ(value(wi_alias_hrn_name), the_alias_list.get_elem_at_pos(1)->get_hrn_name());
    select(wi_hrn_list, {1, 2});
    pump();
    EXPECT_EQ(value(wi_font_xlfd_name), "");
}

TEST_F(Attributes, CloseByButtonAndByCloseBox) {
    const gw::Ref<GWFont> font(make_font(GWFont::BITMAP_FONT, "fixed"));
    for (const bool by_box : {false, true}) {
        show_font_attributes(font.get(), nullptr);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_attr_dlg); }));
        if (by_box) {
            close_box(wi_attr_dlg);
        } else {
            EXPECT_TRUE(press(find(wi_attr_dlg, "close_button")));
        }
        pump();
        EXPECT_EQ(is_attr_dlg_displayed(), 0);
        EXPECT_FALSE(XtIsManaged(wi_attr_dlg));
    }
}

TEST_F(Attributes, LongNamesDoNotStretchTheDialog) {
    const gw::Ref<GWFont> font(make_font(GWFont::BITMAP_FONT, std::string(1500, 'n')));
    font->set_dir_name(("/" + std::string(1100, 'd')).c_str());
    font->set_preset_hrn_name("short");
    show_font_attributes(font.get(), nullptr);
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_attr_dlg); }));
    Dimension width = 0;
    XtVaGetValues(wi_attr_dlg, XmNwidth, &width, nullptr);
    EXPECT_LE(static_cast<int>(width), 1024);
    EXPECT_EQ(value(wi_font_xlfd_name).size(), 1500U);
}

TEST_F(Attributes, TheDialogKeepsItsSizeFromFontToFont) {
    Dimension width = 0;
    Dimension height = 0;
    const auto keeps_size = [&] {
        pump();
        Dimension now_width = 0;
        Dimension now_height = 0;
        XtVaGetValues(XtParent(wi_attr_dlg), XmNwidth, &now_width, XmNheight, &now_height, nullptr);
        return width == now_width && height == now_height;
    };
    const auto note_size = [&] {
        pump();
        XtVaGetValues(XtParent(wi_attr_dlg), XmNwidth, &width, XmNheight, &height, nullptr);
    };
    const gw::Ref<GWFont> plain(make_bitmap("courier", "120"));
    show_font_attributes(plain.get(), "/somewhere/");
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_attr_dlg); }));
    note_size();
    const gw::Ref<GWFont> of_usual_length(make_bitmap(std::string(30, 'f'), "120"));
    show_font_attributes(of_usual_length.get(), std::string(1100, 'd').c_str());
    EXPECT_TRUE(keeps_size()) << "a font's " << of_usual_length->get_hrn_name();
    const GWAlias alias(std::string(30, 'a').c_str(), bitmap_xlfd("x", "120", "75").c_str(), "/fonts/");
    show_alias_attributes(&alias);
    EXPECT_TRUE(keeps_size()) << "an alias";
    clear_attributes();
    EXPECT_TRUE(keeps_size()) << "no values";
    const gw::Ref<GWFont> named_long(make_bitmap(std::string(90, 'm'), "120"));
    show_font_attributes(named_long.get(), nullptr);
    EXPECT_FALSE(keeps_size()) << "a long name is readable";
    note_size();
    show_font_attributes(plain.get(), nullptr);
    EXPECT_TRUE(keeps_size()) << "and the dialog does not shrink";
}

class Properties : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        ::unlink(home().file(".glyphwdrc").c_str());
        sample_text = "Aa Bb Cc Xx Yy Zz 0123456789";
        start_props_dlg();
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_props_dlg); }));
        text = find(wi_props_dlg, "sample_textField");
        ASSERT_NE(text, nullptr);
    }
    void TearDown() override { XtUnmanageChild(wi_props_dlg); }
    static bool click(const char* button) {
        const bool pressed = press(find(wi_props_dlg, button));
        pump();
        return pressed;
    }
    Widget text = nullptr;
};

TEST_F(Properties, HasItsTitleLabelAndButtons) {
    EXPECT_EQ(title_of(wi_props_dlg), "Glyph Warden - Set Sample Text");
    EXPECT_EQ(gw::label_of(find(wi_props_dlg, "sample_label")), "Sample Text to Display:");
    for (const auto& [name, label] : {std::pair<const char*, const char*>{"ok_button", "Ok"},
                                      {"apply_button", "Apply"},
                                      {"reset_button", "Reset"},
                                      {"cancel_button", "Cancel"},
                                      {"help_button", "Help..."}}) {
        EXPECT_EQ(gw::label_of(find(wi_props_dlg, name)), label) << name;
    }
}

TEST_F(Properties, ShowsTheKeptTextWhenItAppearsAndOnReset) {
    EXPECT_EQ(shown_text(text), "Aa Bb Cc Xx Yy Zz 0123456789");
    type_into(text, "something else");
    ASSERT_TRUE(click("reset_button"));
    EXPECT_EQ(shown_text(text), "Aa Bb Cc Xx Yy Zz 0123456789");
    type_into(text, "something else");
    ASSERT_TRUE(click("cancel_button"));
    EXPECT_FALSE(XtIsManaged(wi_props_dlg));
    start_props_dlg();
    EXPECT_EQ(shown_text(text), "Aa Bb Cc Xx Yy Zz 0123456789");
}

TEST_F(Properties, ApplyKeepsTheTextForAUser) {
    type_into(text, "Applied text");
    ASSERT_TRUE(click("apply_button"));
    EXPECT_TRUE(XtIsManaged(wi_props_dlg));
    EXPECT_EQ(home().read(".glyphwdrc"), is_root() ? "" : "SampleText:Applied text");
    EXPECT_EQ(sample_text, is_root() ? "Aa Bb Cc Xx Yy Zz 0123456789" : "Applied text");
}

TEST_F(Properties, OkAppliesAndCloses) {
    type_into(text, "Final text");
    ASSERT_TRUE(click("ok_button"));
    EXPECT_FALSE(XtIsManaged(wi_props_dlg));
    EXPECT_EQ(sample_text, is_root() ? "Aa Bb Cc Xx Yy Zz 0123456789" : "Final text");
}

TEST_F(Properties, WhatTheFieldCannotShowIsNotLost) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    const std::string bytes = "SampleText:caf\xc3\xa9 \xe6\x97\xa5";
    home().write(".glyphwdrc", bytes + '\n');
    ASSERT_TRUE(click("reset_button"));
    ASSERT_TRUE(click("apply_button"));
    EXPECT_EQ(home().read(".glyphwdrc"), bytes) << "the field shows " << shown_text(text);
    type_into(text, "typed");
    ASSERT_TRUE(click("ok_button"));
    EXPECT_EQ(home().read(".glyphwdrc"), "SampleText:typed");
}

TEST_F(Properties, TheKeysOfADialogAreTheButtons) {
    Widget focus = nullptr;
    Widget default_button = nullptr;
    Widget cancel_button = nullptr;
    XtVaGetValues(wi_props_dlg, XmNinitialFocus, &focus, XmNdefaultButton, &default_button, XmNcancelButton,
                  &cancel_button, nullptr);
    EXPECT_EQ(focus, text);
    EXPECT_EQ(default_button, find(wi_props_dlg, "ok_button"));
    EXPECT_EQ(cancel_button, find(wi_props_dlg, "cancel_button"));
    XEvent key = {};
    key.xkey.type = KeyPress;
    key.xkey.display = display;
    key.xkey.window = XtWindow(text);
    type_into(text, "Not kept");
    XtCallActionProc(text, "process-cancel", &key, nullptr, 0);
    EXPECT_FALSE(XtIsManaged(wi_props_dlg));
    EXPECT_FALSE(home().exists(".glyphwdrc"));
    start_props_dlg();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_props_dlg); }));
    type_into(text, "Kept");
    XtCallActionProc(text, "activate", &key, nullptr, 0);
    EXPECT_FALSE(XtIsManaged(wi_props_dlg));
    EXPECT_EQ(home().read(".glyphwdrc"), is_root() ? "" : "SampleText:Kept");
}

TEST_F(Properties, TheCloseBoxCancels) {
    type_into(text, "Not kept");
    close_box(wi_props_dlg);
    pump();
    EXPECT_FALSE(XtIsManaged(wi_props_dlg));
    EXPECT_FALSE(home().exists(".glyphwdrc"));
}

}  // namespace
