// SPDX-License-Identifier: MIT
//
// Rules for all windows: widgets have their names, every button does something or is insensitive, and every
// text is on the screen and not cut off. This file is linked into one program for each combination of locale
// and screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <langinfo.h>

#include <clocale>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/common/warningdlg.h"
#include "app/common/workingdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/messages.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/printer/printerdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/start/initdlg.h"
#include "platform/host_paths.h"
#include "support/charset.h"
#include "translations.h"
#include "widget/dialogs_test_support.h"
#include "widget/layout/layout_suite.h"

#include "support/own_server.h"

#include <Xm/CascadeB.h>
#include <Xm/CascadeBG.h>
#include <Xm/Label.h>
#include <Xm/LabelG.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>
#include <Xm/PushB.h>
#include <Xm/PushBG.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;

// A second screen with high resolution; the sandbox's has a low one.
constexpr int FINE_WIDTH = 2560;
constexpr int FINE_HEIGHT = 1920;

/// Conflicts of both kinds, to be shown.
class Conflicts {
  public:
    explicit Conflicts(GWConflict::TYPE type)
        : alias_("my-alias", "-misc-fixed-medium-r-normal--13-120-75-75-c-60-iso8859-1", "/fonts/"),
          conflict_(type, nullptr, type == GWConflict::DELETE ? &alias_ : nullptr, nullptr, "/fonts/",
                    nullptr) {
        conflict_.set_conflict(GWConflict::SAME_NAME, nullptr, 0, 0);
        list_.append(&conflict_);
    }
    GW_LIST<GWConflict>* list() { return &list_; }

  private:
    GWAlias alias_;
    GWConflict conflict_;
    GW_LIST<GWConflict> list_;
};

GW_LIST<GWConflict>* conflicts(GWConflict::TYPE type) {
    static Conflicts installing(GWConflict::INSTALL);
    static Conflicts deleting(GWConflict::DELETE);
    return (type == GWConflict::INSTALL ? installing : deleting).list();
}

struct Dialog {
    const char* name;
    Widget* widget;
    std::function<void()> show;
    std::vector<const char*> parts;   ///< the names of its widgets
    std::set<std::string> idle = {};  ///< buttons that do nothing, deliberately
};

/// The parts of a dialog, with those between that it has only where windows show reasons.
std::vector<const char*> with_reasons(std::vector<const char*> first, const std::vector<const char*>& reasons,
                                      const std::vector<const char*>& last) {
    if (SUITE.modern_windows) first.insert(first.end(), reasons.begin(), reasons.end());
    first.insert(first.end(), last.begin(), last.end());
    return first;
}

std::vector<std::string> long_lines() {
    return {20,
            "New Century Schoolbook Bold Italic [Bitmap]: No space left on device "
            "(/home/somebody/fonts/ncenBI24.pcf)"};
}

std::vector<Dialog> dialogs() {
    return {
        {"init_dlg", &wi_init_dlg, start_init_dlg, {}},
        {"modify_fp_dlg",
         &wi_modify_fp_dlg,
         start_modify_fp_dlg,
         {"_modify_label",
          "radioBox",
          "_default_fp_toggle",
          "_other_inst_fp_toggle",
          "_vantor_dir_dlg_button",
          "separator",
          "_fpe_list_label",
          "_fpe_list",
          "_fpe_modify_rowcol",
          "_move_up_button",
          "_move_down_button",
          "_delete_button",
          "_add_new_button",
          "_new_fp_label",
          "_new_fp_textfield",
          "_dir_dlg_button",
          "separator1",
          "_button_form",
          "_button_form._ok_button",
          "_apply_button",
          "_reset_button",
          "_cancel_button",
          "_help_button",
          "_msg_label"},
         {"_help_button"}},
        {"install_dlg",
         &wi_install_dlg,
         [] { XtManageChild(wi_install_dlg); },
         {"MediaChoiceTemplate._media_label",
          "MediaChoiceTemplate._other_media_dlg_button",
          "MediaChoiceTemplate.from_dir_dlg_button",
          "separator",
          "_avail_font_list._fontlist_label",
          "_avail_font_list*_hrn_list",
          "_sample_text_label",
          "_sample_textfield",
          "separator1",
          "separator2",
          "_install_to_label",
          "_dest_label",
          "install_dir_dlg_button",
          "_req_space_label",
          "_req_space_val",
          "_avail_space_label",
          "_avail_space_val",
          "separator3",
          "_button_form._install_button",
          "_button_form._select_all_button",
          "_button_form._attr_button",
          "_button_form._cancel_button",
          "_button_form._help_button",
          "_message_label"}},
        {"rmedia_dlg",
         &wi_rmedia_dlg,
         [] { popup_rmedia_dlg(nullptr); },
         {"pulldown_menu", "floppy_button", "cdrom_button", "media_option_menu", "check_button", "separator",
          "eject_button", "close_button", "help_dlg_button", "msg_label"},
         {"help_dlg_button"}},
        {"dir_dlg", &wi_dir_dlg, [] { popup_dir_dlg(nullptr, "Glyph Warden : Install Fonts In"); }, {}},
        {"attr_dlg",
         &wi_attr_dlg,
         [] {
             const int position = bitmap_position();
             show_font_attributes(the_installed_hrn_list.get_elem_at_pos(position)->get_representative(),
                                  nullptr);
         },
         {"hrn_label", "hrn_name", "font_template.xlfd_label", "font_template.loc_label", "_font_xlfd_scroll",
          "_font_loc_scroll", "foundry_template.foundry_label", "foundry_template.charset_label",
          "foundry_template.spacing_label", "alias_template.alias_label", "alias_template.xlfd_label",
          "alias_template.loc_label", "_alias_xlfd_scroll", "_alias_loc_scroll", "button_form.close_button",
          "button_form.help_dlg_button", "msg_label"}},
        {"props_dlg",
         &wi_props_dlg,
         start_props_dlg,
         with_reasons({"sample_label", "sample_textField"}, {"msg_label"},
                      {"ok_button", "apply_button", "reset_button", "cancel_button", "help_button"}),
         {"help_button"}},
        {"progress_dlg",
         &wi_progress_dlg,
         [] { start_progress_dlg(0, 12345, "Font Installation Progress Dialog", "Fonts Installed"); },
         {"action_label", "progress_scale"}},
        {"working_dlg", &wi_working_dlg, [] { start_working_dlg("Looking for fonts, be patient"); }, {}},
        {"del_warning_dlg", &wi_del_warning_dlg, [] { start_del_warning_dlg(nullptr); }, {}},
        {"warning_dlg",
         &wi_warning_dlg,
         [] { start_warning_dlg("Glyph Warden - Other Media", gw::text_of(gw::Message::CDROM_MISSING)); },
         {}},
        {"about_dlg", &wi_about_dlg, start_about_dlg, {}},
        {"conflict_dlg",
         &wi_conflict_dlg,
         [] { start_conflict_dlg(3, conflicts(GWConflict::DELETE)); },
         {"list_label", "_conflicts_list", "resolve_label", "button_rowcol.keep_button",
          "button_rowcol.not_keep_button", "conflict_detail_label", "separator", "ok_button", "cancel_button",
          "help_dlg_button", "msg_label"}},
        {"conflict_dlg", &wi_conflict_dlg, [] { start_conflict_dlg(3, conflicts(GWConflict::INSTALL)); }, {}},
        {"preconflict_dlg", &wi_preconflict_dlg,
         [] { start_preconflict_dlg(12345, conflicts(GWConflict::DELETE)); },
         with_reasons({"success_label", "read_only_label", "conflict_label", "detail_label"},
                      {"failed_label", "failed_list"},
                      {"separator", "ok_button", "resolve_button", "help_dlg_button", "msg_label"})},
        {"preconflict_dlg",
         &wi_preconflict_dlg,
         [] {
             const auto all = conflicts(GWConflict::INSTALL);
             start_summary({GWConflict::INSTALL, 12345, all, long_lines()});
         },
         {}},
        {"preconflict_dlg",
         &wi_preconflict_dlg,
         [] { start_preconflict_dlg(12345, conflicts(GWConflict::INSTALL)); },
         {}},
        {"fp_info_dlg", &wi_fp_info_dlg, start_fp_info_dlg, {}},
        {"help_dlg", &wi_help_dlg, start_help_dlg, {"text", "ok_button"}, {"ok_button"}},
        {"pr_install_dlg", &wi_pr_install_dlg, [] { XtManageChild(wi_pr_install_dlg); }, {}},
        {"pr_delete_dlg", &wi_pr_delete_dlg, [] { XtManageChild(wi_pr_delete_dlg); }, {}},
        {"pr_modify_fp_dlg",
         &wi_pr_modify_fp_dlg,
         [] { XtManageChild(wi_pr_modify_fp_dlg); },
         {},
         {"cancel_button"}},
        {"fontsets_dlg",
         &wi_fontsets_dlg,
         start_fontsets_dlg,
         {"choose_label", "set_button_form.delete_set_button", "set_button_form.new_set_button",
          "set_button_form.sample_text_button", "list_label", "members_label", "scrolledlist", "sample_label",
          "sample_text", "button_form.ok_button", "msg_label"}},
        {"new_set_dlg", &wi_new_set_dlg, [] { XtManageChild(wi_new_set_dlg); }, {}},
        {"delete_set_dlg", &wi_delete_set_dlg, [] { XtManageChild(wi_delete_set_dlg); }, {}},
        {"sample_text_dlg", &wi_sample_text_dlg, [] { XtManageChild(wi_sample_text_dlg); }, {}},
    };
}

/// Calls `look` for every managed widget and gadget below `w` in the same window.
void each_part(Widget w, const std::function<void(Widget)>& look) {
    if (!XtIsComposite(w)) return;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        if (!XtIsManaged(children[i])) continue;
        look(children[i]);
        each_part(children[i], look);
    }
}

struct Box {
    int x, y, width, height;
};

Box box_of(Widget w) {
    Position x = 0;
    Position y = 0;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
    return {x, y, width, height};
}

bool has_text(Widget w) {
    return XmIsLabel(w) || XmIsLabelGadget(w);
}

bool is_button(Widget w) {
    return XmIsPushButton(w) || XmIsPushButtonGadget(w);
}

/// Contents of a scrolled window may be larger than the window.
bool is_scrolled(Widget w, Widget dialog) {
    for (w = XtParent(w); w != dialog; w = XtParent(w)) {
        if (XmIsScrolledWindow(w)) return true;
    }
    return false;
}

/// The width of the frame that a button has only while it is the default button.
int ring_of(Widget w) {
    return is_button(w) ? 4 : 0;
}

class Layout : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        for (const char* name : {"LC_ALL", "LANG"}) ::setenv(name, SUITE.locale, 1);
        ::setenv("VANTORHOME", gw::INSTALLATION_ROOT, 1);
        home();
        if (SUITE.server_dpi != 0) static const OwnServer server(FINE_WIDTH, FINE_HEIGHT, SUITE.server_dpi);
        std::vector<std::string> arguments;
        for (const char* support : {"fontset", "printer"}) {
            arguments.insert(arguments.end(),
                             {"-xrm", std::string("Glyphward*gw_") + support + "_support: True"});
        }
        if (SUITE.xft_dpi != 0)
            arguments.insert(arguments.end(), {"-xrm", "Xft.dpi: " + std::to_string(SUITE.xft_dpi)});
        arguments.insert(arguments.end(), {"-xrm", std::string("Glyphward*gw_modern_windows: ") +
                                                       (SUITE.modern_windows ? "True" : "False")});
        start_program(arguments);
        ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), SUITE.locale);
    }
    /// The main window, then the dialogs.
    static void each_window(const std::function<void(Widget)>& look) {
        {
            SCOPED_TRACE("mainWindow");
            look(wi_mainwindow);
        }
        each_dialog([&](const Dialog&, Widget w) { look(w); });
    }
    static void each_dialog(const std::function<void(const Dialog&, Widget)>& look) {
        for (const Dialog& dialog : dialogs()) {
            if (*dialog.widget == nullptr) {
                EXPECT_STREQ(dialog.name, "modify_fp_dlg") << "made for the superuser alone";
                EXPECT_NE(uid, 0);
                continue;
            }
            SCOPED_TRACE(dialog.name);
            Widget w = *dialog.widget;
            dialog.show();
            EXPECT_TRUE(pump_until([=] { return is_viewable(w); }));
            pump();
            look(dialog, w);
            close_box(w);
            XtUnmanageChild(w);  // some dialogs stay open
            pump();
        }
    }
};

/// The language's text for `message`, in UTF-8.
std::string translation(gw::Message message) {
    const gw::MessageEntry& wanted = gw::message_table()[static_cast<std::size_t>(message)];
    for (const gw::catalogue::Language& language : gw::catalogue::languages()) {
        if (language.name != SUITE.language) continue;
        for (const gw::catalogue::Entry& entry : language.texts) {
            if (entry.set == wanted.set && entry.number == wanted.number) return std::string(entry.text);
        }
    }
    return wanted.text;
}

TEST_F(Layout, TheTextsAreThoseOfTheLanguage) {
    const std::string charset = ::nl_langinfo(CODESET);
    for (const gw::Message message :
         {gw::Message::DELETE_BUTTON, gw::Message::SELECT_ALL, gw::Message::FP_INFO}) {
        const std::string expected = gw::test::converted(translation(message), charset);
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(gw::text_of(message), expected);
    }
    EXPECT_EQ(gw::label_of(find(wi_mainwindow, "_command_form._delete_button")),
              gw::text_of(gw::Message::DELETE_BUTTON));
}

/// The pixels of the left half of the status line when it shows the text.
std::vector<unsigned long> left_half(const std::string& utf8) {
    Widget line = wi_main_window_status_label;
    gw::set_label(line, gw::test::converted(utf8, ::nl_langinfo(CODESET)));
    pump();
    XtWidgetGeometry preferred = {};
    XtQueryGeometry(line, nullptr, &preferred);
    XImage* image = XGetImage(display, XtWindow(line), 0, 0, preferred.width / 2U,
                              static_cast<unsigned>(box_of(line).height), AllPlanes, ZPixmap);
    std::vector<unsigned long> pixels;
    for (int y = 0; y < image->height; ++y) {
        for (int x = 0; x < image->width; ++x) pixels.push_back(XGetPixel(image, x, y));
    }
    XDestroyImage(image);
    return pixels;
}

/// The widgets that show texts of the language in a font of their own, set by resources.
std::vector<Widget> parts_with_own_fonts() {
    return {find(wi_mainwindow, "_fontlist_label"), find(wi_conflict_dlg, "_conflicts_list"),
            find(wi_props_dlg, "sample_textField"), part_of(wi_init_dlg, XmDIALOG_MESSAGE_LABEL)};
}

void draw_status_in_fonts_of(Widget part) {
    XmRenderTable fonts = nullptr;
    XtVaGetValues(part, XmNrenderTable, &fonts, nullptr);
    XtVaSetValues(wi_main_window_status_label, XmNrenderTable, fonts, nullptr);
}

// The letters have the same first byte. If bytes were drawn instead of characters, the pictures would begin
// alike; if boxes or nothing were drawn, they would be equal.
TEST_F(Layout, LettersOfTheLanguageAreDrawn) {
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_mainwindow); }));
    const std::string_view language = SUITE.language;
    const bool is_japanese = language == "japanese";
    const bool is_ascii = language == "C";
    for (Widget part : parts_with_own_fonts()) {
        ASSERT_NE(part, nullptr);
        draw_status_in_fonts_of(part);
        const auto one = left_half(is_japanese ? "\xe3\x81\x82" : is_ascii ? "a" : "\xc3\xb6");
        const auto other = left_half(is_japanese ? "\xe3\x81\x84" : is_ascii ? "b" : "\xc3\xbc");
        EXPECT_GT(one.size(), 20U) << XtName(part);
        EXPECT_NE(one, other) << XtName(part);
    }
    draw_status_in_fonts_of(find(wi_mainwindow, "_fontlist_label"));
    gw::set_label(wi_main_window_status_label, " ");
}

TEST_F(Layout, EveryWidgetStandsUnderItsName) {
    each_dialog([](const Dialog& dialog, Widget w) {
        EXPECT_STREQ(XtName(w), dialog.name);
        EXPECT_EQ(XtNameToWidget(wi_toplevel, (std::string("*") + dialog.name).c_str()), w);
        for (const char* part : dialog.parts) EXPECT_NE(find(w, part), nullptr) << part;
    });
}

TEST_F(Layout, EveryButtonDoesSomethingOrIsInsensitive) {
    each_dialog([](const Dialog& dialog, Widget w) {
        each_part(w, [&](Widget part) {
            if (!is_button(part) || !XtIsSensitive(part)) return;
            const bool does_something = XtHasCallbacks(part, XmNactivateCallback) == XtCallbackHasSome;
            EXPECT_EQ(does_something, !dialog.idle.contains(XtName(part))) << XtName(part);
        });
    });
}

// The toolkit's own close box takes a dialog away without a word to the program.
TEST_F(Layout, TheCloseBoxOfEveryDialogIsTheProgramsBusiness) {
    each_dialog([](const Dialog&, Widget w) {
        unsigned char response = XmDESTROY;
        XtVaGetValues(XtParent(w), XmNdeleteResponse, &response, nullptr);
        EXPECT_EQ(response, XmDO_NOTHING);
    });
}

TEST_F(Layout, EveryDialogStandsInTheMiddleOfTheScreen) {
    each_dialog([](const Dialog&, Widget w) {
        const Box box = box_of(XtParent(w));
        const int width = WidthOfScreen(screen);
        const int height = HeightOfScreen(screen);
        EXPECT_GE(box.x, 0);
        EXPECT_GE(box.y, 0);
        EXPECT_LE(box.x + box.width, width);
        EXPECT_LE(box.y + box.height, height);
        EXPECT_NEAR(box.x, (width - box.width) / 2, 1);
        EXPECT_NEAR(box.y, (height - box.height) / 2, 1);
    });
}

TEST_F(Layout, NoTextIsCutOff) {
    each_window([](Widget w) {
        each_part(w, [&](Widget part) {
            if (!has_text(part) || is_scrolled(part, w)) return;
            XtWidgetGeometry preferred = {};
            XtQueryGeometry(part, nullptr, &preferred);
            const Box box = box_of(part);
            EXPECT_GE(box.width + ring_of(part), preferred.width)
                << XtName(part) << ": " << gw::label_of(part);
            EXPECT_GE(box.height + ring_of(part), preferred.height)
                << XtName(part) << ": " << gw::label_of(part);
        });
    });
}

TEST_F(Layout, EveryPartIsInsideOfWhatHoldsIt) {
    each_window([](Widget w) {
        each_part(w, [&](Widget part) {
            if (is_scrolled(part, w)) return;
            const Box box = box_of(part);
            const Box around = box_of(XtParent(part));
            EXPECT_GE(box.x, 0) << XtName(part);
            EXPECT_GE(box.y, 0) << XtName(part);
            EXPECT_LE(box.x + box.width, around.width) << XtName(part);
            EXPECT_LE(box.y + box.height, around.height) << XtName(part);
        });
    });
}

double middle_of(Widget w) {
    const Box box = box_of(w);
    return box.y + box.height / 2.0;
}

TEST_F(Layout, ControlsOfARowHaveTheirMiddlesAtOneHeight) {
    const std::vector<std::vector<const char*>> rows = {
        {"install_dlg", "_install_to_label", "install_dir_dlg_button"},
        {"rmedia_dlg", "media_option_menu", "check_button"},
        {"pr_install_dlg", "media_label", "other_media_dlg_button", "from_dir_dlg_button"},
        {"pr_install_dlg", "for_label", "for_menu"},
        {"pr_install_dlg", "install_to_label", "to_dir_dlg_button"},
        {"pr_delete_dlg", "for_label", "for_menu"},
        {"pr_delete_dlg", "size_label", "size_menu"},
        {"pr_modify_fp_dlg", "printer_label", "printer_menu"},
        {"pr_modify_fp_dlg", "new_fp_label", "new_fp_textfield", "dir_dlg_button"},
    };
    std::set<const std::vector<const char*>*> seen;
    each_dialog([&](const Dialog& dialog, Widget w) {
        for (const std::vector<const char*>& row : rows) {
            if (row[0] != std::string(dialog.name)) continue;
            seen.insert(&row);
            for (std::size_t i = 2; i < row.size(); ++i)
                EXPECT_NEAR(middle_of(find(w, row[i])), middle_of(find(w, row[1])), 2) << row[i];
        }
    });
    EXPECT_EQ(seen.size(), rows.size());
}

/// Whether the user operates this widget; it must be reachable without a mouse.
bool is_control(Widget w) {
    if (XmIsLabel(w) || XmIsLabelGadget(w)) {
        return is_button(w) || XmIsToggleButton(w) || XmIsCascadeButtonGadget(w);
    }
    return XmIsList(w) || XmIsText(w) || XmIsTextField(w);
}

/// All widgets that get the focus by Tab, and by the arrow keys between two Tabs.
std::set<Widget> reached_by_keyboard(Widget window) {
    std::set<Widget> reached;
    std::set<Widget> tabs;
    Widget at = XmGetTabGroup(window) != nullptr ? XmGetFocusWidget(window) : nullptr;
    while (at != nullptr && tabs.insert(at).second) {
        for (std::set<Widget> group; at != nullptr && group.insert(at).second;
             at = XmGetFocusWidget(window)) {
            reached.insert(at);
            XmProcessTraversal(at, XmTRAVERSE_NEXT);
        }
        XmProcessTraversal(at, XmTRAVERSE_NEXT_TAB_GROUP);
        at = XmGetFocusWidget(window);
    }
    return reached;
}

TEST_F(Layout, EveryControlIsReachedByTheKeyboard) {
    each_window([](Widget w) {
        XmProcessTraversal(w, XmTRAVERSE_CURRENT);
        const std::set<Widget> reached = reached_by_keyboard(w);
        each_part(w, [&](Widget part) {
            if (XmIsCascadeButton(part)) {
                KeySym mnemonic = NoSymbol;
                XtVaGetValues(part, XmNmnemonic, &mnemonic, nullptr);
                EXPECT_NE(mnemonic, static_cast<KeySym>(NoSymbol)) << "of a menu: " << XtName(part);
            }
            if (!is_control(part) || !XtIsSensitive(part)) return;
            EXPECT_TRUE(reached.contains(part)) << XtName(XtParent(part)) << '.' << XtName(part);
        });
    });
}

}  // namespace
