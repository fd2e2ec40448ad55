// SPDX-License-Identifier: MIT
//
// What is listed for a catalogue is what a real X server lists for it, and of two links the one that counts
// here is the one that counts there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/text.h"
#include "diagnosis/directory_facts.h"
#include "diagnosis/element_state.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "fontpath/xlib_server_view.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"
#include "unit/oracle/lab_fonts.h"

#include "support/session.h"

namespace gw::diagnosis {
namespace {

namespace fs = std::filesystem;

using test::lab_name;
using testing::IsEmpty;

constexpr int MOST = 65535;

class CatalogueOracle : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(server);
        for (const char* name : {"a", "b", "c", "d:e", "d"}) make_fonts(name);
    }
    void make_fonts(const std::string& name) {
        const std::string font = lab_name("family " + name.substr(0, 1), 10, 96);
        root.write(name + "/8.bdf", test::lab_bdf(font, 8));
        root.write(name + "/fonts.dir", "1\n8.bdf " + font + '\n');
    }
    [[nodiscard]] std::string at(const std::string& name) const { return home + name; }
    void link(const std::string& catalogue, const std::string& name, const std::string& target) const {
        fs::create_directories(at(catalogue));
        fs::create_symlink(target, at(catalogue + '/' + name));
    }
    bool serve(const std::string& element) {
        // Elements that the server has had before are read anew in this way.
        return server->set_font_path({"built-ins"}) && server->set_font_path({element, "built-ins"});
    }
    std::set<std::string> served_names() {
        std::set<std::string> names;
        for (const std::string& name : server->names("-lab-*", MOST)) {
            if (name.find("--0-0-") == std::string::npos) names.insert(lower_case(name));
        }
        return names;
    }
    /// The names in the indexes of all directories that are listed for the element.
    static std::set<std::string> listed_names(const std::string& element) {
        const test::UnderPolicy modern(true);
        GW_LIST<GW_STRING> path;
        const ElementsOwner owner(path);
        path.append(new GW_STRING(element.c_str()));
        (void)find_silent(path);
        std::set<std::string> names;
        for (const std::string& directory : directories_to_list(path)) {
            for (const IndexEntry& entry : read_indexes(directory).index.entries)
                names.insert(entry.font_name);
        }
        return names;
    }
    void expect_same(const std::string& element) {
        ASSERT_TRUE(serve(element)) << element;
        EXPECT_EQ(listed_names(element), served_names()) << element;
    }

    test::Session session;
    std::unique_ptr<ServerView> server = connect_to_server();
    test::TempDir root;
    std::string home = fs::canonical(root.path()).string() + '/';
};

TEST_F(CatalogueOracle, AllKindsOfLinks) {
    link("plain", "x:unscaled:pri=10", at("a"));
    link("plain", "y", "../b");
    link("dead", "x", at("none"));
    link("dead", "y:pri=1", "../c/");
    link("loop", "x", "x");
    link("loop", "y", "../loop");
    link("colon", "x", at("d:e"));
    link("hidden", ".x", at("a"));
    link("hidden", "with blank", at("b"));
    link("file", "x", at("a/fonts.dir"));
    fs::create_directory_symlink(at("a"), at("way"));
    link("chain", "x", "../way");
    link("twice", "x", at("a"));
    link("twice", "y", at("a/"));
    link("nested", "x", "../plain");
    link("text", "x", "catalogue:" + at("plain"));
    link("deep", "x", "./.././way/../a/../way");
    fs::create_directories(at("real/x"));
    for (const char* file : {"8.bdf", "fonts.dir"}) fs::copy(at("a/") + file, at("real/x"));
    fs::create_directory(at("empty"));
    for (const char* name : {"plain", "dead", "loop", "colon", "hidden", "file", "chain", "twice", "nested",
                             "text", "deep", "real", "empty", "plain/", "a/../plain", "a"})
        expect_same("catalogue:" + at(name));
    EXPECT_FALSE(served_names().contains(lab_name("family a", 10, 96))) << "a directory is no catalogue";
}

TEST_F(CatalogueOracle, WhatTheServerRefusesHasNoFontsHere) {
    link("plain", "x", at("a"));
    for (const std::string& element : {"catalogue:" + at("none"), "catalogue:" + at("a/fonts.dir"),
                                       "catalogue:" + at("plain:unscaled"), std::string("catalogue:")}) {
        EXPECT_FALSE(serve(element)) << element;
        EXPECT_THAT(listed_names(element), IsEmpty()) << element;
        EXPECT_EQ(look_at_stranger(*server, element).state, ElementState::DEAD) << element;
    }
}

TEST_F(CatalogueOracle, ThousandsOfLinks) {
    for (int i = 0; i < 3000; ++i) link("many", "link" + std::to_string(i), i % 3 == 0 ? "../a" : "../b");
    expect_same("catalogue:" + at("many"));
}

/// The server notices another link by itself.
TEST_F(CatalogueOracle, ACatalogueThatChanges) {
    link("plain", "x", at("a"));
    expect_same("catalogue:" + at("plain"));
    link("plain", "y", at("b"));
    fs::last_write_time(at("plain"), fs::last_write_time(at("plain")) + std::chrono::seconds(2));
    EXPECT_EQ(listed_names("catalogue:" + at("plain")), served_names());
    EXPECT_EQ(served_names().size(), 2U);
}

/// Two directories have a font of the same name; its ascent says from which one it comes.
TEST_F(CatalogueOracle, TheOrderOfPriorities) {
    const std::string font = lab_name("same", 10, 96);
    for (const int ascent : {21, 22}) {
        const std::string name = "same" + std::to_string(ascent);
        root.write(name + "/8.bdf", test::lab_bdf(font, ascent));
        root.write(name + "/fonts.dir", "1\n8.bdf " + font + '\n');
    }
    const std::vector<std::string> endings = {"",         ":pri=5",  ":pri=10",        ":pri=-1",
                                              ":pri=",    ":pri= 3", ":pri=7x",        ":foo:pri=1:pri=99",
                                              "pri=0",    ":PRI=0",  ":apri=2",        ":unscaled:pri=4",
                                              ":pri=0x9", ":pri=+2", ":pri=4000000000"};
    for (const std::string& one : endings) {
        for (const std::string& other : endings) {
            fs::remove_all(at("cat"));
            link("cat", "one" + one, "../same21");
            link("cat", "other" + other, "../same22");
            ASSERT_TRUE(serve("catalogue:" + at("cat")));
            const std::optional<OpenedFont> opened = server->open(font);
            ASSERT_TRUE(opened);
            EXPECT_EQ(font_directories("catalogue:" + at("cat")).front(),
                      at("same" + std::to_string(opened->ascent)))
                << "one" << one << " other" << other;
        }
    }
}

}  // namespace
}  // namespace gw::diagnosis
