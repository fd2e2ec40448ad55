// SPDX-License-Identifier: MIT
//
// What the windows do to a directory, and what `glyphward-fonts` does to it, is the same to the byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <ostream>
#include <regex>
#include <string>

#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "command/fonts_command.h"

#include "widget/deleting/undo_test_support.h"

namespace {

namespace fs = std::filesystem;
using namespace gw::test;

using testing::HasSubstr;

using Contents = std::map<std::string, std::string>;

/// `text` with "DIR/" in the place of the directory, and signs in that of times and of names with chance in
/// them.
std::string made_comparable(std::string text, const std::string& directory) {
    for (std::size_t at = text.find(directory); at != std::string::npos; at = text.find(directory))
        text.replace(at, directory.size(), "DIR/");
    static const std::regex ENTRY("[0-9a-f]{16,}(-[0-9]+)?");
    static const std::regex TIME("[0-9]{10}");
    // Which file it is, by inode, size and time.
    static const std::regex STAMP("[0-9]+ [0-9]+ TIME [0-9]+ ");
    text = std::regex_replace(std::regex_replace(text, ENTRY, "ENTRY"), TIME, "TIME");
    return std::regex_replace(text, STAMP, "STAMP ");
}

/// All files of a directory and below it; of fonts, a number that their bytes give.
Contents contents_of(const std::string& directory) {
    Contents contents;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        // The lock has the number of a process.
        if (!entry.is_regular_file() || entry.path().filename() == "lock") continue;
        const std::string bytes = TempDir::read_bytes(entry.path());
        const std::string name = made_comparable(entry.path().string().substr(directory.size()), directory);
        const bool is_text = bytes.find('\0') == std::string::npos;
        contents[name] +=
            is_text ? made_comparable(bytes, directory) : std::to_string(std::hash<std::string>()(bytes));
    }
    return contents;
}

class SameAsCommand : public UndoTest {
  protected:
    SameAsCommand() {
        for (const char* family : {"alpha", "beta", "gamma"})
            source_.add(std::string(family) + ".pcf", face(family));
    }
    static std::string destination() { return home().path() + "glyphwd_fonts/"; }
    /// Runs the command as somebody who has the directory alone on his font path.
    [[nodiscard]] Ran run_at_home(std::vector<std::string> words) const {
        const Variable own("HOME", dir_.c_str());
        return fonts_command(std::move(words));
    }
    void command(std::vector<std::string> words) const {
        const Ran ran = run_at_home(std::move(words));
        EXPECT_EQ(ran.status, 0) << ran.out << ran.err;
    }
    /// Nothing of the command's is on a font path that the windows see.
    void take_off() const {
        for (const char* whose : {"session", "installation", "me"})
            (void)run_at_home({"path", "remove", "--of", whose, commands_});
        read_font_path();
    }
    void install_by_command() const {
        command({"install", source_.path(), "--to", commands_});
        take_off();
    }
    void install_by_windows() {
        choose_source(source_);
        install({1, 2, 3});
    }
    void expect_the_same() const {
        const Contents windows = contents_of(destination());
        EXPECT_GT(windows.size(), 3U);
        EXPECT_EQ(windows, contents_of(commands_));
    }

    TempDir dir_;
    std::string commands_ = dir_.make_dir("commands");
    FontDirectory source_;
};

TEST_F(SameAsCommand, Installing) {
    install_by_command();
    install_by_windows();
    expect_the_same();
}

/// A font that takes the place of "alpha.pcf".
struct Newer {
    const char* file;
    const char* family;
};

void PrintTo(const Newer& newer, std::ostream* out) {
    *out << newer.family << " in " << newer.file;
}

class SameReplacing : public SameAsCommand, public testing::WithParamInterface<Newer> {
  protected:
    SameReplacing() { newer_.add(GetParam().file, face(GetParam().family), LARGER); }
    void replace_by_windows() {
        choose_source(newer_);
        install({1});
        ASSERT_TRUE(is_managed(wi_conflict_dlg));
        ASSERT_TRUE(press(find(wi_conflict_dlg, "not_keep_all_button")));
        ASSERT_TRUE(press(find(wi_conflict_dlg, "ok_button")));
        ASSERT_TRUE(wait_for_work());
    }
    /// Whether the new font is there, and the old one is not.
    static bool is_replaced(const Contents& contents) {
        const std::string file = GetParam().file;
        return contents.contains(file) && (file == "alpha.pcf" || !contents.contains("alpha.pcf"));
    }

    static constexpr std::size_t LARGER = 500;  // kilobytes
    FontDirectory newer_;
};

TEST_P(SameReplacing, AndBringingBack) {
    command({"install", source_.path(), "--to", commands_});
    const Contents before = contents_of(commands_);
    command({"install", newer_.path(), "--to", commands_, "--replace"});
    const Contents replaced = contents_of(commands_);
    EXPECT_NE(replaced, before);
    EXPECT_TRUE(is_replaced(replaced));
    command({"undo"});
    const Contents brought_back = contents_of(commands_);
    EXPECT_EQ(brought_back.at("alpha.pcf"), before.at("alpha.pcf"));
    EXPECT_THAT(brought_back.at("fonts.dir"), HasSubstr("\nalpha.pcf " + face("alpha") + '\n'));
    // The names are the windows' alone now.
    take_off();

    install_by_windows();
    replace_by_windows();
    EXPECT_EQ(contents_of(destination()), replaced);
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(contents_of(destination()), brought_back);
}

INSTANTIATE_TEST_SUITE_P(Fonts, SameReplacing,
                         testing::Values(Newer{"alpha.pcf", "alpha"}, Newer{"another.pcf", "alpha"}));

TEST_F(SameAsCommand, AFontWithTheFileNameOfAnotherFontIsNotInstalled) {
    FontDirectory other;
    other.add("alpha.pcf", face("delta"), 500);
    command({"install", source_.path(), "--to", commands_});
    const Contents before = contents_of(commands_);
    EXPECT_EQ(run_at_home({"install", other.path(), "--to", commands_, "--replace"}).status, 1);
    EXPECT_EQ(contents_of(commands_), before);
    take_off();

    install_by_windows();
    choose_source(other);
    install({1});
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
    EXPECT_TRUE(is_managed(wi_preconflict_dlg)) << "it says why";
    expect_the_same();
}

TEST_F(SameAsCommand, DeletingAndBringingBack) {
    make_fonts({"alpha", "beta", "gamma"});
    const Contents before = contents_of(installed().path());
    remove({2});
    const Contents deleted = contents_of(installed().path());
    EXPECT_NE(deleted, before);
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    const Contents brought_back = contents_of(installed().path());
    // The names are the command's alone now.
    own_path().write({});

    FontDirectory commands;
    for (const char* family : {"alpha", "beta", "gamma"})
        commands.add(std::string(family) + ".pcf", face(family));
    const std::string whose = is_root() ? "installation" : "me";
    command({"path", "add", "--of", whose, commands.path()});
    command({"delete", "--yes", "beta medium [[]bitmap]"});
    EXPECT_EQ(contents_of(commands.path()), deleted);
    command({"undo"});
    EXPECT_EQ(contents_of(commands.path()), brought_back);
    command({"path", "remove", "--of", whose, commands.path()});
}

}  // namespace
