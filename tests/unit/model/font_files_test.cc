// SPDX-License-Identifier: MIT
//
// What a font record learns from the file system: disk space, the read-only flag, copies in other
// directories, installation and deletion. Mode bits do not stop the superuser, so some results depend on the
// user.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "model/gw_font.h"
#include "unit/model/model_test_support.h"

namespace {

namespace fs = std::filesystem;

using gw::Ref;
using gw::test::make_font;
using gw::test::place;
using gw::test::RecordingModules;
using gw::test::TempDir;
using testing::ElementsAre;

constexpr const char* COURIER = "-adobe-courier-bold-o-normal--12-120-75-75-m-70-iso8859-1";
constexpr const char* SCRATCH = ".glyphwd_dummy";
constexpr uid_t SOMEONE_ELSE = 4321;

class FontFiles : public testing::Test {
  protected:
    static void set_mode(const std::string& path, mode_t mode) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0) << path;
    }
    static bool is_root() { return ::geteuid() == 0; }
    /// Whether a bitmap font of these files in `dir` is read-only.
    static bool read_only(const std::string& dir, const std::vector<std::string>& files) {
        const Ref<GWFont> font = make_font(COURIER);
        place(*font, dir, files);
        return font->is_read_only();
    }
    static unsigned kilobytes(const std::string& path) {
        struct stat info = {};
        EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
        return static_cast<unsigned>(info.st_blocks / 2);
    }

    TempDir dir;
};

using FontDiskSpace = FontFiles;

TEST_F(FontDiskSpace, IsTheSumOfTheFilesBlocksInKilobytes) {
    const std::string outline = dir.write("a.pfa", std::string(10000, 'x'));
    const std::string metrics = dir.write("afm/a.afm", std::string(70000, 'y'));
    const Ref<GWFont> font = make_font(COURIER);
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC("a.pfa", dir.c_str(), 0, gw::EXT_PFA));
    files->append(new GW_FILE_SPEC("a.afm", dir.file("afm").c_str(), 0, gw::EXT_AFM));
    font->set_font_file_list(std::move(files));
    EXPECT_EQ(font->get_disk_space(), kilobytes(outline) + kilobytes(metrics));
    EXPECT_GT(font->get_disk_space(), 70U);
}

TEST_F(FontDiskSpace, IsMeasuredOnce) {
    dir.write("a.pcf", std::string(10000, 'x'));
    const Ref<GWFont> font = make_font(COURIER);
    place(*font, dir.path(), {"a.pcf"});
    const unsigned before = font->get_disk_space();
    dir.write("a.pcf", std::string(100000, 'x'));
    EXPECT_EQ(font->get_disk_space(), before);
}

TEST_F(FontDiskSpace, CountsNothingForWhatIsMissingAndLooksAgain) {
    EXPECT_EQ(make_font(COURIER)->get_disk_space(), 0U);
    const Ref<GWFont> font = make_font(COURIER);
    place(*font, dir.path(), {"missing.pcf", "a.pcf"});
    EXPECT_EQ(font->get_disk_space(), 0U);
    const std::string path = dir.write("a.pcf", std::string(10000, 'x'));
    EXPECT_EQ(font->get_disk_space(), kilobytes(path));
}

using FontReadOnly = FontFiles;

TEST_F(FontReadOnly, IsNotAFontWithoutFiles) {
    const Ref<GWFont> font = make_font(COURIER);
    font->set_dir_name("/nonexistent");
    EXPECT_FALSE(font->is_read_only());
}

TEST_F(FontReadOnly, IsNotAWritableFontInAWritableDirectory) {
    dir.write("a.pcf", "x");
    dir.write("b.pcf", "y");
    EXPECT_FALSE(read_only(dir.path(), {"a.pcf"}));
    EXPECT_FALSE(read_only(dir.path(), {"a.pcf", "b.pcf"}));
    EXPECT_FALSE(read_only(dir.path(), {}));
}

TEST_F(FontReadOnly, LeavesNoScratchFileBehind) {
    dir.write("a.pcf", "x");
    EXPECT_FALSE(read_only(dir.path(), {"a.pcf"}));
    EXPECT_FALSE(dir.exists(SCRATCH));
    EXPECT_EQ(dir.read("a.pcf"), "x");
}

TEST_F(FontReadOnly, IsAFontInAMissingDirectoryOrWithAMissingFile) {
    dir.write("a.pcf", "x");
    EXPECT_TRUE(read_only(dir.file("missing"), {}));
    EXPECT_TRUE(read_only(dir.path(), {"missing.pcf"}));
    EXPECT_TRUE(read_only(dir.path(), {"a.pcf", "missing.pcf"}));
}

TEST_F(FontReadOnly, TakesTheFirstFilesDirectoryWhenItHasNone) {
    dir.write("a.pcf", "x");
    const Ref<GWFont> font = make_font(COURIER);
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC("a.pcf", dir.c_str(), 0, gw::EXT_PCF));
    font->set_font_file_list(std::move(files));
    ASSERT_NE(font->get_dir_name(), nullptr);
    EXPECT_EQ(font->get_dir_name(), dir.path());
    EXPECT_FALSE(font->is_read_only());
}

TEST_F(FontReadOnly, KnowsNoDirectoryOfAnEmptyFileList) {
    const Ref<GWFont> font = make_font(COURIER);
    font->set_font_file_list(std::make_unique<GW_FSPEC_LIST>());
    EXPECT_EQ(font->get_dir_name(), nullptr);
    EXPECT_FALSE(font->is_read_only());
}

TEST_F(FontReadOnly, StaysSo) {
    dir.write("a.pcf", "x");
    const Ref<GWFont> font = make_font(COURIER);
    place(*font, dir.file("missing"), {"a.pcf"});
    EXPECT_TRUE(font->is_read_only());
    place(*font, dir.path(), {"a.pcf"});
    EXPECT_TRUE(font->is_read_only());
}

TEST_F(FontReadOnly, IsComputedAgainForAnotherDirectoryAndOtherFiles) {
    dir.write("a.pcf", "x");
    const Ref<GWFont> by_dir = make_font(COURIER);
    place(*by_dir, dir.path(), {"a.pcf"});
    EXPECT_FALSE(by_dir->is_read_only());
    by_dir->set_dir_name("/nonexistent");
    EXPECT_TRUE(by_dir->is_read_only());
    const Ref<GWFont> by_files = make_font(COURIER);
    place(*by_files, dir.path(), {"a.pcf"});
    EXPECT_FALSE(by_files->is_read_only());
    place(*by_files, dir.path(), {"missing.pcf"});
    EXPECT_TRUE(by_files->is_read_only());
}

TEST_F(FontReadOnly, IsAFontWhoseOwnersWriteBitIsOff) {
    const std::string path = dir.write("a.pcf", "x");
    for (const mode_t mode : {0444U, 0466U, 0477U}) {
        set_mode(path, mode);
        EXPECT_TRUE(read_only(dir.path(), {"a.pcf"})) << std::oct << mode;
    }
    for (const mode_t mode : {0600U, 0644U, 0622U}) {
        set_mode(path, mode);
        EXPECT_FALSE(read_only(dir.path(), {"a.pcf"})) << std::oct << mode;
    }
}

// The file must be readable too: it is opened for reading and writing.
TEST_F(FontReadOnly, IsAFontThatCannotBeOpenedForBoth) {
    const std::string path = dir.write("a.pcf", "x");
    set_mode(path, 0200);
    EXPECT_EQ(read_only(dir.path(), {"a.pcf"}), ::access(path.c_str(), R_OK | W_OK) != 0);
}

TEST_F(FontReadOnly, IsADirectoryInAFilesPlace) {
    dir.make_dir("a.pcf");
    EXPECT_TRUE(read_only(dir.path(), {"a.pcf"}));
}

// A directory in which the scratch file cannot be made is read-only. The superuser can make it whatever the
// mode bits are, and then the files are not checked.
TEST_F(FontReadOnly, IsDecidedByTheScratchFileBeforeTheDirectorysBits) {
    const std::string fonts = dir.make_dir("fonts");
    set_mode(dir.write("fonts/a.pcf", "x"), 0444);
    set_mode(fonts, 0555);
    EXPECT_EQ(read_only(fonts, {"a.pcf"}), ::access(fonts.c_str(), W_OK) != 0);
    EXPECT_EQ(read_only(fonts, {"missing.pcf"}), !is_root());
    set_mode(fonts, 0755);
    EXPECT_TRUE(read_only(fonts, {"a.pcf"}));
}

TEST_F(FontReadOnly, NoticesADirectoryThatClosesBetweenTwoFonts) {
    const std::string fonts = dir.make_dir("fonts");
    dir.write("fonts/a.pcf", "x");
    EXPECT_FALSE(read_only(fonts, {"a.pcf"}));
    EXPECT_FALSE(read_only(fonts, {"a.pcf"}));
    set_mode(fonts, 0555);
    EXPECT_EQ(read_only(fonts, {"a.pcf"}), ::access(fonts.c_str(), W_OK) != 0);
    set_mode(fonts, 0755);
    EXPECT_FALSE(read_only(fonts, {"a.pcf"}));
    fs::remove_all(fonts);
    EXPECT_TRUE(read_only(fonts, {"a.pcf"}));
}

TEST_F(FontReadOnly, DoesNotFollowALinkInTheScratchFilesPlace) {
    dir.write("precious", "kept");
    dir.write("fonts/a.pcf", "x");
    fs::create_symlink(dir.file("precious"), dir.file("fonts/.glyphwd_dummy"));
    EXPECT_TRUE(read_only(dir.file("fonts"), {"a.pcf"}));
    EXPECT_EQ(dir.read("precious"), "kept");
}

// Only the bits for others count when someone else is the owner; the group's bits are never checked.
TEST_F(FontReadOnly, LooksAtTheOthersBitsOfWhatSomeoneElseOwns) {
    if (!is_root()) {
        // An ordinary user cannot make a scratch file here.
        EXPECT_TRUE(read_only("/usr/bin", {}));
        return;
    }
    const std::string path = dir.write("a.pcf", "x");
    ASSERT_EQ(::chown(path.c_str(), SOMEONE_ELSE, 0), 0);
    const struct {
        mode_t mode;
        bool expected;
    } file_cases[] = {{0644, true}, {0664, true}, {0666, false}, {0002, false}};
    for (const auto& c : file_cases) {
        set_mode(path, c.mode);
        EXPECT_EQ(read_only(dir.path(), {"a.pcf"}), c.expected) << std::oct << c.mode;
    }
    const std::string fonts = dir.make_dir("fonts");
    set_mode(dir.write("fonts/a.pcf", "x"), 0444);
    ASSERT_EQ(::chown(fonts.c_str(), SOMEONE_ELSE, 0), 0);
    for (const auto& [mode, expected] : {std::pair<mode_t, bool>{0755, false}, {0775, false}, {0777, true}}) {
        set_mode(fonts, mode);
        EXPECT_EQ(read_only(fonts, {"a.pcf"}), expected) << std::oct << mode;
    }
}

using FontCopy = FontFiles;

TEST_F(FontCopy, HasTheSameNamesAndFilesInTheOtherDirectory) {
    dir.write("a.pfb", std::string(5000, 'x'));
    dir.write("afm/a.afm", "y");
    const Ref<GWFont> font = make_font(COURIER, GWFont::TYPE1_FONT);
    font->set_ps_name("Courier-BoldOblique");
    font->set_preset_hrn_name("preset");
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC("a.pfb", dir.c_str(), gw::FILE_TYPE_REGULAR, gw::EXT_PFB));
    files->append(
        new GW_FILE_SPEC("a.afm", dir.file("afm").c_str(), gw::FILE_TYPE_UNDETERMINED, gw::EXT_AFM));
    font->set_font_file_list(std::move(files));

    const std::string other = dir.make_dir("other");
    const Ref<GWFont> copy(new GWFont(*font, other.c_str()));
    EXPECT_EQ(copy->get_type(), GWFont::TYPE1_FONT);
    EXPECT_STREQ(copy->get_xlfd_name(), COURIER);
    EXPECT_STREQ(copy->get_ps_name(), "Courier-BoldOblique");
    EXPECT_STREQ(copy->get_field(GWFont::TYPEFACE_NAME), "courier");
    EXPECT_EQ(copy->get_dir_name(), other);
    EXPECT_EQ(copy->get_disk_space(), font->get_disk_space());
    EXPECT_TRUE(copy->get_hrn_name().starts_with("Courier Bold Oblique [Type-1]"))
        << "the preset is not copied";

    ASSERT_EQ(copy->get_font_file_list()->get_count(), 2);
    const GW_FILE_SPEC* outline = copy->get_font_file_list()->get_elem_at_pos(1);
    EXPECT_EQ(outline->get_path(), other + "a.pfb");
    EXPECT_EQ(outline->get_file_type(), gw::FILE_TYPE_REGULAR);
    EXPECT_EQ(outline->get_ext_type(), gw::EXT_PFB);
    const GW_FILE_SPEC* metrics = copy->get_font_file_list()->get_elem_at_pos(2);
    EXPECT_EQ(metrics->get_path(), other + "a.afm");
    EXPECT_EQ(metrics->get_file_type(), gw::FILE_TYPE_UNDETERMINED);
    EXPECT_EQ(metrics->get_ext_type(), gw::EXT_AFM);
}

TEST_F(FontCopy, IsReadOnlyByItsOwnFilesAlone) {
    dir.write("a.pcf", "x");
    const Ref<GWFont> font = make_font(COURIER);
    place(*font, dir.path(), {"a.pcf"});
    EXPECT_TRUE(GWFont(*font, dir.make_dir("without").c_str()).is_read_only());
    dir.write("with/a.pcf", "x");
    EXPECT_FALSE(GWFont(*font, dir.file("with").c_str()).is_read_only());
    const Ref<GWFont> locked = gw::test::make_read_only_font(COURIER);
    dir.write("with/font.pcf", "x");
    EXPECT_FALSE(GWFont(*locked, dir.file("with").c_str()).is_read_only());
}

TEST_F(FontCopy, OfAFontWithoutFilesHasNone) {
    const Ref<GWFont> font = make_font("fixed");
    const GWFont copy(*font, dir.c_str());
    EXPECT_EQ(copy.get_font_file_list(), nullptr);
    EXPECT_FALSE(copy.is_read_only());
}

TEST_F(FontCopy, ComposesTheNameOfAnOriginalOfFieldsOnly) {
    GWFont font(GWFont::TYPE1_FONT);
    font.set_field(GWFont::FOUNDRY, "adobe");
    EXPECT_STREQ(GWFont(font, "/").get_xlfd_name(), "-adobe-------------");
}

using FontInstallation = FontFiles;

TEST_F(FontInstallation, MakesAnIndexAndAsksTheModuleOfItsType) {
    RecordingModules modules;
    const Ref<GWFont> font = make_font(COURIER);
    EXPECT_EQ(font->install_font(dir.c_str(), 0, modules.list), 1);
    EXPECT_EQ(dir.read("fonts.dir"), "0\n");
    EXPECT_THAT(modules.calls, ElementsAre(std::string("install ") + COURIER + ' ' + dir.path()));
}

TEST_F(FontInstallation, KeepsAnIndexThatIsThere) {
    RecordingModules modules;
    const std::string index = std::string("1\na.pcf ") + COURIER + '\n';
    dir.write("fonts.dir", index);
    EXPECT_EQ(make_font(COURIER, GWFont::TYPE1_FONT)->install_font(dir.c_str(), 'x', modules.list), 1);
    EXPECT_EQ(dir.read("fonts.dir"), index);
    EXPECT_THAT(modules.calls, ElementsAre(std::string("outline install ") + COURIER + ' ' + dir.path()));
}

TEST_F(FontInstallation, OfATypeWithoutAModuleDoesNothingMore) {
    RecordingModules modules;
    const Ref<GWFont> font = make_font("Ryumin", GWFont::TYPE0_FONT);
    EXPECT_EQ(font->install_font(dir.c_str(), 0, modules.list), 1);
    EXPECT_EQ(font->delete_font(modules.list), 0);
    EXPECT_TRUE(modules.calls.empty());
}

TEST_F(FontInstallation, IntoAMissingDirectoryIsSurvived) {
    RecordingModules modules;
    EXPECT_EQ(make_font(COURIER)->install_font(dir.file("missing").c_str(), 0, modules.list), 1);
    EXPECT_FALSE(dir.exists("missing"));
}

TEST_F(FontInstallation, DeletionAsksTheModuleAndReturnsZero) {
    RecordingModules modules;
    EXPECT_EQ(make_font(COURIER)->delete_font(modules.list), 0);
    EXPECT_THAT(modules.calls, ElementsAre(std::string("delete ") + COURIER));
}

}  // namespace
