// SPDX-License-Identifier: MIT
//
// The user's own part of the font path, for tests: the file of an ordinary user, or the installation's
// database for the superuser. It is written as another program would write it.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace gw::test {

inline constexpr const char* INSTALLED_CONFIG = "/usr/vantor/server/etc/VTconfig";

/// Writes the user's elements, and takes them back at its end.
class OwnFontPath {
  public:
    /// `home` is the user's home directory, ending in "/".
    explicit OwnFontPath(const std::string& home)
        : file_(::geteuid() == 0 ? INSTALLED_CONFIG : home + ".VTfontpath"),
          before_(TempDir::read_bytes(file_)) {}
    ~OwnFontPath() { replace(before_); }
    OwnFontPath(const OwnFontPath&) = delete;
    OwnFontPath& operator=(const OwnFontPath&) = delete;

    /// The elements come behind those that were there at first.
    void write(const std::vector<std::string>& elements) const {
        if (::geteuid() != 0) {
            std::string lines = before_;
            for (const std::string& element : elements) lines += element + '\n';
            return replace(lines);
        }
        std::string line = before_.substr(0, before_.find('\n'));
        for (const std::string& element : elements) line += ',' + element;
        replace(line + '\n');
    }
    [[nodiscard]] std::string bytes() const { return TempDir::read_bytes(file_); }

  private:
    /// As editors do it: nobody reads a half of it.
    void replace(const std::string& bytes) const {
        std::ofstream(file_ + ".new", std::ios::binary) << bytes;
        std::filesystem::rename(file_ + ".new", file_);
    }

    std::string file_;
    std::string before_;
};

/// Runs a command for the shell; whether it succeeded.
inline bool run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

/// Makes the index of a directory with the fonts that are in it, as an administrator would.
inline bool make_index(const std::string& directory) {
    return run("mkfontscale '" + directory + "' && mkfontdir '" + directory + "'");
}

}  // namespace gw::test
