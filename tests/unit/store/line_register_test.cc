// SPDX-License-Identifier: MIT
#include "store/line_register.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "store/directory_change.h"
#include "support/file_faults.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::LineRegister;
using gw::test::TempDir;

TEST(LineRegister, KeepsOnlyWhatCanBeALineOfOurs) {
    const std::string good = "1 2 3 4 a.pcf -a b\n";
    const std::string heading(LineRegister::HEADING);
    EXPECT_EQ(LineRegister::parse(heading + good).text(), heading + good);
    for (const char* line :
         {"1 2 3 a.pcf -a", "1 2 3 4 a.pcf", "1 2 3 4 ", "", "x", "1 2 3 4 ../a.pcf -a", "1 2 3 4 /a.pcf -a",
          "1 2 3 4 sub/a.pcf -a", "1 2 3 4 .glyphward -a", "1 2 3 4 12 -a", "1 2 3 4 a.pcf -a\x1b[2J"})
        EXPECT_EQ(LineRegister::parse(heading + line + '\n').text(), heading) << line;
    const std::string long_line = "1 2 3 4 a.pcf " + std::string(120, 'x') + '\n';
    EXPECT_EQ(LineRegister::parse(heading + long_line).text(), heading);
    EXPECT_EQ(LineRegister::parse("glyphward-lines 2\n" + good).text(), heading);
    EXPECT_EQ(LineRegister::parse("").text(), heading);
}

/// A directory in which our changes have put in "a.pcf" and "b.pcf".
class LostLines : public testing::Test {
  protected:
    LostLines() {
        dir.write("z.pcf", "Z");
        dir.write("fonts.dir", "1\nz.pcf -z\n");
        install("a.pcf");
        install("b.pcf");
        EXPECT_EQ(dir.read("fonts.dir"), "3\nz.pcf -z\na.pcf -x\nb.pcf -x\n");
    }
    void install(const std::string& name) const {
        EXPECT_TRUE(gw::test::bring_font(dir.path(), name, name, "-x"));
    }
    void remove(const std::string& name) const {
        const auto change = DirectoryChange::begin(dir.path());
        ASSERT_TRUE(change);
        (*change)->strike_out(name, 1);
        EXPECT_TRUE((*change)->take_out(name, false));
        EXPECT_TRUE((*change)->commit());
    }
    TempDir dir;
};

TEST_F(LostLines, ComeBackWithTheNextChange) {
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "4\nz.pcf -z\na.pcf -x\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, ThatWereNotOursStayAway) {
    dir.write("fonts.dir", "0\n");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "3\na.pcf -x\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, OfAFileThatHasGoneOrHasChangedAreForgotten) {
    dir.write("fonts.dir", "0\n");
    std::filesystem::remove(dir.file("a.pcf"));
    dir.write("b.pcf", "another font");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "1\nc.pcf -x\n");
    EXPECT_EQ(dir.read(".glyphward/lines").find("a.pcf"), std::string::npos);
    EXPECT_EQ(dir.read(".glyphward/lines").find("b.pcf"), std::string::npos);
}

TEST_F(LostLines, ThatSomebodyHasGivenAnotherNameAreNotDoubled) {
    dir.write("fonts.dir", "2\na.pcf -another\nb.pcf -x\n");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "3\na.pcf -another\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, OfADeletedFontStayAway) {
    remove("a.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nz.pcf -z\nb.pcf -x\n");
    dir.write("a.pcf", "a.pcf");
    dir.write("fonts.dir", "0\n");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, OfAFontThatIsDeletedNowDoNotComeBack) {
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    remove("a.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nz.pcf -z\nb.pcf -x\n");
    EXPECT_FALSE(dir.exists("a.pcf"));
}

// They would make the index longer than it is.
TEST_F(LostLines, DoNotKeepAFontFromBeingDeletedOnAFullDisk) {
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    {
        const auto change = DirectoryChange::begin(dir.path());
        ASSERT_TRUE(change);
        (*change)->strike_out("z.pcf", 1);
        EXPECT_TRUE((*change)->take_out("z.pcf", false));
        const gw::test::FileFaults faults(gw::test::FileFaults::Fault::FAIL_ONCE, 2, ENOSPC);
        EXPECT_TRUE((*change)->commit());
    }
    EXPECT_EQ(dir.read("fonts.dir"), "0\n");
    EXPECT_FALSE(dir.exists("z.pcf"));
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "3\na.pcf -x\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, ThatAreDeletedOnAFullDiskStayAway) {
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    {
        const auto change = DirectoryChange::begin(dir.path());
        ASSERT_TRUE(change);
        (*change)->strike_out("a.pcf", 1);
        EXPECT_TRUE((*change)->take_out("a.pcf", false));
        const gw::test::FileFaults faults(gw::test::FileFaults::Fault::FAIL_ONCE, 2, ENOSPC);
        EXPECT_TRUE((*change)->commit());
    }
    EXPECT_FALSE(dir.exists("a.pcf"));
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "3\nz.pcf -z\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, LeaveTheIndexItsPermissionsWhenAFontIsDeleted) {
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    ASSERT_EQ(::chmod(dir.file("fonts.dir").c_str(), 0600), 0);
    remove("z.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\na.pcf -x\nb.pcf -x\n");
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("fonts.dir").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
}

TEST_F(LostLines, DoNotComeBackWithAChangeThatFails) {
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    {
        const auto change = DirectoryChange::begin(dir.path());
        ASSERT_TRUE(change);
        (*change)->enter("d.pcf -d\n");
        (*change)->take_back_all();
    }
    EXPECT_EQ(dir.read("fonts.dir"), "1\nz.pcf -z\n");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "4\nz.pcf -z\na.pcf -x\nb.pcf -x\nc.pcf -x\n");
}

TEST_F(LostLines, OfAStrangersRegisterAreNotEntered) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
    ASSERT_EQ(::chown(dir.file(".glyphward/lines").c_str(), 1000, 1000), 0);
    dir.write("fonts.dir", "1\nz.pcf -z\n");
    install("c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nz.pcf -z\nc.pcf -x\n");
}

}  // namespace
