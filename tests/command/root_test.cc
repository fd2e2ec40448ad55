// SPDX-License-Identifier: MIT
//
// Other roots: the fonts of an image, and of a hundred machines at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "command/fonts_command.h"
#include "platform/shell_command.h"

namespace {

namespace fs = std::filesystem;
using gw::test::fonts_command;
using gw::test::Json;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::TempDir;
using gw::test::Variable;
using testing::HasSubstr;
using testing::Not;

/// Copies a program of the system and all that it is linked with.
void copy_program(const std::string& program, const std::string& root) {
    const auto copy = [&](const std::string& file) {
        fs::create_directories(fs::path(root + file).parent_path());
        fs::copy_file(fs::canonical(file), root + file, fs::copy_options::skip_existing);
    };
    copy(program);
    const TempDir dir;
    ASSERT_NE(gw::run_shell("ldd %s > %s 2>&1", {program, dir.file("said")}), -1);
    std::istringstream words(dir.read("said"));
    for (std::string word; words >> word;) {
        if (word.starts_with('/') && !word.ends_with(':')) copy(word);
    }
}

/// Makes an installation below the directory, which has one bitmap font and a directory for more on its path.
void make_image(const std::string& root) {
    const std::string misc = root + "usr/vantor/lib/X11/fonts/misc/";
    for (const char* dir :
         {"usr/vantor/server/etc", "etc/vantor", "dev", "proc", "mnt", "tmp", "fonts", "root"})
        fs::create_directories(root + dir);
    fs::create_directories(misc);
    fs::copy_file("/usr/vantor/lib/X11/fonts/75dpi/courB12-ISO8859-1.pcf", misc + "courB12.pcf");
    std::ofstream(misc + "fonts.dir")
        << "1\ncourB12.pcf -adobe-courier-bold-r-normal--12-120-75-75-m-70-iso8859-1\n";
    for (const char* program : {"/bin/sh", "/usr/bin/mkfontscale", "/usr/bin/mkfontdir"})
        copy_program(program, root);
    std::ofstream(root + "usr/vantor/server/etc/VTconfig")
        << "XDISPLAY.0.fontpath:\t/usr/vantor/lib/X11/fonts/misc/,/fonts/\n";
}

class CommandRoot : public testing::Test {
  protected:
    CommandRoot() { make_image(image_.path()); }
    [[nodiscard]] Ran in_image(std::vector<std::string> words) const {
        words.insert(words.end(), {"--root", image_.path()});
        return fonts_command(words);
    }

    TempDir image_;
};

TEST_F(CommandRoot, ListsTheFontsOfTheImage) {
    const Ran ran = in_image({"list", "--json"});
    EXPECT_EQ(ran.status, 0) << ran.err;
    ASSERT_EQ(ran.json()["fonts"].size(), 1U) << ran.out;
    EXPECT_EQ(ran.json()["fonts"][0]["files"][0], "/usr/vantor/lib/X11/fonts/misc/courB12.pcf");
}

TEST_F(CommandRoot, InstallsFilesFromOutside) {
    const TempDir outside;
    fs::copy_file(SANS, outside.file("DejaVuSans.ttf"));
    const Ran ran = in_image({"install", "--to", "/fonts", outside.path()});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(image_.read("fonts/DejaVuSans.ttf"), TempDir::read_bytes(SANS));
    EXPECT_EQ(in_image({"install", "--to", "/fonts", outside.path()}).status, 3);
    // Nothing else has come, and nothing stays mounted.
    EXPECT_EQ(gw::test::entries_in(image_.file("mnt")), 0);
    EXPECT_THAT(TempDir::read_bytes("/proc/self/mounts"), Not(HasSubstr(image_.file("mnt"))));
    EXPECT_EQ(in_image({"delete", "--yes", "dejavu*"}).status, 0);
    EXPECT_FALSE(image_.exists("fonts/DejaVuSans.ttf"));
    EXPECT_EQ(in_image({"undo"}).status, 0);
    EXPECT_TRUE(image_.exists("fonts/DejaVuSans.ttf"));
}

TEST_F(CommandRoot, NamesFilesAsTheUserDoes) {
    const Ran ran = in_image({"install", "--to", "/fonts", "/nowhere/gone.ttf"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "glyphward-fonts: /nowhere/gone.ttf: No such file or directory\n");
}

TEST_F(CommandRoot, AppliesAProfileFromOutside) {
    const TempDir outside;
    fs::create_directory(outside.file("fonts"));
    fs::copy_file(SANS, outside.file("fonts/DejaVuSans.ttf"));
    (void)outside.write("p.toml", "profile = 1\n[fonts]\nto = \"/fonts\"\nfiles = [\"fonts\"]\n");
    EXPECT_EQ(in_image({"apply", "--check", outside.file("p.toml")}).status, 1);
    const Ran ran = in_image({"apply", outside.file("p.toml")});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_TRUE(image_.exists("fonts/DejaVuSans.ttf"));
    EXPECT_EQ(in_image({"apply", outside.file("p.toml")}).status, 3);
}

// The old root was bound to "/tmp" where there was no other place, and scratch files were made in it.
TEST_F(CommandRoot, LeavesTheOldRootAloneWhereOnlyTmpIsThere) {
    fs::remove(image_.file("mnt"));
    const TempDir outside;
    fs::copy_file(SANS, outside.file("DejaVuSans.ttf"));
    std::set<std::string> before;
    for (const auto& entry : fs::directory_iterator("/")) before.insert(entry.path());
    const Ran ran = in_image({"install", "--to", "/fonts", outside.path()});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_TRUE(image_.exists("fonts/DejaVuSans.ttf"));
    std::set<std::string> after;
    for (const auto& entry : fs::directory_iterator("/")) after.insert(entry.path());
    EXPECT_EQ(after, before);
    EXPECT_EQ(gw::test::entries_in(image_.file("tmp")), 0);
}

TEST_F(CommandRoot, LinksThatLeadOutOfItDoNot) {
    const TempDir host;
    (void)host.write("fonts.dir", "0\n");
    fs::remove(image_.file("fonts"));
    fs::create_symlink(host.path(), image_.file("fonts"));
    const Ran ran = in_image({"install", "--to", "/fonts", SANS});
    EXPECT_EQ(ran.status, 4) << ran.out << ran.err;
    EXPECT_EQ(gw::test::entries_in(host.path()), 1);
    // The same with a link that has the image's own names.
    fs::remove(image_.file("fonts"));
    image_.make_dir("else");
    fs::create_symlink("../../../else", image_.file("fonts"));
    EXPECT_EQ(in_image({"install", "--to", "/fonts", SANS}).status, 0);
    EXPECT_TRUE(image_.exists("else/DejaVuSans.ttf"));
    EXPECT_EQ(gw::test::entries_in(host.path()), 1);
}

// The server of the session got directories of the image.
TEST_F(CommandRoot, LeavesTheServersFontPathAlone) {
    const std::string before = fonts_command({"path", "show", "--of", "session"}).out;
    ASSERT_NE(before, "");
    EXPECT_EQ(in_image({"install", "--to", "/fonts", SANS}).status, 0);
    EXPECT_EQ(in_image({"delete", "--yes", "dejavu*"}).status, 0);
    EXPECT_EQ(fonts_command({"path", "show", "--of", "session"}).out, before);
}

/// A sanitizer's check for leaks waits for ever where there is no "/proc".
std::string without_check_for_leaks() {
    const char* options = std::getenv("ASAN_OPTIONS");
    return (options != nullptr ? options + std::string(":") : std::string()) + "detect_leaks=0";
}

TEST_F(CommandRoot, WithoutAnInstallationHasNothing) {
    const Variable options("ASAN_OPTIONS", without_check_for_leaks().c_str());
    const TempDir empty;
    EXPECT_EQ(fonts_command({"list", "--root", empty.path()}).out, "");
    EXPECT_EQ(fonts_command({"trash", "--root", empty.path()}).out, "");
    EXPECT_EQ(fonts_command({"delete", "--yes", "*", "--root", empty.path()}).status, 1);
    EXPECT_EQ(fonts_command({"install", "--to", "/fonts", SANS, "--root", empty.path()}).status, 4);
    EXPECT_EQ(fonts_command({"list", "--root", SANS}).status, 4);
    EXPECT_EQ(gw::test::entries_in(empty.path()), 0);
}

/// What a play has said of its hosts.
struct Played {
    int status = -1;
    std::string out;
    [[nodiscard]] bool says(const std::string& host, const std::string& counts) const {
        // "one    : ok=2    changed=0    unreachable=0    failed=0"
        const std::size_t at = out.rfind('\n' + host + ' ');
        return at != std::string::npos && out.find(counts, at) < out.find('\n', at + 1);
    }
};

/// Two hosts, each an image of its own; the second is on a disk that has room for little more.
class CommandHosts : public testing::Test {
  protected:
    static constexpr const char* ROOM = "size=16m";

    void SetUp() override {
        // Who mounts a disk, and has the shared memory that the tool wants, is an administrator.
        if (::geteuid() != 0) GTEST_SKIP() << "hosts are the administrator's";
        fs::create_directories(dir_.file("files/fonts"));
        fs::copy_file(SANS, dir_.file("files/fonts/DejaVuSans.ttf"));
        (void)dir_.write("files/profile.toml",
                         "profile = 1\n[fonts]\nto = \"/fonts\"\nfiles = [\"fonts\"]\n");
        two_ = dir_.make_dir("two");
        ASSERT_EQ(::unshare(CLONE_NEWNS), 0);
        ASSERT_EQ(::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
        ASSERT_EQ(::mount("small", two_.c_str(), "tmpfs", 0, ROOM), 0);
        make_image(dir_.make_dir("one"));
        make_image(two_);
        (void)dir_.write("hosts", "one ansible_connection=local glyphward_root=" + dir_.file("one") +
                                      "\ntwo ansible_connection=local glyphward_root=" + two_ + '\n');
        (void)dir_.write("play.yml",
                         "- hosts: all\n  gather_facts: false\n  roles:\n    - role: glyphward\n      vars:\n"
                         "        glyphward_profile: " +
                             dir_.file("files") +
                             "\n        glyphward_directory: " + dir_.file("there-{{ inventory_hostname }}") +
                             "\n        glyphward_command: " + gw::test::FONTS_COMMAND + '\n');
    }
    void TearDown() override {
        if (!two_.empty()) ::umount2(two_.c_str(), MNT_DETACH);
    }
    /// Leaves this much of the second host's disk.
    void fill(unsigned long blocks) const {
        struct statvfs info = {};
        ASSERT_EQ(::statvfs(two_.c_str(), &info), 0);
        std::ofstream(two_ + "filler", std::ios::binary)
            << std::string((info.f_bavail - blocks) * info.f_frsize, 'x');
    }
    [[nodiscard]] Played play(const std::string& options = "") const {
        const int status = gw::run_shell(
            "cd %s && HOME=%s ANSIBLE_NOCOLOR=1 ANSIBLE_ROLES_PATH=%s ANSIBLE_LOCALHOST_WARNING=0 "
            "ansible-playbook -i hosts play.yml " +
                options + " > said 2>&1",
            {dir_.path(), dir_.path(), GLYPHWARD_TREE "/packaging/ansible"}, std::chrono::seconds(120));
        return {status, dir_.read("said")};
    }

    TempDir dir_;
    std::string two_;
};

TEST_F(CommandHosts, AreChangedOnce) {
    const Played check = play("--check --diff");
    EXPECT_EQ(check.status, 0) << check.out;
    EXPECT_FALSE(fs::exists(dir_.file("one/fonts/DejaVuSans.ttf")));
    const Played first = play("--diff");
    EXPECT_EQ(first.status, 0) << first.out;
    EXPECT_TRUE(first.says("one", "changed=2 ")) << first.out;
    EXPECT_TRUE(first.says("two", "changed=2 ")) << first.out;
    EXPECT_THAT(first.out, HasSubstr("+font DejaVu Sans Medium [TrueType]: DejaVu Sans Medium [TrueType]"));
    EXPECT_TRUE(fs::exists(dir_.file("one/fonts/DejaVuSans.ttf")));
    EXPECT_TRUE(fs::exists(two_ + "fonts/DejaVuSans.ttf"));
    const Played second = play();
    EXPECT_EQ(second.status, 0) << second.out;
    EXPECT_TRUE(second.says("one", "changed=0 ")) << second.out;
    EXPECT_TRUE(second.says("two", "changed=0 ")) << second.out;
}

TEST_F(CommandHosts, AFullDiskFailsAloneAndKeepsItsFonts) {
    ASSERT_EQ(play().status, 0);
    const std::string before = TempDir::read_bytes(two_ + "fonts/DejaVuSans.ttf");
    const std::string index = TempDir::read_bytes(two_ + "fonts/fonts.dir");
    fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
                  dir_.file("files/fonts/DejaVuSans-Bold.ttf"));
    fill(2);
    const Played played = play();
    EXPECT_NE(played.status, 0);
    EXPECT_TRUE(played.says("one", "failed=0 ")) << played.out;
    EXPECT_TRUE(played.says("two", "failed=1 ")) << played.out;
    EXPECT_TRUE(fs::exists(dir_.file("one/fonts/DejaVuSans-Bold.ttf")));
    EXPECT_FALSE(fs::exists(two_ + "fonts/DejaVuSans-Bold.ttf"));
    EXPECT_EQ(TempDir::read_bytes(two_ + "fonts/DejaVuSans.ttf"), before);
    EXPECT_EQ(TempDir::read_bytes(two_ + "fonts/fonts.dir"), index);
}

TEST_F(CommandHosts, CheckModeSaysWhatWouldChange) {
    ASSERT_EQ(play().status, 0);
    (void)dir_.write("files/profile.toml", "profile = 1\n[fonts]\nto = \"/fonts\"\nabsent = [\"dejavu*\"]\n");
    for (const char* host : {"one", "two"})
        fs::copy_file(dir_.file("files/profile.toml"),
                      dir_.file(std::string("there-") + host + "/profile.toml"),
                      fs::copy_options::overwrite_existing);
    const Played check = play("--check --diff");
    EXPECT_EQ(check.status, 0) << check.out;
    EXPECT_TRUE(check.says("one", "changed=1 ")) << check.out;
    EXPECT_THAT(check.out, HasSubstr("-font Dejavu Sans Medium [TrueType]"));
    EXPECT_TRUE(fs::exists(dir_.file("one/fonts/DejaVuSans.ttf")));
}

}  // namespace
