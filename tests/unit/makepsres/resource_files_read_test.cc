// SPDX-License-Identifier: MIT
//
// Resource files that the tool finds: which of their entries are kept, and which are not.
#include <gmock/gmock.h>

#include <sys/stat.h>

#include <filesystem>
#include <random>

#include "makepsres/resource_file.h"
#include "unit/makepsres/index_fixture.h"

namespace {

using namespace gw::test;
using gw::psres::DONE;
using testing::HasSubstr;
using Files = std::map<std::string, std::string>;

class ResourceFilesRead : public IndexTest {};

TEST_F(ResourceFilesRead, SectionsOfAllKindsAreKept) {
    fonts.write("a.pfa", outline("A"));
    for (const char* file :
         {"p/latin.enc", "p/frame.form", "p/bricks", "p/sets.ps", "p/a12", "p/a.bdf", "p/note"})
        fonts.write(file, "x");
    fonts.write("p/more.upr",
                "PS-Resources-1.0\nEncoding\nForm\nPattern\nProcSet\nFontPrebuilt\nFontBDF\nFontBDFSizes\n"
                "FontFamily\nmkpsresPrivate\nOwn\n.\n"
                "Encoding\nLatin=latin.enc\nGone=gone.enc\n.\n"
                "Form\nFrame==" +
                    fonts.file("p/frame.form") +
                    "\n.\n"
                    "Pattern\nBricks=bricks\n.\n"
                    "ProcSet\nSets=sets.ps\n.\n"
                    "FontPrebuilt\nA=a12\n.\n"
                    "FontBDF\nA12=a.bdf\n.\n"
                    "FontBDFSizes\nA=12,14\n.\n"
                    "FontFamily\nSample=Roman,A\\,B,Bold,C\n.\n"
                    "mkpsresPrivate\nNoted=1\n.\n"
                    "Own\nlone entry\nThing=note\nOther=what\\%ever\n.\n");
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(said, line("p/gone.enc", "Encoding Gone is not here; left out"));
    EXPECT_EQ(written(),
              "PS-Resources-1.0\nEncoding\nFontBDF\nFontBDFSizes\nFontFamily\nFontOutline\n"
              "FontPrebuilt\nForm\nOwn\nPattern\nProcSet\n.\n/" +
                  root() +
                  "\n"
                  "Encoding\nLatin=p/latin.enc\n.\n"
                  "FontBDF\nA12=p/a.bdf\n.\n"
                  "FontBDFSizes\nA=12,14\n.\n"
                  "FontFamily\nSample=Roman,A\\,B,Bold,C\n.\n"
                  "FontOutline\nA=a.pfa\n.\n"
                  "FontPrebuilt\nA=p/a12\n.\n"
                  "Form\nFrame=p/frame.form\n.\n"
                  "Own\nOther=what\\%ever\nThing=p/note\nlone entry\n.\n"
                  "Pattern\nBricks=p/bricks\n.\n"
                  "ProcSet\nSets=p/sets.ps\n.\n");
    EXPECT_EQ(run({"-nr", fonts.path()}), DONE);
    EXPECT_EQ(read().names, std::vector<std::string>{"FontOutline"}) << "they are not reread";
}

TEST_F(ResourceFilesRead, FontsElsewhereAreKeptWhileTheyAreWhatTheyWere) {
    const TempDir elsewhere;
    elsewhere.write("e.pfa", outline("Elsewhere"));
    elsewhere.write("e.afm", metrics("Elsewhere"));
    elsewhere.write("changed.pfa", outline("Changed"));
    elsewhere.write("outline", "in a format of its own");
    fonts.write("PSres.upr",
                "PS-Resources-1.0\nFontOutline\nFontAFM\n.\n/" + elsewhere.path() +
                    "\n"
                    "FontOutline\nElsewhere=e.pfa\nWas=changed.pfa\nPlain=outline\nGone=gone.pfa\n"
                    "Nothing=\n.\n"
                    "FontAFM\nElsewhere=e.afm\n.\n");
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"),
              (Files{{"Elsewhere", elsewhere.file("e.pfa")}, {"Plain", elsewhere.file("outline")}}));
    EXPECT_EQ(read().files("FontAFM"), (Files{{"Elsewhere", elsewhere.file("e.afm")}}));
    EXPECT_EQ(said, "makepsres: " + elsewhere.file("changed.pfa") +
                        ": FontOutline Was is not here; left out\n"
                        "makepsres: " +
                        elsewhere.file("gone.pfa") +
                        ": FontOutline Gone is not here; left out\n"
                        "makepsres: " +
                        elsewhere.path().substr(0, elsewhere.path().size() - 1) +
                        ": FontOutline Nothing is not here; left out\n");
}

TEST_F(ResourceFilesRead, AnEarlierOutputBringsNoDeletedFontBack) {
    fonts.write("a.pfa", outline("A"));
    fonts.write("b.pfa", outline("B"));
    fonts.write("c.pfa", outline("C"));
    fonts.write("kept.enc", "x");
    fonts.write("own.upr", "PS-Resources-1.0\nEncoding\n.\nEncoding\nKept=kept.enc\n.\n");
    std::ostringstream out;
    std::ostringstream err;
    const auto rebuild = [&] {
        EXPECT_EQ(gw::psres::run({"-q", "-o", fonts.file("all.upr"), fonts.path()}, out, err), DONE);
        return StrictUpr(fonts.read("all.upr"));
    };
    EXPECT_EQ(rebuild().files("FontOutline").size(), 3U);
    std::filesystem::remove(fonts.file("a.pfa"));
    fonts.write("b.pfa", outline("New"));
    std::filesystem::remove(fonts.file("own.upr"));
    const StrictUpr after = rebuild();
    EXPECT_EQ(after.files("FontOutline"), (Files{{"C", fonts.file("c.pfa")}, {"New", fonts.file("b.pfa")}}));
    EXPECT_EQ(after.files("Encoding"), (Files{{"Kept", fonts.file("kept.enc")}}));
    EXPECT_EQ(rebuild().files("Encoding").size(), 1U) << "it is in the output only, which is read too";
    EXPECT_EQ(err.str(), "");
}

TEST_F(ResourceFilesRead, TheFilesThemselvesGoBeforeWhatIsSaidAboutThem) {
    fonts.write("a.pfa", outline("A"));
    fonts.write("sub/a.pfa", outline("A"));
    fonts.write("x.upr", "PS-Resources-1.0\nFontOutline\n.\nFontOutline\nA=sub/a.pfa\n.\n");
    EXPECT_EQ(run({"-q", fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"), (Files{{"A", fonts.file("a.pfa")}}));
}

TEST_F(ResourceFilesRead, AnExclusivePrincipalFileRulesAloneInItsDirectory) {
    for (const char* file : {"1", "2", "3", "sub/4"}) fonts.write(file, "x");
    const auto one = [](const std::string& first, const std::string& number) {
        return first + "\nForm\n.\nForm\nF" + number + "=" + number + "\n.\n";
    };
    fonts.write("A.upr", one("PS-Resources-1.0", "1"));
    fonts.write("z.upr", one("PS-Resources-Exclusive-1.0", "3"));
    fonts.write("sub/x.upr", one("PS-Resources-1.0", "4"));
    const auto forms = [&] {
        EXPECT_EQ(run({fonts.path()}), DONE);
        std::string found;
        for (const auto& [name, file] : read().files("Form")) found += name;
        return found;
    };
    EXPECT_EQ(forms(), "F1F3F4") << "without a principal file; another's word for it does not count";
    fonts.write("PSres.upr", one("PS-Resources-1.0", "2"));
    EXPECT_EQ(forms(), "F1F2F3F4");
    fonts.write("PSres.upr", one("PS-Resources-Exclusive-1.0", "2"));
    EXPECT_EQ(forms(), "F2F4");
    EXPECT_FALSE(read().exclusive) << "the output is another file";
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(gw::psres::run({"-o", fonts.file("PSres.upr"), fonts.path()}, out, err), DONE);
    EXPECT_TRUE(StrictUpr(fonts.read("PSres.upr")).exclusive) << "a principal file stays what it is";
}

TEST_F(ResourceFilesRead, BrokenOnesAreSaidAndWhatCanBeReadCounts) {
    fonts.write("f", "x");
    fonts.write("none.upr", "a text\n");
    fonts.write("torn.upr", "PS-Resources-1.0\nForm\n.\nForm\nF=f\nG=");
    fonts.make_dir("dir.upr");
    ASSERT_EQ(::mkfifo(fonts.file("pipe.upr").c_str(), 0600), 0);
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(said, line("none.upr", "this is no resource file; left out") +
                        line("pipe.upr", "this is no plain file; left out") +
                        line("torn.upr", "this resource file breaks off; its end is left out") +
                        "makepsres: " + root() + ": Form G is not here; left out\n");
    EXPECT_EQ(read().files("Form"), (Files{{"F", fonts.file("f")}}));
}

TEST_F(ResourceFilesRead, RubbishMakesAValidFile) {
    constexpr int ROUNDS = 200;
    std::mt19937 random(20261121);
    const std::string grains[] = {
        "FontAFM\n", "Own\n", ".\n", "//d\n", "a=a.pfa\n", "b=/x\n", "FontFamily\n",       "\\",
        "\\\n",      "%",     "=",   " ",     "\n",        ".",      std::string(1, '\0'), "\r"};
    fonts.write("a.pfa", outline("A"));
    for (int round = 0; round < ROUNDS; ++round) {
        std::string bytes = "PS-Resources-1.0\nOwn\n.\nOwn\nx=y\n";
        for (int i = 0; i < 40; ++i) {
            bytes += random() % 4 == 0 ? std::string(1, static_cast<char>(random() & 0xFF))
                                       : grains[random() % std::size(grains)];
        }
        fonts.write("x.upr", bytes);
        ASSERT_EQ(run({"-q", fonts.path()}), DONE);
        SCOPED_TRACE(written());
        const std::string once = written();
        const auto parsed = gw::psres::parse_resource_file(once);
        ASSERT_TRUE(parsed && parsed->complete);
        std::istringstream lines(once);
        for (std::string text; std::getline(lines, text);) ASSERT_LT(text.size(), gw::psres::LONGEST_LINE);
        fonts.write("x.upr", once);
        ASSERT_EQ(run({"-q", fonts.path()}), DONE);
        ASSERT_EQ(written(), once) << "what was kept once is kept";
        ASSERT_THAT(once, HasSubstr("\nA=a.pfa\n"));
    }
}

}  // namespace
