// SPDX-License-Identifier: MIT
//
// The table of font types: each type that is in use has a module of this type, in the order of the table.
#include <gtest/gtest.h>

#include <vector>

#include "model/gw_font.h"
#include "modules/font_modules.h"

namespace {

TEST(FontModules, AreAppendedInTheOrderOfTheTable) {
    GW_FSM_LIST modules;
    gw::append_font_modules(modules);
    std::vector<int> types;
    for (const GW_FSM_BASE* module : modules) types.push_back(module->get_type());
    EXPECT_EQ(types, (std::vector<int>{GWFont::TYPE1_FONT, GWFont::BITMAP_FONT}));
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
