// SPDX-License-Identifier: MIT
//
// What a list shows of a source before all names are known.
#include "drivers/first_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "drivers/staging.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "modules/source_fonts.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"
#include "support/type1_header.h"
#include "support/under_policy.h"

namespace {

namespace fs = std::filesystem;
using gw::test::HeardFailures;
using gw::test::TempDir;
using gw::test::type1_header;
using gw::test::UnderPolicy;
using testing::Each;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using Names = std::vector<std::string>;

class FirstNames : public testing::Test {
  protected:
    FirstNames() {
        gw::append_font_modules(modules);
        sources.emplace_back(source.c_str());
    }
    ~FirstNames() override { gw::remove_scratch(); }

    /// Fonts of Debian's packages below a directory.
    void take_fonts(const std::string& tree, std::set<std::string> extensions) const {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree)) {
            if (extensions.contains(entry.path().extension()))
                fs::copy_file(entry.path(), source.file(entry.path().filename().string()),
                              fs::copy_options::skip_existing);
        }
    }
    void make_outlines(int count) const {
        for (int i = 0; i < count; ++i)
            source.write("f" + std::to_string(1000 + i) + ".pfa",
                         type1_header("Family " + std::to_string(i)));
    }
    Names first() { return gw::first_names(modules, sources); }
    Names all() {
        GW_LIST<GWFont> fonts;
        modules.make_font_list(fonts, &sources.front(), 0);
        GWHRNList list(0);
        list.add_fonts(fonts);
        list.tell_apart();
        Names names;
        for (const GWHRNElement* elem : list) names.emplace_back(elem->get_name());
        return names;
    }

    const UnderPolicy modern{true};
    TempDir source;
    GW_FSM_LIST modules;
    std::deque<GW_DIR> sources;
};

bool has(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Those that are not among the others.
Names missing_in(const Names& others, Names names) {
    std::erase_if(names, [&](const std::string& name) { return has(others, name); });
    return names;
}

/// Only the tools know which fonts are oblique: the header has an angle.
Names with_italics(Names names) {
    for (std::string& name : names) {
        const std::size_t word = name.find("Oblique");
        if (word != std::string::npos) name.replace(word, 7, "Italic");
    }
    return names;
}

TEST_F(FirstNames, OfType1FontsAreThoseOfTheTools) {
    take_fonts("/usr/share/fonts/X11/Type1", {".pfa", ".pfb"});
    take_fonts("/usr/share/fonts/type1", {".pfa", ".pfb"});
    const Names names = first();
    ASSERT_GT(names.size(), 20U);
    EXPECT_THAT(missing_in(with_italics(all()), names), IsEmpty());
    EXPECT_THAT(missing_in(names, with_italics(all())), IsEmpty());
}

TEST_F(FirstNames, OfTrueTypeFontsAreThoseOfTheTools) {
    for (const char* family : {"dejavu", "liberation"})
        take_fonts(std::string("/usr/share/fonts/truetype/") + family, {".ttf"});
    const Names names = first();
    ASSERT_GT(names.size(), 16U);
    EXPECT_THAT(missing_in(all(), names), IsEmpty());
    EXPECT_THAT(missing_in(names, all()), IsEmpty());
}

TEST_F(FirstNames, NobodyWaitsForFewFiles) {
    make_outlines(16);
    EXPECT_THAT(first(), IsEmpty());
    source.write("another.pfa", type1_header("Another"));
    EXPECT_THAT(first(), SizeIs(17));
}

TEST_F(FirstNames, AreThoseOfTheFirstFilesOfVeryMany) {
    make_outlines(3000);
    const Names names = first();
    EXPECT_GE(names.size(), 50U);
    EXPECT_LE(names.size(), 2000U);
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE(has(names, "Family " + std::to_string(i) + " Bold [Type-1]")) << i;
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

TEST_F(FirstNames, AreReadWithoutAnyTool) {
    make_outlines(20);
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", "/no/commands/here", 1);
    const HeardFailures heard;
    EXPECT_THAT(first(), SizeIs(20));
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_THAT(heard.all(), IsEmpty());
}

TEST_F(FirstNames, WhatHasNoNameIsLeftOutAndNotReported) {
    make_outlines(20);
    source.write("damaged.ttf", std::string("\0\1\0\0", 4));
    source.write("empty.otf", "");
    source.write("other.pcf", "nothing");
    source.make_dir("directory.ttf");
    source.write("fonts.dir", "no number");
    fs::create_symlink("nowhere", source.file("dangling.ttf"));
    const HeardFailures heard;
    EXPECT_THAT(first(), SizeIs(20));
    EXPECT_THAT(first(), Each(EndsWith("[Type-1]")));
    EXPECT_THAT(heard.all(), IsEmpty());
}

TEST_F(FirstNames, OnlyChosenFilesCount) {
    make_outlines(40);
    std::set<std::string, std::less<>> chosen;
    for (int i = 1010; i < 1030; ++i) chosen.insert("f" + std::to_string(i) + ".pfa");
    sources.front().choose(chosen);
    EXPECT_THAT(first(), SizeIs(20));
    sources.emplace_back(source.file("missing").c_str());
    EXPECT_THAT(first(), SizeIs(20)) << "a source that is gone has no names";
}

// --- where they are shown ------------------------------------------------------

class FirstNamesShown : public FirstNames {
  protected:
    /// What is shown while the source is listed, and what the list is then.
    void list() {
        const gw::FirstNamesShown here([this](const Names& names) { shown.push_back(names); });
        const std::string staging = gw::scratch_path(gw::STAGING_DIR);
        ASSERT_TRUE(gw::prepare_staging(staging, "link", source.path()));
        GWHRNList found(0);
        gw::stage_fonts(found, modules, source.c_str(), 0, staging);
        count = found.get_count();
        gw::drop_scratch_dir(staging);
    }
    std::vector<Names> shown;
    int count = 0;
};

TEST_F(FirstNamesShown, BeforeAllFontsAreFound) {
    make_outlines(20);
    list();
    ASSERT_THAT(shown, SizeIs(1));
    EXPECT_THAT(shown.front(), SizeIs(20));
    EXPECT_EQ(count, 20);
    gw::FirstNamesShown::show_those_of(modules, sources);
    EXPECT_THAT(shown, SizeIs(1)) << "nobody looks any more";
}

TEST_F(FirstNamesShown, NotWhereHeadersAreAllThatIsRead) {
    make_outlines(20);
    const UnderPolicy plain(false);
    list();
    EXPECT_THAT(shown, IsEmpty());
    EXPECT_EQ(count, 20);
}

}  // namespace
