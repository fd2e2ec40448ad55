// SPDX-License-Identifier: MIT
//
// What the tests of cures share: a user with a font path, an X server that reads directories, and the next
// login.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "diagnosis/cure.h"
#include "fontpath/path_element.h"
#include "fontpath/session_path.h"
#include "platform/host_paths.h"
#include "support/played_server.h"
#include "unit/fontpath/font_path_fixture.h"

namespace gw::test {

/// It takes a directory only if it can read its index, and notes the elements each time.
class ReadingServer : public PlayedServer {
  public:
    Outcome set_font_path(const std::vector<std::string>& elements) override {
        for (const std::string& element : elements) {
            const std::string index = directory_of_element(element) + '/' + FONT_INDEX_NAME;
            if (element.starts_with('/') && ::access(index.c_str(), R_OK) != 0)
                return Failure{element, Reason::REFUSED_BY_SERVER};
        }
        return PlayedServer::set_font_path(elements);
    }
};

class Cures : public FontPath {
  protected:
    Cures() {
        ::chmod(home.c_str(), 0755);
        surroundings.user = ::geteuid();
        surroundings.home = std::string(without_trailing_slashes(home.path()));
        surroundings.own_fonts = home.file("glyphwd_fonts/");
        server.path = {"built-ins"};
        server.runs_as = ::geteuid();
    }
    /// A directory with this index.
    [[nodiscard]] std::string fonts(const std::string& name, const std::string& index = "0\n") const {
        home.write(name + "/fonts.dir", index);
        return home.file(name) + '/';
    }
    /// The configured font path, as it is composed.
    static Texts configured() { return elements(*main_store(), GWFontPath::ALL_FP); }
    /// The path that a server with `at_login` has after the next login.
    static Texts after_login(const Texts& at_login = {"built-ins"}) {
        const auto configuration = session::read_configuration(INSTALLATION_ROOT, SETUP_RECORD);
        return session::make_plan(configuration, at_login, PathHost::THIS).path;
    }
    Result<diagnosis::Deed> carry_out(const diagnosis::Cure& cure) {
        surroundings.configured = configured();
        return diagnosis::carry_out(cure, server, surroundings);
    }
    /// Puts an element on the path that this user may change, as somebody has done it before.
    static void configure_before(const std::string& element) {
        const auto type = is_root() ? GWFontPath::INSTALLATION_FP : GWFontPath::USER_APPEND_FP;
        ASSERT_TRUE(main_store()->insert(type, GW_STRING(element.c_str()), -1));
    }
    /// The bytes of the file that has that path.
    [[nodiscard]] std::string path_file() const {
        return TempDir::read_bytes(is_root() ? MAIN_CONFIG : home.file(".VTfontpath"));
    }

    ReadingServer server;
    diagnosis::Surroundings surroundings;
};

}  // namespace gw::test
