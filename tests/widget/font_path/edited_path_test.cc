// SPDX-License-Identifier: MIT
//
// Where elements of a font path go while it is edited.
#include "app/font_path/edited_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using gw::EditedPath;
using gw::Origin;
using testing::ElementsAre;
using testing::IsEmpty;

/// A user's path: two elements in front, two of the installation, two at the end, one of the server only.
EditedPath users_path() {
    return EditedPath({{"f1", Origin::OWN_FRONT},
                       {"f2", Origin::OWN_FRONT},
                       {"i1", Origin::INSTALLATION},
                       {"i2", Origin::LOCALE},
                       {"e1", Origin::OWN_END},
                       {"e2", Origin::OWN_END},
                       {"s", Origin::SERVER}});
}

std::string order(const EditedPath& path) {
    std::string all;
    for (const gw::PathRow& row : path.rows()) all += (all.empty() ? "" : " ") + row.element;
    return all;
}

TEST(EditedPathTest, OnlyTheUsersOwnElementsCanBeEdited) {
    const EditedPath path = users_path();
    std::vector<bool> editable;
    for (int position = 0; position <= 8; ++position) editable.push_back(path.is_editable(position));
    EXPECT_THAT(editable, ElementsAre(false, true, true, false, false, true, true, false, false));
}

TEST(EditedPathTest, AnElementPassesThoseOfOthersAllAtOnce) {
    EditedPath path = users_path();
    EXPECT_EQ(path.target(1, -1), 0);
    EXPECT_EQ(path.target(1, 1), 2);
    EXPECT_EQ(path.target(2, 1), 4);
    EXPECT_EQ(path.target(3, 1), 0) << "not the user's";
    EXPECT_EQ(path.target(5, -1), 3);
    EXPECT_EQ(path.target(6, 1), 0) << "what only the server has is always last";
    path.move(2, 4);
    EXPECT_EQ(order(path), "f1 i1 i2 f2 e1 e2 s");
    EXPECT_THAT(path.elements(Origin::OWN_END), ElementsAre("f2", "e1", "e2"));
    path.move(4, path.target(4, -1));
    EXPECT_EQ(path.rows(), users_path().rows());
    path.move(5, 3);
    EXPECT_THAT(path.elements(Origin::OWN_FRONT), ElementsAre("f1", "f2", "e1"));
    EXPECT_THAT(path.elements(Origin::OWN_END), ElementsAre("e2"));
}

TEST(EditedPathTest, WithoutElementsOfOthersTheOrderDecides) {
    EditedPath path({{"f", Origin::OWN_FRONT}, {"e", Origin::OWN_END}});
    EXPECT_EQ(path.target(2, -1), 1);
    path.move(2, 1);
    EXPECT_THAT(path.elements(Origin::OWN_FRONT), ElementsAre("e"));
    EXPECT_THAT(path.elements(Origin::OWN_END), ElementsAre("f"));
}

TEST(EditedPathTest, OneInFrontOfOthersAloneGoesToTheEnd) {
    EditedPath path({{"f", Origin::OWN_FRONT}, {"i", Origin::HOST}, {"s", Origin::SERVER}});
    EXPECT_EQ(path.target(1, 1), 2);
    path.move(1, 2);
    EXPECT_EQ(order(path), "i f s");
    EXPECT_EQ(path.target(2, 1), 0);
    EXPECT_EQ(path.target(2, -1), 1);
}

TEST(EditedPathTest, NewElementsComeBehindAllThatAreConfigured) {
    EditedPath path = users_path();
    EXPECT_EQ(path.add("new", Origin::OWN_END), 7);
    EXPECT_EQ(order(path), "f1 f2 i1 i2 e1 e2 new s");
    EXPECT_EQ(EditedPath().add("a", Origin::EDITED), 1);
    path.erase(7);
    EXPECT_EQ(path.rows(), users_path().rows());
}

TEST(EditedPathTest, WhatOnlyTheServerHasIsReplaced) {
    EditedPath path = users_path();
    path.set_servers({"x", "y"});
    EXPECT_EQ(order(path), "f1 f2 i1 i2 e1 e2 x y");
    EXPECT_THAT(path.configured(), ElementsAre("f1", "f2", "i1", "i2", "e1", "e2"));
    EXPECT_EQ(path.position_of({"y", Origin::SERVER}), 8);
    EXPECT_EQ(path.position_of({"y", Origin::HOST}), 0);
    path.set_servers({});
    EXPECT_THAT(path.elements(Origin::SERVER), IsEmpty());
}

}  // namespace
