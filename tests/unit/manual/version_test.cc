// SPDX-License-Identifier: MIT
//
// scripts/version on a copy of the files that have a version: it finds each one that disagrees, and changes
// all of them together.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <sys/wait.h>
#include <array>
#include <filesystem>
#include <string>

#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

struct Answer {
    int status = -1;
    std::string text;
};

class VersionScript : public testing::Test {
  protected:
    VersionScript() {
        for (const char* part : {"CMakeLists.txt", "CHANGELOG.md", "scripts/version", "scripts/common.sh",
                                 "src/texts/messages.def", "data", "packaging"}) {
            const fs::path from = fs::path(GLYPHWARD_TREE) / part;
            const fs::path to = fs::path(tree.path()) / part;
            fs::create_directories(to.parent_path());
            fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        }
        replace("CHANGELOG.md", "## Unreleased\n",
                "## Unreleased\n\n- A `new` thing:\n  [this](that.md).\n\n");
    }
    /// Runs the script; the text is its output with standard error.
    Answer run(const std::string& arguments) {
        const std::string output = tree.file("output");
        const int status =
            gw::run_shell("%s/scripts/version " + arguments + " >%s 2>&1", {tree.path(), output});
        return {WEXITSTATUS(status), tree.read("output")};
    }
    void replace(const std::string& file, const std::string& from, const std::string& to) {
        std::string text = tree.read(file);
        const std::size_t place = text.find(from);
        ASSERT_NE(place, std::string::npos) << file << " has no " << from;
        fs::remove(tree.file(file));
        tree.write(file, text.replace(place, from.size(), to));
    }
    TempDir tree;
};

TEST_F(VersionScript, PrintsTheVersionOfTheBuild) {
    EXPECT_EQ(run("").text, GLYPHWARD_VERSION "\n");
    EXPECT_EQ(run("--check").text, "");
    EXPECT_EQ(run("--check").status, 0);
}

TEST_F(VersionScript, NamesEachFileThatDisagrees) {
    static constexpr std::array<std::array<const char*, 2>, 6> PLACES = {{
        {"data/man/makepsres.1", "Glyph Warden "},
        {"data/japanese.def", "Glyph Warden - "},
        {"src/texts/messages.def", "Glyph Warden Version "},
        {"packaging/debian/changelog", "glyphward ("},
        {"packaging/local.glyphward.glyphward.metainfo.xml", "release version=\""},
        {"CHANGELOG.md", "## "},
    }};
    for (const auto& [file, before] : PLACES) {
        const std::string right = std::string(before) + GLYPHWARD_VERSION;
        const std::string wrong = std::string(before) + "0.0.7";
        replace(file, right, wrong);
        const Answer answer = run("--check");
        EXPECT_EQ(answer.status, 1) << file;
        EXPECT_EQ(answer.text,
                  std::string(file) + " has version 0.0.7, CMakeLists.txt has " GLYPHWARD_VERSION ".\n");
        replace(file, wrong, right);
    }
}

TEST_F(VersionScript, ChangesAllOfThem) {
    const Answer answer = run("--set 47.11");
    ASSERT_EQ(answer.status, 0) << answer.text;
    EXPECT_EQ(run("").text, "47.11\n");
    EXPECT_EQ(run("--check").text, "");
    EXPECT_EQ(run("--notes Unreleased").text, "");
    EXPECT_EQ(run("--notes 47.11").text.substr(0, 17), "- A `new` thing:\n");
    EXPECT_THAT(tree.read("packaging/debian/changelog"),
                AllOf(StartsWith("glyphward (47.11) stable; urgency=medium\n\n  * A new thing: this.\n"),
                      HasSubstr("\nglyphward (" GLYPHWARD_VERSION ") ")));
    EXPECT_THAT(tree.read("data/german.def"),
                AllOf(HasSubstr("Glyph Warden Version 47.11\\n"),
                      Not(HasSubstr("Glyph Warden Version " GLYPHWARD_VERSION))));
    EXPECT_THAT(tree.read("data/man/glyphward.1"), HasSubstr("\"Glyph Warden 47.11\""));
}

TEST_F(VersionScript, WantsAVersionAndSomethingToTell) {
    EXPECT_EQ(run("--set one").status, 1);
    EXPECT_EQ(run("--set").status, 2);
    ASSERT_EQ(run("--set 47.11").status, 0);
    EXPECT_THAT(run("--set 47.12").text, HasSubstr("has nothing under \"Unreleased\""));
    EXPECT_EQ(run("").text, "47.11\n");
}

}  // namespace
