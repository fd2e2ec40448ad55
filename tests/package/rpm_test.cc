// SPDX-License-Identifier: MIT
//
// The .rpm on a throw-away machine whose fonts are where the distributions of its family have them, and whose
// X server finds them through a catalogue. The rest of the machine stays as it is.
#include <gmock/gmock.h>

#include <sstream>

#include "package/package_machine.h"

namespace {

using namespace gw::test::package;
using gw::test::TempDir;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

const std::string RPM_FONTS = "/usr/share/X11/fonts/";
const std::string CATALOGUE = "/etc/X11/fontpath.d";
const std::string AWAY = "/usr/share/fonts-away";
const std::string COMMAND = INSTALLATION + "/bin/glyphward-fonts";
/// rpm knows none of this machine's packages.
const std::string INSTALL = "rpm -i --nodeps ";
const std::string RPM_FONT_PATH = config_of("catalogue:" + CATALOGUE + ',' + gw::SUPERUSER_FONT_DIR);

std::string rpm_file() {
    for (const auto& entry : fs::directory_iterator(GLYPHWARD_BUILD)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("glyphward-" GLYPHWARD_VERSION "-") && name.ends_with(".rpm"))
            return entry.path();
    }
    return GLYPHWARD_BUILD "/glyphward-" GLYPHWARD_VERSION "-?.rpm";
}

std::string asked_of_rpm(const std::string& question) {
    return run("rpm -q --nodigest -p " + question + ' ' + rpm_file()).text;
}

class RpmPackage : public Package {
  protected:
    void SetUp() override {
        Package::SetUp();
        fs::create_directories(RPM_FONTS);
        ASSERT_TRUE(succeeds("cp -a " + HOST_FONTS + "misc " + HOST_FONTS + "Type1 " + RPM_FONTS));
        ASSERT_TRUE(succeeds("mv " + HOST_FONTS + ' ' + AWAY));
        fs::create_directories(CATALOGUE);
        fs::create_directory_symlink(RPM_FONTS + "misc", CATALOGUE + "/xorg-x11-fonts-misc:unscaled:pri=10");
        fs::create_directory_symlink("../../../usr/share/X11/fonts/Type1",
                                     CATALOGUE + "/xorg-x11-fonts-Type1");
        fs::create_directory_symlink(RPM_FONTS + "TTF", CATALOGUE + "/not-installed:pri=20");
    }
    void TearDown() override {
        run("rpm -e --noscripts lab-fonts; rpm -e glyphward");
        fs::remove_all(RPM_FONTS);
        fs::remove_all(CATALOGUE);
        EXPECT_TRUE(succeeds("mv " + AWAY + ' ' + HOST_FONTS));
        fs::remove_all("/var/lib/rpm");
        Package::TearDown();
    }

    /// A package of fonts, as that family has them: a directory, and a link to it in the catalogue.
    std::string font_rpm() {
        const std::string fonts = dir_.make_dir("fonts");
        make_fonts_of(fonts);
        dir_.write(
            "fonts.spec",
            "Name: lab-fonts\nVersion: 1\nRelease: 1\nSummary: fonts\nLicense: MIT\nBuildArch: noarch\n"
            "%description\nfonts\n%install\nmkdir -p %{buildroot}" +
                RPM_FONTS + "lab %{buildroot}" + CATALOGUE + "\ncp " + fonts + "/* %{buildroot}" + RPM_FONTS +
                "lab\nln -s " + RPM_FONTS + "lab %{buildroot}" + CATALOGUE + "/lab:pri=5\n%files\n" +
                RPM_FONTS + "lab\n" + CATALOGUE + "/lab:pri=5\n");
        EXPECT_TRUE(succeeds("rpmbuild -bb --define '_topdir " + dir_.file("build") + "' " +
                             dir_.file("fonts.spec")));
        return dir_.file("build/RPMS/noarch/lab-fonts-1-1.noarch.rpm");
    }
    static void make_fonts_of(const std::string& directory) {
        fs::copy_file(RPM_FONTS + "misc/6x13-ISO8859-1.pcf.gz", directory + "/lab.pcf.gz");
        write(directory + "/fonts.dir",
              "1\nlab.pcf.gz -lab-lab-medium-r-normal--13-120-75-75-c-60-iso8859-1\n");
    }

  private:
    TempDir dir_;
};

TEST_F(RpmPackage, PassesRpmlint) {
    const Outcome rpmlint =
        run("rpmlint --config " GLYPHWARD_TREE "/packaging/rpm/rpmlint.toml " + rpm_file());
    EXPECT_EQ(rpmlint.status, 0) << rpmlint.text;
    EXPECT_THAT(rpmlint.text, HasSubstr("0 errors, 0 warnings")) << rpmlint.text;
}

TEST_F(RpmPackage, AsksForWhatItCallsAndKeepsChangedConfiguration) {
    const std::string wanted = asked_of_rpm("--requires");
    for (const char* what :
         {"/usr/bin/xset\n", "/usr/bin/mkfontdir\n", "/usr/bin/mkfontscale\n", "libXm.so.4()"})
        EXPECT_THAT(wanted, HasSubstr(what));
    EXPECT_THAT(asked_of_rpm("--recommends"), HasSubstr("xorg-x11-fonts-misc\n"));
    const std::string configuration = asked_of_rpm("-c");
    for (const char* file :
         {"/etc/X11/xinit/xinitrc.d/60glyphward-session.sh\n",
          "/etc/xdg/autostart/glyphward-session.desktop\n", "/usr/vantor/lib/app-defaults/Glyphward\n"})
        EXPECT_THAT(configuration, HasSubstr(file));
    EXPECT_EQ(asked_of_rpm("--licensefiles"), "/usr/share/licenses/glyphward/LICENSE\n");
    EXPECT_THAT(asked_of_rpm("-d"), HasSubstr("/usr/share/man/man1/glyphward.1.gz\n"));
}

TEST_F(RpmPackage, HasWhatInstallsForEveryoneAndWhatCompletesTheCommand) {
    EXPECT_THAT(asked_of_rpm("--suggests"), HasSubstr("/usr/bin/pkexec\n"));
    const std::string files = asked_of_rpm("-l -v");
    EXPECT_THAT(files, ContainsRegex("-rwxr-xr-x .* root +root .* /usr/vantor/libexec/glyphward-everyone\n"))
        << "it is not setuid itself";
    for (const char* file :
         {"share/polkit-1/actions/local[.]glyphward[.]policy",
          "share/bash-completion/completions/glyphward-fonts", "share/zsh/site-functions/_glyphward-fonts",
          "share/doc/glyphward/EVERYONE[.]md"})
        EXPECT_THAT(files, ContainsRegex(std::string("-rw-r--r-- .* root +root .* /usr/") + file + '\n'));
}

/// Both packages bring the same programs and data.
TEST_F(RpmPackage, HasTheFilesOfTheOtherPackage) {
    const auto lines = [](const std::string& command) {
        std::set<std::string> files;
        std::istringstream text(run(command).text);
        for (std::string line; std::getline(text, line);) {
            if (line.starts_with("/usr/") && line.find("/doc/") == std::string::npos &&
                line.find("/lintian/") == std::string::npos && line.find("/zsh/") == std::string::npos &&
                line.find("/licenses/") == std::string::npos)
                files.insert(line);
        }
        return files;
    };
    const std::set<std::string> of_deb =
        lines("dpkg-deb --fsys-tarfile " + package_file() + " | tar -t | grep -v '/$' | sed 's/^\\.//'");
    const std::set<std::string> of_rpm = lines("rpm -q -p --qf '[%{FILEMODES:perms} %{FILENAMES}\\n]' " +
                                               rpm_file() + " | sed -n 's/^[^d][^ ]* //p'");
    EXPECT_THAT(of_deb, Not(SizeIs(0)));
    EXPECT_EQ(of_rpm, of_deb);
}

/// Below a directory rpm can start no script: there is no shell.
TEST_F(RpmPackage, IsUnpackedBelowADirectory) {
    const TempDir image;
    const std::string root = image.file("image");
    fs::create_directory(root);
    ASSERT_TRUE(succeeds("rpm --root " + root + " -i --nodeps --noscripts " + rpm_file()));
    EXPECT_TRUE(fs::exists(root + PROGRAM));
    fs::create_directories(root + CATALOGUE);
    fs::create_directories(root + RPM_FONTS);
    ASSERT_TRUE(succeeds("cp -a " + RPM_FONTS + "misc " + root + RPM_FONTS));
    fs::create_directory_symlink(RPM_FONTS + "misc", root + CATALOGUE + "/misc:unscaled:pri=10");
    ASSERT_TRUE(succeeds(root + SETUP + " --root " + root));
    EXPECT_EQ(read(root + CONFIG), RPM_FONT_PATH);
    const Outcome listed = run(root + COMMAND + " list --root " + root + " --long '*'");
    EXPECT_EQ(listed.status, 0) << listed.text;
    EXPECT_THAT(listed.text, HasSubstr(RPM_FONTS + "misc/6x13.pcf.gz"));
    ASSERT_TRUE(succeeds("rpm --root " + root + " -e --noscripts glyphward"));
    EXPECT_FALSE(fs::exists(root + PROGRAM));
}

TEST_F(RpmPackage, TakesTheFontPathFromTheCatalogue) {
    const std::set<std::string> before = files_below("/usr /etc");
    ASSERT_TRUE(succeeds(INSTALL + rpm_file()));
    EXPECT_EQ(read(CONFIG), RPM_FONT_PATH);
    EXPECT_EQ(fs::read_symlink(LINKS + "misc"), RPM_FONTS + "misc");
    const Outcome listed = run(COMMAND + " list --long '*'");
    EXPECT_EQ(listed.status, 0) << listed.text;
    for (const char* directory : {"misc/", "Type1/"})
        EXPECT_THAT(listed.text, HasSubstr(RPM_FONTS + directory));
    ASSERT_TRUE(succeeds("rpm -e glyphward"));
    EXPECT_EQ(files_below("/usr /etc"), before);
}

TEST_F(RpmPackage, KeepsAFontPathThatSomebodyHasChanged) {
    ASSERT_TRUE(succeeds(INSTALL + rpm_file()));
    write(CONFIG, OWN_CONFIG);
    ASSERT_TRUE(succeeds("rpm -U --force --nodeps " + rpm_file()));
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    ASSERT_TRUE(succeeds("rpm -e glyphward"));
    EXPECT_EQ(read(CONFIG), OWN_CONFIG);
    fs::remove_all(INSTALLATION);
    fs::remove_all("/var/lib/glyphward");
}

TEST_F(RpmPackage, DoesNotOverwriteAnotherInstallation) {
    write(INSTALLATION + "/bin/other", "somebody's");
    const Outcome refused = run(INSTALL + rpm_file());
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.text,
                HasSubstr("/usr/vantor holds files that are not Glyph Warden's:\n    bin/other\n"));
    EXPECT_FALSE(fs::exists(PROGRAM));
    fs::remove_all(INSTALLATION);
}

/// A server with the catalogue on its path, in the session of an ordinary user: the font path is in order at
/// once, the server has every listed name, and the window shows a sample.
TEST_F(RpmPackage, ServesASessionThroughTheCatalogue) {
    const Home home;
    const TempDir scripts;
    fs::permissions(scripts.path(), fs::perms(0755));
    ASSERT_TRUE(succeeds(INSTALL + rpm_file()));
    fs::remove(CATALOGUE + "/not-installed:pri=20");
    scripts.write("session", R"sh(set -ex
xset fp= catalogue:/etc/X11/fontpath.d,built-ins
. /etc/X11/xinit/xinitrc.d/60glyphward-session.sh
command=/usr/vantor/bin/glyphward-fonts
test "$($command path show --of session | head -n 1)" = catalogue:/etc/X11/fontpath.d
$command why -- '-misc-fixed-medium-r-semicondensed--13-120-75-75-c-60-iso8859-1'
$command why catalogue:/etc/X11/fontpath.d
$command why /usr/share/X11/fonts/misc
$command doctor
status=0
$command path apply || status=$?
test $status -eq 3
$command list --format bitmap --long | sed -n 's/^    -/-/p' |
    tr '[:upper:]' '[:lower:]' | sort -u >"$HOME/listed"
xlsfonts | tr '[:upper:]' '[:lower:]' | sort -u >"$HOME/served"
test "$(wc -l <"$HOME/listed")" -gt 300
test -z "$(comm -23 "$HOME/listed" "$HOME/served")"
exec "$1"
)sh");
    EXPECT_TRUE(succeeds(GLYPHWARD_TREE "/scripts/inside log_in bash " + scripts.file("session") +
                         " " GLYPHWARD_TREE "/scripts/show"));
}

/// rpm is asked where there is no dpkg, and the link of a font package that comes is seen at once.
TEST_F(RpmPackage, FontsOfAPackageAreItsOwn) {
    ASSERT_TRUE(succeeds(INSTALL + rpm_file()));
    ASSERT_TRUE(succeeds(INSTALL + font_rpm()));
    const std::string dpkg = "/usr/bin/dpkg-query";
    fs::rename(dpkg, dpkg + ".away");
    const std::string deletion = COMMAND + " delete --yes --dry-run ";
    const Outcome packaged = run(deletion + RPM_FONTS + "lab/lab.pcf.gz");
    EXPECT_THAT(packaged.text, HasSubstr("lab-fonts")) << packaged.status;
    const Outcome nobodys = run(deletion + RPM_FONTS + "misc/6x13-ISO8859-1.pcf.gz");
    EXPECT_THAT(nobodys.text, Not(HasSubstr("package"))) << nobodys.status;
    fs::rename(dpkg + ".away", dpkg);
}

}  // namespace
