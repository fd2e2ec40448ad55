// SPDX-License-Identifier: MIT
//
// The stream of fonts: what is written is read back, in pieces of any size; what is wrong is refused at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/font_stream.h"

namespace {

using gw::FontStreamReader;
using gw::NameTaken;
namespace stream = gw::font_stream;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// What was read.
struct Received {
    std::vector<std::pair<std::string, std::string>> files;
    bool is_complete = false;
    bool goes_on = true;
    std::string fault;
    NameTaken decision = NameTaken::REFUSE;
};

Received receive(const std::string& bytes, std::size_t piece = 1000) {
    Received received;
    std::string content;
    std::string name;
    FontStreamReader reader({[&](const std::string& begun, std::uint64_t) {
                                 name = begun;
                                 content.clear();
                                 return true;
                             },
                             [&](std::string_view some) {
                                 content += some;
                                 return true;
                             },
                             [&] {
                                 received.files.emplace_back(name, content);
                                 return true;
                             }});
    for (std::size_t at = 0; at < bytes.size() && received.goes_on; at += piece)
        received.goes_on = reader.take(std::string_view(bytes).substr(at, piece));
    received.is_complete = reader.is_complete();
    received.fault = reader.fault();
    received.decision = reader.decision();
    return received;
}

std::string file(const std::string& name, const std::string& content) {
    return stream::before_file(name, content.size()) + content + std::string(stream::BEHIND_FILE);
}

const std::string BEGINNING = stream::beginning(NameTaken::REFUSE);
const std::string END{stream::END};

TEST(FontStream, WhatIsWrittenIsReadBackInPiecesOfAnySize) {
    const std::string odd = std::string("a,b:c\n") + '\0' + "0:,";
    const std::string bytes = stream::beginning(NameTaken::KEEP) + file("a b.pfb", odd) +
                              file("empty.ttf", "") + file("\xC3\xA9.TTF", std::string(5000, 'x')) + END;
    for (const std::size_t piece : {1U, 2U, 7U, 100000U}) {
        const Received received = receive(bytes, piece);
        EXPECT_TRUE(received.goes_on) << received.fault;
        EXPECT_TRUE(received.is_complete);
        EXPECT_EQ(received.decision, NameTaken::KEEP);
        EXPECT_THAT(received.files, ElementsAre(Pair("a b.pfb", odd), Pair("empty.ttf", ""),
                                                Pair("\xC3\xA9.TTF", std::string(5000, 'x'))));
    }
}

TEST(FontStream, SaysWhatBecomesOfAFontWhoseNameIsTaken) {
    for (const NameTaken decision : {NameTaken::REFUSE, NameTaken::REPLACE, NameTaken::KEEP})
        EXPECT_EQ(receive(stream::beginning(decision) + END).decision, decision);
    EXPECT_EQ(BEGINNING, "glyphward-everyone 1\nrefuse\n");
}

TEST(FontStream, WhatIsCutShortIsNotComplete) {
    const std::string bytes = BEGINNING + file("a.ttf", "abc") + END;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const Received received = receive(bytes.substr(0, length), 1);
        EXPECT_TRUE(received.goes_on) << length;
        EXPECT_FALSE(received.is_complete) << length;
    }
}

TEST(FontStream, RefusesWhatIsWrong) {
    const std::string many_zeros(300, '0');
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"glyphward-everyone 2\n", "this is no stream of fonts"},
        {std::string(100, 'g'), "this is no stream of fonts"},
        {"\x7F\x45LF\n", "this is no stream of fonts"},
        {"glyphward-everyone 1\nperhaps\n", "it does not say what becomes of a font whose name is taken"},
        {BEGINNING + "x", "a length is no number"},
        {BEGINNING + "-1:", "a length is no number"},
        {BEGINNING + ":", "a length is no number"},
        {BEGINNING + "05:a.ttf,", "a length is no number"},
        {BEGINNING + many_zeros, "a length is no number"},
        {BEGINNING + "201:", "a name is too long"},
        {BEGINNING + "99999999999999999999999999:", "a name is too long"},
        {BEGINNING + "4:a.ttf,", "a length is not that of what follows"},
        {BEGINNING + "5:a.ttf,67108865:", "a file is larger than 64 MB"},
        {BEGINNING + "5:a.ttf,18446744073709551617:", "a file is larger than 64 MB"},
        {BEGINNING + "5:a.ttf,:", "a length is no number"},
        {BEGINNING + "5:a.ttf,2:abc", "a length is not that of what follows"},
        {BEGINNING + file("a.ttf", "a") + file("a.ttf", "b"), "two files have one name"},
        {BEGINNING + END + "x", "something follows its end"},
        {BEGINNING + "0:x", "a length is not that of what follows"},
    };
    for (const auto& [bytes, fault] : bad) {
        for (const std::size_t piece : {1U, 100000U}) {
            const Received received = receive(bytes, piece);
            EXPECT_FALSE(received.goes_on) << bytes.substr(0, 60);
            EXPECT_EQ(received.fault, fault) << bytes.substr(0, 60);
            EXPECT_FALSE(received.is_complete && received.goes_on);
        }
    }
}

TEST(FontStream, RefusesNamesThatLeadElsewhereOrAreNoFontsName) {
    const std::vector<std::string> bad = {"../a.ttf",    "/etc/a.ttf",
                                          "a/b.ttf",     ".a.ttf",
                                          "..",          ".",
                                          "a\nb.ttf",    "a\x7F.ttf",
                                          "\t.ttf",      "fonts.dir",
                                          "fonts.scale", "fonts.alias",
                                          "glyphwd.upr", std::string("a\0b.ttf", 7)};
    for (const std::string& name : bad) {
        EXPECT_FALSE(stream::is_name(name)) << name;
        const Received received = receive(BEGINNING + stream::before_file(name, 1));
        EXPECT_EQ(received.fault, "a name is not one that a font file can have") << name;
        EXPECT_THAT(received.files, IsEmpty());
    }
    for (const char* name : {"a.ttf", "A b-c_(d).v2.PFB", "\xE3\x81\x82.otf", "x", "~.pcf.gz"})
        EXPECT_TRUE(stream::is_name(name)) << name;
    EXPECT_TRUE(stream::is_name(std::string(200, 'a')));
    EXPECT_FALSE(stream::is_name(std::string(201, 'a')));
    EXPECT_FALSE(stream::is_name(""));
}

/// A reader that throws the bytes away.
FontStreamReader careless() {
    return FontStreamReader({[](const std::string&, std::uint64_t) { return true; },
                             [](std::string_view) { return true; }, [] { return true; }});
}

TEST(FontStream, TakesOneGigabyteAndNoMore) {
    FontStreamReader reader = careless();
    ASSERT_TRUE(reader.take(BEGINNING));
    const std::string block(1U << 20U, 'x');
    for (int i = 0; i < 16; ++i) {
        ASSERT_TRUE(reader.take(stream::before_file(std::to_string(i), stream::FILE_LIMIT)));
        for (int mb = 0; mb < 64; ++mb) ASSERT_TRUE(reader.take(block));
        ASSERT_TRUE(reader.take(stream::BEHIND_FILE));
    }
    EXPECT_FALSE(reader.take(stream::before_file("last", 1)));
    EXPECT_EQ(reader.fault(), "the files are larger than 1 GB together");
}

TEST(FontStream, TakesTenThousandFilesAndNoMore) {
    FontStreamReader reader = careless();
    ASSERT_TRUE(reader.take(BEGINNING));
    for (std::size_t i = 0; i < stream::COUNT_LIMIT; ++i)
        ASSERT_TRUE(reader.take(file(std::to_string(i), "")));
    EXPECT_FALSE(reader.take(stream::before_file("last", 0)));
    EXPECT_EQ(reader.fault(), "there are too many files");
}

TEST(FontStream, AReceiverThatRefusesEndsIt) {
    FontStreamReader reader({[](const std::string&, std::uint64_t) { return true; },
                             [](std::string_view) { return false; }, [] { return true; }});
    EXPECT_FALSE(reader.take(BEGINNING + file("a.ttf", "abc")));
    EXPECT_EQ(reader.fault(), "");
    EXPECT_FALSE(reader.take(END)) << "and it stays so";
}

}  // namespace
