// SPDX-License-Identifier: MIT
//
// Lists of addresses, well and badly written.
#include "core/uri_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

using gw::path_of_uri;
using gw::read_uri_list;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

constexpr const char* HOST = "Tulip";

struct Case {
    std::string uri;
    std::string path;
};

TEST(UriList, AddressesOfFilesAreRead) {
    const std::vector<Case> cases = {
        {"file:///a/b.ttf", "/a/b.ttf"},
        {"file:/a/b.ttf", "/a/b.ttf"},
        {"FILE:///a", "/a"},
        {"file://localhost/a", "/a"},
        {"file://LocalHost/a", "/a"},
        {"file://tulip/a", "/a"},
        {"file:///", "/"},
        {"file:///a%20b", "/a b"},
        {"file:///a b", "/a b"},
        {"file:///100%25", "/100%"},
        {"file:///%2525", "/%25"},
        {"file:///a%0Ab", "/a\nb"},
        {"file:///a%0ab", "/a\nb"},
        {"file:///%C3%A4", "/\xC3\xA4"},
        {"file:///%E4%FF", "/\xE4\xFF"},
        {"file:///\xE4", "/\xE4"},
        {"file:///a?b#c", "/a?b#c"},
        {"file:///$(rm%20-rf%20~);`x`'\"", "/$(rm -rf ~);`x`'\""},
        {"file:////a", "//a"},
    };
    for (const Case& each : cases) EXPECT_EQ(path_of_uri(each.uri, HOST), each.path) << each.uri;
}

TEST(UriList, WhatNamesNoFileOfThisMachineIsRefused) {
    for (const std::string& uri :
         {""s, "file:"s, "file://"s, "file://localhost"s, "file:a"s, "a"s, "/a"s, "http://localhost/a"s,
          "file://rose/a"s, "file://tulip.example/a"s, "file:///a%"s, "file:///a%2"s, "file:///a%2g"s,
          "file:///a%00b"s, "file:///a\0b"s, "files:///a"s}) {
        EXPECT_EQ(path_of_uri(uri, HOST), std::nullopt) << uri;
    }
    EXPECT_EQ(path_of_uri("file:///" + std::string(PATH_MAX, 'a'), HOST), std::nullopt);
    EXPECT_EQ(path_of_uri("file:///" + std::string(1 << 20, '%'), HOST), std::nullopt);
    EXPECT_NE(path_of_uri("file:///" + std::string(PATH_MAX - 2, 'a'), HOST), std::nullopt);
}

TEST(UriList, LinesEndInBothWays) {
    const gw::UriList list =
        read_uri_list("# files\r\nfile:///a\r\n\r\nfile:///b\nftp://x/c\r\nfile:///a\nfile:///d", HOST);
    EXPECT_THAT(list.paths, ElementsAre("/a", "/b", "/d"));
    EXPECT_THAT(list.refused, ElementsAre("ftp://x/c"));
}

TEST(UriList, ANulAtTheEndIsNoPartOfTheList) {
    EXPECT_THAT(read_uri_list("file:///a\r\n\0"s, HOST).paths, ElementsAre("/a"));
    EXPECT_THAT(read_uri_list("file:///a\0"s, HOST).paths, ElementsAre("/a"));
    EXPECT_THAT(read_uri_list("\0\0"s, HOST).refused, IsEmpty());
}

TEST(UriList, FiveThousandFilesAreOneList) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "file:///fonts/" + std::to_string(i) + ".pcf\r\n";
    EXPECT_EQ(read_uri_list(text, HOST).paths.size(), 5000U);
}

TEST(UriList, TheMachineHasAName) {
    EXPECT_FALSE(gw::host_name().empty());
}

}  // namespace
