// SPDX-License-Identifier: MIT
//
// The Debian package on a machine where the same places have something of another maker.
#include <gmock/gmock.h>

#include "package/package_machine.h"

namespace {

using namespace gw::test::package;
using gw::test::TempDir;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

const std::string ALLOW = "/etc/vantor/allow-glyphward";

class ForeignConfig : public Package, public testing::WithParamInterface<std::string> {};

TEST_P(ForeignConfig, IsLeftAlone) {
    write(CONFIG, GetParam());
    const Outcome installation = run(install_command());
    EXPECT_EQ(installation.status, 0);
    EXPECT_EQ(read(CONFIG), GetParam());
    // A font path that cannot be right is reported.
    if (GetParam() == OWN_CONFIG) {
        EXPECT_THAT(installation.text, Not(HasSubstr(CONFIG)));
    } else {
        EXPECT_THAT(installation.text,
                    HasSubstr(CONFIG + (GetParam().empty() ? " is empty" : " is no configuration")));
    }
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_EQ(read(CONFIG), GetParam());
    EXPECT_THAT(files_below(INSTALLATION), UnorderedElementsAre(CONFIG));
}
INSTANTIATE_TEST_SUITE_P(Package, ForeignConfig,
                         testing::Values(OWN_CONFIG, "", "no attribute\n", std::string("a.b:\tc\0\n", 8)));

class ForeignInstallation : public Package {
  protected:
    ForeignInstallation() {
        write(PROGRAM, "foreign");
        write(INSTALLATION + "/lib/other", "other");
        write(CONFIG, OWN_CONFIG);
        before = all_of_installation();
    }
    void expect_untouched() const {
        EXPECT_EQ(all_of_installation(), before);
        EXPECT_EQ(read(PROGRAM), "foreign");
        EXPECT_FALSE(is_there("/usr/bin/glyphward"));
    }
    /// Starts the installation at a terminal and types the answer.
    static Outcome install_at_terminal(const std::string& answer) {
        return run("echo " + answer + " | script -qec 'env -u DEBIAN_FRONTEND " + install_command() +
                   "' /dev/null");
    }
    std::set<std::string> before;
};

TEST_F(ForeignInstallation, IsRefused) {
    const Outcome installation = run(install_command());
    EXPECT_NE(installation.status, 0);
    EXPECT_THAT(installation.text, HasSubstr("/usr/vantor holds files that are not Glyph Warden's"));
    EXPECT_THAT(installation.text, HasSubstr("    bin/glyphward\n"));
    EXPECT_THAT(installation.text, HasSubstr(ALLOW));
    expect_untouched();
    EXPECT_NE(run("dpkg-query -W -f '${db:Status-Status}' glyphward").text, "installed");
}

TEST_F(ForeignInstallation, IsInstalledOverWhenTheAdministratorAllowsIt) {
    write(ALLOW, "");
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_NE(read(PROGRAM), "foreign");
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_THAT(files_below(INSTALLATION), UnorderedElementsAre(INSTALLATION + "/lib/other", CONFIG));
}

TEST_F(ForeignInstallation, IsAskedAboutAtATerminal) {
    const Outcome refused = install_at_terminal("n");
    EXPECT_THAT(refused.text, HasSubstr("Install over them all the same? [y/N]"));
    EXPECT_NE(refused.status, 0);
    expect_untouched();
    const Outcome agreed = install_at_terminal("y");
    EXPECT_EQ(agreed.status, 0) << agreed.text;
    EXPECT_NE(read(PROGRAM), "foreign");
}

TEST_F(ForeignInstallation, IsRefusedByCMakeUnlessItIsToldTo) {
    const Outcome refused = run(CMAKE_INSTALL);
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.text, HasSubstr("GLYPHWARD_REPLACE=1"));
    expect_untouched();
    ASSERT_TRUE(succeeds(std::string("GLYPHWARD_REPLACE=1 ") + CMAKE_INSTALL));
    EXPECT_NE(read(PROGRAM), "foreign");
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    // Now the installation is ours.
    EXPECT_TRUE(succeeds(CMAKE_INSTALL));
    run("xargs -d '\\n' rm -f <" GLYPHWARD_BUILD "/install_manifest.txt");
}

}  // namespace
