// SPDX-License-Identifier: MIT
#include "core/gw_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "core/gw_base.h"
#include "core/gw_file_spec.h"
#include "core/gw_reg_exp.h"
#include "core/gw_string_list.h"

namespace {

/// A list element with a key that several elements may share, and a unique name.
struct Item {
    int key;
    std::string name;
    int compare(const Item* other) const { return key - other->key; }
    int equal(const Item* other) const { return key == other->key ? 1 : 0; }
};

template <class List>
std::string names(const List& list) {
    std::string all;
    for (const Item* item : list) all += item->name;
    return all;
}

/// Gives access to the two ends of the chain, which callers cannot see.
struct OpenList : GW_LIST<Item> {
    [[nodiscard]] bool ends_are_null() const { return head == nullptr && tail == nullptr; }
    [[nodiscard]] const Item* last() const { return tail != nullptr ? tail->elem : nullptr; }
};

class ListTest : public testing::Test {
  protected:
    Item a{1, "a"}, b{2, "b"}, c{3, "c"}, other_a{1, "A"};
};

TEST_F(ListTest, AnEmptyListHasNoFirstElement) {
    GW_LIST<Item> list;
    EXPECT_EQ(list.get_first(), nullptr);
    EXPECT_EQ(list.get_next(), nullptr);
}

TEST_F(ListTest, NextAfterTheLastStaysNull) {
    GW_LIST<Item> list;
    list.append(&a);
    EXPECT_EQ(list.get_first(), &a);
    EXPECT_EQ(list.get_next(), nullptr);
    list.append(&b);
    EXPECT_EQ(list.get_next(), nullptr) << "a finished traversal does not go on with what is appended later";
}

TEST_F(ListTest, AppendingDuringATraversalBeforeItsEndIsSeen) {
    GW_LIST<Item> list;
    list.append(&a);
    list.append(&b);
    list.get_first();
    list.append(&c);
    EXPECT_EQ(list.get_next(), &b);
    EXPECT_EQ(list.get_next(), &c);
}

TEST_F(ListTest, PositionsOutsideTheListGiveNull) {
    GW_LIST<Item> list;
    list.append(&a);
    for (const int pos : {-1, 0, 2}) {
        EXPECT_EQ(list.get_elem_at_pos(pos), nullptr) << pos;
        EXPECT_EQ(list.zap_elem_at_pos(pos), nullptr) << pos;
    }
    EXPECT_EQ(list.get_count(), 1);
}

TEST_F(ListTest, PositionalAccessIsRightInAnyOrderAndAfterChanges) {
    GW_LIST<Item> list;
    for (Item* item : {&a, &b, &c}) list.append(item);
    EXPECT_EQ(list.get_elem_at_pos(3), &c);
    EXPECT_EQ(list.get_elem_at_pos(1), &a);
    EXPECT_EQ(list.get_elem_at_pos(2), &b);
    list.zap_elem_at_pos(1);
    EXPECT_EQ(list.get_elem_at_pos(2), &c);
}

TEST_F(ListTest, RemovingTheOnlyElementLeavesAListThatCanGrowAgain) {
    OpenList list;
    list.append(&a);
    EXPECT_EQ(list.zap_elem_at_pos(1), &a);
    EXPECT_TRUE(list.ends_are_null());
    EXPECT_EQ(list.get_count(), 0);
    list.append(&b);
    EXPECT_EQ(list.get_first(), &b);
    EXPECT_EQ(list.last(), &b);
}

TEST_F(ListTest, RemovingTheLastElementMovesTheEndBack) {
    OpenList list;
    list.append(&a);
    list.append(&b);
    list.zap_elem_at_pos(2);
    EXPECT_EQ(list.last(), &a);
}

TEST_F(ListTest, ZapOfAnElementThatIsNotThereChangesNothing) {
    GW_LIST<Item> list;
    list.append(&a);
    EXPECT_EQ(list.zap_elem(&b), nullptr);
    EXPECT_EQ(names(list), "a");
}

TEST_F(ListTest, ZapGoesByEqualityAndRemovesTheFirst) {
    GW_LIST<Item> list;
    for (Item* item : {&b, &a, &other_a}) list.append(item);
    EXPECT_EQ(list.zap_elem(&other_a), &a);
    EXPECT_EQ(names(list), "bA");
}

TEST_F(ListTest, DelElemAllCountsWhatItRemoves) {
    GW_LIST<Item> list;
    for (Item* item : {&a, &b, &other_a}) list.append(item);
    EXPECT_EQ(list.del_elem_all(&a), 2);
    EXPECT_EQ(names(list), "b");
}

TEST_F(ListTest, SubtractingAListWithoutCommonElementsChangesNothing) {
    GW_LIST<Item> list;
    list.append(&a);
    GW_LIST<Item> others;
    others.append(&b);
    list -= others;
    EXPECT_EQ(names(list), "a");
}

TEST_F(ListTest, SubtractingAListFromItselfEmptiesIt) {
    GW_LIST<Item> list;
    for (Item* item : {&a, &other_a, &b, &a, &c}) list.append(item);
    GW_LIST<Item>& itself = list;
    list -= itself;
    EXPECT_EQ(list.get_count(), 0);
}

TEST_F(ListTest, InsertBehindTheLastMakesANewEnd) {
    OpenList list;
    EXPECT_EQ(list.insert_after_pos(0, &a), 1);
    EXPECT_EQ(list.insert_after_pos(1, &c), 1);
    EXPECT_EQ(list.last(), &c);
    EXPECT_EQ(list.insert_after_pos(1, &b), 1);
    EXPECT_EQ(names(list), "abc");
}

TEST_F(ListTest, InsertRefusesPositionsThatAreNotThere) {
    GW_LIST<Item> list;
    EXPECT_EQ(list.insert_after_pos(-1, &a), 0);
    EXPECT_EQ(list.insert_after_pos(1, &a), 0);
    EXPECT_EQ(list.get_count(), 0);
}

TEST_F(ListTest, ACopyIsShallow) {
    GW_LIST<Item> list;
    list.append(&a);
    const GW_LIST<Item> copy(&list);
    list.clear();
    EXPECT_EQ(copy.get_elem_at_pos(1), &a);
}

TEST_F(ListTest, SortedInsertionPutsTheNewestOfEqualKeysFirst) {
    GW_SORTED_LIST<Item> list(0);
    for (Item* item : {&b, &a, &c, &other_a}) list.insert(item);
    EXPECT_EQ(names(list), "Aabc");
}

TEST_F(ListTest, DescendingInsertionPutsTheNewestOfEqualKeysFirstToo) {
    GW_SORTED_LIST<Item> list(1);
    for (Item* item : {&b, &a, &c, &other_a}) list.insert(item);
    EXPECT_EQ(names(list), "cbAa");
}

TEST_F(ListTest, ASortedListCanBeMadeFromAnother) {
    GW_LIST<Item> source;
    for (Item* item : {&c, &a, &other_a}) source.append(item);
    const GW_SORTED_LIST<Item> list(&source, 0);
    EXPECT_EQ(names(list), "Aac");
}

TEST_F(ListTest, InsertionLeavesTheCursorWhereItWas) {
    GW_SORTED_LIST<Item> list(0);
    for (Item* item : {&a, &c}) list.insert(item);
    list.get_first();
    list.insert(&b);
    EXPECT_EQ(list.get_next(), &c);
}

// The index must place every element where walking the list would.
TEST(SortedList, AgreesWithWalkingOnRandomInput) {
    std::mt19937 random(20);
    for (const int descending : {0, 1}) {
        std::vector<Item> items(400);
        std::vector<const Item*> expected;
        GW_SORTED_LIST<Item> list(descending);
        for (Item& item : items) {
            item.key = static_cast<int>(random() % 40);
            const auto place = std::find_if(expected.begin(), expected.end(), [&](const Item* cur) {
                return descending != 0 ? item.compare(cur) >= 0 : item.compare(cur) <= 0;
            });
            expected.insert(place, &item);
            list.insert(&item);
            if (random() % 8 == 0) {
                const auto victim = random() % expected.size();
                EXPECT_EQ(list.zap_elem_at_pos(static_cast<int>(victim) + 1), expected[victim]);
                expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(victim));
            }
        }
        EXPECT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end())) << descending;
    }
}

TEST(SortedList, AllAtOnceIsOneAfterTheOther) {
    std::mt19937 random(21);
    for (const int descending : {0, 1}) {
        std::vector<Item> items(401);
        GW_SORTED_LIST<Item> one_by_one(descending);
        GW_SORTED_LIST<Item> together(descending);
        std::vector<Item*> most;
        for (Item& item : items) {
            item.key = static_cast<int>(random() % 40);
            one_by_one.insert(&item);
            if (&item != &items.back()) most.push_back(&item);
        }
        together.insert_all(most);
        together.insert(&items.back());
        EXPECT_TRUE(std::equal(together.begin(), together.end(), one_by_one.begin(), one_by_one.end()))
            << descending;
    }
}

TEST(SortedList, AnElementWhoseKeyChangedDoesNotSpoilLaterInsertions) {
    Item first{1, "1"};
    Item second{2, "2"};
    Item third{3, "3"};
    GW_SORTED_LIST<Item> list(0);
    list.insert(&first);
    list.insert(&second);
    first.key = 9;
    list.zap_elem_at_pos(2);
    list.insert(&second);
    list.insert(&third);
    EXPECT_EQ(names(list), "231");
}

TEST(BaseObject, CountsAsEqualToAnythingAndLess) {
    const GW_BASE one;
    const GW_BASE other;
    EXPECT_EQ(one.equal(&other), -1);
    EXPECT_EQ(one.compare(&other), -1);
}

TEST(StringList, MatchAppendsCopiesInOrder) {
    GW_STRING_LIST list;
    const gw::ElementsOwner owner(list);
    for (const char* name : {"b.pfa", "c.afm", "a.pfa"}) list.append(new GW_STRING(name));
    GW_STRING_LIST out;
    const gw::ElementsOwner out_owner(out);
    GW_REG_EXP pfa(".pfa$");
    list.match(out, &pfa);
    ASSERT_EQ(out.get_count(), 2);
    EXPECT_STREQ(out.get_elem_at_pos(1)->get_str(), "b.pfa");
    EXPECT_STREQ(out.get_elem_at_pos(2)->get_str(), "a.pfa");
    EXPECT_NE(out.get_elem_at_pos(1), list.get_elem_at_pos(1));
}

TEST(StringList, FileSpecificationsAreUndeterminedAndUnknown) {
    GW_STRING_LIST list;
    const gw::ElementsOwner owner(list);
    list.append(new GW_STRING("a.pfa"));
    GW_LIST<GW_FILE_SPEC> out;
    const gw::ElementsOwner out_owner(out);
    list.make_file_spec_list(out, "/fonts");
    ASSERT_EQ(out.get_count(), 1);
    EXPECT_STREQ(out.get_elem_at_pos(1)->get_path(), "/fonts/a.pfa");
    EXPECT_EQ(out.get_elem_at_pos(1)->get_file_type(), 2);
    EXPECT_EQ(out.get_elem_at_pos(1)->get_ext_type(), 7);
}

}  // namespace
