// SPDX-License-Identifier: MIT
//
// The command speaks the user's language, and English to programs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command/fonts_command.h"

namespace {

using gw::test::fonts_command;
using gw::test::Ran;
using testing::HasSubstr;
using testing::Not;

struct Spoken {
    const char* locale;
    const char* list;
    const char* options;
    const char* no_such_font;
};

class CommandLanguage : public testing::TestWithParam<Spoken> {
  protected:
    gw::test::Variable locale_{"LC_ALL", GetParam().locale};
};

TEST_P(CommandLanguage, IsThatOfTheHelpAndTheMessages) {
    const Ran help = fonts_command({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr(GetParam().list));
    EXPECT_THAT(help.out, HasSubstr(GetParam().options));
    EXPECT_THAT(fonts_command({"list", "no-such-font"}).err, HasSubstr(GetParam().no_such_font));
}

TEST_P(CommandLanguage, IsEnglishInJson) {
    const Ran list = fonts_command({"list", "--json", "no-such-font"});
    EXPECT_EQ(list.json()["problems"][0]["reason"], "no font has this name");
    const Ran verified = fonts_command({"verify", "--json", "/nowhere.ttf"});
    EXPECT_EQ(verified.json()["files"][0]["verdict"], "unreadable");
    EXPECT_EQ(verified.json()["files"][0]["reason"], "No such file or directory");
    const Ran why = fonts_command({"why", "--json", "no-such-font"});
    EXPECT_THAT(why.json()["answers"][0]["verdict"][0].get<std::string>(), HasSubstr("has no font"));
}

INSTANTIATE_TEST_SUITE_P(All, CommandLanguage,
                         testing::Values(Spoken{"C", "list the installed fonts", "Options:", "no font has"},
                                         Spoken{"de_DE.UTF-8", "die installierten Schriften auflisten",
                                                "Optionen:", "keine Schrift heißt so"},
                                         Spoken{"fr_FR.UTF-8", "lister les polices installées",
                                                "Options:", "aucune police ne porte ce nom"},
                                         Spoken{"es_ES.UTF-8", "enumerar las fuentes instaladas",
                                                "Opciones:", "ninguna fuente tiene este nombre"},
                                         Spoken{"ja_JP.UTF-8", "インストール済みのフォントを一覧表示します",
                                                "オプション:", "この名前のフォントはありません"}));

// The library that reads command lines knows English only.
TEST(CommandLanguageOfUsage, HasNoWordsOfTheLibrary) {
    const gw::test::Variable locale("LC_ALL", "de_DE.UTF-8");
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
        {{}, "es fehlt ein Unterbefehl, oder er ist unbekannt"},
        {{"install"}, "FILE fehlt"},
        {{"install", "--me", "--everyone", "x"}, "nur eines davon kann angegeben werden: --me, --everyone"},
        {{"export", "x", "--from", "y", "--me"}, "nur eines davon kann angegeben werden: --from, --me"},
        {{"install", "x", "--foo"}, "nicht erwartet: --foo"},
        {{"install", "x", "--to"}, "--to braucht einen Wert"},
        {{"path", "move", "x", "y"}, "PLACE muss eine Zahl sein"},
        {{"why", "x", "--cure", "0"}, "--cure: es muss eine Zahl ab 1 sein"},
        {{"list", "--scope", "x"}, "--scope: es muss eines von diesen sein: mine, everyone"},
    };
    for (const auto& [words, why] : wrong) {
        const Ran ran = fonts_command(words);
        EXPECT_EQ(ran.status, 2);
        EXPECT_EQ(ran.err, "glyphward-fonts: " + why + "\nglyphward-fonts --help sagt mehr.\n");
    }
    const std::string help = fonts_command({"install", "--help"}).out;
    EXPECT_THAT(help, HasSubstr("Ziel (eines davon):\n  --to DIR "));
    EXPECT_THAT(help, Not(HasSubstr("ption Group")));
    EXPECT_THAT(help, Not(HasSubstr("At most")));
}

TEST(CommandLanguageOfOldLocales, HaveTheirBytes) {
    const gw::test::Variable locale("LC_ALL", "de_DE.ISO-8859-1");
    EXPECT_THAT(fonts_command({"list", "no-such-font"}).err, HasSubstr("keine Schrift hei\xDFt so"));
}

// The characters of the locale that is asked about are those of other programs.
TEST(CommandLanguageOfOldLocales, IsNotThatOfTheFontset) {
    const gw::test::Variable locale("LC_ALL", "ja_JP.eucJP");
    const Ran ran = fonts_command({"fontset", "en_US.UTF-8", "--server", ":77"});
    EXPECT_EQ(ran.status, 4);
    EXPECT_THAT(ran.err, testing::ContainsRegex("[\xA1-\xFE]")) << "it is in Japanese";
    EXPECT_THAT(ran.err, Not(HasSubstr("\\x")));
}

TEST(CommandNames, HaveNoMarkOfTheWindow) {
    const gw::test::OwnHome home;
    const std::string to = home.dir().make_dir("to");
    const Ran ran = fonts_command({"install", gw::test::SANS, "--to", to});
    EXPECT_EQ(ran.out, "DejaVu Sans Medium [TrueType]: installed\n");
    EXPECT_THAT(fonts_command({"install", gw::test::SANS, "--to", to}).out, Not(HasSubstr("[Read Only]")));
}

TEST(CommandNames, ThatMatchNothingAreToldOnce) {
    EXPECT_EQ(fonts_command({"delete", "--yes", "no-such-font"}).err,
              "glyphward-fonts: no-such-font: no font has this name\n");
    EXPECT_EQ(fonts_command({"list", "Courier Bold*", "no-such-font"}).status, 1);
}

}  // namespace
