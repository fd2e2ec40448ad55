// SPDX-License-Identifier: MIT
//
// The tool on directories of fonts: which files it finds, what it writes, and which files it does not touch.
#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "fontfiles/gw_upr_file.h"
#include "makepsres/command_line.h"
#include "makepsres/font_name.h"
#include "makepsres/plain_file.h"
#include "makepsres/scan.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"
#include "support/small_disk.h"
#include "unit/makepsres/index_fixture.h"

namespace {

using namespace gw::test;
using gw::psres::CALLED_WRONG;
using gw::psres::DONE;
using gw::psres::FAILED;
using testing::ElementsAre;
using testing::HasSubstr;
using Files = std::map<std::string, std::string>;

constexpr const char* TOOL = "/bin/makepsres";  // below the installation root

// --- the command line --------------------------------------------------------

TEST(CommandLine, KnowsItsOptions) {
    using gw::psres::CommandLine;
    using gw::psres::parse_command_line;
    const CommandLine plain = parse_command_line({});
    EXPECT_EQ(plain.task, CommandLine::Task::INDEX);
    EXPECT_EQ(plain.output, "PSres.upr");
    EXPECT_THAT(plain.directories, ElementsAre("."));
    EXPECT_TRUE(plain.rescan && !plain.quiet);
    const CommandLine all = parse_command_line({"-nr", "a", "-q", "-o", "f", "b", "--", "-q"});
    EXPECT_EQ(all.output, "f");
    EXPECT_THAT(all.directories, ElementsAre("a", "b", "-q"));
    EXPECT_TRUE(!all.rescan && all.quiet);
    EXPECT_EQ(parse_command_line({"--help"}).task, CommandLine::Task::HELP);
    EXPECT_EQ(parse_command_line({"--version"}).task, CommandLine::Task::VERSION);
    using Words = std::vector<std::string>;
    for (const Words& words : {Words{"-x"}, Words{"-o"}, Words{"-o", ""}, Words{"-qnr"}, Words{"--quiet"}})
        EXPECT_EQ(parse_command_line(words).task, CommandLine::Task::COMPLAIN) << words[0];
}

TEST(CommandLine, IsAnsweredInOneLine) {
    const auto answer = [](const std::string& word, int& status) {
        std::ostringstream out;
        std::ostringstream err;
        status = gw::psres::run({word}, out, err);
        return out.str() + "|" + err.str();
    };
    const std::string usage = "Usage: makepsres [-q] [-nr] [-o FILE] [DIRECTORY]...\n";
    int status = -1;
    EXPECT_EQ(answer("--help", status), usage + "|");
    EXPECT_EQ(status, DONE);
    EXPECT_EQ(answer("--version", status), "makepsres (Glyph Warden) " GLYPHWARD_VERSION "\n|");
    EXPECT_EQ(status, DONE);
    EXPECT_EQ(answer("--odd\nthing", status), "|makepsres: there is no option --odd?thing; " + usage);
    EXPECT_EQ(status, CALLED_WRONG);
    EXPECT_EQ(answer("-o", status), "|makepsres: -o wants a file; " + usage);
    EXPECT_EQ(status, CALLED_WRONG);
}

TEST(AbsolutePath, KeepsWhatALinkMayChange) {
    using gw::psres::absolute_path;
    EXPECT_EQ(absolute_path("/a//b/./c/", "/x"), "/a/b/c");
    EXPECT_EQ(absolute_path("b", "/x/y"), "/x/y/b");
    EXPECT_EQ(absolute_path(".", "/x/y"), "/x/y");
    EXPECT_EQ(absolute_path("../b", "/x/y"), "/x/y/../b");
    EXPECT_EQ(absolute_path("/", "/x"), "/");
    EXPECT_EQ(absolute_path("b", "/"), "/b");
}

// --- what is found -----------------------------------------------------------

TEST_F(IndexTest, AFontDirectoryWithMetricsBesideAndBelow) {
    fonts.write("sample.pfa", outline("Sample-Roman"));
    fonts.write("bold.pfb", "\x80\x01" + std::string("\x4D\0\0\0", 4) + outline("Sample-Bold"));
    fonts.write("sample.afm", metrics("Sample-Roman"));
    fonts.write("afm/bold.afm", metrics("Sample-Bold"));
    fonts.write("fonts.dir", "0\n");
    fonts.write("SHOUTED.PFA", outline("Shouted"));
    const std::string golden = "PS-Resources-1.0\nFontAFM\nFontOutline\n.\n/" + root() +
                               "\n"
                               "FontAFM\nSample-Bold=afm/bold.afm\nSample-Roman=sample.afm\n.\n"
                               "FontOutline\nSample-Bold=bold.pfb\nSample-Roman=sample.pfa\n.\n";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"-nr", fonts.path()}, {root()}, {root() + "//./"}}) {
        EXPECT_EQ(run(arguments), DONE);
        EXPECT_EQ(said, "");
        EXPECT_EQ(written(), golden) << arguments[0];
    }
}

TEST_F(IndexTest, AnEmptyDirectoryMakesAFileWithoutSections) {
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(written(), "PS-Resources-1.0\n.\n");
    struct stat info = {};
    ASSERT_EQ(::stat(upr().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644U);
}

TEST_F(IndexTest, SubdirectoriesAreGoneThroughWhenAllIsRescanned) {
    fonts.write("top.pfa", outline("Top"));
    fonts.write("a/b/deep.pfa", outline("Deep"));
    fonts.write(".hidden/h.pfa", outline("Hidden"));
    fonts.write(".glyphward/old/0.pfa", outline("Deleted"));
    fonts.write("afm/top.afm", metrics("Top"));
    fonts.write("afm/odd.pfa", outline("Odd"));
    fonts.write("afm/more/more.afm", metrics("More"));
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"), (Files{{"Top", fonts.file("top.pfa")},
                                                  {"Deep", fonts.file("a/b/deep.pfa")},
                                                  {"Hidden", fonts.file(".hidden/h.pfa")},
                                                  {"Odd", fonts.file("afm/odd.pfa")}}));
    EXPECT_EQ(read().files("FontAFM"),
              (Files{{"Top", fonts.file("afm/top.afm")}, {"More", fonts.file("afm/more/more.afm")}}));
    EXPECT_EQ(run({"-nr", fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"), (Files{{"Top", fonts.file("top.pfa")}}));
    EXPECT_EQ(read().files("FontAFM"), (Files{{"Top", fonts.file("afm/top.afm")}}));
}

TEST_F(IndexTest, LinksAreFollowedAndCyclesEnd) {
    const TempDir elsewhere;
    elsewhere.write("e.pfa", outline("Elsewhere"));
    elsewhere.write("f.pfa", outline("File"));
    fonts.write("z/own.pfa", outline("Own"));
    std::filesystem::create_directory_symlink("z", fonts.file("a"));
    std::filesystem::create_directory_symlink("..", fonts.file("z/up"));
    std::filesystem::create_directory_symlink(".", fonts.file("z/here"));
    std::filesystem::create_directory_symlink(elsewhere.path(), fonts.file("link"));
    std::filesystem::create_directory_symlink(fonts.path(), elsewhere.file("back"));
    std::filesystem::create_symlink(elsewhere.file("f.pfa"), fonts.file("f.pfa"));
    EXPECT_EQ(run({"-q", fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"), (Files{{"Own", fonts.file("z/own.pfa")},
                                                  {"Elsewhere", fonts.file("link/e.pfa")},
                                                  {"File", fonts.file("f.pfa")}}))
        << "by the way without a link, where there is one";
    EXPECT_EQ(run({"-nr", fonts.file("link/")}), DONE) << "the directory itself may be a link";
    EXPECT_EQ(read().directory, fonts.file("link"));
    EXPECT_EQ(read().files("FontOutline").size(), 2U);
}

TEST_F(IndexTest, TheFirstPathOfANameCounts) {
    fonts.write("b.pfa", outline("Twin"));
    fonts.write("a.pfb", outline("Twin"));
    fonts.write("a/c.pfa", outline("Twin"));
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"), (Files{{"Twin", fonts.file("a.pfb")}}));
    EXPECT_EQ(said, line("a/c.pfa", "Twin is in " + fonts.file("a.pfb") + "; left out") +
                        line("b.pfa", "Twin is in " + fonts.file("a.pfb") + "; left out"));
}

TEST_F(IndexTest, SeveralDirectoriesHaveNoPrefix) {
    const TempDir second;
    fonts.write("b.pfa", outline("Shared"));
    fonts.write("own.pfa", outline("First"));
    second.write("a.pfa", outline("Shared"));
    second.write("own.pfa", outline("Second"));
    EXPECT_EQ(run({fonts.path(), second.path()}), DONE);
    EXPECT_EQ(written(), "PS-Resources-1.0\nFontOutline\n.\nFontOutline\nFirst==" + fonts.file("own.pfa") +
                             "\nSecond==" + second.file("own.pfa") + "\nShared==" + fonts.file("b.pfa") +
                             "\n.\n")
        << "and the first directory goes before the second";
    EXPECT_EQ(run({"-q", fonts.path(), fonts.path()}), DONE);
    EXPECT_EQ(said, "");
    EXPECT_EQ(read().files("FontOutline").size(), 2U);
}

TEST_F(IndexTest, WhatIsNoFontIsLeftOutWithALine) {
    fonts.write("good.pfa", outline("Good"));
    fonts.write("noname.pfa", "%!PS-AdobeFont-1.0\ncurrentfile eexec\n");
    fonts.write("noname.afm", "StartFontMetrics 2.0\n");
    fonts.write("empty.pfa", "");
    fonts.write("torn.pfb", "\x80\x01\x10");
    fonts.make_dir("directory.pfa");
    ASSERT_EQ(::mkfifo(fonts.file("pipe.pfb").c_str(), 0600), 0);
    std::filesystem::create_symlink("nowhere", fonts.file("dangling.pfa"));
    std::filesystem::create_symlink("loop.pfa", fonts.file("loop.pfa"));
    const std::string no_name = "no font name in it; left out";
    const std::string lines = line("directory.pfa", "this is a directory, no font") +
                              line("dangling.pfa", "No such file or directory; left out") +
                              line("empty.pfa", no_name) +
                              line("loop.pfa", "Too many levels of symbolic links; left out") +
                              line("noname.afm", no_name) + line("noname.pfa", no_name) +
                              line("pipe.pfb", "this is no plain file; left out") + line("torn.pfb", no_name);
    for (const bool rescan : {true, false}) {
        EXPECT_EQ(run(rescan ? std::vector<std::string>{fonts.path()}
                             : std::vector<std::string>{"-nr", fonts.path()}),
                  DONE);
        EXPECT_EQ(said, lines);
        EXPECT_EQ(read().files("FontOutline"), (Files{{"Good", fonts.file("good.pfa")}}));
    }
    EXPECT_EQ(run({"-q", fonts.path()}), DONE);
    EXPECT_EQ(said, "");
    std::filesystem::remove(fonts.file("loop.pfa"));  // the fixture's clean-up cannot remove a loop
}

TEST_F(IndexTest, WhatCannotBeReadIsLeftOut) {
    fonts.write("good.pfa", outline("Good"));
    ::chmod(fonts.write("closed.pfa", outline("Closed")).c_str(), 0);
    fonts.write("closed/inner.pfa", outline("Inner"));
    ::chmod(fonts.file("closed").c_str(), 0);
    EXPECT_EQ(run({fonts.path()}), DONE);
    Files expected = {{"Good", fonts.file("good.pfa")}};
    std::string lines =
        line("closed", "Permission denied") + line("closed.pfa", "Permission denied; left out");
    if (::geteuid() == 0) {  // the superuser can read everything
        expected["Closed"] = fonts.file("closed.pfa");
        expected["Inner"] = fonts.file("closed/inner.pfa");
        lines.clear();
    }
    EXPECT_EQ(said, lines);
    EXPECT_EQ(read().files("FontOutline"), expected);
}

TEST_F(IndexTest, NamesWithSignsOfTheFormatAreQuoted) {
    const std::string odd = "odd = 100%, a\\b ";
    fonts.write(odd + "/.hidden, =.pfa", outline("Sample=1,2\\3"));
    fonts.write(odd + "/blank name.afm", metrics(".Sample 100%"));
    EXPECT_EQ(run({"-nr", fonts.file(odd)}), DONE);
    EXPECT_EQ(said, "");
    EXPECT_EQ(read().directory, fonts.file(odd));
    EXPECT_EQ(read().files("FontOutline"), (Files{{"Sample=1,2\\3", fonts.file(odd + "/.hidden, =.pfa")}}));
    EXPECT_EQ(read().files("FontAFM"), (Files{{".Sample 100%", fonts.file(odd + "/blank name.afm")}}));
}

TEST_F(IndexTest, NamesThatNoLineHoldsAreLeftOut) {
    fonts.write("good.pfa", outline("Good"));
    fonts.write("line\nfeed.pfa", outline("Bad"));
    fonts.write("di\rr/inner.pfa", outline("Inner"));
    EXPECT_EQ(run({fonts.path()}), DONE);
    const std::string reason = "a resource file cannot hold this name; left out";
    EXPECT_EQ(said, line("di?r", reason) + line("line?feed.pfa", reason));
    EXPECT_EQ(read().files("FontOutline"), (Files{{"Good", fonts.file("good.pfa")}}));
    results.write("out.upr", "old");
    EXPECT_EQ(run({"-q", fonts.file("di\rr")}), FAILED);
    EXPECT_EQ(said, line("di?r", "a resource file cannot hold this name"));
    EXPECT_EQ(results.read("out.upr"), "old");
}

TEST_F(IndexTest, AThousandFonts) {
    constexpr int FONTS = 1000;
    Files outlines;
    Files metrics_files;
    for (int i = 0; i < FONTS; ++i) {
        const std::string name = "Sample" + std::to_string(i * 7919 % 10007) + "-Roman";
        const std::string file = "f" + std::to_string(i);
        outlines[name] = fonts.write(file + ".pfa", outline(name));
        metrics_files[name] = fonts.write("afm/" + file + ".afm", metrics(name));
    }
    ASSERT_EQ(outlines.size(), static_cast<std::size_t>(FONTS));
    EXPECT_EQ(run({"-nr", fonts.path()}), DONE);
    EXPECT_EQ(read().files("FontOutline"), outlines);
    EXPECT_EQ(read().files("FontAFM"), metrics_files);
    const std::string first = written();
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(written(), first) << "the same fonts, the same bytes";
}

// --- directories that are not there, and the current one ---------------------

TEST_F(IndexTest, AMissingDirectoryFailsAfterTheOthers) {
    fonts.write("a.pfa", outline("A"));
    EXPECT_EQ(run({fonts.file("none"), fonts.path()}), FAILED);
    EXPECT_EQ(said, line("none", "No such file or directory"));
    EXPECT_EQ(read().files("FontOutline"), (Files{{"A", fonts.file("a.pfa")}}));
    EXPECT_EQ(run({"-q", fonts.file("none"), fonts.path()}), FAILED);
    EXPECT_EQ(said, "");
}

TEST_F(IndexTest, WithoutAnyDirectoryTheOldFileStays) {
    fonts.write("a.pfa", outline("A"));
    results.write("out.upr", "old");
    for (const std::string& none : {fonts.file("none"), fonts.file("a.pfa"), std::string()}) {
        EXPECT_EQ(run({none}), FAILED);
        EXPECT_THAT(said, HasSubstr(none.ends_with("pfa") ? "Not a directory" : "No such file"));
        EXPECT_EQ(written(), "old");
    }
}

class FromTheCurrentDirectory : public IndexTest {
  protected:
    FromTheCurrentDirectory() : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(fonts.path());
    }
    ~FromTheCurrentDirectory() override { std::filesystem::current_path(before_); }

  private:
    std::filesystem::path before_;
};

TEST_F(FromTheCurrentDirectory, ItIsTheDefaultOfBoth) {
    fonts.write("sub/a.pfa", outline("A"));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(gw::psres::run({}, out, err), DONE);
    EXPECT_EQ(fonts.read("PSres.upr"),
              "PS-Resources-1.0\nFontOutline\n.\n/" + root() + "\nFontOutline\nA=sub/a.pfa\n.\n");
    EXPECT_EQ(gw::psres::run({"-o", "sub/x.upr", "sub"}, out, err), DONE);
    EXPECT_EQ(StrictUpr(fonts.read("sub/x.upr")).directory, root() + "/sub");
    EXPECT_EQ(out.str() + err.str(), "");
}

// --- replacing the file ------------------------------------------------------

TEST_F(IndexTest, OnlyAPlainFileIsReplaced) {
    fonts.write("a.pfa", outline("A"));
    results.make_dir("out.upr");
    EXPECT_EQ(run({"-q", fonts.path()}), FAILED);
    EXPECT_EQ(said, "makepsres: " + upr() + ": this is no plain file; nothing is written\n");
    std::filesystem::remove(upr());
    results.write("target", "old");
    std::filesystem::create_symlink("target", upr());
    EXPECT_EQ(run({fonts.path()}), FAILED);
    EXPECT_EQ(results.read("target"), "old");
    std::filesystem::remove(upr());
    ASSERT_EQ(::mkfifo(upr().c_str(), 0600), 0);
    EXPECT_EQ(run({fonts.path()}), FAILED);
    EXPECT_TRUE(std::filesystem::is_fifo(upr()));
}

TEST_F(IndexTest, OneThatCannotBeWrittenStays) {
    fonts.write("a.pfa", outline("A"));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(gw::psres::run({"-q", "-o", results.file("none/x.upr"), fonts.path()}, out, err), FAILED);
    EXPECT_EQ(err.str(), "makepsres: " + results.file("none/x.upr") +
                             ": No such file or directory; nothing is written\n");
}

TEST_F(IndexTest, WhatMayNotBeWrittenStays) {
    fonts.write("a.pfa", outline("A"));
    const bool may_all = ::geteuid() == 0;
    for (const bool closes_directory : {true, false}) {
        results.write("out.upr", "old");
        const std::string closed = closes_directory ? results.path() : upr();
        ::chmod(closed.c_str(), 0555);
        EXPECT_EQ(run({"-q", fonts.path()}), may_all ? DONE : FAILED);
        EXPECT_EQ(said, may_all ? "" : "makepsres: " + upr() + ": Permission denied; nothing is written\n");
        EXPECT_EQ(written() == "old", !may_all) << closed;
        ::chmod(closed.c_str(), 0755);
    }
}

TEST_F(IndexTest, AFullDiskLeavesTheOldFile) {
    const SmallDisk disk;
    for (int i = 0; i < 400; ++i) {
        const std::string name = "Sample" + std::to_string(i) + std::string(80, 'x');
        fonts.write("f" + std::to_string(i) + ".pfa", outline(name));
    }
    disk.write("out.upr", "old");
    disk.leave_blocks(2);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(gw::psres::run({"-q", "-o", disk.file("out.upr"), fonts.path()}, out, err), FAILED);
    EXPECT_EQ(err.str(),
              "makepsres: " + disk.file("out.upr") + ": No space left on device; nothing is written\n");
    EXPECT_EQ(disk.read("out.upr"), "old");
    EXPECT_EQ(disk.entries(), 1) << "nothing is left beside it";
}

TEST_F(IndexTest, NothingIsLeftBesideTheFile) {
    fonts.write("a.pfa", outline("A"));
    results.write("out.upr", "old");
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(results.path()), {}), 1);
    EXPECT_EQ(read().names, std::vector<std::string>{"FontOutline"});
}

// A program that opens the file while it is rewritten reads the whole old index or the whole new one.
TEST_F(IndexTest, AReaderSeesTheOldFileOrTheNewOne) {
    fonts.write("a.pfa", outline("A"));
    EXPECT_EQ(run({fonts.path()}), DONE);
    const std::string old = written();
    std::ifstream reader(upr(), std::ios::binary);
    for (int i = 0; i < 100; ++i) fonts.write(std::to_string(i) + ".pfa", outline("B" + std::to_string(i)));
    EXPECT_EQ(run({fonts.path()}), DONE);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), old);
    EXPECT_EQ(read().files("FontOutline").size(), 101U);
}

// --- other readers, the real thing -------------------------------------------

class OpenUpr : public GW_UPR_FILE {
  public:
    using GW_UPR_FILE::GW_UPR_FILE;
};

TEST_F(IndexTest, TheClassOfTheSystemReadsItSectionBySection) {
    fonts.write("a.pfa", outline("A"));
    fonts.write("a.afm", metrics("A"));
    fonts.write("p.enc", "x");
    fonts.write("own.upr", "PS-Resources-1.0\nEncoding\n.\nEncoding\nE=p.enc\n.\n");
    EXPECT_EQ(run({fonts.path()}), DONE);
    OpenUpr file("out.upr", results.c_str(), gw::FILE_TYPE_REGULAR);
    ASSERT_EQ(file.open("r"), 1);
    std::vector<int> headers;
    bool in_list = true;
    int entries = 0;
    char text[GW_UPR_FILE::LINE_BUFFER];
    while (file.get_line(text, sizeof text) != nullptr) {
        const int section = file.get_line_res_type(text);
        if (text[0] == '.') {
            in_list = false;
        } else if (section == GW_UPR_FILE::NO_SECTION) {
            ++entries;
        } else if (!in_list) {
            headers.push_back(section);
        }
    }
    file.close();
    EXPECT_THAT(headers,
                ElementsAre(GW_UPR_FILE::ENCODING, GW_UPR_FILE::FONT_AFM, GW_UPR_FILE::FONT_OUTLINE));
    EXPECT_EQ(entries, 5) << "the first line, the directory, and an entry of each section";
}

TEST_F(IndexTest, TheInstallationsOwnType1Fonts) {
    const std::string type1 = std::string(gw::SYSTEM_FONT_DIR) + "/Type1";
    EXPECT_EQ(run({"-nr", type1}), DONE);
    EXPECT_EQ(said, "");
    const Files outlines = read().files("FontOutline");
    const Files afms = read().files("FontAFM");
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(type1)) {
        const std::string name = entry.path().filename();
        if (gw::psres::is_outline_name(name) || gw::psres::is_metrics_name(name)) ++files;
    }
    EXPECT_GT(files, 10U);
    EXPECT_EQ(outlines.size() + afms.size(), files) << "each file under its name";
    for (const auto& [name, path] : outlines) {
        const std::string head = gw::psres::read_plain_file(path, gw::psres::SEARCHED_BYTES).bytes;
        EXPECT_THAT(head, HasSubstr("/FontName /" + name)) << path;
    }
    EXPECT_EQ(read().directory, type1);
}

TEST_F(IndexTest, TheInstalledToolDoesTheSame) {
    fonts.write("a.pfa", outline("A"));
    EXPECT_EQ(run({"-nr", fonts.path()}), DONE);
    const std::string tool = std::string(gw::INSTALLATION_ROOT) + TOOL;
    EXPECT_EQ(gw::run_shell("cd %s; %s -nr -q -o tool.upr %s", {results.path(), tool, fonts.path()}), 0);
    EXPECT_EQ(results.read("tool.upr"), written());
    EXPECT_NE(gw::run_shell("%s --odd 2> %s", {tool, results.file("err")}), 0);
    EXPECT_THAT(results.read("err"), HasSubstr("there is no option --odd"));
}

TEST_F(IndexTest, TheInstalledToolNeedsNoX) {
    const std::string tool = std::string(gw::INSTALLATION_ROOT) + TOOL;
    ASSERT_EQ(gw::run_shell("ldd %s > %s", {tool, results.file("libraries")}), 0);
    EXPECT_THAT(results.read("libraries"), HasSubstr("libc.so"));
    EXPECT_THAT(results.read("libraries"), testing::Not(testing::ContainsRegex("libX|libMrm|libsystemd")));
}

}  // namespace
