// SPDX-License-Identifier: MIT
#include "platform/config_db.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

int open_db(const std::string& path) {
    return config_db_open(path.c_str(), 0, 1, 0, 0);
}

std::string font_path_in(const std::string& path) {
    std::string value = "(none)";
    if (open_db(path) == 0) {
        if (char* text = config_db_get_attribute("XDISPLAY", "0", "fontpath"); text != nullptr) {
            value = text;
            config_db_free_attribute(text);
        }
    }
    config_db_close(nullptr);
    return value;
}

TEST(ConfigDb, ReadsAnAttribute) {
    const TempDir dir;
    EXPECT_EQ(font_path_in(dir.write("VTconfig", "! made by hand\nXDISPLAY.0.fontpath:\t/a/,/b/\n")),
              "/a/,/b/");
    EXPECT_EQ(font_path_in(dir.write("VTconfig", "XDISPLAY.0.other:\tx\n")), "(none)");
}

TEST(ConfigDb, AMissingOrEmptyFileMayBeWrittenAndHoldsNothing) {
    const TempDir dir;
    for (const std::string& path :
         {dir.file("missing"), dir.write("empty", ""), dir.write("comment", "! only\n\n")}) {
        EXPECT_EQ(open_db(path), 1) << path;
        EXPECT_EQ(config_db_get_attribute("XDISPLAY", "0", "fontpath"), nullptr);
        EXPECT_EQ(config_db_set_attribute("XDISPLAY", "0", "fontpath", "/x/"), 0);
        EXPECT_EQ(config_db_close(path.c_str()), 0) << path;
        EXPECT_EQ(TempDir::read_bytes(path), "XDISPLAY.0.fontpath:\t/x/\n");
    }
}

TEST(ConfigDb, WhatIsNoDatabaseIsLeftAlone) {
    const TempDir dir;
    dir.write("text", "this is a letter\nto somebody else\n");
    EXPECT_NE(open_db(dir.file("text")), 0);
    EXPECT_NE(open_db(dir.file("text")), 1);
    EXPECT_NE(config_db_set_attribute("XDISPLAY", "0", "fontpath", "/x/"), 0);
    EXPECT_NE(config_db_close(dir.file("text").c_str()), 0);
    EXPECT_EQ(dir.read("text"), "this is a letter\nto somebody else\n");
    EXPECT_GT(open_db(dir.path()), 1) << "a directory";
}

// The resource manager stops reading at a NUL byte. Everything after it would be lost by the next write.
TEST(ConfigDb, AFileWithANulByteIsNoDatabase) {
    const TempDir dir;
    using namespace std::string_literals;
    const std::string bytes = "XDISPLAY.0.fontpath:\t/a/\n\0\nXDISPLAY.0.zoom:\t2\n"s;
    const std::string path = dir.write("VTconfig", bytes);
    EXPECT_GT(open_db(path), 1);
    EXPECT_NE(config_db_close(path.c_str()), 0);
    EXPECT_EQ(dir.read("VTconfig"), bytes);
}

TEST(ConfigDb, AFileThatCannotBeReadIsNoNewOne) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser reads everything";
    const TempDir dir;
    const std::string path = dir.write("VTconfig", "XDISPLAY.0.fontpath:\t/a/\n");
    ::chmod(path.c_str(), 0);
    EXPECT_GT(open_db(path), 1);
    ::chmod(dir.c_str(), 0);
    EXPECT_GT(open_db(path), 1) << "nor one in a directory that cannot be searched";
    ::chmod(dir.c_str(), 0700);
}

TEST(ConfigDb, SeparatorsInAKeyAreOnlyLetters) {
    const TempDir dir;
    const std::string path = dir.file("VTconfig");
    open_db(path);
    ASSERT_EQ(config_db_set_attribute("A*B", "0.1", "c:d", "x"), 0);
    ASSERT_EQ(config_db_close(path.c_str()), 0);
    EXPECT_EQ(dir.read("VTconfig"), "A_B.0_1.c_d:\tx\n");
}

TEST(ConfigDb, KeepsOtherAttributesAndSortsThem) {
    const TempDir dir;
    const std::string path =
        dir.write("VTconfig", "XDISPLAY.0.zoom: 2\nOTHER.1.name:\ta b\nXDISPLAY.0.fontpath: /a/\n");
    ASSERT_EQ(open_db(path), 0);
    ASSERT_EQ(config_db_set_attribute("XDISPLAY", "0", "fontpath", "/n/,/m/"), 0);
    ASSERT_EQ(config_db_close(path.c_str()), 0);
    EXPECT_EQ(dir.read("VTconfig"),
              "OTHER.1.name:\ta b\nXDISPLAY.0.fontpath:\t/n/,/m/\nXDISPLAY.0.zoom:\t2\n");
}

TEST(ConfigDb, EveryValueComesBackAsItWas) {
    const TempDir dir;
    const std::string path = dir.file("VTconfig");
    for (const std::string& value :
         {std::string("/a b/,/c/"), std::string("  leading and trailing  "), std::string("\t"),
          std::string("back\\slash\\n\\"), std::string("two\nlines\n"), std::string("!#*?\"'"),
          std::string("caf\xe9 \xc3\xa9 \x01"), std::string(5000, 'x'), std::string()}) {
        open_db(path);
        ASSERT_EQ(config_db_set_attribute("XDISPLAY", "0", "fontpath", value.c_str()), 0);
        ASSERT_EQ(config_db_close(path.c_str()), 0);
        EXPECT_EQ(font_path_in(path), value);
    }
}

TEST(ConfigDb, AProbeWritesTheBytesBackAsTheyWere) {
    const TempDir dir;
    const std::string bytes = "! a comment that stays\nXDISPLAY.0.fontpath:   /a/\n";
    const std::string path = dir.write("VTconfig", bytes);
    ASSERT_EQ(open_db(path), 0);
    EXPECT_EQ(config_db_close(path.c_str()), 0);
    EXPECT_EQ(dir.read("VTconfig"), bytes);
}

TEST(ConfigDb, DiscardsWithoutAPath) {
    const TempDir dir;
    const std::string path = dir.write("VTconfig", "XDISPLAY.0.fontpath:\t/a/\n");
    ASSERT_EQ(open_db(path), 0);
    config_db_set_attribute("XDISPLAY", "0", "fontpath", "/x/");
    EXPECT_EQ(config_db_close(nullptr), 0);
    EXPECT_EQ(font_path_in(path), "/a/");
}

TEST(ConfigDb, AFailedWriteSaysSo) {
    const TempDir dir;
    open_db(dir.file("missing/VTconfig"));
    config_db_set_attribute("XDISPLAY", "0", "fontpath", "/x/");
    EXPECT_NE(config_db_close(dir.file("missing/VTconfig").c_str()), 0);
    EXPECT_NE(config_db_close(nullptr), 0) << "nothing is open any more";
}

TEST(ConfigDb, DoesNotFollowDirectivesInTheFile) {
    const TempDir dir;
    dir.write("secret", "XDISPLAY.0.fontpath:\t/secret/\n");
    EXPECT_EQ(font_path_in(dir.write("VTconfig", "#include \"" + dir.file("secret") + "\"\nA.b.c: d\n")),
              "(none)");
}

}  // namespace
