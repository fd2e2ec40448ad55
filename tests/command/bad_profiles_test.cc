// SPDX-License-Identifier: MIT
//
// Profiles that are wrong, odd or huge: refused with the line before anything is changed, or applied.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "command/own_fonts.h"

namespace {

namespace fs = std::filesystem;
using gw::test::content;
using gw::test::fonts_command;
using gw::test::Json;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::TempDir;
using testing::HasSubstr;

class CommandBadProfiles : public gw::test::OwnFonts {
  protected:
    [[nodiscard]] Ran apply(const std::string& text, std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"apply", source_.write("p.toml", text)});
        return fonts_command(options);
    }
    /// A profile whose fonts go to the destination.
    [[nodiscard]] std::string profile(const std::string& more) const {
        return "profile = 1\n[fonts]\nto = \"" + to_ + "\"\n" + more;
    }
    /// Nothing is changed by it, and this is said.
    void expect_refused(const std::string& text, const std::string& complaint) const {
        const auto before = content(to_);
        const std::string path = fonts_command({"path", "show", "--all"}).out;
        const Ran ran = apply(text);
        EXPECT_EQ(ran.status, 4) << text.substr(0, 200);
        EXPECT_THAT(ran.err, HasSubstr(complaint));
        EXPECT_EQ(ran.out, "");
        EXPECT_EQ(content(to_), before);
        EXPECT_EQ(fonts_command({"path", "show", "--all"}).out, path);
    }
};

TEST_F(CommandBadProfiles, FilesThatAreNotBesideTheProfileAreRefused) {
    for (const std::string file : {"../x.ttf", "a/../../x.ttf", "/etc/x.ttf", "..", ""}) {
        expect_refused(profile("files = [\"DejaVuSans.ttf\", \"" + file + "\"]\n"),
                       "p.toml:4: \"" + file + "\" is no file beside the profile");
    }
    EXPECT_EQ(apply(profile("files = [\"a/../DejaVuSans.ttf\"]\n")).status, 0);
}

TEST_F(CommandBadProfiles, ValuesOfTheWrongKindAreRefused) {
    const std::map<std::string, std::string> wrong = {
        {"profile = \"1\"\n", ":1: \"profile\""},
        {"profile = 1.0\n", ":1: \"profile\""},
        {"profile = 1\nfonts = 3\n", ":2: \"fonts\" must be a table"},
        {"profile = 1\n[[fonts]]\n", ":2: \"fonts\" must be a table"},
        {"profile = 1\npath = []\n", ":2: \"path\" must be a table"},
        {"profile = 1\n[path]\nme = \"/a/\"\n", ":3: \"me\" must be a list of texts"},
        {"profile = 1\n[path]\nme = [[\"/a/\"]]\n", ":3: \"me\" must be a text"},
        {"profile = 1\n[alias]\nname = \"a\"\n", ":2: \"alias\" must be [[alias]]"},
        {"profile = 1\n[[alias]]\nname = \"a\"\nfont = true\n", ":4: \"font\" must be a text"},
        {"profile = 1\n[[alias]]\nname = \"a\"\nfont = \"b\"\ndirectory = \"here\"\n",
         ":2: \"directory\" must be an absolute path"},
        {"profile = 1\n[[fontset]]\nlocale = \"..\"\nname = \"-x\"\nfonts = [\"-x\"]\n", ":2: \"locale\""},
        {"profile = 1\n[fonts]\nabsent = [\"a\\u0000b\"]\n", ":3: \"absent\" has a NUL byte"},
        {"profile = 1\nprofile = 1\n", ":2: "},
        {"profile = 1\n[fonts]\nto = \"\xFF\"\n", ":3: "},
        {std::string("profile = 1\n\0\n", 14), ":2: "},
        {"profile = 1\n# \u00fc\n\u00fc = 1\n", ":3: "},
        {"profile = \u03a4\n", ":1: "},
        {"profile = 1\n[path]\nme = [\"\"\"/a\\\n  \u00fc\"\"\", 1]\n", ":4: "},
        {"profile = 1\n\"\u00fc\" = 1\n", "there is no key \"\u00fc\""},
        {"profile = 1\nx = 1o1/\"\u040e\n", ":2: "},
        {"profile = 1\n# \xFF\n", ":2: this line is not in UTF-8"},
        {"profile = 1\n# \u00fc ~@%!$&*;?^|`<>()/\n", "a profile must do without one of these"},
        {"profile = 1\n\x7f = 1\n", ":2: "},
        {"profile = 1\n[!fonts]\n", ":2: "},
        {"profile = 1\n  [[ \n", ":2: "},
        {"profile = 1\n[]\n", ":2: "},
        {"profile = 1\nfonts = [}\n", ":2: "},
        {"profile = 1\nfonts = [1,  # one\n}\n", ":3: "},
        {"profile = 1\nfonts = {a = ]}\n", ":2: "},
        {"", "the line \"profile = 1\" is missing"},
        {"\n\n# nothing\n", "the line \"profile = 1\" is missing"},
    };
    for (const auto& [text, complaint] : wrong) expect_refused(text, complaint);
}

TEST_F(CommandBadProfiles, CharactersOfAllLanguagesStandInQuotationMarksAndComments) {
    const Ran ran =
        apply(profile("# it's \u00fc\n"
                      "absent = [\"\u00fc\", \"\\\"\u00fc\", '\u00fc\"', '''\u00fc'\u00fc''',  # \"\u00fc\n"
                      "\"\"\"\"\u00fc\"\"\"\"\", \"\"\"\n\u00fc\\\n  x\u00fc\"\"\", \"\", '']  # \u00fc\n"));
    EXPECT_EQ(ran.status, 3) << ran.out << ran.err;
}

TEST_F(CommandBadProfiles, DeepNestingIsRefused) {
    constexpr std::size_t DEPTH = 100000;
    expect_refused("profile = 1\nx = " + std::string(DEPTH, '['), ":2: ");
    std::string tables = "profile = 1\nx = ";
    for (std::size_t i = 0; i < DEPTH; ++i) tables += "{a=";
    expect_refused(tables, ":2: ");
    std::string key = "profile = 1\nx";
    for (std::size_t i = 0; i < DEPTH; ++i) key += ".x";
    expect_refused(key + " = 1\n", ":2: ");
    expect_refused("profile = 1\n[" + std::string(key.begin() + 12, key.end()) + "]\n", ":2: ");
}

TEST_F(CommandBadProfiles, ManyAliasesAreApplied) {
    constexpr int MANY = 40;
    std::string text = profile("");
    for (int i = 0; i < MANY; ++i)
        text += "[[alias]]\nname = \"alias" + std::to_string(i) + "\"\nfont = \"fixed\"\n";
    const Ran first = apply(text, {"--json"});
    EXPECT_EQ(first.status, 0) << first.err.substr(0, 500);
    EXPECT_EQ(first.json()["changes"].size(), static_cast<std::size_t>(MANY));
    EXPECT_THAT(TempDir::read_bytes(to_ + "fonts.alias"), HasSubstr("alias39 fixed\n"));
    EXPECT_EQ(apply(text).status, 3);
}

TEST_F(CommandBadProfiles, AnAliasThatNoFileCanHaveLeavesThoseOfItsDirectoryAsTheyWere) {
    const Ran ran = apply(profile("[[alias]]\nname = \"a\\nb c\"\nfont = \"fixed\"\n"
                                  "[[alias]]\nname = \"good\"\nfont = \"fixed\"\n"),
                          {"--json"});
    EXPECT_EQ(ran.status, 1) << ran.err;
    EXPECT_EQ(ran.json()["changes"].size(), 0U) << ran.out;
    EXPECT_EQ(ran.json()["problems"][0]["code"], "NAME_UNFIT_FOR_ALIAS") << ran.out;
    EXPECT_FALSE(fs::exists(to_ + "fonts.alias"));
}

// The destination that an installation had put on the font path was taken off by the next run, and so on.
TEST_F(CommandBadProfiles, WithAPathThatDoesNotNameItsDestinationIsAppliedOnce) {
    const std::string text = profile("files = [\"DejaVuSans.ttf\"]\n[path]\n" +
                                     std::string(::geteuid() == 0 ? "installation" : "me") +
                                     " = [\"/usr/vantor/lib/X11/fonts/misc/\"]\n");
    const std::string before = TempDir::read_bytes("/usr/vantor/server/etc/VTconfig");
    EXPECT_EQ(apply(text).status, 0);
    const Ran again = apply(text);
    EXPECT_EQ(again.status, 3) << again.out << again.err;
    EXPECT_THAT(fonts_command({"path", "show", "--of", whose()}).out, HasSubstr(to_));
    if (::geteuid() == 0) std::ofstream("/usr/vantor/server/etc/VTconfig") << before;
}

// What was wrong with a font was on standard error only.
TEST_F(CommandBadProfiles, WhatIsWrongWithAFontIsInTheDocument) {
    (void)source_.write("broken.ttf", "no font");
    const Ran ran = apply(profile("files = [\"DejaVuSans.ttf\", \"broken.ttf\"]\n"), {"--json"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.json()["problems"].dump(), HasSubstr("broken"));
    EXPECT_EQ(ran.json()["changed"], false);
    EXPECT_FALSE(fs::exists(to_ + "DejaVuSans.ttf"));
}

TEST_F(CommandBadProfiles, LinksBesideTheProfileAreFollowedLikeOthers) {
    const TempDir elsewhere;
    fs::copy_file(SANS, elsewhere.file("Linked.ttf"));
    fs::create_symlink(elsewhere.path(), source_.file("linked"));
    EXPECT_EQ(apply(profile("files = [\"linked\"]\n")).status, 0);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(to_ + "Linked.ttf")));
}

}  // namespace
