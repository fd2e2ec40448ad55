// SPDX-License-Identifier: MIT
//
// Deleting a font whose file an index names in another directory than its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

using gw::test::HeardFailures;
using gw::test::TempDir;

class FontElsewhere : public testing::Test {
  protected:
    FontElsewhere() {
        modules.append(&pcf);
        dir.write("fonts/sub/b.pcf", "B");
        dir.write("out.pcf", "outside");
    }
    gw::Outcome remove(const std::string& name) {
        dir.write("fonts/fonts.dir", "1\n" + name + " -x-b\n");
        const gw::Ref<GWFont> font(new GWFont(GWFont::BITMAP_FONT));
        font->set_xlfd_name("-x-b");
        auto files = std::make_unique<GW_FSPEC_LIST>();
        files->append(new GW_FILE_SPEC(name.c_str(), dir.file("fonts/").c_str(), gw::FILE_TYPE_REGULAR,
                                       gw::EXT_UNKNOWN));
        font->set_font_file_list(std::move(files));
        return font->remove(modules);
    }
    TempDir dir;
    GW_PCF_FSM pcf;
    GW_FSM_LIST modules;
};

TEST_F(FontElsewhere, InASubdirectoryGoes) {
    const HeardFailures heard;
    EXPECT_TRUE(remove("sub/b.pcf"));
    EXPECT_EQ(dir.read("fonts/fonts.dir"), "0\n");
    EXPECT_FALSE(dir.exists("fonts/sub/b.pcf"));
    EXPECT_TRUE(heard.all().empty());
}

// Its line goes, and the file that stays is told.
TEST_F(FontElsewhere, OutsideOfItsDirectoryStays) {
    std::filesystem::create_directory_symlink(dir.path(), dir.file("fonts/link"));
    for (const char* name : {"../out.pcf", "sub/../../out.pcf", "link/out.pcf", "sub//../../out.pcf"}) {
        const HeardFailures heard;
        EXPECT_TRUE(remove(name)) << name;
        EXPECT_EQ(dir.read("fonts/fonts.dir"), "0\n") << name;
        EXPECT_EQ(dir.read("out.pcf"), "outside") << name;
        ASSERT_EQ(heard.all().size(), 1U) << name;
        EXPECT_EQ(heard.all().front().sequel, gw::Sequel::FILE_REMAINS) << name;
        EXPECT_EQ(heard.all().front().subject, dir.file("fonts/") + name);
    }
}

}  // namespace
