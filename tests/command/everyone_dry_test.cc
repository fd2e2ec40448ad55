// SPDX-License-Identifier: MIT
//
// What an ordinary user's installation for everyone would do: nobody is asked, and nothing changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "command/in_process.h"
#include "command/json_schema.h"
#include "platform/everyone_request.h"

namespace {

namespace fs = std::filesystem;
using gw::test::Ended;
using gw::test::run_in_child;
using gw::test::small_font;
using testing::HasSubstr;

class DryForEveryone : public testing::Test {
  protected:
    void SetUp() override {
        if (::geteuid() == 0) GTEST_SKIP() << "the superuser needs no password";
        gw::set_everyones_command({"/usr/bin/touch", asked_});
    }
    ~DryForEveryone() override { gw::set_everyones_command({}); }
    /// The command with these words. Nobody is asked, and no call changes the disk.
    [[nodiscard]] Ended tried(std::vector<std::string> words) const {
        words.insert(words.begin(), {"install", "--everyone", "--dry-run"});
        Ended ended = run_in_child(words);
        EXPECT_EQ(ended.calls, 0) << testing::PrintToString(words);
        EXPECT_FALSE(fs::exists(asked_));
        return ended;
    }

    /// The file of an installed font that is not the user's.
    static std::string bitmap() {
        const Ended listed = run_in_child({"list", "--json", "--format", "bitmap"});
        const gw::test::Json all = gw::test::Json::parse(listed.out);
        for (const gw::test::Json& font : all["fonts"]) {
            const std::string file = font["files"][0];
            if (file.ends_with(".pcf")) return file;
        }
        ADD_FAILURE() << "there is none";
        return "";
    }

    gw::test::OwnMachine machine_;
    std::string asked_ = machine_.source().file("asked");
};

TEST_F(DryForEveryone, SaysWhatWouldBeInstalled) {
    const std::string font = machine_.source().write("Alpha.ttf", small_font("Alpha"));
    const Ended ended = tried({font});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "Alpha Medium [TrueType]: would be installed\n");
    EXPECT_EQ(ended.err, "");
    const gw::test::Json json = gw::test::Json::parse(tried({"--json", font}).out);
    EXPECT_EQ(json["changed"], true);
    EXPECT_EQ(json["fonts"][0]["result"], "would be installed");
}

TEST_F(DryForEveryone, IsNotAboutTheUsersOwnFonts) {
    const std::string font = machine_.source().write("Alpha.ttf", small_font("Alpha"));
    ASSERT_EQ(run_in_child({"install", "--to", machine_.to(), font}).status, 0);
    EXPECT_EQ(run_in_child({"install", "--dry-run", font}).status, 3);
    EXPECT_EQ(tried({font}).status, 0);
}

TEST_F(DryForEveryone, KnowsWhatIsThereAndThatAnAdministratorMayReplaceIt) {
    const std::string there = bitmap();
    EXPECT_EQ(tried({there}).status, 3);
    // The same font in other bytes.
    const std::string other = machine_.source().file("other.pcf.gz");
    ASSERT_EQ(std::system(("gzip -c '" + there + "' >'" + other + "'").c_str()), 0);
    const Ended refused = tried({other});
    EXPECT_EQ(refused.status, 1) << refused.out;
    EXPECT_THAT(refused.err, HasSubstr("(--replace or --keep)"));
    EXPECT_EQ(tried({"--keep", other}).status, 3);
    const Ended replaced = tried({"--replace", other});
    EXPECT_EQ(replaced.status, 0) << replaced.err;
    EXPECT_THAT(replaced.out, HasSubstr(": would be replaced ("));
}

TEST_F(DryForEveryone, LeavesOutWhatCannotBeSent) {
    const std::string good = machine_.source().write("Alpha.ttf", small_font("Alpha"));
    const std::string large = machine_.source().write("Beta.ttf", small_font("Beta"));
    fs::resize_file(large, 65ULL * 1024 * 1024);
    const Ended ended = tried({good, large});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "Alpha Medium [TrueType]: would be installed\n");
    EXPECT_THAT(ended.err, HasSubstr("Beta.ttf"));
}

TEST_F(DryForEveryone, TheFilesOfEachFontAreCalledAsTheUserCallsThemAlsoInTheRealOne) {
    const std::string font = machine_.source().write("Alpha.ttf", small_font("Alpha"));
    const gw::test::Json dry = gw::test::Json::parse(tried({"--json", font}).out);
    EXPECT_EQ(dry["fonts"][0]["files"], gw::test::Json::array({font}));
    gw::set_everyones_command(
        {"/bin/sh", "-c",
         R"(echo '{"fonts": [{"font": "Alpha", "result": "installed", "files": ["Alpha.ttf", "x"]}]}')"});
    const Ended real = run_in_child({"install", "--everyone", "--json", font});
    EXPECT_EQ(gw::test::Json::parse(real.out)["fonts"][0]["files"], gw::test::Json::array({font}))
        << real.out << real.err;
    EXPECT_EQ(gw::test::complaint_about(real.out), "");
}

TEST_F(DryForEveryone, WithoutWhatAsksItSaysSoAsTheRealOne) {
    gw::set_everyones_command({});
    const std::string font = machine_.source().write("Alpha.ttf", small_font("Alpha"));
    const Ended dry = tried({font});
    EXPECT_EQ(dry.status, 4);
    EXPECT_EQ(dry.err, run_in_child({"install", "--everyone", font}).err);
}

}  // namespace
