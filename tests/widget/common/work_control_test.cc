// SPDX-License-Identifier: MIT
//
// Work on many fonts under the user's control: counted, named, cancelled; what happens after a failure.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "app/common/problemdlg.h"
#include "app/common/progressdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/deletedfontsdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "store/trash.h"
#include "support/bitmap_maker.h"
#include "support/small_disk.h"

#include "widget/deleting/undo_test_support.h"
#include "widget/slow_disk.h"

#include <Xm/AtomMgr.h>
#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/Protocols.h>
#include <Xm/Scale.h>

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;

class WorkControl : public UndoTest {
  protected:
    void SetUp() override {
        UndoTest::SetUp();
        answer_questions();
    }
    static std::string destination() { return home().file("glyphwd_fonts/"); }
    static std::string count() { return label(wi_progress_dlg, "action_label"); }
    static std::string name() { return label(wi_progress_dlg, "name_label"); }
    /// The lines of the summary, and those of them that are about a font that failed.
    static std::vector<std::string> summary() { return items(find(wi_preconflict_dlg, "failed_list")); }
    static std::vector<std::string> failed() {
        std::vector<std::string> lines = summary();
        // What the server says of the directories of other tests is another matter.
        std::erase_if(lines, [](const std::string& line) {
            return !line.starts_with("failed") || line.find(" Medium") == std::string::npos;
        });
        return lines;
    }
    static bool has(const std::string& file) { return std::filesystem::exists(destination() + file); }
    static int lines() { return std::atoi(home().read("glyphwd_fonts/fonts.dir").c_str()); }

    /// Fonts "a.pcf", "b.pcf", ... of these families.
    void offer(std::initializer_list<const char*> families, std::size_t kilobytes = 0) {
        for (const char* family : families)
            source.add(std::string(1, family[0]) + ".pcf", face(family), kilobytes);
        choose_source(source);
    }
    /// Nothing of a font that was given up is left.
    static void expect_no_remains() {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(destination())) {
            if (!entry.is_regular_file()) continue;
            const std::string file = entry.path().filename();
            EXPECT_TRUE(file == "lock" || file == "lines" || file == "fonts.dir" || file == "glyphwd.upr" ||
                        file.ends_with(".pcf"))
                << entry.path();
        }
    }
    FontDirectory source;
};

TEST_F(WorkControl, CountsAndNamesTheFonts) {
    offer({"alpha", "beta", "charlie"}, 20);
    std::vector<std::string> seen;
    int value = -1;
    {
        const SlowDisk disk([&](const std::string&) {
            sleep_for(1);
            if (count() + ' ' + name() == (seen.empty() ? "" : seen.back())) return;
            seen.push_back(count() + ' ' + name());
            XmScaleGetValue(find(wi_progress_dlg, "progress_scale"), &value);
        });
        install({1, 2, 3});
    }
    EXPECT_THAT(seen, Contains("Installing 1 of 3: " + listed("Alpha")));
    EXPECT_THAT(seen, Contains("Installing 2 of 3: " + listed("Beta")));
    EXPECT_THAT(seen, Contains("Installing 3 of 3: " + listed("Charlie")));
    EXPECT_THAT(seen.back(), HasSubstr("Finishing..."));
    EXPECT_EQ(value, 2) << "the scale says how many are done";
    EXPECT_THAT(main_status(), AllOf(testing::StartsWith("3 font"), Not(HasSubstr("Stopped"))));
}

TEST_F(WorkControl, CancelsInTheMiddleOfAFont) {
    offer({"alpha", "beta", "charlie", "delta"}, 200);
    std::chrono::steady_clock::time_point cancelled;
    {
        bool is_cancelled = false;
        const SlowDisk disk([&](const std::string&) {
            if (is_cancelled) sleep_for(2);
            if (is_cancelled || !has("b.pcf") || the_wp_cl_data.index != 2) return;
            is_cancelled = true;
            cancelled = std::chrono::steady_clock::now();
            send_close(wi_progress_dlg);
        });
        install({1, 2, 3, 4});
    }
    EXPECT_LT(std::chrono::steady_clock::now() - cancelled, std::chrono::seconds(2));
    EXPECT_THAT(main_status(),
                AllOf(testing::StartsWith("2 font"), HasSubstr("Stopped; 2 fonts were not tried.")));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg)) << "the status line says it all";
    EXPECT_EQ(lines(), 2);
    EXPECT_TRUE(has("a.pcf") && has("b.pcf"));
    EXPECT_FALSE(has("c.pcf") || has("d.pcf"));
    expect_no_remains();
    EXPECT_TRUE(lists("Alpha") && lists("Beta"));
    EXPECT_FALSE(lists("Delta"));
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_install_dlg_button")) << "other work is possible again";
    // The rest can follow.
    open_install_dialog();
    install({3, 4});
    EXPECT_EQ(lines(), 4);
}

TEST_F(WorkControl, CancelsBetweenDeletions) {
    make_fonts({"alpha", "beta", "charlie", "delta"});
    select(wi_hrn_list, {1, 2, 3, 4});
    ASSERT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button")));
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    ASSERT_TRUE(pump_until([] { return the_wp_cl_data.index >= 1 || !the_wp_cl_data.is_in_progress(); }));
    const auto done = the_wp_cl_data.index;
    ASSERT_TRUE(press(find(wi_progress_dlg, "cancel_button")));
    ASSERT_TRUE(wait_for_work());
    ASSERT_LT(done, 4U);
    EXPECT_EQ(installed().index().substr(0, 1), std::to_string(4 - done));
    EXPECT_FALSE(lists("Alpha"));
    EXPECT_TRUE(lists("Delta"));
    EXPECT_THAT(main_status(), HasSubstr("Stopped; "));
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_undo_button"));
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(installed().index().substr(0, 1), "4");
    EXPECT_TRUE(lists("Alpha"));
}

/// Plays the end of the program: notes whether the work was over when the main window's request to be closed
/// was heard.
class PlayedEnd {
  public:
    PlayedEnd() : close_(XInternAtom(display, "WM_DELETE_WINDOW", False)) {
        XmRemoveWMProtocolCallback(wi_toplevel, close_, exit_btn_cb, nullptr);
        XmAddWMProtocolCallback(wi_toplevel, close_, heard, this);
    }
    ~PlayedEnd() {
        XmRemoveWMProtocolCallback(wi_toplevel, close_, heard, this);
        XmAddWMProtocolCallback(wi_toplevel, close_, exit_btn_cb, nullptr);
    }
    PlayedEnd(const PlayedEnd&) = delete;
    PlayedEnd& operator=(const PlayedEnd&) = delete;

    /// What the window manager sends.
    void ask() const {
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = XtWindow(wi_toplevel);
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(close_);
        XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
        XSync(display, False);
    }

    bool is_heard = false;
    bool work_was_over = false;

  private:
    static void heard(Widget, XtPointer end, XtPointer) {
        auto* self = static_cast<PlayedEnd*>(end);
        self->is_heard = true;
        self->work_was_over = !the_wp_cl_data.is_in_progress();
    }
    Atom close_;
};

TEST_F(WorkControl, ClosingTheMainWindowCancelsFirst) {
    offer({"alpha", "beta", "charlie"}, 200);
    PlayedEnd end;
    {
        bool is_asked = false;
        const SlowDisk disk([&](const std::string&) {
            if (is_asked) sleep_for(2);
            if (is_asked || the_wp_cl_data.index != 1) return;
            is_asked = true;
            end.ask();
        });
        select(source_list(), {1, 2, 3});
        ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
        ASSERT_TRUE(pump_until([&] { return end.is_heard; }));
    }
    EXPECT_TRUE(end.work_was_over);
    ASSERT_TRUE(wait_for_work());
    EXPECT_EQ(lines(), 1);
    EXPECT_THAT(main_status(),
                AllOf(testing::StartsWith("1 font"), HasSubstr("Stopped; 2 fonts were not tried.")));
}

// --- failures ------------------------------------------------------------------

TEST_F(WorkControl, AfterAFailureTheOthersGoOn) {
    offer({"alpha", "beta", "charlie"});
    std::filesystem::remove(source.file("b.pcf"));
    std::string reason;
    const When asked(is_asked, [&] {
        reason = label(wi_problem_dlg, "reason_label");
        EXPECT_EQ(title_of(wi_problem_dlg), "Glyph Warden - Font Not Done");
        EXPECT_TRUE(has("a.pcf"));
        EXPECT_FALSE(has("c.pcf"));
        press(find(wi_problem_dlg, "skip_button"));
    });
    install({1, 2, 3});
    EXPECT_TRUE(asked.has_acted());
    EXPECT_THAT(reason, HasSubstr("Beta Medium [Bitmap]: No such file or directory\n"));
    EXPECT_THAT(reason, HasSubstr("b.pcf"));
    EXPECT_FALSE(is_managed(wi_problem_dlg));
    EXPECT_EQ(lines(), 2);
    EXPECT_TRUE(has("a.pcf") && has("c.pcf"));
    EXPECT_THAT(main_status(), AllOf(testing::StartsWith("2 font"), Not(HasSubstr("Stopped"))));
    EXPECT_THAT(failed(), ElementsAre(AllOf(HasSubstr("Beta Medium [Bitmap]No such file or directory"),
                                            HasSubstr("b.pcf"))));
}

TEST_F(WorkControl, StopKeepsWhatIsWholeAndTheSummarySaysSo) {
    offer({"alpha", "beta", "charlie", "delta"});
    std::filesystem::remove(source.file("b.pcf"));
    const When asked(is_asked, [] { press(find(wi_problem_dlg, "stop_button")); });
    install({1, 2, 3, 4});
    EXPECT_TRUE(asked.has_acted());
    EXPECT_EQ(lines(), 1);
    EXPECT_TRUE(has("a.pcf"));
    EXPECT_THAT(main_status(),
                AllOf(testing::StartsWith("1 font"), HasSubstr("Stopped; 2 fonts were not tried.")));
    EXPECT_THAT(failed(), ElementsAre(AllOf(HasSubstr("Beta Medium"), HasSubstr("b.pcf"))));
    EXPECT_THAT(summary(), IsSupersetOf({"You have stopped this:", "Stopped; 2 fonts were not tried."}));
}

TEST_F(WorkControl, SkipAllAsksOnce) {
    offer({"alpha", "beta", "charlie", "delta"});
    const auto move_away = [&](bool goes) {
        for (const char* name : {"a.pcf", "b.pcf", "d.pcf"}) {
            const std::string file = source.file(name);
            std::filesystem::rename(goes ? file : file + ".away", goes ? file + ".away" : file);
        }
    };
    move_away(true);
    int asked = 0;
    const When first(is_asked, [&] {
        ++asked;
        press(find(wi_problem_dlg, "skip_all_button"));
    });
    install({1, 2, 3, 4});
    EXPECT_EQ(asked, 1);
    EXPECT_THAT(main_status(), AllOf(testing::StartsWith("1 font"), Not(HasSubstr("Stopped"))));
    EXPECT_THAT(failed(), SizeIs(3));
    EXPECT_TRUE(has("c.pcf"));
    // The next work asks again.
    const When second(is_asked, [&] {
        ++asked;
        press(find(wi_problem_dlg, "stop_button"));
    });
    move_away(false);
    choose_source(source);
    move_away(true);
    install({1, 2, 4});
    EXPECT_EQ(asked, 2);
}

TEST_F(WorkControl, ClosingTheQuestionStops) {
    offer({"alpha", "beta"});
    std::filesystem::remove(source.file("a.pcf"));
    const When asked(is_asked, [] { press_key(wi_problem_dlg, "Escape"); });
    install({1, 2});
    EXPECT_TRUE(asked.has_acted());
    EXPECT_FALSE(has("b.pcf"));
    EXPECT_THAT(main_status(), HasSubstr("Stopped; 1 font was not tried."));
}

TEST_F(WorkControl, TheLastFailureIsNoQuestion) {
    offer({"alpha", "beta"});
    std::filesystem::remove(source.file("b.pcf"));
    int asked = 0;
    const When ever(is_asked, [&] {
        ++asked;
        press(find(wi_problem_dlg, "skip_button"));
    });
    install({1, 2});
    EXPECT_EQ(asked, 0);
    EXPECT_THAT(failed(), SizeIs(1));
}

// --- a full disk ---------------------------------------------------------------

/// Ten fonts, of which the fifth is too large for the disk.
class FullDisk : public WorkControl {
  protected:
    /// Installs them, and answers as the button says. Returns how often there was a question.
    int install_ten(const char* button) {
        for (const char* family :
             {"alpha", "beta", "charlie", "delta", "echo", "foxtrot", "golf", "hotel", "india", "juliet"}) {
            const std::string file = std::string(1, family[0]) + ".pcf";
            source.add(file, face(family));
            std::string bytes = BitmapMaker().make_pcf();
            if (file == "e.pcf") bytes.resize(200000);
            source.dir().write(file, bytes);
        }
        disk.leave_blocks(32);
        choose_source(source);
        choose_destination(disk.path());
        int asked = 0;
        const When question(is_asked, [&] {
            ++asked;
            EXPECT_THAT(label(wi_problem_dlg, "reason_label"), HasSubstr("No space left on device"));
            press(find(wi_problem_dlg, button));
        });
        install({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
        return asked;
    }
    [[nodiscard]] int lines_on_disk() const { return std::atoi(disk.read("fonts.dir").c_str()); }
    const SmallDisk disk;
};

TEST_F(FullDisk, SkipGoesOnWithWhatFits) {
    EXPECT_EQ(install_ten("skip_button"), 1);
    EXPECT_THAT(main_status(), AllOf(testing::StartsWith("9 font"), Not(HasSubstr("Stopped"))));
    EXPECT_EQ(lines_on_disk(), 9);
    EXPECT_THAT(failed(),
                ElementsAre(AllOf(HasSubstr("Echo Medium [Bitmap]No space left"), HasSubstr("e.pcf"))));
}

TEST_F(FullDisk, SkipAllDoesTheSame) {
    EXPECT_EQ(install_ten("skip_all_button"), 1);
    EXPECT_EQ(lines_on_disk(), 9);
}

TEST_F(FullDisk, StopKeepsTheFirstFour) {
    EXPECT_EQ(install_ten("stop_button"), 1);
    EXPECT_THAT(main_status(),
                AllOf(testing::StartsWith("4 font"), HasSubstr("Stopped; 5 fonts were not tried.")));
    EXPECT_EQ(lines_on_disk(), 4);
    EXPECT_THAT(summary(), Contains("Stopped; 5 fonts were not tried."));
}

// --- bringing back -------------------------------------------------------------

class BringingBack : public WorkControl {
  protected:
    void delete_four() {
        make_fonts({"alpha", "beta", "charlie", "delta"});
        remove({1, 2, 3, 4});
        ASSERT_EQ(installed().index().substr(0, 1), "0");
    }
    void TearDown() override {
        if (is_managed(wi_deleted_fonts_dlg)) press(find(wi_deleted_fonts_dlg, "close_button"));
        WorkControl::TearDown();
    }
};

TEST_F(BringingBack, HasNoWindowWhenItTakesAMoment) {
    delete_four();
    bool had_window = false;
    {
        const SlowDisk disk(
            [&](const std::string&) { had_window = had_window || is_managed(wi_progress_dlg); });
        ASSERT_TRUE(press(undo_button()));
    }
    EXPECT_FALSE(had_window);
    EXPECT_EQ(main_status(), "4 fonts brought back.");
}

TEST_F(BringingBack, SelectsWhatHasComeAndScrollsThere) {
    installed().add("zulu1.pcf", face("zulu1"));
    installed().add("zulu2.pcf", face("zulu2"));
    list_own();
    remove({1, 2});
    ASSERT_TRUE(press(undo_button()));
    const std::vector<int> selected = gw::selected_positions(wi_hrn_list);
    ASSERT_THAT(selected, SizeIs(2));
    const std::string row = items(wi_hrn_list)[static_cast<std::size_t>(selected[0]) - 1];
    EXPECT_TRUE(row.starts_with("Zulu1")) << row;
    int top = 0;
    int visible = 0;
    XtVaGetValues(wi_hrn_list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    EXPECT_GE(selected[0], top);
    EXPECT_LT(selected[0], top + visible);
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_command_form._delete_button"));
}

TEST_F(BringingBack, CountsAndNamesTheFonts) {
    delete_four();
    std::vector<std::string> seen;
    {
        const SlowDisk disk([&](const std::string&) {
            sleep_for(120);
            if (is_managed(wi_progress_dlg)) seen.push_back(count() + ' ' + name());
        });
        ASSERT_TRUE(press(undo_button()));
    }
    EXPECT_THAT(seen, Contains(testing::StartsWith("Bringing back 4 of 4: ")));
    EXPECT_EQ(title_of(wi_progress_dlg), "Glyph Warden - Bringing Fonts Back");
    EXPECT_FALSE(is_managed(wi_progress_dlg));
    EXPECT_EQ(main_status(), "4 fonts brought back.");
}

TEST_F(BringingBack, IsCancelled) {
    delete_four();
    {
        bool is_cancelled = false;
        const SlowDisk disk([&](const std::string& name) {
            if (!name.ends_with(".pcf")) return;
            sleep_for(200);
            if (is_cancelled || !is_managed(wi_progress_dlg)) return;
            is_cancelled = true;
            send_close(wi_progress_dlg);
        });
        ASSERT_TRUE(press(undo_button()));
    }
    EXPECT_THAT(main_status(), HasSubstr(" brought back.  Stopped; "));
    const auto back = static_cast<std::size_t>(std::atoi(installed().index().c_str()));
    EXPECT_GT(back, 0U);
    EXPECT_LT(back, 4U);
    EXPECT_FALSE(the_wp_cl_data.is_in_progress());
    const auto entries = gw::trash_entries(installed().path());
    ASSERT_TRUE(entries);
    ASSERT_THAT(*entries, SizeIs(1));
    EXPECT_EQ(entries->front().fonts.size(), 4 - back) << "what was not brought back is still in the trash";
}

TEST_F(BringingBack, AsksAfterAFailure) {
    delete_four();
    installed().dir().write("beta.pcf", "in the way");
    installed().dir().write("charlie.pcf", "in the way");
    ASSERT_TRUE(press(find(wi_mainwindow, "_tools_pulldown._deleted_fonts_dlg_button")));
    Widget list = find(wi_deleted_fonts_dlg, "deleted_list");
    ASSERT_THAT(items(list), SizeIs(4));
    select(list, {1, 2, 3, 4});
    std::string reason;
    const When asked(is_asked, [&] {
        reason = label(wi_problem_dlg, "reason_label");
        press(find(wi_problem_dlg, "skip_all_button"));
    });
    ASSERT_TRUE(press(find(wi_deleted_fonts_dlg, "bring_back_button")));
    EXPECT_TRUE(asked.has_acted());
    EXPECT_THAT(reason, HasSubstr("there is a file of this name now"));
    EXPECT_EQ(label(wi_deleted_fonts_dlg, "msg_label"), "2 fonts brought back.");
    EXPECT_TRUE(is_managed(wi_warning_dlg)) << "what was left is said";
}

TEST_F(BringingBack, IsOverWhenTheTrashIsEmptiedHalf) {
    constexpr int MANY = 24;
    for (int i = 0; i < MANY; ++i)
        installed().add("f" + std::to_string(i) + ".pcf", face("f" + std::to_string(i)));
    list_own();
    select(wi_hrn_list, {});
    std::vector<int> all;
    for (int i = 1; i <= MANY; ++i) all.push_back(i);
    gw::select_too(wi_hrn_list, all);
    XmListCallbackStruct selected = {};
    selected.reason = XmCR_EXTENDED_SELECT;
    XtCallCallbacks(wi_hrn_list, XmNextendedSelectionCallback, &selected);
    ASSERT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button")));
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    ASSERT_TRUE(wait_for_work());
    ASSERT_TRUE(press(find(wi_mainwindow, "_tools_pulldown._deleted_fonts_dlg_button")));
    ASSERT_TRUE(press(find(wi_deleted_fonts_dlg, "empty_button")));
    {
        bool is_cancelled = false;
        const SlowDisk disk([&](const std::string&) {
            sleep_for(40);
            if (is_cancelled || !is_managed(wi_progress_dlg)) return;
            is_cancelled = true;
            send_close(wi_progress_dlg);
        });
        ASSERT_TRUE(press(find(wi_for_good_dlg, "OK")));
    }
    EXPECT_EQ(label(wi_deleted_fonts_dlg, "msg_label"),
              "20 fonts deleted for good.  Stopped; 4 fonts were not tried.");
    EXPECT_THAT(items(find(wi_deleted_fonts_dlg, "deleted_list")), SizeIs(4));
}

}  // namespace
