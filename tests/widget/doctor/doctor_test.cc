// SPDX-License-Identifier: MIT
//
// The window "Why Is a Font Missing?" with played answers, its menu, and the button beside an empty sample.
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/doctor/doctordlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/kit/wrapped_text.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_text.h"
#include "support/bitmap_maker.h"
#include "texts/sentences.h"
#include "widget/doctor/played_doctor.h"

#include "widget/dialogs_test_support.h"
#include "widget/selections.h"

#include <Xm/List.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;
using gw::diagnosis::Remedy;
using gw::diagnosis::Said;

constexpr const char* MESSAGE = "Warning: Cannot convert string \"-adobe-helvetica-bold\" to type FontStruct";

class DoctorTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
    }
    void SetUp() override {
        XtDestroyWidget(XtParent(wi_doctor_dlg));
        pump();
        create_doctor_dlg("doctor_dlg", wi_toplevel);
        start_doctor_dlg();
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_doctor_dlg); }));
    }
    void TearDown() override {
        XtUnmanageChild(wi_doctor_dlg);
        XtUnmanageChild(wi_install_dlg);
        the_wp_cl_data = {};
        pump();
    }

    static Widget part(const char* name) {
        Widget found = find(wi_doctor_dlg, name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static void paste(const std::string& text) {
        XmTextSetString(part("question_text"), gw::name_arg(text.c_str()));
    }
    void ask(const std::string& text = MESSAGE) {
        paste(text);
        ASSERT_TRUE(press(part("ask_button")));
        pump();
    }
    static bool may_install() { return XtIsSensitive(find(wi_mainwindow, "_install_dlg_button")) != False; }
    static std::string text(const char* name) { return gw::wrapped_text_of(part(name)); }
    static std::string message() { return gw::label_of(part("msg_label")); }
    static void choose(const char* list, int position) {
        XmListSelectPos(part(list), position, True);
        pump();
    }
    static void show_page(const char* toggle) {
        XmToggleButtonSetState(part(toggle), True, True);
        pump();
    }
    static bool is_seen(const char* name) {
        for (Widget w = part(name); w != wi_doctor_dlg; w = XtParent(w)) {
            if (!XtIsManaged(w)) return false;
        }
        return is_viewable(wi_doctor_dlg);
    }

    PlayedDoctor doctor;
};

bool is_mapped(Widget w) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, XtWindow(w), &attributes) != 0 && attributes.map_state == IsViewable;
}

/// What a program would paste that asks for this form of the selection; no value when there is none.
std::optional<std::string> pasted_from(const char* selection, const char* target) {
    const std::string text = gw::test::PastingClient().paste(selection, target);
    return text == "(nothing)" ? std::nullopt : std::optional(text);
}

// --- where it is opened ------------------------------------------------------

TEST_F(DoctorTest, TheMenuOpensIt) {
    XtUnmanageChild(wi_doctor_dlg);
    pump();
    EXPECT_EQ(gw::label_of(find(wi_mainwindow, "_tools_cascade")), "Tools");
    Widget entry = find(wi_mainwindow, "_tools_pulldown._doctor_dlg_button");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(gw::label_of(entry), "Why Is a Font Missing?...");
    ASSERT_TRUE(press(entry));
    EXPECT_TRUE(pump_until([] { return is_viewable(wi_doctor_dlg); }));
    EXPECT_EQ(title_of(wi_doctor_dlg), "Glyph Warden - Why Is a Font Missing?");
    EXPECT_EQ(doctor.asked, 0);
}

TEST_F(DoctorTest, AButtonBesideAnEmptySampleAsksForItsFont) {
    XtUnmanageChild(wi_doctor_dlg);
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_mainwindow); }));
    Widget why = find(wi_mainwindow, "_why_button");
    ASSERT_NE(why, nullptr);
    EXPECT_FALSE(XtIsManaged(why));
    const std::string name = "-nobody-nothing-medium-r-normal--12-120-75-75-p-70-iso8859-1";
    gw::show_in_name(wi_installed_sample_textfield, name, "A", "");
    EXPECT_TRUE(pump_until([&] { return is_viewable(why); }));
    ASSERT_TRUE(press(why));
    EXPECT_TRUE(pump_until([] { return is_viewable(wi_doctor_dlg); }));
    EXPECT_EQ(doctor.pasted, name);
    EXPECT_EQ(text("question_text"), name);
    gw::show_in_name(wi_installed_sample_textfield, "fixed", "A", "");
    EXPECT_FALSE(XtIsManaged(why));
    gw::show_in_name(wi_installed_sample_textfield, name, "A", "");
    EXPECT_TRUE(XtIsManaged(why));
    clear_sample_textfield(wi_installed_sample_textfield);
    EXPECT_FALSE(XtIsManaged(why));
}

TEST_F(DoctorTest, TheSampleFieldIsAsWideAsBeforeWhenTheButtonHasGone) {
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_mainwindow); }));
    const auto width = [] {
        Dimension now = 0;
        XtVaGetValues(wi_installed_sample_textfield, XmNwidth, &now, nullptr);
        return now;
    };
    const Dimension before = width();
    gw::show_in_name(wi_installed_sample_textfield, "-nobody-nothing", "A", "");
    pump();
    EXPECT_LT(width(), before);
    clear_sample_textfield(wi_installed_sample_textfield);
    pump();
    EXPECT_EQ(width(), before);
}

// --- asking ------------------------------------------------------------------

TEST_F(DoctorTest, AsksWhatWasPasted) {
    EXPECT_FALSE(XtIsSensitive(part("report_button")));
    ask();
    EXPECT_EQ(doctor.pasted, MESSAGE);
    EXPECT_EQ(doctor.asked, 1);
    EXPECT_TRUE(XtIsSensitive(part("report_button")));
    EXPECT_EQ(message(), " ");
}

TEST_F(DoctorTest, ASentenceAboutTheServerStandsFirst) {
    ask();
    EXPECT_EQ(text("answer_text"),
              gw::in_words({Said::SERVER_IS_ELSEWHERE}) + '\n' + gw::in_words({Said::NOTHING_ASKED}));
}

TEST_F(DoctorTest, ReturnAsksAndShiftReturnBeginsALine) {
    paste("fixed");
    XmTextSetInsertionPosition(part("question_text"), 5);
    XmProcessTraversal(part("question_text"), XmTRAVERSE_CURRENT);
    press_key(part("question_text"), "Return", ShiftMask);
    EXPECT_EQ(text("question_text"), "fixed\n");
    EXPECT_EQ(doctor.asked, 0);
    press_key(part("question_text"), "Return");
    EXPECT_EQ(doctor.asked, 1);
    press_key(part("question_text"), "Return", ControlMask);
    EXPECT_EQ(doctor.asked, 2);
    EXPECT_EQ(text("question_text"), "fixed\n");
}

TEST_F(DoctorTest, TabLeavesTheText) {
    paste("fixed");
    XmProcessTraversal(part("question_text"), XmTRAVERSE_CURRENT);
    press_key(part("question_text"), "Tab");
    EXPECT_EQ(text("question_text"), "fixed");
    EXPECT_NE(XmGetFocusWidget(wi_doctor_dlg), part("question_text"));
}

TEST_F(DoctorTest, WithoutAQuestionItSaysSo) {
    ask("");
    EXPECT_EQ(doctor.asked, 0);
    EXPECT_EQ(text("answer_text"), gw::in_words({Said::NOTHING_ASKED}));
    EXPECT_FALSE(XtIsSensitive(part("report_button")));
    EXPECT_EQ(items(part("cures_list")), std::vector<std::string>{});
}

TEST_F(DoctorTest, SeveralQuestionsAreAChoice) {
    EXPECT_FALSE(is_seen("found_list"));
    ask("-adobe-one\n-adobe-two\n-adobe-three");
    EXPECT_TRUE(pump_until([] { return is_seen("found_list"); }));
    EXPECT_EQ(gw::label_of(part("found_label")), "This text has 3 questions. Choose one:");
    EXPECT_EQ(items(part("found_list")),
              (std::vector<std::string>{"-adobe-one", "-adobe-two", "-adobe-three"}));
    EXPECT_EQ(doctor.asked, 1);
    choose("found_list", 3);
    EXPECT_EQ(doctor.asked, 2);
    ASSERT_TRUE(press(part("report_button")));
    EXPECT_EQ(pasted_from("CLIPBOARD", "UTF8_STRING"), "Report on -adobe-three");
    ask("-adobe-one");
    EXPECT_FALSE(is_seen("found_list"));
}

TEST_F(DoctorTest, WhatIsLeftOutOfManyQuestionsIsSaid) {
    std::string many;
    for (std::size_t i = 0; i < gw::diagnosis::MOST_QUESTIONS; ++i)
        many += "-adobe-" + std::to_string(i) + '\n';
    ask(many);
    EXPECT_EQ(gw::label_of(part("found_label")),
              "This text has too many questions. Choose one of the first 50:");
    ask("");
}

/// Whether that line of the list is seen as a whole.
bool has_room_for(Widget list, int line) {
    Dimension list_height = 0;
    Position x = 0;
    Position y = 0;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(list, XmNheight, &list_height, nullptr);
    return XmListPosToBounds(list, line, &x, &y, &width, &height) != False && y + height <= list_height;
}

TEST_F(DoctorTest, KeepsItsSizeWhateverTheAnswerIs) {
    const auto size = [] {
        Dimension width = 0;
        Dimension height = 0;
        XtVaGetValues(wi_doctor_dlg, XmNwidth, &width, XmNheight, &height, nullptr);
        return std::pair(width, height);
    };
    const auto before = size();
    std::string many;
    for (int i = 0; i < 40; ++i)
        many += "-adobe-helvetica-bold-r-normal--" + std::to_string(i) + "-120-75-75-p-70-iso8859-1\n";
    ask(many);
    EXPECT_EQ(size(), before);
    EXPECT_TRUE(has_room_for(part("cures_list"), 3)) << "the list of questions has taken it";
    for (const char* toggle : {"path_toggle", "nearest_toggle", "packages_toggle", "cures_toggle"}) {
        show_page(toggle);
        EXPECT_EQ(size(), before) << toggle;
    }
    ask(std::string(5000, 'x'));
    EXPECT_EQ(size(), before);
}

TEST_F(DoctorTest, IsNotAskedTwiceAtATime) {
    doctor.while_asked = [this] {
        doctor.while_asked = nullptr;
        press(part("ask_button"));
        press(part("clear_button"));
    };
    ask();
    EXPECT_EQ(doctor.asked, 1);
    EXPECT_EQ(text("question_text"), MESSAGE);
}

TEST_F(DoctorTest, ClearsAllButWhatWasDone) {
    ask();
    ASSERT_TRUE(press(part("do_button")));
    ASSERT_TRUE(press(part("clear_button")));
    EXPECT_EQ(text("question_text"), "");
    EXPECT_EQ(text("answer_text"), "");
    EXPECT_EQ(items(part("path_list")), std::vector<std::string>{});
    EXPECT_EQ(items(part("deeds_list")).size(), 1U);
    EXPECT_TRUE(XtIsSensitive(part("undo_button")));
}

TEST_F(DoctorTest, TakesAHundredKilobytesOfAnything) {
    std::string much;
    while (much.size() < 100U * 1024) much += "\x01\x02\x1b[0m\x7f -adobe-helvetica-bold \t";
    for (int i = 1; i < 256; ++i) much += static_cast<char>(i);
    const auto before = std::chrono::steady_clock::now();
    ask(much);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(10));
    EXPECT_EQ(doctor.pasted.find('\x01'), std::string::npos);
    EXPECT_EQ(doctor.pasted.find('\x1b'), std::string::npos);
    EXPECT_NE(doctor.pasted.find("-adobe-helvetica-bold \t"), std::string::npos);
    EXPECT_GT(doctor.pasted.size(), 100U * 1024);
    EXPECT_TRUE(is_viewable(wi_doctor_dlg));
}

// --- the parts of an answer --------------------------------------------------

TEST_F(DoctorTest, ShowsTheElementsOfThePathWithTheirStates) {
    ask();
    show_page("path_toggle");
    EXPECT_TRUE(is_seen("path_list"));
    EXPECT_FALSE(is_seen("cures_list"));
    const std::vector<std::string> lines = items(part("path_list"));
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"works", "1. /usr/share/fonts/X11/misc/"},
        {"works in part", "2. /usr/share/fonts/X11/75dpi/:unscaled"},
        {"does not work", "3. /gone/"},
        {"not known", "4. tcp/fonts.example.org:7100"},
        {"not on the server", "/home/somebody/fonts/"},
    };
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_TRUE(lines[i].starts_with(expected[i].first)) << lines[i];
        EXPECT_TRUE(lines[i].ends_with(expected[i].second)) << lines[i];
    }
    // The first one that does not work is shown.
    EXPECT_EQ(text("remarks_text"), gw::in_words({Said::SERVER_HAS_GONE}));
    choose("path_list", 3);
    EXPECT_EQ(text("remarks_text"), gw::in_words({Said::NOTHING_ASKED}));
    int top = 0;
    XtVaGetValues(part("path_list"), XmNtopItemPosition, &top, nullptr);
    EXPECT_EQ(top, 1) << "all lines fit";
}

TEST_F(DoctorTest, ShowsTheNearestFontsWithASample) {
    sample_text = "Sample";
    ask();
    show_page("nearest_toggle");
    ASSERT_EQ(items(part("nearest_list")).size(), 2U);
    EXPECT_EQ(text("differences_text"), std::string("This is the font that was asked for.\nFile: ") +
                                            FONT_FILE + "\nOther encodings in this file: 4");
    EXPECT_FALSE(XtIsSensitive(part("use_button"))) << "the server does not have it";
    choose("nearest_list", 2);
    EXPECT_TRUE(text("differences_text").starts_with(gw::in_words({Said::NOTHING_ASKED})));
    EXPECT_EQ(shown_text(part("nearest_page._sample_textfield")), "Sample");
    ASSERT_TRUE(press(part("copy_name_button")));
    EXPECT_EQ(pasted_from("CLIPBOARD", "STRING"), NEAR_FONT);
    EXPECT_EQ(message(), "This is on the clipboard.");
}

TEST_F(DoctorTest, AFontThatIsNotServedIsDrawnFromItsFile) {
    const TempDir fonts;
    doctor.near_file = fonts.write("helvB12.bdf", BitmapMaker().make_bdf());
    sample_text = "Sample";
    ask();
    show_page("nearest_toggle");
    Widget picture = part("nearest_page._file_sample");
    EXPECT_TRUE(pump_until([&] { return is_mapped(picture); }));
    EXPECT_GT(ink(picture), 20);
    EXPECT_EQ(message(), "This sample is drawn from the file of the font: the X server does not have it.");
    choose("nearest_list", 2);
    EXPECT_FALSE(is_mapped(picture));
    EXPECT_EQ(message(), " ");
    doctor.near_file = fonts.write("bad.pcf", "no font");
    ask();
    show_page("nearest_toggle");
    EXPECT_FALSE(is_mapped(picture));
    EXPECT_EQ(message(), doctor.near_file + ": this is no font");
}

TEST_F(DoctorTest, ANearFontCanBeUsedInstead) {
    ask();
    show_page("nearest_toggle");
    choose("nearest_list", 2);
    ASSERT_TRUE(press(part("use_button")));
    ASSERT_EQ(doctor.cures.size(), 1U);
    EXPECT_EQ(doctor.cures[0].remedy, Remedy::ADD_ALIAS);
    EXPECT_EQ(doctor.cures[0].wanted, MESSAGE);
    EXPECT_EQ(doctor.cures[0].font, NEAR_FONT);
}

TEST_F(DoctorTest, ShowsPackagesWithTheCommandToCopy) {
    ask();
    show_page("packages_toggle");
    EXPECT_EQ(items(part("packages_list")),
              (std::vector<std::string>{std::string("xfonts-75dpi, with ") + MISSING_FONT,
                                        std::string("gsfonts-x11, with ") + NEAR_FONT}));
    EXPECT_EQ(shown_text(part("install_value")), "sudo apt-get install xfonts-75dpi");
    choose("packages_list", 2);
    EXPECT_EQ(shown_text(part("install_value")), "sudo apt-get install gsfonts-x11");
    ASSERT_TRUE(press(part("copy_install_button")));
    EXPECT_EQ(pasted_from("PRIMARY", "UTF8_STRING"), "sudo apt-get install gsfonts-x11");
}

TEST_F(DoctorTest, ShowsWhatCoversTheCharsetsOfAFontset) {
    ask();
    EXPECT_FALSE(XtIsSensitive(part("charsets_toggle"))) << "no fontset was asked for";
    doctor.is_fontset = true;
    ask();
    show_page("charsets_toggle");
    const std::vector<std::string> lines = items(part("charsets_list"));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].ends_with(NEAR_FONT)) << lines[0];
    EXPECT_TRUE(lines[1].ends_with("no font")) << lines[1];
    choose("charsets_list", 2);
    EXPECT_NE(text("coverage_text").find("sudo apt-get install xfonts-75dpi"), std::string::npos);
    EXPECT_EQ(shown_text(part("base_names_value")), std::string(MISSING_FONT) + ',' + NEAR_FONT);
    ASSERT_TRUE(press(part("copy_base_names_button")));
    EXPECT_EQ(pasted_from("CLIPBOARD", "STRING"), std::string(MISSING_FONT) + ',' + NEAR_FONT);
}

TEST_F(DoctorTest, TheReportIsOnTheClipboardInAllForms) {
    ask();
    ASSERT_TRUE(press(part("report_button")));
    EXPECT_EQ(message(), "The report is on the clipboard.");
    const std::string report = std::string("Report on ") + MESSAGE;
    for (const char* selection : {"CLIPBOARD", "PRIMARY"}) {
        for (const char* target : {"UTF8_STRING", "STRING", "COMPOUND_TEXT", "TEXT"})
            EXPECT_EQ(pasted_from(selection, target), report) << selection << ' ' << target;
        EXPECT_EQ(pasted_from(selection, "DRAWABLE"), std::nullopt);
        EXPECT_TRUE(pasted_from(selection, "TARGETS").has_value());
    }
}

TEST_F(DoctorTest, ALineOfAListIsCopiedByTheKeyboard) {
    ask();
    show_page("path_toggle");
    choose("path_list", 1);
    XmProcessTraversal(part("path_list"), XmTRAVERSE_CURRENT);
    press_key(part("path_list"), "c", ControlMask);
    for (const char* target : {"STRING", "COMPOUND_TEXT"}) {
        const std::optional<std::string> line = pasted_from("CLIPBOARD", target);
        ASSERT_TRUE(line) << target;
        EXPECT_TRUE(line->starts_with("works ")) << *line;
        EXPECT_NE(line->find("1. /usr/share/fonts/X11/misc/"), std::string::npos) << *line;
    }
}

TEST_F(DoctorTest, TheAnswerIsCopiedByTheKeyboard) {
    ask();
    XmProcessTraversal(part("answer_text"), XmTRAVERSE_CURRENT);
    press_key(part("answer_text"), "a", ControlMask);
    press_key(part("answer_text"), "c", ControlMask);
    EXPECT_EQ(pasted_from("CLIPBOARD", "STRING"), text("answer_text"));
}

// --- cures -------------------------------------------------------------------

TEST_F(DoctorTest, ACureIsCarriedOutAndTheServerAskedAgain) {
    ask();
    EXPECT_TRUE(is_seen("cures_list"));
    select(wi_hrn_list, {1});
    ASSERT_TRUE(press(part("do_button")));
    ASSERT_EQ(doctor.cures.size(), 1U);
    EXPECT_EQ(doctor.cures[0].remedy, Remedy::SERVE_DIRECTORY);
    EXPECT_EQ(doctor.asked, 2);
    EXPECT_EQ(text("answer_text"), std::string("It works now: drawn from ") + FONT_FILE + '.');
    EXPECT_EQ(items(part("deeds_list")), std::vector<std::string>{gw::in_words({Said::NOTHING_ASKED})});
    // The main window has read its fonts again.
    EXPECT_EQ(gw::test::items(wi_hrn_list).size(),
              static_cast<std::size_t>(the_installed_hrn_count + the_alias_count));
    int selected = -1;
    XtVaGetValues(wi_hrn_list, XmNselectedItemCount, &selected, nullptr);
    EXPECT_EQ(selected, 0);
}

TEST_F(DoctorTest, WhatElseHasComeOfACureIsSaid) {
    doctor.deed_remarks = {{Said::SERVER_HAS_GONE}};
    ask();
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_EQ(text("answer_text"), std::string("It works now: drawn from ") + FONT_FILE + ".\n" +
                                       gw::in_words({Said::SERVER_HAS_GONE}));
}

TEST_F(DoctorTest, TheMessageIsExplainedUntilItIsOver) {
    doctor.notes = {{Said::PROGRAM_LACKED_FONT}};
    ask();
    EXPECT_NE(text("answer_text").find(gw::in_words({Said::PROGRAM_LACKED_FONT})), std::string::npos);
    EXPECT_EQ(text("cure_text"), gw::in_words({Said::NOTHING_ASKED}));
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_EQ(text("answer_text"), std::string("It works now: drawn from ") + FONT_FILE + '.');
    EXPECT_EQ(text("cure_text"), "");
}

TEST_F(DoctorTest, ACureIsTakenBack) {
    ask();
    EXPECT_FALSE(XtIsSensitive(part("undo_button")));
    ASSERT_TRUE(press(part("do_button")));
    ASSERT_TRUE(press(part("undo_button")));
    EXPECT_EQ(doctor.undone, 1);
    EXPECT_EQ(doctor.asked, 3);
    EXPECT_TRUE(text("answer_text").starts_with("This was taken back.\n")) << text("answer_text");
    EXPECT_EQ(items(part("deeds_list")), std::vector<std::string>{});
    EXPECT_FALSE(XtIsSensitive(part("undo_button")));
}

TEST_F(DoctorTest, TheNewestDeedIsTheFirst) {
    ask();
    ASSERT_TRUE(press(part("do_button")));
    doctor.is_mended = false;
    ask();
    choose("cures_list", 2);
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_EQ(items(part("deeds_list")), (std::vector<std::string>{gw::in_words({Said::SERVER_HAS_GONE}),
                                                                   gw::in_words({Said::NOTHING_ASKED})}));
    choose("deeds_list", 2);
    ASSERT_TRUE(press(part("undo_button")));
    EXPECT_EQ(items(part("deeds_list")), std::vector<std::string>{gw::in_words({Said::SERVER_HAS_GONE})});
}

TEST_F(DoctorTest, ARefusedCureSaysWhyAndLeavesTheAnswer) {
    ask();
    const std::string before = text("answer_text");
    doctor.refuses = true;
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_EQ(message(), "/home/somebody/fonts/: the X server does not take this directory");
    EXPECT_EQ(text("answer_text"), before);
    EXPECT_EQ(items(part("deeds_list")), std::vector<std::string>{});
}

TEST_F(DoctorTest, ARefusedUndoKeepsTheDeed) {
    ask();
    ASSERT_TRUE(press(part("do_button")));
    doctor.refuses = true;
    ASSERT_TRUE(press(part("undo_button")));
    EXPECT_EQ(message(), "/home/somebody/fonts/: the X server does not take this directory");
    EXPECT_EQ(items(part("deeds_list")).size(), 1U);
    EXPECT_TRUE(XtIsSensitive(part("undo_button")));
}

/// The window said that it works now, although somebody had taken the directory away.
TEST_F(DoctorTest, AfterARefusalTheAnswerIsThatOfNow) {
    ask();
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_TRUE(text("answer_text").starts_with("It works now: drawn from "));
    doctor.refuses = true;
    doctor.is_mended = false;
    ASSERT_TRUE(press(part("undo_button")));
    EXPECT_EQ(text("answer_text").find("It works"), std::string::npos) << text("answer_text");
    EXPECT_EQ(message(), "/home/somebody/fonts/: the X server does not take this directory");
    EXPECT_TRUE(XtIsSensitive(part("do_button")));
    EXPECT_EQ(items(part("deeds_list")).size(), 1U);
}

TEST_F(DoctorTest, WhatOnlyTheAdministratorMayDoIsACommandToCopy) {
    ask();
    EXPECT_FALSE(XtIsSensitive(part("copy_command_button")));
    choose("cures_list", 3);
    EXPECT_FALSE(XtIsSensitive(part("do_button")));
    EXPECT_EQ(shown_text(part("command_value")), "sudo mkfontdir /usr/share/fonts/X11/75dpi");
    ASSERT_TRUE(press(part("copy_command_button")));
    EXPECT_EQ(pasted_from("CLIPBOARD", "UTF8_STRING"), "sudo mkfontdir /usr/share/fonts/X11/75dpi");
    EXPECT_TRUE(doctor.cures.empty());
}

TEST_F(DoctorTest, NothingIsCuredWhileFontsAreInstalled) {
    ask();
    the_wp_cl_data = {{1, 2}, 0, 0};
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_TRUE(doctor.cures.empty());
    EXPECT_EQ(message(), "Fonts are being installed or deleted. Try it again when that is done.");
}

TEST_F(DoctorTest, ALongCureSaysHowFarItIsAndCanBeStopped) {
    doctor.files_to_read = 5;
    std::vector<std::string> said;
    doctor.while_cured = [&](std::size_t done) {
        if (done > 0) said.push_back(message());
        EXPECT_EQ(may_install(), done == 0) << "no other work is begun";
        press(part("ask_button"));
        press(part("do_button"));
        if (done == 3) press(part("close_button"));
    };
    ask();
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_EQ(said, (std::vector<std::string>{"Fonts that have been read: 0 of 5. \"Close\" stops it.",
                                              "Fonts that have been read: 1 of 5. \"Close\" stops it.",
                                              "Fonts that have been read: 2 of 5. \"Close\" stops it."}));
    EXPECT_EQ(message(), "This was stopped. Nothing was changed.");
    EXPECT_TRUE(XtIsManaged(wi_doctor_dlg));
    EXPECT_TRUE(may_install());
    EXPECT_TRUE(doctor.cures.empty());
    EXPECT_EQ(doctor.asked, 1);

    doctor.while_cured = nullptr;
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_EQ(doctor.cures.size(), 1U);
    EXPECT_EQ(message(), " ");
    EXPECT_TRUE(may_install());
    press(part("close_button"));
    EXPECT_FALSE(XtIsManaged(wi_doctor_dlg));
}

TEST_F(DoctorTest, FontsOfADirectoryAreInstalledByTheInstallDialog) {
    const TempDir source;
    doctor.first_remedy = Remedy::INSTALL_DIRECTORY;
    doctor.first_element = source.path();
    ask();
    ASSERT_TRUE(press(part("do_button")));
    EXPECT_TRUE(pump_until([] { return is_viewable(wi_install_dlg); }));
    EXPECT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
    EXPECT_EQ(current_dir, source.path());
    EXPECT_TRUE(doctor.cures.empty());
}

// --- leaving -----------------------------------------------------------------

TEST_F(DoctorTest, EscapeAndTheCloseBoxCloseIt) {
    XmProcessTraversal(part("question_text"), XmTRAVERSE_CURRENT);
    press_key(part("question_text"), "Escape");
    EXPECT_FALSE(XtIsManaged(wi_doctor_dlg));
    start_doctor_dlg();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_doctor_dlg); }));
    close_box(wi_doctor_dlg);
    EXPECT_FALSE(XtIsManaged(wi_doctor_dlg));
}

TEST_F(DoctorTest, HelpShowsTheManual) {
    ASSERT_TRUE(press(part("help_button")));
    EXPECT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); }));
    const std::string heading = "WHY A FONT IS MISSING\n";
    const gw::XtOwned<char> page(XmTextGetString(wi_text));
    ASSERT_NE(std::string(page.get()).find('\n' + heading), std::string::npos);
    EXPECT_EQ(std::string(page.get())
                  .substr(static_cast<std::size_t>(XmTextGetTopCharacter(wi_text)), heading.size()),
              heading);
    XtUnmanageChild(wi_help_dlg);
}

}  // namespace
