// SPDX-License-Identifier: MIT
//
// The sources of name lists, with the staging directories under their fixed names: these tests run in the
// sandbox.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "drivers/engine_globals.h"
#include "drivers/gw_alias_driver.h"
#include "drivers/gw_dir_driver.h"
#include "drivers/gw_installed_fonts_driver.h"
#include "drivers/gw_rem_media_driver.h"
#include "drivers/staging.h"
#include "fontpath/gw_font_path.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "platform/scratch.h"
#include "support/another_run.h"
#include "support/font_maker.h"
#include "support/heard_failures.h"
#include "support/own_commands.h"
#include "support/small_disk.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

#include "support/session.h"

namespace {

using gw::test::RecordingModule;
using gw::test::TempDir;
using Texts = std::vector<std::string>;

constexpr const char* STAGING = "/tmp/gw_dir/";
const char* const HEADER =
    "%!PS-AdobeFont-1.0: Test\n/FamilyName (Test) def\n/Weight (Bold) def\n/ItalicAngle 0 def\n/Notice "
    "(Adobe) def\n"
    "/Encoding StandardEncoding def\ncurrentfile eexec\n";
constexpr const char* TEST_XLFD = "-adobe-Test-Bold-r-normal--0-0-0-0-p-0-iso8859-1";

class Drivers : public testing::Test {
  protected:
    Drivers() {
        ::setenv("HOME", home.path().substr(0, home.path().size() - 1).c_str(), 1);
        the_fsm_list.append(&type1);
        the_fsm_list.append(&pcf);
        remove_staging();
    }
    ~Drivers() override {
        the_fsm_list.clear();
        delete the_font_path;
        the_font_path = nullptr;
        remove_staging();
    }
    static void remove_staging() {
        for (const char* dir : {"/tmp/gw_dir", "/tmp/gw_floppy", "/tmp/gw_cdrom", "/tmp/pcf"})
            std::filesystem::remove_all(dir);
    }
    /// Gives the program a font path of these elements.
    void use_path(const std::string& elements) const {
        home.write("root/server/etc/VTconfig", "XDISPLAY.0.fontpath:\t" + elements + "\n");
        delete the_font_path;
        the_font_path = new GWFontPath(home.file("root").c_str());
    }
    static Texts names(const GWHRNList& list) {
        Texts all;
        for (const GWHRNElement* elem : list) all.emplace_back(elem->get_name());
        return all;
    }
    TempDir home;
    GW_T1_FSM type1;
    GW_PCF_FSM pcf;
};

// The program was killed when the file had gone, and its line had not.
TEST_F(Drivers, InstalledFontsAreWholeAgainAfterAnInterruptedChange) {
    const TempDir fonts;
    fonts.write("fonts.dir", "2\na.pcf -x-a\nb.pcf -x-b\n");
    fonts.write("b.pcf", "B");
    fonts.write(".glyphward/journal", "glyphward-journal 1\nout 0 a.pcf\n");
    fonts.write(".glyphward/old/0", "A");
    use_path(fonts.path());
    GWHRNList list(0);
    GWInstalledFontsDriver().get_hrn_list(list);
    EXPECT_EQ(list.get_count(), 2);
    EXPECT_EQ(fonts.read("a.pcf"), "A");
    EXPECT_FALSE(fonts.exists(".glyphward/journal"));
}

TEST_F(Drivers, AnInterruptedChangeThatThisUserCannotTakeBackIsTold) {
    if (::geteuid() == 0) GTEST_SKIP() << "every directory is open to the superuser";
    const TempDir fonts;
    fonts.write("fonts.dir", "1\na.pcf -x-a\n");
    fonts.write(".glyphward/journal", "glyphward-journal 1\nout 0 a.pcf\n");
    ::chmod(fonts.file(".glyphward").c_str(), 0555);
    use_path(fonts.path());
    gw::test::HeardFailures heard;
    GWHRNList list(0);
    GWInstalledFontsDriver().get_hrn_list(list);
    ::chmod(fonts.file(".glyphward").c_str(), 0755);
    EXPECT_NE(heard.text().find("was not finished"), std::string::npos) << heard.text();
    EXPECT_TRUE(fonts.exists(".glyphward/journal"));
}

TEST_F(Drivers, InstalledFontsAreThoseOfTheWholePath) {
    home.write("one/fonts.dir",
               "2\na.pcf -x-alpha-medium-r-normal--8-80-75-75-c-80-iso8859-1\nb.pcf fixed\n");
    home.write("two/fonts.dir", "1\nc.pfa -x-gamma-medium-r-normal--0-0-0-0-p-0-iso8859-1\n");
    use_path(home.file("one/") + ",tcp/server:7100," + home.file("two/") + ",/nonexistent/,relative/");
    GWHRNList list(0);
    GWInstalledFontsDriver().get_hrn_list(list);
    Texts found = names(list);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_TRUE(found[0].starts_with("Alpha Medium [Bitmap]")) << found[0];
    EXPECT_TRUE(found[1].starts_with("fixed  [Bitmap]")) << found[1];
    EXPECT_TRUE(found[2].starts_with("Gamma Medium [Type-1]")) << found[2];
}

// The font path that the set-up writes, and one element by another path.
TEST_F(Drivers, TodayADirectoryIsListedOnceWithOrWithoutAttributes) {
    home.write("one/fonts.dir", "1\na.pcf -x-alpha-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
    home.write("one/fonts.alias", "first -x\n");
    home.write("two/fonts.dir", "1\nc.pfa -x-gamma-medium-r-normal--0-0-0-0-p-0-iso8859-1\n");
    std::filesystem::create_directory_symlink(home.file("one"), home.file("link"));
    use_path(home.file("two/:unscaled") + ',' + home.file("one/") + ':' + "unscaled," + home.file("one/") +
             ',' + home.file("link"));
    for (const bool modern : {false, true}) {
        const gw::test::UnderPolicy policy(modern);
        GWHRNList list(0);
        GWInstalledFontsDriver().get_hrn_list(list);
        GW_SORTED_LIST<GWAlias> aliases(0);
        const gw::ElementsOwner owner(aliases);
        GWAliasDriver().get_alias_list(aliases);
        EXPECT_EQ(aliases.get_count(), modern ? 1 : 2);
        ASSERT_EQ(list.get_count(), modern ? 2 : 1);
        EXPECT_TRUE(names(list)[0].starts_with("Alpha Medium [Bitmap]")) << names(list)[0];
        EXPECT_EQ(list.get_elem_at_pos(1)->get_slots()[0].fonts.size(), modern ? 1U : 2U);
        EXPECT_EQ(aliases.get_elem_at_pos(modern ? 1 : 2)->get_dir_name(), home.file("one/"));
        if (modern) {
            EXPECT_TRUE(names(list)[1].starts_with("Gamma Medium [Type-1]")) << names(list)[1];
        }
    }
}

TEST_F(Drivers, DirectoriesWithStrangeNamesAreListed) {
    std::string path;
    for (const char* name : {"a b", "it's", "$(touch oops)", "\"q\"", "caf\xe9"}) {
        home.write(std::string(name) + "/fonts.dir",
                   "1\na.pcf -x-alpha-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
        path += (path.empty() ? "" : ",") + home.file(name) + "/";
    }
    use_path(path);
    GWHRNList list(0);
    GWInstalledFontsDriver().get_hrn_list(list);
    ASSERT_EQ(list.get_count(), 1);
    EXPECT_EQ(list.get_elem_at_pos(1)->get_slots().front().fonts.size(), 5U);
}

TEST_F(Drivers, HostileIndexesNeitherCrashNorHideTheOthers) {
    const std::string good = "a.pcf -x-alpha-medium-r-normal--8-80-75-75-c-80-iso8859-1\n";
    const struct {
        const char* dir;
        std::string bytes;
    } cases[] = {
        {"missing_count", good},
        {"negative", "-5\n" + good},
        {"huge", "2147483647\n" + good},
        {"word", "many\n" + good},
        {"no_blank", "2\nlonely\n" + good},
        {"long", "2\nx.pcf " + std::string(5000, 'y') + "\n" + good},
        {"bytes", "2\n\xff\xfe.pcf \xe9\xe8\n" + good},
        {"empty", ""},
        {"cut", "3\na.pcf -x"},
    };
    std::string path;
    for (const auto& c : cases) {
        home.write(std::string(c.dir) + "/fonts.dir", c.bytes);
        path += (path.empty() ? "" : ",") + home.file(c.dir) + "/";
    }
    use_path(path);
    GWHRNList list(0);
    GWInstalledFontsDriver().get_hrn_list(list);
    const auto alpha = std::find_if(list.begin(), list.end(), [](const GWHRNElement* elem) {
        return std::string(elem->get_name()).starts_with("Alpha Medium [Bitmap]");
    });
    ASSERT_NE(alpha, list.end());
    // Every directory but three: the first, whose only line is taken for the count, the empty one, and the
    // one that is cut off.
    EXPECT_EQ((*alpha)->get_slots().front().fonts.size(), 6U);
}

TEST_F(Drivers, AliasesOfAllDirectoriesAreSortedTogether) {
    home.write("one/fonts.alias", "zeta -z\nfixed -a\n\"open alias -x\n");
    home.write("two/fonts.alias", "fixed -b\nAlpha -c\n");
    use_path(home.file("one/") + ",tcp/server:7100,/nonexistent/," + home.file("two/"));
    GW_SORTED_LIST<GWAlias> list(0);
    const gw::ElementsOwner owner(list);
    GWAliasDriver driver;
    driver.get_alias_list(list);
    Texts found;
    for (const GWAlias* alias : list)
        found.push_back(std::string(alias->get_alias_name()) + " " + alias->get_font_name());
    EXPECT_EQ(found, (Texts{"Alpha -c", "fixed -b", "fixed -a", "open alias -x ", "zeta -z"}));
    EXPECT_EQ(list.get_elem_at_pos(1)->get_dir_name(), home.file("two/"));
    driver.get_alias_list(list);
    EXPECT_EQ(list.get_count(), 10) << "the list is not cleared first";
}

TEST_F(Drivers, ADirectoryIsStagedAnewEachTime) {
    home.write("fonts/t.pfa", HEADER);
    home.write("more fonts/u.pfa", HEADER);
    use_path("/x/");
    GWHRNList first(0);
    GWDirDriver(home.file("fonts").c_str()).get_hrn_list(first);
    EXPECT_EQ(names(first), Texts{"Test Bold [Type-1]"});
    EXPECT_EQ(TempDir::read_bytes("/tmp/gw_dir/fonts.dir"), std::string("1\nlink/t.pfa ") + TEST_XLFD + "\n");
    EXPECT_EQ(std::filesystem::read_symlink("/tmp/gw_dir/tmp"), "/tmp");
    GWHRNList second(0);
    GWDirDriver driver(home.file("more fonts").c_str());
    EXPECT_FALSE(driver.get_preview_dir().has_value());
    driver.get_hrn_list(second);
    EXPECT_EQ(std::filesystem::read_symlink("/tmp/gw_dir/link"), home.file("more fonts"));
    EXPECT_EQ(TempDir::read_bytes("/tmp/gw_dir/fonts.dir"), std::string("1\nlink/u.pfa ") + TEST_XLFD + "\n");
    EXPECT_EQ(driver.get_preview_dir(), STAGING);
}

TEST_F(Drivers, EveryFontOfALargeDirectoryIsStagedInOrder) {
    std::string index;
    std::string staged;
    for (int i = 1; i <= 1200; ++i) {
        const std::string entry = "f" + std::to_string(i) + ".pcf -x-face" + std::to_string(i) +
                                  "-medium-r-normal--8-80-75-75-c-80-iso8859-1\n";
        index += entry;
        staged += "link/" + entry;
    }
    home.write("fonts/fonts.dir", "1200\n" + index);
    use_path("/x/");
    GWHRNList list(0);
    GWDirDriver(home.file("fonts").c_str()).get_hrn_list(list);
    EXPECT_EQ(list.get_count(), 1200);
    EXPECT_EQ(TempDir::read_bytes("/tmp/gw_dir/fonts.dir"), "1200\n" + staged);
}

TEST_F(Drivers, FontsThatCannotBeStagedAreListedAllTheSame) {
    const gw::test::SmallDisk disk;
    const std::string staging = disk.file("staging/");
    std::string index;
    for (int i = 1; i <= 200; ++i)
        index +=
            "f" + std::to_string(i) + ".pcf -x-f" + std::to_string(i) + "-r-normal--8-80-75-75-c-80-x-1\n";
    home.write("fonts/fonts.dir", "200\n" + index);
    ASSERT_TRUE(gw::prepare_staging(staging.c_str(), "link", home.file("fonts").c_str()));
    disk.leave_blocks(1);
    GWHRNList list(0);
    const gw::test::HeardFailures heard;
    gw::stage_fonts(list, the_fsm_list, (staging + "link").c_str(), 0, staging.c_str());
    EXPECT_EQ(heard.text(), staging + "fonts.dir: No space left on device; these fonts have no samples\n");
    EXPECT_EQ(TempDir::read_bytes(staging + "fonts.dir"), "0\n");
    EXPECT_EQ(list.get_count(), 200);
}

TEST_F(Drivers, ADirectoryWithoutFontsGivesAnEmptyListAndIndex) {
    use_path("/x/");
    for (const std::string& source : {home.make_dir("empty"), std::string("/nonexistent")}) {
        GWHRNList list(0);
        GWDirDriver(source.c_str()).get_hrn_list(list);
        EXPECT_EQ(list.get_count(), 0);
        EXPECT_EQ(TempDir::read_bytes("/tmp/gw_dir/fonts.dir"), "0\n");
    }
}

TEST_F(Drivers, AStagingDirectoryThatIsNotOursIsNotUsed) {
    use_path("/x/");
    home.write("fonts/t.pfa", HEADER);
    const std::string victim = home.make_dir("victim");
    std::filesystem::create_directory_symlink(victim, "/tmp/gw_dir");
    const gw::test::HeardFailures heard;
    GWHRNList list(0);
    GWDirDriver driver(home.file("fonts").c_str());
    driver.get_hrn_list(list);
    EXPECT_NE(heard.text().find("/tmp/gw_dir/: this is a link"), std::string::npos);
    EXPECT_EQ(list.get_count(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(victim));
    EXPECT_FALSE(driver.get_preview_dir().has_value());
    std::filesystem::remove("/tmp/gw_dir");
}

TEST_F(Drivers, AStagingDirectoryOfAnotherUserIsNotUsed) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make another user's directory";
    use_path("/x/");
    home.write("fonts/t.pfa", HEADER);
    for (const char* dir : {"/tmp/gw_dir", "/tmp/gw_cdrom"}) {
        std::filesystem::create_directory(dir);
        ASSERT_EQ(::chown(dir, 1000, 1000), 0);
    }
    GWDirDriver directory(home.file("fonts").c_str());
    GW_REM_MEDIA_DRIVER medium(GW_REM_MEDIA_DRIVER::CDROM);
    for (GWDriverBase* driver :
         {static_cast<GWDriverBase*>(&directory), static_cast<GWDriverBase*>(&medium)}) {
        const gw::test::HeardFailures heard;
        GWHRNList list(0);
        driver->get_hrn_list(list);
        const std::string said = heard.text();
        EXPECT_NE(said.find("belongs to someone else"), std::string::npos);
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
        EXPECT_EQ(list.get_count(), 0);
    }
    EXPECT_TRUE(std::filesystem::is_empty("/tmp/gw_dir"));
    EXPECT_TRUE(std::filesystem::is_empty("/tmp/gw_cdrom"));
}

// Each run looks at its own scratch directory, so one does not see, and install, what the other lists.
TEST_F(Drivers, TwoRunsListTwoDirectoriesAtOnce) {
    const gw::test::UnderPolicy modern(true);
    use_path("/x/");
    home.write("one/t.pfa", HEADER);
    home.write("other/u.pfa", HEADER);
    const auto list_all_of = [&](const char* name) {
        GWHRNList list(0);
        GWDirDriver driver(home.file(name).c_str());
        driver.get_hrn_list(list);
        return std::to_string(list.get_count()) + *driver.get_preview_dir();
    };
    const gw::test::AnotherRun other([&] { return list_all_of("other"); });
    const std::string own = list_all_of("one");
    ASSERT_EQ(own.front(), '1');
    ASSERT_EQ(other.answer().front(), '1');
    EXPECT_EQ(std::filesystem::read_symlink(own.substr(1) + "link"), home.file("one"));
    EXPECT_EQ(std::filesystem::read_symlink(other.answer().substr(1) + "link"), home.file("other"));
    EXPECT_NE(TempDir::read_bytes(own.substr(1) + "fonts.dir").find("t.pfa"), std::string::npos);
    gw::remove_scratch();
    std::filesystem::remove_all(std::filesystem::path(other.answer().substr(1)).parent_path().parent_path());
}

TEST_F(Drivers, WithFixedNamesTheSecondRunListsNothingAndSaysWhy) {
    use_path("/x/");
    home.write("fonts/t.pfa", HEADER);
    const auto count = [&] {
        GWHRNList list(0);
        GWDirDriver(home.file("fonts").c_str()).get_hrn_list(list);
        return std::to_string(list.get_count());
    };
    gw::test::AnotherRun other(count);
    ASSERT_EQ(other.answer(), "1");
    {
        const gw::test::HeardFailures heard;
        EXPECT_EQ(count(), "0");
        EXPECT_EQ(heard.text(), "/tmp/gw_dir/: another running Glyph Warden uses it; it is not used\n");
    }
    other.kill();
    EXPECT_EQ(count(), "1");
}

TEST_F(Drivers, ASourceBehindALinkOfSomebodyElseIsRefusedWithASentence) {
    if (::geteuid() != 0) GTEST_SKIP() << "makes a link of another user";
    use_path("/x/");
    home.write("fonts/t.pfa", HEADER);
    std::filesystem::create_directory_symlink(home.file("fonts"), home.file("link"));
    const auto count = [&] {
        GWHRNList list(0);
        GWDirDriver(home.file("link").c_str()).get_hrn_list(list);
        return list.get_count();
    };
    EXPECT_EQ(count(), 1) << "it is the superuser's own";
    ASSERT_EQ(::lchown(home.file("link").c_str(), 1000, 1000), 0);
    const gw::test::HeardFailures heard;
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(heard.text(),
              home.file("link") + ": this is a link or belongs to someone else; it is not used\n");
}

TEST_F(Drivers, AMediumThatIsNotMountedGivesNothing) {
    use_path("/x/");
    for (const int kind : {0, 1}) {
        GW_REM_MEDIA_DRIVER driver(kind);
        GWHRNList list(0);
        for (int round = 0; round < 2; ++round) driver.get_hrn_list(list);
        EXPECT_EQ(list.get_count(), 0);
        const std::string word = kind == 0 ? "floppy" : "cdrom";
        EXPECT_EQ(driver.get_preview_dir(), "/tmp/gw_" + word + "/");
        const std::string link = '/' + word;
        EXPECT_EQ(std::filesystem::read_symlink("/tmp/gw_" + word + link), link);
        EXPECT_EQ(TempDir::read_bytes("/tmp/gw_" + word + "/fonts.dir"), "0\n");
    }
}

TEST_F(Drivers, AMediumOfAnUnknownKindHasNothing) {
    GW_REM_MEDIA_DRIVER driver(2);
    GWHRNList list(0);
    driver.get_hrn_list(list);
    EXPECT_EQ(list.get_count(), 0);
    EXPECT_FALSE(driver.get_preview_dir().has_value());
    EXPECT_FALSE(std::filesystem::exists("/tmp/gw_floppy"));
}

TEST_F(Drivers, AMediumIsListedWithItsSubdirectories) {
    RecordingModule module(GWFont::TYPE1_FONT);
    RecordingModule::calls().clear();
    GW_FSM_LIST modules;
    modules.append(&module);
    GWHRNList list(0);
    GW_REM_MEDIA_DRIVER(GW_REM_MEDIA_DRIVER::CDROM).get_fsml_hrn_list(list, &modules);
    EXPECT_EQ(RecordingModule::calls(), Texts{"fonts /cdrom/cdrom0/ recursive"});
}

TEST_F(Drivers, AMountedMediumIsStagedByItsOwnPath) {
    std::error_code refused;
    std::filesystem::create_directories("/floppy/floppy0/sub", refused);
    if (refused) GTEST_SKIP() << "only the superuser can put a medium in the drive";
    {
        std::filesystem::remove_all("/floppy/floppy0");
        std::filesystem::create_directories("/floppy/floppy0/sub");
        std::filesystem::create_directories("/floppy/floppy0/zz");
        home.write("t.pfa", HEADER);
        std::filesystem::copy_file(home.file("t.pfa"), "/floppy/floppy0/sub/t.pfa");
        std::filesystem::copy_file(home.file("t.pfa"), "/floppy/floppy0/u.pfa");
    }
    use_path("/x/");
    GWHRNList list(0);
    GW_REM_MEDIA_DRIVER(GW_REM_MEDIA_DRIVER::FLOPPY).get_hrn_list(list);
    EXPECT_EQ(list.get_count(), 2);
    const std::string index = TempDir::read_bytes("/tmp/gw_floppy/fonts.dir");
    EXPECT_NE(index.find(std::string("floppy/floppy0/sub/t.pfa ") + TEST_XLFD + "\n"), std::string::npos)
        << index;
    std::filesystem::remove_all("/floppy/floppy0");
}

// --- the session -------------------------------------------------------------

/// A driver whose preview directory a test chooses.
class PreviewDriver : public GWDriverBase {
  public:
    explicit PreviewDriver(std::optional<std::string> dir) { preview_dir = std::move(dir); }
    void get_hrn_list(GWHRNList&) override {}
    void make_upr_file(GW_DIR* dir) override { built.emplace_back(dir->get_path()); }
    Texts built;
};

class Preview : public Drivers {
  protected:
    Preview() {
        staging = home.file("staging/");
        (void)gw::hold_scratch_dir(staging, 0777);
        home.write("staging/fonts.dir", "0\n");
        std::filesystem::permissions(home.path(), std::filesystem::perms(0755));
        the_font_path = new GWFontPath("/usr/vantor");
    }
    gw::test::Session session;
    std::string staging;
};

TEST_F(Preview, JoinsTheSessionOnceAndLeavesItAgain) {
    const Texts before = session.font_path();
    PreviewDriver driver(staging);
    driver.start_preview();
    Texts with = before;
    with.push_back(staging);
    EXPECT_EQ(session.font_path(), with);
    EXPECT_EQ(driver.built, Texts{staging});
    driver.start_preview();
    EXPECT_EQ(session.font_path(), with) << "only rehashed";
    EXPECT_EQ(driver.built.size(), 1U);
    driver.stop_preview();
    EXPECT_EQ(session.font_path(), before);
}

// The directory was twice in the session's list. One entry stayed, and the second preview took that for the
// server's own.
TEST_F(Preview, JoinsTheSessionAgain) {
    const Texts before = session.font_path();
    for (int round = 1; round <= 3; ++round) {
        PreviewDriver driver(staging);
        driver.start_preview();
        EXPECT_EQ(session.font_path().back(), staging) << round;
        driver.stop_preview();
        EXPECT_EQ(session.font_path(), before) << round;
    }
}

TEST_F(Preview, WithoutADirectoryNothingHappens) {
    const Texts before = session.font_path();
    for (const std::optional<std::string>& none :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        PreviewDriver driver(none);
        driver.start_preview();
        driver.stop_preview();
        EXPECT_TRUE(driver.built.empty());
    }
    EXPECT_EQ(session.font_path(), before);
}

TEST_F(Preview, AStagedFontOpensInTheServer) {
    home.write(
        "pcfs/tiny.bdf",
        "STARTFONT 2.1\nFONT -test-staged-medium-r-normal--8-80-75-75-c-80-iso8859-1\nSIZE 8 75 75\n"
        "FONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 2\nFONT_ASCENT 8\nFONT_DESCENT 0\nENDPROPERTIES\nCHARS 1\n"
        "STARTCHAR A\nENCODING 65\nSWIDTH 1000 0\nDWIDTH 8 0\nBBX 8 8 0 "
        "0\nBITMAP\n18\n3C\n66\nC3\nFF\nC3\nC3\nC3\n"
        "ENDCHAR\nENDFONT\n");
    ASSERT_EQ(std::system(("cd '" + home.file("pcfs") + "' && bdftopcf -o tiny.pcf tiny.bdf").c_str()), 0);
    GWDirDriver driver(home.file("pcfs").c_str());
    GWHRNList list(0);
    driver.get_hrn_list(list);
    ASSERT_EQ(list.get_count(), 1);
    driver.start_preview();
    XFontStruct* font =
        XLoadQueryFont(session.display(), "-test-staged-medium-r-normal--8-80-75-75-c-80-iso8859-1");
    EXPECT_NE(font, nullptr);
    if (font != nullptr) XFreeFont(session.display(), font);
    driver.stop_preview();
    EXPECT_NE(session.font_path().back(), STAGING);
}

// The server would follow any link that the owner of the directory puts there.
TEST_F(Preview, AStagingDirectoryThatIsNotOursIsNeverPreviewed) {
    const Texts before = session.font_path();
    home.write("fonts/t.pfa", HEADER);
    GWDirDriver directory(home.file("fonts").c_str());
    GWHRNList list(0);
    directory.get_hrn_list(list);
    ASSERT_EQ(list.get_count(), 1);
    remove_staging();
    for (const char* dir : {"/tmp/gw_dir", "/tmp/gw_floppy"})
        std::filesystem::create_directory_symlink(staging, dir);
    GW_REM_MEDIA_DRIVER medium(GW_REM_MEDIA_DRIVER::FLOPPY);
    const gw::test::HeardFailures heard;
    for (GWDriverBase* driver :
         {static_cast<GWDriverBase*>(&directory), static_cast<GWDriverBase*>(&medium)}) {
        GWHRNList none(0);
        driver->get_hrn_list(none);
        EXPECT_EQ(none.get_count(), 0);
        driver->start_preview();
        EXPECT_EQ(session.font_path(), before) << *driver->get_preview_dir();
    }
    EXPECT_EQ(home.read("staging/fonts.dir"), "0\n");
    EXPECT_FALSE(home.exists("staging/glyphwd.upr"));
}

TEST_F(Preview, ADirectoryIsPutOnTheFontPathsOnce) {
    PreviewDriver driver(staging);
    EXPECT_EQ(driver.set_font_path(staging.c_str()), 1);
    EXPECT_EQ(session.font_path().back(), staging);
    EXPECT_EQ(driver.set_font_path(staging.c_str()), 0) << "it is in the session";
    const Texts path = session.font_path();
    EXPECT_EQ(std::count(path.begin(), path.end(), staging), 1);
    // The superuser has no user file.
    EXPECT_EQ(home.read(".VTfontpath"), ::geteuid() == 0 ? "" : staging + "\n");
}

TEST(DirDriver, RebuildsTheResourceFileOfTheStagedDirectory) {
    const gw::test::OwnCommands with_tool;
    const TempDir dir;
    dir.write("glyphwd.upr", "old");
    GW_DIR target(dir.c_str());
    GWDirDriver("/nonexistent").make_upr_file(&target);
    EXPECT_EQ(dir.read("glyphwd.upr"), "PS-Resources-1.0\n.\n");
}

}  // namespace
