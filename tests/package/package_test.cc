// SPDX-License-Identifier: MIT
//
// The Debian package, and cmake --install, on a throw-away machine (scripts/fresh-root): what an installation
// makes, what it refuses, and what a removal leaves. Every test begins and ends with a machine that has
// nothing of the program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/host_paths.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using gw::test::TempDir;
using testing::AllOf;
using testing::Contains;
using testing::Eq;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

const std::string INSTALLATION = gw::INSTALLATION_ROOT;
const std::string CONFIG = INSTALLATION + gw::INSTALLATION_CONFIG;
const std::string LINKS = std::string(gw::SYSTEM_FONT_DIR) + '/';
const std::string HOST_FONTS = "/usr/share/fonts/X11/";
const std::string ALLOW = "/etc/vantor/allow-glyphward";
const std::string PROGRAM = INSTALLATION + "/bin/glyphward";
const std::string SETUP = INSTALLATION + "/bin/glyphward-setup";
constexpr const char* OWN_CONFIG = "XDISPLAY.0.fontpath:\t/opt/fonts/\n";

struct Outcome {
    int status = -1;  ///< the exit status; -1 when there was none
    std::string text;
};

/// Runs a shell command; the output includes standard error.
Outcome run(const std::string& command) {
    FILE* pipe = ::popen(("{ " + command + "\n} 2>&1 </dev/null").c_str(), "r");
    if (pipe == nullptr) return {};
    Outcome outcome;
    std::array<char, 4096> piece{};
    while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), pipe)) {
        outcome.text.append(piece.data(), size);
    }
    const int status = ::pclose(pipe);
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    return outcome;
}

/// Whether the command succeeds; the assertion's message shows its output.
testing::AssertionResult succeeds(const std::string& command) {
    const Outcome outcome = run(command);
    if (outcome.status == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << command << " gave " << outcome.status << ":\n" << outcome.text;
}

void write(const std::string& path, const std::string& bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string read(const std::string& path) {
    return TempDir::read_bytes(path);
}

bool is_there(const std::string& path) {
    return fs::exists(fs::symlink_status(path));
}

/// Every file below the directories, except dpkg's records and files that other packages keep up to date.
std::set<std::string> files_below(const std::string& directories) {
    std::set<std::string> files;
    std::istringstream lines(
        run("find " + directories +
            " ! -type d ! -path '/var/cache/*' ! -path '/var/lib/dpkg/*' ! -path '/var/log/*'"
            " ! -name mimeinfo.cache ! -name icon-theme.cache ! -path /etc/mailcap")
            .text);
    for (std::string line; std::getline(lines, line);) files.insert(line);
    return files;
}

/// The same for /usr/vantor, with its directories.
std::set<std::string> all_of_installation() {
    std::set<std::string> paths;
    if (!fs::exists(INSTALLATION)) return paths;
    for (const auto& entry : fs::recursive_directory_iterator(INSTALLATION)) paths.insert(entry.path());
    return paths;
}

/// The package file of the build; its name depends on the architecture.
std::string package_file() {
    for (const auto& entry : fs::directory_iterator(GLYPHWARD_BUILD)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("glyphward_" GLYPHWARD_VERSION "_") && name.ends_with(".deb"))
            return entry.path();
    }
    return GLYPHWARD_BUILD "/glyphward_" GLYPHWARD_VERSION "_?.deb";
}
std::string install_command() {
    return "dpkg --force-unsafe-io -i " + package_file();
}
/// The value of a font path of these elements, relative to the directory with the links.
std::string joined(const std::vector<std::string>& names) {
    std::string path;
    for (const std::string& name : names) path += (path.empty() ? "" : ",") + LINKS + name;
    return path;
}
std::string config_of(const std::string& path) {
    return "XDISPLAY.0.fontpath:\t" + path + '\n';
}
/// The first font path of an installation: that of the distribution's server, and the superuser's directory.
std::string font_path_of(const std::vector<std::string>& names) {
    const auto has = [&](const std::string& element) {
        const std::string name = element.substr(0, element.find('/'));
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    std::vector<std::string> elements;
    for (const char* element :
         {"misc/", "cyrillic/", "100dpi/:unscaled", "75dpi/:unscaled", "Type1/", "100dpi/", "75dpi/"})
        if (has(element)) elements.emplace_back(element);
    return config_of(joined(elements) + (elements.empty() ? "" : ",") + gw::SUPERUSER_FONT_DIR);
}
const std::vector<std::string> ALL_NAMES{"misc", "100dpi", "75dpi", "Type1"};

class Package : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        // A throw-away machine needs no index of manual pages.
        fs::remove("/var/lib/man-db/auto-update");
    }
    ~Package() override {
        run("dpkg --force-unsafe-io -P glyphward test-fonts other-fonts");
        for (const std::string& path :
             {INSTALLATION, std::string("/etc/vantor"), std::string("/var/lib/glyphward")}) {
            fs::remove_all(path);
        }
        for (const std::string& name : hidden_) run("mv " + kept_.file(name) + ' ' + HOST_FONTS + name);
    }
    /// Hides a directory of the host's fonts until the end of the test.
    void hide_host_fonts(const std::string& name) {
        ASSERT_TRUE(succeeds("mv " + HOST_FONTS + name + ' ' + kept_.file(name)));
        hidden_.push_back(name);
    }
    /// Makes a package with a directory of fonts, like Debian's font packages.
    std::string font_package(const std::string& name) { return package_of("test-fonts", name, "0\n"); }
    /// A second one.
    std::string other_font_package(const std::string& name, const std::string& index = "0\n") {
        return package_of("other-fonts", name, index);
    }

  private:
    std::string package_of(const std::string& package, const std::string& name, const std::string& index) {
        const TempDir& dir = kept_;
        dir.write(package + "/DEBIAN/control",
                  "Package: " + package +
                      "\nVersion: 1\nArchitecture: all\nMaintainer: Nobody <nobody@test.invalid>\n"
                      "Description: fonts that come and go\n");
        dir.write(package + HOST_FONTS + name + "/fonts.dir", index);
        EXPECT_TRUE(succeeds("dpkg-deb --root-owner-group -b " + dir.file(package) + ' ' +
                             dir.file(package + ".deb")));
        return dir.file(package + ".deb");
    }

    TempDir kept_;
    std::vector<std::string> hidden_;
};

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

/// Runs one session of the ordinary user; the home directory is that of the session before.
std::string session(const char* name) {
    return std::string(GLYPHWARD_TREE "/scripts/inside log_in " GLYPHWARD_SESSIONS
                                      " --gtest_color=no "
                                      "--gtest_filter=") +
           name;
}

/// The same as the superuser.
std::string superusers_session(const char* name) {
    return std::string("SANDBOX_SERVER=xvfb SANDBOX_MANAGER=1 SANDBOX_STOCK_PATH=1 " GLYPHWARD_TREE
                       "/scripts/inside serve " GLYPHWARD_SESSIONS " --gtest_color=no --gtest_filter=") +
           name;
}

/// Makes a directory of bitmap fonts with these index lines; their files are copies of the host's.
void make_fonts(const std::string& dir, const std::vector<std::string>& lines) {
    std::string index = std::to_string(lines.size()) + '\n';
    for (const std::string& line : lines) {
        const std::string file = line.substr(0, line.find(' '));
        write(dir + file, read(HOST_FONTS + "75dpi/" + file));
        index += line + '\n';
    }
    write(dir + "fonts.dir", index);
}

/// The name by which the server offers to scale a bitmap font for 75 dots per inch.
std::string scalable(const std::string& name) {
    const std::string family = name.substr(0, name.find("--"));
    return family + "--0-0-75-75-p-0-iso8859-1";
}

// Fonts of the superuser, of the user, and Cyrillic ones of a package come with the installation. Some of
// them have names that others have, which are to be found first.
TEST_F(Package, EveryProgramGetsTheFontsThatItGotWithoutIt) {
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
    fs::remove_all("/home/glyph");
    fs::create_directory("/home/glyph");
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
    ~Upgrade() override {
        fs::remove_all("/home/glyph");
        fs::create_directory("/home/glyph");
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

constexpr const char* CMAKE_INSTALL = "cmake --install " GLYPHWARD_BUILD " --prefix /usr";

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
