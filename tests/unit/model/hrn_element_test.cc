// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "modules/gw_pcf_fsm.h"
#include "support/heard_failures.h"
#include "unit/model/model_test_support.h"

namespace {

using gw::Ref;
using gw::test::make_font;
using gw::test::make_read_only_font;
using gw::test::names_of;
using gw::test::place;
using gw::test::RecordingModules;
using gw::test::TempDir;
using gw::test::Xlfd;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> sizes_of(const GWHRNElement& elem) {
    unsigned count = 0;
    const std::vector<std::string> sizes = elem.get_point_sizes(count);
    EXPECT_EQ(sizes.size(), count);
    return sizes;
}

std::vector<std::string> resolutions_of(const GWHRNElement& elem, const char* point_size) {
    unsigned count = 99;
    const std::vector<std::string> resolutions = elem.get_res(point_size, count);
    EXPECT_EQ(resolutions.size(), count);
    return resolutions;
}

Ref<GWHRNElement> element_of(const std::vector<Ref<GWFont>>& fonts) {
    Ref<GWHRNElement> elem(new GWHRNElement(fonts.front().get()));
    for (std::size_t i = 1; i < fonts.size(); ++i) EXPECT_EQ(elem->add_font(fonts[i].get(), 0), 1) << i;
    return elem;
}

TEST(HrnElement, OfOneFontHasItsNameSizeAndResolution) {
    const Ref<GWFont> font = make_font(Xlfd{});
    const Ref<GWHRNElement> elem = element_of({font});
    EXPECT_STREQ(elem->get_name(), "Courier Medium [Bitmap]");
    EXPECT_THAT(sizes_of(*elem), ElementsAre("120"));
    EXPECT_THAT(resolutions_of(*elem, "120"), ElementsAre("75 X 75"));
    EXPECT_EQ(elem->get_representative(), font.get());
    EXPECT_EQ(elem->is_read_only(), 0);
    EXPECT_EQ(elem->get_disk_space(), 0U);
}

TEST(HrnElement, OfABareAliasHasSize00AndResolution0) {
    const Ref<GWHRNElement> elem = element_of({make_font("fixed")});
    EXPECT_STREQ(elem->get_name(), "fixed  [Bitmap]");
    EXPECT_THAT(sizes_of(*elem), ElementsAre("00"));
    EXPECT_THAT(resolutions_of(*elem, "00"), ElementsAre("0"));
}

TEST(HrnElement, CutsSizeAndResolutionTextsAt19Characters) {
    const std::string digits(30, '1');
    const Ref<GWFont> font = make_font(Xlfd{.decipoints = digits, .resolution = digits});
    const Ref<GWHRNElement> elem = element_of({font});
    EXPECT_THAT(sizes_of(*elem), ElementsAre(std::string(19, '1')));
    EXPECT_THAT(resolutions_of(*elem, std::string(19, '1').c_str()), ElementsAre(std::string(19, '1')));
    EXPECT_EQ(elem->add_font(make_font(Xlfd{.decipoints = digits, .resolution = "75"}).get(), 0), 1);
    EXPECT_EQ(sizes_of(*elem).size(), 1U);
}

TEST(HrnElementAddFont, SortsSizesByNumber) {
    const Ref<GWHRNElement> elem = element_of({
        make_font(Xlfd{.decipoints = "120"}),
        make_font(Xlfd{.decipoints = "80"}),
        make_font(Xlfd{.decipoints = "1000"}),
        make_font(Xlfd{.decipoints = "240"}),
    });
    EXPECT_THAT(sizes_of(*elem), ElementsAre("80", "120", "240", "1000"));
}

TEST(HrnElementAddFont, PutsASizeOfEqualValueBehindTheOld) {
    const Ref<GWHRNElement> elem = element_of({
        make_font(Xlfd{.decipoints = "120"}),
        make_font(Xlfd{.decipoints = "0120"}),
        make_font(Xlfd{.decipoints = "80"}),
        make_font(Xlfd{.decipoints = "00120"}),
    });
    EXPECT_THAT(sizes_of(*elem), ElementsAre("80", "120", "0120", "00120"));
}

TEST(HrnElementAddFont, CountsASizeWithoutDigitsAsZero) {
    const Ref<GWHRNElement> elem = element_of({
        make_font(Xlfd{.decipoints = "120"}),
        make_font(Xlfd{.decipoints = "*"}),
        make_font(Xlfd{.decipoints = ""}),
        make_font(Xlfd{.decipoints = "[1 0 0 1]"}),
    });
    EXPECT_THAT(sizes_of(*elem), ElementsAre("*", "", "[1 0 0 1]", "120"));
}

TEST(HrnElementAddFont, GathersTheResolutionsOfASizeInTheOrderAdded) {
    const Ref<GWFont> coarse = make_font(Xlfd{.resolution = "100"});
    const Ref<GWFont> fine = make_font(Xlfd{.resolution = "75"});
    const Ref<GWHRNElement> elem = element_of({coarse, fine});
    EXPECT_THAT(sizes_of(*elem), ElementsAre("120"));
    EXPECT_THAT(resolutions_of(*elem, "120"), ElementsAre("100 X 100", "75 X 75"));
    EXPECT_EQ(elem->get_font("120", "75 X 75"), fine.get());
}

TEST(HrnElementAddFont, RefusesWhatIsNotABitmapFontOfTheFace) {
    const Ref<GWFont> bitmap = make_font(Xlfd{});
    const struct {
        const char* what;
        Ref<GWFont> representative;
        Ref<GWFont> font;
    } cases[] = {
        {"an outline font", bitmap, make_font(Xlfd{}, GWFont::TYPE1_FONT)},
        {"a font for an outline element", make_font(Xlfd{}, GWFont::TYPE1_FONT), bitmap},
        {"two outline fonts", make_font(Xlfd{}, GWFont::TYPE1_FONT), make_font(Xlfd{}, GWFont::TYPE1_FONT)},
        {"a bare alias", bitmap, make_font("fixed")},
        {"a bare alias of the same name", make_font("fixed"), make_font("fixed")},
        {"another face", bitmap, make_font(Xlfd{.weight = "bold"})},
        {"another foundry", bitmap, make_font(Xlfd{.foundry = "misc"})},
        {"another charset", bitmap, make_font(Xlfd{.charset = "iso8859-2"})},
    };
    for (const auto& c : cases) {
        const Ref<GWHRNElement> elem = element_of({c.representative});
        const std::string name = elem->get_name();
        EXPECT_EQ(elem->add_font(c.font.get(), 0), 0) << c.what;
        EXPECT_EQ(elem->get_representative(), c.representative.get()) << c.what;
        EXPECT_EQ(sizes_of(*elem).size(), 1U) << c.what;

        EXPECT_EQ(elem->add_font(c.font.get(), 1), 1) << c.what;
        EXPECT_EQ(elem->get_representative(), c.font.get()) << c.what;
        EXPECT_EQ(sizes_of(*elem).size(), 1U) << c.what;
        EXPECT_EQ(elem->get_name(), c.font->get_hrn_name()) << c.what;
    }
}

TEST(HrnElementAddFont, ForcedByAFontThatFitsAddsIt) {
    const Ref<GWHRNElement> elem = element_of({make_font(Xlfd{})});
    EXPECT_EQ(elem->add_font(make_font(Xlfd{.decipoints = "80"}).get(), 1), 1);
    EXPECT_THAT(sizes_of(*elem), ElementsAre("80", "120"));
}

TEST(HrnElementAddFont, TakesAHundredSizesAndTwentyFontsOfEach) {
    const Ref<GWHRNElement> by_size = element_of({make_font(Xlfd{.decipoints = "10"})});
    for (int size = 11; size < 110; ++size) {
        ASSERT_EQ(by_size->add_font(make_font(Xlfd{.decipoints = std::to_string(size)}).get(), 0), 1) << size;
    }
    EXPECT_EQ(sizes_of(*by_size).size(), 100U);
    EXPECT_EQ(by_size->add_font(make_font(Xlfd{.decipoints = "5"}).get(), 0), 0);
    EXPECT_EQ(by_size->add_font(make_font(Xlfd{.decipoints = "50", .resolution = "100"}).get(), 0), 1);
    EXPECT_EQ(sizes_of(*by_size).size(), 100U);

    const Ref<GWHRNElement> by_font = element_of({make_font(Xlfd{.resolution = "1"})});
    for (int resolution = 2; resolution <= 20; ++resolution) {
        ASSERT_EQ(by_font->add_font(make_font(Xlfd{.resolution = std::to_string(resolution)}).get(), 0), 1)
            << resolution;
    }
    EXPECT_EQ(by_font->add_font(make_font(Xlfd{.resolution = "21"}).get(), 0), 0);
    EXPECT_EQ(by_font->add_font(make_font(Xlfd{.decipoints = "80"}).get(), 0), 1);
    EXPECT_EQ(resolutions_of(*by_font, "120").size(), 20U);
}

TEST(HrnElementAddFont, ForcedDropsNothingOfAFullElement) {
    const Ref<GWHRNElement> elem = element_of({make_font(Xlfd{.resolution = "1"})});
    for (int resolution = 2; resolution <= 21; ++resolution) {
        ASSERT_EQ(elem->add_font(make_font(Xlfd{.resolution = std::to_string(resolution)}).get(), 1), 1)
            << resolution;
    }
    EXPECT_EQ(resolutions_of(*elem, "120").size(), 21U);
}

TEST(HrnElementAddFont, SumsDiskSpaceAndInheritsReadOnly) {
    const TempDir dir;
    dir.write("a.pcf", std::string(10000, 'a'));
    dir.write("b.pcf", std::string(90000, 'b'));
    const Ref<GWFont> small = make_font(Xlfd{.decipoints = "80"});
    place(*small, dir.path(), {"a.pcf"});
    const Ref<GWFont> large = make_font(Xlfd{.decipoints = "240"});
    place(*large, dir.path(), {"b.pcf"});
    const Ref<GWHRNElement> elem = element_of({small, large});
    EXPECT_GT(large->get_disk_space(), small->get_disk_space());
    EXPECT_EQ(elem->get_disk_space(), small->get_disk_space() + large->get_disk_space());
    EXPECT_EQ(elem->is_read_only(), 0);

    EXPECT_EQ(elem->add_font(make_read_only_font(Xlfd{.decipoints = "100"}.str()).get(), 0), 1);
    EXPECT_EQ(elem->is_read_only(), 1);
    EXPECT_EQ(elem->add_font(make_font(Xlfd{.decipoints = "140"}).get(), 0), 1);
    EXPECT_EQ(elem->is_read_only(), 1);
    EXPECT_STREQ(elem->get_name(), "Courier Medium [Bitmap]");  // made of the first font

    EXPECT_EQ(elem->del_font(small.get()), 1);
    EXPECT_EQ(elem->get_disk_space(), large->get_disk_space());
}

TEST(HrnElementDelFont, RemovesThatVeryFontAndKeepsItsSize) {
    const Ref<GWFont> first = make_font(Xlfd{.resolution = "75"});
    const Ref<GWFont> second = make_font(Xlfd{.resolution = "100"});
    const Ref<GWFont> large = make_font(Xlfd{.decipoints = "240"});
    const Ref<GWHRNElement> elem = element_of({first, second, large});
    EXPECT_EQ(elem->del_font(make_font(Xlfd{.resolution = "75"}).get()), 0);
    EXPECT_EQ(elem->del_font(first.get()), 1);
    EXPECT_THAT(resolutions_of(*elem, "120"), ElementsAre("100 X 100"));
    EXPECT_EQ(elem->get_representative(), second.get());
    EXPECT_EQ(elem->del_font(first.get()), 0);
    EXPECT_EQ(elem->del_font(second.get()), 1);
    EXPECT_THAT(sizes_of(*elem), ElementsAre("120", "240"));
    EXPECT_THAT(resolutions_of(*elem, "120"), IsEmpty());
    EXPECT_EQ(elem->get_representative(), large.get());
    EXPECT_EQ(elem->get_font("120", "75 X 75"), large.get());
}

TEST(HrnElementDelFont, OfTheLastFontLeavesAnElementThatRefusesAll) {
    const Ref<GWFont> font = make_font(Xlfd{});
    const Ref<GWHRNElement> elem = element_of({font});
    EXPECT_EQ(elem->del_font(font.get()), 1);
    EXPECT_EQ(elem->get_representative(), nullptr);
    EXPECT_EQ(elem->get_font("120", "75 X 75"), nullptr);
    EXPECT_EQ(elem->add_font(font.get(), 0), 0);
    const GWHRNElement copy = *elem;
    EXPECT_STREQ(copy.get_name(), "");
}

TEST(HrnElementGetFont, FindsBySizeAndResolutionElseTheRepresentative) {
    const Ref<GWFont> small = make_font(Xlfd{.decipoints = "80"});
    const Ref<GWFont> coarse = make_font(Xlfd{.decipoints = "120", .resolution = "75"});
    const Ref<GWFont> fine = make_font(Xlfd{.decipoints = "120", .resolution = "100"});
    const Ref<GWHRNElement> elem = element_of({coarse, fine, small});
    EXPECT_EQ(elem->get_font("120", "100 X 100"), fine.get());
    EXPECT_EQ(elem->get_font("120", "75 X 75"), coarse.get());
    for (const auto& [size, resolution] : std::vector<std::pair<const char*, const char*>>{
             {"120", "75x75"}, {"0120", "75 X 75"}, {"80", "100 X 100"}, {"", ""}, {nullptr, nullptr}}) {
        EXPECT_EQ(elem->get_font(size, resolution), small.get()) << (size != nullptr ? size : "null");
    }
    const Ref<GWFont> outline = make_font(Xlfd{}, GWFont::TYPE1_FONT);
    EXPECT_EQ(element_of({outline})->get_font("9", "nothing"), outline.get());
}

TEST(HrnElementGetRes, KnowsNothingOfOtherSizes) {
    const Ref<GWHRNElement> elem = element_of({make_font(Xlfd{})});
    for (const char* size : {"80", "0120", "", "120 "})
        EXPECT_THAT(resolutions_of(*elem, size), IsEmpty()) << size;
    EXPECT_THAT(resolutions_of(*elem, nullptr), IsEmpty());
}

TEST(HrnElementCopy, SharesTheFontsAndMakesItsNameAnew) {
    const Ref<GWFont> small = make_font(Xlfd{.decipoints = "80"});
    const Ref<GWFont> large = make_font(Xlfd{.decipoints = "240"});
    Ref<GWHRNElement> elem = element_of({small, large});
    small->set_field(GWFont::TYPEFACE_NAME, "renamed");
    const Ref<GWHRNElement> copy(new GWHRNElement(*elem));
    EXPECT_STREQ(elem->get_name(), "Courier Medium [Bitmap]");
    EXPECT_STREQ(copy->get_name(), "Renamed Medium [Bitmap]");
    EXPECT_THAT(sizes_of(*copy), ElementsAre("80", "240"));
    EXPECT_EQ(copy->get_font("240", "75 X 75"), large.get());
    elem = Ref<GWHRNElement>();
    EXPECT_EQ(copy->get_representative(), small.get());
}

TEST(HrnElement, ComparesNamesWithoutRegardToCase) {
    const Ref<GWHRNElement> lower = element_of({make_font("courier")});
    const Ref<GWHRNElement> upper = element_of({make_font("COURIER")});
    const Ref<GWHRNElement> bold = element_of({make_font("Courier Bold")});
    EXPECT_EQ(lower->compare(upper.get()), 0);
    EXPECT_NE(lower->compare(bold.get()), 0);
    EXPECT_EQ(lower->compare(bold.get()) < 0, upper->compare(bold.get()) < 0);
}

/// Fixture for installing and deleting.
class HrnElementActions : public testing::Test {
  protected:
    ~HrnElementActions() override {
        gw::delete_elements(conflicts);
        gw::delete_elements(aliases);
    }
    int install(GWHRNElement& elem) {
        return elem.install_fonts(dir.c_str(), installed, aliases, modules.list, conflicts);
    }
    int remove(GWHRNElement& elem) { return elem.delete_fonts(modules.list, conflicts, installed); }
    /// Adds a font of that name in the directory `where` to the list of installed fonts.
    Ref<GWFont> installed_font(const std::string& name, const std::string& where,
                               GWFont::GW_FONT_TYPE type = GWFont::BITMAP_FONT) {
        Ref<GWFont> font = make_font(name, type);
        font->set_dir_name(where.c_str());
        installed.add_font(font.get());
        return font;
    }
    [[nodiscard]] GWConflict* conflict() const { return conflicts.get_elem_at_pos(1); }

    TempDir dir;
    RecordingModules modules;
    GWHRNList installed{0};
    GW_SORTED_LIST<GWAlias> aliases{0};
    GW_LIST<GWConflict> conflicts;
};

using HrnElementInstall = HrnElementActions;

TEST_F(HrnElementInstall, InstallsEveryFontAndListsIt) {
    const Ref<GWHRNElement> elem =
        element_of({make_font(Xlfd{.decipoints = "120"}), make_font(Xlfd{.decipoints = "80"}),
                    make_font(Xlfd{.decipoints = "80", .resolution = "100"})});
    EXPECT_EQ(install(*elem), GWHRNElement::DONE);
    EXPECT_THAT(modules.calls, ElementsAre("install " + Xlfd{.decipoints = "80"}.str() + ' ' + dir.path(),
                                           "install " + Xlfd{.decipoints = "80", .resolution = "100"}.str() +
                                               ' ' + dir.path(),
                                           "install " + Xlfd{.decipoints = "120"}.str() + ' ' + dir.path()));
    EXPECT_THAT(names_of(installed), ElementsAre("Courier Medium [Bitmap]"));
    const GWHRNElement* listed = installed.get_elem_at_pos(1);
    EXPECT_THAT(sizes_of(*listed), ElementsAre("80", "120"));
    EXPECT_EQ(listed->get_representative()->get_dir_name(), dir.path());
    EXPECT_NE(listed->get_representative(), elem->get_representative());
    EXPECT_TRUE(conflicts.is_empty());
}

TEST_F(HrnElementInstall, AddsASizeToTheNameThatIsThere) {
    installed_font(Xlfd{.decipoints = "120"}.str(), "/old/");
    EXPECT_EQ(install(*element_of({make_font(Xlfd{.decipoints = "80"})})), GWHRNElement::DONE);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_THAT(sizes_of(*installed.get_elem_at_pos(1)), ElementsAre("80", "120"));
}

// Of each size, at most as many fonts are installed as there are point sizes.
TEST_F(HrnElementInstall, InstallsOfEachSizeAsManyFontsAsThereAreSizes) {
    const Ref<GWHRNElement> one_size =
        element_of({make_font(Xlfd{.resolution = "75"}), make_font(Xlfd{.resolution = "100"}),
                    make_font(Xlfd{.resolution = "150"})});
    EXPECT_EQ(install(*one_size), GWHRNElement::DONE);
    EXPECT_THAT(modules.calls, ElementsAre("install " + Xlfd{.resolution = "75"}.str() + ' ' + dir.path()));
    EXPECT_THAT(resolutions_of(*installed.get_elem_at_pos(1), "120"), ElementsAre("75 X 75"));

    modules.calls.clear();
    installed.clear();
    ASSERT_EQ(one_size->add_font(make_font(Xlfd{.decipoints = "80"}).get(), 0), 1);
    EXPECT_EQ(install(*one_size), GWHRNElement::DONE);
    EXPECT_EQ(modules.calls.size(), 3U);  // one of size 80, two of the three of size 120
    EXPECT_THAT(resolutions_of(*installed.get_elem_at_pos(1), "120"), ElementsAre("75 X 75", "100 X 100"));
}

TEST_F(HrnElementInstall, StopsAtTheFirstInstalledElementOfTheSameFont) {
    const Xlfd same;
    const Ref<GWFont> old = installed_font(same.str(), "/old/");
    const Ref<GWHRNElement> elem = element_of({make_font(same), make_font(Xlfd{.decipoints = "80"})});
    EXPECT_EQ(install(*elem), GWHRNElement::CONFLICT);
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_FALSE(dir.exists("fonts.dir"));
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(conflict()->get_type(), GWConflict::INSTALL);
    EXPECT_EQ(conflict()->get_element(), elem.get());
    EXPECT_EQ(conflict()->get_other_element(), installed.get_elem_at_pos(1));
    EXPECT_EQ(conflict()->get_alias(), nullptr);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::SAME_NAME), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 0);
    EXPECT_EQ(conflict()->get_conflict_dir_name(), "/old/");
}

TEST_F(HrnElementInstall, ComparesOnlyElementsOfTheSameType) {
    installed_font(Xlfd{}.str(), "/old/", GWFont::TYPE1_FONT);
    EXPECT_EQ(install(*element_of({make_font(Xlfd{})})), GWHRNElement::DONE);
    EXPECT_EQ(installed.get_count(), 2);
}

TEST_F(HrnElementInstall, SaysReadOnlyWhereTheInstalledFontIs) {
    installed.add_font(make_read_only_font(Xlfd{}.str()).get());
    EXPECT_EQ(install(*element_of({make_font(Xlfd{})})), GWHRNElement::CONFLICT);
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::SAME_NAME), 0);
    EXPECT_EQ(conflict()->get_conflict_dir_name(), "/nonexistent/");
}

TEST_F(HrnElementInstall, RecordsOneConflictForAllItsFonts) {
    installed_font(Xlfd{.decipoints = "80"}.str(), "/writable/");
    installed.add_font(make_read_only_font(Xlfd{.decipoints = "120"}.str()).get());
    const Ref<GWHRNElement> elem =
        element_of({make_font(Xlfd{.decipoints = "80"}), make_font(Xlfd{.decipoints = "120"})});
    EXPECT_EQ(install(*elem), GWHRNElement::CONFLICT);
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::SAME_NAME), 1);
    EXPECT_EQ(conflict()->get_conflict_dir_name(), "/writable/");
}

TEST_F(HrnElementInstall, StopsAtAnAliasOfTheSameNameWithoutAConflict) {
    const Xlfd upper{.foundry = "ADOBE"};
    for (const GWFont::GW_FONT_TYPE type : {GWFont::BITMAP_FONT, GWFont::TYPE1_FONT}) {
        aliases.insert(new GWAlias(upper.str().c_str(), "-something", "/aliases/"));
        EXPECT_EQ(install(*element_of({make_font(Xlfd{}, type)})), GWHRNElement::CONFLICT) << type;
        EXPECT_TRUE(conflicts.is_empty()) << type;
        EXPECT_TRUE(installed.is_empty()) << type;
    }
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_FALSE(dir.exists("fonts.dir"));
}

TEST_F(HrnElementInstall, StopsAtAnAliasOfAnyOfItsFonts) {
    aliases.insert(new GWAlias(Xlfd{.decipoints = "240"}.str().c_str(), "-something", "/aliases/"));
    const Ref<GWHRNElement> elem =
        element_of({make_font(Xlfd{.decipoints = "80"}), make_font(Xlfd{.decipoints = "240"})});
    EXPECT_EQ(install(*elem), GWHRNElement::CONFLICT);
    EXPECT_TRUE(modules.calls.empty());
}

TEST_F(HrnElementInstall, ComparesPostScriptNamedFontsWithNoAlias) {
    const Ref<GWFont> font = make_font("Ryumin", GWFont::TYPE0_FONT);
    aliases.insert(new GWAlias(font->get_xlfd_name(), "-something", "/aliases/"));
    EXPECT_EQ(install(*element_of({font})), GWHRNElement::DONE);
    EXPECT_EQ(installed.get_count(), 1);
}

TEST_F(HrnElementInstall, OfAnElementWithoutFontsDoesNothing) {
    const Ref<GWFont> font = make_font(Xlfd{});
    const Ref<GWHRNElement> elem = element_of({font});
    elem->del_font(font.get());
    EXPECT_EQ(install(*elem), GWHRNElement::DONE);
    EXPECT_TRUE(installed.is_empty());
}

// A font whose line does not fit into an index is left out: it is neither listed nor counted.
TEST_F(HrnElementInstall, ListsOnlyWhatTheModulesTake) {
    GW_PCF_FSM bitmap;
    modules.list.clear();
    modules.list.append(&bitmap);
    const Ref<GWFont> refused = make_font(Xlfd{.decipoints = "80"});
    place(*refused, dir.path(), {"two words.pcf"});
    dir.write("a.pcf", "x");
    const Ref<GWFont> taken = make_font(Xlfd{.decipoints = "120"});
    place(*taken, dir.path(), {"a.pcf"});
    const std::string target = dir.make_dir("target");
    const auto install_into_target = [&](GWHRNElement& elem) {
        const gw::test::HeardFailures heard;
        const int result = elem.install_fonts(target.c_str(), installed, aliases, modules.list, conflicts);
        EXPECT_NE(heard.text().find("two words.pcf"), std::string::npos);
        return result;
    };
    EXPECT_EQ(install_into_target(*element_of({refused})), GWHRNElement::FAILED);
    EXPECT_TRUE(installed.is_empty());
    EXPECT_EQ(install_into_target(*element_of({refused, taken})), GWHRNElement::DONE);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_THAT(sizes_of(*installed.get_elem_at_pos(1)), ElementsAre("120"));
    EXPECT_EQ(dir.read("target/fonts.dir"), "1\na.pcf " + Xlfd{.decipoints = "120"}.str() + '\n');
    EXPECT_TRUE(conflicts.is_empty());
}

// A font whose copy failed is neither listed nor counted.
TEST_F(HrnElementInstall, ListsOnlyWhatCouldBeCopied) {
    GW_PCF_FSM bitmap;
    modules.list.clear();
    modules.list.append(&bitmap);
    const Ref<GWFont> vanished = make_font(Xlfd{.decipoints = "80"});
    place(*vanished, dir.path(), {"vanished.pcf"});
    dir.write("a.pcf", "x");
    const Ref<GWFont> taken = make_font(Xlfd{.decipoints = "120"});
    place(*taken, dir.path(), {"a.pcf"});
    const std::string target = dir.make_dir("target");
    const auto install_into_target = [&](GWHRNElement& elem) {
        const gw::test::HeardFailures heard;
        const int result = elem.install_fonts(target.c_str(), installed, aliases, modules.list, conflicts);
        EXPECT_NE(heard.text().find("vanished.pcf: No such file"), std::string::npos);
        return result;
    };
    EXPECT_EQ(install_into_target(*element_of({vanished})), GWHRNElement::FAILED);
    EXPECT_TRUE(installed.is_empty());
    EXPECT_EQ(install_into_target(*element_of({vanished, taken})), GWHRNElement::DONE);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_THAT(sizes_of(*installed.get_elem_at_pos(1)), ElementsAre("120"));
    EXPECT_EQ(dir.read("target/fonts.dir"), "1\na.pcf " + Xlfd{.decipoints = "120"}.str() + '\n');
}

using HrnElementConflict = HrnElementActions;

TEST_F(HrnElementConflict, IsNoneForDifferentFontsOfOneName) {
    const Ref<GWHRNElement> old = element_of({make_font(Xlfd{.decipoints = "80"})});
    EXPECT_EQ(element_of({make_font(Xlfd{})})->_hrn_elem_conflict(old.get(), conflicts, "/new/"), 0);
    EXPECT_TRUE(conflicts.is_empty());
}

using HrnElementDelete = HrnElementActions;

TEST_F(HrnElementDelete, DeletesEveryFontAndLeavesNoSizes) {
    const Ref<GWFont> first = make_font(Xlfd{.decipoints = "80"});
    const Ref<GWHRNElement> elem = element_of({first, make_font(Xlfd{.decipoints = "120"})});
    EXPECT_EQ(remove(*elem), GWHRNElement::DONE);
    EXPECT_THAT(modules.calls, ElementsAre("delete " + Xlfd{.decipoints = "80"}.str(),
                                           "delete " + Xlfd{.decipoints = "120"}.str()));
    EXPECT_THAT(sizes_of(*elem), IsEmpty());
    EXPECT_EQ(elem->get_representative(), nullptr);
    EXPECT_EQ(first->owners(), 1) << "the element still holds a deleted font";
    EXPECT_TRUE(conflicts.is_empty());
}

TEST_F(HrnElementDelete, DeletesNothingWhenOneFontIsReadOnly) {
    const Ref<GWHRNElement> elem = element_of(
        {make_font(Xlfd{.decipoints = "80"}), make_read_only_font(Xlfd{.decipoints = "120"}.str())});
    EXPECT_EQ(remove(*elem), GWHRNElement::CONFLICT);
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_THAT(sizes_of(*elem), ElementsAre("80", "120"));
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(conflict()->get_type(), GWConflict::DELETE);
    EXPECT_EQ(conflict()->get_element(), elem.get());
    EXPECT_EQ(conflict()->get_other_element(), nullptr);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::SYSTEM_FONT), 0);
    EXPECT_EQ(conflict()->get_conflict_dir_name(), "");
}

TEST_F(HrnElementDelete, KeepsTheFontThatCouldNotBeDeleted) {
    const Xlfd gone{.decipoints = "120"};
    const Xlfd staying{.decipoints = "80"};
    installed_font(gone.str(), "/old/");
    installed_font(staying.str(), "/old/");
    modules.bitmap.refused = staying.str();
    EXPECT_EQ(installed.delete_at_pos(1, modules.list, conflicts), GWHRNElement::FAILED);
    EXPECT_EQ(modules.calls.size(), 2U);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative()->get_xlfd_name(), staying.str());
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_font("120", "75 X 75")->get_xlfd_name(), staying.str());
    modules.bitmap.refused.clear();
    EXPECT_EQ(installed.delete_at_pos(1, modules.list, conflicts), GWHRNElement::DONE);
    EXPECT_TRUE(installed.is_empty());
}

TEST_F(HrnElementDelete, AsksFirstForSystemFonts) {
    const struct {
        const char* where;
        bool expected;
    } cases[] = {
        {"/usr/vantor/lib/X11/fonts/misc/", true},
        {"/usr/vantor/lib/X11/fonts", true},
        {"/mnt/usr/vantor/lib/X11/fonts/misc/", true},
        {"/usr/vantor/lib/X11/fontsets/", true},
        {"/usr/vantor/lib/X11/", false},
        {"/home/me/fonts/", false},
    };
    for (const auto& c : cases) {
        gw::delete_elements(conflicts);
        const Ref<GWFont> font = make_font(Xlfd{});
        font->set_dir_name(c.where);
        const Ref<GWHRNElement> elem = element_of({font});
        EXPECT_EQ(remove(*elem), c.expected ? GWHRNElement::CONFLICT : GWHRNElement::DONE) << c.where;
        ASSERT_EQ(conflicts.get_count(), c.expected ? 1 : 0) << c.where;
        if (!c.expected) continue;
        EXPECT_EQ(conflict()->is_conflict(GWConflict::SYSTEM_FONT), 1) << c.where;
        EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 0) << c.where;
    }
}

TEST_F(HrnElementDelete, SaysReadOnlyRatherThanSystemOfOneFontAndBothOfTwo) {
    const Ref<GWFont> locked = make_font(Xlfd{.decipoints = "80"});
    place(*locked, "/usr/vantor/lib/X11/fonts/no-such-directory/", {"a.pcf"});
    ASSERT_TRUE(locked->is_read_only());
    const Ref<GWHRNElement> one = element_of({locked});
    EXPECT_EQ(remove(*one), GWHRNElement::CONFLICT);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::SYSTEM_FONT), 0);

    gw::delete_elements(conflicts);
    const Ref<GWFont> system = make_font(Xlfd{.decipoints = "120"});
    system->set_dir_name("/usr/vantor/lib/X11/fonts/misc/");
    ASSERT_EQ(one->add_font(system.get(), 0), 1);
    EXPECT_EQ(remove(*one), GWHRNElement::CONFLICT);
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::READ_ONLY), 1);
    EXPECT_EQ(conflict()->is_conflict(GWConflict::SYSTEM_FONT), 1);
}

}  // namespace
