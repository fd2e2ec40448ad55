// SPDX-License-Identifier: MIT
#include "core/long_work.h"

#include <gtest/gtest.h>

#include <string>

#include "core/gw_buf_file.h"
#include "core/new_file.h"
#include "support/giving_up.h"
#include "support/temp_dir.h"

namespace {

using gw::test::GivingUp;
using gw::test::TempDir;

TEST(LongWork, IsNeverGivenUpWhereNobodyListens) {
    EXPECT_FALSE(gw::is_given_up());
    gw::breathe();
}

TEST(LongWork, StaysGivenUp) {
    int asked = 0;
    {
        const GivingUp user([&] { return ++asked == 3; });
        EXPECT_FALSE(gw::is_given_up());
        gw::breathe();
        EXPECT_EQ(asked, 2);
        EXPECT_TRUE(gw::is_given_up());
        EXPECT_TRUE(gw::is_given_up());
        EXPECT_EQ(asked, 3) << "whoever has given up is not asked again";
    }
    EXPECT_FALSE(gw::is_given_up());
}

TEST(LongWork, OfTheNextListenerBeginsAnew) {
    const GivingUp user([] { return true; });
    EXPECT_TRUE(gw::is_given_up());
    gw::listen_to_long_work([] { return false; });
    EXPECT_FALSE(gw::is_given_up());
}

TEST(LongWork, AsksOnlyEveryFewMilliseconds) {
    static int asked = 0;
    gw::listen_to_long_work(
        [] {
            ++asked;
            return false;
        },
        std::chrono::hours(1));
    for (int i = 0; i < 1000; ++i) EXPECT_FALSE(gw::is_given_up());
    gw::listen_to_long_work(nullptr);
    EXPECT_EQ(asked, 1);
}

TEST(LongWork, ACopyThatIsGivenUpIsNoFile) {
    const TempDir dir;
    dir.write("font.pcf", std::string(100000, 'x'));
    GW_BUF_FILE source("font.pcf", dir.c_str(), gw::FILE_TYPE_REGULAR);
    int blocks = 0;
    const GivingUp user([&] { return ++blocks == 20; });
    {
        gw::NewFile copy(dir.file("copy.pcf"));
        EXPECT_EQ(source.copy_into(copy),
                  gw::Outcome(gw::Failure{dir.file("font.pcf"), gw::Reason::GIVEN_UP}));
    }
    EXPECT_FALSE(dir.exists("copy.pcf"));
    EXPECT_FALSE(source.is_open());
}

}  // namespace
