// SPDX-License-Identifier: MIT
//
// What the elements of a font path stand for, with real directories, links and attributes.
#include "fontpath/path_element.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <string>

#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::directories_to_list;
using gw::identity_of_element;
using gw::PathHost;
using gw::test::TempDir;
using gw::test::UnderPolicy;
using testing::ElementsAre;

TEST(PathElementTest, ADirectoryEndsAtTheFirstColon) {
    EXPECT_EQ(gw::directory_of_element("/a/:unscaled"), "/a/");
    EXPECT_EQ(gw::directory_of_element("/a:unscaled:pri=10"), "/a");
    EXPECT_EQ(gw::directory_of_element("/a b,c/"), "/a b,c/");
}

class IdentityTest : public testing::Test {
  protected:
    IdentityTest() {
        dir.make_dir("real");
        dir.make_dir("other");
        std::filesystem::create_directory_symlink(dir.file("real"), dir.file("link"));
        std::filesystem::create_directory_symlink(dir.path(), dir.file("up"));
    }
    const TempDir dir;
};

TEST_F(IdentityTest, ADirectoryIsTheSameByEveryPath) {
    const gw::ElementIdentity real = identity_of_element(dir.file("real"));
    for (const char* path : {"real/", "real//", "link", "link/", "up/real", "up/up/link/", "./real/"})
        EXPECT_EQ(identity_of_element(dir.file(path)), real) << path;
    EXPECT_NE(identity_of_element(dir.file("other")), real);
    EXPECT_NE(identity_of_element(dir.file("Real")), real);
}

TEST_F(IdentityTest, AttributesArePartOfAnElement) {
    const gw::ElementIdentity unscaled = identity_of_element(dir.file("real/:unscaled"));
    EXPECT_EQ(identity_of_element(dir.file("real:unscaled")), unscaled);
    EXPECT_EQ(identity_of_element(dir.file("link/:unscaled")), unscaled);
    EXPECT_NE(identity_of_element(dir.file("real/")), unscaled);
    EXPECT_NE(identity_of_element(dir.file("real/:pri=10")), unscaled);
    EXPECT_NE(identity_of_element(dir.file("other/:unscaled")), unscaled);
}

TEST_F(IdentityTest, WhatCannotBeLookedAtIsItsText) {
    EXPECT_EQ(identity_of_element("/no/such/dir"), identity_of_element("/no/such/dir/"));
    EXPECT_EQ(identity_of_element("/no/such/dir:unscaled"), identity_of_element("/no/such/dir/:unscaled"));
    EXPECT_NE(identity_of_element("/no/such/dir"), identity_of_element("/no/such/Dir"));
    EXPECT_EQ(identity_of_element("built-ins"), identity_of_element("built-ins"));
    EXPECT_NE(identity_of_element("tcp/host:7100"), identity_of_element("tcp/host:7101"));
    EXPECT_NE(identity_of_element("catalogue:" + dir.file("real")), identity_of_element(dir.file("real")));
}

TEST_F(IdentityTest, DirectoriesOfAnotherHostAreNotLookedAt) {
    const auto there = [&](const char* path) {
        return identity_of_element(dir.file(path), PathHost::ANOTHER);
    };
    EXPECT_EQ(there("real"), there("real/"));
    EXPECT_NE(there("real"), there("link"));
}

class ListedTest : public IdentityTest {
  protected:
    [[nodiscard]] std::vector<std::string> listed(std::initializer_list<std::string> elements) const {
        GW_LIST<GW_STRING> path;
        const gw::ElementsOwner owner(path);
        for (const std::string& element : elements) path.append(new GW_STRING(element.c_str()));
        return directories_to_list(path);
    }
};

TEST_F(ListedTest, ByDefaultThePathIsListedAsItIs) {
    const std::string real = dir.file("real/");
    EXPECT_THAT(listed({real + ":unscaled", "built-ins", real, dir.file("link"), "tcp/host:7100"}),
                ElementsAre(real + ":unscaled", real, dir.file("link")));
}

TEST_F(ListedTest, WithTodaysFontsADirectoryIsListedOnceWithoutAttributes) {
    const UnderPolicy modern(true);
    const std::string real = dir.file("real/");
    EXPECT_THAT(listed({real + ":unscaled", "built-ins", real, dir.file("link"), dir.file("other:unscaled"),
                        "/no/such/dir/", "/no/such/dir"}),
                ElementsAre(real, dir.file("other"), "/no/such/dir/"));
}

}  // namespace
