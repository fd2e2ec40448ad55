// SPDX-License-Identifier: MIT
//
// The main window: its widgets, which of them are sensitive when, what a selection shows, and the layout. The
// tests list their own fonts and aliases, so that sizes and positions are known. Tests of the window's
// creation make it again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "app/common/status_line.h"
#include "app/doctor/doctordlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/propsdlg.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "support/temp_dir.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <Xm/CascadeB.h>
#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/MainW.h>
#include <Xm/MessageB.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/Separator.h>
#include <Xm/TextF.h>

namespace {

using gw::test::find;
using gw::test::press;
using gw::test::select;
using testing::ElementsAre;

constexpr int FONTS = 3;
constexpr int ALIASES = 2;
constexpr int ORDINARY_UID = 1000;

class MainWindowTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { gw::test::start_program(); }

    void SetUp() override { put_own_fonts(); }

    void TearDown() override {
        Gw_resrc.fontset_support = False;
        Gw_resrc.printer_support = False;
        uid = static_cast<int>(::geteuid());
        user_is_root = uid == 0 ? 1 : 0;
        if (remade_) remake();
        XtUnmanageChild(wi_props_dlg);
        press(find(wi_attr_dlg, "close_button"));
    }

    /// Three fonts, of about 3, 5 and 9 kilobytes, and two aliases, instead of the installation's.
    void put_own_fonts() {
        the_installed_hrn_list.clear();
        gw::delete_elements(the_alias_list);
        add_font("alpha", 3000);
        add_font("beta", 5000);
        add_font("gamma", 9000);
        the_alias_list.insert(new GWAlias("my-alias", font_name("alpha").c_str(), dir_.c_str()));
        the_alias_list.insert(new GWAlias("your-alias", font_name("beta").c_str(), dir_.c_str()));
        the_installed_hrn_count = the_installed_hrn_list.get_count();
        the_alias_count = the_alias_list.get_count();
        update_wi_installed_hrn_list();
        select(wi_hrn_list, {});
    }

    static std::string font_name(const std::string& family) {
        return "-test-" + family + "-medium-r-normal--0-0-0-0-p-0-iso8859-1";
    }

    void add_font(const std::string& family, std::size_t bytes) {
        const std::string file = family + ".pfa";
        dir_.write(file, std::string(bytes, 'x'));
        auto* font = new GWFont(GWFont::TYPE1_FONT);
        font->set_xlfd_name(font_name(family).c_str());
        font->set_dir_name(dir_.c_str());
        auto files = std::make_unique<GW_FSPEC_LIST>();
        files->append(new GW_FILE_SPEC(file.c_str(), dir_.c_str(), gw::FILE_TYPE_REGULAR, gw::EXT_PFA));
        font->set_font_file_list(std::move(files));
        the_installed_hrn_list.add_font(font);
    }

    /// Makes the window again, as start-up would with the current resources and user.
    void remake() {
        XtDestroyWidget(wi_mainwindow);
        gw::test::pump();
        create_font_admin_main_window();
        gw::test::pump();
        remade_ = true;
    }
    void remake_for_user(int user) {
        uid = user;
        user_is_root = user == 0 ? 1 : 0;
        remake();
    }

    static std::string disk_space() { return gw::label_of(find(wi_mainwindow, "_disk_space_val")); }
    static std::string kilobytes(std::initializer_list<unsigned> positions) {
        unsigned sum = 0;
        for (const unsigned position : positions) sum += the_installed_hrn_list.get_disk_space(position);
        return std::to_string(sum) + " Kbytes";
    }
    static bool is_sensitive(const char* name) {
        Widget widget = find(wi_mainwindow, name);
        EXPECT_NE(widget, nullptr) << name;
        return widget != nullptr && XtIsSensitive(widget) != False;
    }
    static std::string value(const char* path) { return gw::label_of(find(wi_attr_dlg, path)); }

    gw::test::TempDir dir_;

  private:
    bool remade_ = false;
};

// --- the tree ----------------------------------------------------------------

struct Row {
    const char* path;  ///< below the window; the last name is the widget's
    WidgetClass kind;
    const char* parent;
    const char* text;  ///< null: none
};

TEST_F(MainWindowTest, HasEveryWidgetWithItsClassParentAndText) {
    static const Row ROWS[] = {
        {"menuBar", xmRowColumnWidgetClass, "mainWindow", nullptr},
        {"_fonts_cascade", xmCascadeButtonWidgetClass, "menuBar", "Fonts"},
        {"_options_cascade", xmCascadeButtonWidgetClass, "menuBar", "Options"},
        {"_printer_cascade", xmCascadeButtonWidgetClass, "menuBar", "Print Services"},
        {"_help_cascade", xmCascadeButtonWidgetClass, "menuBar", "Help"},
        {"_fonts_pulldown", xmRowColumnWidgetClass, nullptr, nullptr},
        {"_fonts_pulldown._delete_button", xmPushButtonWidgetClass, "_fonts_pulldown", "Delete"},
        {"_fonts_pulldown._install_dlg_button", xmPushButtonWidgetClass, "_fonts_pulldown", "Install..."},
        {"_fonts_pulldown._attributes_dlg_button", xmPushButtonWidgetClass, "_fonts_pulldown",
         "Attributes..."},
        {"_fonts_pulldown.separator", xmSeparatorWidgetClass, "_fonts_pulldown", nullptr},
        {"_fonts_pulldown._exit_button", xmPushButtonWidgetClass, "_fonts_pulldown", "Exit"},
        {"_options_pulldown", xmRowColumnWidgetClass, nullptr, nullptr},
        {"_options_pulldown._modify_fp_dlg_button", xmPushButtonWidgetClass, "_options_pulldown",
         "Modify Font Path..."},
        {"_options_pulldown._fontsets_dlg_button", xmPushButtonWidgetClass, "_options_pulldown",
         "Fontsets..."},
        {"_options_pulldown._properties_dlg_button", xmPushButtonWidgetClass, "_options_pulldown",
         "Set Sample Text..."},
        {"_printer_pulldown", xmRowColumnWidgetClass, nullptr, nullptr},
        {"_printer_pulldown._pr_install_dlg_button", xmPushButtonWidgetClass, "_printer_pulldown",
         "Install Fonts..."},
        {"_printer_pulldown._pr_delete_dlg_button", xmPushButtonWidgetClass, "_printer_pulldown",
         "Delete Fonts..."},
        {"_printer_pulldown._pr_modify_fp_dlg_button", xmPushButtonWidgetClass, "_printer_pulldown",
         "Modify Font Path..."},
        {"_help_pulldown", xmRowColumnWidgetClass, nullptr, nullptr},
        {"_help_pulldown._help_dlg_button", xmPushButtonWidgetClass, "_help_pulldown", "Help..."},
        {"_help_pulldown._about_dlg_button", xmPushButtonWidgetClass, "_help_pulldown",
         "About Glyph Warden..."},
        {"form", xmFormWidgetClass, "mainWindow", nullptr},
        {"FontListTemplate", xmFormWidgetClass, "form", nullptr},
        {"_fontlist_label", xmLabelWidgetClass, "FontListTemplate", "Currently Installed Fonts:"},
        {"_hrn_list", xmListWidgetClass, "_hrn_listSW", nullptr},
        {"_sample_textfield", xmTextFieldWidgetClass, "FontListTemplate", nullptr},
        {"_size_option_label", xmLabelWidgetClass, "FontListTemplate", "Sample Text Point Size: "},
        {"_size_option_menu", xmRowColumnWidgetClass, "FontListTemplate", nullptr},
        {"sizeMenu", xmRowColumnWidgetClass, nullptr, nullptr},
        {"_res_option_label", xmLabelWidgetClass, "FontListTemplate", "Screen Resolution: "},
        {"_res_option_menu", xmRowColumnWidgetClass, "FontListTemplate", nullptr},
        {"resMenu", xmRowColumnWidgetClass, nullptr, nullptr},
        {"_disk_space_label", xmLabelWidgetClass, "form", "Total disk space occupied : "},
        {"_disk_space_val", xmLabelWidgetClass, "form", nullptr},
        {"_command_seperator", xmSeparatorWidgetClass, "form", nullptr},
        {"_command_form", xmFormWidgetClass, "form", nullptr},
        {"_command_form._delete_button", xmPushButtonWidgetClass, "_command_form", "Delete"},
        {"_command_form._attributes_button1", xmPushButtonWidgetClass, "_command_form", "Attributes..."},
        {"_status_message", xmLabelWidgetClass, "mainWindow", " "},
    };
    EXPECT_EQ(XtName(wi_mainwindow), std::string("mainWindow"));
    EXPECT_EQ(XtClass(wi_mainwindow), xmMainWindowWidgetClass);
    EXPECT_EQ(XtParent(wi_mainwindow), wi_toplevel);
    EXPECT_EQ(gw::test::title_of(wi_mainwindow), "Glyph Warden");
    for (const Row& row : ROWS) {
        SCOPED_TRACE(row.path);
        Widget widget = find(wi_mainwindow, row.path);
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(XtClass(widget), row.kind) << "it is of another class";
        if (row.parent != nullptr) {
            EXPECT_EQ(XtName(XtParent(widget)), std::string(row.parent));
        }
        if (row.text != nullptr) {
            EXPECT_EQ(gw::label_of(widget), row.text);
        }
    }
    EXPECT_EQ(get_constraint_widget(wi_hrn_list, find(wi_mainwindow, "FontListTemplate")),
              XtParent(wi_hrn_list));
}

TEST_F(MainWindowTest, HasNoToolsUnlessWindowsFindMissingFonts) {
    ASSERT_FALSE(gw::window_policy().finds_missing_fonts());
    for (const char* name : {"_tools_cascade", "_tools_pulldown", "_why_button"})
        EXPECT_EQ(find(wi_mainwindow, name), nullptr) << name;
    EXPECT_EQ(wi_doctor_dlg, nullptr);
    EXPECT_EQ(XtNameToWidget(wi_toplevel, "*doctor_dlg"), nullptr);
}

std::vector<Widget> children_of(Widget parent) {
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(parent, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    return {children, children + count};
}

std::vector<std::string> managed_names(Widget parent) {
    std::vector<std::string> names;
    for (Widget child : children_of(parent)) {
        if (XtIsManaged(child)) names.emplace_back(XtName(child));
    }
    return names;
}

TEST_F(MainWindowTest, TheMenusHaveTheirEntriesInOrder) {
    Gw_resrc.fontset_support = True;
    Gw_resrc.printer_support = True;
    remake();
    EXPECT_THAT(managed_names(find(wi_mainwindow, "menuBar")),
                ElementsAre("_fonts_cascade", "_options_cascade", "_printer_cascade", "_help_cascade"));
    EXPECT_THAT(managed_names(find(wi_mainwindow, "_fonts_pulldown")),
                ElementsAre("_delete_button", "_install_dlg_button", "_attributes_dlg_button", "separator",
                            "_exit_button"));
    EXPECT_THAT(managed_names(find(wi_mainwindow, "_options_pulldown")),
                ElementsAre("_modify_fp_dlg_button", "_fontsets_dlg_button", "_properties_dlg_button"));
    EXPECT_THAT(managed_names(find(wi_mainwindow, "_printer_pulldown")),
                ElementsAre("_pr_install_dlg_button", "_pr_delete_dlg_button", "_pr_modify_fp_dlg_button"));
    EXPECT_THAT(managed_names(find(wi_mainwindow, "_help_pulldown")),
                ElementsAre("_help_dlg_button", "_about_dlg_button"));
}

TEST_F(MainWindowTest, EveryEntryHasAMnemonicOfItsOwn) {
    for (const char* menu :
         {"menuBar", "_fonts_pulldown", "_options_pulldown", "_printer_pulldown", "_help_pulldown"}) {
        std::set<KeySym> seen;
        for (Widget entry : children_of(find(wi_mainwindow, menu))) {
            if (XtClass(entry) == xmSeparatorWidgetClass) continue;
            KeySym mnemonic = NoSymbol;
            XtVaGetValues(entry, XmNmnemonic, &mnemonic, nullptr);
            EXPECT_NE(mnemonic, KeySym{NoSymbol}) << menu << '.' << XtName(entry);
            EXPECT_TRUE(seen.insert(mnemonic).second)
                << menu << '.' << XtName(entry) << " shares its mnemonic";
            // A mnemonic that the text does not hold would not be underlined.
            EXPECT_NE(gw::label_of(entry).find(static_cast<char>(mnemonic)), std::string::npos)
                << menu << '.' << XtName(entry);
        }
    }
}

TEST_F(MainWindowTest, EveryCascadeOpensItsMenu) {
    for (const char* menu : {"fonts", "options", "printer", "help"}) {
        Widget opened = nullptr;
        XtVaGetValues(find(wi_mainwindow, std::string("_") + menu + "_cascade"), XmNsubMenuId, &opened,
                      nullptr);
        EXPECT_EQ(opened, find(wi_mainwindow, std::string("_") + menu + "_pulldown")) << menu;
    }
}

TEST_F(MainWindowTest, WithoutTheirResourcesThePrinterMenuAndTheFontsetsEntryAreAbsent) {
    EXPECT_FALSE(XtIsManaged(find(wi_mainwindow, "_printer_cascade")));
    EXPECT_FALSE(XtIsManaged(find(wi_mainwindow, "_fontsets_dlg_button")));
    EXPECT_THAT(managed_names(find(wi_mainwindow, "_printer_pulldown")), ElementsAre());
}

TEST_F(MainWindowTest, EachResourceBringsItsOwn) {
    Gw_resrc.fontset_support = True;
    remake();
    EXPECT_TRUE(XtIsManaged(find(wi_mainwindow, "_fontsets_dlg_button")));
    EXPECT_FALSE(XtIsManaged(find(wi_mainwindow, "_printer_cascade")));
    Gw_resrc.fontset_support = False;
    Gw_resrc.printer_support = True;
    remake();
    EXPECT_FALSE(XtIsManaged(find(wi_mainwindow, "_fontsets_dlg_button")));
    EXPECT_TRUE(XtIsManaged(find(wi_mainwindow, "_printer_cascade")));
}

// --- the list ----------------------------------------------------------------

TEST_F(MainWindowTest, ListsTheFontsAndBehindThemTheAliases) {
    std::vector<std::string> expected;
    for (const GWHRNElement* element : the_installed_hrn_list) expected.emplace_back(element->get_name());
    for (const GWAlias* alias : the_alias_list) expected.emplace_back(alias->get_hrn_name());
    ASSERT_EQ(expected.size(), std::size_t{FONTS + ALIASES});
    EXPECT_EQ(gw::test::items(wi_hrn_list), expected);
    EXPECT_THAT(gw::selected_positions(wi_hrn_list), ElementsAre());
}

TEST_F(MainWindowTest, RefillingTheListSelectsNothing) {
    select(wi_hrn_list, {1, 2});
    update_wi_installed_hrn_list();
    EXPECT_THAT(gw::selected_positions(wi_hrn_list), ElementsAre());
    EXPECT_EQ(gw::test::items(wi_hrn_list).size(), std::size_t{FONTS + ALIASES});
}

TEST_F(MainWindowTest, ANewWindowSelectsNothingAndOffersNothing) {
    remake();
    EXPECT_THAT(gw::selected_positions(wi_hrn_list), ElementsAre());
    EXPECT_EQ(gw::test::items(wi_hrn_list).size(), std::size_t{FONTS + ALIASES});
    for (const char* name : {"_fonts_pulldown._delete_button", "_command_form._delete_button",
                             "_fonts_pulldown._attributes_dlg_button", "_attributes_button1",
                             "_size_option_menu", "_res_option_menu"}) {
        EXPECT_FALSE(is_sensitive(name)) << name;
    }
    EXPECT_THAT(gw::test::choices(find(wi_mainwindow, "sizeMenu")), ElementsAre("8"));
    EXPECT_THAT(gw::test::choices(find(wi_mainwindow, "resMenu")), ElementsAre("75 X 75"));
    EXPECT_EQ(gw::test::chosen(find(wi_mainwindow, "_size_option_menu")), "8");
    EXPECT_EQ(gw::test::chosen(find(wi_mainwindow, "_res_option_menu")), "75 X 75");
    unsigned char policy = 0;
    XtVaGetValues(wi_hrn_list, XmNselectionPolicy, &policy, nullptr);
    EXPECT_EQ(policy, XmEXTENDED_SELECT);
}

TEST_F(MainWindowTest, NothingIsInstalled) {
    the_installed_hrn_list.clear();
    gw::delete_elements(the_alias_list);
    the_installed_hrn_count = the_alias_count = 0;
    remake();
    EXPECT_THAT(gw::test::items(wi_hrn_list), ElementsAre());
    select(wi_hrn_list, {});
    EXPECT_EQ(disk_space(), "0 Kbytes");
    EXPECT_FALSE(is_sensitive("_attributes_button1"));
    XtCallCallbacks(find(wi_mainwindow, "_attributes_button1"), XmNactivateCallback, nullptr);
    EXPECT_EQ(is_attr_dlg_displayed(), 0);
}

// --- what may be used --------------------------------------------------------

TEST(SelectionRightsTest, DeleteNeedsASelectionAndAttributesExactlyOne) {
    struct Case {
        int selected;
        bool may_delete;
        bool may_show_attributes;
    };
    static constexpr Case CASES[] = {
        {0, false, false}, {1, true, true}, {2, true, false}, {500, true, false}};
    for (const Case& c : CASES) {
        const gw::SelectionRights rights = gw::selection_rights(c.selected);
        EXPECT_EQ(rights.may_delete, c.may_delete) << c.selected;
        EXPECT_EQ(rights.may_show_attributes, c.may_show_attributes) << c.selected;
    }
}

TEST_F(MainWindowTest, AttributesAreForExactlyOneEntry) {
    for (const char* name : {"_fonts_pulldown._attributes_dlg_button", "_attributes_button1"}) {
        select(wi_hrn_list, {2});
        EXPECT_TRUE(is_sensitive(name)) << name;
        select(wi_hrn_list, {1, 2});
        EXPECT_FALSE(is_sensitive(name)) << name;
        select(wi_hrn_list, {FONTS + 1});
        EXPECT_TRUE(is_sensitive(name)) << name;
        select(wi_hrn_list, {});
        EXPECT_FALSE(is_sensitive(name)) << name;
    }
}

TEST_F(MainWindowTest, DeleteIsForAnySelectionOnceThereIsSomethingBehindIt) {
    for (const char* name : {"_fonts_pulldown._delete_button", "_command_form._delete_button"}) {
        Widget control = find(wi_mainwindow, name);
        const bool acts = XtHasCallbacks(control, XmNactivateCallback) == XtCallbackHasSome;
        select(wi_hrn_list, {});
        EXPECT_FALSE(is_sensitive(name)) << name;
        select(wi_hrn_list, {1});
        EXPECT_EQ(is_sensitive(name), acts) << name;
        select(wi_hrn_list, {1, 2});
        EXPECT_EQ(is_sensitive(name), acts) << name;
    }
}

TEST_F(MainWindowTest, WhatDoesNothingIsInsensitive) {
    Gw_resrc.fontset_support = True;
    Gw_resrc.printer_support = True;
    for (const int user : {0, ORDINARY_UID}) {
        remake_for_user(user);
        select(wi_hrn_list, {1});
        int seen = 0;
        for (const char* menu : {"_fonts_pulldown", "_options_pulldown", "_printer_pulldown",
                                 "_help_pulldown", "_command_form"}) {
            for (Widget entry : children_of(find(wi_mainwindow, menu))) {
                if (XtClass(entry) != xmPushButtonWidgetClass) continue;
                ++seen;
                if (XtHasCallbacks(entry, XmNactivateCallback) != XtCallbackHasSome) {
                    EXPECT_FALSE(XtIsSensitive(entry)) << menu << '.' << XtName(entry) << ", user " << user;
                }
            }
        }
        EXPECT_EQ(seen, 14);
        EXPECT_TRUE(is_sensitive("_exit_button"));
    }
}

TEST_F(MainWindowTest, TheSuperuserCannotSetTheSampleText) {
    remake_for_user(0);
    EXPECT_FALSE(is_sensitive("_properties_dlg_button"));
    remake_for_user(ORDINARY_UID);
    EXPECT_TRUE(is_sensitive("_properties_dlg_button"));
    EXPECT_FALSE(XtIsManaged(wi_props_dlg));
    EXPECT_TRUE(press(find(wi_mainwindow, "_properties_dlg_button")));
    EXPECT_TRUE(XtIsManaged(wi_props_dlg));
}

TEST_F(MainWindowTest, AnOrdinaryUserIsToldThatOnlyRootCanModifyTheFontPath) {
    remake_for_user(ORDINARY_UID);
    Widget entry = find(wi_mainwindow, "_modify_fp_dlg_button");
    ASSERT_TRUE(press(entry));
    Widget dialog = find(wi_toplevel, "info dlg");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(gw::test::is_viewable(dialog));
    EXPECT_EQ(gw::test::title_of(dialog), "Glyph Warden - Information");
    EXPECT_EQ(gw::label_of(XmMessageBoxGetChild(dialog, XmDIALOG_MESSAGE_LABEL)),
              "Only root can modify font path");
    unsigned char kind = 0;
    XtVaGetValues(dialog, XmNdialogType, &kind, nullptr);
    EXPECT_EQ(kind, XmDIALOG_INFORMATION);
    EXPECT_FALSE(XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_HELP_BUTTON)));
    EXPECT_FALSE(XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_CANCEL_BUTTON)));
    EXPECT_TRUE(XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_OK_BUTTON)));

    ASSERT_TRUE(press(XmMessageBoxGetChild(dialog, XmDIALOG_OK_BUTTON)));
    EXPECT_FALSE(XtIsManaged(dialog));
    ASSERT_TRUE(press(entry));
    EXPECT_TRUE(XtIsManaged(dialog)) << "it is kept for later use";
    gw::test::close_box(dialog);
    EXPECT_FALSE(XtIsManaged(dialog));
}

// --- disk space --------------------------------------------------------------

TEST_F(MainWindowTest, TheDiskSpaceOfTheSelectionIsSummed) {
    EXPECT_GT(the_installed_hrn_list.get_disk_space(1), 0U);
    select(wi_hrn_list, {1});
    EXPECT_EQ(disk_space(), kilobytes({1}));
    select(wi_hrn_list, {1, 2});
    EXPECT_EQ(disk_space(), kilobytes({1, 2}));
    select(wi_hrn_list, {});
    EXPECT_EQ(disk_space(), "0 Kbytes");
}

TEST_F(MainWindowTest, TheLastFontEndsTheSumWithoutBeingAdded) {
    select(wi_hrn_list, {FONTS});
    EXPECT_EQ(disk_space(), "0 Kbytes");
    select(wi_hrn_list, {2, FONTS});
    EXPECT_EQ(disk_space(), kilobytes({2}));
    select(wi_hrn_list, {1, 2, FONTS, FONTS + 1});
    EXPECT_EQ(disk_space(), kilobytes({1, 2}));
}

TEST_F(MainWindowTest, AliasesTakeNoSpace) {
    select(wi_hrn_list, {FONTS + 1});
    EXPECT_EQ(disk_space(), "0 Kbytes");
    select(wi_hrn_list, {FONTS + 1, FONTS + 2});
    EXPECT_EQ(disk_space(), "0 Kbytes");
    select(wi_hrn_list, {FONTS + 2, 1});
    EXPECT_EQ(disk_space(), kilobytes({1})) << "in ascending order, whatever was selected first";
}

// --- attributes --------------------------------------------------------------

TEST_F(MainWindowTest, AttributesShowsTheSelectedFont) {
    for (const char* control : {"_fonts_pulldown._attributes_dlg_button", "_attributes_button1"}) {
        select(wi_hrn_list, {2});
        ASSERT_TRUE(press(find(wi_mainwindow, control))) << control;
        EXPECT_EQ(is_attr_dlg_displayed(), 1) << control;
        EXPECT_EQ(value("hrn_name"), the_installed_hrn_list.get_elem_at_pos(2)->get_name()) << control;
        EXPECT_EQ(value("_font_loc_scroll*loc_name"), dir_.path()) << control;
        EXPECT_EQ(value("alias_name"), "") << control;
        press(find(wi_attr_dlg, "close_button"));
    }
}

// The last font's position already counts as an alias; the alias that is shown is the first one.
TEST_F(MainWindowTest, AttributesTakesTheLastFontForTheFirstAlias) {
    select(wi_hrn_list, {FONTS});
    ASSERT_TRUE(press(find(wi_mainwindow, "_attributes_button1")));
    EXPECT_EQ(value("alias_name"), the_alias_list.get_elem_at_pos(1)->get_hrn_name());
    EXPECT_EQ(value("_alias_xlfd_scroll*xlfd_name"), the_alias_list.get_elem_at_pos(1)->get_alias_name());
}

TEST_F(MainWindowTest, AttributesTakesAnAliasForTheNext) {
    select(wi_hrn_list, {FONTS + 1});
    ASSERT_TRUE(press(find(wi_mainwindow, "_attributes_button1")));
    EXPECT_EQ(value("alias_name"), the_alias_list.get_elem_at_pos(2)->get_hrn_name());
    press(find(wi_attr_dlg, "close_button"));
    // After the last alias there is no other.
    select(wi_hrn_list, {FONTS + ALIASES});
    ASSERT_TRUE(press(find(wi_mainwindow, "_attributes_button1")));
    EXPECT_EQ(is_attr_dlg_displayed(), 0);
}

// --- the status line ---------------------------------------------------------

TEST_F(MainWindowTest, EverySelectionClearsTheStatusLine) {
    update_label(wi_main_window_status_label, "3 fonts installed", nullptr);
    EXPECT_EQ(gw::label_of(wi_main_window_status_label), "3 fonts installed");
    select(wi_hrn_list, {1});
    EXPECT_EQ(gw::label_of(wi_main_window_status_label), " ");
}

// --- layout ------------------------------------------------------------------

int width_of(Widget widget) {
    Dimension width = 0;
    XtVaGetValues(widget, XmNwidth, &width, nullptr);
    return width;
}

int height_of(Widget widget) {
    Dimension height = 0;
    XtVaGetValues(widget, XmNheight, &height, nullptr);
    return height;
}

struct Box {
    int left, top, right, bottom;
};

/// Where a widget is in the window.
Box box_of(Widget widget) {
    Position x = 0;
    Position y = 0;
    XtTranslateCoords(widget, 0, 0, &x, &y);
    Position left = 0;
    Position top = 0;
    XtTranslateCoords(wi_mainwindow, 0, 0, &left, &top);
    return {x - left, y - top, x - left + width_of(widget), y - top + height_of(widget)};
}

/// Expects that every managed widget of the window's forms is inside its form, and that none covers another.
void expect_tidy() {
    for (const char* name : {"form", "FontListTemplate", "_command_form"}) {
        Widget form = find(wi_mainwindow, name);
        const Box outer = box_of(form);
        std::vector<Widget> children;
        for (Widget child : children_of(form)) {
            if (XtIsManaged(child)) children.push_back(child);
        }
        for (Widget child : children) {
            const Box box = box_of(child);
            EXPECT_TRUE(box.left >= outer.left && box.top >= outer.top && box.right <= outer.right &&
                        box.bottom <= outer.bottom)
                << name << '.' << XtName(child) << " leaves its form";
            for (Widget other : children) {
                if (other <= child) continue;
                const Box rest = box_of(other);
                EXPECT_TRUE(box.right <= rest.left || rest.right <= box.left || box.bottom <= rest.top ||
                            rest.bottom <= box.top)
                    << name << ": " << XtName(child) << " and " << XtName(other) << " overlap";
            }
        }
    }
}

void resize(int width, int height) {
    XResizeWindow(display, XtWindow(wi_toplevel), static_cast<unsigned>(width),
                  static_cast<unsigned>(height));
    ASSERT_TRUE(gw::test::pump_until(
        [&] { return width_of(wi_mainwindow) == width && height_of(wi_mainwindow) == height; }));
}

TEST_F(MainWindowTest, FitsTheScreenAndIsInOrder) {
    EXPECT_EQ(width_of(wi_mainwindow), gw::test::in_pixels(92, XmHORIZONTAL));
    EXPECT_LE(height_of(wi_mainwindow), 700);
    EXPECT_EQ(height_of(wi_installed_sample_textfield), gw::test::in_pixels(10, XmVERTICAL));
    expect_tidy();
    const char* const DOWN[] = {"menuBar",           "_fontlist_label", "_hrn_list",     "_sample_textfield",
                                "_size_option_menu", "_disk_space_val", "_command_form", "_status_message"};
    int above = 0;
    for (const char* name : DOWN) {
        const Box box = box_of(find(wi_mainwindow, name));
        EXPECT_GE(box.top, above) << name;
        above = box.bottom;
    }
}

TEST_F(MainWindowTest, OnlyTheListGrowsWithTheWindow) {
    const int width = width_of(wi_mainwindow);
    const int height = height_of(wi_mainwindow);
    const int list_height = height_of(wi_hrn_list);
    resize(width + 200, height + 120);
    EXPECT_EQ(height_of(wi_hrn_list), list_height + 120);
    EXPECT_EQ(height_of(wi_installed_sample_textfield), gw::test::in_pixels(10, XmVERTICAL));
    expect_tidy();
    resize(width - 100, height - 150);
    EXPECT_EQ(height_of(wi_hrn_list), list_height - 150);
    EXPECT_EQ(height_of(wi_installed_sample_textfield), gw::test::in_pixels(10, XmVERTICAL));
    expect_tidy();
    resize(width, height);
    EXPECT_EQ(height_of(wi_hrn_list), list_height);
}

// Each selection gives the field another font and the menus other entries.
TEST_F(MainWindowTest, SelectionsDoNotMoveAnything) {
    fill_program_lists();
    update_wi_installed_hrn_list();
    const Box field = box_of(wi_installed_sample_textfield);
    const int height = height_of(wi_mainwindow);
    const int count = static_cast<int>(gw::test::items(wi_hrn_list).size());
    std::set<std::string> samples;
    for (int position = 1; position <= count; position += 1 + count / 100) {
        select(wi_hrn_list, {position});
        samples.insert(gw::test::shown_text(wi_installed_sample_textfield));
        const Box now = box_of(wi_installed_sample_textfield);
        EXPECT_EQ(now.top, field.top) << position;
        EXPECT_EQ(now.bottom, field.bottom) << position;
        EXPECT_EQ(height_of(wi_mainwindow), height) << position;
        expect_tidy();
    }
    EXPECT_TRUE(samples.contains("Aa Bb Cc Xx Yy Zz 0123456789")) << "no font was shown at all";
}

}  // namespace
