// SPDX-License-Identifier: MIT
//
// The Ansible role on a machine that has nothing of the program yet.
#include <gmock/gmock.h>

#include "package/package_machine.h"

namespace {

using namespace gw::test::package;
using gw::test::TempDir;
using testing::HasSubstr;

/// This machine, with a profile of one font.
class PackageHosts : public Package {
  protected:
    PackageHosts() {
        play_.write("files/profile.toml", "profile = 1\n[fonts]\nto = \"everyone\"\nfiles = [\"fonts\"]\n");
        play_.make_dir("files/fonts");
        fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                      play_.file("files/fonts/DejaVuSans.ttf"));
        play_.write("play.yml",
                    "- hosts: localhost\n  connection: local\n  gather_facts: false\n  roles:\n"
                    "    - role: glyphward\n      vars:\n        glyphward_package: " +
                        package_file() + "\n        glyphward_profile: " + play_.file("files") + '\n');
    }
    [[nodiscard]] Outcome play(const std::string& options = "") const {
        return run("cd " + play_.path() + " && HOME=" + play_.path() +
                   " ANSIBLE_NOCOLOR=1 ANSIBLE_LOCALHOST_WARNING=0 ANSIBLE_INVENTORY_UNPARSED_WARNING=0 "
                   "ANSIBLE_ROLES_PATH=" GLYPHWARD_TREE "/packaging/ansible ansible-playbook " +
                   options + " play.yml");
    }

  private:
    TempDir play_;
};

TEST_F(PackageHosts, GetThePackageAndTheFontsOnce) {
    ASSERT_FALSE(is_there(PROGRAM));
    const Outcome first = play();
    ASSERT_EQ(first.status, 0) << first.text;
    EXPECT_THAT(first.text, HasSubstr("changed=3 "));
    EXPECT_TRUE(is_there(PROGRAM));
    EXPECT_TRUE(is_there(std::string(gw::SUPERUSER_FONT_DIR) + "DejaVuSans.ttf"));
    EXPECT_THAT(read(std::string(gw::SUPERUSER_FONT_DIR) + "fonts.dir"), HasSubstr("DejaVuSans.ttf -misc-"));
    EXPECT_THAT(run("glyphward-fonts list 'dejavu sans medium*'").text, HasSubstr("[TrueType]"));
    const Outcome second = play();
    EXPECT_EQ(second.status, 0) << second.text;
    EXPECT_THAT(second.text, HasSubstr("changed=0 "));
    const Outcome check = play("--check --diff");
    EXPECT_EQ(check.status, 0) << check.text;
    EXPECT_THAT(check.text, HasSubstr("changed=0 "));
}

}  // namespace
