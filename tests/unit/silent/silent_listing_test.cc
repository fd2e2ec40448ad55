// SPDX-License-Identifier: MIT
//
// The lists of fonts and aliases when a directory of the font path does not answer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drivers/engine_globals.h"
#include "drivers/gw_alias_driver.h"
#include "drivers/gw_installed_fonts_driver.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/path_element.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "support/heard_failures.h"
#include "support/sleeping_files.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::test::HeardFailures;
using gw::test::SleepingDirectory;
using gw::test::TempDir;
using gw::test::UnderPolicy;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

class SilentListing : public testing::Test {
  protected:
    SilentListing() {
        the_fsm_list.append(&pcf);
        for (const char* name : {"first", "mount", "last"}) {
            const std::string text(name);
            dir.write(text + "/fonts.dir",
                      "1\na.pcf -x-" + text + "-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
            dir.write(text + "/fonts.alias", "alias-of-" + text + " -x\n");
        }
    }
    ~SilentListing() override {
        the_fsm_list.clear();
        delete the_font_path;
        the_font_path = nullptr;
    }
    void use_path(const Texts& elements) const {
        std::string value;
        for (const std::string& element : elements) value += dir.file(element) + ',';
        dir.write("root/server/etc/VTconfig", "XDISPLAY.0.fontpath:\t" + value + "\n");
        delete the_font_path;
        the_font_path = new GWFontPath(dir.file("root").c_str());
    }
    /// The first words of the names that are listed, and the aliases.
    static Texts listed() {
        Texts all;
        GWHRNList list(0);
        GWInstalledFontsDriver().get_hrn_list(list);
        for (const GWHRNElement* elem : list) {
            const std::string name(elem->get_name());
            all.push_back(name.substr(0, name.find(' ')));
        }
        GW_SORTED_LIST<GWAlias> aliases(0);
        const gw::ElementsOwner owner(aliases);
        GWAliasDriver().get_alias_list(aliases);
        for (const GWAlias* alias : aliases) all.emplace_back(alias->get_alias_name());
        return all;
    }
    const TempDir dir;
    GW_PCF_FSM pcf;
};

TEST_F(SilentListing, TheOthersAreListedAndItIsToldUntilItAnswersAgain) {
    use_path({"first/", "mount/", "last/"});
    for (const bool modern : {false, true}) {
        const UnderPolicy policy(modern);
        std::optional<SleepingDirectory> asleep(std::in_place, dir.file("mount"));
        {
            const HeardFailures heard;
            EXPECT_THAT(listed(), ElementsAre("First", "Last", "alias-of-first", "alias-of-last"));
            EXPECT_EQ(heard.text(),
                      dir.file("mount/") + ": this directory does not answer; its fonts are not listed\n");
        }
        EXPECT_THAT(asleep->looked_at(), IsEmpty());
        asleep.reset();
        const HeardFailures heard;
        EXPECT_THAT(listed(), ElementsAre("First", "Last", "Mount", "alias-of-first", "alias-of-last",
                                          "alias-of-mount"));
        EXPECT_EQ(heard.text(), "");
    }
}

TEST_F(SilentListing, ItIsToldOnceHoweverOftenItIsOnThePath) {
    const UnderPolicy modern(true);
    use_path({"mount/", "mount", "first/", "mount/:unscaled"});
    const SleepingDirectory asleep(dir.file("mount"));
    const HeardFailures heard;
    EXPECT_THAT(listed(), ElementsAre("First", "alias-of-first"));
    EXPECT_EQ(heard.text(),
              dir.file("mount/") + ": this directory does not answer; its fonts are not listed\n");
    EXPECT_THAT(asleep.looked_at(), IsEmpty());
}

TEST_F(SilentListing, ADirectoryWithAttributesHangsAsItIsWritten) {
    use_path({"mount/:unscaled", "first/"});
    const SleepingDirectory asleep(dir.file("mount"));
    const HeardFailures heard;
    EXPECT_THAT(listed(), ElementsAre("First", "alias-of-first"));
    EXPECT_EQ(heard.text(),
              dir.file("mount/:unscaled") + ": this directory does not answer; its fonts are not listed\n");
    EXPECT_THAT(asleep.looked_at(), IsEmpty());
}

TEST_F(SilentListing, ASilentElementIsItsText) {
    const std::string mount = dir.file("mount");
    const SleepingDirectory asleep(mount);
    ASSERT_THAT(gw::find_silent({mount, dir.file("first")}), ElementsAre(mount));
    EXPECT_TRUE(gw::is_silent(mount + '/'));
    EXPECT_FALSE(gw::is_silent(dir.file("first")));
    EXPECT_EQ(gw::identity_of_element(mount + "/:unscaled"), gw::identity_of_element(mount + ":unscaled"));
    EXPECT_NE(gw::identity_of_element(mount), gw::identity_of_element(mount + ":unscaled"));
    EXPECT_THAT(asleep.looked_at(), IsEmpty());
}

TEST_F(SilentListing, WhatIsAskedLaterDoesNotWakeASilentOne) {
    const SleepingDirectory asleep(dir.file("mount"));
    ASSERT_THAT(gw::find_silent({dir.file("mount")}), ElementsAre(dir.file("mount")));
    EXPECT_THAT(gw::find_silent({dir.file("first")}), IsEmpty());
    EXPECT_TRUE(gw::is_silent(dir.file("mount")));
    gw::find_newly_silent({dir.file("mount/:unscaled"), dir.file("last"), "built-ins"});
    EXPECT_TRUE(gw::is_silent(dir.file("mount")));
    EXPECT_FALSE(gw::is_silent(dir.file("last")));
    EXPECT_THAT(asleep.looked_at(), IsEmpty());
}

TEST_F(SilentListing, ItIsAwakeWhenItAnswersAgain) {
    {
        const SleepingDirectory asleep(dir.file("mount"));
        gw::find_newly_silent({dir.file("mount")});
        EXPECT_TRUE(gw::is_silent(dir.file("mount")));
    }
    gw::find_newly_silent({dir.file("mount")});
    EXPECT_TRUE(gw::is_silent(dir.file("mount"))) << "it was not asked";
    EXPECT_THAT(gw::find_silent({dir.file("mount")}), IsEmpty());
    EXPECT_FALSE(gw::is_silent(dir.file("mount")));
}

}  // namespace
