// SPDX-License-Identifier: MIT
#include "diagnosis/index_cure.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "support/bitmap_maker.h"
#include "support/put_file.h"
#include "support/sfnt_maker.h"
#include "support/small_disk.h"
#include "support/under_policy.h"
#include "unit/cures/cure_fixture.h"

namespace {

using gw::Reason;
using gw::diagnosis::Cure;
using gw::diagnosis::Remedy;
using gw::diagnosis::Said;
using gw::test::BitmapMaker;
using gw::test::Cures;
using gw::test::is_root;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* BOXES = "-misc-boxes-medium-r-normal--8-80-75-75-c-80-iso10646-1";

/// With the letters that mkfontscale wants for a Latin encoding.
std::string sfnt() {
    gw::test::SfntMaker maker;
    maker.names = gw::test::windows_names("Outlined");
    maker.characters.clear();
    maker.charmap = 1;
    for (char32_t code = 0x20; code < 0x100; ++code) {
        if (code < 0x7F || code >= 0xA0) maker.characters += code;
    }
    return maker.make();
}

class IndexCure : public Cures {
  protected:
    IndexCure() {
        dir = home.make_dir("fonts");
        write("boxes.bdf", BitmapMaker{}.make_bdf());
    }
    void write(const std::string& name, const std::string& bytes) const {
        home.write("fonts/" + name, bytes);
    }
    [[nodiscard]] std::string index() const { return home.read("fonts/fonts.dir"); }
    [[nodiscard]] std::string scalable() const { return home.read("fonts/fonts.scale"); }
    [[nodiscard]] Cure making() const { return {.remedy = Remedy::MAKE_INDEX, .element = dir}; }

    std::string dir;
    gw::test::UnderPolicy modern{true};
};

TEST_F(IndexCure, WhereThereIsNoneItIsMadeAndGoesAgain) {
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what.said, Said::DONE_MADE_INDEX);
    EXPECT_THAT(deed->what.details, ElementsAre(dir, "1"));
    EXPECT_THAT(deed->remarks, IsEmpty());
    EXPECT_EQ(index(), "1\nboxes.bdf " + std::string(BOXES) + '\n');
    ASSERT_TRUE(deed->undo());
    EXPECT_FALSE(home.exists("fonts/fonts.dir"));
    EXPECT_FALSE(home.exists("fonts/fonts.scale"));
    EXPECT_EQ(home.read("fonts/boxes.bdf"), BitmapMaker{}.make_bdf());
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

TEST_F(IndexCure, WhatSomebodyHasWrittenAboutFilesThatAreThereStays) {
    write("hand.pcf", "no font, but listed");
    const std::string old =
        "7\nhand.pcf -my-own-name\ngone.pcf -gone\nhand.pcf fixed-too\n:1:hand.pcf -face\n:1:gone.ttc "
        "-gone\n";
    write("fonts.dir", old);
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(index(), "4\nhand.pcf -my-own-name\nhand.pcf fixed-too\n:1:hand.pcf -face\nboxes.bdf " +
                           std::string(BOXES) + '\n');
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(index(), old);
}

TEST_F(IndexCure, ABrokenIndexIsMadeSoundAndItsSoundLinesStay) {
    write("hand.pcf", "listed");
    const std::string expected = "2\nhand.pcf -hand\nboxes.bdf " + std::string(BOXES) + '\n';
    for (const std::string& old :
         {std::string("hand.pcf -hand\n"), std::string("nonsense\nhand.pcf -hand\n"),
          std::string("\nhand.pcf -hand\n"), std::string("2\nhand.pcf -hand\nhand.pcf\n"),
          std::string("2\nhand.pcf -hand\nhand.pcf -hand\n"), std::string("99999999999999\nhand.pcf -hand"),
          std::string("1\nhand.pcf -hand\nhand.pcf -b\x01") + "d\n" + std::string(3000, 'x') + " y\n",
          std::string("1\n../fonts -hand\nhand.pcf -hand\n/etc -x\n")}) {
        write("fonts.dir", old);
        const auto deed = carry_out(making());
        ASSERT_TRUE(deed) << deed.failure().text();
        EXPECT_EQ(index(), expected) << old;
        ASSERT_TRUE(deed->undo()) << old;
        EXPECT_EQ(index(), old);
    }
}

TEST_F(IndexCure, ABinaryIndexIsMadeAnew) {
    std::string garbage;
    for (int i = 0; i < 4096; ++i) garbage += static_cast<char>(i * 7);
    write("fonts.dir", garbage);
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(index(), "1\nboxes.bdf " + std::string(BOXES) + '\n');
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(index(), garbage);
}

TEST_F(IndexCure, OutlinesComeToFontsScaleToo) {
    write("outlined.ttf", sfnt());
    write("fonts.scale", "2\ngone.ttf -gone\nboxes.bdf -kept-although-strange\n");
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(index(), HasSubstr("outlined.ttf -"));
    EXPECT_THAT(scalable(), HasSubstr("outlined.ttf -"));
    EXPECT_THAT(scalable(), HasSubstr("boxes.bdf -kept"));
    EXPECT_THAT(scalable(), Not(HasSubstr("gone.ttf")));
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(scalable(), "2\ngone.ttf -gone\nboxes.bdf -kept-although-strange\n");
    EXPECT_FALSE(home.exists("fonts/fonts.dir"));
}

TEST_F(IndexCure, WithoutTodaysFontsFontsScaleIsLeftAlone) {
    const gw::test::UnderPolicy classic(false);
    write("outlined.ttf", sfnt());
    write("fonts.scale", "0\n");
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed);
    EXPECT_EQ(scalable(), "0\n");
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(scalable(), "0\n");
}

TEST_F(IndexCure, MkfontdirFindsNothingToAdd) {
    write("outlined.ttf", sfnt());
    ASSERT_TRUE(carry_out(making()));
    ASSERT_THAT(index(), HasSubstr("outlined.ttf -"));
    std::set<std::string> ours;
    for (std::ifstream in(dir + "fonts.dir"); in;) {
        std::string line;
        std::getline(in, line);
        ours.insert(line);
    }
    ASSERT_EQ(std::system(("mkfontscale " + dir + " && mkfontdir " + dir).c_str()), 0);
    std::set<std::string> theirs;
    for (std::ifstream in(dir + "fonts.dir"); in;) {
        std::string line;
        std::getline(in, line);
        theirs.insert(line);
    }
    EXPECT_EQ(ours, theirs);
}

TEST_F(IndexCure, ANameThatAnotherFileHasIsNotGivenTwice) {
    write("again.bdf", BitmapMaker{}.make_bdf());
    ASSERT_TRUE(carry_out(making()));
    EXPECT_EQ(index(), "1\nagain.bdf " + std::string(BOXES) + '\n');
}

TEST_F(IndexCure, AFileThatNoIndexCanNameIsSaid) {
    write("two words.bdf", BitmapMaker{.family = "Words"}.make_bdf());
    write(".hidden.bdf", BitmapMaker{.family = "Hidden"}.make_bdf());
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed);
    ASSERT_THAT(deed->remarks, SizeIs(1));
    EXPECT_EQ(deed->remarks[0].said, Said::LEFT_OUT_OF_INDEX);
    EXPECT_THAT(deed->remarks[0].details, ElementsAre("two words.bdf"));
    EXPECT_EQ(index(), "1\nboxes.bdf " + std::string(BOXES) + '\n');
}

// A server refuses to open a bitmap font through a link, and follows one to an outline.
TEST_F(IndexCure, WhatServersDoNotOpenIsNotInIt) {
    home.write("else/linked.bdf", BitmapMaker{.family = "Linked"}.make_bdf());
    home.write("else/linked.ttf", sfnt());
    for (const char* name : {"linked.bdf", "linked.ttf"})
        std::filesystem::create_symlink("../else/" + std::string(name), dir + name);
    write("empty.pcf", "");
    write("fonts.dir", "3\nlinked.bdf -linked\nempty.pcf -empty\n/etc/passwd -absolute\n");
    ASSERT_TRUE(carry_out(making()));
    EXPECT_THAT(index(), HasSubstr("boxes.bdf"));
    EXPECT_THAT(index(), HasSubstr("linked.ttf"));
    for (const char* name : {"linked.bdf", "empty.pcf", "passwd"}) EXPECT_THAT(index(), Not(HasSubstr(name)));
}

TEST_F(IndexCure, ADirectoryOfTheServerIsRereadAndAConfiguredOneIsServed) {
    server.path = {"built-ins", dir};
    ASSERT_TRUE(carry_out(making()));
    EXPECT_EQ(server.path_changes, 1);
    server.path = {"built-ins"};
    configure_before(dir + ":unscaled");
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed);
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir + ":unscaled"));
    EXPECT_THAT(after_login(), Contains(dir + ":unscaled"));
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
}

TEST_F(IndexCure, ItsTimeMovesOnSoThatServersRereadIt) {
    write("fonts.dir", "1\nboxes.bdf " + std::string(BOXES) + '\n');
    const auto before = std::filesystem::last_write_time(dir + "fonts.dir");
    ASSERT_TRUE(carry_out(making()));
    EXPECT_GE(std::filesystem::last_write_time(dir + "fonts.dir") - before, std::chrono::seconds(0));
    EXPECT_NE(std::filesystem::last_write_time(dir + "fonts.dir"), before);
}

TEST_F(IndexCure, TheModeOfTheIndexStays) {
    write("fonts.dir", "0\n");
    ::chmod((dir + "fonts.dir").c_str(), 0660);
    ASSERT_TRUE(carry_out(making()));
    struct stat info = {};
    ASSERT_EQ(::stat((dir + "fonts.dir").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0660U);
}

TEST_F(IndexCure, AnIndexThatSomebodyElseHasWrittenMeanwhileStays) {
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed);
    ASSERT_TRUE(gw::test::bring_font(dir, "new.pcf", "new", "-new"));
    const std::string now = index();
    EXPECT_EQ(deed->undo().failure().reason, Reason::CHANGED_SINCE);
    EXPECT_EQ(index(), now);
    EXPECT_EQ(home.read("fonts/new.pcf"), "new");
}

TEST_F(IndexCure, ADirectoryThatHasGoneIsSaid) {
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed);
    std::filesystem::remove_all(dir);
    EXPECT_TRUE(deed->undo().failure().is_absence());
    EXPECT_TRUE(carry_out(making()).failure().is_absence());
}

TEST_F(IndexCure, WhereThisUserMayNotWriteNothingIsChanged) {
    if (is_root()) GTEST_SKIP() << "the superuser may write everywhere";
    write("fonts.dir", "0\n");
    ::chmod(dir.c_str(), 0555);
    EXPECT_FALSE(carry_out(making()));
    ::chmod(dir.c_str(), 0755);
    ::chmod((dir + "fonts.dir").c_str(), 0444);
    EXPECT_FALSE(carry_out(making()));
    EXPECT_EQ(index(), "0\n");
}

TEST_F(IndexCure, OnAFullDiskTheOldIndexStays) {
    const gw::test::SmallDisk disk;
    disk.write("boxes.bdf", BitmapMaker{}.make_bdf());
    for (const unsigned long blocks : {0UL, 1UL, 2UL, 3UL}) {
        disk.write("fonts.dir", "1\ngone.pcf -gone\n");
        disk.leave_blocks(blocks);
        const auto deed = carry_out({.remedy = Remedy::MAKE_INDEX, .element = disk.path()});
        if (deed) {
            EXPECT_EQ(disk.read("fonts.dir"), "1\nboxes.bdf " + std::string(BOXES) + '\n');
        } else {
            EXPECT_TRUE(deed.failure().is_lack_of_room()) << deed.failure().text();
            EXPECT_EQ(disk.read("fonts.dir"), "1\ngone.pcf -gone\n") << blocks;
        }
        std::filesystem::remove("/small/filler");
    }
}

TEST_F(IndexCure, AnIndexBehindALinkIsWrittenWhereItIs) {
    home.write("real/fonts.dir", "1\ngone.pcf -gone\n");
    std::filesystem::create_symlink("../real/fonts.dir", dir + "fonts.dir");
    const auto deed = carry_out(making());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_TRUE(std::filesystem::is_symlink(dir + "fonts.dir"));
    EXPECT_EQ(home.read("real/fonts.dir"), "1\nboxes.bdf " + std::string(BOXES) + '\n');
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(home.read("real/fonts.dir"), "1\ngone.pcf -gone\n");
}

TEST_F(IndexCure, TellsHowManyFontsAreReadAndStopsWhenItIsToldTo) {
    for (int i = 0; i < 200; ++i) write("b" + std::to_string(i) + ".bdf", BitmapMaker{}.make_bdf());
    surroundings.configured = configured();
    std::vector<std::size_t> told;
    const auto run = [&](std::size_t stop_at) {
        told.clear();
        return gw::diagnosis::carry_out(making(), server, surroundings,
                                        [&](std::size_t done, std::size_t all) {
                                            EXPECT_EQ(all, 201U);
                                            EXPECT_LE(done, all);
                                            told.push_back(done);
                                            return told.size() < stop_at;
                                        });
    };
    for (const std::size_t stop_at : {1U, 2U, 4U}) {
        const auto stopped = run(stop_at);
        ASSERT_FALSE(stopped);
        EXPECT_EQ(stopped.failure().error, ECANCELED);
        EXPECT_EQ(told.size(), stop_at) << "it is not asked again";
        EXPECT_FALSE(home.exists("fonts/fonts.dir"));
        EXPECT_FALSE(home.exists("fonts/fonts.scale"));
    }
    ASSERT_TRUE(run(1000));
    EXPECT_EQ(told.back(), 201U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_TRUE(home.exists("fonts/fonts.dir"));
}

}  // namespace
