// SPDX-License-Identifier: MIT
#include "app/kit/signal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> heard;

void first(int number) {
    heard.push_back("first " + std::to_string(number));
}
void second(int number) {
    heard.push_back("second " + std::to_string(number));
}

TEST(SignalTest, CallsAllInTheOrderInWhichTheyWereConnected) {
    gw::Signal<int> signal;
    signal.connect(first);
    signal.connect(second);
    heard.clear();
    signal.emit(3);
    signal.emit(4);
    EXPECT_EQ(heard, (std::vector<std::string>{"first 3", "second 3", "first 4", "second 4"}));
}

TEST(SignalTest, CallsNobodyTwice) {
    gw::Signal<int> signal;
    signal.connect(first);
    signal.connect(second);
    signal.connect(first);
    heard.clear();
    signal.emit(5);
    EXPECT_EQ(heard, (std::vector<std::string>{"first 5", "second 5"}));
}

TEST(SignalTest, NobodyNeedsToListen) {
    const gw::Signal<> signal;
    heard.clear();
    signal.emit();
    EXPECT_TRUE(heard.empty());
}

}  // namespace
