// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "unit/model/model_test_support.h"

namespace {

using gw::Ref;
using gw::test::make_font;
using gw::test::make_read_only_font;
using gw::test::names_of;
using gw::test::RecordingModules;
using gw::test::TempDir;
using gw::test::Xlfd;
using testing::ElementsAre;

void add(GWHRNList& list, const std::vector<Ref<GWFont>>& fonts) {
    for (const Ref<GWFont>& font : fonts) list.add_font(font.get());
}

std::vector<std::string> sizes_at(const GWHRNList& list, unsigned pos) {
    unsigned count = 99;
    const std::vector<std::string> sizes = list.get_point_sizes(pos, count);
    EXPECT_EQ(sizes.size(), count);
    return sizes;
}

/// An element's fonts, size by size. Distinguishes elements of the same name.
std::vector<std::vector<const GWFont*>> fonts_of(const GWHRNElement& elem) {
    std::vector<std::vector<const GWFont*>> groups;
    for (const GWHRNElement::PointSize& slot : elem.get_slots()) {
        groups.emplace_back();
        for (const Ref<GWFont>& font : slot.fonts) groups.back().push_back(font.get());
    }
    return groups;
}

TEST(HrnList, GathersTheSizesOfABitmapFace) {
    GWHRNList list(0);
    add(list, {make_font(Xlfd{.decipoints = "120"}), make_font(Xlfd{.decipoints = "80"})});
    EXPECT_THAT(names_of(list), ElementsAre("Courier Medium [Bitmap]"));
    EXPECT_THAT(sizes_at(list, 1), ElementsAre("80", "120"));
}

TEST(HrnList, GathersTheResolutionsOfASize) {
    GWHRNList list(0);
    add(list, {make_font(Xlfd{.resolution = "100"}), make_font(Xlfd{.resolution = "75"})});
    EXPECT_THAT(sizes_at(list, 1), ElementsAre("120"));
    unsigned count = 0;
    EXPECT_THAT(list.get_res_for_pt_size(1, "120", count), ElementsAre("100 X 100", "75 X 75"));
    EXPECT_EQ(count, 2U);
}

TEST(HrnList, KeepsOutlineAndBitmapFontsOfAFaceApart) {
    GWHRNList list(0);
    add(list, {make_font(Xlfd{}, GWFont::TYPE1_FONT), make_font(Xlfd{})});
    EXPECT_THAT(names_of(list), ElementsAre("Courier Medium [Bitmap]", "Courier Medium [Type-1]"));
}

TEST(HrnList, GivesEveryOutlineFontAnElementTheNewestFirst) {
    GWHRNList list(0);
    const Ref<GWFont> first = make_font(Xlfd{}, GWFont::TYPE1_FONT);
    const Ref<GWFont> second = make_font(Xlfd{}, GWFont::TYPE1_FONT);
    add(list, {first, second});
    ASSERT_EQ(list.get_count(), 2);
    EXPECT_EQ(list.get_elem_at_pos(1)->get_representative(), second.get());
    EXPECT_EQ(list.get_elem_at_pos(2)->get_representative(), first.get());
}

TEST(HrnList, GivesEveryBareAliasAnElementOfSize00) {
    GWHRNList list(0);
    add(list, {make_font("fixed"), make_font("fixed"), make_font("FIXED")});
    EXPECT_THAT(names_of(list), ElementsAre("FIXED  [Bitmap]", "fixed  [Bitmap]", "fixed  [Bitmap]"));
    EXPECT_THAT(sizes_at(list, 2), ElementsAre("00"));
}

TEST(HrnList, KeepsApartWhatOnlyTheNameHasInCommon) {
    GWHRNList list(0);
    const Ref<GWFont> adobe = make_font(Xlfd{.foundry = "adobe"});
    const Ref<GWFont> misc = make_font(Xlfd{.foundry = "misc"});
    add(list, {adobe, misc, make_font(Xlfd{.foundry = "adobe", .decipoints = "80"})});
    EXPECT_THAT(names_of(list), ElementsAre("Courier Medium [Bitmap]", "Courier Medium [Bitmap]"));
    EXPECT_EQ(list.get_elem_at_pos(1)->get_representative(), misc.get());
    EXPECT_THAT(sizes_at(list, 2), ElementsAre("80", "120"));
}

TEST(HrnList, SortsWithoutRegardToCase) {
    GWHRNList list(0);
    add(list, {make_font("zebra"), make_font("courier"), make_font("Courier Bold"), make_font("Apple")});
    EXPECT_THAT(names_of(list), ElementsAre("Apple  [Bitmap]", "courier  [Bitmap]", "Courier Bold  [Bitmap]",
                                            "zebra  [Bitmap]"));
}

TEST(HrnList, GivesTheTwentyFirstFontOfASizeAnElementOfItsOwn) {
    GWHRNList list(0);
    for (int i = 1; i <= 41; ++i) list.add_font(make_font(Xlfd{.resolution = std::to_string(i)}).get());
    ASSERT_EQ(list.get_count(), 3);
    unsigned count = 0;
    EXPECT_THAT(list.get_res_for_pt_size(1, "120", count), ElementsAre("41 X 41"));
    list.get_res_for_pt_size(2, "120", count);
    EXPECT_EQ(count, 20U);
    list.get_res_for_pt_size(3, "120", count);
    EXPECT_EQ(count, 20U);
}

TEST(HrnList, GivesTheHundredAndFirstSizeAnElementOfItsOwn) {
    GWHRNList list(0);
    for (int i = 1; i <= 101; ++i) list.add_font(make_font(Xlfd{.decipoints = std::to_string(i)}).get());
    ASSERT_EQ(list.get_count(), 2);
    EXPECT_THAT(sizes_at(list, 1), ElementsAre("101"));
    EXPECT_EQ(sizes_at(list, 2).size(), 100U);
}

TEST(HrnList, KnowsNothingAtPositionsWithoutAnElement) {
    GWHRNList list(0);
    add(list, {make_font(Xlfd{})});
    RecordingModules modules;
    GW_LIST<GWConflict> conflicts;
    GW_SORTED_LIST<GWAlias> aliases(0);
    for (const unsigned pos : {0U, 2U, 0x7fffffffU, 0x80000001U, 0xffffffffU}) {
        unsigned count = 99;
        EXPECT_EQ(list.get_disk_space(pos), 0U) << pos;
        EXPECT_TRUE(list.get_point_sizes(pos, count).empty()) << pos;
        EXPECT_EQ(count, 0U) << pos;
        count = 99;
        EXPECT_TRUE(list.get_res_for_pt_size(pos, "120", count).empty()) << pos;
        EXPECT_EQ(count, 0U) << pos;
        EXPECT_EQ(list.delete_at_pos(pos, modules.list, conflicts), 0) << pos;
        EXPECT_EQ(list.install_at_pos(pos, "/", list, aliases, modules.list, conflicts), 0) << pos;
    }
    EXPECT_FALSE(list.release_at_pos(2));
    EXPECT_EQ(list.get_count(), 1);
    EXPECT_TRUE(modules.calls.empty());
}

TEST(HrnList, InstallsTheElementAtAPosition) {
    const TempDir dir;
    RecordingModules modules;
    GW_LIST<GWConflict> conflicts;
    const gw::ElementsOwner conflicts_owner(conflicts);
    GW_SORTED_LIST<GWAlias> aliases(0);
    GWHRNList source(0);
    GWHRNList installed(0);
    add(source, {make_font("b"), make_font("a")});
    EXPECT_EQ(source.install_at_pos(2, dir.c_str(), installed, aliases, modules.list, conflicts), 2);
    EXPECT_THAT(names_of(installed), ElementsAre("b  [Bitmap]"));
    EXPECT_EQ(source.install_at_pos(2, dir.c_str(), installed, aliases, modules.list, conflicts), 1);
    EXPECT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(installed.get_count(), 1);
    EXPECT_EQ(source.get_count(), 2);
    EXPECT_EQ(modules.calls.size(), 1U);
}

TEST(HrnList, DeletesTheElementAtAPositionUnlessAConflictStopsIt) {
    RecordingModules modules;
    GW_LIST<GWConflict> conflicts;
    const gw::ElementsOwner conflicts_owner(conflicts);
    GWHRNList list(0);
    add(list, {make_font("a"), make_read_only_font("b"), make_font("c")});
    EXPECT_EQ(list.delete_at_pos(2, modules.list, conflicts), 1);
    EXPECT_EQ(list.get_count(), 3);
    EXPECT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(list.delete_at_pos(1, modules.list, conflicts), 2);
    EXPECT_THAT(modules.calls, ElementsAre("delete a"));
    ASSERT_EQ(list.get_count(), 2);
    EXPECT_STREQ(list.get_elem_at_pos(2)->get_name(), "c  [Bitmap]");
    EXPECT_EQ(list.delete_at_pos(2, modules.list, conflicts), 2);
    EXPECT_EQ(list.get_count(), 1);
}

TEST(HrnList, MergesCopiesThatShareTheFonts) {
    GWHRNList list(0);
    GWHRNList other(0);
    const Ref<GWFont> twice = make_font(Xlfd{});
    add(list, {make_font("a"), make_font(Xlfd{})});
    add(other, {twice, make_font("z"), make_font(Xlfd{.decipoints = "80"})});
    list.merge(other);
    EXPECT_THAT(names_of(list), ElementsAre("a  [Bitmap]", "Courier Medium [Bitmap]",
                                            "Courier Medium [Bitmap]", "z  [Bitmap]"));
    EXPECT_EQ(other.get_count(), 2);
    EXPECT_NE(list.get_elem_at_pos(2), other.get_elem_at_pos(1));
    EXPECT_EQ(list.get_elem_at_pos(2)->get_font("120", "75 X 75"), twice.get());
    other.clear();
    EXPECT_THAT(sizes_at(list, 2), ElementsAre("80", "120"));
}

TEST(HrnList, MergesElementsOfOneNameInReverse) {
    GWHRNList list(0);
    GWHRNList other(0);
    const Ref<GWFont> first = make_font("same");
    const Ref<GWFont> second = make_font("same");
    add(other, {first, second});
    list.merge(other);
    EXPECT_EQ(other.get_elem_at_pos(1)->get_representative(), second.get());
    EXPECT_EQ(list.get_elem_at_pos(1)->get_representative(), first.get());
}

TEST(HrnList, ReleasesFontsWithTheLastOwner) {
    const Ref<GWFont> font = make_font(Xlfd{});
    {
        GWHRNList list(0);
        list.add_font(font.get());
        EXPECT_EQ(font->owners(), 2);
        GWHRNList other(0);
        other.merge(list);
        EXPECT_EQ(font->owners(), 3);
        list.clear();
        EXPECT_EQ(list.get_count(), 0);
        EXPECT_EQ(font->owners(), 2);
    }
    EXPECT_EQ(font->owners(), 1);
}

TEST(HrnList, RemovesThatVeryElement) {
    GWHRNList list(0);
    const Ref<GWFont> first = make_font("same");
    const Ref<GWFont> second = make_font("same");
    add(list, {first, second});
    const Ref<GWHRNElement> stranger(new GWHRNElement(first.get()));
    list.delete_hrn_elem(stranger.get());
    EXPECT_EQ(list.get_count(), 2);
    list.delete_hrn_elem(list.get_elem_at_pos(2));
    ASSERT_EQ(list.get_count(), 1);
    EXPECT_EQ(list.get_elem_at_pos(1)->get_representative(), second.get());
}

TEST(HrnList, HandsAnElementToItsNewOwner) {
    GWHRNList list(0);
    add(list, {make_font("a")});
    const Ref<GWHRNElement> elem = list.release_at_pos(1);
    ASSERT_TRUE(elem);
    EXPECT_EQ(elem->owners(), 1);
    EXPECT_TRUE(list.is_empty());
    EXPECT_EQ(list.insert(elem.get()), 1);
    EXPECT_EQ(elem->owners(), 2);
}

TEST(HrnList, FindsAnElementUnderTheFaceThatItCameToHold) {
    GWHRNList list(0);
    const Ref<GWFont> courier = make_font(Xlfd{});
    add(list, {courier});
    list.get_elem_at_pos(1)->add_font(make_font(Xlfd{.family = "times"}).get(), 1);
    add(list, {make_font(Xlfd{.family = "times", .decipoints = "80"}), courier});
    EXPECT_THAT(names_of(list), ElementsAre("Courier Medium [Bitmap]", "Times Medium [Bitmap]"));
    EXPECT_THAT(sizes_at(list, 2), ElementsAre("80", "120"));
}

/// The rule in its simplest form: a bitmap font is offered to each element in order. When no element takes
/// it, a new element is inserted before the first one that does not sort before it.
class PlainList {
  public:
    explicit PlainList(bool is_descending) : descending(is_descending) {}
    void add_font(GWFont* font) {
        if (font->get_type() == GWFont::BITMAP_FONT) {
            for (const Ref<GWHRNElement>& elem : elements) {
                if (elem->add_font(font, 0) != 0) return;
            }
        }
        insert(new GWHRNElement(font));
    }
    void insert(GWHRNElement* added) {
        const auto next = std::find_if(elements.begin(), elements.end(), [&](const Ref<GWHRNElement>& elem) {
            const int order = added->compare(elem.get());
            return descending ? order >= 0 : order <= 0;
        });
        elements.insert(next, Ref<GWHRNElement>(added));
    }
    std::vector<Ref<GWHRNElement>> elements;

  private:
    bool descending;
};

/// Does the same to both lists.
class HrnListProperty : public testing::TestWithParam<int> {
  protected:
    HrnListProperty()
        : random(static_cast<unsigned>(GetParam())), list(GetParam() % 2), plain(GetParam() % 2 != 0) {}

    std::size_t below(std::size_t n) { return random() % n; }
    template <std::size_t N>
    const char* one_of(const std::array<const char*, N>& values) {
        return values[below(N)];
    }

    Ref<GWFont> random_font() {
        static constexpr std::array<const char*, 4> FAMILIES = {"courier", "Courier", "times", "lucida"};
        static constexpr std::array<const char*, 3> WEIGHTS = {"medium", "BOLD", "bold"};
        static constexpr std::array<const char*, 3> ALIASES = {"fixed", "Fixed", "courier medium"};
        const auto type = below(8) == 0 ? GWFont::TYPE1_FONT : GWFont::BITMAP_FONT;
        std::string name = one_of(ALIASES);
        if (below(12) != 0) {
            // Some runs have few sizes and overflow them, others have many.
            const std::size_t sizes = GetParam() % 3 == 0 ? 2 : 400;
            name = Xlfd{.foundry = below(3) == 0 ? "misc" : "adobe",
                        .family = one_of(FAMILIES),
                        .weight = one_of(WEIGHTS),
                        .decipoints = std::to_string(below(sizes)),
                        .resolution = std::to_string(below(3))}
                       .str();
        }
        return below(6) == 0 ? make_read_only_font(name, type) : make_font(name, type);
    }

    /// Many fonts at once, as into a list that is just made.
    void begin() {
        GW_LIST<GWFont> fonts;
        for (std::size_t i = below(400); i > 0; --i) {
            const Ref<GWFont> font = random_font();
            plain.add_font(font.get());
            begun.push_back(font);
            fonts.append(font.get());
        }
        list.add_fonts(fonts);
    }

    void step() {
        // After an element was renamed the list stays unsorted, so some runs only add fonts.
        const std::size_t what = GetParam() % 4 == 0 ? 60 : below(60);
        if (what == 0 && list.get_count() > 0) {
            const std::size_t i = below(plain.elements.size());
            list.release_at_pos(static_cast<int>(i) + 1);
            plain.elements.erase(plain.elements.begin() + static_cast<std::ptrdiff_t>(i));
        } else if (what == 1 && list.get_count() > 0) {
            rename(below(plain.elements.size()));
        } else if (what == 2 && list.get_count() > 0) {
            strip(below(plain.elements.size()));
        } else if (what == 3) {
            const Ref<GWFont> font = random_font();
            list.insert(new GWHRNElement(font.get()));
            plain.insert(new GWHRNElement(font.get()));
        } else {
            const Ref<GWFont> font = random_font();
            list.add_font(font.get());
            plain.add_font(font.get());
        }
    }

    /// Forces a font on an element. The element may get another name by this; it keeps its position.
    void rename(std::size_t i) {
        const Ref<GWFont> font = random_font();
        list.get_elem_at_pos(static_cast<int>(i) + 1)->add_font(font.get(), 1);
        plain.elements[i]->add_font(font.get(), 1);
    }

    /// Removes an element's representative.
    void strip(std::size_t i) {
        const Ref<GWFont> font(plain.elements[i]->get_representative());
        if (!font) return;
        EXPECT_EQ(list.get_elem_at_pos(static_cast<int>(i) + 1)->del_font(font.get()), 1);
        plain.elements[i]->del_font(font.get());
    }

    void expect_equal() const {
        ASSERT_EQ(static_cast<std::size_t>(list.get_count()), plain.elements.size());
        std::size_t i = 0;
        for (const GWHRNElement* elem : list) {
            const GWHRNElement& other = *plain.elements[i++];
            ASSERT_STREQ(elem->get_name(), other.get_name()) << i;
            ASSERT_EQ(fonts_of(*elem), fonts_of(other)) << i;
            ASSERT_EQ(elem->is_read_only(), other.is_read_only()) << i;
        }
    }

    std::mt19937 random;
    GWHRNList list;
    PlainList plain;
    std::vector<Ref<GWFont>> begun;
};

TEST_P(HrnListProperty, GroupsAndSortsAsThePlainRule) {
    for (int i = 1; i <= 1500; ++i) {
        step();
        if (i % 50 == 0) expect_equal();
        if (HasFatalFailure()) FAIL() << "after step " << i;
    }
}

TEST_P(HrnListProperty, ManyFontsAtOnceAreOneAfterTheOther) {
    begin();
    ASSERT_NO_FATAL_FAILURE(expect_equal());
    for (int i = 1; i <= 100; ++i) step();
    expect_equal();
    begin();
    expect_equal();
}

INSTANTIATE_TEST_SUITE_P(Seeds, HrnListProperty, testing::Range(1, 25));

}  // namespace
