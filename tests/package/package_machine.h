// SPDX-License-Identifier: MIT
//
// A throw-away machine (scripts/fresh-root) that gets the Debian package and loses it again, by the
// superuser. Every test begins and ends with a machine that has nothing of the program.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/host_paths.h"
#include "support/temp_dir.h"

namespace gw::test::package {

namespace fs = std::filesystem;

inline const std::string INSTALLATION = gw::INSTALLATION_ROOT;
inline const std::string CONFIG = INSTALLATION + gw::INSTALLATION_CONFIG;
inline const std::string LINKS = std::string(gw::SYSTEM_FONT_DIR) + '/';
inline const std::string HOST_FONTS = "/usr/share/fonts/X11/";
inline const std::string PROGRAM = INSTALLATION + "/bin/glyphward";
inline const std::string SETUP = INSTALLATION + "/bin/glyphward-setup";
inline constexpr const char* OWN_CONFIG = "XDISPLAY.0.fontpath:\t/opt/fonts/\n";
inline constexpr const char* CMAKE_INSTALL = "cmake --install " GLYPHWARD_BUILD " --prefix /usr";

struct Outcome {
    int status = -1;  ///< the exit status; -1 when there was none
    std::string text;
};

/// Runs a shell command; the output includes standard error.
Outcome run(const std::string& command);

/// Whether the command succeeds; the assertion's message shows its output.
testing::AssertionResult succeeds(const std::string& command);

void write(const std::string& path, const std::string& bytes);

std::string read(const std::string& path);

bool is_there(const std::string& path);

/// Every file below the directories, except dpkg's records and files that other packages keep up to date.
std::set<std::string> files_below(const std::string& directories);

/// The same for /usr/vantor, with its directories.
std::set<std::string> all_of_installation();

/// The package file of the build; its name depends on the architecture.
std::string package_file();
std::string install_command();
/// The value of a font path of these elements, relative to the directory with the links.
std::string joined(const std::vector<std::string>& names);
std::string config_of(const std::string& path);
/// The first font path of an installation: that of the distribution's server, and the superuser's directory.
std::string font_path_of(const std::vector<std::string>& names);
inline const std::vector<std::string> ALL_NAMES{"misc", "100dpi", "75dpi", "Type1"};

/// Runs one session of the ordinary user; the home directory is that of the session before.
std::string session(const char* name);

/// The same as the superuser.
std::string superusers_session(const char* name);

/// Makes a directory of bitmap fonts with these index lines; their files are copies of the host's.
void make_fonts(const std::string& dir, const std::vector<std::string>& lines);

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

/// The ordinary user's home directory, emptied at the end.
class Home {
  public:
    Home() = default;
    ~Home() {
        fs::remove_all("/home/glyph");
        fs::create_directory("/home/glyph");
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
};

}  // namespace gw::test::package
