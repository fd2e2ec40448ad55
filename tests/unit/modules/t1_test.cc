// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "modules/gw_t1_buf_file.h"
#include "modules/gw_t1_font_file.h"
#include "modules/gw_t1_fsm.h"
#include "platform/host_paths.h"
#include "support/font_maker.h"
#include "support/heard_failures.h"
#include "support/own_commands.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;
using Texts = std::vector<std::string>;

const std::string HEADER =
    "%!PS-AdobeFont-1.0: Times-Italic 001.007\n"
    "% a comment /FamilyName (Commented)\n"
    "11 dict begin\n"
    "/FontInfo 10 dict dup begin\n"
    "/Notice (Copyright Adobe Systems and Linotype AG) readonly def\n"
    "/FullName (Times Italic) readonly def\n"
    "\t /FamilyName (Times) readonly def\n"
    "/Weight (Medium) readonly def\n"
    "/ItalicAngle -15.5 def\n"
    "/isFixedPitch false def\n"
    "end readonly def\n"
    "/Encoding StandardEncoding def\n"
    "currentdict end\ncurrentfile eexec\n"
    "/FamilyName (Encrypted)\n";

std::string with_line(const std::string& key, const std::string& line) {
    std::string text = HEADER;
    const std::size_t start = text.find("/" + key, text.find("FontInfo"));
    const std::size_t end = text.find('\n', start);
    return text.replace(start, end - start, line);
}

Texts file_names(const GWFont& font) {
    Texts names;
    for (const GW_FILE_SPEC* spec : *font.get_font_file_list()) names.emplace_back(spec->get_name());
    return names;
}

class Type1 : public testing::Test {
  protected:
    void TearDown() override { release(); }
    void release() {
        for (GWFont* font : fonts) const gw::Ref<GWFont> last(font);
        fonts.clear();
    }
    GWFont* read(const std::string& text, const char* name = "f.pfa") {
        release();
        dir.write(name, text);
        GW_DIR source(dir.c_str());
        module.make_font_list(fonts, &source, 0);
        return fonts.get_elem_at_pos(1);
    }
    TempDir dir;
    GW_T1_FSM module;
    GW_LIST<GWFont> fonts;
};

TEST_F(Type1, TakesTheFieldsFromTheHeader) {
    EXPECT_STREQ(read(HEADER)->get_xlfd_name(), "-adobe-Times-Medium-i-normal--0-0-0-0-p-0-iso8859-1");
    EXPECT_EQ(fonts.get_elem_at_pos(1)->get_hrn_name(), "Times Medium Italic [Type-1]");
}

TEST_F(Type1, ReadsAnyLineEnds) {
    for (const char* ends : {"\r", "\r\n"}) {
        std::string text;
        for (const char c : HEADER) text += c == '\n' ? std::string(ends) : std::string(1, c);
        EXPECT_STREQ(read(text)->get_field(GWFont::TYPEFACE_NAME), "Times");
    }
}

TEST_F(Type1, SkipsTheBinaryHeaderOfAPfb) {
    const GWFont* font = read(std::string("\x80\x01\x10\x20\x00\x00", 6) + HEADER, "f.pfb");
    EXPECT_STREQ(font->get_field(GWFont::TYPEFACE_NAME), "Times");
}

TEST_F(Type1, ItalicAnglesOfLessThanADegreeAreUpright) {
    const struct {
        const char* angle;
        const char* slant;
    } cases[] = {{"-12", "i"}, {"0", "r"}, {"-0.5", "r"}, {"15.9", "i"}, {"", "r"}};
    for (const auto& c : cases) {
        EXPECT_STREQ(read(with_line("ItalicAngle", std::string("/ItalicAngle ") + c.angle + " def"))
                         ->get_field(GWFont::SLANT),
                     c.slant)
            << c.angle;
    }
}

TEST_F(Type1, OnlyTrueMakesAFixedPitch) {
    EXPECT_STREQ(read(with_line("isFixedPitch", "/isFixedPitch true def"))->get_field(GWFont::SPACING), "m");
    EXPECT_STREQ(read(with_line("isFixedPitch", "/isFixedPitch True def"))->get_field(GWFont::SPACING), "p");
}

TEST_F(Type1, AnEncodingOfItsOwnTakesTheFoundryForItsRegistry) {
    GWFont* font = read(with_line("Encoding", "/Encoding 256 array"));
    EXPECT_STREQ(font->get_field(GWFont::CHARSET_REGISTRY), "adobe");
    EXPECT_STREQ(font->get_field(GWFont::CHARSET_ENCODING), "fontspecific");
    font = read("%!PS\n/Encoding 256 array\n" + HEADER.substr(HEADER.find("/Notice")));
    EXPECT_STREQ(font->get_field(GWFont::CHARSET_REGISTRY), "iso8859") << "a later line sets it anew";
    font = read("%!PS\n/Encoding 256 array\n/Notice (Adobe)\ncurrentfile eexec\n");
    EXPECT_STREQ(font->get_field(GWFont::CHARSET_REGISTRY), "unknown") << "the notice had not been seen";
    EXPECT_STREQ(font->get_field(GWFont::FOUNDRY), "adobe");
}

TEST_F(Type1, ANoticeWithoutFoundrySaysUnknown) {
    EXPECT_STREQ(read(with_line("Notice", "/Notice (Nobody we know)"))->get_field(GWFont::FOUNDRY),
                 "unknown");
}

TEST_F(Type1, AFontWithoutFamilyNameStartsWithItsWeight) {
    EXPECT_EQ(read(with_line("FamilyName", "x"))->get_hrn_name(), " Medium Italic [Type-1]");
}

TEST_F(Type1, ReadsNothingBehindTheHeader) {
    EXPECT_STREQ(read(HEADER)->get_field(GWFont::TYPEFACE_NAME), "Times");
}

TEST_F(Type1, EndsWithTheFileWhenThereIsNoEexec) {
    const std::string text = HEADER.substr(0, HEADER.find("currentdict"));
    EXPECT_STREQ(read(text)->get_field(GWFont::TYPEFACE_NAME), "Times");
}

TEST_F(Type1, SurvivesBrokenFiles) {
    const std::string long_line = "/FamilyName (" + std::string(100000, 'x') + ")";
    for (const std::string& text :
         {std::string(), std::string("no percent"), std::string(5000, '\0'), std::string(3000, '%'),
          with_line("FamilyName", long_line), std::string("%!\n/FamilyName (open\n/Weight )("),
          std::string("%!\n/\n/ \n//\n/FamilyName\n/Encoding\n/ItalicAngle\n")}) {
        const GWFont* font = read(text);
        ASSERT_NE(font, nullptr) << text.substr(0, 40);
        EXPECT_STREQ(font->get_field(GWFont::SETWIDTH_NAME), "normal");
    }
}

TEST_F(Type1, AKeyBehindAVeryLongLineIsStillRead) {
    const GWFont* font = read(with_line("FullName", "/FullName (" + std::string(100000, 'x') + ")"));
    EXPECT_STREQ(font->get_field(GWFont::WEIGHT_NAME), "Medium");
}

TEST(Type1FontFile, AFileThatCannotBeOpenedLeavesTheFontAlone) {
    GWFont font(GWFont::TYPE1_FONT);
    font.set_field(GWFont::WEIGHT_NAME, "kept");
    EXPECT_EQ(GW_T1_FONT_FILE("f.pfa", "/nonexistent", 0).set_font_info(&font), 1);
    EXPECT_STREQ(font.get_field(GWFont::WEIGHT_NAME), "kept");
    EXPECT_STREQ(font.get_field(GWFont::SPACING), "");
}

TEST_F(Type1, FilesOfOnePrefixAreOneFontReadFromItsPfa) {
    dir.write("times.pfb", with_line("FamilyName", "/FamilyName (Binary)"));
    dir.write("times.afm", "StartFontMetrics\n");
    GWFont* font = read(HEADER, "times.pfa");
    EXPECT_EQ(fonts.get_count(), 1);
    EXPECT_EQ(file_names(*font), (Texts{"times.pfb", "times.pfa", "times.afm"}));
    EXPECT_STREQ(font->get_field(GWFont::TYPEFACE_NAME), "Times");
    EXPECT_STREQ(font->get_dir_name(), dir.c_str());
}

TEST_F(Type1, MetricsMayLieInTheSubdirectory) {
    dir.write("afm/times.afm", "StartFontMetrics\n");
    EXPECT_EQ(file_names(*read(HEADER, "times.pfb")), (Texts{"times.pfb", "afm/times.afm"}));
    dir.write("afm/times", "StartFontMetrics\n");
    EXPECT_EQ(file_names(*read(HEADER, "times.pfb")), (Texts{"times.pfb", "afm/times"}));
}

TEST_F(Type1, AFileThatIsNotItsOwnCompanionEndsTheBuilding) {
    dir.write("Times.Roman.pfb", HEADER);
    const GW_FILE_SPEC spec("Times.Roman.pfb", dir.c_str(), 0, 1);
    EXPECT_EQ(GW_T1_FSM::get_matching_file_spec_prefix(&spec), "Times");
    GW_FSPEC_LIST files;
    const gw::ElementsOwner owner(files);
    files.append(new GW_FILE_SPEC(&spec));
    module.build_font_list(fonts, files);
    EXPECT_EQ(fonts.get_count(), 0);
    EXPECT_EQ(files.get_count(), 1);
}

TEST_F(Type1, ADirectoryNamedLikeAFontIsNone) {
    dir.make_dir("times.pfa");
    GW_DIR source(dir.c_str());
    module.make_font_list(fonts, &source, 0);
    EXPECT_EQ(fonts.get_count(), 0);
}

TEST_F(Type1, InstalledFilesAreGroupedBySuffix) {
    dir.write("fonts.dir", "4\na.pfa -a\nb.pfb -b\nx.pcf -x\nc.pfb -c\n");
    GW_FPE fpe(dir.c_str());
    GW_FSPEC_LIST files;
    const gw::ElementsOwner owner(files);
    module.list_installed_font_file_names(files, &fpe);
    Texts names;
    for (const GW_FILE_SPEC* spec : files) names.emplace_back(spec->get_name());
    EXPECT_EQ(names, (Texts{"b.pfb", "c.pfb", "a.pfa"}));
    GW_STRING_LIST fonts_found;
    const gw::ElementsOwner fonts_owner(fonts_found);
    module.list_installed_font_names(fonts_found, &fpe);
    ASSERT_EQ(fonts_found.get_count(), 3);
    EXPECT_STREQ(fonts_found.get_elem_at_pos(1)->get_str(), "-b");
}

// A file that is listed under several names gives several records, all with the first name.
TEST_F(Type1, InstalledFontsAreNamedByTheIndexAndNotRead) {
    dir.write("b.pfb", "not a font at all");
    const std::string one = "-adobe-b-medium-r-normal--0-0-0-0-p-0-iso8859-1";
    dir.write("fonts.dir", "2\nb.pfb " + one + "\nb.pfb -adobe-b-medium-r-normal--0-0-0-0-p-0-iso8859-2\n");
    GW_FPE fpe(dir.c_str());
    module.make_installed_font_list(fonts, &fpe);
    ASSERT_EQ(fonts.get_count(), 2);
    for (GWFont* font : fonts) EXPECT_EQ(font->get_xlfd_name(), one);
    EXPECT_EQ(file_names(*fonts.get_elem_at_pos(1)), Texts{"b.pfb"});
}

// --- the copy ----------------------------------------------------------------

class Type1Copy : public testing::Test {
  protected:
    std::string copied(const std::string& bytes, const char* name = "f.pfa") {
        dir.write(std::string("from/") + name, bytes);
        GW_DIR target(dir.make_dir("to").c_str());
        EXPECT_EQ(GW_T1_BUF_FILE(name, dir.file("from").c_str(), 0).copy(&target), 1);
        return dir.read(std::string("to/") + name);
    }
    TempDir dir;
};

TEST_F(Type1Copy, DropsWhatPrecedesTheFirstPercentAndAddsAByte) {
    const std::string head("\x80\x01\x00\x04\x00\x00", 6);
    std::string bytes = head + "%!PS" + std::string(1014, 'a') + std::string(1024, 'b');
    ASSERT_EQ(bytes.size(), 2048U);
    const std::string result = copied(bytes, "f.pfb");
    EXPECT_EQ(result.size(), 1024U - 6 + 1 + 1024);
    EXPECT_EQ(result.substr(0, 1018), bytes.substr(6, 1018));
    EXPECT_EQ(result[1018], '\0');
    EXPECT_EQ(result.substr(1019), std::string(1024, 'b'));
}

TEST_F(Type1Copy, ConvertsCarriageReturnsInLaterBlocksOnly) {
    const std::string first = "%!\r\n" + std::string(1019, 'a') + "\r";
    ASSERT_EQ(first.size(), 1024U);
    EXPECT_EQ(copied(first + "b\r\nc\r" + std::string(2000, 'd') + "\re"),
              first + '\0' + "b\n\nc\n" + std::string(2000, 'd') + "\ne");
}

TEST_F(Type1Copy, AFirstBlockWithoutPercentGivesOneByte) {
    EXPECT_EQ(copied(std::string(1024, 'a') + "bb"), std::string(1, '\0') + "bb");
    EXPECT_EQ(copied("short"), std::string(1, '\0'));
    EXPECT_EQ(copied(""), std::string(1, '\0'));
}

TEST_F(Type1Copy, AShortFileEndsWithTheExtraByte) {
    EXPECT_EQ(copied("%!PS"), std::string("%!PS\0", 5));
}

TEST_F(Type1Copy, HasStandardPermissionsAndIsNotMadeOntoItself) {
    copied("%!PS");
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("to/f.pfa").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644U);
    GW_DIR same(dir.file("from").c_str());
    EXPECT_EQ(GW_T1_BUF_FILE("f.pfa", same.get_path(), 0).copy(&same), 1);
    EXPECT_EQ(dir.read("from/f.pfa"), "%!PS");
    EXPECT_EQ(GW_T1_BUF_FILE("missing.pfa", "/nonexistent", 0).copy(&same), 1);
}

// --- installing and deleting -------------------------------------------------

TEST_F(Type1, InstallingWritesTheIndexAndCopiesAllFilesFlat) {
    const std::string target = dir.make_dir("to");
    dir.write("from/times.pfb", HEADER);
    dir.write("from/afm/times.afm", "%afm");
    GW_DIR source(dir.file("from").c_str());
    module.make_font_list(fonts, &source, 0);
    ASSERT_EQ(fonts.get_count(), 1);
    GW_FPE fpe(target.c_str());
    fpe.get_fontdir_file().create();
    module.install_font(fonts.get_elem_at_pos(1), &fpe);
    EXPECT_EQ(dir.read("to/fonts.dir"), "1\ntimes.pfb -adobe-Times-Medium-i-normal--0-0-0-0-p-0-iso8859-1\n");
    EXPECT_EQ(dir.read("to/times.pfb"), HEADER + '\0');
    EXPECT_EQ(dir.read("to/afm/times.afm"), std::string("%afm\0", 5))
        << "a name with its subdirectory keeps it";
}

TEST_F(Type1, InstallingWhereTheFontIsWritesTheIndexOnly) {
    GWFont* font = read(HEADER, "times.pfa");
    GW_FPE fpe(dir.c_str());
    module.install_font(font, &fpe);
    EXPECT_EQ(dir.read("fonts.dir"), "1\ntimes.pfa -adobe-Times-Medium-i-normal--0-0-0-0-p-0-iso8859-1\n");
    EXPECT_EQ(dir.read("times.pfa"), HEADER);
}

TEST_F(Type1, AFontThatNoIndexCanHoldIsRefusedBeforeAnythingIsWritten) {
    const std::string target = dir.make_dir("to");
    dir.write("to/fonts.dir", "0\n");
    for (const std::string& name : {std::string("a b.pfa"), std::string(80, 'n') + ".pfa"}) {
        const TempDir source_dir;
        source_dir.write(name, HEADER);
        GW_DIR source(source_dir.c_str());
        release();
        module.make_font_list(fonts, &source, 0);
        ASSERT_EQ(fonts.get_count(), 1) << name;
        GW_FPE fpe(target.c_str());
        const gw::test::HeardFailures heard;
        module.install_font(fonts.get_elem_at_pos(1), &fpe);
        EXPECT_NE(heard.text().find("the font is left out"), std::string::npos) << name;
        EXPECT_FALSE(module.can_install(*fonts.get_elem_at_pos(1))) << name;
        EXPECT_EQ(dir.read("to/fonts.dir"), "0\n") << name;
        EXPECT_FALSE(dir.exists("to/" + name));
        EXPECT_FALSE(dir.exists("to/afm"));
    }
}

TEST_F(Type1, ALineOf119CharactersFitsAndOneMoreDoesNot) {
    const std::string xlfd = "-adobe-Times-Medium-i-normal--0-0-0-0-p-0-iso8859-1";
    for (const std::size_t length : {119U, 120U}) {
        const std::string name = std::string(length - xlfd.size() - 2 - 4, 'n') + ".pfa";
        GWFont* font = read(HEADER, name.c_str());
        dir.write("fonts.dir", "0\n");
        GW_FPE fpe(dir.c_str());
        const gw::test::HeardFailures heard;
        module.make_font_visible(font, &fpe);
        EXPECT_EQ(fpe.get_fontdir_file().get_font_count(), length == 119 ? 1 : 0) << length;
        GW_FILE_SPEC(name.c_str(), dir.c_str(), 0, 0).remove();
    }
}

TEST_F(Type1, MakingVisibleEntersTheNameThatTheElementGives) {
    const std::string staging = dir.make_dir("staging");
    dir.write("staging/link/times.pfa", HEADER);
    dir.write("cd/sub/times.pfa", HEADER);
    GW_DIR linked((staging + "link").c_str());
    GW_DIR elsewhere(dir.file("cd/sub").c_str());
    module.make_font_list(fonts, &linked, 0);
    module.make_font_list(fonts, &elsewhere, 0);
    GWStagingFpe fpe(staging.c_str());
    fpe.get_fontdir_file().create();
    for (GWFont* font : fonts) module.make_font_visible(font, &fpe);
    const std::string xlfd = " -adobe-Times-Medium-i-normal--0-0-0-0-p-0-iso8859-1\n";
    EXPECT_EQ(dir.read("staging/fonts.dir"),
              "2\nlink/times.pfa" + xlfd + dir.file("cd/sub/times.pfa").substr(1) + xlfd);
    EXPECT_EQ(GW_FPE("/x/").index_name(GW_FILE_SPEC("a.pfa", "/y/", 0, 0)), "a.pfa");
}

TEST_F(Type1, DeletingRemovesOneLineAndAllFiles) {
    const gw::test::OwnCommands with_tool;
    dir.write("times.afm", "x");
    dir.write("glyphwd.upr", "old");
    GWFont* font = read(HEADER, "times.pfa");
    dir.write("fonts.dir", "3\ntimes.pfa -a\ntimes.pfa -b\nother.pfa -c\n");
    module.delete_font(font);
    EXPECT_EQ(dir.read("fonts.dir"), "2\ntimes.pfa -b\nother.pfa -c\n");
    EXPECT_FALSE(dir.exists("times.pfa"));
    EXPECT_FALSE(dir.exists("times.afm"));
    EXPECT_EQ(dir.read("glyphwd.upr"), "PS-Resources-1.0\n.\n") << "it was the last font";
}

TEST_F(Type1, AFontWithoutFilesDeletesNothing) {
    dir.write("glyphwd.upr", "old");
    GWFont font(GWFont::TYPE1_FONT);
    font.set_dir_name(dir.c_str());
    module.delete_font(&font);
    EXPECT_EQ(dir.read("glyphwd.upr"), "old");
}

// --- the real thing ----------------------------------------------------------

TEST_F(Type1, ListsTheInstallationsOwnFonts) {
    const std::string type1 = std::string(gw::SYSTEM_FONT_DIR) + "/Type1/";
    GW_FPE fpe(type1.c_str());
    module.make_installed_font_list(fonts, &fpe);
    EXPECT_EQ(fonts.get_count(), fpe.get_fontdir_file().get_font_count()) << "every entry of " << type1;
    Texts names;
    for (GWFont* font : fonts) names.push_back(font->get_hrn_name());
    for (const char* expected :
         {"Century schoolbook l Bold Italic [Type-1]", "Bitstream charter Medium [Type-1]"}) {
        EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&](const std::string& n) {
            return n.starts_with(expected);
        })) << expected;
    }
}

}  // namespace
