// SPDX-License-Identifier: MIT
//
// What an ordinary user's installation for everyone would do: nobody is asked, and nothing changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "command/in_process.h"
#include "command/json_schema.h"
#include "platform/everyone_request.h"
#include "platform/host_paths.h"
#include "support/bitmap_maker.h"

namespace {

namespace fs = std::filesystem;
using gw::test::Ended;
using gw::test::Json;
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
        const Json all = Json::parse(listed.out);
        for (const Json& font : all["fonts"]) {
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
    const Json json = Json::parse(tried({"--json", font}).out);
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
    const Json dry = Json::parse(tried({"--json", font}).out);
    EXPECT_EQ(dry["fonts"][0]["files"], Json::array({font}));
    gw::set_everyones_command(
        {"/bin/sh", "-c",
         R"(echo '{"fonts": [{"font": "Alpha", "result": "installed", "files": ["Alpha.ttf", "x"]}]}')"});
    const Ended real = run_in_child({"install", "--everyone", "--json", font});
    EXPECT_EQ(Json::parse(real.out)["fonts"][0]["files"], Json::array({font})) << real.out << real.err;
    EXPECT_EQ(gw::test::complaint_about(real.out), "");
}

TEST_F(DryForEveryone, WithoutWhatAsksItSaysSoAsTheRealOne) {
    gw::set_everyones_command({});
    const std::string font = machine_.source().write("Alpha.ttf", small_font("Alpha"));
    const Ended dry = tried({font});
    EXPECT_EQ(dry.status, 4);
    EXPECT_EQ(dry.err, run_in_child({"install", "--everyone", font}).err);
}

// --- against what is really done ---------------------------------------------------

constexpr uid_t USER = 1000;
constexpr std::uintmax_t TOO_LARGE = 65ULL * 1024 * 1024;

/// A user's command, with the program that installs for everyone in the place of pkexec and without a
/// password.
class DryAndReal : public testing::Test {
  protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "only the superuser installs for everyone";
        if (::seteuid(USER) != 0 || ::seteuid(0) != 0) GTEST_SKIP() << "there are no other users here";
        // The user's process can become the superuser again.
        gw::set_everyones_command({"/usr/bin/perl", "-e", "$> = $<; exec @ARGV", gw::EVERYONES_INSTALLER});
        fs::permissions(machine_.source().path(), fs::perms(0755));
    }
    ~DryAndReal() override {
        gw::set_everyones_command({});
        if (::geteuid() == 0) fs::remove_all(gw::SUPERUSER_FONT_DIR);
    }
    static Ended as_user(std::vector<std::string> words) {
        words.insert(words.begin(), {"install", "--everyone", "--json"});
        if (::seteuid(USER) != 0) return {};
        Ended ended = run_in_child(words);
        EXPECT_EQ(::seteuid(0), 0);
        return ended;
    }
    /// What became of each font, or would, and of which of its files, and everything that went wrong.
    [[nodiscard]] std::multiset<std::string> told(const Ended& ended) const {
        std::multiset<std::string> all;
        // The other program does not know where the files were.
        std::string text = ended.out;
        const std::string& source = machine_.source().path();
        for (std::size_t at = text.find(source); at != std::string::npos; at = text.find(source, at))
            text.erase(at, source.size());
        const Json document = Json::parse(text, nullptr, false);
        for (const Json& font : document.value("fonts", Json::array())) {
            std::string result = font["result"];
            if (result.starts_with("would be ")) result.erase(0, std::string("would be ").size());
            all.insert(font["font"].dump() + result + font.value("files", Json()).dump());
        }
        for (const Json& problem : document.value("problems", Json::array()))
            all.insert(fs::path(problem["subject"].get<std::string>()).filename().string() + ": " +
                       problem["reason"].get<std::string>());
        return all;
    }
    /// The dry run says what the real one does, with `done` of the fonts.
    void expect_same(std::vector<std::string> words, int status, std::size_t done) const {
        words.push_back(machine_.source().path());
        const Ended real = as_user(words);
        const std::multiset<std::string> real_one = told(real);
        fs::remove_all(gw::SUPERUSER_FONT_DIR);
        words.emplace_back("--dry-run");
        const Ended dry = as_user(words);
        EXPECT_EQ(told(dry), real_one) << dry.err << real.err;
        EXPECT_EQ(real.status, status) << real.out << real.err;
        EXPECT_EQ(dry.status, status) << dry.out << dry.err;
        EXPECT_EQ(
            std::count_if(real_one.begin(), real_one.end(),
                          [](const std::string& line) { return line.find("installed[") < line.size(); }),
            done);
    }
    [[nodiscard]] std::string put(const std::string& name, const std::string& bytes) const {
        const std::string path = machine_.source().write(name, bytes);
        fs::permissions(fs::path(path).parent_path(), fs::perms(0755));
        fs::permissions(path, fs::perms(0644));
        return path;
    }

    gw::test::OwnMachine machine_;
};

/// A bitmap font of this many pixels.
std::string bitmap_of(int pixels) {
    std::string text = gw::test::BitmapMaker().make_bdf();
    const std::string size = std::to_string(pixels);
    for (const auto& [before, after] :
         {std::pair<std::string, std::string>{"--8-80-", "--" + size + '-' + size + "0-"},
          {"SIZE 8 ", "SIZE " + size + ' '},
          {"PIXEL_SIZE 8", "PIXEL_SIZE " + size}})
        text.replace(text.find(before), before.size(), after);
    return text;
}

TEST_F(DryAndReal, AllThatIsGood) {
    (void)put("Alpha.ttf", small_font("Alpha"));
    (void)put("small.bdf", bitmap_of(8));
    (void)put("large.bdf", bitmap_of(16));
    expect_same({}, 0, 2);
}

TEST_F(DryAndReal, OneSizeOfABitmapFontIsTooLargeToBeSent) {
    (void)put("small.bdf", bitmap_of(8));
    fs::resize_file(put("large.bdf", bitmap_of(16)), TOO_LARGE);
    expect_same({}, 1, 1);
}

TEST_F(DryAndReal, OneOfTwoFontsThatReadAlikeIsTooLargeToBeSent) {
    (void)put("one.ttf", small_font("Alpha"));
    fs::resize_file(put("two.ttf", small_font("Alpha", 1)), TOO_LARGE);
    expect_same({}, 1, 1);
}

TEST_F(DryAndReal, MetricsCannotBeRead) {
    fs::copy_file("/usr/share/fonts/X11/Type1/C059-Roman.pfb", machine_.source().file("own.pfb"));
    fs::permissions(put("own.afm", "StartFontMetrics 2.0\nEndFontMetrics\n"), fs::perms::none);
    expect_same({}, 1, 1);
}

TEST_F(DryAndReal, MetricsAreSentWithoutTheirFont) {
    fs::copy_file("/usr/share/fonts/X11/Type1/C059-Roman.pfb", machine_.source().file("own.pfb"));
    fs::resize_file(machine_.source().file("own.pfb"), TOO_LARGE);
    (void)put("own.afm", "StartFontMetrics 2.0\nEndFontMetrics\n");
    (void)put("Alpha.ttf", small_font("Alpha"));
    expect_same({}, 1, 1);
}

TEST_F(DryAndReal, AFontHasItsOutlinesInBothFormsAndMetricsWithoutExtension) {
    const std::string outlines = gw::test::TempDir::read_bytes("/usr/share/fonts/X11/Type1/C059-Roman.pfb");
    (void)put("own.pfb", outlines);
    (void)put("own.pfa", outlines);
    (void)put("afm/own", "StartFontMetrics 2.0\nEndFontMetrics\n");
    expect_same({}, 0, 1);
}

TEST_F(DryAndReal, TwoFilesHaveOneName) {
    (void)put("Alpha.ttf", small_font("Alpha"));
    const gw::test::TempDir other;
    fs::permissions(other.path(), fs::perms(0755));
    (void)other.write("Alpha.ttf", small_font("Beta"));
    fs::permissions(other.file("Alpha.ttf"), fs::perms(0644));
    expect_same({other.path()}, 1, 1);
}

TEST_F(DryAndReal, DamagedFontsFail) {
    (void)put("Alpha.ttf", small_font("Alpha"));
    (void)put("cut.ttf", small_font("Beta").substr(0, 300));
    expect_same({}, 1, 1);
}

}  // namespace
