// SPDX-License-Identifier: MIT
//
// Profiles: what a machine is to have, made so, and written down.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "command/fonts_command.h"

namespace {

namespace fs = std::filesystem;
using namespace gw::test;
using testing::HasSubstr;

constexpr const char* NAME = "-misc-dejavu sans-medium-r-normal--0-0-0-0-p-0-iso8859-1";

/// A profile with a font beside it, for a destination below a home directory of its own.
class CommandProfile : public testing::Test {
  protected:
    CommandProfile() {
        fs::create_directory(dir_.file("fonts"));
        fs::copy_file(SANS, dir_.file("fonts/DejaVuSans.ttf"));
    }
    void TearDown() override {
        for (const char* whose : {"session", "me", "installation"})
            (void)fonts_command({"path", "remove", "--of", whose, to_});
    }
    /// Writes the profile; `more` stands behind its first table.
    void write(const std::string& more = "") const {
        (void)dir_.write("p.toml",
                         "profile = 1\n[fonts]\nto = \"" + to_ + "\"\nfiles = [\"fonts\"]\n" + more);
    }
    [[nodiscard]] Ran apply(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"apply", dir_.file("p.toml")});
        return fonts_command(options);
    }

    gw::test::OwnHome home_;
    TempDir dir_;
    std::string to_ = home_.dir().make_dir("to");
};

const std::string ALIAS = std::string("[[alias]]\nname = \"cadfont\"\nfont = \"") + NAME + "\"\n";

TEST_F(CommandProfile, IsAppliedOnce) {
    write(ALIAS);
    const Ran check = apply({"--check"});
    EXPECT_EQ(check.status, 1) << check.err;
    EXPECT_THAT(check.out, HasSubstr("font: DejaVu Sans Medium [TrueType]\n"));
    EXPECT_EQ(gw::test::entries_in(to_), 0);
    const Ran first = apply({"--json"});
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.json()["changed"], true);
    EXPECT_EQ(first.json()["changes"].size(), 2U);
    const Ran second = apply({"--json"});
    EXPECT_EQ(second.status, 3) << second.out << second.err;
    EXPECT_EQ(second.json()["changed"], false);
    EXPECT_EQ(apply({"--check"}).status, 3);
    EXPECT_EQ(fonts_command({"why", "cadfont"}).status, 0);
}

TEST_F(CommandProfile, PutsItsDestinationOnThePathWhereARunBeforeDidNot) {
    write();
    ASSERT_EQ(apply().status, 0);
    for (const char* whose : {"me", "host", "installation"})
        (void)fonts_command({"path", "remove", "--of", whose, to_});
    EXPECT_EQ(apply({"--check"}).status, 1);
    const Ran again = apply({"--json"});
    EXPECT_EQ(again.status, 0) << again.err;
    const Json change = {{"what", "path"}, {"subject", to_}, {"before", ""}, {"after", to_}};
    EXPECT_EQ(again.json()["changes"], Json::array({change}));
    const std::string whose = ::geteuid() == 0 ? "installation" : "me";
    EXPECT_THAT(fonts_command({"path", "show", "--of", whose}).out, HasSubstr(to_));
    EXPECT_EQ(apply().status, 3);
}

TEST_F(CommandProfile, TakesAwayWhatIsToBeAbsent) {
    write();
    ASSERT_EQ(apply().status, 0);
    (void)dir_.write("p.toml",
                     "profile = 1\n[fonts]\nto = \"" + to_ + "\"\nabsent = [\"dejavu*\", \"courier*\"]\n");
    const Ran ran = apply();
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_FALSE(fs::exists(to_ + "DejaVuSans.ttf"));
    // Those of other directories are not meant.
    EXPECT_EQ(fonts_command({"list", "Courier Bold [[]Bitmap]"}).status, 0);
    EXPECT_EQ(apply().status, 3);
}

TEST_F(CommandProfile, ReplacesAnotherVersionOfItsFonts) {
    write();
    ASSERT_EQ(apply().status, 0);
    const std::string newer = TempDir::read_bytes(SANS) + std::string(4, '\0');
    (void)dir_.write("fonts/DejaVuSans.ttf", newer);
    EXPECT_EQ(apply({"--check"}).status, 1);
    const Ran ran = apply();
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(TempDir::read_bytes(to_ + "DejaVuSans.ttf"), newer);
    EXPECT_EQ(apply().status, 3);
}

TEST_F(CommandProfile, LeavesTheDirectoryAsItWasWhenAFontFails) {
    write();
    (void)dir_.write("fonts/broken.ttf", "no font");
    const Ran ran = apply();
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.err, HasSubstr("it stays as it was"));
    EXPECT_FALSE(fs::exists(to_ + "DejaVuSans.ttf"));
}

std::string alias(const std::string& name, const std::string& font) {
    return "[[alias]]\nname = \"" + name + "\"\nfont = \"" + font + "\"\n";
}

TEST_F(CommandProfile, LeavesTheAliasesAsTheyWereWhenOneFails) {
    write(alias("first", "fixed"));
    ASSERT_EQ(apply().status, 0);
    const std::string before = TempDir::read_bytes(to_ + "fonts.alias");
    write(alias("first", "variable") + alias("second", "fixed") + alias("third", "fourth") +
          alias("fourth", "third"));
    const Ran ran = apply();
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.err, HasSubstr("fourth: "));
    EXPECT_EQ(TempDir::read_bytes(to_ + "fonts.alias"), before);
}

TEST_F(CommandProfile, HasAliasesByTheThousand) {
    std::string many;
    for (int i = 1; i <= 2000; ++i) many += alias("name-" + std::to_string(i), NAME);
    write(many);
    EXPECT_EQ(apply().status, 0);
    EXPECT_EQ(fonts_command({"why", "name-2000"}).status, 0);
    EXPECT_EQ(apply().status, 3);
    write(many + alias("name-1", "fixed"));
    const Ran other = apply({"--json"});
    EXPECT_EQ(other.json()["changes"].size(), 1U);
}

TEST_F(CommandProfile, SetsFontPaths) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser has no font path of his own";
    write("[path]\nfront = [\"/usr/vantor/lib/X11/fonts/100dpi/\"]\nme = [\"" + to_ + "\"]\n");
    const Ran ran = apply();
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(fonts_command({"path", "show"}).out, "/usr/vantor/lib/X11/fonts/100dpi/\n" + to_ + '\n');
    EXPECT_EQ(apply().status, 3);
}

TEST_F(CommandProfile, RefusesWhatItDoesNotKnowWithTheLine) {
    const std::map<std::string, std::string> wrong = {
        {"profile = 1\n[fonts]\nfile = []\n", ":3: there is no key \"file\""},
        {"profile = 1\nfoo = 2\n", ":2: there is no key \"foo\""},
        {"profile = 2\n", ":1: \"profile\" must be 1"},
        {"[fonts]\n", ": the line \"profile = 1\" is missing"},
        {"profile = 1\n[fonts]\nfiles = \"fonts\"\n", ":3: \"files\" must be a list of texts"},
        {"profile = 1\n[fonts]\nfiles = [1]\n", ":3: \"files\" must be a text"},
        {"profile = 1\n[fonts]\nto = \"here\"\n", ":3: \"to\" must be"},
        {"profile = 1\n[path]\nhome = []\n", ":3: there is no key \"home\""},
        {"profile = 1\nalias = 3\n", ":2: \"alias\" must be [[alias]]"},
        {"profile = 1\n\n[[alias]]\nname = \"x\"\n", ":3: an alias needs"},
        {"profile = 1\n[[fontset]]\nlocale = \"../x\"\nname = \"-x\"\nfonts = [\"-x\"]\n",
         ":2: \"locale\" must be"},
        {"profile = 1\n[fonts\n", ":2: "},
    };
    for (const auto& [text, complaint] : wrong) {
        (void)dir_.write("p.toml", text);
        const Ran ran = apply();
        EXPECT_EQ(ran.status, 4) << text;
        EXPECT_THAT(ran.err, HasSubstr(complaint)) << text;
    }
    EXPECT_EQ(fonts_command({"apply", dir_.file("gone.toml")}).status, 4);
}

TEST_F(CommandProfile, ThatWasExportedIsSoAlready) {
    write(ALIAS);
    ASSERT_EQ(apply().status, 0);
    const std::string out = home_.dir().file("exported");
    const Ran exported = fonts_command({"export", "--from", to_, out});
    EXPECT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(TempDir::read_bytes(out + "/fonts/DejaVuSans.ttf"), TempDir::read_bytes(SANS));
    const Ran again = fonts_command({"apply", out + "/profile.toml"});
    EXPECT_EQ(again.status, 3) << again.out << again.err << TempDir::read_bytes(out + "/profile.toml");
    EXPECT_EQ(fonts_command({"export", out}).status, 4) << "it is not empty";
}

}  // namespace
