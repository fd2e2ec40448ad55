// SPDX-License-Identifier: MIT
//
// Fonts with several names, and entries of lists that would read the same.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <strings.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "model/distinctions.h"
#include "model/gw_alias.h"
#include "support/under_policy.h"
#include "unit/model/model_test_support.h"

namespace {

using gw::Ref;
using gw::test::make_font;
using gw::test::UnderPolicy;
using testing::ElementsAre;

Ref<GWFont> outline(const std::string& family, const std::vector<std::string>& charsets,
                    const std::string& foundry = "x") {
    Ref<GWFont> font(new GWFont(GWFont::TRUETYPE_FONT));
    std::vector<gw::IndexName> names;
    for (const std::string& charset : charsets)
        names.push_back({0, '-' + foundry + '-' + family + "-medium-r-normal--0-0-0-0-p-0-" + charset});
    font->set_index_names(std::move(names));
    return font;
}

// --- several names

TEST(SeveralNames, TheXlfdNameIsTheOneThatMostLocalesDraw) {
    EXPECT_STREQ(outline("a", {"koi8-r", "iso10646-1", "iso8859-1"})->get_field(GWFont::CHARSET_REGISTRY),
                 "iso8859");
    EXPECT_STREQ(outline("a", {"koi8-r", "iso10646-1"})->get_field(GWFont::CHARSET_REGISTRY), "iso10646");
    EXPECT_STREQ(outline("a", {"koi8-r", "jisx0201.1976-0"})->get_field(GWFont::CHARSET_REGISTRY), "koi8");
    GWFont collection(GWFont::TRUETYPE_FONT);
    collection.set_index_names(
        {{1, "-x-second-m-r-n--0-0-0-0-p-0-iso8859-1"}, {0, "-x-first-m-r-n--0-0-0-0-p-0-koi8-r"}});
    EXPECT_STREQ(collection.get_field(GWFont::TYPEFACE_NAME), "first");
}

TEST(SeveralNames, OneInCommonIsEnoughWhateverTheTypeAndCase) {
    const Ref<GWFont> font = outline("a", {"koi8-r", "iso8859-1"});
    EXPECT_TRUE(font->shares_a_name(*outline("A", {"iso8859-2", "KOI8-R"})));
    EXPECT_FALSE(font->shares_a_name(*outline("a", {"iso8859-2"})));
    const Ref<GWFont> type1 = make_font("-x-a-medium-r-normal--0-0-0-0-p-0-koi8-r", GWFont::TYPE1_FONT);
    EXPECT_TRUE(font->shares_a_name(*type1));
    EXPECT_TRUE(type1->shares_a_name(*font));
}

TEST(SeveralNames, AreThoseOfACopyToo) {
    const Ref<GWFont> font = outline("a", {"koi8-r", "iso8859-1"});
    const Ref<GWFont> copy(new GWFont(*font, "/there/"));
    EXPECT_EQ(copy->get_index_names(), font->get_index_names());
    EXPECT_STREQ(copy->get_xlfd_name(), font->get_xlfd_name());
}

TEST(SeveralNames, OneAloneIsKeptWhateverTheFontIsCalledLater) {
    const std::string one = "-x-a-medium-r-normal--0-0-0-0-p-0-koi8-r";
    const std::string other = "-x-b-medium-r-normal--0-0-0-0-p-0-koi8-r";
    const Ref<GWFont> font = outline("a", {"koi8-r"});
    EXPECT_THAT(font->get_index_names(), ElementsAre(gw::IndexName{0, one}));
    const Ref<GWFont> copy(new GWFont(*font, "/there/"));
    EXPECT_THAT(copy->get_index_names(), ElementsAre(gw::IndexName{0, one}));
    font->set_xlfd_name(one.c_str());
    EXPECT_THAT(font->get_index_names(), ElementsAre(gw::IndexName{0, one}));
    font->set_xlfd_name(other.c_str());
    EXPECT_STREQ(font->get_xlfd_name(), other.c_str());
    EXPECT_THAT(font->get_index_names(), ElementsAre(gw::IndexName{0, one}));
    EXPECT_THAT(font->get_all_names(), ElementsAre(gw::IndexName{0, one}));
    font->set_index_names({});
    EXPECT_TRUE(font->get_index_names().empty());
    const gw::IndexName second{1, one, ":1:"};
    font->set_index_names({second});
    EXPECT_THAT(font->get_index_names(), ElementsAre(second));
}

TEST(NameInCopy, HasNoBlankAndAPlainExtension) {
    struct Case {
        const char* name;
        const char* copy;
    };
    const UnderPolicy modern(true);
    const GWFont font(GWFont::TRUETYPE_FONT);
    for (const Case& c : std::vector<Case>{{"Open Sans Bold.ttf", "Open_Sans_Bold.ttf"},
                                           {"X.TTF", "X.ttf"},
                                           {"Foo.v2.otf", "Foo.v2.otf"},
                                           {"A.PCF.GZ", "A.pcf.gz"},
                                           {"a.pcf.Z", "a.pcf.Z"},
                                           {"a.BDF.z", "a.bdf.Z"},
                                           {":1:a.ttf", "_1:a.ttf"},
                                           {"afm/Two Words.AFM", "afm/Two_Words.afm"}})
        EXPECT_EQ(font.name_in_copy(GW_FILE_SPEC(c.name, "/x/", 0, 0)), c.copy);
}

TEST(NameInCopy, IsTheNameWithoutThePolicy) {
    const UnderPolicy plain(false);
    const GWFont font(GWFont::BITMAP_FONT);
    EXPECT_EQ(font.name_in_copy(GW_FILE_SPEC("A B.PCF", "/x/", 0, 0)), "A B.PCF");
}

TEST(NameInCopy, OfAConvertedFontHasTheNewExtension) {
    const UnderPolicy modern(true);
    Ref<GWFont> font = outline("a", {"iso8859-1"});
    gw::test::place(*font, "/from/", {"Foo.v2.OTF"});
    font->set_conversion({GWFont::TYPE1_FONT, ".pfb"});
    const Ref<GWFont> copy(new GWFont(*font, "/to/"));
    EXPECT_STREQ((*copy->get_font_file_list()->begin())->get_name(), "Foo.v2.pfb");
    EXPECT_EQ(copy->get_type(), GWFont::TYPE1_FONT);
    EXPECT_FALSE(copy->get_conversion());
}

// --- names in lists

class ToldApart : public testing::Test {
  protected:
    void add(const std::string& family, const std::string& foundry, const std::string& file,
             const std::string& dir = "/a/", const std::string& charset = "iso8859-1") {
        Ref<GWFont> font = outline(family, {charset}, foundry);
        gw::test::place(*font, dir, {file});
        list.add_font(font.get());
    }
    std::vector<std::string> names() {
        list.tell_apart();
        std::vector<std::string> all;
        for (const std::string& name : gw::test::names_of(list))
            all.push_back(name.substr(0, name.find("  ")));
        return all;
    }
    UnderPolicy modern{true};
    GWHRNList list{0};
};

TEST_F(ToldApart, ByNothingWhenTheyDiffer) {
    add("sans", "x", "a.ttf");
    add("serif mono", "x", "b.ttf");
    EXPECT_THAT(names(), ElementsAre("Sans Medium [TrueType]", "Serif Mono Medium [TrueType]"));
}

TEST_F(ToldApart, ByTheFirstFeatureInWhichTheyDiffer) {
    add("sans", "x", "a.ttf");
    add("sans", "bitstream", "b.ttf");
    EXPECT_THAT(names(), ElementsAre("Sans Medium (Bitstream) [TrueType]", "Sans Medium (X) [TrueType]"));
    list.clear();
    add("sans", "x", "a.ttf", "/a/", "koi8-r");
    add("sans", "y", "b.ttf");
    EXPECT_THAT(names(),
                ElementsAre("Sans Medium (ISO-Latin-1) [TrueType]", "Sans Medium (koi8-r) [TrueType]"));
}

TEST_F(ToldApart, ByAsManyAsAreNeeded) {
    add("sans", "x", "a.ttf");
    add("sans", "x", "b.ttf");
    add("sans", "y", "a.ttf", "/b/");
    add("sans", "y", "a.ttf", "/c/");
    EXPECT_THAT(names(), ElementsAre("Sans Medium (X, a.ttf) [TrueType]", "Sans Medium (X, b.ttf) [TrueType]",
                                     "Sans Medium (Y, /b/) [TrueType]", "Sans Medium (Y, /c/) [TrueType]"));
}

TEST_F(ToldApart, AnewWhenTheListHasChanged) {
    add("sans", "x", "a.ttf");
    add("sans", "y", "b.ttf");
    EXPECT_THAT(names(), ElementsAre("Sans Medium (X) [TrueType]", "Sans Medium (Y) [TrueType]"));
    list.release_at_pos(1);
    EXPECT_THAT(names(), ElementsAre("Sans Medium [TrueType]"));
}

/// Entries that join others, and smaller sizes that come to represent their entry, are told apart as if all
/// had been there from the beginning.
TEST_F(ToldApart, TheSameHoweverOftenItIsDone) {
    std::mt19937 random(7);
    const auto one_of = [&](const std::vector<std::string>& words) { return words[random() % words.size()]; };
    for (int round = 0; round < 50; ++round) {
        list.clear();
        GWHRNList at_once(0);
        for (int i = 0; i < 30; ++i) {
            const std::string size = one_of({"80", "100", "120"});
            const std::string xlfd = "-" + one_of({"x", "y"}) + "-" + one_of({"sans", "Sans", "serif"}) +
                                     "-medium-r-normal--0-" + size + "-75-75-p-0-" +
                                     one_of({"iso8859-1", "koi8-r"});
            const std::string file = size + one_of({"a", "b"}) + ".pcf";
            const std::string dir = one_of({"/a/", "/b/"});
            for (GWHRNList* each : {&list, &at_once}) {
                const Ref<GWFont> font(new GWFont(GWFont::BITMAP_FONT));
                font->set_xlfd_name(xlfd.c_str());
                gw::test::place(*font, dir, {file});
                each->add_font(font.get());
            }
            if (random() % 4 == 0) list.tell_apart();
        }
        list.tell_apart();
        at_once.tell_apart();
        std::vector<std::string> often = gw::test::names_of(list);
        std::vector<std::string> once = gw::test::names_of(at_once);
        EXPECT_TRUE(std::is_sorted(often.begin(), often.end(), [](const auto& a, const auto& b) {
            return ::strcasecmp(a.c_str(), b.c_str()) < 0;
        }));
        std::sort(often.begin(), often.end());
        std::sort(once.begin(), once.end());
        EXPECT_EQ(often, once) << round;
    }
}

TEST_F(ToldApart, NotWithoutThePolicy) {
    const UnderPolicy plain(false);
    add("sans", "x", "a.ttf");
    add("sans", "y", "b.ttf");
    EXPECT_THAT(names(), ElementsAre("Sans Medium [TrueType]", "Sans Medium [TrueType]"));
}

TEST_F(ToldApart, AliasesByTheirSize) {
    GWAlias small("-x-sans-medium-r-normal--12-120-75-75-p-60-iso8859-1", "a", "/a/");
    GWAlias big("-x-sans-medium-r-normal--24-240-75-75-p-60-iso8859-1", "b", "/a/");
    gw::tell_apart(std::vector<GWAlias*>{&small, &big});
    EXPECT_EQ(std::string(small.get_hrn_name()).substr(0, 27), "Sans Medium (12 px) [Alias]");
    EXPECT_EQ(std::string(big.get_hrn_name()).substr(0, 27), "Sans Medium (24 px) [Alias]");
    gw::tell_apart(std::vector<GWAlias*>{&big});
    EXPECT_EQ(std::string(big.get_hrn_name()).substr(0, 20), "Sans Medium [Alias] ");
}

// --- conflicts

TEST(ConflictOfNames, HasEveryFileInTheWayWhateverItsType) {
    const UnderPolicy modern(true);
    gw::test::RecordingModules modules;
    gw::test::RecordingModule truetype{GWFont::TRUETYPE_FONT, "truetype "};
    modules.list.append(&truetype);
    const gw::test::TempDir dir;
    for (const char* name : {"a.pfb", "b.ttf"}) dir.write(name, "x");
    GWHRNList installed(0);
    Ref<GWFont> type1 = make_font("-x-a-medium-r-normal--0-0-0-0-p-0-koi8-r", GWFont::TYPE1_FONT);
    gw::test::place(*type1, dir.path(), {"a.pfb"});
    installed.add_font(type1.get());
    Ref<GWFont> other = outline("a", {"iso8859-1", "iso8859-2"});
    gw::test::place(*other, dir.path(), {"b.ttf"});
    installed.add_font(other.get());

    const Ref<GWHRNElement> elem(new GWHRNElement(outline("a", {"iso8859-2", "koi8-r"}).get()));
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    const gw::ElementsOwner owner(conflicts);
    EXPECT_EQ(elem->install_fonts(dir.c_str(), installed, aliases, modules.list, conflicts),
              GWHRNElement::CONFLICT);
    ASSERT_EQ(conflicts.get_count(), 1);
    GWConflict& conflict = *conflicts.get_first();
    EXPECT_THAT(conflict.get_conflict_files(),
                testing::UnorderedElementsAre(dir.file("a.pfb"), dir.file("b.ttf")));
    EXPECT_NE(conflict.is_conflict(GWConflict::SAME_NAME), 0);

    conflict.install_force(modules.list);
    EXPECT_EQ(installed.get_count(), 1);
    EXPECT_EQ(modules.calls.size(), 3U);
    EXPECT_TRUE(modules.calls.back().starts_with("truetype install ")) << modules.calls.back();
}

/// The new font took over the entry of a bitmap face, whose other sizes vanished from the list.
TEST(ConflictOfNames, LeavesTheOtherSizesOfAFaceInTheList) {
    const UnderPolicy modern(true);
    gw::test::RecordingModules modules;
    gw::test::RecordingModule truetype{GWFont::TRUETYPE_FONT, "truetype "};
    modules.list.append(&truetype);
    const gw::test::TempDir dir;
    const std::string small = "-x-a-medium-r-normal--10-100-75-75-p-50-iso8859-1";
    const std::string large = "-x-a-medium-r-normal--12-120-75-75-p-60-iso8859-1";
    GWHRNList installed(0);
    for (const std::string& name : {small, large}) {
        const Ref<GWFont> bitmap = make_font(name, GWFont::BITMAP_FONT);
        const std::string file = name == small ? "small.pcf" : "large.pcf";
        dir.write(file, "x");
        gw::test::place(*bitmap, dir.path(), {file.c_str()});
        installed.add_font(bitmap.get());
    }
    ASSERT_EQ(installed.get_count(), 1);
    const Ref<GWHRNElement> elem(new GWHRNElement(make_font(small, GWFont::TRUETYPE_FONT).get()));
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    const gw::ElementsOwner owner(conflicts);
    ASSERT_EQ(elem->install_fonts(dir.c_str(), installed, aliases, modules.list, conflicts),
              GWHRNElement::CONFLICT);
    conflicts.get_first()->install_force(modules.list);
    ASSERT_EQ(installed.get_count(), 2);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative()->get_xlfd_name(), large);
    EXPECT_EQ(installed.get_elem_at_pos(2)->get_representative()->get_type(), GWFont::TRUETYPE_FONT);
}

TEST(ConflictOfNames, NeedsTheSameTypeWithoutThePolicy) {
    const UnderPolicy plain(false);
    gw::test::RecordingModules modules;
    gw::test::RecordingModule truetype{GWFont::TRUETYPE_FONT, "truetype "};
    modules.list.append(&truetype);
    GWHRNList installed(0);
    const std::string name = "-x-a-medium-r-normal--0-0-0-0-p-0-koi8-r";
    installed.add_font(make_font(name, GWFont::TYPE1_FONT).get());
    const Ref<GWHRNElement> elem(new GWHRNElement(make_font(name, GWFont::TRUETYPE_FONT).get()));
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    EXPECT_EQ(elem->install_fonts("/x/", installed, aliases, modules.list, conflicts), GWHRNElement::DONE);
}

}  // namespace
