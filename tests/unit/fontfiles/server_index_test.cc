// SPDX-License-Identifier: MIT
//
// The expectations were measured with Xvfb 21.1.7 and libXfont2 2.0.6.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "fontfiles/server_index.h"

namespace gw {
namespace {

std::string shown(const ServerIndex& index) {
    std::string text;
    for (const IndexEntry& entry : index.entries) text += entry.file_name + '=' + entry.font_name + ';';
    return text;
}
std::string shown(const ServerAliases& aliases) {
    std::string text;
    for (const ServerAlias& alias : aliases.aliases) text += alias.alias + '=' + alias.target + ';';
    return text;
}

TEST(ServerIndexTest, ReadsWhatTheServerReads) {
    const struct {
        const char* text;
        const char* entries;
    } cases[] = {
        {"1\na.bdf x\n", "a.bdf=x;"},
        {" \n\n 1\na.bdf x", "a.bdf=x;"},
        {"0\na.bdf x\nb.bdf y\n", "a.bdf=x;b.bdf=y;"},
        {"99\n", ""},
        {"1a.bdf x\n", "a.bdf=x;"},
        {"1 2\na.bdf x\n", "2=a.bdf x;"},
        {"1.5\na.bdf x\n", ".5=a.bdf x;"},
        {"1\n\n\n  a.bdf\t  X y Z  \n", "a.bdf=x y z  ;"},
        {"1\nlonely\na.bdf x\n", "lonely=a.bdf x;"},
        {"1\r\na.bdf x\r\n", "a.bdf=x\r;"},
        {"1\n!comment line\n", "!comment=line;"},
        {"-0\na.bdf x\n", "a.bdf=x;"},
        // The server takes the lower 32 bits of a number.
        {"4294967297\na.bdf x\n", "a.bdf=x;"},
        // Bytes are letters of ISO 8859-1, also those of UTF-8.
        {"1\na.bdf \xC3\x89 \xC3\xA9 \xD7\xDF\xE0\n", "a.bdf=\xE3\x89 \xE3\xA9 \xD7\xDF\xE0;"},
    };
    for (const auto& one : cases) {
        const ServerIndex index = read_server_index(one.text);
        EXPECT_FALSE(index.fault) << one.text;
        EXPECT_EQ(shown(index), one.entries) << one.text;
    }
}

TEST(ServerIndexTest, ANulEndsAWord) {
    using std::string_literals::operator""s;
    EXPECT_EQ(shown(read_server_index("1\na.bdf\0x one\0 more\n\0b.bdf two\nc.bdf three\n"s)),
              "a.bdf=one;c.bdf=three;");
    EXPECT_EQ(shown(read_server_aliases("one\0x two\0y\n"s)), "one=two;");
}

TEST(ServerIndexTest, FindsTheFaultForWhichTheServerRefusesIt) {
    for (const char* text : {"", " ", "x\na.bdf x\n", "abc 1\n", "-5\na.bdf x\n", "99999999999\na.bdf x\n",
                             "2147483647\n", "2147483648\n", "44739243\n", "99999999999999999999\n"}) {
        const ServerIndex index = read_server_index(text);
        ASSERT_TRUE(index.fault) << text;
        EXPECT_EQ(index.fault->fault, IndexFault::NO_COUNT) << text;
    }
    const ServerIndex index = read_server_index("1\na.bdf x\nlonely\n\n");
    ASSERT_TRUE(index.fault);
    EXPECT_EQ(index.fault->fault, IndexFault::NO_NAME);
    EXPECT_EQ(index.fault->line, 3);
    EXPECT_EQ(index.fault->word, "lonely");
    EXPECT_TRUE(read_server_index("1\nz.bdf " + std::string(1200, 'x') + '\n').fault);
}

TEST(ServerIndexTest, ReadsAliasesAsTheServerDoes) {
    const struct {
        const char* text;
        const char* aliases;
    } cases[] = {
        {"foo x\n", "foo=x;"},
        {"FOO X", "foo=x;"},
        {"! not\rfoo x\n", "foo=x;"},
        {"! not \\\nfoo this\nfoo x\n", "foo=x;"},
        {"! comment\n\n  foo \t x  ! c\n", "foo=x;"},
        {"foo!bar x\n", "foo!bar=x;"},
        {"\"foo bar\" \"x y\"\n", "foo bar=x y;"},
        {"foo\\ bar x\n", "foo bar=x;"},
        {"foo\"x\" y\n", "foox=y;"},
        {"foo \"x\n", "foo=x;"},
        {"foo x\\\n", "foo=x\n;"},
        {"foo x\rbar y\r\n", "foo=x;bar=y;"},
        {"foo x\\", "foo=x;"},
        {"# hash\nfoo x\n", "#=hash;foo=x;"},
        {"FILE_NAMES_ALIASES\n", ""},
        {"! no newline", ""},
        {"", ""},
    };
    for (const auto& one : cases) {
        const ServerAliases aliases = read_server_aliases(one.text);
        EXPECT_FALSE(aliases.fault) << one.text;
        EXPECT_EQ(shown(aliases), one.aliases) << one.text;
    }
    const ServerAliases aliases = read_server_aliases("a x\nFILE_NAMES_ALIASES\nb x\nFILE_NAMES_ALIASES\n");
    EXPECT_TRUE(aliases.has_file_names);
    EXPECT_EQ(aliases.before_file_names, 1U);
}

TEST(ServerIndexTest, FindsTheFaultOfAnAliasFile) {
    const std::string too_long(1100, 'q');
    const struct {
        std::string text;
        IndexFault fault;
        int line;
    } cases[] = {
        {"foo\n", IndexFault::NO_TARGET, 1},
        {"foo x\nbar", IndexFault::NO_TARGET, 2},
        {"foo x extra\n", IndexFault::NO_TARGET, 1},
        {"\nself self\n", IndexFault::OWN_ALIAS, 2},
        {"foo FOO\n", IndexFault::OWN_ALIAS, 1},
        {too_long + " x\n", IndexFault::NAME_TOO_LONG, 1},
        {"foo " + too_long, IndexFault::NAME_TOO_LONG, 1},
    };
    for (const auto& one : cases) {
        const ServerAliases aliases = read_server_aliases(one.text);
        ASSERT_TRUE(aliases.fault) << one.text;
        EXPECT_EQ(aliases.fault->fault, one.fault) << one.text;
        EXPECT_EQ(aliases.fault->line, one.line) << one.text;
    }
}

TEST(ServerIndexTest, KnowsWhichFilesTheServerOpens) {
    for (const char* name : {"a.pcf", "a.pcf.gz", "a.pcf.Z", "a.bdf.bz2", ".pcf"})
        EXPECT_EQ(renderer_of(name), FontRenderer::BITMAP) << name;
    for (const char* name : {"a.pfa", "a.pfb", "a.ttf", "a.ttc", "a.otf", "b/a.ttf", ":1:a.ttc"})
        EXPECT_EQ(renderer_of(name), FontRenderer::OUTLINE) << name;
    for (const char* name : {"", "pcf", "a.snf", "a.txt", "a.gz", "a.pcf.xz", "a.afm"})
        EXPECT_EQ(renderer_of(name), FontRenderer::NONE) << name;
}

TEST(ServerIndexTest, FindsTheNameOfAFileWithoutItsSuffix) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.b.pcf", "a.b"},     {"a.pcf.gz", "a"}, {"A.BDF.Z", "A"},   {":1:e.ttf", ":1:e"},
        {"sub/a.pfa", "sub/a"}, {".pcf", ""},      {"a.txt", "a.txt"}, {"a.gz", "a.gz"}};
    for (const auto& [file, name] : cases) EXPECT_EQ(without_renderer_suffix(file), name) << file;
}

}  // namespace
}  // namespace gw
