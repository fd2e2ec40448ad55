// SPDX-License-Identifier: MIT
#include "core/rights.h"

#include <gtest/gtest.h>

namespace {

TEST(Rights, TheSuperuserIsTheUserNumberedZero) {
    EXPECT_TRUE(gw::is_superuser(0));
    EXPECT_FALSE(gw::is_superuser(1000));
    EXPECT_EQ(gw::runs_as_superuser(), ::geteuid() == 0);
}

TEST(Rights, WritingGoesByTheOwnersBitOrTheOthers) {
    const struct {
        uid_t owner;
        mode_t mode;
        uid_t user;
        bool writeable;
    } cases[] = {
        {1000, 0755, 1000, true},  {1000, 0555, 1000, false}, {1000, 0577, 1000, false},
        {1000, 0775, 1001, false}, {1000, 0777, 1001, true},  {1000, 0772, 1001, true},
        {1000, 0755, 0, false},    {1000, 0757, 0, true},     {0, 0755, 0, true},
        {0, 0555, 0, false},       {0, 0775, 1000, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(gw::is_writeable_by(c.owner, c.mode, c.user), c.writeable)
            << c.owner << ' ' << std::oct << c.mode << ' ' << c.user;
    }
}

}  // namespace
