// SPDX-License-Identifier: MIT
#include "model/deleted_fonts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/put_file.h"
#include "support/temp_dir.h"
#include "support/trash_on.h"
#include "support/under_policy.h"

namespace {

using gw::DeletedFont;
using gw::DirectoryChange;
using gw::Reason;
using gw::ReturnOfFonts;
using gw::test::TempDir;
using gw::test::TrashOn;
using testing::ElementsAre;
using testing::IsEmpty;

std::string face(const std::string& family, const std::string& size = "120",
                 const std::string& set = "iso8859-1") {
    return "-test-" + family + "-medium-r-normal--12-" + size + "-75-75-c-60-" + set;
}

class DeletedFonts : public testing::Test {
  protected:
    void put(const std::string& file, const std::vector<std::string>& names) {
        dir.write(file, "bytes of " + file);
        for (const std::string& name : names) lines_ += file + ' ' + name + '\n';
        dir.write("fonts.dir",
                  std::to_string(std::count(lines_.begin(), lines_.end(), '\n')) + '\n' + lines_);
    }
    /// Takes these files out in one action, and returns what can come back.
    std::vector<DeletedFont> take_out(const std::vector<std::string>& files) {
        gw::FontAction action;
        EXPECT_TRUE(gw::in_change(dir.path(), [&](DirectoryChange& change) {
            for (const std::string& file : files) {
                change.strike_out(file, 99);
                (void)change.take_out(file, false);
            }
            return gw::done();
        }));
        EXPECT_TRUE(action.commit().empty());
        kept_ = action.kept();
        return gw::fonts_of_action(kept_);
    }
    static std::vector<std::string> names(const std::vector<DeletedFont>& fonts) {
        std::vector<std::string> all;
        for (const DeletedFont& font : fonts) all.push_back(font.name);
        return all;
    }

    const gw::test::UnderPolicy policy{true};
    const TrashOn on;
    TempDir dir;
    std::vector<gw::FontAction::Kept> kept_;

  private:
    std::string lines_;
};

/// A user who stops the work before the font with this number.
gw::DeletedFontsWatch stopping_before(std::size_t last, std::vector<std::size_t>& seen) {
    return {.before = [last, &seen](std::size_t number, const DeletedFont&) {
        seen.push_back(number);
        return number < last;
    }};
}

TEST_F(DeletedFonts, HaveTheNamesOfTheLists) {
    put("a10.pcf", {face("alpha", "100")});
    put("a12.pcf", {face("alpha", "120")});
    put("b.ttf", {face("beta", "0", "iso8859-15"), face("beta", "0", "iso8859-1")});
    put("c.pfa", {face("gamma", "0")});
    put("k.pcf", {face("kappa")});
    dir.write("d.otf", "no index lists it");
    const std::vector<DeletedFont> fonts = take_out({"a10.pcf", "a12.pcf", "b.ttf", "c.pfa", "d.otf"});
    EXPECT_THAT(names(fonts), testing::UnorderedElementsAre("Alpha Medium [Bitmap]", "Beta Medium [TrueType]",
                                                            "Gamma Medium [Type-1]", "d.otf"));
    const auto alpha = std::find_if(fonts.begin(), fonts.end(),
                                    [](const DeletedFont& font) { return font.name.starts_with("Alpha"); });
    ASSERT_NE(alpha, fonts.end());
    EXPECT_THAT(alpha->files, ElementsAre("a10.pcf", "a12.pcf"));
    EXPECT_EQ(alpha->bytes, 32);
    EXPECT_EQ(alpha->time, TrashOn::now());
    EXPECT_EQ(names(gw::deleted_fonts({"/nowhere", dir.path()})), names(fonts));
}

TEST_F(DeletedFonts, OfTheLastActionComeFirst) {
    put("a.pcf", {face("alpha")});
    put("b.pcf", {face("beta")});
    (void)take_out({"a.pcf"});
    TrashOn::pass(10);
    (void)take_out({"b.pcf"});
    EXPECT_THAT(names(gw::deleted_fonts({dir.path()})),
                ElementsAre("Beta Medium [Bitmap]", "Alpha Medium [Bitmap]"));
}

TEST_F(DeletedFonts, ComeBackOneByOneOrTogether) {
    put("a.pcf", {face("alpha")});
    put("b.pcf", {face("beta")});
    put("c.pcf", {face("gamma")});
    std::vector<DeletedFont> fonts = take_out({"a.pcf", "b.pcf", "c.pcf"});
    ASSERT_EQ(fonts.size(), 3U);
    const ReturnOfFonts one = gw::bring_fonts_back({fonts[1]});
    EXPECT_EQ(names(one.done), std::vector<std::string>{fonts[1].name});
    EXPECT_THAT(one.left, IsEmpty());
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_TRUE(dir.exists("b.pcf"));
    const ReturnOfFonts rest = gw::bring_fonts_back({fonts[0], fonts[2]});
    EXPECT_EQ(rest.done.size(), 2U);
    EXPECT_THAT(gw::deleted_fonts({dir.path()}), IsEmpty());
    EXPECT_TRUE(gw::take_out_again(rest.came));
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_TRUE(dir.exists("b.pcf"));
}

TEST_F(DeletedFonts, ThatCannotComeBackStayAndTheOthersDoNot) {
    put("a.pcf", {face("alpha")});
    put("b10.pcf", {face("beta", "100")});
    put("b12.pcf", {face("beta", "120")});
    put("c.pcf", {face("gamma")});
    const std::vector<DeletedFont> fonts = take_out({"a.pcf", "b10.pcf", "b12.pcf", "c.pcf"});
    dir.write("b12.pcf", "in the way");
    const ReturnOfFonts result = gw::bring_fonts_back(fonts);
    EXPECT_THAT(names(result.done),
                testing::UnorderedElementsAre("Alpha Medium [Bitmap]", "Gamma Medium [Bitmap]"));
    ASSERT_EQ(result.left.size(), 1U);
    EXPECT_EQ(result.left[0].second, (gw::Failure{dir.file("b12.pcf"), Reason::FILE_IN_THE_WAY}));
    EXPECT_FALSE(dir.exists("b10.pcf")) << "a part of a font does not come back";
    EXPECT_THAT(names(gw::deleted_fonts({dir.path()})), ElementsAre("Beta Medium [Bitmap]"));
}

TEST_F(DeletedFonts, OfAnEntryThatIsNoMoreAreNotInTheTrash) {
    put("a.pcf", {face("alpha")});
    (void)take_out({"a.pcf"});
    EXPECT_TRUE(gw::empty_trash(dir.path()));
    const ReturnOfFonts result = gw::bring_fonts_back(gw::fonts_of_action(kept_));
    EXPECT_THAT(result.done, IsEmpty());
    ASSERT_EQ(result.left.size(), 1U);
    EXPECT_EQ(result.left[0].second, (gw::Failure{dir.path(), Reason::NOT_IN_TRASH}));
}

// Two fonts of which each has taken the other's place in another directory cannot be undone by halves.
TEST_F(DeletedFonts, WhatCameInTheirPlacesGoesOnlyWhenAllComeBack) {
    const TempDir other;
    put("a.pcf", {face("alpha")});
    const auto replace = [&] {
        gw::FontAction action;
        EXPECT_TRUE(gw::in_change(dir.path(), [&](DirectoryChange& change) {
            change.strike_out("a.pcf", 99);
            (void)change.take_out("a.pcf", false);
            return gw::done();
        }));
        EXPECT_TRUE(gw::in_change(other.path(), [&](DirectoryChange& change) {
            EXPECT_TRUE(change.make_index());
            return gw::test::put_font(change, "new.pcf", "N", face("alpha"));
        }));
        EXPECT_TRUE(action.commit().empty());
        kept_ = action.kept();
        return action.came();
    };
    const std::vector<gw::FontAction::Came> came = replace();
    dir.write("a.pcf", "in the way");
    EXPECT_EQ(gw::bring_fonts_back(gw::fonts_of_action(kept_), came).left.size(), 1U);
    EXPECT_TRUE(other.exists("new.pcf"));
    std::filesystem::remove(dir.file("a.pcf"));
    std::vector<std::size_t> seen;
    EXPECT_EQ(gw::bring_fonts_back(gw::fonts_of_action(kept_), came, stopping_before(1, seen)).untried, 1U);
    EXPECT_TRUE(other.exists("new.pcf"));
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_EQ(gw::bring_fonts_back(gw::fonts_of_action(kept_), came).done.size(), 1U);
    EXPECT_FALSE(other.exists("new.pcf"));
    EXPECT_EQ(dir.read("a.pcf"), "bytes of a.pcf");
}

TEST_F(DeletedFonts, StayWhereTheWorkIsStopped) {
    put("a.pcf", {face("alpha")});
    put("b.pcf", {face("beta")});
    put("c.pcf", {face("gamma")});
    put("d.pcf", {face("delta")});
    const std::vector<DeletedFont> fonts = take_out({"a.pcf", "b.pcf", "c.pcf", "d.pcf"});
    std::vector<std::size_t> seen;
    const ReturnOfFonts result = gw::bring_fonts_back(fonts, {}, stopping_before(3, seen));
    EXPECT_THAT(seen, ElementsAre(1, 2, 3));
    EXPECT_EQ(names(result.done), (std::vector<std::string>{fonts[0].name, fonts[1].name}));
    EXPECT_THAT(result.left, IsEmpty());
    EXPECT_EQ(result.untried, 2U);
    EXPECT_EQ(dir.read("fonts.dir").substr(0, 2), "2\n");
    EXPECT_EQ(gw::deleted_fonts({dir.path()}).size(), 2U);
    const ReturnOfFonts rest = gw::bring_fonts_back({fonts[2], fonts[3]});
    EXPECT_EQ(rest.done.size(), 2U);
    EXPECT_EQ(dir.read("fonts.dir").substr(0, 2), "4\n");
    EXPECT_THAT(gw::deleted_fonts({dir.path()}), IsEmpty());
}

TEST_F(DeletedFonts, ThatWereReplacedAllComeBackOrNone) {
    put("a.pcf", {face("alpha")});
    put("b.pcf", {face("beta")});
    gw::FontAction action;
    EXPECT_TRUE(gw::in_change(dir.path(), [&](DirectoryChange& change) {
        for (const char* file : {"a.pcf", "b.pcf"}) {
            change.strike_out(file, 99);
            (void)change.take_out(file, false);
        }
        EXPECT_TRUE(gw::test::put_font(change, "a.pcf", "N", face("alpha")));
        return gw::test::put_font(change, "new.pcf", "N", face("beta"));
    }));
    EXPECT_TRUE(action.commit().empty());
    const std::vector<DeletedFont> fonts = gw::fonts_of_action(action.kept());
    ASSERT_EQ(fonts.size(), 2U);
    std::vector<std::size_t> seen;
    const ReturnOfFonts result = gw::bring_fonts_back(fonts, {}, stopping_before(2, seen));
    EXPECT_THAT(seen, ElementsAre(1, 2));
    EXPECT_THAT(result.done, IsEmpty());
    EXPECT_EQ(result.untried, 2U);
    EXPECT_EQ(dir.read("a.pcf"), "N");
    EXPECT_EQ(dir.read("new.pcf"), "N");
    EXPECT_EQ(gw::bring_fonts_back(fonts).done.size(), 2U);
    EXPECT_EQ(dir.read("a.pcf"), "bytes of a.pcf");
    EXPECT_FALSE(dir.exists("new.pcf"));
}

TEST_F(DeletedFonts, AreStoppedAfterAFailureToo) {
    put("a.pcf", {face("alpha")});
    put("b.pcf", {face("beta")});
    put("c.pcf", {face("gamma")});
    const std::vector<DeletedFont> fonts = take_out({"a.pcf", "b.pcf", "c.pcf"});
    dir.write(fonts[1].file_names[0], "in the way");
    std::vector<std::string> asked;
    const ReturnOfFonts result = gw::bring_fonts_back(
        fonts, {}, {.after_failure = [&](const DeletedFont& font, const gw::Failure& why) {
            EXPECT_EQ(why.reason, Reason::FILE_IN_THE_WAY);
            asked.push_back(font.name);
            return false;
        }});
    EXPECT_THAT(asked, ElementsAre(fonts[1].name));
    EXPECT_EQ(names(result.done), std::vector<std::string>{fonts[0].name});
    EXPECT_EQ(result.left.size(), 1U);
    EXPECT_EQ(result.untried, 1U);
}

TEST_F(DeletedFonts, NobodyIsAskedAfterTheLastOne) {
    put("a.pcf", {face("alpha")});
    const std::vector<DeletedFont> fonts = take_out({"a.pcf"});
    dir.write("a.pcf", "in the way");
    int asked = 0;
    const gw::DeletedFontsWatch watch = {
        .after_failure = [&](const DeletedFont&, const gw::Failure&) { return ++asked == 0; }};
    EXPECT_EQ(gw::bring_fonts_back(fonts, {}, watch).left.size(), 1U);
    EXPECT_EQ(asked, 0);
}

TEST_F(DeletedFonts, AreRemovedForGoodUntilTheWorkIsStopped) {
    constexpr std::size_t MANY = 35;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < MANY; ++i) {
        const std::string name = "f" + std::to_string(i);
        put(name + ".pcf", {face(name)});
        files.push_back(name + ".pcf");
    }
    const std::vector<DeletedFont> fonts = take_out(files);
    ASSERT_EQ(fonts.size(), MANY);
    std::vector<std::size_t> seen;
    const ReturnOfFonts result = gw::delete_for_good(fonts, stopping_before(21, seen));
    EXPECT_THAT(seen, ElementsAre(1, 11, 21));
    EXPECT_EQ(result.done.size(), 20U);
    EXPECT_EQ(result.untried, 15U);
    EXPECT_EQ(gw::deleted_fonts({dir.path()}).size(), 15U);
    EXPECT_EQ(gw::delete_for_good(gw::deleted_fonts({dir.path()})).done.size(), 15U);
    EXPECT_THAT(gw::deleted_fonts({dir.path()}), IsEmpty());
}

}  // namespace
