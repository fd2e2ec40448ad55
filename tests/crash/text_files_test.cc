// SPDX-License-Identifier: MIT
//
// The small files that users keep their settings in, killed and failed at each system call that writes them:
// what a reader finds is the old text or the new one, whole.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

#include "core/replace_file.h"
#include "fontfiles/gw_fontset_file.h"
#include "fontpath/font_path_files.h"
#include "fontpath/vtfontpath_file.h"
#include "support/file_faults.h"
#include "support/temp_dir.h"

namespace {

using gw::test::FileFaults;
using gw::test::TempDir;

constexpr const char* OLD_FONTSETS =
    "-one:definition,\\\n\t-a-b-medium-r-normal--16-120-100-100-c-80-iso8859-1\n";

struct Writing {
    const char* name;
    const char* file;
    std::string old_text;
    std::function<gw::Outcome(const TempDir&)> write;
    friend std::ostream& operator<<(std::ostream& out, const Writing& writing) { return out << writing.name; }
};

const std::vector<Writing> WRITINGS = {
    {"font_path_of_a_user", ".VTfontpath", "/a/\n\n/p/\n",
     [](const TempDir& dir) { return gw::write_vtfontpath(dir.file(".VTfontpath"), "/a/\n/b/\n\n/p/\n"); }},
    {"database", "VTconfig", "XDISPLAY.0.fontpath:\t/a/\n",
     [](const TempDir& dir) { return gw::write_to_vtconfig(dir.file("VTconfig"), "/a/,/b/"); }},
    {"sample_text", ".glyphwdrc", "sampletext: old",
     [](const TempDir& dir) {
         return gw::replace_file(dir.file(".glyphwdrc"), "sampletext: new and longer");
     }},
};

class TextFiles : public testing::TestWithParam<Writing> {
  protected:
    void SetUp() override {
        const TempDir dir;
        prepare(dir);
        const FileFaults counting(FileFaults::Fault::NONE, 0);
        ASSERT_TRUE(GetParam().write(dir));
        calls = FileFaults::calls();
        new_text = dir.read(GetParam().file);
        ASSERT_NE(new_text, GetParam().old_text);
        ASSERT_GT(calls, 3);
    }
    /// The old text is from the future: a second that passes between two runs changes no number of calls.
    static void prepare(const TempDir& dir) {
        dir.write(GetParam().file, GetParam().old_text);
        std::filesystem::last_write_time(dir.file(GetParam().file), FUTURE);
    }
    static std::string text_in(const TempDir& dir) { return dir.read(GetParam().file); }

    static inline const auto FUTURE = std::filesystem::file_time_type::clock::now() + std::chrono::hours(1);
    std::string new_text;
    int calls = 0;
};

TEST_P(TextFiles, KilledAtAnyCallTheTextIsTheOldOrTheNewAndCanBeWrittenAgain) {
    for (int at = 1; at <= calls; ++at) {
        const TempDir dir;
        prepare(dir);
        ASSERT_TRUE(gw::test::killed_at(at, [&] { (void)GetParam().write(dir); })) << at;
        EXPECT_TRUE(text_in(dir) == GetParam().old_text || text_in(dir) == new_text)
            << at << ": " << text_in(dir);
        EXPECT_TRUE(GetParam().write(dir)) << at;
        EXPECT_EQ(text_in(dir), new_text) << at;
        for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
            EXPECT_FALSE(entry.path().string().ends_with(".gwtmp"))
                << entry.path() << " is left after " << at;
    }
}

TEST_P(TextFiles, WhatFailsLeavesTheOldTextAndSaysSo) {
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EDQUOT, EIO, EROFS, EACCES}) {
            for (int at = 1; at <= calls; ++at) {
                const TempDir dir;
                prepare(dir);
                gw::Outcome outcome;
                {
                    const FileFaults faults(fault, at, error);
                    outcome = GetParam().write(dir);
                }
                EXPECT_EQ(text_in(dir), outcome ? new_text : GetParam().old_text)
                    << "call " << at << " of " << calls << ", error " << error
                    << (fault == FileFaults::Fault::FAIL_ONCE ? ", once" : ", from then on");
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, TextFiles, testing::ValuesIn(WRITINGS),
                         [](const auto& param) { return std::string(param.param.name); });

// A dot file is often a link into a directory where the user keeps all of them.
TEST(LinkedFontPath, KilledAtAnyCallItIsOldOrNewAndTheLinkStays) {
    int killed = 0;
    for (int at = 1;; ++at) {
        const TempDir dir;
        dir.write("dotfiles/fontpath", "/a/\n");
        std::filesystem::create_symlink("dotfiles/fontpath", dir.file(".VTfontpath"));
        ASSERT_LT(at, gw::test::MOST_CALLS);
        if (!gw::test::killed_at(at, [&] { (void)gw::write_vtfontpath(dir.file(".VTfontpath"), "/b/\n"); })) {
            EXPECT_EQ(dir.read(".VTfontpath"), "/b/\n");
            break;
        }
        ++killed;
        EXPECT_TRUE(dir.read(".VTfontpath") == "/a/\n" || dir.read(".VTfontpath") == "/b/\n") << at;
        EXPECT_TRUE(std::filesystem::is_symlink(dir.file(".VTfontpath")));
    }
    EXPECT_GT(killed, 3);
}

// The dialog's changes go to the file when it is closed.
class Fontsets : public testing::Test {
  protected:
    void SetUp() override {
        const TempDir whole;
        whole.write("Vantor.fs", OLD_FONTSETS);
        const FileFaults counting(FileFaults::Fault::NONE, 0);
        ASSERT_TRUE(rename_first(whole));
        calls = FileFaults::calls();
        new_text = whole.read("Vantor.fs");
        ASSERT_NE(new_text, OLD_FONTSETS);
    }
    static bool rename_first(const TempDir& dir) {
        GW_FONTSET_FILE file(dir.c_str(), "Vantor.fs", gw::FILE_TYPE_REGULAR);
        const gw::Ref<GWFontSet> first(file.get_fontsets().get_elem_at_pos(1));
        file.delete_fontset(first.get());
        first->update_fontset_name("-renamed");
        file.append_fontset(first.get());
        return file.sync() == 1;
    }

    std::string new_text;
    int calls = 0;
};

TEST_F(Fontsets, ThatCannotBeWrittenStayAsTheyAre) {
    int failed = 0;
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EIO, EACCES}) {
            for (int at = 1; at <= calls; ++at) {
                const TempDir dir;
                dir.write("Vantor.fs", OLD_FONTSETS);
                bool written = false;
                {
                    const FileFaults faults(fault, at, error);
                    written = rename_first(dir);
                }
                EXPECT_EQ(dir.read("Vantor.fs"), written ? new_text : OLD_FONTSETS)
                    << "call " << at << " of " << calls << ", error " << error;
                failed += written ? 0 : 1;
            }
        }
    }
    EXPECT_GT(failed, 10);
}

TEST_F(Fontsets, KilledAtAnyCallTheFileIsTheOldOrTheNew) {
    int killed = 0;
    for (int at = 1;; ++at) {
        ASSERT_LT(at, gw::test::MOST_CALLS);
        const TempDir dir;
        dir.write("Vantor.fs", OLD_FONTSETS);
        if (!gw::test::killed_at(at, [&] { (void)rename_first(dir); })) {
            EXPECT_EQ(dir.read("Vantor.fs"), new_text);
            break;
        }
        ++killed;
        const std::string text = dir.read("Vantor.fs");
        EXPECT_TRUE(text == OLD_FONTSETS || text == new_text) << at << ": " << text;
    }
    EXPECT_GT(killed, 3);
}

}  // namespace
