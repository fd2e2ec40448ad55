// SPDX-License-Identifier: MIT
//
// The Debian package on a machine that has an older release: nothing of the user's or the administrator's is
// lost.
#include <gmock/gmock.h>

#include "package/package_machine.h"

namespace {

using namespace gw::test::package;
using gw::test::TempDir;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(Package, AnUpgradeKeepsAChangedFontPath) {
    ASSERT_TRUE(succeeds(install_command()));
    write(CONFIG, OWN_CONFIG);
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    EXPECT_TRUE(fs::is_symlink(LINKS + "misc"));
}

const std::string FIRST_RELEASES_PATH = joined({"misc/", "75dpi/", "100dpi/", "Type1/"});
constexpr const char* CLASS_FILE = "/usr/vantor/lib/app-defaults/Glyphward";
constexpr const char* OWN_RESOURCES = "Glyphward*gw_interface.fontSize: 12\n";

/// Writes a bitmap font that no other machine has; the family name must have nine letters.
void write_own_font(const std::string& family, const std::string& path) {
    fs::create_directories(fs::path(path).parent_path());
    ASSERT_TRUE(succeeds("gunzip -c " + HOST_FONTS +
                         "75dpi/helvR24-ISO8859-1.pcf.gz | LC_ALL=C sed s/Helvetica/" + family +
                         "/g | gzip -c >" + path));
}

/// A machine with the first release, as it has left it: its font path, fonts in directories of the superuser
/// and of the user, and what it has left there when it was killed.
class Upgrade : public Package {
  protected:
    void SetUp() override {
        ASSERT_TRUE(succeeds(install_command()));
        write(CONFIG, config_of(FIRST_RELEASES_PATH));
        write("/var/lib/glyphward/VTconfig", config_of(FIRST_RELEASES_PATH));
    }
    /// Each has a font, and one that a replacement was to take the place of, whose index line is gone too.
    static void leave_fonts(const std::string& dir, const char* replaced) {
        make_fonts(dir, {"helvB24-ISO8859-1.pcf.gz -own-" + std::string(replaced) +
                         "-bold-r-normal--24-240-75-75-p-138-iso8859-1"});
        write_own_font(replaced, dir + ".old.pcf.gz.gwkept");
        write(dir + ".helvB24-ISO8859-1.pcf.gz.gwold", "older");
        EXPECT_TRUE(succeeds("chown -R --reference=" + fs::path(dir).parent_path().parent_path().string() +
                             ' ' + dir));
    }
    static void expect_fonts(const std::string& dir, const std::string& replaced) {
        EXPECT_THAT(read(dir + "fonts.dir"),
                    AllOf(StartsWith("2\nhelvB24-ISO8859-1.pcf.gz -own-"),
                          HasSubstr("\nold.pcf.gz -adobe-" + replaced + "-medium-r-normal--24-")));
        EXPECT_GT(read(dir + "old.pcf.gz").size(), 1000U);
        EXPECT_TRUE(succeeds("cmp " + dir + "helvB24-ISO8859-1.pcf.gz " + HOST_FONTS +
                             "75dpi/helvB24-ISO8859-1.pcf.gz"));
        for (const char* left : {".old.pcf.gz.gwkept", ".helvB24-ISO8859-1.pcf.gz.gwold"})
            EXPECT_FALSE(is_there(dir + left)) << left;
    }

  private:
    Home home_;
};

TEST_F(Upgrade, LosesNothing) {
    const std::string users_fonts = "/home/glyph/glyphwd_fonts/";
    leave_fonts(gw::SUPERUSER_FONT_DIR, "superuser");
    ASSERT_TRUE(succeeds("chown glyph:glyph /home/glyph"));
    leave_fonts(users_fonts, "userfonts");
    write("/home/glyph/.VTfontpath", users_fonts + '\n');
    write("/home/glyph/.VTfontpath.bak", "/home/glyph/before/\n");
    const std::string resources = read(CLASS_FILE);
    write(CLASS_FILE, resources + OWN_RESOURCES);

    const Outcome upgraded = run(install_command());
    EXPECT_EQ(upgraded.status, 0) << upgraded.text;
    EXPECT_EQ(read(CONFIG), font_path_of(ALL_NAMES));
    EXPECT_EQ(read("/var/lib/glyphward/VTconfig"), font_path_of(ALL_NAMES));
    EXPECT_THAT(upgraded.text, HasSubstr(std::string(CLASS_FILE) + " has your changes"));
    EXPECT_EQ(read(CLASS_FILE), resources + OWN_RESOURCES);
    EXPECT_EQ(read(CLASS_FILE + std::string(".dpkg-dist")), resources);

    EXPECT_TRUE(succeeds(session("Upgrade.BringsTheUsersFontsBack")));
    expect_fonts(users_fonts, "userfonts");
    EXPECT_TRUE(is_there(gw::SUPERUSER_FONT_DIR + std::string(".old.pcf.gz.gwkept")))
        << "not the user's affair";
    EXPECT_TRUE(succeeds(superusers_session("Upgrade.BringsTheSuperusersFontsBack")));
    expect_fonts(gw::SUPERUSER_FONT_DIR, "superuser");
    EXPECT_TRUE(succeeds(session("Upgrade.HasAllFontsTheNextDay")));
    EXPECT_EQ(read("/home/glyph/.VTfontpath"), users_fonts + '\n');
    EXPECT_EQ(read("/home/glyph/.VTfontpath.bak"), "/home/glyph/before/\n");

    // A second upgrade keeps the changes too, and a removal leaves nothing of the package's.
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CLASS_FILE), resources + OWN_RESOURCES);
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_FALSE(fs::exists(INSTALLATION));
}

TEST_F(Upgrade, LeavesAClassFileThatNobodyChangedToThePackage) {
    const std::string resources = read(CLASS_FILE);
    const Outcome upgraded = run(install_command());
    EXPECT_EQ(upgraded.status, 0);
    EXPECT_THAT(upgraded.text, Not(HasSubstr(CLASS_FILE)));
    EXPECT_EQ(read(CLASS_FILE), resources);
    EXPECT_FALSE(is_there(CLASS_FILE + std::string(".dpkg-dist")));
    EXPECT_FALSE(is_there(CLASS_FILE + std::string(".kept")));
}

// In the second try the class file is the package's, and nobody seems to have changed it.
TEST_F(Upgrade, ThatIsTriedAgainKeepsAChangedClassFile) {
    const std::string resources = read(CLASS_FILE);
    write(CLASS_FILE, resources + OWN_RESOURCES);
    for (int time = 1; time <= 2; ++time) {
        ASSERT_TRUE(succeeds("dpkg --force-unsafe-io --unpack " + package_file()));
        EXPECT_EQ(read(CLASS_FILE + std::string(".kept")), resources + OWN_RESOURCES) << time;
    }
    ASSERT_TRUE(succeeds("dpkg --configure glyphward"));
    EXPECT_EQ(read(CLASS_FILE), resources + OWN_RESOURCES);
    EXPECT_EQ(read(CLASS_FILE + std::string(".dpkg-dist")), resources);
}

// What it has set aside would take the place of what is changed after it.
TEST_F(Upgrade, ThatIsRefusedLeavesNothingAside) {
    const TempDir dir;
    ASSERT_TRUE(succeeds("dpkg-deb -R " + package_file() + ' ' + dir.file("next")));
    ASSERT_TRUE(succeeds("echo 'exit 1' >>" + dir.file("next/DEBIAN/preinst")));
    ASSERT_TRUE(succeeds("dpkg-deb -Znone -b " + dir.file("next") + ' ' + dir.file("next.deb")));
    write(CLASS_FILE, OWN_RESOURCES);
    EXPECT_NE(run("dpkg --force-unsafe-io -i " + dir.file("next.deb")).status, 0);
    EXPECT_EQ(read(CLASS_FILE), OWN_RESOURCES);
    for (const char* left : {".kept", ".keeping", ".dpkg-dist"})
        EXPECT_FALSE(is_there(CLASS_FILE + std::string(left))) << left;
}

// Its order was made by the first release and not by anybody, and it hid outlines behind scaled bitmaps.
TEST_F(Upgrade, RenewsTheFirstReleasesPartOfAChangedFontPath) {
    write(CONFIG, config_of("/opt/first/," + FIRST_RELEASES_PATH + ",/opt/last/"));
    const Outcome upgraded = run(install_command());
    EXPECT_EQ(upgraded.status, 0) << upgraded.text;
    const std::string todays = read("/var/lib/glyphward/VTconfig");
    EXPECT_EQ(todays, font_path_of(ALL_NAMES));
    const std::string path = todays.substr(todays.find('\t') + 1, todays.size() - todays.find('\t') - 2);
    EXPECT_EQ(read(CONFIG), config_of("/opt/first/," + path + ",/opt/last/"));
    EXPECT_THAT(upgraded.text, HasSubstr(CONFIG + ": the font path is now "));
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CONFIG), config_of("/opt/first/," + path + ",/opt/last/")) << "the next time";
}

// Somebody has moved an element and taken one out.
TEST_F(Upgrade, KeepsAnOrderThatSomebodyHasChosen) {
    const std::string chosen = joined({"Type1/", "misc/", "75dpi/"});
    write(CONFIG, config_of(chosen));
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CONFIG), config_of(chosen + ',' + gw::SUPERUSER_FONT_DIR));
}

}  // namespace
