// SPDX-License-Identifier: MIT
//
// The index lines of files that no index lists.
#include "modules/font_naming.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

using gw::line_of_font_file;
using gw::test::TempDir;

constexpr const char* BITMAPS = "/usr/vantor/lib/X11/fonts/75dpi/";

TEST(FontNaming, AnOutlineIsNamedByItsHeader) {
    const TempDir dir;
    dir.write("t.pfa",
              "%!PS-AdobeFont-1.0: Test\n/FamilyName (Test) def\n/Weight (Bold) def\n/ItalicAngle 0 def\n"
              "/Notice (Adobe) def\n/Encoding StandardEncoding def\ncurrentfile eexec\n");
    dir.write("fonts.dir", "1\nother.pfa -other\n");
    EXPECT_EQ(line_of_font_file(dir.path(), "t.pfa"),
              "t.pfa -adobe-Test-Bold-r-normal--0-0-0-0-p-0-iso8859-1\n");
    EXPECT_EQ(dir.read("fonts.dir"), "1\nother.pfa -other\n");
}

TEST(FontNaming, ABitmapFontIsNamedAsMkfontdirDoes) {
    const std::string file = "helvR24-ISO8859-1.pcf";
    const std::string index = TempDir::read_bytes(std::string(BITMAPS) + "fonts.dir");
    const std::size_t start = index.find('\n' + file + ' ') + 1;
    ASSERT_NE(start, std::string::npos + 1);
    const TempDir dir;
    std::filesystem::copy(BITMAPS + file, dir.file(file));
    const std::string expected = index.substr(start, index.find('\n', start) + 1 - start);
    EXPECT_EQ(line_of_font_file(dir.path(), file), expected);
}

TEST(FontNaming, WhatIsNoFontHasNoLine) {
    const TempDir dir;
    dir.write("bad.pcf", "no font");
    dir.write("notes.txt", "no font");
    dir.write("a b.pfa", "%!PS-AdobeFont-1.0: Test\ncurrentfile eexec\n");
    for (const char* name : {"bad.pcf", "notes.txt", "a b.pfa", "missing.pcf", "afm/a.afm", ""})
        EXPECT_EQ(line_of_font_file(dir.path(), name), std::nullopt) << name;
}

TEST(FontNaming, SaysThatMkfontdirFailed) {
    const TempDir dir;
    dir.write("t.pcf", "no font");
    dir.write("bin/mkfontdir", "#!/bin/sh\nexit 3\n");
    std::filesystem::permissions(dir.file("bin/mkfontdir"), std::filesystem::perms::owner_all);
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", (dir.file("bin") + ':' + path).c_str(), 1);
    const gw::test::HeardFailures heard;
    EXPECT_EQ(line_of_font_file(dir.path(), "t.pcf"), std::nullopt);
    ::setenv("PATH", path.c_str(), 1);
    ASSERT_FALSE(heard.all().empty());
    EXPECT_TRUE(heard.all().front().subject.starts_with("mkfontdir ")) << heard.text();
    EXPECT_EQ(heard.all().front().reason, gw::Reason::COMMAND_FAILED) << heard.text();
}

}  // namespace
