// SPDX-License-Identifier: MIT
//
// The file that the diagnosis names is the one from which a real X server draws. Every bitmap font here has
// an ascent of its own, which is also its file's name, so the server's answer tells from which file it came.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "fontpath/xlib_server_view.h"
#include "support/compressed.h"
#include "support/temp_dir.h"
#include "unit/oracle/lab_fonts.h"

#include "support/session.h"

namespace gw::diagnosis {
namespace {

namespace fs = std::filesystem;

using test::lab_bdf;
using test::lab_name;

/// The directories of a set-up, as they are made.
class Fonts {
  public:
    /// A bitmap font with this ascent.
    Fonts& bitmap(const std::string& directory, const std::string& name, int ascent) {
        const std::string file = std::to_string(ascent) + ".bdf";
        root_.write(directory + '/' + file, lab_bdf(name, ascent));
        return line(directory, file, name);
    }
    /// A line of the index, whatever there is of the file.
    Fonts& line(const std::string& directory, const std::string& file, const std::string& name) {
        const std::string before = root_.read(directory + "/fonts.dir");
        root_.write(directory + "/fonts.dir", (before.empty() ? "1\n" : before) + file + ' ' + name + '\n');
        return *this;
    }
    Fonts& alias(const std::string& directory, const std::string& alias, const std::string& target) {
        if (!fs::exists(root_.file(directory + "/fonts.dir"))) root_.write(directory + "/fonts.dir", "0\n");
        const std::string before = root_.read(directory + "/fonts.alias");
        root_.write(directory + "/fonts.alias", before + '"' + alias + "\" \"" + target + "\"\n");
        return *this;
    }
    Fonts& damaged(const std::string& directory, const std::string& file, const std::string& name) {
        return this->file(directory, file, name, "this is no font");
    }
    Fonts& file(const std::string& directory, const std::string& file, const std::string& name,
                const std::string& bytes) {
        root_.write(directory + '/' + file, bytes);
        return line(directory, file, name);
    }
    [[nodiscard]] std::string path(const std::string& element) const { return root_.file(element); }

  private:
    test::TempDir root_;
};

class ServerOracleTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(server); }

    void serve(const std::vector<std::string>& elements) {
        std::vector<std::string> path;
        for (const std::string& element : elements)
            path.push_back(element == "built-ins" ? element : fonts.path(element));
        // The server reads an index again only when a whole second has passed: another path makes it new.
        ASSERT_TRUE(server->set_font_path({"built-ins"}));
        ASSERT_TRUE(server->set_font_path(path));
    }

    Answer ask(const std::string& pattern) {
        Question question;
        question.name = pattern;
        return answer(question, *server, Surroundings());
    }

    /// The answer names the file that the server has drawn from.
    void expect_exact(const std::string& pattern) {
        const std::optional<OpenedFont> opened = server->open(pattern);
        const Answer found = ask(pattern);
        ASSERT_TRUE(opened) << pattern;
        EXPECT_EQ(found.font.found, Found::EXACT) << report(found);
        EXPECT_EQ(fs::path(found.font.file).filename(), std::to_string(opened->ascent) + ".bdf")
            << report(found);
        EXPECT_TRUE(found.font.is_checked) << report(found);
    }

    /// The server scales the font with one of these ascents, which is of so many pixels.
    void expect_scaled(const std::string& pattern, const std::vector<std::pair<int, double>>& sources,
                       double pixels) {
        const std::optional<OpenedFont> opened = server->open(pattern);
        const Answer found = ask(pattern);
        ASSERT_TRUE(opened) << pattern;
        EXPECT_EQ(found.font.found, Found::SCALED) << report(found);
        int nearest = 0;
        double least = 1e9;
        for (const auto& [ascent, its_pixels] : sources) {
            const double difference = std::abs(std::log(opened->ascent / (ascent * pixels / its_pixels)));
            if (difference >= least) continue;
            least = difference;
            nearest = ascent;
        }
        EXPECT_LT(least, 0.15) << opened->ascent << ' ' << pattern;
        if (found.font.is_checked) {
            EXPECT_EQ(fs::path(found.font.file).filename(), std::to_string(nearest) + ".bdf")
                << report(found);
        }
    }

    void expect_nothing(const std::string& pattern) {
        EXPECT_FALSE(server->open(pattern)) << pattern;
        const Answer found = ask(pattern);
        EXPECT_FALSE(found.works) << report(found);
    }

    test::Session session;
    std::unique_ptr<ServerView> server = connect_to_server();
    Fonts fonts;
};

const std::string TEN = lab_name("one", 10, 96);
const std::string TWENTY = lab_name("one", 20, 193);

TEST_F(ServerOracleTest, TheOrderOfTheElements) {
    fonts.bitmap("a", TEN, 21).bitmap("b", TEN, 22).bitmap("b", TWENTY, 23);
    const std::string letter = TEN + "[65]";
    for (const std::vector<std::string>& path : {std::vector<std::string>{"a", "b"},
                                                 {"b", "a"},
                                                 {"a:unscaled", "b:unscaled"},
                                                 {"b/", "built-ins", "a"}}) {
        serve(path);
        for (const std::string& pattern :
             {TEN, TWENTY, std::string("-lab-one-*"), std::string("-LAB-ONE-MEDIUM-R-NORMAL--10-*"),
              std::string("-*-one-*-*-*-*-*"), lab_name("one", 10, 96, "*-*-*-*")})
            expect_exact(pattern);
        if (path.front() == "a:unscaled") {
            expect_nothing(letter);
        } else {
            expect_exact(letter);
        }
    }
}

TEST_F(ServerOracleTest, TheOrderOfNamesInAnIndex) {
    int ascent = 30;
    for (const int pixels : {100, 9, 12, 8, 20, 10}) {
        fonts.bitmap("a", lab_name("one", pixels, pixels * 10), ++ascent);
        fonts.bitmap("a", lab_name("two", pixels, pixels * 10, "100-100-m-80"), ++ascent);
    }
    serve({"a:unscaled"});
    for (const char* pattern :
         {"*", "-*", "-lab-*", "-lab-two-*", "-lab-one-medium-r-normal--1*", "-lab-*-medium-r-normal--?-*",
          "-lab-*-2*", "-*-two-*-*-*-*-*-*-*-*-*-*-iso8859-1", "-lab-*o*-medium-*", "-*100-1000-*",
          "-*-*-*-*-*-*-*-*-*-*-m-*-*-*", "-lab-two-medium-r-normal--*-120-*", "-*-*-*-*-*-*-9-*"})
        expect_exact(pattern);
    for (const char* pattern : {"**", "-lab-**-*", "-lab-*?-*", "-lab-one", "lab-*", "-lab-three-*", ""})
        expect_nothing(pattern);
}

TEST_F(ServerOracleTest, TheSameNameSeveralTimesInAnIndex) {
    for (int fonts_there = 1; fonts_there < 7; ++fonts_there) {
        const std::string directory = "d" + std::to_string(fonts_there);
        for (int i = 0; i < fonts_there; ++i) fonts.bitmap(directory, TEN, 40 + 10 * fonts_there + i);
        serve({directory + ":unscaled"});
        expect_exact(TEN);
        expect_exact("-lab-one-*");
    }
}

TEST_F(ServerOracleTest, Aliases) {
    fonts.bitmap("a", TEN, 21).alias("a", "near", "far").alias("a", "dangling", "-none-*");
    fonts.bitmap("b", TWENTY, 22).alias("b", "far", TWENTY).alias("b", "Any Pattern", "-lab-one-*-20-*");
    fonts.alias("b", TEN, TWENTY).alias("c", "near", TEN);
    fonts.alias("c", "one", "two").alias("c", "two", "three").alias("c", "three", "one");
    serve({"a", "b", "c"});
    for (const char* pattern : {"near", "FAR", "any pattern", "fa?", "n*r"}) expect_exact(pattern);
    for (const char* pattern : {"dangling", "one", "two", "three", "none"}) expect_nothing(pattern);
    serve({"b:unscaled", "c", "a"});
    expect_exact("near");
    expect_exact(TEN);
}

TEST_F(ServerOracleTest, NamesOfFilesAsAliases) {
    fonts.bitmap("a", TEN, 21).bitmap("a", TWENTY, 22).alias("a", "22", TEN);
    const std::string dotted = lab_name("two", 10, 96);
    fonts.bitmap("b", dotted, 23).line("a", "x.y.bdf", dotted);
    fs::copy_file(fonts.path("b/23.bdf"), fonts.path("a/x.y.bdf"));
    fonts.line("a", "outline.ttf", lab_name("three", 0, 0, "0-0-p-0"));
    std::ofstream(fonts.path("a/fonts.alias"), std::ios::app) << "FILE_NAMES_ALIASES\n";
    serve({"a:unscaled"});
    expect_exact("21");
    expect_exact("22");
    EXPECT_EQ(ask("22").font.file, fonts.path("a/21.bdf")) << "the name is taken";
    const std::optional<OpenedFont> opened = server->open("X.Y");
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->ascent, 23);
    EXPECT_EQ(ask("X.Y").font.file, fonts.path("a/x.y.bdf"));
    for (const char* pattern : {"x", "21.bdf", "outline"}) expect_nothing(pattern);
}

TEST_F(ServerOracleTest, AsManyAliasesAsTheServerFollows) {
    fonts.bitmap("fonts", TEN, 21);
    for (const int length : {1, 10, 18, 19, 20, 30}) {
        const std::string directory = "chain" + std::to_string(length);
        for (int i = 1; i <= length; ++i)
            fonts.alias(directory, "link" + std::to_string(i),
                        i == length ? TEN : "link" + std::to_string(i + 1));
        serve({directory, "fonts"});
        if (length < 20) {
            expect_exact("link1");
        } else {
            expect_nothing("link1");
        }
    }
}

TEST_F(ServerOracleTest, FilesThatCannotBeOpened) {
    fonts.line("missing", "none.pcf", TEN).bitmap("good", TEN, 21);
    fonts.damaged("damaged", "junk.bdf", TEN).damaged("outline", "junk.ttf", TEN);
    fs::create_directory(fonts.path("link"));
    fs::create_symlink("../good/21.bdf", fonts.path("link/link.bdf"));
    fonts.line("link", "link.bdf", TEN).line("unknown", "21.txt", TEN);
    for (const char* bad : {"missing", "link", "outline", "unknown", "missing:unscaled", "link:unscaled"}) {
        serve({bad, "good"});
        expect_exact(TEN);
    }
    serve({"damaged", "good"});
    expect_nothing(TEN);
    EXPECT_EQ(ask(TEN).font.file, fonts.path("damaged/junk.bdf"));
    for (const char* bad : {"missing", "link"}) {
        serve({bad, "good"});
        expect_nothing(lab_name("one", 15, 145));
    }
}

/// What is no compressed file is passed over; what is cut off ends the search, but not within a catalogue.
TEST_F(ServerOracleTest, CompressedFilesThatAreDamaged) {
    const std::string packed = test::gzipped(lab_bdf(TEN, 20));
    fonts.file("junk", "junk.bdf.gz", TEN, "this is no font")
        .file("plain", "plain.bdf.gz", TEN, lab_bdf(TEN, 20));
    fonts.file("cut", "cut.bdf.gz", TEN, packed.substr(0, packed.size() / 2))
        .file("empty", "empty.bdf.gz", TEN, "");
    fonts.file("large", "large.bdf.GZ", TEN, packed).bitmap("good", TEN, 21);
    for (const char* bad : {"junk", "plain", "empty"}) {
        serve({bad, "good"});
        expect_exact(TEN);
    }
    for (const char* bad : {"cut", "large"}) {
        serve({bad, "good"});
        expect_nothing(TEN);
        expect_nothing("-lab-one-medium-r-normal--10-96-75-75-c-0-iso8859-1");
    }
    fs::create_directory(fonts.path("links"));
    fs::create_directory_symlink("../cut", fonts.path("links/cut:pri=1"));
    fs::create_directory_symlink("../good", fonts.path("links/good:pri=2"));
    ASSERT_TRUE(server->set_font_path({"catalogue:" + fonts.path("links")}));
    expect_exact(TEN);
}

/// A pattern with a size finds the first bitmap of that size in any element, whatever face comes first.
TEST_F(ServerOracleTest, TheSizeItselfInAnotherElement) {
    fonts.bitmap("a", lab_name("one", 20, 193), 21).bitmap("b", lab_name("two", 10, 96), 22);
    fonts.bitmap("c", lab_name("one", 10, 96), 23);
    const std::string ten = "-lab-*-medium-r-normal--10-96-75-75-*-0-iso8859-1";
    serve({"a", "b", "c"});
    expect_exact(ten);
    serve({"a", "c", "b"});
    expect_exact(ten);
    serve({"a", "b:unscaled", "c:unscaled"});
    expect_exact("-lab-*-medium-r-normal--10-96-75-75-*-*-iso8859-1");
}

/// Where a name says only points, the resolution is that of the screen.
TEST_F(ServerOracleTest, TheResolutionOfTheScreen) {
    fonts.bitmap("a", lab_name("one", 17, 120, "100-100-c-80"), 21);
    fonts.bitmap("a", lab_name("one", 12, 120, "75-75-c-80"), 22);
    serve({"a"});
    expect_exact("-lab-one-medium-r-normal--0-120-0-0-c-0-iso8859-1");
    expect_exact("-lab-one-medium-r-normal--0-0-0-0-c-0-iso8859-1");
}

/// Xlib completes a charset that ends in an asterisk.
TEST_F(ServerOracleTest, TheCharsetOfTheLocale) {
    fonts.bitmap("a", "-lab-one-medium-r-normal--10-96-75-75-c-80-iso8859-15", 21);
    serve({"a"});
    expect_exact("-lab-one-medium-r-normal--10-*-iso8859-*");
    fonts.bitmap("a", TEN, 22);
    serve({"a"});
    expect_exact("-lab-one-medium-r-normal--10-*-iso8859-*");
}

/// An alias for all sizes passes on the size.
TEST_F(ServerOracleTest, AliasesOfAllSizes) {
    fonts.bitmap("a", TEN, 21).bitmap("a", TWENTY, 22);
    fonts.alias("a", "-alias-all-medium-r-normal--0-0-0-0-c-0-iso8859-1", lab_name("one", 0, 0, "0-0-c-0"));
    fonts.alias("a", "-alias-one-medium-r-normal--0-0-75-75-c-0-iso8859-1", TWENTY);
    serve({"a"});
    for (const char* pattern : {"-alias-all-medium-r-normal--10-96-75-75-c-80-iso8859-1",
                                "-alias-all-medium-r-normal--20-193-75-75-c-*-iso8859-1",
                                "-alias-one-medium-r-normal--10-96-75-75-c-*-iso8859-1"})
        expect_exact(pattern);
}

TEST_F(ServerOracleTest, SizesThatTheServerMakes) {
    fonts.bitmap("a", TEN, 100).bitmap("a", TWENTY, 1000).bitmap("a", lab_name("one", 40, 385), 9000);
    fonts.bitmap("b", lab_name("one", 14, 100, "100-100-c-80"), 300)
        .alias("b", "large", lab_name("one", 30, 289));
    const std::vector<std::pair<int, double>> sources = {{100, 10}, {1000, 20}, {9000, 40}, {300, 13.84}};
    for (const std::vector<std::string>& path :
         {std::vector<std::string>{"a", "b"}, {"b", "a"}, {"a:unscaled", "b"}}) {
        serve(path);
        for (const int pixels : {7, 11, 13, 16, 18, 24, 28, 35, 60}) {
            const std::string size = std::to_string(pixels);
            expect_scaled("-lab-one-medium-r-normal--" + size + "-*-75-75-c-*-iso8859-1", sources, pixels);
            expect_scaled("-*-one-*-r-*--" + size + "-0-0-0-*-*-*-*", sources, pixels);
        }
        expect_scaled("large", sources, 30);
        expect_nothing(lab_name("one", 16, 300));
        expect_nothing(lab_name("one", 16, 154, "75-75-m-80"));
    }
    serve({"a:unscaled", "b:unscaled"});
    expect_nothing(lab_name("one", 16, 154));
}

TEST_F(ServerOracleTest, OutlinesBehindBitmaps) {
    const fs::path type1 = "/usr/vantor/lib/X11/fonts/Type1";
    fs::path outline;
    for (const auto& entry : fs::directory_iterator(type1))
        if (outline.empty() && entry.path().extension() == ".pfb") outline = entry.path();
    ASSERT_FALSE(outline.empty());
    fonts.line("outlines", "outline.pfb", "-lab-one-medium-r-normal--0-0-0-0-c-0-iso8859-1");
    fs::copy_file(outline, fonts.path("outlines/outline.pfb"));
    fonts.bitmap("bitmaps", TEN, 21);
    const std::string sixteen = lab_name("one", 16, 154, "75-75-c-0");
    serve({"bitmaps", "outlines"});
    EXPECT_EQ(ask(sixteen).font.file, fonts.path("bitmaps/21.bdf"));
    EXPECT_NEAR(server->open(sixteen)->ascent, 33, 1) << "the bitmap, made larger";
    serve({"bitmaps:unscaled", "outlines"});
    const Answer found = ask(sixteen);
    EXPECT_EQ(found.font.found, Found::SCALED);
    EXPECT_EQ(found.font.file, fonts.path("outlines/outline.pfb"));
    EXPECT_LT(server->open(sixteen)->ascent, 30);
    EXPECT_TRUE(found.font.is_checked) << report(found);
    expect_exact(TEN);
    serve({"outlines", "bitmaps"});
    expect_exact(TEN);
    EXPECT_EQ(ask(sixteen).font.file, fonts.path("outlines/outline.pfb"));
    serve({"outlines", "bitmaps:unscaled"});
    EXPECT_EQ(ask(TEN).font.file, fonts.path("outlines/outline.pfb"));
    EXPECT_NE(server->open(TEN)->ascent, 21);
}

TEST_F(ServerOracleTest, TheFontsInTheServerItself) {
    serve({"built-ins"});
    for (const char* name : {"fixed", "cursor", "6x13", "-misc-fixed-*"}) {
        const Answer found = ask(name);
        EXPECT_TRUE(found.works) << report(found);
        EXPECT_EQ(found.font.element, "built-ins") << report(found);
    }
    expect_nothing("-lab-*");
}

/// A directory is refused exactly when the diagnosis says so.
TEST_F(ServerOracleTest, DirectoriesThatTheServerRefuses) {
    const struct {
        const char* index;
        const char* aliases;
    } cases[] = {{"1\n", nullptr},
                 {"x\n", nullptr},
                 {"", nullptr},
                 {" 7 \n", nullptr},
                 {"-5\n", nullptr},
                 {"99999999999\n", nullptr},
                 {"1\nlonely\n", nullptr},
                 {"1\na b\n", nullptr},
                 {nullptr, nullptr},
                 {nullptr, "foo x\n"},
                 {"0\n", "foo\n"},
                 {"0\n", "foo x y\n"},
                 {"0\n", "foo FOO\n"},
                 {"0\n", "foo \"x y\n"},
                 {"0\n", "! foo\n"},
                 {"0\n", "FILE_NAMES_ALIASES\n"},
                 {"0\n", "foo x \\\n"}};
    int number = 0;
    for (const auto& one : cases) {
        test::TempDir root;
        if (one.index != nullptr) root.write("fonts.dir", one.index);
        if (one.aliases != nullptr) root.write("fonts.alias", one.aliases);
        const bool is_taken = static_cast<bool>(server->set_font_path({root.path(), "built-ins"}));
        ASSERT_TRUE(server->set_font_path({"built-ins"}));
        Question question;
        question.wanted = Wanted::DIRECTORY;
        question.name = root.path();
        const Answer found = answer(question, *server, Surroundings());
        EXPECT_EQ(found.path.back().state != ElementState::DEAD, is_taken) << number << ' ' << report(found);
        ++number;
    }
}

TEST_F(ServerOracleTest, APathOfTenThousandNamesIsAnsweredAtOnce) {
    std::vector<std::string> path;
    for (int directory = 0; directory < 10; ++directory) {
        std::string index = "1000\n";
        for (int i = 0; i < 1000; ++i)
            index += "font.bdf " + lab_name("family" + std::to_string(1000 * directory + i), 10, 96) + '\n';
        const std::string name = "d" + std::to_string(directory);
        fonts.bitmap(name, TEN, 21);
        std::ofstream(fonts.path(name + "/fonts.dir")) << index;
        path.push_back(name);
    }
    serve(path);
    EXPECT_FALSE(ask("-lab-none-bold-*").works);
    EXPECT_FALSE(ask("-*-*-*-*-*-*-*-*-*-*-*-*-*-none").works);
}

}  // namespace
}  // namespace gw::diagnosis
