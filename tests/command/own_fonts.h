// SPDX-License-Identifier: MIT
//
// Fonts to be installed, a home directory, and in it a destination on the configured font path. There is no X
// server: these tests are about files.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "command/fonts_command.h"

namespace gw::test {

inline constexpr const char* BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
inline constexpr const char* SANS_ROW = "DejaVu Sans Medium [TrueType]";
inline constexpr const char* BOLD_ROW = "DejaVu Sans Bold [TrueType]";

/// The files below a directory with their bytes, without what we keep there.
inline std::map<std::string, std::string> content(const std::string& dir) {
    namespace fs = std::filesystem;
    std::map<std::string, std::string> files;
    for (auto entry = fs::recursive_directory_iterator(dir); entry != fs::recursive_directory_iterator();
         ++entry) {
        if (entry->path().filename() == ".glyphward") {
            entry.disable_recursion_pending();
        } else if (entry->is_regular_file()) {
            files[fs::relative(entry->path(), dir)] = TempDir::read_bytes(entry->path());
        }
    }
    return files;
}

class OwnFonts : public testing::Test {
  protected:
    OwnFonts() {
        std::filesystem::copy_file(SANS, source_.file("DejaVuSans.ttf"));
        std::filesystem::copy_file(BOLD, source_.file("DejaVuSans-Bold.ttf"));
        (void)fonts_command({"path", "add", "--of", whose(), to_});
    }
    void TearDown() override { (void)fonts_command({"path", "remove", "--of", whose(), to_}); }
    static std::string whose() { return ::geteuid() == 0 ? "installation" : "me"; }
    [[nodiscard]] Ran install(std::vector<std::string> words) const {
        words.insert(words.begin(), {"install", "--to", to_});
        return fonts_command(words);
    }

    Variable no_display_{"DISPLAY", nullptr};
    OwnHome home_;
    TempDir source_;
    std::string to_ = home_.dir().make_dir("fonts");
};

}  // namespace gw::test
