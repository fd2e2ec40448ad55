// SPDX-License-Identifier: MIT
//
// What the install dialog says about fonts before they go in: which cannot be installed, which are installed
// already, what is not offered at all, and what becomes of fonts that no X server opens.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <utility>

#include "app/common/progressdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/installing/convertdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/installing/notoffereddlg.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/lists.h"
#include "app/program/work_record.h"
#include "app/samples/sample_font.h"

#include "platform/scratch.h"
#include "support/processes.h"
#include "support/xlib_leaks.h"
#include "widget/work_test_support.h"

#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using Texts = std::vector<std::string>;

const std::string SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const std::string BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf";
const std::string TEX = "/usr/share/texmf/fonts/type1/public/lm/lmr10.pfb";
const std::string CFF = "/usr/share/texmf/fonts/opentype/public/lm/lmmono10-regular.otf";

std::string status() {
    return label(wi_install_dlg, "_message_label");
}

/// The lines of a list without the blanks before their marks.
Texts squeezed(Texts lines) {
    for (std::string& line : lines) {
        std::string short_line;
        for (const char c : line) {
            if (c != ' ' || short_line.empty() || short_line.back() != ' ') short_line += c;
        }
        line = short_line;
    }
    return lines;
}

class Verdicts : public WorkTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
    }
    void SetUp() override {
        WorkTest::SetUp();
        choose_destination(destination.path());
    }
    // A directory that has gone would keep the server from taking the next test's.
    void TearDown() override {
        WorkTest::TearDown();
        set_server_font_path(path_before_);
    }
    void bring(const std::string& path, const std::string& name) const {
        std::filesystem::copy_file(path, source.file(name));
    }
    void bring_first_half(const std::string& path, const std::string& name) const {
        const std::string bytes = TempDir::read_bytes(path);
        source.write(name, bytes.substr(0, bytes.size() / 2));
    }
    /// Bytes without any meaning.
    void bring_noise(const std::string& name) const {
        std::string noise;
        for (int i = 0; i < 200; ++i) noise += static_cast<char>(i * 7919 % 251);
        source.write(name, noise);
    }
    /// Lists the source while the dialog is closed, so that nothing is checked.
    void list_source() const {
        installdlg::from_dir_specified_cb(source.c_str());
        ASSERT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
    }
    /// Lists the source in the open dialog, and waits for all verdicts.
    void list_and_check_source() const {
        open_install_dialog();
        list_source();
        ASSERT_TRUE(wait_for_checks());
    }
    static bool wait_for_checks() {
        return pump_until([] { return !gw::are_source_checks_pending(); }, 60000);
    }
    static Texts rows() { return squeezed(items(source_list())); }
    static std::vector<int> selected() { return gw::selected_positions(source_list()); }
    /// The position of the row that begins like this.
    static int row_of(const std::string& start) {
        int position = 0;
        for (const std::string& row : rows()) {
            ++position;
            if (row.starts_with(start)) return position;
        }
        return 0;
    }
    static Texts summary_lines() { return items(find(wi_preconflict_dlg, "failed_list")); }

    TempDir source;
    TempDir destination;

  private:
    std::vector<std::string> path_before_ = server_font_path();
};

TEST_F(Verdicts, WhatCannotBeInstalledSaysSoAndCannotBeChosen) {
    bring(BOLD, "Bold.ttf");
    bring_first_half(SANS, "cut.ttf");
    bring_noise("noise.pfb");
    source.write("nothing.ttf", "");
    list_and_check_source();
    ASSERT_THAT(rows(), ElementsAre("cut.ttf [TrueType] [Damaged]", "DejaVu Sans Mono Bold [TrueType]",
                                    "noise.pfb [Type-1] [Not a Font]", "nothing.ttf [TrueType] [Empty]"));
    select(source_list(), {1, 2, 3, 4});
    EXPECT_THAT(selected(), ElementsAre(2));
    EXPECT_THAT(status(), StartsWith("3 of the selected fonts cannot be installed, among them "));
    select(source_list(), {4});
    EXPECT_THAT(selected(), ElementsAre());
    EXPECT_EQ(status(), "nothing.ttf: this file is empty");
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_install_button"));
    ASSERT_TRUE(press(find(wi_install_dlg, "_select_all_button")));
    EXPECT_THAT(selected(), ElementsAre(2));
}

TEST_F(Verdicts, AnEntryThatIsChosenIsCheckedAtOnce) {
    bring_first_half(TEX, "cut.pfb");
    list_source();
    ASSERT_THAT(rows(), ElementsAre(EndsWith("[Type-1]"))) << "it has a name";
    select(source_list(), {1});
    EXPECT_THAT(rows(), ElementsAre(EndsWith("[Damaged]")));
    EXPECT_THAT(selected(), ElementsAre());
    EXPECT_EQ(status(), "cut.pfb: the end of this font is missing");
}

TEST_F(Verdicts, TheSelectionSurvivesThem) {
    for (const char* name : {"a.pfb", "b.pfb", "d.pfb"}) bring(TEX, name);
    bring_first_half(TEX, "c.pfb");
    list_source();
    ASSERT_THAT(rows(), SizeIs(4));
    // As a user who has selected while nothing is known yet; this calls no callbacks.
    const std::vector<int> all = {1, 2, 3, 4};
    XtVaSetValues(source_list(), XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    for (const int position : all) XmListSelectPos(source_list(), position, False);
    XtVaSetValues(source_list(), XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
    for (const int position : all) gw::check_source_entry(position);
    std::vector<int> good;
    for (const int position : all) {
        if (!rows()[static_cast<std::size_t>(position) - 1].ends_with("[Damaged]")) good.push_back(position);
    }
    ASSERT_THAT(good, SizeIs(3));
    EXPECT_EQ(selected(), good);
    EXPECT_EQ(status(), "c.pfb: the end of this font is missing");
}

// A good font with a mark could not be installed at all.
TEST_F(Verdicts, NoFontOfTheDistributionIsUnfit) {
    open_install_dialog();
    for (const char* dir : {"/usr/share/fonts/truetype/dejavu/", "/usr/share/fonts/X11/misc/"}) {
        installdlg::from_dir_specified_cb(dir);
        ASSERT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }, 60000));
        ASSERT_TRUE(wait_for_checks());
        EXPECT_GT(rows().size(), 5U) << dir;
        int position = 0;
        for (const std::string& row : rows()) {
            ++position;
            EXPECT_TRUE(gw::is_offered(*current_hrn_list.get_elem_at_pos(position))) << dir << ": " << row;
        }
    }
}

/// What the list had when the first names of a source were shown.
Texts& seen_first() {
    static Texts seen;
    return seen;
}

TEST_F(Verdicts, ALargeSourceIsShownBeforeAllNamesAreKnown) {
    for (int i = 100; i < 120; ++i) bring(i % 2 != 0 ? SANS : BOLD, "f" + std::to_string(i) + ".ttf");
    bring_noise("noise.ttf");
    seen_first().clear();
    gw::first_source_names().connect([](const Texts&) {
        EXPECT_EQ(current_hrn_list.get_count(), 0);
        EXPECT_TRUE(gw::is_lookup_pending());
        seen_first() = items(source_list());
    });
    list_source();
    EXPECT_THAT(seen_first(), SizeIs(20));
    EXPECT_THAT(seen_first(), Contains("DejaVu Sans Medium (f101.ttf) [TrueType]"));
    EXPECT_THAT(seen_first(), Contains("DejaVu Sans Mono Bold (f100.ttf) [TrueType]"));
    EXPECT_EQ(current_hrn_list.get_count(), 21);
    EXPECT_THAT(rows(), SizeIs(21)) << "the noise is shown with its mark";
    for (const std::string& name : seen_first()) EXPECT_THAT(rows(), Contains(name));
}

TEST_F(Verdicts, AnotherSourceEndsTheChecking) {
    for (char c = 'a'; c < 'k'; ++c) bring(SANS, std::string(1, c) + ".ttf");
    open_install_dialog();
    list_source();
    ASSERT_TRUE(gw::are_source_checks_pending());
    installdlg::from_dir_specified_cb(destination.c_str());
    EXPECT_FALSE(gw::are_source_checks_pending());
    ASSERT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
    EXPECT_THAT(rows(), ElementsAre());
}

TEST_F(Verdicts, ClosingTheDialogEndsTheCheckingAndOpeningItGoesOn) {
    for (char c = 'a'; c < 'k'; ++c) bring(SANS, std::string(1, c) + ".ttf");
    bring_first_half(SANS, "z.ttf");
    open_install_dialog();
    list_source();
    close_box(wi_install_dlg);
    EXPECT_FALSE(gw::are_source_checks_pending());
    open_install_dialog();
    ASSERT_TRUE(pump_until([] { return squeezed(items(source_list())).back().ends_with("[Damaged]"); }));
    EXPECT_TRUE(wait_for_checks());
}

TEST_F(Verdicts, ADirectoryOf300MixedFilesTellsWhatItDoesNotOffer) {
    for (int i = 100; i < 120; ++i) bring(BOLD, "good" + std::to_string(i) + ".ttf");
    for (int i = 100; i < 180; ++i) bring_noise("bad" + std::to_string(i) + ".ttf");
    for (int i = 100; i < 300; ++i) source.write("text" + std::to_string(i) + ".txt", "x");
    source.write("fonts.dir", "0\n");
    list_and_check_source();
    EXPECT_THAT(rows(), SizeIs(100));
    EXPECT_EQ(status(), "Not offered: 280 of 300 files");
    ASSERT_TRUE(press(find(wi_install_dlg, "_not_offered_button")));
    EXPECT_EQ(label(wi_not_offered_dlg, "count_label"), "Not offered: 280 of 300 files");
    const Texts lines = items(find(wi_not_offered_dlg, "lines_list"));
    ASSERT_THAT(lines, SizeIs(81));
    EXPECT_EQ(lines.front(), "bad100.ttf: this is no font");
    EXPECT_EQ(lines.back(), "200 other files do not have the extension of a font");
    ASSERT_TRUE(press(find(wi_not_offered_dlg, "close_button")));
    EXPECT_FALSE(is_managed(wi_not_offered_dlg));
}

TEST_F(Verdicts, AnEmptyListIsNotWithoutAWord) {
    for (const char* name : {"letter.txt", "picture.png"}) source.write(name, "x");
    list_and_check_source();
    EXPECT_THAT(rows(), ElementsAre());
    EXPECT_EQ(status(), "Not offered: 2 of 2 files");
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_not_offered_button"));
}

TEST_F(Verdicts, WhereAllIsOfferedNothingIsTold) {
    bring(BOLD, "Bold.ttf");
    source.write("fonts.scale", "0\n");
    list_and_check_source();
    EXPECT_EQ(status(), "");
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_not_offered_button"));
}

TEST_F(Verdicts, WhatIsInstalledAlreadyIsAHint) {
    bring(BOLD, "Bold.ttf");
    bring(SANS, "Sans.ttf");
    list_and_check_source();
    select(source_list(), {row_of("DejaVu Sans Mono")});
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    ASSERT_TRUE(destination.exists("Bold.ttf"));
    // The same font with other bytes.
    std::filesystem::remove(source.file("Bold.ttf"));
    bring(BOLD, "Same.ttf");
    source.write("Other.ttf", TempDir::read_bytes(BOLD) + '\0');
    list_and_check_source();
    EXPECT_THAT(rows(), Contains(AllOf(HasSubstr("(Same.ttf)"), EndsWith("[Installed]"))));
    EXPECT_THAT(rows(), Contains(AllOf(HasSubstr("(Other.ttf)"), EndsWith("[Name Taken]"))));
    const int same = row_of("DejaVu Sans Mono Bold (Same.ttf)");
    select(source_list(), {same});
    EXPECT_THAT(selected(), ElementsAre(same)) << "the user decides about the conflict";
    EXPECT_EQ(status(), "this font is installed already: " + destination.file("Bold.ttf"));
    const int other = row_of("DejaVu Sans Mono Bold (Other.ttf)");
    select(source_list(), {other});
    EXPECT_EQ(status(), "a name of this font belongs to " + destination.file("Bold.ttf"));
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    ASSERT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_THAT(squeezed(items(conflicts_list())), ElementsAre(Not(HasSubstr("[Name Taken]"))))
        << "the decision says more";
    EXPECT_EQ(shown_text(find(wi_conflict_dlg, "old_file")), "Bold.ttf");
    EXPECT_EQ(shown_text(find(wi_conflict_dlg, "new_file")), "Other.ttf");
}

TEST_F(Verdicts, TheSummaryTellsWhatBecameOfTheFontAndWhatIsNotOffered) {
    bring(BOLD, "Mono Bold.TTF");
    bring_noise("noise.pfb");
    source.write("notes.txt", "x");
    list_and_check_source();
    ASSERT_TRUE(press(find(wi_install_dlg, "_select_all_button")));
    installdlg::install_dir_specified_cb(destination.c_str());
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(label(wi_preconflict_dlg, "success_label"), "1 font installed.");
    EXPECT_THAT(summary_lines(),
                ElementsAre(AllOf(HasSubstr("installed"), HasSubstr("DejaVu Sans Mono Bold [TrueType]")), " ",
                            "About the fonts that were installed:",
                            "DejaVu Sans Mono Bold [TrueType]: its copy is called Mono_Bold.ttf", " ",
                            "Not offered:", "noise.pfb: this is no font"));
    EXPECT_TRUE(destination.exists("Mono_Bold.ttf"));
}

TEST_F(Verdicts, AFontThatWasTakenOutOfManyNeedsNoWordAboutTheOthers) {
    bring(BOLD, "Bold.ttf");
    bring(SANS, "Sans.ttf");
    bring_noise("noise.pfb");
    list_and_check_source();
    select(source_list(), {row_of("DejaVu Sans Mono")});
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(destination.exists("Bold.ttf"));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
}

TEST_F(Verdicts, AFontIsConvertedOnlyWhenTheUserAgrees) {
    bring(CFF, "Mono.otf");
    list_and_check_source();
    ASSERT_THAT(rows(), ElementsAre("Latin Modern Mono Medium [OpenType]"));
    select(source_list(), {1});
    ASSERT_THAT(selected(), ElementsAre(1)) << status();
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(is_managed(wi_convert_dlg));
    EXPECT_THAT(message_of(wi_convert_dlg),
                EndsWith("\nMono.otf (OpenType, PostScript outlines) becomes Mono.ttf"));
    ASSERT_TRUE(press(part_of(wi_convert_dlg, XmDIALOG_CANCEL_BUTTON)));
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_THAT(selected(), ElementsAre(1));
    EXPECT_EQ(entries_in(destination.path()), 0);
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(press(part_of(wi_convert_dlg, XmDIALOG_OK_BUTTON)));
    EXPECT_FALSE(is_managed(wi_install_dlg));
    ASSERT_TRUE(pump_until([] { return !the_wp_cl_data.is_in_progress(); }, 60000));
    EXPECT_TRUE(destination.exists("Mono.ttf"));
    EXPECT_THAT(summary_lines(),
                Contains("Latin Modern Mono Medium [OpenType]: no X server opens it, so it was converted "
                         "to Mono.ttf"));
}

/// Closes a window as the window manager does, from another client, as soon as there is such a process.
class ClosingWhen {
  public:
    ClosingWhen(std::string program, Window window)
        : closing_([this, program = std::move(program), window] { close(program, window); }) {}
    ~ClosingWhen() { closing_.join(); }
    ClosingWhen(const ClosingWhen&) = delete;
    ClosingWhen& operator=(const ClosingWhen&) = delete;
    [[nodiscard]] std::chrono::steady_clock::time_point closed() const { return closed_; }

  private:
    void close(const std::string& program, Window window) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (processes_called(program).empty() && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        closed_ = std::chrono::steady_clock::now();
        Display* own = XOpenDisplay(nullptr);
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = XInternAtom(own, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(own, "WM_DELETE_WINDOW", False));
        XSendEvent(own, window, False, NoEventMask, &event);
        XCloseDisplay(own);
    }
    std::chrono::steady_clock::time_point closed_;
    std::thread closing_;
};

TEST_F(Verdicts, AConversionIsCancelledAtOnce) {
    bring(CFF, "Mono.otf");
    list_and_check_source();
    select(source_list(), {1});
    const TempDir tools;
    std::filesystem::permissions(tools.path(), std::filesystem::perms(0755));
    tools.write("fontforge", "#!/bin/sh\necho half >\"$6\"\nexec sleep 1234\n");
    std::filesystem::permissions(tools.file("fontforge"), std::filesystem::perms(0755));
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", (tools.path() + ':' + path).c_str(), 1);
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    {
        const ClosingWhen user("sleep", XtWindow(XtParent(wi_progress_dlg)));
        ASSERT_TRUE(press(part_of(wi_convert_dlg, XmDIALOG_OK_BUTTON)));
        ASSERT_TRUE(wait_for_work());
        EXPECT_LT(std::chrono::steady_clock::now() - user.closed(), std::chrono::seconds(2));
    }
    ::setenv("PATH", path.c_str(), 1);
    for (const std::string& id : processes_called("sleep")) EXPECT_TRUE(goes("sleep", id));
    EXPECT_THAT(main_status(), HasSubstr("Stopped; 1 font was not tried."));
    EXPECT_FALSE(destination.exists("Mono.ttf"));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(gw::scratch_path("/tmp/")))
        EXPECT_FALSE(entry.path().filename().string().starts_with("converted-")) << entry.path();
}

TEST_F(Verdicts, WithoutTheConverterItCannotBeChosen) {
    bring(CFF, "Mono.otf");
    list_source();
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);
    select(source_list(), {1});
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_THAT(rows(), ElementsAre("Latin Modern Mono Medium [OpenType] [Not for X]"));
    EXPECT_THAT(selected(), ElementsAre());
    EXPECT_THAT(status(), StartsWith("Mono.otf: the program that converts such fonts is not installed"));
}

TEST_F(Verdicts, AnotherSelectionTakesTheQuestionBack) {
    bring(CFF, "Mono.otf");
    bring(BOLD, "Bold.ttf");
    list_and_check_source();
    select(source_list(), {row_of("Latin")});
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(is_managed(wi_convert_dlg));
    select(source_list(), {row_of("DejaVu")});
    EXPECT_FALSE(is_managed(wi_convert_dlg));
}

// The server answers with BadAlloc, which ends a client that does not expect it.
TEST_F(Verdicts, AFontWithoutItsEndIsRefusedByTheServerAndEndsNobody) {
    FontDirectory fonts;
    fonts.add("a.pcf", face("alpha"));
    fonts.add("b.pcf", face("beta"));
    const std::string bytes = fonts.read("b.pcf");
    fonts.dir().write("b.pcf", bytes.substr(0, bytes.size() - bytes.size() / 3));
    set_server_font_path([&] {
        Texts path = server_font_path();
        path.push_back(fonts.path());
        return path;
    }());
    EXPECT_EQ(gw::ask_server_for_font(face("alpha")), gw::ServerAnswer::OPENS);
    EXPECT_NE(gw::ask_server_for_font(face("beta")), gw::ServerAnswer::OPENS);
    EXPECT_EQ(gw::ask_server_for_font(face("gamma")), gw::ServerAnswer::KNOWS_NOTHING);
}

}  // namespace
