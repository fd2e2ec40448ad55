// SPDX-License-Identifier: MIT
#include "app/kit/generation.h"

#include <gtest/gtest.h>

namespace {

using gw::Generation;
using gw::Turn;

TEST(GenerationTest, TheNewestRequestAloneIsNotStale) {
    Generation requests;
    const Generation::Ticket first = requests.begin();
    EXPECT_FALSE(requests.is_stale(first));
    const Generation::Ticket second = requests.begin();
    EXPECT_TRUE(requests.is_stale(first));
    EXPECT_FALSE(requests.is_stale(second));
    EXPECT_EQ(requests.newest(), second);
}

TEST(GenerationTest, WaitsForTheAnswerToItsNewestRequest) {
    Generation requests;
    EXPECT_FALSE(requests.is_pending()) << "nothing has been asked for";
    const Generation::Ticket first = requests.begin();
    EXPECT_TRUE(requests.is_pending());
    const Generation::Ticket second = requests.begin();
    requests.finish(first);
    EXPECT_TRUE(requests.is_pending()) << "only an older request has its answer";
    requests.finish(second);
    EXPECT_FALSE(requests.is_pending());
}

TEST(GenerationTest, AnAnswerDoesNotMakeItsTicketStale) {
    Generation requests;
    const Generation::Ticket ticket = requests.begin();
    requests.finish(ticket);
    EXPECT_FALSE(requests.is_stale(ticket));
}

TEST(GenerationTest, KindsOfRequestsDoNotKnowEachOther) {
    Generation samples;
    Generation lookups;
    const Generation::Ticket sample = samples.begin();
    lookups.begin();
    lookups.begin();
    EXPECT_FALSE(samples.is_stale(sample));
}

// The work serves events, in which the user starts it again.
TEST(TurnTest, OnlyTheOuterOneIsTheFirst) {
    Generation work;
    const Turn outer(work);
    EXPECT_TRUE(outer.is_first());
    {
        const Turn inner(work);
        EXPECT_FALSE(inner.is_first());
        const Turn innermost(work);
        EXPECT_FALSE(innermost.is_first());
    }
    EXPECT_TRUE(work.is_pending()) << "the inner ones end nothing";
    const Turn later(work);
    EXPECT_FALSE(later.is_first());
}

TEST(TurnTest, TheNextOneIsFirstAgain) {
    Generation work;
    for (int round = 0; round < 2; ++round) {
        const Turn turn(work);
        EXPECT_TRUE(turn.is_first());
    }
    EXPECT_FALSE(work.is_pending());
}

}  // namespace
