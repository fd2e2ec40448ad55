// SPDX-License-Identifier: MIT
//
// The help dialog: the manual page, which is read when the dialog is made, and what is shown without a manual
// page.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/helpdlg.h"
#include "app/program/window_policy.h"
#include "platform/host_paths.h"
#include "support/under_policy.h"
#include "widget/dialogs_test_support.h"

#include <Xm/Text.h>

namespace {

using namespace gw::test;
using testing::HasSubstr;

constexpr const char* SORRY = "Sorry, couldn't read online help. No help available.";
constexpr unsigned ORDINARY_ID = 1000;

bool exists(const char* path) {
    struct stat info = {};
    return ::lstat(path, &info) == 0;
}

std::string help_text() {
    const gw::XtOwned<char> text(XmTextGetString(wi_text));
    return text ? text.get() : "";
}

/// Sets environment variables and restores them at the end.
class Environment {
  public:
    ~Environment() {
        for (const auto& [name, value] : before_) {
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
        }
    }
    void set(const char* name, const char* value) {
        const char* old = std::getenv(name);
        before_.try_emplace(name, old != nullptr ? std::optional<std::string>(old) : std::nullopt);
        ::setenv(name, value, 1);
    }

  private:
    std::map<std::string, std::optional<std::string>> before_;
};

class Help : public testing::Test {
  protected:
    void SetUp() override { start_at_home(); }
    void TearDown() override {
        XtUnmanageChild(wi_help_dlg);
        pump();
    }
};

TEST_F(Help, HasItsTitleTextAndButton) {
    EXPECT_EQ(title_of(wi_help_dlg), "Glyph Warden - Help");
    EXPECT_EQ(find(wi_help_dlg, "text"), wi_text);
    Boolean editable = True;
    int edit_mode = XmSINGLE_LINE_EDIT;
    XtVaGetValues(wi_text, XmNeditable, &editable, XmNeditMode, &edit_mode, nullptr);
    EXPECT_EQ(editable, False);
    EXPECT_EQ(edit_mode, XmMULTI_LINE_EDIT);
    Widget ok = find(wi_help_dlg, "ok_button");
    ASSERT_NE(ok, nullptr);
    EXPECT_EQ(gw::label_of(ok), "Ok");
}

TEST_F(Help, TheButtonStandsInTheMiddleAtTheBottom) {
    ASSERT_TRUE(press(find(wi_toplevel, "_help_dlg_button"))) << "the menu entry opens it";
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); }));
    const auto edges = [](Widget w) {
        Position x = 0;
        Position y = 0;
        Dimension width = 0;
        Dimension height = 0;
        XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
        return std::array<int, 4>{x, y, x + width, y + height};
    };
    const auto dialog = edges(wi_help_dlg);
    const int width = dialog[2] - dialog[0];
    const int height = dialog[3] - dialog[1];
    EXPECT_EQ(width, gw::test::in_pixels(84, XmHORIZONTAL));
    EXPECT_EQ(height, gw::test::in_pixels(72, XmVERTICAL));
    const auto ok = edges(find(wi_help_dlg, "ok_button"));
    EXPECT_NEAR(ok[0], width * 40 / 100, 1);
    EXPECT_NEAR(ok[2], width * 60 / 100, 1);
    EXPECT_GT(ok[1], height / 2);
    EXPECT_LE(ok[3], height);
    EXPECT_LE(edges(XtParent(wi_text))[3], ok[1]) << "the text is above the button";
}

TEST_F(Help, IsClosedByTheWindowManagerAlone) {
    start_help_dlg();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); }));
    Widget ok = find(wi_help_dlg, "ok_button");
    EXPECT_EQ(XtHasCallbacks(ok, XmNactivateCallback), XtCallbackHasNone);
    press(ok);
    press_key(ok, "space");
    EXPECT_TRUE(is_viewable(wi_help_dlg));
    close_box(wi_help_dlg);
    EXPECT_FALSE(XtIsManaged(wi_help_dlg));
    start_help_dlg();
    EXPECT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); })) << "after the close box";
}

TEST_F(Help, ShowsTheManualPageAndLeavesNothingBehind) {
    const std::string text = help_text();
    for (const char* part : {"NAME", "glyphward", "SYNOPSIS", "FILES"}) EXPECT_THAT(text, HasSubstr(part));
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) {
        return c == '\n' || (c >= ' ' && c <= '~');
    })) << "plain characters, in every locale";
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL));
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL_ERRORS));
}

TEST_F(Help, ShowsItsLinesToTheirEnds) {
    start_help_dlg();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_help_dlg); }));
    XmRenderTable font = nullptr;
    Dimension width = 0;
    Dimension margin = 0;
    XtVaGetValues(wi_text, XmNrenderTable, &font, XmNwidth, &width, XmNmarginWidth, &margin, nullptr);
    EXPECT_LE(XmStringWidth(font, gw::xm_text(std::string(72, 'n')).get()), width - 2 * margin);
    std::istringstream lines(help_text());
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 72U) << line;
}

// --- made anew, in other circumstances ---------------------------------------

/// Makes a second help dialog; the program's own is restored at the end.
class AnotherHelp : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        fixed_names_.emplace(false);
        own_dialog_ = wi_help_dlg;
        own_text_ = wi_text;
    }
    void TearDown() override {
        remove_dialog();
        for (const char* path : {gw::SCRATCH_MANUAL, gw::SCRATCH_MANUAL_ERRORS}) {
            std::filesystem::remove_all(path);
        }
    }
    std::string text_made() {
        remove_dialog();
        create_help_dlg("another_help_dlg", wi_toplevel);
        return help_text();
    }
    Environment environment;

  private:
    void remove_dialog() {
        if (wi_help_dlg != own_dialog_) XtDestroyWidget(XtParent(wi_help_dlg));
        pump();
        wi_help_dlg = own_dialog_;
        wi_text = own_text_;
    }
    Widget own_dialog_ = nullptr;
    Widget own_text_ = nullptr;
    std::optional<UnderPolicy> fixed_names_;
};

TEST_F(AnotherHelp, IsTheSameWhateverTheUsersEnvironmentSays) {
    const std::string text = help_text();
    environment.set("MANPATH", "/nowhere");
    environment.set("MANWIDTH", "40");
    environment.set("MAN_KEEP_FORMATTING", "1");
    environment.set("LC_ALL", "de_DE.UTF-8");
    environment.set("PAGER", "touch /tmp/paged");
    EXPECT_EQ(text_made(), text);
    EXPECT_FALSE(exists("/tmp/paged"));
    EXPECT_STREQ(std::getenv("MANPATH"), "/nowhere") << "and the environment is left as it was";
    EXPECT_STREQ(std::getenv("MANWIDTH"), "40");
    EXPECT_STREQ(std::getenv("MAN_KEEP_FORMATTING"), "1");
    EXPECT_STREQ(std::getenv("LC_ALL"), "de_DE.UTF-8");
}

TEST_F(AnotherHelp, IsMadeOnceWhenItIsFirstOpenedIfThePolicySaysSo) {
    const std::string text = help_text();
    const gw::WindowPolicy before = gw::window_policy();
    gw::set_window_policy(gw::WindowPolicy(true));
    EXPECT_EQ(text_made(), "The manual page is being prepared...");
    start_help_dlg();
    EXPECT_EQ(help_text(), text);
    XtUnmanageChild(wi_help_dlg);
    environment.set("MANOPT", "--no-such-option");
    start_help_dlg();
    EXPECT_EQ(help_text(), text) << "it is made once";
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL));
    gw::set_window_policy(before);
}

TEST_F(AnotherHelp, IsSorryWhenThereIsNoManualPage) {
    environment.set("MANOPT", "--manpath=/nowhere");  // man uses this before its search path
    EXPECT_EQ(text_made(), SORRY);
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL));
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL_ERRORS)) << "what man has said is not read";
}

TEST_F(AnotherHelp, IsSorryWhenManFails) {
    environment.set("MANOPT", "--no-such-option");
    EXPECT_EQ(text_made(), SORRY);
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL_ERRORS));
}

TEST_F(AnotherHelp, AnOldScratchFileOfTheUsersIsReplaced) {
    const std::string text = help_text();
    TempDir dir;
    for (const char* path : {gw::SCRATCH_MANUAL, gw::SCRATCH_MANUAL_ERRORS}) {
        std::ofstream(path) << "an older manual";
    }
    EXPECT_EQ(text_made(), text);
    EXPECT_FALSE(exists(gw::SCRATCH_MANUAL));
}

TEST_F(AnotherHelp, ALinkUnderAScratchNameIsNotFollowed) {
    const std::string text = help_text();
    const TempDir dir;
    const std::string target = dir.write("target", "precious");
    for (const char* path : {gw::SCRATCH_MANUAL, gw::SCRATCH_MANUAL_ERRORS}) {
        ASSERT_EQ(::symlink(target.c_str(), path), 0);
        EXPECT_EQ(text_made(), text);
        EXPECT_EQ(dir.read("target"), "precious");
        EXPECT_FALSE(exists(path));
    }
    const std::string missing = dir.file("missing");
    ASSERT_EQ(::symlink(missing.c_str(), gw::SCRATCH_MANUAL), 0);
    EXPECT_EQ(text_made(), text);
    EXPECT_FALSE(dir.exists("missing"));
}

TEST_F(AnotherHelp, ADirectoryUnderAScratchNameStays) {
    for (const char* path : {gw::SCRATCH_MANUAL, gw::SCRATCH_MANUAL_ERRORS}) {
        ASSERT_EQ(::mkdir(path, 0755), 0);
        std::ofstream(std::string(path) + "/content") << "precious";
        EXPECT_EQ(text_made(), SORRY) << path;
        EXPECT_EQ(TempDir::read_bytes(std::string(path) + "/content"), "precious");
        std::filesystem::remove_all(path);
    }
}

// An ordinary user, while files of the superuser have the scratch names. Only the superuser can set this up.
class OthersScratchFilesDeathTest : public testing::Test {
  protected:
    OthersScratchFilesDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

[[noreturn]] void start_as_another_and_say_help() {
    const TempDir home;
    ::setenv("HOME", home.c_str(), 1);
    ::chmod(home.c_str(), 0777);
    if (::setgid(ORDINARY_ID) != 0 || ::setuid(ORDINARY_ID) != 0) std::abort();
    start_program({"-xrm", "Glyphward*gw_modern_fonts: False"});
    std::printf("%s\n", help_text().c_str());
    std::fprintf(stderr, "help: %s\n", help_text().c_str());
    std::fflush(nullptr);
    std::_Exit(0);
}

TEST_F(OthersScratchFilesDeathTest, AreNeitherShownNorTouched) {
    if (::geteuid() != 0) GTEST_SKIP() << "for the superuser";
    for (const char* path : {gw::SCRATCH_MANUAL, gw::SCRATCH_MANUAL_ERRORS}) {
        std::ofstream(path) << "planted";
        ::chmod(path, 0666);
        EXPECT_EXIT(start_as_another_and_say_help(), testing::ExitedWithCode(0),
                    HasSubstr(std::string("help: ") + SORRY));
        EXPECT_EQ(TempDir::read_bytes(path), "planted");
        ::unlink(path);
    }
}

// --- the reader --------------------------------------------------------------

class ReadFromFile : public testing::Test {
  protected:
    static std::string read(const std::string& path) {
        char* text = nullptr;
        read_from_file(path.c_str(), &text);
        const gw::XtOwned<char> owned(text);
        return text != nullptr ? text : "(null)";
    }
    TempDir dir;
};

TEST_F(ReadFromFile, GivesTheBytesOfAFile) {
    EXPECT_EQ(read(dir.write("one", "x")), "x");
    EXPECT_EQ(read(dir.write("lines", "a\n\nb \xe9\n")), "a\n\nb \xe9\n");
    const std::string large(300000, 'l');
    EXPECT_EQ(read(dir.write("large", large)), large);
    EXPECT_EQ(read(dir.write("name with $(blank) and 'quote'", "found")), "found");
}

TEST_F(ReadFromFile, GivesTheBytesBehindALink) {
    dir.write("target", "text");
    std::filesystem::create_symlink("target", dir.file("link"));
    EXPECT_EQ(read(dir.file("link")), "text");
}

TEST_F(ReadFromFile, ATextEndsWhereItsFirstNullByteIs) {
    EXPECT_EQ(read(dir.write("null", std::string("before\0after", 12))), "before");
}

TEST_F(ReadFromFile, IsSorryWhenThereIsNothingToRead) {
    EXPECT_EQ(read(dir.file("missing")), SORRY);
    EXPECT_EQ(read(""), SORRY);
    EXPECT_EQ(read(dir.write("empty", "")), SORRY);
    EXPECT_EQ(read(dir.path()), SORRY);
    EXPECT_EQ(read("/dev/null"), SORRY);
    std::filesystem::create_symlink("missing", dir.file("dangling"));
    EXPECT_EQ(read(dir.file("dangling")), SORRY);
}

TEST_F(ReadFromFile, DoesNotWaitForAPipe) {
    ASSERT_EQ(::mkfifo(dir.file("pipe").c_str(), 0644), 0);
    EXPECT_EQ(read(dir.file("pipe")), SORRY);
}

TEST_F(ReadFromFile, IsSorryWhenTheFileIsClosedToTheUser) {
    if (::geteuid() == 0) GTEST_SKIP() << "for an ordinary user";
    const std::string path = dir.write("closed", "secret");
    ::chmod(path.c_str(), 0);
    EXPECT_EQ(read(path), SORRY);
}

}  // namespace
