// SPDX-License-Identifier: MIT
#include "platform/package_owner.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

using gw::PackageOwners;
using gw::test::TempDir;

PackageOwners found(const std::vector<std::string>& paths) {
    const gw::Result<PackageOwners> owners = gw::ask_package_owners(paths);
    EXPECT_TRUE(owners) << owners.failure().text();
    return owners ? *owners : PackageOwners();
}
PackageOwners remembered(const std::vector<std::string>& paths) {
    const gw::Result<PackageOwners> owners = gw::package_owners(paths);
    EXPECT_TRUE(owners) << owners.failure().text();
    return owners ? *owners : PackageOwners();
}

TEST(PackageOwner, ThePatternOfAPathMeansThatPathOnly) {
    EXPECT_EQ(gw::dpkg_pattern("/fonts/a.pcf"), "/fonts/a.pcf");
    EXPECT_EQ(gw::dpkg_pattern("/f*o?/[a]\\b"), "/f\\*o\\?/\\[a\\]\\\\b");
}

TEST(PackageOwner, AnswersOfDpkgAreRead) {
    EXPECT_EQ(gw::parse_dpkg_answer("xfonts-base: /usr/share/fonts/X11/misc/6x13.pcf.gz\n"
                                    "libc6:amd64, libc6:i386: /usr/share/doc/libc6\n"
                                    "diversion by dash from: /bin/sh\n"
                                    "local diversion to: /bin/sh.real\n"
                                    "with: colon: /a: /b\n"
                                    "no path\n\n: \n: /of/nobody\n"),
              (PackageOwners{{"/usr/share/fonts/X11/misc/6x13.pcf.gz", "xfonts-base"},
                             {"/usr/share/doc/libc6", "libc6:amd64, libc6:i386"},
                             {"/a: /b", "with: colon"}}));
    EXPECT_TRUE(gw::parse_dpkg_answer("").empty());
}

TEST(PackageOwner, AnswersOfRpmAreReadInTheirOrder) {
    EXPECT_EQ(
        gw::parse_rpm_answer("xorg-fonts\nfile /b is not owned by any package\nother\n", {"/a", "/b", "/c"}),
        (PackageOwners{{"/a", "xorg-fonts"}, {"/c", "other"}}));
    EXPECT_EQ(gw::parse_rpm_answer("one\ntwo\n", {"/a"}), (PackageOwners{{"/a", "one, two"}}));
    EXPECT_TRUE(gw::parse_rpm_answer("one\ntwo\nthree\n", {"/a", "/b"}).empty());
    EXPECT_TRUE(gw::parse_rpm_answer("", {"/a", "/b"}).empty());
}

// The real package manager, about files that are on every machine that runs these tests.
TEST(PackageOwner, TheOwnersOfFilesAreAsked) {
    const TempDir dir;
    const std::string own = dir.write("own.pcf", "x");
    std::filesystem::create_symlink("/usr/share/doc", dir.file("link"));
    const std::string link = dir.file("link/libc6");
    // Only the link would be deleted.
    std::filesystem::create_symlink("/usr/share/doc/libc6", dir.file("direct"));
    const PackageOwners owners = found({"/usr/share/doc/libc6", link, dir.file("direct"), own,
                                        "/usr/share/doc/lib*", "/nonexistent", "/a\nb"});
    ASSERT_EQ(owners.count("/usr/share/doc/libc6"), 1U);
    EXPECT_TRUE(owners.at("/usr/share/doc/libc6").starts_with("libc6"));
    EXPECT_EQ(owners.at(link), owners.at("/usr/share/doc/libc6"));
    EXPECT_EQ(owners.size(), 2U);
}

/// A directory of commands that stand in for package managers; they come first on PATH.
class PackageManager : public testing::Test {
  protected:
    PackageManager() : path_(std::getenv("PATH")) {}
    ~PackageManager() override { ::setenv("PATH", path_.c_str(), 1); }
    void put(const std::string& name, const std::string& script) const {
        dir.write("bin/" + name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(dir.file("bin/" + name), std::filesystem::perms(0755));
    }
    void use(bool with_system) const {
        ::setenv("PATH", (dir.file("bin") + (with_system ? ":" + path_ : "")).c_str(), 1);
    }
    TempDir dir;

  private:
    std::string path_;
};

TEST_F(PackageManager, NothingIsKnownWhereThereIsNone) {
    dir.make_dir("bin");
    use(false);
    EXPECT_TRUE(found({"/usr/share/doc/libc6"}).empty());
}

TEST_F(PackageManager, RpmIsAskedWhereThereIsNoDpkg) {
    put("rpm", "echo libc\n");
    use(false);
    EXPECT_EQ(found({"/usr/share/doc/libc6"}), (PackageOwners{{"/usr/share/doc/libc6", "libc"}}));
}

TEST_F(PackageManager, IsAskedOnceForAllFilesOfAnAction) {
    put("dpkg-query",
        "echo x >>" + dir.file("calls") + "\nshift 2\nfor f; do echo \"pkg: $f\"; done\nexit 1\n");
    use(true);
    gw::forget_package_owners();
    EXPECT_EQ(remembered({"/usr/share/doc", "/usr/bin", "/usr/bin"}).size(), 2U);
    EXPECT_EQ(remembered({"/usr/bin"}).size(), 1U);
    EXPECT_EQ(remembered({"/nonexistent"}).size(), 0U);
    EXPECT_EQ(remembered({"/nonexistent"}).size(), 0U);
    EXPECT_EQ(dir.read("calls"), "x\n");
    gw::forget_package_owners();
    EXPECT_EQ(remembered({"/usr/bin"}).size(), 1U);
    EXPECT_EQ(dir.read("calls"), "x\nx\n");
    gw::forget_package_owners();
}

// Files of packages would be deleted or replaced without a question.
TEST_F(PackageManager, NoAnswerIsNotThatAFileIsInNoPackage) {
    const auto failure = [] {
        const gw::Result<PackageOwners> owners = gw::ask_package_owners({"/usr/share/doc"});
        return owners ? "" : owners.failure().text();
    };
    put("dpkg-query", "kill -9 $$\n");
    use(true);
    EXPECT_EQ(failure(), "dpkg-query -S: this command failed with status 137");
    put("dpkg-query", "exec sleep 1000\n");
    gw::set_command_patience(std::chrono::milliseconds(100));
    EXPECT_EQ(failure(), "dpkg-query -S: this command did not end and was stopped");
    std::filesystem::remove(dir.file("bin/dpkg-query"));
    put("rpm", "exec /bin/sleep 1000\n");
    use(false);
    EXPECT_EQ(failure(), "rpm -qf: this command did not end and was stopped");
    gw::set_command_patience(gw::LONG_WORK);
    put("rpm", "kill -9 $$\n");
    EXPECT_EQ(failure(), "rpm -qf: this command failed with status 137");
}

TEST_F(PackageManager, ThatDoesNotAnswerIsAskedOnceInAnAction) {
    put("dpkg-query", "echo x >>" + dir.file("calls") + "\nkill -9 $$\n");
    use(true);
    gw::forget_package_owners();
    for (const char* path : {"/usr/share/doc", "/usr/bin", "/usr/share/doc"})
        EXPECT_FALSE(gw::package_owners({path})) << path;
    EXPECT_EQ(dir.read("calls"), "x\n");
    put("dpkg-query", "shift 2\necho \"pkg: $1\"\n");
    gw::forget_package_owners();
    EXPECT_EQ(remembered({"/usr/bin"}).size(), 1U);
    gw::forget_package_owners();
}

// rpm counts in its exit status the files that are in no package.
TEST_F(PackageManager, ManyFilesOfNoPackageAreNoSignAgainstRpm) {
    put("rpm",
        "for f in /usr/bin /usr/lib; do echo \"file $f is not owned by any package\"; done\nexit 130\n");
    use(false);
    EXPECT_TRUE(found({"/usr/bin", "/usr/share/doc"}).empty());
    put("rpm", "echo base\necho \"file /usr/lib is not owned by any package\"\nexit 127\n");
    EXPECT_EQ(found({"/usr/bin", "/usr/share/doc"}), (PackageOwners{{"/usr/bin", "base"}}));
}

TEST_F(PackageManager, RpmIsAskedOnceForManyFilesAndAFewTimesWhereOneIsOfSeveralPackages) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/bin"))
        if (paths.size() < 64) paths.push_back(entry.path());
    ASSERT_EQ(paths.size(), 64U);
    const std::string ask = "echo x >>" + dir.file("calls") + "\nshift 4\n";
    put("rpm", ask + "for f; do echo \"file $f is not owned by any package\"; done\nexit 64\n");
    use(false);
    EXPECT_TRUE(found(paths).empty());
    EXPECT_EQ(dir.read("calls"), "x\n");
    put("rpm", ask + "for f; do if [ \"$f\" = " + paths[40] +
                   " ]; then echo one; echo two; else echo base; fi; done\n");
    const PackageOwners owners = found(paths);
    EXPECT_EQ(owners.size(), 64U);
    EXPECT_EQ(owners.at(paths[40]), "one, two");
    EXPECT_EQ(owners.at(paths[41]), "base");
    EXPECT_LE(dir.read("calls").size(), 2U * (1 + 1 + 2 * 6));
}

TEST_F(PackageManager, AThousandLongNamesGoIntoSeveralCommands) {
    if (::geteuid() != 0) GTEST_SKIP() << "files of packages belong to the superuser";
    put("dpkg-query", "echo x >>" + dir.file("calls") + "\nshift 2\nfor f; do echo \"pkg: $f\"; done\n");
    use(true);
    std::vector<std::string> paths;
    for (int i = 0; i < 1000; ++i)
        paths.push_back(dir.write("fonts/" + std::string(200, 'n') + "%s" + std::to_string(i), ""));
    EXPECT_EQ(found(paths).size(), 1000U);
    EXPECT_EQ(dir.read("calls"), "x\nx\nx\n");
}

}  // namespace
