// SPDX-License-Identifier: MIT
#include "model/gw_font.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "model/gw_alias.h"
#include "model/gw_xlfd_name.h"
#include "model/hrn_words.h"
#include "support/font_maker.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

constexpr const char* TIMES = "-adobe-times-bold-i-normal--12-120-75-75-p-68-iso8859-1";

/// A font on the stack with that XLFD name.
struct Font : GWFont {
    explicit Font(const std::string& xlfd, GW_FONT_TYPE type = TYPE1_FONT) : GWFont(type) {
        set_xlfd_name(xlfd.c_str());
    }
};

TEST(XlfdName, HasExactlyFourteenDashes) {
    EXPECT_EQ(is_xlfd_name(TIMES), 1);
    EXPECT_EQ(is_xlfd_name("-------------"), 0);
    EXPECT_EQ(is_xlfd_name("--------------"), 1);
    EXPECT_EQ(is_xlfd_name("---------------"), 0);
    EXPECT_EQ(is_xlfd_name("fixed"), 0);
    EXPECT_EQ(is_xlfd_name(""), 0);
}

TEST(XlfdName, IsHandedOutFieldByField) {
    const char* expected[] = {"adobe", "times", "bold", "i", "normal", "",        "12",
                              "120",   "75",    "75",   "p", "68",     "iso8859", "1"};
    const char* source = TIMES;
    for (const char* field : expected) {
        EXPECT_STREQ(extract_next_field(source), field);
        source = nullptr;
    }
    EXPECT_STREQ(extract_next_field(nullptr), "1") << "the last field comes again";
}

TEST(XlfdName, AnotherKindOfNameHasNoFields) {
    EXPECT_STREQ(extract_next_field("fixed"), "");
}

TEST(XlfdName, AFieldIsBounded) {
    const std::string name = '-' + std::string(1500, 'x') + "-b-c-d-e-f-g-h-i-j-k-l-m-n";
    EXPECT_EQ(std::string(extract_next_field(name.c_str())).size(), 999U);
    EXPECT_STREQ(extract_next_field(nullptr), "b");
}

TEST(Font, AFieldHoldsNoDashAndIsBounded) {
    GWFont font(GWFont::TYPE1_FONT);
    font.set_field(GWFont::SETWIDTH_NAME, "semi-condensed");
    EXPECT_STREQ(font.get_field(GWFont::SETWIDTH_NAME), "semi condensed");
    EXPECT_EQ(is_xlfd_name(font.get_xlfd_name()), 1);
    font.set_field(GWFont::FOUNDRY, std::string(500, 'x').c_str());
    EXPECT_EQ(std::string(font.get_field(GWFont::FOUNDRY)).size(), 127U);
}

TEST(Font, AWrongFieldIsReportedByBothWithTheSameWords) {
    GWFont font(GWFont::TYPE1_FONT);
    for (const int wrong : {-1, 14, 99}) {
        testing::internal::CaptureStdout();
        font.set_field(static_cast<GWFont::FIELD>(wrong), "x");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "GWFont::set_field : Incorrect field specified\n");
        testing::internal::CaptureStdout();
        EXPECT_EQ(font.get_field(static_cast<GWFont::FIELD>(wrong)), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "GWFont::set_field : Incorrect field specified\n");
    }
}

TEST(Font, ANameThatIsNoXlfdNameLeavesTheFields) {
    Font font(TIMES);
    for (const char* name : {"-a-b-c-d-e-f-g-h-i-j-k-l-m", "-a-b-c-d-e-f-g-h-i-j-k-l-m-n-o", "fixed"}) {
        font.set_xlfd_name(name);
        EXPECT_STREQ(font.get_xlfd_name(), name);
        EXPECT_STREQ(font.get_field(GWFont::TYPEFACE_NAME), "times") << name;
    }
}

TEST(Font, ALongNameIsBounded) {
    Font font(std::string(5000, 'x'));
    EXPECT_EQ(std::string(font.get_xlfd_name()).size(), 1792U);
}

TEST(Font, ComposesItsNameFromTheFields) {
    GWFont font(GWFont::TYPE1_FONT);
    font.set_field(GWFont::FOUNDRY, "adobe");
    font.set_field(GWFont::TYPEFACE_NAME, "times");
    EXPECT_STREQ(font.get_xlfd_name(), "-adobe-times------------");
}

TEST(Font, ConstructsItsNameWhereItFits) {
    Font font(TIMES, GWFont::BITMAP_FONT);
    char name[200] = "";
    font.construct_xlfd_name(nullptr, name, sizeof name - 1);
    EXPECT_STREQ(name, TIMES);
    char small[10] = "as it was";
    testing::internal::CaptureStdout();
    font.construct_xlfd_name(nullptr, small, sizeof small - 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Not enough space in the xlfd_name string\n");
    EXPECT_STREQ(small, "as it was");
}

TEST(Font, ConstructingCopiesABitmapFontsAliasBack) {
    Font font("fixed", GWFont::BITMAP_FONT);
    char name[200] = "";
    font.construct_xlfd_name(nullptr, name, sizeof name - 1);
    EXPECT_STREQ(name, "fixed");
    EXPECT_EQ(font.get_hrn_name(), "fixed  [Bitmap]");
    EXPECT_EQ(font.get_cli_hrn_name(), "[fixed  Bitmap]");
}

TEST(Font, HasAReadableName) {
    const struct {
        const char* xlfd;
        GWFont::GW_FONT_TYPE type;
        const char* hrn;
        const char* cli;
    } cases[] = {
        {"-adobe-helvetica-bold-o-normal--0-0-0-0-p-0-iso8859-1", GWFont::TYPE1_FONT,
         "Helvetica Bold Oblique [Type-1]", "[Adobe Helvetica Bold Oblique ISO-Latin-1 Type-1]"},
        {"-adobe-times-bold-i-normal--0-0-0-0-p-0-ISO8859-1", GWFont::TYPE1_FONT,
         "Times Bold Italic [Type-1]", "[Adobe Times Bold Italic ISO-Latin-1 Type-1]"},
        {"-b&h-lucidatypewriter-medium-r-normal-sans-12-120-75-75-m-70-koi8-r", GWFont::BITMAP_FONT,
         "Lucidatypewriter Medium Sans [Bitmap]", "[B&h Lucidatypewriter Medium Sans koi8-r Bitmap]"},
        {"-x-fam-demi-RI-semi--0-0-0-0-p-0-jisx0208.1983-0", GWFont::TYPE1_FONT,
         "Fam Demi Reverse Italic [Type-1]", "[X Fam Demi Reverse Italic Kanji-1983 Type-1]"},
        {"-x-fam-demi-ro-semi- odd-0-0-0-0-p-0-a-b", GWFont::TYPE1_FONT, "Fam Demi Reverse Oblique [Type-1]",
         "[X Fam Demi Reverse Oblique a-b Type-1]"},
        {"-x-fam-demi-ot-semi--0-0-0-0-p-0-a-b", GWFont::TYPE1_FONT, "Fam Demi ot [Type-1]",
         "[X Fam Demi ot a-b Type-1]"},
        {"-x--demi-r-semi--0-0-0-0-p-0-a-b", GWFont::TYPE1_FONT, " Demi [Type-1]", "[X  Demi a-b Type-1]"},
    };
    for (const auto& c : cases) {
        Font font(c.xlfd, c.type);
        EXPECT_EQ(font.get_hrn_name(), c.hrn) << c.xlfd;
        EXPECT_EQ(font.get_cli_hrn_name(), c.cli) << c.xlfd;
    }
}

TEST(Font, TheSetWidthNeverReachesTheReadableName) {
    EXPECT_EQ(Font("-x-fam-bold-r-condensed--0-0-0-0-p-0-a-b").get_hrn_name(), "Fam Bold [Type-1]");
}

TEST(Font, PostScriptFontsAreKnownByTheirPostScriptName) {
    GWFont type0(GWFont::TYPE0_FONT);
    type0.set_ps_name("ryumin-Light");
    EXPECT_EQ(type0.get_hrn_name(), "Ryumin-Light [Type-0]");
    EXPECT_EQ(type0.get_cli_hrn_name(), "[Ryumin-Light Type-0]");
    GWFont type3(GWFont::TYPE3_FONT);
    type3.set_ps_name("Doodle");
    EXPECT_EQ(type3.get_hrn_name(), "Doodle [Type-3]");
}

TEST(Font, APresetNameStandsForEveryReadableName) {
    Font font(TIMES);
    font.set_preset_hrn_name("My font");
    EXPECT_EQ(font.get_hrn_name(), "My font");
    EXPECT_EQ(font.get_cli_hrn_name(), "My font");
}

TEST(Font, AnUnknownTypeEndsTheProgram) {
    EXPECT_EXIT(GWFont(static_cast<GWFont::GW_FONT_TYPE>(9)).get_hrn_name(), testing::ExitedWithCode(255),
                "");
}

TEST(Font, KnowsTheReadableNamesOfCharsets) {
    EXPECT_STREQ(Font("-x-f-m-r-n--0-0-0-0-p-0-iso8859-1").get_charset_hrn_name(), " ISO-Latin-1");
    EXPECT_STREQ(Font("-x-f-m-r-n--0-0-0-0-p-0-KSC5601.1987-1").get_charset_hrn_name(), " Korean-1987-1");
    EXPECT_STREQ(Font("-x-f-m-r-n--0-0-0-0-p-0-koi8-r").get_charset_hrn_name(), " koi8-r");
}

TEST(Font, TheReadOnlyMarkStandsAtColumn46) {
    std::string name = "0123456789";
    set_read_only_str(name);
    EXPECT_EQ(name, "0123456789" + std::string(36, ' ') + "[Read Only]");
    for (const std::size_t length : {46U, 50U}) {
        name = std::string(length, 'x');
        set_read_only_str(name);
        EXPECT_EQ(name, std::string(length, 'x') + "   [Read Only]");
    }
    name = std::string(45, 'x');
    set_read_only_str(name);
    EXPECT_EQ(name, std::string(45, 'x') + " [Read Only]");
}

TEST(Font, FontsOfOneReadableNameDifferInSizesOnly) {
    Font font(TIMES);
    Font other_size("-adobe-times-bold-i-normal--24-240-100-100-p-130-iso8859-1");
    EXPECT_EQ(font.compare_hrn(&other_size), 1);
    EXPECT_EQ(font.fontcmp(&other_size), 0);
    EXPECT_EQ(font.hrn_key(), other_size.hrn_key());
    for (const char* different : {"-urw-times-bold-i-normal--12-120-75-75-p-68-iso8859-1",
                                  "-adobe-times-bold-i-condensed--12-120-75-75-p-68-iso8859-1",
                                  "-adobe-times-bold-i-normal--12-120-75-75-m-68-iso8859-1",
                                  "-adobe-times-bold-i-normal--12-120-75-75-p-68-iso8859-2"}) {
        Font other(different);
        EXPECT_EQ(font.compare_hrn(&other), 0) << different;
        EXPECT_NE(font.hrn_key(), other.hrn_key()) << different;
    }
    Font shouting("-ADOBE-Times-BOLD-I-normal--12-120-75-75-P-68-ISO8859-1");
    EXPECT_EQ(font.compare_hrn(&shouting), 1);
    EXPECT_EQ(font.fontcmp(&shouting), 1);
    Font bitmap(TIMES, GWFont::BITMAP_FONT);
    EXPECT_EQ(font.compare_hrn(&bitmap), 0);
    EXPECT_EQ(font.fontcmp(&bitmap), 0);
}

TEST(Font, PostScriptFontsAreComparedByPostScriptName) {
    GWFont one(GWFont::TYPE3_FONT);
    GWFont other(GWFont::TYPE3_FONT);
    one.set_ps_name("Doodle");
    other.set_ps_name("DOODLE");
    EXPECT_EQ(one.fontcmp(&other), 1);
}

class FontFiles : public testing::Test {
  protected:
    FontFiles() { dir.write("a.pfa", std::string(5000, 'x')); }
    void give_file(const char* name) { gw::test::give_file(font, name, dir.c_str()); }
    TempDir dir;
    Font font{TIMES};
};

TEST_F(FontFiles, DiskSpaceIsTheFilesBlocks) {
    EXPECT_EQ(font.get_disk_space(), 0U) << "without files";
    give_file("a.pfa");
    struct stat info {};
    ASSERT_EQ(::stat(dir.file("a.pfa").c_str(), &info), 0);
    EXPECT_EQ(font.get_disk_space(), static_cast<unsigned>(info.st_blocks) / 2);
    dir.write("a.pfa", std::string(50000, 'x'));
    EXPECT_EQ(font.get_disk_space(), static_cast<unsigned>(info.st_blocks) / 2) << "measured once";
}

TEST_F(FontFiles, AMissingFileTakesNoSpaceAndMakesTheFontReadOnly) {
    give_file("missing.pfa");
    EXPECT_EQ(font.get_disk_space(), 0U);
    EXPECT_TRUE(font.is_read_only());
    give_file("a.pfa");
    EXPECT_TRUE(font.is_read_only()) << "once read-only, always read-only";
}

TEST_F(FontFiles, AWritableFontIsNotReadOnlyAndLeavesNoTrace) {
    give_file("a.pfa");
    EXPECT_FALSE(font.is_read_only());
    EXPECT_FALSE(dir.exists(".glyphwd_dummy"));
    EXPECT_EQ(font.get_hrn_name(), "Times Bold Italic [Type-1]");
}

TEST_F(FontFiles, AFileWithoutTheOwnersWriteBitIsReadOnlyForEverybody) {
    std::filesystem::permissions(dir.file("a.pfa"), std::filesystem::perms::owner_read);
    give_file("a.pfa");
    EXPECT_TRUE(font.is_read_only());
    EXPECT_EQ(font.get_hrn_name(), "Times Bold Italic [Type-1]" + std::string(20, ' ') + "[Read Only]");
}

TEST_F(FontFiles, InAMissingDirectoryTheFontIsReadOnly) {
    gw::test::give_file(font, "a.pfa", "/nonexistent");
    EXPECT_TRUE(font.is_read_only());
}

TEST_F(FontFiles, InAClosedDirectoryTheFontIsReadOnlyForAnOrdinaryUser) {
    if (::geteuid() == 0) GTEST_SKIP() << "no directory is closed to the superuser";
    ::chmod(dir.c_str(), 0555);
    give_file("a.pfa");
    EXPECT_TRUE(font.is_read_only());
    ::chmod(dir.c_str(), 0755);
}

// A scratch file that could be made outweighs the directory's bits, and the files are not looked at then.
TEST_F(FontFiles, ADirectoryOpenInSpiteOfItsBitsIsWritable) {
    if (::geteuid() != 0) GTEST_SKIP() << "bits bind an ordinary user";
    ::chmod(dir.c_str(), 0555);
    give_file("missing.pfa");
    EXPECT_FALSE(font.is_read_only());
}

TEST_F(FontFiles, TheDirectoryNameComesFromTheFirstFileWhenThereIsNone) {
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC("a.pfa", dir.c_str(), 0, 0));
    font.set_font_file_list(std::move(files));
    EXPECT_STREQ(font.get_dir_name(), dir.c_str());
}

TEST_F(FontFiles, ACopyLivesInItsNewDirectory) {
    give_file("a.pfa");
    font.set_ps_name("Times");
    const std::string target = dir.make_dir("to");
    dir.write("to/a.pfa", "x");
    GWFont copy(font, target.c_str());
    EXPECT_STREQ(copy.get_xlfd_name(), TIMES);
    EXPECT_STREQ(copy.get_ps_name(), "Times");
    EXPECT_STREQ(copy.get_dir_name(), target.c_str());
    EXPECT_STREQ((*copy.get_font_file_list()->begin())->get_path(), (target + "a.pfa").c_str());
    EXPECT_FALSE(copy.is_read_only());
    EXPECT_EQ(copy.get_disk_space(), font.get_disk_space());
}

TEST_F(FontFiles, InstallingMakesAnIndexAndAsksTheModule) {
    gw::test::RecordingModule module(GWFont::TYPE1_FONT);
    GW_FSM_LIST modules;
    modules.append(&module);
    gw::test::RecordingModule::calls().clear();
    const std::string target = dir.make_dir("to");
    EXPECT_EQ(font.install_font(target.c_str(), 0, modules), 1);
    EXPECT_EQ(dir.read("to/fonts.dir"), "0\n");
    EXPECT_EQ(font.delete_font(modules), 0);
    EXPECT_EQ(gw::test::RecordingModule::calls(),
              (std::vector<std::string>{std::string("install ") + TIMES + " " + target,
                                        std::string("delete ") + TIMES}));
}

TEST(FontMemory, IsObtainedAndReleased) {
    auto* text = static_cast<char*>(gw_alloc(4));
    text[3] = 'x';
    EXPECT_EQ(text[3], 'x');
    gw_free(text);
}

TEST(FontList, IsSortedByTheBracketedName) {
    Font one("-urw-courier-medium-r-normal--0-0-0-0-m-0-iso8859-1");
    Font other("-Adobe-courier-medium-r-normal--0-0-0-0-m-0-iso8859-1");
    GW_SORTED_LIST<GWFont> list(0);
    list.insert(&one);
    list.insert(&other);
    EXPECT_EQ(list.get_elem_at_pos(1), &other);
}

TEST(Alias, ThatIsNoXlfdNameIsShownAsItStands) {
    const GWAlias alias("fixed", "-misc-fixed-medium-r-normal--13-120-75-75-c-60-iso8859-1", "/fonts/");
    EXPECT_STREQ(alias.get_hrn_name(), ("fixed [Alias]" + std::string(33, ' ') + "[Read Only]").c_str());
    EXPECT_STREQ(alias.get_font_hrn_name(), ("Fixed Medium" + std::string(34, ' ') + "[Read Only]").c_str());
    EXPECT_STREQ(alias.get_alias_name(), "fixed");
    EXPECT_STREQ(alias.get_dir_name(), "/fonts/");
}

TEST(Alias, ForAFontWithoutXlfdNameShowsThatNameWithoutAMark) {
    EXPECT_STREQ(GWAlias("a", "fixed", "/").get_font_hrn_name(), "fixed");
}

TEST(Alias, AnXlfdAliasIsShownReadably) {
    const GWAlias upright("-x-fam-bold-R-condensed-sans-0-0-0-0-p-0-a-b", "fixed", "/");
    EXPECT_STREQ(upright.get_hrn_name(),
                 ("Fam Bold Sans [Alias]" + std::string(25, ' ') + "[Read Only]").c_str());
    const GWAlias weightless("-x-fam--O-normal--0-0-0-0-p-0-a-b", "fixed", "/");
    EXPECT_EQ(std::string(weightless.get_hrn_name()).substr(0, 20), "Fam  Oblique [Alias]");
}

TEST(Alias, ALongNameIsFollowedByTheMark) {
    const std::string name(50, 'n');
    EXPECT_STREQ(GWAlias(name.c_str(), "f", "/").get_hrn_name(), (name + " [Alias]   [Read Only]").c_str());
}

TEST(Alias, NamesThatDifferInCaseOnlyAreEqual) {
    const GWAlias lower("variable", "a", "/x/");
    const GWAlias upper("VARIABLE", "b", "/y/");
    EXPECT_EQ(lower.compare(&upper), 0);
}

}  // namespace
