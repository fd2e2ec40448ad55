// SPDX-License-Identifier: MIT
//
// The names of all fonts of many packages, asked about at once, against what the tool writes for each font
// that is really alone in its directory. Of the fonts alone it looks at some, or at all of them with
// GLYPHWARD_EVERY_CALL=1 in the environment.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "modules/tool_names.h"
#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using gw::IndexName;
using gw::test::TempDir;

struct Place {
    const char* dir;
    const char* packages;
    std::size_t least;  // fonts that these packages have there
};
constexpr Place PLACES[] = {
    {"/usr/share/fonts/truetype/dejavu", "fonts-dejavu", 21},
    {"/usr/share/fonts/truetype/liberation", "fonts-liberation", 12},
    {"/usr/share/fonts/truetype/noto", "fonts-noto-core", 200},
    {"/usr/share/fonts/opentype/noto", "fonts-noto-cjk", 4},
    {"/usr/share/fonts/opentype/urw-base35", "fonts-urw-base35", 35},
    {"/usr/share/fonts/X11/Type1", "xfonts-scalable and fonts-urw-base35", 35},
    {"/usr/share/texmf/fonts/opentype/public/lm", "fonts-lmodern", 72},
    {"/usr/share/texmf/fonts/type1/public/lm", "lmodern", 92},
    {"/usr/share/fonts/X11/75dpi", "xfonts-75dpi", 300},
    {"/usr/share/fonts/X11/100dpi", "xfonts-100dpi", 300},
    {"/usr/share/fonts/X11/misc", "xfonts-base, xfonts-intl-japanese and xfonts-terminus", 500},
};

bool ends_in_one_of(const std::string& name, std::initializer_list<const char*> extensions) {
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](const char* extension) { return name.ends_with(extension); });
}

bool is_bitmap(const std::string& path) {
    return ends_in_one_of(path, {".bdf", ".pcf", ".bdf.gz", ".pcf.gz"});
}

std::vector<std::string> fonts_in(const Place& place) {
    std::vector<std::string> found;
    std::error_code none;
    for (const fs::directory_entry& entry : fs::directory_iterator(place.dir, none)) {
        const std::string path = entry.path();
        if (is_bitmap(path) || ends_in_one_of(path, {".ttf", ".ttc", ".otf", ".pfb", ".pfa"}))
            found.push_back(path);
    }
    std::sort(found.begin(), found.end());
    EXPECT_GE(found.size(), place.least) << "scripts/setup installs " << place.packages;
    return found;
}

/// The lines of an index with only this font in its directory.
std::vector<std::string> lines_alone(const std::string& path) {
    const TempDir dir;
    fs::create_symlink(path, dir.file(fs::path(path).filename().string()));
    const char* tool = is_bitmap(path) ? "mkfontdir" : "mkfontscale";
    EXPECT_EQ(gw::run_shell(std::string(tool) + " %s 2> /dev/null", {dir.path()}), 0) << path;
    std::istringstream index(dir.read(is_bitmap(path) ? "fonts.dir" : "fonts.scale"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(index, line);) lines.push_back(line);
    EXPECT_FALSE(lines.empty()) << path;
    return lines;
}

std::vector<std::string> lines_of(const std::string& path, const std::vector<IndexName>& names) {
    std::vector<std::string> lines = {std::to_string(names.size())};
    for (const IndexName& name : names) {
        lines.push_back((name.face > 0 ? ':' + std::to_string(name.face) + ':' : "") +
                        fs::path(path).filename().string() + ' ' + name.xlfd);
    }
    return lines;
}

/// Whether this font is looked at alone: one outline in `SOME`, and, as they are so many, fewer bitmap fonts.
bool is_in_sample(const std::string& path, std::size_t number) {
    static constexpr std::size_t SOME = 8;
    if (std::getenv("GLYPHWARD_EVERY_CALL") != nullptr) return true;
    return number % (is_bitmap(path) ? 4 * SOME : SOME) == 0;
}

TEST(ToolOracle, NoLineDiffersFromThatOfAFontAlone) {
    std::vector<std::string> paths;
    for (const Place& place : PLACES) {
        const std::vector<std::string> found = fonts_in(place);
        paths.insert(paths.end(), found.begin(), found.end());
    }
    const gw::Result<std::vector<std::vector<IndexName>>> names = gw::tool_names(paths);
    ASSERT_TRUE(names) << names.failure().text();
    ASSERT_EQ(names->size(), paths.size());
    std::size_t fonts = 0;
    std::size_t lines = 0;
    std::size_t nameless = 0;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (!is_in_sample(paths[i], i)) continue;
        EXPECT_EQ(lines_of(paths[i], (*names)[i]), lines_alone(paths[i])) << paths[i];
        ++fonts;
        lines += (*names)[i].size();
        if ((*names)[i].empty()) ++nameless;
    }
    std::cout << fonts << " of " << paths.size() << " fonts, " << lines << " lines, " << nameless
              << " fonts without a name\n";
    EXPECT_GT(fonts, 50U);
    EXPECT_GT(lines, 200U);
}

}  // namespace
