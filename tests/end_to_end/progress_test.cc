// SPDX-License-Identifier: MIT
//
// Work that takes long is cancelled by mouse and keyboard, and asks after a failure, in two languages. What
// takes long is a directory that another program is changing: the program waits for it.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"
#include "store/directory_change.h"

#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

// Their lines come before those of all staged fonts, in this order.
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};

/// What a user of this locale sees.
struct Words {
    const char* locale;
    const char* question;
    const char* progress;
    const char* problem;
    const char* summary;
};

void PrintTo(const Words& words, std::ostream* out) {
    *out << words.locale;
}

constexpr Words ENGLISH = {"C", "Glyph Warden - Deletion Confirmation", "Font Deletion Progress Dialog",
                           "Glyph Warden - Font Not Done", "Glyph Warden - Summary"};
constexpr Words GERMAN = {"de_DE.UTF-8", "Glyph Warden - L\xc3\xb6schen best\xc3\xa4tigen",
                          "Fortschritt der Schriftl\xc3\xb6schung", "Glyph Warden - Schrift nicht bearbeitet",
                          "Glyph Warden - Zusammenfassung"};

class ProgressTest : public ProgramTest, public testing::WithParamInterface<Words> {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "no work is controlled";
        AARDVARKS.write_to(changing.path());
        ABYSSINIA.write_to(free.path());
        for (const TempDir* dir : {&free, &changing}) {
            index_fonts(dir->path());
            list_fonts_of(dir->path());
        }
        start({{"LANG", GetParam().locale}});
        desktop.scroll_to_start(main->list_scroll_bar);
        // The program waits five seconds for whoever changes a directory.
        other_program = std::move(*gw::DirectoryChange::begin(changing.path()));
    }
    /// Begins to delete both fonts; false when the program does not ask.
    bool begin() {
        const Window asked = opens(GetParam().question, [&] {
            main->click_line(0);
            main->click_line(1, "Control_L");
            desktop.click_middle(main->delete_button);
        });
        if (asked == 0) return false;
        desktop.key("Left");
        desktop.key("space");
        return true;
    }
    /// The same; the progress window, 0 when it does not come.
    Window delete_both() {
        if (!begin()) return 0;
        return desktop.appears(GetParam().progress) ? desktop.window_titled(GetParam().progress) : 0;
    }
    /// How long it takes until the work that is cancelled now is over.
    std::chrono::milliseconds time_to_cancel(const std::function<void()>& cancel) {
        const Hurry during_the_work(desktop);
        const auto start = std::chrono::steady_clock::now();
        cancel();
        EXPECT_TRUE(wait_until([&] { return !desktop.is_visible(GetParam().progress); }));
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                     start);
    }
    [[nodiscard]] bool both_are_there() const {
        return changing.exists(AARDVARKS.file_name()) && free.exists(ABYSSINIA.file_name());
    }
    void picture(const std::string& of) { desktop.picture("progress-" + of + '-' + GetParam().locale); }

    TempDir changing;
    TempDir free;
    std::unique_ptr<gw::DirectoryChange> other_program;
};

// The wait would be 5 seconds, so that less is an answer; how long it takes is in the log.
constexpr std::chrono::seconds AT_ONCE(2);

TEST_P(ProgressTest, TheMouseCancelsInTheMiddleOfAFont) {
    const Window window = delete_both();
    ASSERT_NE(window, 0U);
    ASSERT_TRUE(wait_until([&] { return desktop.part_named(window, "cancel_button") != 0; }));
    picture("works");
    const auto taken =
        time_to_cancel([&] { desktop.click_middle(desktop.part_named(window, "cancel_button")); });
    std::printf("cancelled by mouse after %d ms\n", static_cast<int>(taken.count()));
    EXPECT_LT(taken, AT_ONCE);
    picture("cancelled");
    EXPECT_TRUE(both_are_there());
    other_program.reset();
    // Everything can be done again.
    ASSERT_TRUE(begin());
    EXPECT_TRUE(wait_until([&] { return !changing.exists(AARDVARKS.file_name()); }));
    EXPECT_TRUE(wait_until([&] { return !free.exists(ABYSSINIA.file_name()); }));
}

TEST_P(ProgressTest, TheKeyboardCancels) {
    for (const char* key : {"Escape", "space"}) {
        ASSERT_NE(delete_both(), 0U);
        ASSERT_TRUE(gets_keyboard(GetParam().progress));
        const auto taken = time_to_cancel([&] { desktop.key(key); });
        std::printf("cancelled by %s after %d ms\n", key, static_cast<int>(taken.count()));
        EXPECT_LT(taken, AT_ONCE);
        EXPECT_TRUE(both_are_there());
    }
}

TEST_P(ProgressTest, TheEndOfTheProgramCancels) {
    ASSERT_NE(delete_both(), 0U);
    const auto start = std::chrono::steady_clock::now();
    ::kill(program->pid(), SIGTERM);
    EXPECT_EQ(program->wait_for_exit(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, AT_ONCE);
    EXPECT_TRUE(both_are_there());
}

TEST_P(ProgressTest, ClosingTheMainWindowCancels) {
    ASSERT_NE(delete_both(), 0U);
    const auto start = std::chrono::steady_clock::now();
    desktop.ask_to_close(main->window);
    EXPECT_EQ(program->wait_for_exit(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, AT_ONCE);
    EXPECT_TRUE(both_are_there());
}

TEST_P(ProgressTest, AfterAFailureTheOthersGoOn) {
    ASSERT_NE(delete_both(), 0U);
    ASSERT_TRUE(desktop.appears(GetParam().problem));
    ASSERT_TRUE(gets_keyboard(GetParam().problem));
    picture("question");
    desktop.key("Return");
    EXPECT_TRUE(wait_until([&] { return !free.exists(ABYSSINIA.file_name()); }));
    EXPECT_TRUE(changing.exists(AARDVARKS.file_name()));
    EXPECT_TRUE(desktop.appears(GetParam().summary));
    picture("skipped");
}

TEST_P(ProgressTest, StopLeavesTheRest) {
    ASSERT_NE(delete_both(), 0U);
    ASSERT_TRUE(desktop.appears(GetParam().problem));
    const Window window = desktop.window_titled(GetParam().problem);
    ASSERT_TRUE(gets_keyboard(GetParam().problem));
    desktop.click_middle(desktop.part_named(window, "stop_button"));
    ASSERT_TRUE(desktop.appears(GetParam().summary));
    EXPECT_FALSE(desktop.is_visible(GetParam().progress));
    desktop.park_pointer();
    picture("stopped");
    EXPECT_TRUE(both_are_there());
}

TEST_P(ProgressTest, TheEndOfTheProgramIsAnAnswer) {
    ASSERT_NE(delete_both(), 0U);
    ASSERT_TRUE(desktop.appears(GetParam().problem));
    ::kill(program->pid(), SIGTERM);
    EXPECT_EQ(program->wait_for_exit(), 0);
    EXPECT_TRUE(both_are_there());
}

INSTANTIATE_TEST_SUITE_P(Languages, ProgressTest, testing::Values(ENGLISH, GERMAN));

}  // namespace
