// SPDX-License-Identifier: MIT
#include "model/gw_hrn_list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "support/font_maker.h"
#include "support/temp_dir.h"

namespace {

using gw::test::make_bitmap;
using gw::test::make_font;
using gw::test::make_outline;
using gw::test::RecordingModule;
using gw::test::TempDir;

using Texts = std::vector<std::string>;

Texts names(const GWHRNList& list) {
    Texts all;
    for (const GWHRNElement* elem : list) all.emplace_back(elem->get_name());
    return all;
}

Texts sizes(const GWHRNElement& elem) {
    unsigned count = 0;
    Texts all = elem.get_point_sizes(count);
    EXPECT_EQ(count, all.size());
    return all;
}

Texts resolutions(const GWHRNElement& elem, const char* size) {
    unsigned count = 0;
    Texts all = elem.get_res(size, count);
    EXPECT_EQ(count, all.size());
    return all;
}

TEST(HrnList, PointSizesOfOneFaceStandInAscendingOrder) {
    GWHRNList list(0);
    list.add_font(make_bitmap("courier", "120"));
    list.add_font(make_bitmap("courier", "80"));
    list.add_font(make_bitmap("courier", "1000"));
    ASSERT_EQ(list.get_count(), 1);
    EXPECT_EQ(sizes(*list.get_elem_at_pos(1)), (Texts{"80", "120", "1000"}));
}

TEST(HrnList, ASizeEqualInValueGoesBehindTheOneThatIsThere) {
    GWHRNList list(0);
    for (const char* size : {"120", "0120"}) list.add_font(make_bitmap("courier", size));
    EXPECT_EQ(sizes(*list.get_elem_at_pos(1)), (Texts{"120", "0120"}));
}

TEST(HrnList, ResolutionsOfOneSizeStandInTheOrderAdded) {
    GWHRNList list(0);
    list.add_font(make_bitmap("courier", "120", "100"));
    list.add_font(make_bitmap("courier", "120", "75"));
    ASSERT_EQ(list.get_count(), 1);
    const GWHRNElement& elem = *list.get_elem_at_pos(1);
    EXPECT_EQ(resolutions(elem, "120"), (Texts{"100 X 100", "75 X 75"}));
    EXPECT_EQ(resolutions(elem, "80"), Texts{});
    EXPECT_EQ(resolutions(elem, nullptr), Texts{});
    EXPECT_STREQ(elem.get_font("120", "75 X 75")->get_field(GWFont::RESOLUTION_X), "75");
    EXPECT_STREQ(elem.get_font("120", "200 X 200")->get_field(GWFont::RESOLUTION_X), "100")
        << "the representative";
    EXPECT_STREQ(elem.get_font(nullptr, nullptr)->get_field(GWFont::RESOLUTION_X), "100");
}

TEST(HrnList, BitmapAndOutlineOfOneFaceAreTwoNames) {
    GWHRNList list(0);
    list.add_font(make_outline("courier"));
    list.add_font(
        make_font(GWFont::BITMAP_FONT, "-adobe-courier-medium-r-normal--12-120-75-75-p-70-iso8859-1"));
    EXPECT_EQ(names(list), (Texts{"Courier Medium [Bitmap]", "Courier Medium [Type-1]"}));
}

TEST(HrnList, EveryOutlineFontIsANameOfItsOwn) {
    GWHRNList list(0);
    list.add_font(make_outline("courier"));
    GWFont* second = make_outline("courier");
    list.add_font(second);
    ASSERT_EQ(list.get_count(), 2);
    EXPECT_EQ(list.get_elem_at_pos(1)->get_representative(), second)
        << "the newest of equal names comes first";
    EXPECT_EQ(list.get_elem_at_pos(1)->get_font("0", ""), second);
}

TEST(HrnList, AFontWithoutXlfdNameHasItsOwnEntry) {
    GWHRNList list(0);
    for (int i = 0; i < 2; ++i) list.add_font(make_font(GWFont::BITMAP_FONT, "fixed"));
    ASSERT_EQ(list.get_count(), 2);
    EXPECT_EQ(sizes(*list.get_elem_at_pos(1)), Texts{"00"});
    EXPECT_EQ(resolutions(*list.get_elem_at_pos(1), "00"), Texts{"0"});
}

TEST(HrnList, SortsWithoutRegardToCase) {
    GWHRNList list(0);
    for (const char* family : {"zapf", "Courier Bold", "courier", "Avant"})
        list.add_font(make_outline(family));
    EXPECT_EQ(names(list), (Texts{"Avant Medium [Type-1]", "Courier Bold Medium [Type-1]",
                                  "Courier Medium [Type-1]", "Zapf Medium [Type-1]"}));
}

// More sizes or fonts than an element holds go on in another of the same name; none is dropped.
TEST(HrnList, AFullElementIsFollowedByAnother) {
    GWHRNList many_sizes(0);
    for (int i = 1; i <= 150; ++i) many_sizes.add_font(make_bitmap("courier", std::to_string(i * 10)));
    ASSERT_EQ(many_sizes.get_count(), 2);
    EXPECT_EQ(sizes(*many_sizes.get_elem_at_pos(1)).size() + sizes(*many_sizes.get_elem_at_pos(2)).size(),
              150U);
    EXPECT_EQ(
        std::max(sizes(*many_sizes.get_elem_at_pos(1)).size(), sizes(*many_sizes.get_elem_at_pos(2)).size()),
        100U);

    GWHRNList many_fonts(0);
    for (int i = 0; i < 45; ++i) many_fonts.add_font(make_bitmap("courier", "120"));
    ASSERT_EQ(many_fonts.get_count(), 3);
    std::size_t fonts = 0;
    for (const GWHRNElement* elem : many_fonts) fonts += elem->get_slots().front().fonts.size();
    EXPECT_EQ(fonts, 45U);
}

/// The list as walking it for every font makes it.
class WalkedList {
  public:
    void add(GWFont* font) {
        if (font->get_type() == GWFont::BITMAP_FONT) {
            for (const auto& elem : elements) {
                if (elem->add_font(font, 0) != 0) return;
            }
        }
        gw::Ref<GWHRNElement> elem(new GWHRNElement(font));
        const auto place = std::find_if(elements.begin(), elements.end(),
                                        [&](const auto& cur) { return elem->compare(cur.get()) <= 0; });
        elements.insert(place, elem);
    }
    std::vector<gw::Ref<GWHRNElement>> elements;
};

std::string description(const GWHRNElement& elem) {
    std::string text = elem.get_name();
    for (const auto& slot : elem.get_slots()) {
        text += " | " + slot.point_size;
        for (std::size_t i = 0; i < slot.fonts.size(); ++i) {
            text += " " + slot.resolutions[i] + "@" +
                    std::to_string(reinterpret_cast<std::uintptr_t>(slot.fonts[i].get()));
        }
    }
    return text;
}

TEST(HrnList, AgreesWithWalkingOnRandomFonts) {
    std::mt19937 random(7);
    const Texts families = {"courier", "Courier", "times", "fixed", "a", "zapf chancery"};
    WalkedList expected;
    GWHRNList list(0);
    for (int i = 0; i < 3000; ++i) {
        const std::string& family = families[random() % families.size()];
        const auto kind = random() % 10;
        GWFont* font = kind == 0   ? make_outline(family)
                       : kind == 1 ? make_font(GWFont::BITMAP_FONT, family)
                                   : make_bitmap(family, std::to_string(random() % 130 * 10),
                                                 random() % 2 != 0 ? "75" : "100");
        const gw::Ref<GWFont> shared(font);
        expected.add(font);
        list.add_font(font);
    }
    ASSERT_EQ(static_cast<std::size_t>(list.get_count()), expected.elements.size());
    std::size_t i = 0;
    for (const GWHRNElement* elem : list) {
        EXPECT_EQ(description(*elem), description(*expected.elements[i])) << "position " << i + 1;
        ++i;
    }
}

TEST(HrnElement, TakesAFontByForceByBecomingItsOwn) {
    const gw::Ref<GWHRNElement> elem(new GWHRNElement(make_bitmap("courier", "120")));
    const gw::Ref<GWFont> other(make_bitmap("times", "80"));
    EXPECT_EQ(elem->add_font(other.get(), 0), 0);
    EXPECT_EQ(sizes(*elem), Texts{"120"});
    EXPECT_EQ(elem->add_font(other.get(), 1), 1);
    EXPECT_EQ(sizes(*elem), Texts{"80"});
    EXPECT_STREQ(elem->get_name(), "Times Medium [Bitmap]");
}

TEST(HrnElement, LosesAFontButKeepsItsSize) {
    const gw::Ref<GWHRNElement> elem(new GWHRNElement(make_bitmap("courier", "120")));
    const gw::Ref<GWFont> font(elem->get_representative());
    EXPECT_EQ(elem->del_font(font.get()), 1);
    EXPECT_EQ(elem->del_font(font.get()), 0);
    EXPECT_EQ(sizes(*elem), Texts{"120"});
    EXPECT_EQ(elem->get_font("120", "75 X 75"), nullptr);
}

TEST(HrnElement, SumsDiskSpaceAndReadOnlyState) {
    const TempDir dir;
    dir.write("a.pcf", std::string(9000, 'x'));
    GWHRNList list(0);
    GWFont* font = make_bitmap("courier", "120");
    gw::test::give_file(*font, "a.pcf", dir.c_str());
    list.add_font(font);
    EXPECT_EQ(list.get_disk_space(1), font->get_disk_space());
    EXPECT_EQ(list.get_elem_at_pos(1)->is_read_only(), 0);
    GWFont* locked = make_bitmap("courier", "80");
    gw::test::give_file(*locked, "missing.pcf", dir.c_str());
    list.add_font(locked);
    EXPECT_EQ(list.get_elem_at_pos(1)->is_read_only(), 1);
    const unsigned before = list.get_disk_space(1);
    list.get_elem_at_pos(1)->del_font(font);
    EXPECT_LT(list.get_disk_space(1), before);
}

TEST(HrnList, AnswersForPositionsThatAreNotThere) {
    GWHRNList list(0);
    GW_FSM_LIST modules;
    GW_LIST<GWConflict> conflicts;
    GW_SORTED_LIST<GWAlias> aliases(0);
    unsigned count = 7;
    EXPECT_EQ(list.get_disk_space(1), 0U);
    EXPECT_TRUE(list.get_point_sizes(1, count).empty());
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(list.get_res_for_pt_size(1, "120", count).empty());
    EXPECT_EQ(list.delete_at_pos(1, modules, conflicts), 0);
    EXPECT_EQ(list.install_at_pos(0, "/x/", list, aliases, modules, conflicts), 0);
}

TEST(HrnList, MergingCopiesElementsAndSharesFonts) {
    GWHRNList source(0);
    source.add_font(make_bitmap("courier", "120"));
    GWHRNList target(0);
    target.merge(source);
    ASSERT_EQ(target.get_count(), 1);
    EXPECT_NE(target.get_elem_at_pos(1), source.get_elem_at_pos(1));
    EXPECT_EQ(target.get_elem_at_pos(1)->get_representative(),
              source.get_elem_at_pos(1)->get_representative());
    source.clear();
    EXPECT_EQ(sizes(*target.get_elem_at_pos(1)), Texts{"120"}) << "the fonts outlive the list they came from";
}

class Installing : public testing::Test {
  protected:
    Installing() : bitmap_module(GWFont::BITMAP_FONT), outline_module(GWFont::TYPE1_FONT) {
        modules.append(&outline_module);
        modules.append(&bitmap_module);
        RecordingModule::calls().clear();
    }
    int install(GWHRNList& from, unsigned pos = 1) {
        return from.install_at_pos(pos, dir.c_str(), installed, aliases, modules, conflicts);
    }
    TempDir dir;
    RecordingModule bitmap_module, outline_module;
    GW_FSM_LIST modules;
    GWHRNList installed{0};
    GWHRNList source{0};
    GW_SORTED_LIST<GWAlias> aliases{0};
    gw::ElementsOwner<GW_SORTED_LIST<GWAlias>> aliases_owner{aliases};
    GW_LIST<GWConflict> conflicts;
    gw::ElementsOwner<GW_LIST<GWConflict>> conflicts_owner{conflicts};
};

TEST_F(Installing, AddsACopyInTheDestination) {
    source.add_font(make_outline("courier"));
    EXPECT_EQ(install(source), GWHRNElement::DONE);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_STREQ(installed.get_elem_at_pos(1)->get_representative()->get_dir_name(), dir.c_str());
    EXPECT_EQ(RecordingModule::calls().size(), 1U);
    EXPECT_EQ(conflicts.get_count(), 0);
}

TEST_F(Installing, ABitmapSizeJoinsTheNameThatIsThere) {
    installed.add_font(make_bitmap("courier", "120"));
    source.add_font(make_bitmap("courier", "80"));
    EXPECT_EQ(install(source), GWHRNElement::DONE);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_EQ(sizes(*installed.get_elem_at_pos(1)), (Texts{"80", "120"}));
}

// Of each size only as many fonts are installed as the element has sizes.
TEST_F(Installing, TheNumberOfSizesBoundsTheFontsOfEachSize) {
    for (const char* dpi : {"75", "100"}) source.add_font(make_bitmap("courier", "120", dpi));
    EXPECT_EQ(install(source), GWHRNElement::DONE);
    EXPECT_EQ(RecordingModule::calls().size(), 1U) << "one size, so one of its two fonts";
    RecordingModule::calls().clear();
    installed.clear();
    source.add_font(make_bitmap("courier", "80", "75"));
    EXPECT_EQ(install(source), GWHRNElement::DONE);
    EXPECT_EQ(RecordingModule::calls().size(), 3U) << "two sizes, so both";
}

TEST_F(Installing, TheSameFontIsAConflictAndNothingIsWritten) {
    installed.add_font(make_outline("courier"));
    GWFont* there = installed.get_elem_at_pos(1)->get_representative();
    there->set_dir_name("/there/");
    source.add_font(make_outline("courier"));
    EXPECT_EQ(install(source), GWHRNElement::CONFLICT);
    EXPECT_TRUE(RecordingModule::calls().empty());
    ASSERT_EQ(conflicts.get_count(), 1);
    const GWConflict& conflict = *conflicts.get_elem_at_pos(1);
    EXPECT_EQ(conflict.get_type(), GWConflict::INSTALL);
    EXPECT_EQ(conflict.is_conflict(GWConflict::SAME_NAME), 1);
    EXPECT_EQ(conflict.is_conflict(GWConflict::READ_ONLY), 0);
    EXPECT_EQ(conflict.get_conflict_dir_name(), "/there/");
}

TEST_F(Installing, AReadOnlyFontInTheWayIsNoted) {
    GWFont* locked = make_outline("courier");
    gw::test::give_file(*locked, "missing.pfa", "/nonexistent");
    installed.add_font(locked);
    source.add_font(make_outline("courier"));
    EXPECT_EQ(install(source), GWHRNElement::CONFLICT);
    EXPECT_EQ(conflicts.get_elem_at_pos(1)->is_conflict(GWConflict::READ_ONLY), 1);
}

TEST_F(Installing, AFontNamedLikeAnAliasIsNotInstalledAndMakesNoConflict) {
    source.add_font(make_outline("courier"));
    aliases.insert(new GWAlias("-ADOBE-courier-medium-r-normal--0-0-0-0-p-0-iso8859-1", "fixed", "/"));
    EXPECT_EQ(install(source), GWHRNElement::CONFLICT);
    EXPECT_TRUE(RecordingModule::calls().empty());
    EXPECT_EQ(conflicts.get_count(), 0);
}

TEST_F(Installing, ByForceReplacesWhatIsInTheWay) {
    installed.add_font(make_bitmap("courier", "120"));
    source.add_font(make_bitmap("courier", "120"));
    ASSERT_EQ(install(source), GWHRNElement::CONFLICT);
    // The source list is refilled while the conflict waits.
    source.clear();
    conflicts.get_elem_at_pos(1)->install_force(modules);
    EXPECT_EQ(RecordingModule::calls().size(), 2U);
    EXPECT_TRUE(RecordingModule::calls()[0].starts_with("delete "));
    EXPECT_TRUE(RecordingModule::calls()[1].starts_with("install "));
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_STREQ(installed.get_elem_at_pos(1)->get_representative()->get_dir_name(), dir.c_str());
}

TEST_F(Installing, ByForceDoesNothingToAReadOnlyFont) {
    GWFont* locked = make_outline("courier");
    gw::test::give_file(*locked, "missing.pfa", "/nonexistent");
    installed.add_font(locked);
    source.add_font(make_outline("courier"));
    install(source);
    conflicts.get_elem_at_pos(1)->install_force(modules);
    EXPECT_TRUE(RecordingModule::calls().empty());
}

TEST_F(Installing, DeletingRemovesTheElement) {
    installed.add_font(make_bitmap("courier", "120"));
    installed.add_font(make_bitmap("courier", "80"));
    EXPECT_EQ(installed.delete_at_pos(1, modules, conflicts), GWHRNElement::DONE);
    EXPECT_EQ(RecordingModule::calls().size(), 2U);
    EXPECT_EQ(installed.get_count(), 0);
}

TEST_F(Installing, OneReadOnlyFontKeepsTheWholeElement) {
    installed.add_font(make_bitmap("courier", "120"));
    GWFont* locked = make_bitmap("courier", "80");
    gw::test::give_file(*locked, "missing.pcf", "/nonexistent");
    installed.add_font(locked);
    EXPECT_EQ(installed.delete_at_pos(1, modules, conflicts), GWHRNElement::CONFLICT);
    EXPECT_TRUE(RecordingModule::calls().empty());
    EXPECT_EQ(installed.get_count(), 1);
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(conflicts.get_elem_at_pos(1)->get_type(), GWConflict::DELETE);
    EXPECT_EQ(conflicts.get_elem_at_pos(1)->is_conflict(GWConflict::READ_ONLY), 1);
    conflicts.get_elem_at_pos(1)->delete_force(modules);
    EXPECT_EQ(installed.get_count(), 1) << "force does not remove a read-only font";
}

TEST_F(Installing, ASystemFontIsDeletedByForceOnly) {
    GWFont* system = make_bitmap("courier", "80");
    system->set_dir_name("/usr/vantor/lib/X11/fonts/misc/");
    installed.add_font(system);
    EXPECT_EQ(installed.delete_at_pos(1, modules, conflicts), GWHRNElement::CONFLICT);
    EXPECT_EQ(conflicts.get_elem_at_pos(1)->is_conflict(GWConflict::SYSTEM_FONT), 1);
    conflicts.get_elem_at_pos(1)->delete_force(modules);
    EXPECT_EQ(installed.get_count(), 0);
    EXPECT_EQ(RecordingModule::calls().size(), 1U);
}

TEST_F(Installing, AnAliasConflictIsReadOnlyAndWithstandsForce) {
    GWAlias alias("fixed", "x", "/");
    GWConflict conflict(GWConflict::DELETE, nullptr, &alias, nullptr, nullptr, nullptr);
    EXPECT_EQ(conflict.is_conflict(GWConflict::ALIAS), 1);
    EXPECT_EQ(conflict.is_conflict(GWConflict::READ_ONLY), 1);
    conflict.delete_force(modules);
    conflict.install_force(modules);
    EXPECT_TRUE(RecordingModule::calls().empty());
}

TEST_F(Installing, AConflictKnowsItsFiveReasonsOnly) {
    GWConflict conflict(GWConflict::DELETE, nullptr, nullptr, nullptr, nullptr, nullptr);
    for (const int unknown : {0, 10, 16}) {
        conflict.set_conflict(static_cast<GWConflict::INFO>(unknown), nullptr, 0, 0);
        EXPECT_EQ(conflict.is_conflict(static_cast<GWConflict::INFO>(unknown)), 0) << unknown;
    }
    for (int reason = 11; reason <= 15; ++reason) {
        EXPECT_EQ(conflict.is_conflict(static_cast<GWConflict::INFO>(reason)), 0) << reason;
        conflict.set_conflict(static_cast<GWConflict::INFO>(reason), nullptr, 999, 999);
        EXPECT_EQ(conflict.is_conflict(static_cast<GWConflict::INFO>(reason)), 1) << reason;
    }
    EXPECT_EQ(conflict.get_conflict_dir_name(), "");
}

TEST_F(Installing, AConflictKeepsAliveWhatItRefersTo) {
    installed.add_font(make_outline("courier"));
    source.add_font(make_outline("courier"));
    install(source);
    source.clear();
    installed.clear();
    const GWConflict& conflict = *conflicts.get_elem_at_pos(1);
    EXPECT_STREQ(conflict.get_element()->get_name(), "Courier Medium [Type-1]");
    EXPECT_STREQ(conflict.get_other_element()->get_name(), "Courier Medium [Type-1]");
}

}  // namespace
