// SPDX-License-Identifier: MIT
//
// Rules for all windows: widgets have their names and the texts of the language, every button does something
// or is insensitive, and every control is reached by the keyboard and by a letter of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <langinfo.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/status_line.h"
#include "app/conflicts/conflictdlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/propsdlg.h"
#include "app/start/initdlg.h"
#include "support/charset.h"
#include "texts/messages.h"
#include "translations.h"
#include "widget/dialogs_test_support.h"
#include "widget/layout/layout_test_support.h"

#include <X11/IntrinsicP.h>
#include <Xm/CascadeB.h>
#include <Xm/CascadeBG.h>
#include <Xm/DrawingA.h>
#include <Xm/Label.h>
#include <Xm/LabelG.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>
#include <Xm/PushB.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;

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
    // A letter may stand behind it.
    EXPECT_THAT(gw::label_of(find(wi_mainwindow, "_command_form._delete_button")),
                testing::StartsWith(gw::text_of(gw::Message::DELETE_BUTTON)));
}

TEST_F(Layout, MarksInListsAreThoseOfTheLanguage) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "lists show names as they are";
    const std::string mark = gw::text_of(gw::Message::READ_ONLY_MARK);
    int marked = 0;
    each_window([&](Widget w) {
        each_part(w, [&](Widget part) {
            if (!XmIsList(part)) return;
            for (const std::string& row : items(part)) {
                const std::size_t bracket = row.find("[Read Only]");
                EXPECT_TRUE(bracket == std::string::npos || mark == "[Read Only]")
                    << XtName(w) << ": " << row;
                if (row.find(mark) != std::string::npos) ++marked;
            }
        });
    });
    EXPECT_GT(marked, 20);
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

/// Windows of today have no such button left.
bool is_idle(const Dialog& dialog, Widget part) {
    return !SUITE.modern_windows && dialog.idle.contains(XtName(part));
}

TEST_F(Layout, EveryButtonDoesSomethingOrIsInsensitive) {
    each_dialog([](const Dialog& dialog, Widget w) {
        each_part(w, [&](Widget part) {
            if (!is_button(part) || !XtIsSensitive(part)) return;
            const bool does_something = XtHasCallbacks(part, XmNactivateCallback) == XtCallbackHasSome;
            EXPECT_EQ(does_something, !is_idle(dialog, part)) << XtName(part);
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

/// What a letter with Alt works on in this window.
std::vector<Widget> controls_with_letters(Widget window) {
    std::vector<Widget> controls;
    each_part(window, [&](Widget part) {
        if (!XtIsWidget(part)) return;  // buttons of message boxes have Return, Escape and the arrow keys
        if (XmIsPushButton(part) || XmIsToggleButton(part) || XmIsCascadeButton(part))
            controls.push_back(part);
    });
    return controls;
}

char letter_of(Widget w) {
    KeySym letter = NoSymbol;
    XtVaGetValues(w, XmNmnemonic, &letter, nullptr);
    // The toolkit has a value of its own for none.
    return letter < 0x7f ? static_cast<char>(std::tolower(static_cast<int>(letter))) : '\0';
}

TEST_F(Layout, EveryButtonHasALetterOfItsOwn) {
    if (!SUITE.modern_windows) GTEST_SKIP() << "windows have no such letters";
    int buttons = 0;
    each_window([&](Widget w) {
        std::map<char, std::string> owners;
        for (Widget control : controls_with_letters(w)) {
            const std::string text = gw::label_of(control);
            if (text.find_first_not_of(' ') == std::string::npos) continue;
            const bool is_latin =
                std::any_of(text.begin(), text.end(), [](char c) { return c > 0 && std::isalpha(c) != 0; });
            if (!is_latin && ::nl_langinfo(CODESET) != std::string("UTF-8")) continue;
            ++buttons;
            const char letter = letter_of(control);
            ASSERT_NE(letter, '\0') << XtName(w) << ": " << text;
            const auto [owner, is_free] = owners.try_emplace(letter, text);
            EXPECT_TRUE(is_free) << XtName(w) << ": " << letter << " is of " << owner->second << " and "
                                 << text;
            const auto is_letter = [letter](char c) {
                return std::tolower(static_cast<unsigned char>(c)) == letter;
            };
            EXPECT_TRUE(std::any_of(text.begin(), text.end(), is_letter))
                << text << " does not have " << letter;
        }
    });
    EXPECT_GT(buttons, 20);
}

/// The menus below a widget, posted or not.
void each_menu(Widget w, const std::function<void(Widget)>& look) {
    for (Cardinal i = 0; i < w->core.num_popups; ++i) {
        WidgetList children = nullptr;
        Cardinal count = 0;
        XtVaGetValues(w->core.popup_list[i], XmNchildren, &children, XmNnumChildren, &count, nullptr);
        for (Cardinal k = 0; k < count; ++k) look(children[k]);
    }
}

TEST_F(Layout, EveryEntryOfAMenuHasALetterOfItsOwn) {
    int entries = 0;
    each_menu(XtNameToWidget(wi_mainwindow, "*menuBar"), [&](Widget menu) {
        std::map<char, std::string> owners;
        each_part(menu, [&](Widget entry) {
            if (!XmIsPushButton(entry)) return;
            ++entries;
            const char letter = letter_of(entry);
            ASSERT_NE(letter, '\0') << XtName(entry);
            EXPECT_TRUE(owners.try_emplace(letter, XtName(entry)).second) << XtName(menu) << ": " << letter;
        });
    });
    EXPECT_GT(entries, 10);
}

}  // namespace
