// SPDX-License-Identifier: MIT
#include "fontpath/gw_fpe.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

TEST(Fpe, PathsAreEqualAsTextsOnly) {
    const GW_FPE with("/fonts/");
    const GW_FPE same("/fonts/");
    const GW_FPE without("/fonts");
    EXPECT_NE(with.equal(&same), 0);
    EXPECT_EQ(with.equal(&without), 0);
    EXPECT_STREQ(without.get_element(), "/fonts");
}

TEST(Fpe, TheMetricsDirectoryIsNamedWithoutASeparator) {
    const TempDir dir;
    EXPECT_EQ(GW_FPE(dir.make_dir("a").c_str()).make_afm_dir(), 0);
    EXPECT_TRUE(dir.exists("a/afm"));
    EXPECT_NE(GW_FPE(dir.file("a/").c_str()).make_afm_dir(), 0) << "it exists";
    EXPECT_EQ(GW_FPE(dir.file("a").c_str()).make_afm_dir(), 0);
    EXPECT_TRUE(dir.exists("aafm"));
}

TEST(Fpe, ResolvesItsOwnAliases) {
    const TempDir dir;
    dir.write("fonts.dir", "1\na.pcf -a\n");
    dir.write("fonts.alias", "mine -a\nlost -b\n");
    GW_FPE fpe(dir.c_str());
    std::string font;
    const auto spec = fpe.get_alias_file_spec(font, "mine", nullptr);
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(spec->get_path(), dir.file("a.pcf"));
    EXPECT_EQ(font, "-a");
    font = "kept";
    EXPECT_EQ(fpe.get_alias_file_spec(font, "lost", nullptr), nullptr);
    EXPECT_EQ(fpe.get_alias_file_spec(font, "unknown", nullptr), nullptr);
    EXPECT_EQ(font, "kept");
}

TEST(Fpe, FindsAnAliasesFontInAnotherElement) {
    const TempDir dir;
    dir.write("one/fonts.dir", "0\n");
    dir.write("one/fonts.alias", "mine -b\n");
    dir.write("two/fonts.dir", "1\nb.pcf -b\n");
    GW_FPE one((dir.file("one") + "/").c_str());
    GW_FPE two((dir.file("two") + "/").c_str());
    GW_LIST<GW_FPE> fpes;
    fpes.append(&one);
    fpes.append(&two);
    std::string font;
    const auto spec = one.get_alias_file_spec(font, "mine", &fpes);
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(spec->get_path(), dir.file("two/b.pcf"));
    EXPECT_EQ(two.get_alias_file_spec(font, "mine", &fpes), nullptr)
        << "an element without alias file resolves none";
}

TEST(Fpe, AStagingElementNamesFilesFromItself) {
    const GWStagingFpe staging("/tmp/gw_dir/");
    EXPECT_EQ(staging.index_name(GW_FILE_SPEC("a.pcf", "/tmp/gw_dir/link/", 0, 5)), "link/a.pcf");
    EXPECT_EQ(staging.index_name(GW_FILE_SPEC("a.pcf", "/cdrom/cdrom0/sub", 0, 5)), "cdrom/cdrom0/sub/a.pcf");
}

}  // namespace
