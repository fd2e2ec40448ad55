// SPDX-License-Identifier: MIT
#include "diagnosis/question.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "diagnosis/sentence.h"

namespace {

using gw::diagnosis::MOST_PASTED;
using gw::diagnosis::MOST_QUESTIONS;
using gw::diagnosis::Question;
using gw::diagnosis::read_questions;
using gw::diagnosis::Said;
using gw::diagnosis::Wanted;
using enum gw::diagnosis::Wanted;

using Names = std::vector<std::pair<Wanted, std::string>>;

Names names_in(std::string_view pasted) {
    Names names;
    for (const Question& question : read_questions(pasted))
        names.emplace_back(question.wanted, question.name);
    return names;
}

Names one(Wanted wanted, const std::string& name) {
    return {{wanted, name}};
}

bool has_note(const Question& question, Said said) {
    return std::any_of(question.notes.begin(), question.notes.end(),
                       [&](const auto& note) { return note.said == said; });
}

constexpr const char* BOLD = "-adobe-helvetica-bold-r-normal--*-120-*";
constexpr const char* NEW_CENTURY =
    "-adobe-new century schoolbook-medium-r-normal--12-120-75-75-p-70-iso8859-1";

// --- what programs print -------------------------------------------------------

struct Recorded {
    const char* program;
    const char* version;
    const char* text;
    Wanted wanted;
    const char* name;
    int element;
};

const std::vector<Recorded> RECORDED_MESSAGES = {
#define RECORDED(program, version, text, wanted, name, element) \
    {program, version, text, wanted, name, element},
#include "recorded_messages.def"
#undef RECORDED
};

/// The recorded message is the first question; there may be others, for what the program used instead.
void expect_first(const Recorded& recorded, const std::string& pasted) {
    const std::vector<Question> questions = read_questions(pasted);
    ASSERT_EQ(questions.size(), 1U) << pasted;
    EXPECT_EQ(questions[0].wanted, recorded.wanted) << pasted;
    EXPECT_EQ(questions[0].name, recorded.name) << pasted;
    EXPECT_EQ(questions[0].element, recorded.element) << pasted;
    EXPECT_FALSE(questions[0].notes.empty()) << pasted;
}

TEST(RecordedMessagesTest, EachIsUnderstood) {
    ASSERT_GE(RECORDED_MESSAGES.size(), 60U);
    for (const Recorded& recorded : RECORDED_MESSAGES) expect_first(recorded, recorded.text);
}

TEST(RecordedMessagesTest, EachIsUnderstoodInALog) {
    for (const Recorded& recorded : RECORDED_MESSAGES) {
        expect_first(recorded, std::string("Nov 22 07:00:01 host session[812]: ") + recorded.text + "\r\n");
        expect_first(recorded, std::string("2026-11-22T07:00:01.123456+00:00 ") + recorded.text);
        expect_first(recorded, std::string("\x1B[31m") + recorded.text + "\x1B[0m\n");
    }
}

TEST(RecordedMessagesTest, EachIsUnderstoodBetweenOtherLines) {
    const std::string before =
        "glyph@host:~$ startx\nX.Org X Server 1.21.1.7\nGtk-WARNING **: cannot open display: :0\n\n";
    for (const Recorded& recorded : RECORDED_MESSAGES)
        expect_first(recorded, before + recorded.text + "\n\nSegmentation fault (core dumped)\n");
}

TEST(RecordedMessagesTest, MessagesInQuotesMayBeWrappedAnywhere) {
    const std::string message =
        std::string("Warning: Cannot convert string \"") + NEW_CENTURY + "\" to type FontStruct";
    for (std::size_t cut = 1; cut < message.size(); ++cut) {
        if (message[cut] == ' ' || message[cut - 1] == ' ') continue;
        // As a terminal of this width breaks it.
        const std::string wide = std::string(80, 'x') + ": ";
        const Names names = names_in(wide + message.substr(0, cut) + "\n    " + message.substr(cut));
        ASSERT_EQ(names, one(FONT, NEW_CENTURY)) << cut;
    }
}

TEST(QuestionTest, AMessageWrappedAtABlankKeepsTheBlankOfTheName) {
    EXPECT_EQ(names_in("Warning: Cannot convert string\n  \"-adobe-new "
                       "century\nschoolbook-medium-r-normal--12-120-75-75-"
                       "p-70-iso8859-1\"\n  to type FontStruct"),
              one(FONT, NEW_CENTURY));
}

TEST(QuestionTest, ProgramsNameThemselves) {
    const std::vector<std::pair<std::string, std::string>> CASES = {
        {"xterm: cannot load font \"a14\"", "xterm"},
        {"/usr/bin/xterm: cannot load font \"a14\"", "xterm"},
        {"Nov 22 07:00:01 host xterm[812]: cannot load font \"a14\"", "xterm"},
        {"xterm: Warning: cannot load font \"a14\"", "xterm"},
        {"Warning: cannot load font \"a14\"", ""},
        {"twm:  unable to open fontset \"a14\"", "twm"},
        {"Font 'a14' is not defined", "emacs"},
        {"E596: Invalid font(s): guifont=a14", "vim"},
        {"X Error of failed request:  BadName (named color or font does not exist)\n"
         "  Major opcode of failed request:  45 (X_OpenFont)",
         ""},
        {"[fvwm][FlocaleLoadFont]: WARNING -- can't load font 'a14', trying default:\n\tfixed", "fvwm"}};
    for (const auto& [line, program] : CASES) {
        const std::vector<Question> questions = read_questions(line);
        ASSERT_EQ(questions.size(), 1U) << line;
        EXPECT_EQ(questions[0].program, program) << line;
    }
}

TEST(QuestionTest, AMessageWithoutANameBelongsToTheNameNextToIt) {
    const std::vector<Question> questions = read_questions(
        "Warning: Cannot convert string \"a14\" to type FontStruct\nxfd:  no font to display\n");
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].name, "a14");
    EXPECT_EQ(questions[0].program, "xfd");
    EXPECT_TRUE(has_note(questions[0], Said::TOOLKIT_LACKED_FONT));
    EXPECT_TRUE(has_note(questions[0], Said::PROGRAM_LACKED_FONT));
}

void expect_set_that_lacks_charsets(const char* message, const char* base_names) {
    const std::vector<Question> questions = read_questions(message);
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].wanted, FONTSET);
    EXPECT_EQ(questions[0].name, base_names);
    EXPECT_TRUE(has_note(questions[0], Said::SET_LACKS_CHARSETS));
}

TEST(QuestionTest, MissingCharsetsBelongToTheFontsetThatFollows) {
    expect_set_that_lacks_charsets(
        "Warning: Missing charsets in String to FontSet conversion\n"
        "Warning: Cannot convert string \"a14,b14\" to type FontSet\n",
        "a14,b14");
}

TEST(QuestionTest, MissingCharsetsBelongToTheFontsetOfTheCommand) {
    expect_set_that_lacks_charsets(
        "$ xmessage -xrm '*international: true' -xrm '*fontSet: 9x15' hello\n"
        "Warning: Missing charsets in String to FontSet conversion\n",
        "9x15");
}

TEST(QuestionTest, AMessageWithoutAnyNameIsAboutTheWholePath) {
    const std::string error =
        "X Error of failed request:  BadName (named color or font does not exist)\n  Major opcode of failed "
        "request:  45 "
        "(X_OpenFont)\n  Serial number of failed request:  12\n  Current serial number in output stream:  "
        "13\n";
    const std::vector<Question> questions = read_questions(error);
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].wanted, PATH);
    EXPECT_TRUE(has_note(questions[0], Said::PROGRAM_ENDED));
    EXPECT_TRUE(has_note(questions[0], Said::NAME_NOT_TOLD));
    EXPECT_EQ(names_in("$ oldprogram -fn a14\n" + error), one(FONT, "a14"));
}

TEST(QuestionTest, WithoutItsSecondLineAnErrorMayBeAboutAFont) {
    const std::string error = "X Error of failed request:  BadName (named color or font does not exist)\n";
    for (const std::string& text :
         {error, "oldprogram: " + error + "Segmentation fault\n",
          std::string("The error was 'BadName (named color or font does not exist)'.\n")}) {
        const std::vector<Question> questions = read_questions(text);
        ASSERT_EQ(questions.size(), 1U) << text;
        EXPECT_EQ(questions[0].wanted, PATH) << text;
        for (const Said said : {Said::FONT_OR_COLOR, Said::NAME_NOT_TOLD, Said::PASTE_MORE})
            EXPECT_TRUE(has_note(questions[0], said)) << text;
    }
    const std::vector<Question> with_command = read_questions("$ oldprogram -fn a14\n" + error);
    ASSERT_EQ(with_command.size(), 1U);
    EXPECT_EQ(with_command[0].name, "a14");
    EXPECT_TRUE(has_note(with_command[0], Said::FONT_OR_COLOR));
    EXPECT_FALSE(has_note(with_command[0], Said::PASTE_MORE));
}

TEST(QuestionTest, AMessageWithAnEmptyNameIsAboutTheWholePath) {
    EXPECT_EQ(names_in("xterm: unable to open font \"\", trying \"fixed\"....\n"), one(PATH, ""));
}

TEST(QuestionTest, AnErrorAboutAColorIsNoneAboutAFont) {
    for (const char* request : {"85 (X_AllocNamedColor)", "90 (X_StoreNamedColor)", "92 (X_LookupColor)"}) {
        EXPECT_EQ(names_in("X Error of failed request:  BadName (named color or font does not exist)\n"
                           "  Major opcode of failed request:  " +
                           std::string(request) + '\n'),
                  Names());
    }
}

TEST(QuestionTest, TheToolkitTellsTheSuperuserNoName) {
    const std::vector<Question> questions =
        read_questions("Warning: Cannot convert string \"%s\" to type %s");
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].wanted, PATH);
    EXPECT_TRUE(has_note(questions[0], Said::NAME_NOT_TOLD_TO_ROOT));
}

TEST(QuestionTest, XsetCountsFromZero) {
    const std::vector<Question> questions = read_questions(
        "xset:  bad font path element (#2), possible causes are:\n    Directory does not exist or has wrong "
        "permissions\n"
        "    Directory missing fonts.dir\n    Incorrect font server address or syntax\n");
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].wanted, PATH);
    EXPECT_EQ(questions[0].element, 3);
    EXPECT_EQ(questions[0].program, "xset");
    EXPECT_EQ(questions[0].notes.front().details, std::vector<std::string>{"3"});
}

TEST(QuestionTest, APlaceThatNoPathHasIsNotSaid) {
    for (const std::string place : {"-1", "99999999999", "x"}) {
        const std::vector<Question> questions =
            read_questions("xset:  bad font path element (#" + place + "), possible causes are:\n");
        ASSERT_EQ(questions.size(), 1U) << place;
        EXPECT_EQ(questions[0].wanted, PATH) << place;
        EXPECT_EQ(questions[0].element, 0) << place;
        EXPECT_TRUE(has_note(questions[0], Said::PATH_REFUSED)) << place;
    }
}

TEST(QuestionTest, OldMessagesAreKnown) {
    const std::vector<std::pair<std::string, Names>> CASES = {
        {"Warning: Cannot convert string \"a14=one,b14;c14:two\" to type XmFontList",
         {{FONT, "a14"}, {FONTSET, "b14,c14"}}},
        {"Warning: Cannot convert string \"a14\" to type Font", one(FONT, "a14")},
        {"Warning: Cannot convert string \"a14\" to type XmRenderTable", one(FONT, "a14")},
        {"old: can't open display font a14", one(FONT, "a14")},
        {"old: cannot open font `a14'.", one(FONT, "a14")},
        {"old: \"a14\" does not fully specify a font set", one(FONTSET, "a14")},
        {"old: a14 does not fully specify a font set", one(FONTSET, "a14")},
    };
    for (const auto& [line, names] : CASES) EXPECT_EQ(names_in(line), names) << line;
}

TEST(QuestionTest, EachQuestionIsThereOnceInTheOrderOfTheText) {
    EXPECT_EQ(
        names_in("xterm: cannot load font \"b14\"\nxterm: cannot load font \"a14\"\nxterm: cannot load font "
                 "\"b14\"\n"),
        (Names{{FONT, "b14"}, {FONT, "a14"}}));
}

// --- what people write ---------------------------------------------------------

struct Written {
    const char* text;
    Names names;
};

TEST(QuestionTest, NamesOfFontsAsPeopleWriteThem) {
    const std::vector<Written> CASES = {
        {"9x15", one(FONT, "9x15")},
        {"  fixed \n", one(FONT, "fixed")},
        {"lucidasans-bold-12", one(FONT, "lucidasans-bold-12")},
        {BOLD, one(FONT, BOLD)},
        {NEW_CENTURY, one(FONT, NEW_CENTURY)},
        {"*-helvetica-*", one(FONT, "*-helvetica-*")},
        {"*helvetica*", one(FONT, "*helvetica*")},
        {"\"9x15\"", one(FONT, "9x15")},
        {"'9x15':", one(FONT, "9x15")},
        {"\u201C9x15\u201D", one(FONT, "9x15")},
        {"\u201E9x15\u201C.", one(FONT, "9x15")},
        {"\u00AB\u00A09x15\u00A0\u00BB", one(FONT, "9x15")},
        {"\uFEFF9x15\r\n", one(FONT, "9x15")},
        {"9x15\nfixed\n", {{FONT, "9x15"}, {FONT, "fixed"}}},
        {"a14,b14", one(FONTSET, "a14,b14")},
        {"a14, b14,", one(FONTSET, "a14,b14")},
        {"-*-fixed-medium-r-*--14-*,\n-*-fixed-medium-r-*--16-*",
         one(FONTSET, "-*-fixed-medium-r-*--14-*,-*-fixed-medium-r-*--16-*")},
        {"-adobe-helvetica-bold-r-\nnormal--*-120-*", one(FONT, BOLD)},
        {"the font -adobe-helvetica-bold-r-normal--*-120-* is not there", one(FONT, BOLD)},
        {"What about \"9x15\"?", {}},
    };
    for (const Written& written : CASES) EXPECT_EQ(names_in(written.text), written.names) << written.text;
}

TEST(QuestionTest, ResourcesAndCommandLines) {
    const std::vector<Written> CASES = {
        {"XTerm*font: 9x15", one(FONT, "9x15")},
        {"XTerm*VT100.font2:\t-misc-fixed-*-*-*-*-8-*", one(FONT, "-misc-fixed-*-*-*-*-8-*")},
        {"*fontList: a14=one,b14;c14:two, d14", {{FONT, "a14"}, {FONTSET, "b14,c14"}, {FONT, "d14"}}},
        {"*fontList: \"a14\"=one,\"b14\":", {{FONT, "a14"}, {FONTSET, "b14"}}},
        {"*fontList: a14,\\\n    b14", {{FONT, "a14"}, {FONT, "b14"}}},
        {"*fontSet: a14", one(FONTSET, "a14")},
        {"Xman*manualFontBold: a14", one(FONT, "a14")},
        {"*renderTable: one,two", {}},
        {"*one.fontType: FONT_IS_FONTSET", {}},
        {"*one.fontName: a14", one(FONT, "a14")},
        {"*background: gray", {}},
        {"! XTerm*font: 9x15", {}},
        {"xterm -fn 9x15 -e vi", one(FONT, "9x15")},
        {"$ xterm -font '-misc-fixed-*-*-*-*-8-*' &", one(FONT, "-misc-fixed-*-*-*-*-8-*")},
        {"emacs --font=9x15", one(FONT, "9x15")},
        {"xterm -fn 9x15 -fb 9x15bold", {{FONT, "9x15"}, {FONT, "9x15bold"}}},
        {"xterm -xrm 'XTerm*font: 9x15'", one(FONT, "9x15")},
        {"xset fp+ /usr/share/fonts/X11/misc/,/opt/fonts",
         {{DIRECTORY, "/usr/share/fonts/X11/misc/"}, {DIRECTORY, "/opt/fonts"}}},
        {"TitleFont \"-adobe-helvetica-bold-r-normal--*-120-*\"", one(FONT, BOLD)},
    };
    for (const Written& written : CASES) EXPECT_EQ(names_in(written.text), written.names) << written.text;
}

TEST(QuestionTest, PathsAndElements) {
    ASSERT_EQ(::setenv("HOME", "/home/glyph/", 1), 0);
    const std::vector<Written> CASES = {
        {"/usr/share/fonts/X11/misc", one(DIRECTORY, "/usr/share/fonts/X11/misc")},
        {"/usr/share/fonts/X11/misc/:unscaled", one(DIRECTORY, "/usr/share/fonts/X11/misc/:unscaled")},
        {"catalogue:/etc/X11/fontpath.d", one(DIRECTORY, "catalogue:/etc/X11/fontpath.d")},
        {"tcp/localhost:7100", one(DIRECTORY, "tcp/localhost:7100")},
        {"built-ins", one(DIRECTORY, "built-ins")},
        {"/home/glyph/My Fonts", one(DIRECTORY, "/home/glyph/My Fonts")},
        {"\"/home/glyph/My Fonts/\"", one(DIRECTORY, "/home/glyph/My Fonts/")},
        {"~/fonts", one(DIRECTORY, "/home/glyph/fonts")},
        {"~", one(DIRECTORY, "/home/glyph")},
        {"file:///home/glyph/My%20Fonts", one(DIRECTORY, "/home/glyph/My Fonts")},
        {"/usr/share/fonts/(old)", one(DIRECTORY, "/usr/share/fonts/(old)")},
        {"(/usr/share/fonts/(old))", one(DIRECTORY, "/usr/share/fonts/(old)")},
        {"It is there (in /opt/fonts[1]).", one(DIRECTORY, "/opt/fonts[1]")},
        {"(see /opt/fonts)", one(DIRECTORY, "/opt/fonts")},
        {"catalogue:relative", one(DIRECTORY, "catalogue:relative")},
        {"catalogue:", one(DIRECTORY, "catalogue:")},
        {"file:///home/glyph/a%0Ab.ttf", {}},
        {"file:///home/glyph/a%00.ttf", {}},
        {"~somebody/fonts", {}},
        {"file://localhost/home/glyph/a.ttf", one(FILE, "/home/glyph/a.ttf")},
        {"/usr/share/fonts/X11/misc/9x15.pcf.gz", one(FILE, "/usr/share/fonts/X11/misc/9x15.pcf.gz")},
        {"/home/glyph/A.PFB", one(FILE, "/home/glyph/A.PFB")},
        {"/a/b.pcf\n/c/d\n", {{FILE, "/a/b.pcf"}, {DIRECTORY, "/c/d"}}},
        {"/usr/bin/xterm: No such file or directory", {}},
    };
    for (const Written& written : CASES) EXPECT_EQ(names_in(written.text), written.names) << written.text;
}

TEST(QuestionTest, NamesThatCannotBeRightAreSaidToBe) {
    const auto notes = [](const std::string& name) { return read_questions(name).at(0); };
    EXPECT_TRUE(
        has_note(notes("-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859"), Said::TOO_FEW_FIELDS));
    EXPECT_TRUE(has_note(notes("-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1-x"),
                         Said::TOO_MANY_FIELDS));
    EXPECT_TRUE(has_note(notes("-" + std::string(400, 'a') + "-*-*-*-*"), Said::NAME_TOO_LONG));
    EXPECT_TRUE(has_note(notes("Monospace:size=10"), Said::NAME_FOR_FONTCONFIG));
    EXPECT_TRUE(notes(BOLD).notes.empty());
    EXPECT_TRUE(notes(NEW_CENTURY).notes.empty());
}

// --- what is no text -----------------------------------------------------------

TEST(QuestionTest, NothingInItIsNoQuestion) {
    for (const char* text : {"", " \n\t\n", "Hello, this is a sentence without a font.\n", ",,,", "\"\"",
                             "::::", "-fn", "*fontList:"})
        EXPECT_EQ(names_in(text), Names()) << text;
}

TEST(QuestionTest, PatternsOfManyAsterisksAreTakenAsTheyAre) {
    for (const int count : {14, 30}) {
        std::string pattern;
        for (int i = 0; i < count; ++i) pattern += "-*";
        EXPECT_EQ(names_in(pattern), one(FONT, pattern));
    }
}

TEST(QuestionTest, MarksOfQuotedMailsAreNoPartOfNames) {
    const Names bold = one(FONT, BOLD);
    EXPECT_EQ(names_in("I get this:\n> Warning: Cannot convert string \"-adobe-helvetica-bold-r-normal-\n"
                       "> -*-120-*\" to type FontStruct\n"),
              bold);
    EXPECT_EQ(
        names_in("> > Warning: Cannot convert string \"-adobe-helvetica-bold-r-\r\n>> normal--*-120-*\" "
                 "to\r\n> > type FontStruct\n"),
        bold);
    EXPECT_EQ(names_in("  | Warning: Cannot convert string\n  | \"" + std::string(BOLD) +
                       "\"\n  | to type FontSet"),
              one(FONTSET, BOLD));
    EXPECT_TRUE(names_in(">>>\n|\n> ").empty());
}

TEST(QuestionTest, MarkedQuotesAreQuotes) {
    const std::string name = NEW_CENTURY;
    for (const char* quote : {"&quot;", "&#34;", "&#x22;", "&amp;quot;", "&amp;amp;#34;", "\\\"", "\\\\\\\"",
                              "\\&quot;", "&#39;"}) {
        EXPECT_EQ(names_in("<p>Warning: Cannot convert string " + (quote + name) + quote +
                           " to type FontStruct</p>"),
                  one(FONT, NEW_CENTURY))
            << quote;
    }
    EXPECT_EQ(names_in("{\"log\":\"Warning: Cannot convert string \\\"" + name +
                       "\\\" to type FontStruct\\n\",\"stream\":\"stderr\"}"),
              one(FONT, NEW_CENTURY));
    EXPECT_EQ(names_in("-b&amp;h-lucida-bold-r-normal-sans-*"),
              one(FONT, "-b&h-lucida-bold-r-normal-sans-*"));
    EXPECT_EQ(names_in("-b&h-lucida-bold-r-normal-sans-*"), one(FONT, "-b&h-lucida-bold-r-normal-sans-*"));
    EXPECT_EQ(names_in("&gt; xterm: cannot load font &quot;a14&quot;"), one(FONT, "a14"));
}

TEST(QuestionTest, NumbersOfLinesAreNoPartOfNames) {
    const Names bold = one(FONT, BOLD);
    EXPECT_EQ(names_in("12: Warning: Cannot convert string \"-adobe-helvetica-bold-r-\n"
                       "13: normal--*-120-*\" to type FontStruct\n"),
              bold);
    EXPECT_EQ(names_in("     9\tWarning: Cannot convert string \"-adobe-helvetica-bold\n"
                       "    10\t-r-normal--*-120-*\" to\n    11\ttype FontStruct\n"),
              bold);
    EXPECT_EQ(names_in("8:9x15\n9:fixed\n"), (Names{{FONT, "9x15"}, {FONT, "fixed"}}));
    // Numbers that do not follow each other are something else.
    EXPECT_EQ(names_in("Warning: Cannot convert string \"-adobe-helvetica-bold-r-normal--*-\n120-*\" to type "
                       "FontStruct"),
              bold);
}

TEST(QuestionTest, CharactersThatNobodySeesAreNoPartOfNames) {
    EXPECT_EQ(names_in("-adobe-\u200Bhelv\u00ADetica-bold-r-normal--*-120-*\u2060"), one(FONT, BOLD));
}

TEST(QuestionTest, ControlCharactersAndBrokenUtf8AreReplaced) {
    using namespace std::string_literals;
    EXPECT_EQ(names_in("9x15\0"s), one(FONT, "9x15"));
    EXPECT_EQ(names_in("xterm: cannot load font \"a\x07 14\xFF\""), one(FONT, "a  14?"));
    EXPECT_EQ(names_in("\xC0\x80\xED\xA0\x80 \xF5"), Names());
}

TEST(QuestionTest, ASetOfTwoHundredNamesIsOneQuestion) {
    std::string names = "-misc-fixed-medium-r-normal--0-*";
    for (int i = 1; i < 200; ++i) names += ",-misc-fixed-medium-r-normal--" + std::to_string(i) + "-*";
    EXPECT_EQ(names_in("Warning: Cannot convert string \"" + names + "\" to type FontSet"),
              one(FONTSET, names));
    EXPECT_EQ(names_in(names), one(FONTSET, names));
    // Each of the names is short enough.
    ASSERT_EQ(read_questions(names).size(), 1U);
    EXPECT_TRUE(read_questions(names)[0].notes.empty());
    const std::string with_long_one = names + ",-misc-" + std::string(300, 'x') + "-*";
    EXPECT_TRUE(has_note(read_questions(with_long_one).at(0), Said::NAME_TOO_LONG));
}

TEST(QuestionTest, NoMoreThanTheLimitsAreRead) {
    std::string many;
    for (int i = 0; i < 1000; ++i) many += "xterm: cannot load font \"font" + std::to_string(i) + "\"\n";
    EXPECT_EQ(read_questions(many).size(), MOST_QUESTIONS);
    const std::string late = std::string(MOST_PASTED, '\n') + "9x15";
    EXPECT_EQ(names_in(late), Names());
}

/// Beginnings of messages and names that never end. What takes too long is ended by the time limit of the
/// suite.
TEST(QuestionTest, MuchOfAnythingIsReadAtOnce) {
    for (const char* piece : {"a",
                              "-",
                              "*-",
                              ",",
                              "\"",
                              "'",
                              "\n",
                              "font ",
                              "cannot load font ",
                              "cannot load font \"",
                              "Font '",
                              "Warning: Cannot convert string \"",
                              "bad font path element (#",
                              "BadName (named color or font does not exist)",
                              "{",
                              "/a",
                              "-a-b-c-d-e-f",
                              "a=b:c;",
                              "*fontList: ",
                              "a,\n",
                              "-a-b-c-\n",
                              "FlocaleGetFontSet]: (",
                              "\x1B[",
                              "\xE2\x80",
                              "does not fully specify a font set ",
                              "can't load font 'a', trying default:\n",
                              "&amp;",
                              "&",
                              "\\",
                              "12: a\n",
                              "(",
                              "()",
                              ")",
                              "/(a",
                              "x: "}) {
        std::string text;
        while (text.size() < MOST_PASTED / 4) text += piece;
        EXPECT_LE(read_questions(text).size(), MOST_QUESTIONS) << piece;
    }
}

}  // namespace
