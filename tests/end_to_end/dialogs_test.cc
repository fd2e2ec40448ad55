// SPDX-License-Identifier: MIT
//
// The dialogs that edit font paths and fontsets, and those of the printer, by mouse and keyboard.
#include <string>

#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* MODIFY_FP = "Glyph Warden - Modify Font Path";
constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";

class Dialogs : public ProgramTest {
  protected:
    void start_with(const std::string& resources,
                    std::map<std::string, std::optional<std::string>> environment = {}) {
        environment["XENVIRONMENT"] = home.write("resources", resources);
        start(environment);
    }
    void click(Window dialog, const char* part) const {
        const Window window = desktop.part_named(dialog, part);
        ASSERT_NE(window, 0U) << part;
        desktop.click_middle(window);
    }
    void click_line(Window dialog, const char* list, int line) const {
        const Window window = desktop.part_named(dialog, list);
        ASSERT_NE(window, 0U) << list;
        desktop.click(window, 60, 12 + line * list_line_height());
    }
    static std::string first_element() {
        const std::string line = TempDir::read_bytes(CONFIG);
        const std::size_t start = line.find('\t') + 1;
        return line.substr(start, line.find(',') - start);
    }
};

TEST_F(Dialogs, TheSuperuserMovesAnElementOfTheFontPathAndBack) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    const std::string before = TempDir::read_bytes(CONFIG);
    const std::string first = first_element();
    start();
    Window dialog = open_by_menu("o", "m", MODIFY_FP);
    ASSERT_NE(dialog, 0U);
    click_line(dialog, "_fpe_list", 0);
    click(dialog, "_move_down_button");
    desktop.picture("modify-font-path-moved");
    click(dialog, "_apply_button");
    EXPECT_TRUE(wait_until([&] { return first_element() != first; }));
    click(dialog, "_move_up_button");
    click(dialog, "_ok_button");
    EXPECT_TRUE(desktop.disappears(MODIFY_FP));
    EXPECT_TRUE(wait_until([&] { return TempDir::read_bytes(CONFIG) == before; }));

    dialog = open_by_menu("o", "m", MODIFY_FP);
    ASSERT_NE(dialog, 0U);
    click(dialog, "_new_fp_textfield");
    desktop.type("/typed/");
    desktop.key("Return");
    click_line(dialog, "_fpe_list", 0);
    click(dialog, "_delete_button");
    click(dialog, "_reset_button");
    EXPECT_TRUE(leave_window(MODIFY_FP, Leaving::ESCAPE, nullptr));
    EXPECT_EQ(TempDir::read_bytes(CONFIG), before) << "nothing was applied";
    EXPECT_EQ(leave(), 0);
}

TEST_F(Dialogs, AnotherInstallationIsChosenAndItsPathIsStored) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    const TempDir other;
    other.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/first/,/second/\n");
    const std::string before = TempDir::read_bytes(CONFIG);
    start();
    const Window dialog = open_by_menu("o", "m", MODIFY_FP);
    ASSERT_NE(dialog, 0U);
    click(dialog, "_other_inst_fp_toggle");
    const DirectoryChooser chooser(desktop, "Glyph Warden : Vantor Installation",
                                   desktop.part_named(dialog, "_vantor_dir_dlg_button"));
    ASSERT_TRUE(chooser.is_there());
    chooser.select(other.path());
    ASSERT_TRUE(chooser.accept());
    click_line(dialog, "_fpe_list", 1);
    desktop.picture("modify-font-path-other");
    click(dialog, "_move_up_button");
    click(dialog, "_ok_button");
    EXPECT_TRUE(desktop.disappears(MODIFY_FP));
    EXPECT_EQ(other.read("server/etc/VTconfig"), "XDISPLAY.0.fontpath:\t/second/,/first/\n");
    EXPECT_EQ(TempDir::read_bytes(CONFIG), before);
}

TEST_F(Dialogs, ANewElementIsChosen) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    const TempDir fonts;
    const std::string before = TempDir::read_bytes(CONFIG);
    start();
    const Window dialog = open_by_menu("o", "m", MODIFY_FP);
    ASSERT_NE(dialog, 0U);
    const DirectoryChooser chooser(desktop, "Glyph Warden : Font Path Element",
                                   desktop.part_named(dialog, "_dir_dlg_button"));
    ASSERT_TRUE(chooser.is_there());
    chooser.select(fonts.path());
    ASSERT_TRUE(chooser.accept());
    click(dialog, "_add_new_button");
    click(dialog, "_apply_button");
    EXPECT_TRUE(wait_until(
        [&] { return TempDir::read_bytes(CONFIG).find(',' + fonts.path()) != std::string::npos; }));
    // The new element is the last one and is selected.
    click(dialog, "_delete_button");
    click(dialog, "_apply_button");
    EXPECT_TRUE(wait_until([&] { return TempDir::read_bytes(CONFIG) == before; }));
    EXPECT_TRUE(leave_window(MODIFY_FP, Leaving::BUTTON, "_cancel_button"));
}

class Fontsets : public Dialogs {
  protected:
    static constexpr const char* TITLE = "Glyph Warden - Modify Font Set";
    static constexpr const char* FILE = "/usr/vantor/lib/locale/ja_JP.UTF-8/VT_FONT_SETS/Vantor.fs";

    Window open_fontsets() {
        start_with(
            "Glyphward*gw_fontset_support: True\n"
            "Glyphward*gw_locale_sample_text: Aa \xe3\x81\x82\xe6\xbc\xa2\xe5\xad\x97\n",
            {{"VANTORHOME", "/usr/vantor"}, {"LANG", "ja_JP.UTF-8"}, {"LC_MESSAGES", "C"}});
        return open_by_menu("o", "f", TITLE);
    }
    [[nodiscard]] int ink_of(Window dialog, const char* part) const {
        return desktop.ink(desktop.place_of(desktop.part_named(dialog, part)));
    }
};

TEST_F(Fontsets, JapaneseTextIsDrawnAndOnlyRootWrites) {
    const std::string before = TempDir::read_bytes(FILE);
    ASSERT_FALSE(before.empty());
    const Window dialog = open_fontsets();
    ASSERT_NE(dialog, 0U);
    EXPECT_TRUE(wait_until([&] { return ink_of(dialog, "sample_text") > 300; }));
    desktop.picture("fontsets");
    click_line(dialog, "scrolledlist", 0);
    click(dialog, "reset_button");
    click(dialog, "ok_button");
    if (is_root()) {
        EXPECT_TRUE(desktop.disappears(TITLE));
    } else {
        EXPECT_TRUE(wait_until([&] { return ink_of(dialog, "msg_label") > 50; })) << "the refusal";
        desktop.picture("fontsets-refused");
        EXPECT_TRUE(leave_window(TITLE, Leaving::ESCAPE, nullptr));
    }
    EXPECT_EQ(TempDir::read_bytes(FILE), before);
    EXPECT_EQ(leave(), 0);
}

TEST_F(Fontsets, ASetIsMadeAndDeletedAgain) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    constexpr const char* NEW_SET = "Glyph Warden - New Set";
    constexpr const char* DELETE_SET = "Glyph Warden - Dlete Set";
    const std::string before = TempDir::read_bytes(FILE);
    const Window dialog = open_fontsets();
    ASSERT_NE(dialog, 0U);
    const Window naming = opens(NEW_SET, [&] { click(dialog, "new_set_button"); });
    ASSERT_NE(naming, 0U);
    desktop.type("-typed-set");
    desktop.key("Return");
    ASSERT_TRUE(desktop.disappears(NEW_SET)) << "Return is OK";
    click(dialog, "apply_button");
    EXPECT_TRUE(wait_until(
        [] { return TempDir::read_bytes(FILE).find("\n-typed-set:definition,") != std::string::npos; }));

    const Window deleting = opens(DELETE_SET, [&] { click(dialog, "delete_set_button"); });
    ASSERT_NE(deleting, 0U);
    // The newest fontset is at the top.
    click_line(deleting, "scrolledlist", 0);
    click(deleting, "delete_button");
    desktop.picture("delete-set-deleted");
    EXPECT_TRUE(leave_window(DELETE_SET, Leaving::BUTTON, "cancel_button"));
    click(dialog, "apply_button");
    EXPECT_TRUE(wait_until([&] { return TempDir::read_bytes(FILE) == before; }));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Fontsets, TheSubordinateDialogsComeAndGo) {
    const Window dialog = open_fontsets();
    ASSERT_NE(dialog, 0U);
    const struct {
        const char* button;
        const char* title;
    } windows[] = {{"delete_set_button", "Glyph Warden - Dlete Set"},
                   {"new_set_button", "Glyph Warden - New Set"},
                   {"sample_text_button", "Glyph Warden - Sample Text"}};
    for (const auto& [button, title] : windows) {
        for (const Leaving way : WAYS_OF_LEAVING) {
            ASSERT_NE(opens(title, [&, name = button] { click(dialog, name); }), 0U) << title;
            desktop.picture(button);
            EXPECT_TRUE(leave_window(title, way, "cancel_button")) << title;
        }
    }
}

TEST_F(Dialogs, ThoseOfThePrinterComeAndGo) {
    start_with("Glyphward*gw_printer_support: True\n");
    const struct {
        const char* key;
        const char* title;
    } windows[] = {{"i", "Glyph Warden - Install Font"},
                   {"d", "Glyph Warden - Delete Font"},
                   {"m", "Glyph Warden - Modify Font Path"}};
    for (const auto& [key, title] : windows) {
        ASSERT_NE(open_by_menu("p", key, title), 0U) << title;
        desktop.picture(std::string("printer-") + key);
        EXPECT_TRUE(leave_window(title, Leaving::CLOSE_BOX, nullptr)) << title;
    }
    EXPECT_EQ(leave(), 0);
}

}  // namespace
