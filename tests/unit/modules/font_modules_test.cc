// SPDX-License-Identifier: MIT
//
// The table of font types: each type that is in use has a module of this type, in the order of the table.
#include <gtest/gtest.h>

#include <vector>

#include "model/gw_font.h"
#include "modules/font_modules.h"
#include "support/under_policy.h"

namespace {

std::vector<int> types_in_use() {
    GW_FSM_LIST modules;
    gw::append_font_modules(modules);
    std::vector<int> types;
    for (const GW_FSM_BASE* module : modules) types.push_back(module->get_type());
    return types;
}

TEST(FontModules, AreAppendedInTheOrderOfTheTable) {
    const gw::test::UnderPolicy modern(true);
    EXPECT_EQ(types_in_use(), (std::vector<int>{GWFont::TYPE1_FONT, GWFont::BITMAP_FONT,
                                                GWFont::TRUETYPE_FONT, GWFont::OPENTYPE_FONT}));
}

TEST(FontModules, OfTodaysFormatsAreNotInUseWithoutThePolicy) {
    const gw::test::UnderPolicy plain(false);
    EXPECT_EQ(types_in_use(), (std::vector<int>{GWFont::TYPE1_FONT, GWFont::BITMAP_FONT}));
}

TEST(FontModules, AreMadeOnce) {
    EXPECT_EQ(&gw::type1_module(), &gw::type1_module());
    EXPECT_EQ(&gw::bitmap_module(), &gw::bitmap_module());
}

TEST(FontModules, HaveTheTypeOfTheirLine) {
#define FONT_TYPE(name, number, word, naming, form, module) \
    EXPECT_EQ(gw::module().get_type(), GWFont::name) << #module;
#define UNUSED_FONT_TYPE(name, number, word, naming, form)
#include "model/font_types.def"
}

}  // namespace
