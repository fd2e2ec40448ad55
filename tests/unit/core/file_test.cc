// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "core/gw_buf_file.h"
#include "core/gw_dir.h"
#include "core/gw_file.h"
#include "core/gw_fspec_list.h"
#include "core/gw_reg_exp.h"
#include "core/gw_token_table.h"
#include "support/own_commands.h"
#include "support/strict_upr.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

mode_t mode_of(const std::string& path) {
    struct stat info = {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777;
}

class FileNames : public testing::Test {
  protected:
    FileNames() : table(4, 32, gw::EXT_UNKNOWN) {
        table.add_token(gw::EXT_PFA, ".pfa");
        table.add_token(gw::EXT_PCF_Z, ".pcf.Z");
    }
    GW_TOKEN_TABLE table;
};

TEST(FileSpec, ADirectoryMayBeGivenWithOrWithoutItsSlash) {
    const GW_FILE_SPEC without("a.pfa", "/x", 0, 0);
    const GW_FILE_SPEC with("a.pfa", "/x/", 0, 0);
    EXPECT_STREQ(without.get_path(), "/x/a.pfa");
    EXPECT_STREQ(with.get_path(), "/x/a.pfa");
}

TEST(FileSpec, ACopyIsOfUnknownExtension) {
    const GW_FILE_SPEC spec("a.pfa", "/x", gw::FILE_TYPE_REGULAR, gw::EXT_PFA);
    const GW_FILE_SPEC copy(&spec);
    EXPECT_EQ(copy.get_ext_type(), 7);
    EXPECT_EQ(copy.get_file_type(), 0);
    EXPECT_STREQ(copy.get_path(), "/x/a.pfa");
}

TEST(FileSpec, SameNamesInDifferentDirectoriesAreEqual) {
    const GW_FILE_SPEC one("a.pfa", "/x", 0, 0);
    const GW_FILE_SPEC other("a.pfa", "/y", 0, 0);
    EXPECT_EQ(one.equal(&other), 1);
}

TEST(FileSpec, ADanglingLinkIsMissing) {
    const TempDir dir;
    std::filesystem::create_symlink("nowhere", dir.file("link"));
    const GW_FILE_SPEC spec("link", dir.c_str(), 2, 7);
    EXPECT_EQ(spec.get_file_type_from_stat(), -1);
    EXPECT_EQ(spec.file_size(), 0);
    EXPECT_EQ(spec.exist(), 0);
}

TEST(FileSpec, WhatCannotBeLookedAtCountsAsADirectoryOfSizeOne) {
    // A name longer than the file system allows fails for everybody, the superuser included.
    const GW_FILE_SPEC spec(std::string(300, 'n').c_str(), "/tmp", 2, 7);
    EXPECT_EQ(spec.get_file_type_from_stat(), 1);
    EXPECT_EQ(spec.file_size(), 1);
    EXPECT_EQ(spec.exist(), 1);
}

TEST(FileSpec, AnEntryInAClosedDirectoryCountsAsADirectory) {
    if (::geteuid() == 0) GTEST_SKIP() << "no directory is closed to the superuser";
    const TempDir dir;
    dir.write("closed/a.pfa", "x");
    std::filesystem::permissions(dir.file("closed"), std::filesystem::perms::none);
    const GW_FILE_SPEC spec("a.pfa", dir.file("closed").c_str(), 2, 7);
    EXPECT_EQ(spec.get_file_type_from_stat(), 1);
    EXPECT_EQ(spec.file_size(), 1);
}

TEST(FileSpec, KindsOfFiles) {
    const TempDir dir;
    dir.write("regular", "12345");
    dir.make_dir("directory");
    ASSERT_EQ(::mkfifo(dir.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(GW_FILE_SPEC("regular", dir.c_str(), 2, 7).get_file_type_from_stat(), 0);
    EXPECT_EQ(GW_FILE_SPEC("regular", dir.c_str(), 2, 7).file_size(), 5);
    EXPECT_EQ(GW_FILE_SPEC("directory", dir.c_str(), 2, 7).get_file_type_from_stat(), 1);
    EXPECT_EQ(GW_FILE_SPEC("pipe", dir.c_str(), 2, 7).get_file_type_from_stat(), -1);
}

TEST(FileSpec, RemoveAnswersOneWhateverHappens) {
    const TempDir dir;
    dir.write("a.pfa", "x");
    const GW_FILE_SPEC spec("a.pfa", dir.c_str(), 0, 0);
    EXPECT_EQ(spec.remove(), 1);
    EXPECT_FALSE(dir.exists("a.pfa"));
    EXPECT_EQ(spec.remove(), 1);
}

TEST(FileSpec, TypesAreComparedWithSets) {
    GW_LIST<GW_INT> none;
    GW_LIST<GW_INT> types;
    const gw::ElementsOwner owner(types);
    types.append(new GW_INT(1));
    types.append(new GW_INT(0));
    const GW_FILE_SPEC spec("a.pfa", "/x", 0, 1);
    EXPECT_EQ(spec.file_type_equal(&types), 1);
    EXPECT_EQ(spec.file_type_equal(&none), 0);
    EXPECT_EQ(spec.ext_type_equal(&types, 0), 1);
    EXPECT_EQ(spec.ext_type_equal(&types, 1), 0);
}

TEST_F(FileNames, AreCheckedByWhatFollowsTheFirstDot) {
    const struct {
        const char* name;
        int accepted;
        int ext_type;
    } cases[] = {
        {"Foo.pfa", 1, 0},       {"x.pcf.Z", 1, 6},
        {"Foo..pfa", 1, 0},      {"Foo.Bold.pfa", 0, 7},
        {"a.b.c.d", 0, 7},       {"x.tar.gz.old", 0, 7},
        {"README", 0, 7},        {"Foo.pfb", 0, 7},
        {"Foo.PFA", 0, 7},       {"", 0, 7},
        {"\xe9t\xe9.pfa", 1, 0}, {"a b.pfa", 1, 0},
        {".pfa", 0, 7},          {"Foo.pfa\n", 1, 0},
    };
    for (const auto& c : cases) {
        int ext_type = -2;
        EXPECT_EQ(GW_DIR::file_name_check(c.name, &table, ext_type), c.accepted) << c.name;
        EXPECT_EQ(ext_type, c.ext_type) << c.name;
    }
}

std::set<std::string> names(const GW_LIST<GW_FILE_SPEC>& list) {
    std::set<std::string> all;
    for (const GW_FILE_SPEC* spec : list) all.insert(spec->get_name());
    return all;
}

TEST_F(FileNames, AListingHoldsFontsAndDirectories) {
    const TempDir dir;
    for (const char* name : {"a.pfa", "b.pcf.Z", "README", "sub/c.pfa"}) dir.write(name, "x");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    EXPECT_EQ(GW_DIR(dir.c_str()).get_dir_file_spec_list(found, &table), 1);
    EXPECT_EQ(names(found), (std::set<std::string>{"a.pfa", "b.pcf.Z", "sub"}));
    for (const GW_FILE_SPEC* spec : found) {
        const bool is_dir = std::string(spec->get_name()) == "sub";
        EXPECT_EQ(spec->get_file_type(), is_dir ? 1 : 0) << spec->get_name();
    }
}

TEST_F(FileNames, AListingWithoutTableHoldsDirectoriesOnly) {
    const TempDir dir;
    for (const char* name : {"a.pfa", "sub/c.pfa"}) dir.write(name, "x");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    EXPECT_EQ(GW_DIR(dir.c_str()).get_dir_file_spec_list(found, nullptr), 1);
    EXPECT_EQ(names(found), (std::set<std::string>{"sub"}));
}

TEST_F(FileNames, ADirectoryThatCannotBeOpenedLeavesTheListAlone) {
    GW_LIST<GW_FILE_SPEC> found;
    EXPECT_EQ(GW_DIR("/nonexistent").get_dir_file_spec_list(found, &table), 0);
    EXPECT_EQ(found.get_count(), 0);
}

TEST_F(FileNames, AMatchingListingConsidersMatchingNamesOnly) {
    const TempDir dir;
    for (const char* name : {"a.pfa", "b.pcf.Z"}) dir.write(name, "x");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    GW_REG_EXP pfa(".pfa$");
    GW_DIR(dir.c_str()).get_matching_file_spec_list(&found, &pfa, &table);
    EXPECT_EQ(names(found), (std::set<std::string>{"a.pfa"}));
}

// A directory that is the last entry when its turn comes is listed, but its subdirectories are not visited.
TEST_F(FileNames, ARecursiveListingDoesNotVisitWhatTheLastDirectoryAdds) {
    const TempDir dir;
    dir.write("sub/c.pfa", "x");
    dir.write("sub/deeper/d.pfa", "x");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    EXPECT_EQ(GW_DIR(dir.c_str()).get_file_spec_list(found, 1, &table), 1);
    EXPECT_EQ(names(found), (std::set<std::string>{"sub", "c.pfa", "deeper"}));
}

TEST_F(FileNames, ARecursiveListingDescendsBreadthFirst) {
    const TempDir dir;
    for (const char* name : {"one/a.pfa", "two/b.pfa", "one/deeper/c.pfa", "two/deeper2/d.pfa"})
        dir.write(name, "x");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    GW_DIR(dir.c_str()).get_file_spec_list(found, 1, &table);
    const std::set<std::string> all = names(found);
    for (const char* name : {"one", "two", "a.pfa", "b.pfa", "deeper", "deeper2"})
        EXPECT_TRUE(all.contains(name)) << name;
    // One of the two directories was not the last when it was visited, so at least its inner directory was
    // visited.
    EXPECT_TRUE(all.contains("c.pfa") || all.contains("d.pfa"));
}

TEST_F(FileNames, NoListingEntersOurOwnDirectory) {
    const TempDir dir;
    dir.write(".glyphward/old/0.pfa", "deleted");
    dir.write(".glyphward/a.pfa", "x");
    dir.write("b/b.pfa", "x");
    dir.make_dir("zz");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    GW_DIR(dir.c_str()).get_file_spec_list(found, 1, &table);
    EXPECT_EQ(names(found), (std::set<std::string>{"b", "b.pfa", "zz"}));
}

TEST_F(FileNames, ALinkBackDoesNotMakeARecursiveListingEndless) {
    const TempDir dir;
    dir.write("sub/a.pfa", "x");
    std::filesystem::create_directory_symlink("..", dir.file("sub/up"));
    std::filesystem::create_directory_symlink(".", dir.file("sub/here"));
    dir.make_dir("zz");
    GW_LIST<GW_FILE_SPEC> found;
    const gw::ElementsOwner owner(found);
    GW_DIR(dir.c_str()).get_file_spec_list(found, 1, &table);
    EXPECT_LE(found.get_count(), 6);
}

TEST(Dir, RebuildingTheResourceFileRemovesTheOldOneEvenWithoutATool) {
    const TempDir dir;
    const std::string strange = dir.make_dir("it's $(touch broken)");
    dir.write("it's $(touch broken)/glyphwd.upr", "old");
    dir.write("it's $(touch broken)/glyphwd.upr~", "older");
    EXPECT_EQ(GW_DIR(strange.c_str()).make_upr_file(0, nullptr), 1);
    EXPECT_NE(TempDir::read_bytes(strange + "glyphwd.upr"), "old");
    EXPECT_FALSE(std::filesystem::exists(strange + "glyphwd.upr~"));
    EXPECT_FALSE(dir.exists("broken"));
}

TEST(Dir, RebuildingTheResourceFileNamesTheFontsThatAreThere) {
    using Files = std::map<std::string, std::string>;
    const gw::test::OwnCommands with_tool;
    const TempDir dir;
    const std::string strange = dir.make_dir("it's $(touch broken)");
    const std::string work = dir.make_dir("work");
    const auto font = [&](const std::string& file, const std::string& name) {
        return dir.write("it's $(touch broken)/" + file, "%!\n/FontName /" + name + " def\n");
    };
    const auto fonts_in = [](const std::string& directory) {
        return gw::test::StrictUpr(TempDir::read_bytes(directory + "glyphwd.upr")).files("FontOutline");
    };
    Files fonts = {{"A", font("a.pfa", "A")}, {"B", font("b.pfb", "B")}};
    font("sub/c.pfa", "C");
    dir.write("it's $(touch broken)/glyphwd.upr", "old");
    EXPECT_EQ(GW_DIR(strange.c_str()).make_upr_file(0, nullptr), 1);
    EXPECT_EQ(fonts_in(strange), fonts);
    std::filesystem::remove(fonts.at("A"));
    fonts.erase("A");
    EXPECT_EQ(GW_DIR(strange.c_str()).make_upr_file(0, work.c_str()), 1);
    EXPECT_EQ(fonts_in(work), fonts) << "of the directory, in the other one";
    EXPECT_EQ(fonts_in(strange).size(), 2U) << "which stays as it is";
    EXPECT_EQ(GW_DIR(strange.c_str()).make_upr_file(1, nullptr), 1);
    EXPECT_EQ(fonts_in(strange), (Files{{"B", strange + "b.pfb"}, {"C", strange + "sub/c.pfa"}}))
        << "a full rescan goes below";
    EXPECT_FALSE(dir.exists("broken"));
}

TEST(FspecList, AnEmptyListExistsAndHasNoSize) {
    GW_FSPEC_LIST list;
    EXPECT_EQ(list.exist(), 1);
    EXPECT_EQ(list.file_size(), 0);
}

TEST(FspecList, AskingForTheSizeLeavesTheLastSizeInTheCount) {
    const TempDir dir;
    dir.write("a", "12345");
    dir.write("b", "123");
    GW_FSPEC_LIST list;
    const gw::ElementsOwner owner(list);
    for (const char* name : {"a", "b"}) list.append(new GW_FILE_SPEC(name, dir.c_str(), 0, 7));
    EXPECT_EQ(list.exist(), 1);
    EXPECT_EQ(list.file_size(), 8);
    EXPECT_EQ(list.get_count(), 3);
}

TEST(FspecList, SeparatingMakesCopiesOfUnknownExtension) {
    GW_FSPEC_LIST list;
    const gw::ElementsOwner owner(list);
    list.append(new GW_FILE_SPEC("a.pfb", "/x", 0, 1));
    list.append(new GW_FILE_SPEC("sub", "/x", 1, 7));
    list.append(new GW_FILE_SPEC("b.pfa", "/x", 0, 0));
    GW_FSPEC_LIST regular;
    const gw::ElementsOwner regular_owner(regular);
    list.separate_by_file_type(regular, 0);
    ASSERT_EQ(regular.get_count(), 2);
    EXPECT_STREQ(regular.get_elem_at_pos(1)->get_name(), "a.pfb");
    EXPECT_EQ(regular.get_elem_at_pos(1)->get_ext_type(), 7);
    EXPECT_NE(regular.get_elem_at_pos(1), list.get_elem_at_pos(1));

    GW_LIST<GW_INT> codes;
    const gw::ElementsOwner codes_owner(codes);
    codes.append(new GW_INT(0));
    codes.append(new GW_INT(1));
    GW_FSPEC_LIST by_type;
    const gw::ElementsOwner by_type_owner(by_type);
    list.separate_by_file_type(by_type, &codes);
    EXPECT_EQ(by_type.get_count(), 3);
    GW_FSPEC_LIST by_ext;
    const gw::ElementsOwner by_ext_owner(by_ext);
    list.separate_by_ext_type(by_ext, &codes, 0);
    list.separate_by_ext_type(by_ext, 1, 0);
    EXPECT_EQ(by_ext.get_count(), 3);
    GW_FSPEC_LIST by_name;
    const gw::ElementsOwner by_name_owner(by_name);
    GW_REG_EXP pfa(".pfa$");
    list.separate_by_matching_file_name(by_name, &pfa);
    EXPECT_EQ(by_name.get_count(), 1);
}

TEST(FspecList, CopiesEveryFileAndSkipsWhatIsMissing) {
    const TempDir dir;
    dir.write("from/a", "aaa");
    dir.write("from/b", "bb");
    GW_DIR target(dir.make_dir("to").c_str());
    GW_FSPEC_LIST list;
    const gw::ElementsOwner owner(list);
    for (const char* name : {"a", "missing", "b"})
        list.append(new GW_FILE_SPEC(name, dir.file("from").c_str(), 0, 7));
    EXPECT_EQ(list.copy(&target), 1);
    EXPECT_EQ(dir.read("to/a"), "aaa");
    EXPECT_EQ(dir.read("to/b"), "bb");
    EXPECT_FALSE(dir.exists("to/missing"));
}

TEST(File, WhatIsWrittenOrAppendedHasTheStandardPermissions) {
    const TempDir dir;
    const mode_t old_mask = ::umask(0077);
    for (const char* mode : {"w", "w+", "a"}) {
        GW_FILE file("f", dir.c_str(), 0);
        ASSERT_EQ(file.open(mode), 1) << mode;
        file.close();
        EXPECT_EQ(mode_of(dir.file("f")), 0644U) << mode;
        ::chmod(dir.file("f").c_str(), 0600);
    }
    ::umask(old_mask);
    GW_FILE file("f", dir.c_str(), 0);
    ASSERT_EQ(file.open("r+"), 1);
    EXPECT_EQ(mode_of(dir.file("f")), 0600U);
}

TEST(File, AnOpenFileRefusesToBeOpenedAgainAndStaysOpen) {
    const TempDir dir;
    dir.write("f", "line\n");
    GW_FILE file("f", dir.c_str(), 0);
    ASSERT_EQ(file.open("r"), 1);
    EXPECT_EQ(file.open("w"), 0);
    char line[16];
    EXPECT_STREQ(file.get_line(line, sizeof line), "line\n");
}

TEST(File, AMissingFileIsNotOpened) {
    GW_FILE file("f", "/nonexistent", 0);
    EXPECT_EQ(file.open("r"), 0);
    char line[16];
    EXPECT_EQ(file.get_line(line, sizeof line), nullptr);
    EXPECT_EQ(file.read(line, 3), 0);
    EXPECT_EQ(file.write("abc", 3), 0);
}

TEST(File, SeekingAnswersOneWhateverHappens) {
    const TempDir dir;
    dir.write("f", "line\n");
    GW_FILE file("f", dir.c_str(), 0);
    EXPECT_EQ(file.seek(2, SEEK_SET), 1) << "the file is closed";
    ASSERT_EQ(file.open("r"), 1);
    EXPECT_EQ(file.seek(-7, SEEK_SET), 1);
    EXPECT_EQ(file.get_pos(), 0);
}

TEST(File, ALongLineComesInPieces) {
    const TempDir dir;
    dir.write("f", "abcdefg\nx\n");
    GW_FILE file("f", dir.c_str(), 0);
    ASSERT_EQ(file.open("r"), 1);
    char line[5];
    EXPECT_STREQ(file.get_line(line, sizeof line), "abcd");
    EXPECT_STREQ(file.get_line(line, sizeof line), "efg\n");
    EXPECT_STREQ(file.get_line(line, sizeof line), "x\n");
    EXPECT_EQ(file.get_line(line, sizeof line), nullptr);
}

TEST(File, LinesAreReadAndWrittenAtOffsets) {
    const TempDir dir;
    dir.write("f", "aaa\nbbb\n");
    GW_FILE file("f", dir.c_str(), 0);
    ASSERT_EQ(file.open("r+"), 1);
    EXPECT_EQ(file.put_line_at_pos("ccc\n", 4), 8);
    char line[8];
    EXPECT_STREQ(file.get_line_at_pos(line, sizeof line, 4), "ccc\n");
    EXPECT_EQ(dir.read("f"), "aaa\nccc\n");
}

TEST(BufFile, CopiesAcrossItsBufferAndWithStandardPermissions) {
    const TempDir dir;
    GW_DIR target(dir.make_dir("to").c_str());
    for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 5000U}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7);
        dir.write("from/f", bytes);
        GW_BUF_FILE file("f", dir.file("from").c_str(), 0);
        EXPECT_EQ(file.copy(&target), 1);
        EXPECT_EQ(dir.read("to/f"), bytes) << size;
        EXPECT_EQ(mode_of(dir.file("to/f")), 0644U) << size;
    }
}

TEST(BufFile, IsNotCopiedOntoItself) {
    const TempDir dir;
    dir.write("f", "content");
    GW_DIR same(dir.c_str());
    EXPECT_EQ(GW_BUF_FILE("f", dir.c_str(), 0).copy(&same), 1);
    EXPECT_EQ(dir.read("f"), "content");
}

TEST(BufFile, ASourceThatCannotBeOpenedIsSkippedSilently) {
    const TempDir dir;
    GW_DIR target(dir.c_str());
    EXPECT_EQ(GW_BUF_FILE("f", "/nonexistent", 0).copy(&target), 1);
    EXPECT_FALSE(dir.exists("f"));
}

}  // namespace
