// SPDX-License-Identifier: MIT
//
// The modules that take fonts from a directory's index. They use a scratch directory with a fixed name, so
// these tests run in the sandbox.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/text.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t0_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "modules/gw_t3_fsm.h"
#include "platform/host_paths.h"
#include "support/font_maker.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

using gw::test::RecordingModule;
using gw::test::TempDir;
using Texts = std::vector<std::string>;

constexpr const char* XLFD = "-test-tiny-medium-r-normal--8-80-75-75-c-80-iso8859-1";

/// The source of a font with one glyph, for bdftopcf.
std::string tiny_bdf(const std::string& xlfd) {
    return "STARTFONT 2.1\nFONT " + xlfd +
           "\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 3\nFONT_ASCENT 8\nFONT_DESCENT "
           "0\nDEFAULT_CHAR 65\n"
           "ENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\nSWIDTH 1000 0\nDWIDTH 8 0\nBBX 8 8 0 "
           "0\nBITMAP\n"
           "18\n3C\n66\nC3\nFF\nC3\nC3\nC3\nENDCHAR\nENDFONT\n";
}

class Indexed : public testing::Test {
  protected:
    void SetUp() override { std::filesystem::remove_all("/tmp/pcf"); }
    void TearDown() override {
        std::filesystem::remove_all("/tmp/pcf");
        for (GWFont* font : fonts) const gw::Ref<GWFont> last(font);
    }
    void make_pcf(const std::string& name, const std::string& xlfd = XLFD) const {
        dir.write("tiny.bdf", tiny_bdf(xlfd));
        const std::string target = dir.file(name);
        std::filesystem::create_directories(std::filesystem::path(target).parent_path());
        ASSERT_EQ(std::system(("bdftopcf -o '" + target + "' '" + dir.file("tiny.bdf") + "'").c_str()), 0);
        std::filesystem::remove(dir.file("tiny.bdf"));
    }
    void list(GW_FSM_BASE& module, const std::string& source, int recursive = 0) {
        GW_DIR from(source.c_str());
        module.make_font_list(fonts, &from, recursive);
    }
    [[nodiscard]] Texts paths() const {
        Texts all;
        for (const GWFont* font : fonts) all.emplace_back((*font->get_font_file_list()->begin())->get_path());
        std::sort(all.begin(), all.end());
        return all;
    }
    TempDir dir;
    GW_PCF_FSM pcf;
    GW_LIST<GWFont> fonts;
};

TEST_F(Indexed, ADirectoryWithAnIndexNeedsNoScratchDirectory) {
    dir.write("fonts.dir", std::string("4\na.pcf ") + XLFD + "\nb.pcf.Z fixed\nc.pcf.gz -gz\nd.pfa -d\n");
    dir.write("a.pcf", "x");
    std::filesystem::create_directory("/tmp/pcf");
    list(pcf, dir.path());
    ASSERT_EQ(fonts.get_count(), 2);
    EXPECT_STREQ(fonts.get_elem_at_pos(1)->get_xlfd_name(), XLFD);
    EXPECT_STREQ(fonts.get_elem_at_pos(1)->get_dir_name(), dir.c_str());
    EXPECT_EQ(fonts.get_elem_at_pos(1)->get_type(), GWFont::BITMAP_FONT);
    EXPECT_STREQ(fonts.get_elem_at_pos(2)->get_xlfd_name(), "fixed");
    EXPECT_TRUE(std::filesystem::exists("/tmp/pcf")) << "the scratch directory was not touched";
}

TEST_F(Indexed, ADirectoryWithoutIndexIsIndexedInTheScratchDirectory) {
    make_pcf("8x13.pcf");
    make_pcf("other.pcf", "-test-other-bold-r-normal--8-80-75-75-c-80-iso8859-1");
    ASSERT_EQ(std::system(("compress '" + dir.file("other.pcf") + "' 2>/dev/null || true").c_str()), 0);
    list(pcf, dir.path());
    EXPECT_EQ(fonts.get_count(), 2);
    for (const GWFont* font : fonts) EXPECT_STREQ(font->get_dir_name(), dir.c_str());
    EXPECT_FALSE(std::filesystem::exists("/tmp/pcf"));
    EXPECT_FALSE(dir.exists("fonts.dir"));
}

TEST_F(Indexed, FontsOfAMediumLieWhereTheirFilesAre) {
    make_pcf("cd/sub/tiny.pcf");
    make_pcf("cd/zz/last.pcf", "-test-last-bold-r-normal--8-80-75-75-c-80-iso8859-1");
    make_pcf("cd/top.pcf", "-test-top-bold-r-normal--8-80-75-75-c-80-iso8859-1");
    list(pcf, dir.file("cd"), 1);
    EXPECT_EQ(paths(),
              (Texts{dir.file("cd/sub/tiny.pcf"), dir.file("cd/top.pcf"), dir.file("cd/zz/last.pcf")}));
}

// Only an index that this process has made says what is in the directory.
TEST_F(Indexed, AScratchDirectoryThatAKilledRunHasLeftIsMadeAnew) {
    std::filesystem::create_directory("/tmp/pcf");
    std::filesystem::create_symlink("/nonexistent/old.pcf", "/tmp/pcf/old.pcf");
    std::ofstream("/tmp/pcf/fonts.dir") << "1\nold.pcf " << XLFD << '\n';
    make_pcf("new.pcf");
    list(pcf, dir.path());
    EXPECT_EQ(paths(), Texts{dir.file("new.pcf")});
    EXPECT_FALSE(std::filesystem::exists("/tmp/pcf"));
}

TEST_F(Indexed, AScratchDirectoryWithFilesThatAreNotOursIsReportedAndNotUsed) {
    std::filesystem::create_directory("/tmp/pcf");
    std::ofstream("/tmp/pcf/notes") << "somebody's";
    std::ofstream("/tmp/pcf/fonts.dir") << "1\nold.pcf " << XLFD << '\n';
    make_pcf("new.pcf");
    const gw::test::HeardFailures heard;
    list(pcf, dir.path());
    EXPECT_EQ(heard.text(), "/tmp/pcf/: this is a link or belongs to someone else; it is not used\n");
    EXPECT_EQ(fonts.get_count(), 0);
    EXPECT_TRUE(std::filesystem::exists("/tmp/pcf/notes"));
}

TEST_F(Indexed, AnIndexThatCannotBeMadeIsReported) {
    make_pcf("8x13.pcf");
    dir.write("bin/mkfontdir", "#!/bin/sh\nexit 3\n");
    std::filesystem::permissions(dir.file("bin/mkfontdir"), std::filesystem::perms(0755));
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", (dir.file("bin:") + path).c_str(), 1);
    const gw::test::HeardFailures heard;
    list(pcf, dir.path());
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(heard.text(), "mkfontdir /tmp/pcf/;: this command failed with status 3; it is not used\n");
    EXPECT_FALSE(std::filesystem::exists("/tmp/pcf"));
}

TEST_F(Indexed, AForeignScratchDirectoryIsNotUsed) {
    make_pcf("8x13.pcf");
    const std::string victim = dir.make_dir("victim");
    std::filesystem::create_directory_symlink(victim, "/tmp/pcf");
    const gw::test::HeardFailures heard;
    list(pcf, dir.path());
    EXPECT_NE(heard.text().find("it is not used"), std::string::npos);
    EXPECT_EQ(fonts.get_count(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(victim));
    EXPECT_TRUE(std::filesystem::is_symlink("/tmp/pcf"));
}

TEST_F(Indexed, LinksAreMadeUntilOneFails) {
    GW_FSPEC_LIST files;
    const gw::ElementsOwner owner(files);
    for (const char* name : {"a.pcf", "a.pcf", "b.pcf"}) files.append(new GW_FILE_SPEC(name, "/from", 0, 5));
    const std::string scratch = dir.file("scratch");
    EXPECT_EQ(gw::IndexedModule::mkdir_and_slink(scratch.c_str(), &files), 1);
    EXPECT_EQ(std::filesystem::read_symlink(scratch + "/a.pcf"), "/from/a.pcf");
    EXPECT_FALSE(std::filesystem::is_symlink(scratch + "/b.pcf"));
    EXPECT_EQ(gw::IndexedModule::mkdir_and_slink(scratch.c_str(), &files), 1) << "it exists";
}

TEST_F(Indexed, InstalledFontsComeFromTheIndexAlone) {
    GW_FPE without(dir.c_str());
    pcf.make_installed_font_list(fonts, &without);
    EXPECT_EQ(fonts.get_count(), 0);
    dir.write("fonts.dir", "4\nb.pcf.Z -b\na.pcf -a\nc.pcf.gz -c\nd.pfb -d\n");
    GW_FPE fpe(dir.c_str());
    pcf.make_installed_font_list(fonts, &fpe);
    EXPECT_EQ(paths(), (Texts{dir.file("a.pcf"), dir.file("b.pcf.Z")}));
    GW_FSPEC_LIST files;
    const gw::ElementsOwner files_owner(files);
    pcf.list_installed_font_file_names(files, &fpe);
    ASSERT_EQ(files.get_count(), 2);
    EXPECT_STREQ(files.get_elem_at_pos(1)->get_name(), "a.pcf") << "plain files before compressed ones";
    GW_STRING_LIST names;
    const gw::ElementsOwner names_owner(names);
    pcf.list_installed_font_names(names, &fpe);
    EXPECT_STREQ(names.get_elem_at_pos(2)->get_str(), "-b");
}

TEST_F(Indexed, InstallingCopiesByteForByteAndEntersTheFont) {
    make_pcf("from/8x13.pcf");
    list(pcf, dir.file("from"));
    ASSERT_EQ(fonts.get_count(), 1);
    GW_FPE target(dir.make_dir("to").c_str());
    target.get_fontdir_file().create();
    pcf.install_font(fonts.get_elem_at_pos(1), &target);
    EXPECT_EQ(dir.read("to/8x13.pcf"), dir.read("from/8x13.pcf"));
    EXPECT_EQ(dir.read("to/fonts.dir"), std::string("1\n8x13.pcf ") + XLFD + "\n");
}

TEST_F(Indexed, DeletingRemovesLineAndFileAndLeavesTheResourceFile) {
    dir.write("a.pcf", "x");
    dir.write("glyphwd.upr", "kept");
    dir.write("fonts.dir", "2\na.pcf -a\nb.pcf -b\n");
    GW_FPE fpe(dir.c_str());
    pcf.make_installed_font_list(fonts, &fpe);
    pcf.delete_font(fonts.get_elem_at_pos(1));
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_EQ(dir.read("glyphwd.upr"), "kept");
}

TEST_F(Indexed, AFontThatNoIndexCanHoldIsRefusedBeforeAnythingIsWritten) {
    const std::string target = dir.make_dir("to");
    dir.write("to/fonts.dir", "0\n");
    for (const char* name : {"a b.pcf", "a\nb.pcf"}) {
        const gw::Ref<GWFont> font(gw::test::make_font(GWFont::BITMAP_FONT, XLFD));
        dir.write(name, "x");
        gw::test::give_file(*font, name, dir.c_str());
        GW_FPE fpe(target.c_str());
        const gw::test::HeardFailures heard;
        pcf.install_font(font.get(), &fpe);
        EXPECT_NE(heard.text().find(gw::escaped(name)), std::string::npos);
        EXPECT_FALSE(pcf.can_install(*font)) << name;
        EXPECT_EQ(dir.read("to/fonts.dir"), "0\n");
        EXPECT_FALSE(dir.exists(std::string("to/") + name));
    }
}

TEST_F(Indexed, TakesAFontWithAFileOfAPlainName) {
    const gw::Ref<GWFont> font(gw::test::make_font(GWFont::BITMAP_FONT, XLFD));
    EXPECT_FALSE(pcf.can_install(*font)) << "without a file";
    gw::test::give_file(*font, "a.pcf", dir.c_str());
    const gw::test::HeardFailures heard;
    EXPECT_TRUE(pcf.can_install(*font));
    gw::test::give_file(*font, "a b.pcf", dir.c_str());
    EXPECT_FALSE(pcf.can_install(*font));
    EXPECT_EQ(heard.text(), "") << "asking reports nothing";
}

TEST_F(Indexed, Type0TakesEveryEntryAndShowsItsFullPath) {
    dir.write("fonts.dir", "2\na.ps -a\nb.anything -b\n");
    GW_T0_FSM type0;
    list(type0, dir.path());
    ASSERT_EQ(fonts.get_count(), 2);
    EXPECT_EQ(fonts.get_elem_at_pos(1)->get_type(), GWFont::TYPE0_FONT);
    GW_FPE staging(dir.make_dir("staging").c_str());
    type0.make_font_visible(fonts.get_elem_at_pos(1), &staging);
    EXPECT_EQ(dir.read("staging/fonts.dir"), "1\n" + dir.file("a.ps") + " -a\n");
    dir.write("a.ps", "x");
    type0.install_font(fonts.get_elem_at_pos(1), &staging);
    EXPECT_EQ(dir.read("staging/fonts.dir"), "2\n" + dir.file("a.ps") + " -a\na.ps -a\n");
}

TEST_F(Indexed, Type3TakesItsSuffixesOnly) {
    dir.write("fonts.dir", "3\na.ps -a\nb.ps.Z -b\nc.pcf -c\n");
    GW_T3_FSM type3;
    list(type3, dir.path());
    ASSERT_EQ(fonts.get_count(), 2);
    EXPECT_EQ(fonts.get_elem_at_pos(1)->get_type(), GWFont::TYPE3_FONT);
    EXPECT_STREQ(fonts.get_elem_at_pos(1)->get_ps_name(), "") << "only the XLFD name is set";
}

TEST_F(Indexed, FilesAreListedByTheirExtensions) {
    for (const char* name : {"a.pcf", "b.pcf.Z", "c.pcf.gz", "d.ps", "e.ps.Z", "f.pfa"}) dir.write(name, "x");
    const auto names_of = [&](GW_FSM_BASE& module) {
        GW_FSPEC_LIST files;
        const gw::ElementsOwner owner(files);
        GW_DIR source(dir.c_str());
        module.list_font_file_names(files, &source, 0);
        Texts names;
        for (const GW_FILE_SPEC* spec : files) names.emplace_back(spec->get_name());
        std::sort(names.begin(), names.end());
        return names;
    };
    GW_T0_FSM type0;
    GW_T1_FSM type1;
    EXPECT_EQ(names_of(pcf), (Texts{"a.pcf", "b.pcf.Z"}));
    EXPECT_EQ(names_of(type0), (Texts{"d.ps", "e.ps.Z"}));
    EXPECT_EQ(names_of(type1), Texts{"f.pfa"});
}

TEST_F(Indexed, ListsTheInstallationsOwnFonts) {
    for (const char* name : {"misc", "75dpi", "100dpi"}) {
        const std::string system = std::string(gw::SYSTEM_FONT_DIR) + "/" + name + "/";
        GW_FPE fpe(system.c_str());
        GW_LIST<GWFont> found;
        pcf.make_installed_font_list(found, &fpe);
        EXPECT_EQ(found.get_count(), fpe.get_fontdir_file().get_font_count()) << system;
        EXPECT_GT(found.get_count(), 300) << system;
        for (GWFont* font : found) const gw::Ref<GWFont> last(font);
    }
}

// --- the module list ---------------------------------------------------------

class ModuleList : public testing::Test {
  protected:
    ModuleList() { RecordingModule::calls().clear(); }
    RecordingModule type1{GWFont::TYPE1_FONT, "T1 "}, bitmap{GWFont::BITMAP_FONT, "PCF "},
        second{GWFont::TYPE1_FONT, "2nd "};
    GW_FSM_LIST modules;
};

TEST_F(ModuleList, AnEmptyOneDoesNothing) {
    GW_FPE fpe("/x/");
    GW_LIST<GWFont> fonts;
    const gw::Ref<GWFont> font(gw::test::make_outline("courier"));
    modules.make_installed_font_list(fonts, &fpe);
    modules.install_font(font.get(), &fpe);
    modules.delete_font(font.get());
    EXPECT_EQ(modules.get_fsm(1), nullptr);
    EXPECT_EQ(fonts.get_count(), 0);
}

TEST_F(ModuleList, ListingsGoToEveryModuleOfEveryDirectoryInOrder) {
    modules.append(&type1);
    modules.append(&bitmap);
    GW_DIR one("/one");
    GW_DIR two("/two");
    GW_LIST<GW_DIR> dirs;
    dirs.append(&one);
    dirs.append(&two);
    GW_LIST<GWFont> fonts;
    modules.make_font_list(fonts, dirs, 1);
    EXPECT_EQ(RecordingModule::calls(), (Texts{"T1 fonts /one/ recursive", "PCF fonts /one/ recursive",
                                               "T1 fonts /two/ recursive", "PCF fonts /two/ recursive"}));
    RecordingModule::calls().clear();
    GW_FPE fpe("/x/");
    GW_LIST<GW_FPE> fpes;
    fpes.append(&fpe);
    GW_FSPEC_LIST files;
    GW_STRING_LIST names;
    modules.list_font_file_names(files, dirs, 0);
    modules.list_installed_font_file_names(files, fpes);
    modules.list_installed_font_names(names, fpes);
    modules.make_installed_font_list(fonts, fpes);
    EXPECT_EQ(RecordingModule::calls(),
              (Texts{"T1 files /one/", "PCF files /one/", "T1 files /two/", "PCF files /two/",
                     "T1 installed files /x/", "PCF installed files /x/", "T1 installed names /x/",
                     "PCF installed names /x/", "T1 installed fonts /x/", "PCF installed fonts /x/"}));
}

TEST_F(ModuleList, OfTwoModulesOfATypeTheFirstGetsTheFonts) {
    modules.append(&type1);
    modules.append(&second);
    EXPECT_EQ(modules.get_fsm(GWFont::TYPE1_FONT), &type1);
    const gw::Ref<GWFont> font(gw::test::make_outline("courier"));
    GW_LIST<GWFont> fonts;
    fonts.append(font.get());
    GW_FPE fpe("/x/");
    modules.install_font(&fonts, &fpe);
    modules.make_font_visible(&fonts, &fpe);
    modules.delete_font(&fonts);
    const std::string name = font->get_xlfd_name();
    EXPECT_EQ(RecordingModule::calls(),
              (Texts{"T1 install " + name + " /x/", "T1 show " + name + " /x/", "T1 delete " + name}));
    RecordingModule::calls().clear();
    GW_FSPEC_LIST files;
    modules.list_installed_font_file_names(files, &fpe);
    EXPECT_EQ(RecordingModule::calls().size(), 2U) << "both take part in listings";
}

TEST_F(ModuleList, AFontOfAnotherTypeIsIgnored) {
    modules.append(&bitmap);
    const gw::Ref<GWFont> font(gw::test::make_font(GWFont::TYPE0_FONT, "x"));
    GW_FPE fpe("/x/");
    modules.install_font(font.get(), &fpe);
    modules.make_font_visible(font.get(), &fpe);
    modules.delete_font(font.get());
    EXPECT_TRUE(RecordingModule::calls().empty());
}

TEST_F(ModuleList, AModuleServesListsItemByItem) {
    GW_DIR dir("/one");
    GW_LIST<GW_DIR> dirs;
    dirs.append(&dir);
    GW_FPE fpe("/x/");
    GW_LIST<GW_FPE> fpes;
    fpes.append(&fpe);
    const gw::Ref<GWFont> font(gw::test::make_outline("c"));
    GW_LIST<GWFont> fonts;
    fonts.append(font.get());
    GW_FSPEC_LIST files;
    GW_STRING_LIST names;
    GW_LIST<GWFont> out;
    GW_FSM_BASE& module = type1;
    module.list_font_file_names(files, dirs, 1);
    module.list_installed_font_file_names(files, fpes);
    module.list_installed_font_names(names, fpes);
    module.make_font_list(out, dirs, 0);
    module.make_installed_font_list(out, fpes);
    module.install_font(&fonts, &fpe);
    module.make_font_visible(&fonts, &fpe);
    module.delete_font(&fonts);
    EXPECT_EQ(RecordingModule::calls().size(), 8U);
    EXPECT_EQ(RecordingModule::calls().front(), "T1 files /one/ recursive");
}

}  // namespace
