// SPDX-License-Identifier: MIT
//
// The Debian package, and cmake --install, on a throw-away machine: what an installation makes, and what a
// removal leaves.
#include <gmock/gmock.h>

#include "package/package_machine.h"

namespace {

using namespace gw::test::package;
using gw::test::TempDir;
using testing::Contains;
using testing::ContainsRegex;
using testing::Eq;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

// What lintian would ask appstreamcli is in the next test.
TEST_F(Package, PassesLintian) {
    const Outcome lintian =
        run("lintian --allow-root --fail-on error,warning --dont-check-part appstream-metadata " +
            package_file());
    EXPECT_EQ(lintian.status, 0);
    EXPECT_EQ(lintian.text, "");
}

TEST_F(Package, BringsWhatADesktopWants) {
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_TRUE(succeeds("desktop-file-validate /usr/share/applications/glyphward.desktop"));
    EXPECT_TRUE(
        succeeds(GLYPHWARD_TREE
                 "/packaging/check-metadata /usr/share/metainfo/local.glyphward.glyphward.metainfo.xml"));
    EXPECT_TRUE(fs::exists("/usr/share/icons/hicolor/scalable/apps/glyphward.svg"));
    for (const unsigned size : {16U, 32U, 48U, 64U, 128U}) {
        const std::string directory = std::to_string(size) + 'x' + std::to_string(size);
        const std::string png = read("/usr/share/icons/hicolor/" + directory + "/apps/glyphward.png");
        ASSERT_GT(png.size(), 24U) << directory;
        // Width and height are the first fields of the first chunk, the least significant byte last.
        EXPECT_EQ(static_cast<unsigned char>(png[19]), size);
        EXPECT_EQ(static_cast<unsigned char>(png[23]), size);
    }
}

TEST_F(Package, LinksTheHostsFontsAndWritesTheFontPath) {
    ASSERT_TRUE(succeeds(install_command()));
    for (const std::string& name : ALL_NAMES) EXPECT_EQ(fs::read_symlink(LINKS + name), HOST_FONTS + name);
    EXPECT_EQ(read(CONFIG), font_path_of(ALL_NAMES));
    EXPECT_EQ(fs::canonical("/usr/bin/glyphward"), PROGRAM);
    EXPECT_EQ(fs::canonical(gw::XSET), "/usr/bin/xset");
    EXPECT_TRUE(fs::exists(INSTALLATION + "/lib/app-defaults/Glyphward"));
    EXPECT_TRUE(fs::exists(INSTALLATION + "/lib/locale/C/LC_MESSAGES/glyphward.cat"));
    for (const char* file : {"copyright", "changelog.gz"}) {
        EXPECT_TRUE(fs::exists(std::string("/usr/share/doc/glyphward/") + file)) << file;
    }
}

TEST_F(Package, PutsTheSessionsFilesWhereSessionsLook) {
    const bool has_session = fs::exists(GLYPHWARD_TREE "/data/session/60glyphward-session");
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(fs::exists("/etc/X11/Xsession.d/60glyphward-session"), has_session);
    EXPECT_EQ(fs::exists("/etc/xdg/autostart/glyphward-session.desktop"), has_session);
    const std::string conffiles = run("dpkg-query -W -f '${Conffiles}' glyphward").text;
    EXPECT_EQ(conffiles.find("/etc/X11/Xsession.d/60glyphward-session") != std::string::npos, has_session);
}

TEST_F(Package, RunsForAnOrdinaryUser) {
    ASSERT_TRUE(succeeds(install_command()));
    // The server accepts the installation's font path, the list has fonts, and one of them shows a sample.
    EXPECT_TRUE(succeeds(GLYPHWARD_TREE "/scripts/inside log_in " GLYPHWARD_TREE "/scripts/show"));
    const Outcome page = run("setpriv --reuid glyph --regid glyph --clear-groups man glyphward");
    EXPECT_EQ(page.status, 0);
    EXPECT_THAT(page.text, HasSubstr("list, preview, install and delete X core fonts"));
}

/// The name by which the server offers to scale a bitmap font for 75 dots per inch.
std::string scalable(const std::string& name) {
    const std::string family = name.substr(0, name.find("--"));
    return family + "--0-0-75-75-p-0-iso8859-1";
}

// Fonts of the superuser, of the user, and Cyrillic ones of a package come with the installation. Some of
// them have names that others have, which are to be found first.
TEST_F(Package, EveryProgramGetsTheFontsThatItGotWithoutIt) {
    const Home home;
    const std::string koi8 = "-cronyx-fixed-medium-r-normal--10-100-75-75-c-60-koi8-r";
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -i " +
                         other_font_package("cyrillic", "1\nk.pcf.gz " + koi8 + '\n')));
    fs::copy(HOST_FONTS + "misc/6x10-KOI8-R.pcf.gz", HOST_FONTS + "cyrillic/k.pcf.gz");
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CONFIG), font_path_of({"misc", "cyrillic", "100dpi", "75dpi", "Type1"}));
    const std::string taken = "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1";
    const std::string roots = "-own-helvetica-bold-r-normal--24-240-75-75-p-138-iso8859-1";
    const std::string users = "-own-helvetica-medium-r-normal--24-240-75-75-p-130-iso8859-1";
    make_fonts(gw::SUPERUSER_FONT_DIR,
               {"helvB24-ISO8859-1.pcf.gz " + roots, "helvB18-ISO8859-1.pcf.gz fixed"});
    make_fonts("/home/glyph/glyphwd_fonts/",
               {"helvR24-ISO8859-1.pcf.gz " + users, "helvB24-ISO8859-1.pcf.gz " + taken});
    write("/home/glyph/.VTfontpath", "/home/glyph/glyphwd_fonts/\n");
    std::string names = "fixed\n";
    for (const std::string& name : {roots, users, taken}) names += name + '\n' + scalable(name) + '\n';
    write("/home/glyph/names-that-come", names);

    EXPECT_TRUE(succeeds(session("ServerFonts.StayWhatTheyWereAtALogin")));
    write(CONFIG, config_of(joined({"misc/", "75dpi/", "100dpi/", "Type1/"})));
    EXPECT_TRUE(succeeds(session("ServerFonts.AreThoseOfAChosenOrder")));
    fs::remove(HOST_FONTS + "cyrillic/k.pcf.gz");
}

TEST_F(Package, ServesAUserFromTheFirstLoginToItsRemoval) {
    const std::set<std::string> before = files_below("/usr /etc /var");
    ASSERT_TRUE(succeeds(install_command()));
    ASSERT_TRUE(succeeds(session("Session.OfTheFirstDayInstallsFonts")));
    EXPECT_EQ(read("/home/glyph/.VTfontpath"), "/home/glyph/glyphwd_fonts/\n");
    ASSERT_TRUE(succeeds(session("Session.OfTheSecondDayHasThemFromTheStartAndDeletesThem")));
    EXPECT_EQ(read("/home/glyph/glyphwd_fonts/fonts.dir"), "0\n");

    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -r glyphward"));
    std::set<std::string> with_configuration = before;
    with_configuration.insert({CONFIG, "/var/lib/glyphward/VTconfig",
                               "/etc/X11/Xsession.d/60glyphward-session",
                               "/etc/xdg/autostart/glyphward-session.desktop"});
    EXPECT_EQ(files_below("/usr /etc /var"), with_configuration);
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_EQ(files_below("/usr /etc /var"), before);
    EXPECT_TRUE(fs::exists("/home/glyph/.VTfontpath")) << "what is the user's stays";
    fs::remove_all("/home/glyph/glyphwd_fonts");
    fs::remove("/home/glyph/.VTfontpath");
}

TEST_F(Package, FontsOfFourFormatsAreInOtherProgramsAfterTheNextLogin) {
    const Home home;
    ASSERT_TRUE(succeeds(install_command()));
    ASSERT_TRUE(succeeds(session("FourFormats.AreInstalledWithTheMouse")));
    EXPECT_TRUE(succeeds(session("FourFormats.AreDrawnInOtherProgramsTheNextDay")));
}

TEST_F(Package, WithoutTheConverterAnOpenTypeFontIsRefused) {
    const Home home;
    ASSERT_TRUE(succeeds(install_command()));
    const TempDir aside;
    ASSERT_TRUE(succeeds("mv /usr/bin/fontforge " + aside.path()));
    EXPECT_TRUE(succeeds(session("FourFormats.AreThreeWithoutTheConverter")));
    ASSERT_TRUE(succeeds("mv " + aside.file("fontforge") + " /usr/bin/"));
}

// The converter is large, and only OpenType fonts with PostScript outlines need it.
TEST_F(Package, AsksForWhatTheProgramUses) {
    const auto field = [](const char* name) {
        return run("dpkg-deb -f " + package_file() + ' ' + name).text;
    };
    const std::string dependencies = field("Depends");
    for (const char* package : {"libarchive13", "libfreetype6", "libsystemd0", "libx11-6", "libxm4", "libxt6",
                                "man-db", "x11-xserver-utils", "xfonts-utils"})
        EXPECT_THAT(dependencies, HasSubstr(package));
    EXPECT_THAT(dependencies, Not(HasSubstr("fontforge")));
    EXPECT_THAT(field("Recommends"), HasSubstr("fontforge-nox | fontforge"));
    EXPECT_THAT(field("Suggests"), HasSubstr("pkexec, polkitd"));
}

TEST_F(Package, HasWhatInstallsForEveryoneAndWhatCompletesTheCommand) {
    const std::string files = run("dpkg-deb -c " + package_file()).text;
    EXPECT_THAT(files, ContainsRegex("-rwxr-xr-x root/root .* [.]/usr/vantor/libexec/glyphward-everyone\n"))
        << "it is not setuid itself";
    for (const char* file :
         {"share/polkit-1/actions/local[.]glyphward[.]policy",
          "share/bash-completion/completions/glyphward-fonts",
          "share/zsh/vendor-completions/_glyphward-fonts", "share/doc/glyphward/EVERYONE[.]md"})
        EXPECT_THAT(files, ContainsRegex(std::string("-rw-r--r-- root/root .* [.]/usr/") + file + '\n'));
}

TEST_F(Package, LeavesNothingBehindWhenPurged) {
    const std::set<std::string> before = files_below("/usr /etc /var");
    ASSERT_THAT(before, Contains("/usr/bin/xset"));
    ASSERT_TRUE(succeeds(install_command()));
    ASSERT_THAT(files_below("/usr /etc /var"), Not(Eq(before)));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_EQ(files_below("/usr /etc /var"), before);
    EXPECT_FALSE(fs::exists(INSTALLATION));
    EXPECT_FALSE(fs::exists("/var/lib/glyphward"));
}

TEST_F(Package, RemovalKeepsFontsAndConfiguration) {
    ASSERT_TRUE(succeeds(install_command()));
    const std::string own_font = LINKS + "own/own.pcf";
    const std::vector<std::string> kept{own_font, "/etc/vantor/glyphwd_fonts/a.pfa",
                                        "/etc/vantor/server/etc/VTconfig", "/home/glyph/.VTfontpath",
                                        "/home/glyph/glyphwd_fonts/b.pfa"};
    for (const std::string& file : kept) write(file, "kept");
    const std::set<std::string> fonts_before = files_below(HOST_FONTS);
    write(CONFIG, OWN_CONFIG);

    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -r glyphward"));
    for (const std::string& file : kept) EXPECT_EQ(read(file), "kept") << file;
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    EXPECT_THAT(files_below(INSTALLATION), UnorderedElementsAre(own_font, CONFIG));

    // After another installation everything is there again.
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);

    write(CONFIG + ".bak", OWN_CONFIG);
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    for (const std::string& file : kept) EXPECT_EQ(read(file), "kept") << file;
    EXPECT_THAT(files_below(INSTALLATION), UnorderedElementsAre(own_font));
    EXPECT_EQ(files_below(HOST_FONTS), fonts_before);
}

TEST_F(Package, FontPackagesComeAndGo) {
    hide_host_fonts("75dpi");
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_FALSE(is_there(LINKS + "75dpi"));
    EXPECT_EQ(read(CONFIG), font_path_of({"misc", "100dpi", "Type1"}));

    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -i " + font_package("75dpi")));
    EXPECT_EQ(fs::read_symlink(LINKS + "75dpi"), HOST_FONTS + "75dpi");
    EXPECT_EQ(read(CONFIG), font_path_of(ALL_NAMES));

    // A font path that somebody has changed is not replaced, nor is a directory that is not ours.
    write(CONFIG, OWN_CONFIG);
    write(LINKS + "own/fonts.dir", "0\n");
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P test-fonts"));
    EXPECT_FALSE(is_there(LINKS + "75dpi"));
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    EXPECT_TRUE(fs::exists(LINKS + "own/fonts.dir"));
}

// The font path window has changed the font path: an element has gone and one has come.
TEST_F(Package, AFontPackageThatComesLaterIsAddedToAChangedFontPath) {
    hide_host_fonts("75dpi");
    ASSERT_TRUE(succeeds(install_command()));
    const std::string changed =
        joined({"misc/", "100dpi/:unscaled", "100dpi/"}) + ',' + gw::SUPERUSER_FONT_DIR + ",/opt/fonts/";
    write(CONFIG, "Another.0.attribute:\tvalue\n" + config_of(changed));
    const std::string with_75dpi = changed + ',' + joined({"75dpi/:unscaled", "75dpi/"});

    const Outcome installed = run("dpkg --force-unsafe-io -i " + font_package("75dpi"));
    EXPECT_EQ(installed.status, 0) << installed.text;
    EXPECT_THAT(installed.text, HasSubstr(CONFIG + ": the font path is now " + with_75dpi + '\n'));
    EXPECT_EQ(read(CONFIG), "Another.0.attribute:\tvalue\n" + config_of(with_75dpi));

    // What was taken out stays out, when it comes a second time too.
    write(CONFIG, config_of(changed));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P test-fonts"));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -i " + font_package("75dpi")));
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_EQ(read(CONFIG), config_of(changed));
    // Somebody who writes comments does so by hand.
    for (const std::string& own : {"! mine\n" + config_of(changed), std::string(OWN_CONFIG)}) {
        write(CONFIG, own);
        ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -i " + other_font_package("cyrillic")));
        EXPECT_TRUE(fs::is_symlink(LINKS + "cyrillic"));
        EXPECT_EQ(read(CONFIG), own);
        ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P other-fonts"));
    }
}

// A program that changes the font path file at the same time has its lock.
TEST_F(Package, TheSetUpWaitsForItsTurn) {
    ASSERT_TRUE(succeeds(install_command()));
    const std::string lock = INSTALLATION + "/server/etc/.glyphward/lock";
    write(lock, "");
    fs::remove(CONFIG);
    const Outcome refused = run("flock " + lock + ' ' + SETUP);
    EXPECT_EQ(refused.status, 0);
    EXPECT_THAT(refused.text, HasSubstr(CONFIG + " is being changed by another program"));
    EXPECT_FALSE(is_there(CONFIG));
    ASSERT_TRUE(succeeds(SETUP));
    EXPECT_EQ(read(CONFIG), font_path_of(ALL_NAMES));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_FALSE(fs::exists(INSTALLATION));
}

TEST_F(Package, AMachineWithoutFontsGetsItsFontPathLater) {
    for (const std::string& name : ALL_NAMES) hide_host_fonts(name);
    const Outcome installation = run(install_command());
    EXPECT_EQ(installation.status, 0) << installation.text;
    EXPECT_THAT(installation.text, HasSubstr("install font packages"));
    EXPECT_EQ(read(CONFIG), font_path_of({}));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -i " + font_package("Type1")));
    EXPECT_EQ(read(CONFIG), font_path_of({"Type1"}));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P test-fonts"));
    EXPECT_EQ(read(CONFIG), font_path_of({}));
}

TEST_F(Package, OwnDirectoriesAndLinksOfTheSameNameStay) {
    write(LINKS + "misc/fonts.dir", "0\n");
    fs::create_symlink("/opt/fonts", LINKS + "75dpi");
    ASSERT_TRUE(succeeds(install_command()));
    EXPECT_FALSE(fs::is_symlink(LINKS + "misc"));
    EXPECT_EQ(fs::read_symlink(LINKS + "75dpi"), "/opt/fonts");
    // A dangling link is no font directory.
    EXPECT_EQ(read(CONFIG), font_path_of({"misc", "100dpi", "Type1"}));
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    EXPECT_THAT(files_below(INSTALLATION), UnorderedElementsAre(LINKS + "misc/fonts.dir", LINKS + "75dpi"));
}

TEST_F(Package, CMakeInstallsTheSame) {
    ASSERT_TRUE(succeeds(install_command()));
    std::set<std::string> packaged = files_below("/usr/vantor");
    ASSERT_TRUE(succeeds("dpkg --force-unsafe-io -P glyphward"));
    const std::set<std::string> before = files_below("/usr /etc /var");

    ASSERT_TRUE(succeeds(CMAKE_INSTALL));
    ASSERT_TRUE(succeeds(SETUP));
    EXPECT_EQ(files_below("/usr/vantor"), packaged);
    EXPECT_EQ(read(CONFIG), font_path_of(ALL_NAMES));
    EXPECT_EQ(fs::canonical("/usr/bin/glyphward"), PROGRAM);

    ASSERT_TRUE(succeeds(SETUP + " purge"));
    ASSERT_TRUE(succeeds("xargs -d '\\n' rm -f <" GLYPHWARD_BUILD "/install_manifest.txt"));
    EXPECT_EQ(files_below("/usr /etc /var"), before);
}

}  // namespace
