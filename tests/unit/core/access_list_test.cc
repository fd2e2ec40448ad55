// SPDX-License-Identifier: MIT
#include "core/access_list.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "support/access_lists.h"
#include "support/temp_dir.h"

namespace {

using gw::access_by_list;
using gw::ListVerdict;
using gw::test::ListEntry;
using gw::test::set_access_list;

constexpr uid_t USER = 54321;
constexpr uid_t OTHER_USER = 54322;
constexpr gid_t GROUP = 54323;
constexpr unsigned READS = 4;
constexpr unsigned WRITES = 2;
constexpr unsigned NOTHING = 0;

class AccessList : public testing::Test {
  protected:
    AccessList() {
        dir.write("file", "text");
        ::chmod(dir.c_str(), 0755);
    }
    void set(const std::vector<ListEntry>& entries) {
        ASSERT_TRUE(set_access_list(file, entries)) << "the test needs a file system with such lists";
        ASSERT_EQ(::stat(file.c_str(), &info), 0);
    }
    [[nodiscard]] ListVerdict of(uid_t user, const std::vector<gid_t>& groups = {}) const {
        return access_by_list(file, info, user, groups, S_IROTH);
    }

    gw::test::TempDir dir;
    std::string file = dir.file("file");
    struct stat info = {};
};

TEST_F(AccessList, AFileWithoutOneHasItsModeAlone) {
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(of(USER), ListVerdict::NO_LIST);
    EXPECT_EQ(access_by_list(dir.file("none"), info, USER, {}, S_IROTH), ListVerdict::NO_LIST);
}

TEST_F(AccessList, TheEntryOfAUserDecides) {
    set({{ACL_USER_OBJ, READS},
         {ACL_USER, READS, USER},
         {ACL_USER, NOTHING, OTHER_USER},
         {ACL_GROUP_OBJ, NOTHING},
         {ACL_MASK, READS},
         {ACL_OTHER, READS}});
    EXPECT_EQ(of(USER), ListVerdict::GRANTED);
    EXPECT_EQ(of(OTHER_USER), ListVerdict::REFUSED_BY_NAME) << "although all others may";
    EXPECT_EQ(of(OTHER_USER + 1), ListVerdict::GRANTED);
    EXPECT_EQ(of(::geteuid()), ListVerdict::GRANTED);
}

TEST_F(AccessList, TheMaskIsTheMostThatAnEntryGives) {
    set({{ACL_USER_OBJ, READS},
         {ACL_USER, READS, USER},
         {ACL_GROUP_OBJ, READS},
         {ACL_GROUP, READS, GROUP},
         {ACL_MASK, WRITES},
         {ACL_OTHER, READS}});
    EXPECT_EQ(of(USER), ListVerdict::REFUSED_BY_NAME);
    EXPECT_EQ(of(OTHER_USER, {GROUP}), ListVerdict::REFUSED_BY_NAME);
    EXPECT_EQ(of(OTHER_USER), ListVerdict::GRANTED);
}

TEST_F(AccessList, OneWithAnEmptyMaskIsNotLookedAt) {
    set({{ACL_USER_OBJ, READS},
         {ACL_USER, READS, USER},
         {ACL_GROUP_OBJ, READS},
         {ACL_MASK, NOTHING},
         {ACL_OTHER, READS}});
    EXPECT_EQ(of(USER), ListVerdict::NO_LIST);
}

TEST_F(AccessList, OneOfTheGroupsIsEnough) {
    set({{ACL_USER_OBJ, READS},
         {ACL_GROUP_OBJ, NOTHING},
         {ACL_GROUP, READS, GROUP},
         {ACL_MASK, READS},
         {ACL_OTHER, NOTHING}});
    EXPECT_EQ(of(USER, {info.st_gid}), ListVerdict::REFUSED_BY_NAME);
    EXPECT_EQ(of(USER, {info.st_gid, GROUP}), ListVerdict::GRANTED);
    EXPECT_EQ(of(USER), ListVerdict::REFUSED) << "which the mode says, too";
}

// --- the kernel ----------------------------------------------------------------

/// What the kernel says to a process of that user.
bool kernel_grants(const std::string& file, uid_t user, const std::vector<gid_t>& groups) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool is_other = ::setgroups(groups.size(), groups.data()) == 0 &&
                              ::setresgid(groups[0], groups[0], groups[0]) == 0 &&
                              ::setresuid(user, user, user) == 0;
        ::_exit(!is_other ? 2 : ::access(file.c_str(), R_OK) == 0 ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 2) << status;
    return WEXITSTATUS(status) == 0;
}

bool mode_grants(const struct stat& info, uid_t user, const std::vector<gid_t>& groups) {
    if (user == info.st_uid) return (info.st_mode & S_IRUSR) != 0;
    const bool is_member = std::find(groups.begin(), groups.end(), info.st_gid) != groups.end();
    return (info.st_mode & (is_member ? S_IRGRP : S_IROTH)) != 0;
}

TEST_F(AccessList, IsReadAsTheKernelReadsIt) {
    if (::geteuid() != 0) GTEST_SKIP() << "takes the superuser: another user's view";
    std::mt19937 random(6);  // NOLINT(cert-msc51-cpp): each run tries the same lists
    const auto any = [&random] { return static_cast<unsigned>(random() % 8); };
    for (int i = 0; i < 300; ++i) {
        std::vector<ListEntry> entries = {{ACL_USER_OBJ, any()}};
        for (unsigned id = USER; id < USER + 2; ++id)
            if (random() % 2 == 0) entries.push_back({ACL_USER, any(), id});
        entries.push_back({ACL_GROUP_OBJ, any()});
        for (unsigned id = GROUP; id < GROUP + 2; ++id)
            if (random() % 2 == 0) entries.push_back({ACL_GROUP, any(), id});
        entries.push_back({ACL_MASK, any()});
        entries.push_back({ACL_OTHER, any()});
        ASSERT_EQ(::chown(file.c_str(), random() % 4 == 0 ? USER : 0, random() % 2 == 0 ? GROUP : 0), 0);
        set(entries);
        const uid_t user = USER + static_cast<uid_t>(random() % 3);
        std::vector<gid_t> groups = {GROUP + static_cast<gid_t>(random() % 3)};
        if (random() % 2 == 0) groups.push_back(GROUP + 1);
        const ListVerdict verdict = of(user, groups);
        const bool is_granted = verdict == ListVerdict::NO_LIST ? mode_grants(info, user, groups)
                                                                : verdict == ListVerdict::GRANTED;
        EXPECT_EQ(is_granted, kernel_grants(file, user, groups)) << i;
    }
}

}  // namespace
