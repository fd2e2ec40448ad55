// SPDX-License-Identifier: MIT
//
// A request that fonts are installed for everyone, with programs in the place of pkexec.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <poll.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/everyone_request.h"
#include "support/temp_dir.h"

namespace {

using gw::EveryoneAnswer;
using gw::EveryoneRequest;
using gw::NameTaken;
using gw::SentFile;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = EveryoneAnswer::Kind;

std::vector<std::string> shell(const std::string& text) {
    return {"/bin/sh", "-c", text};
}

/// Serves the request until it is over or has sent everything.
void serve(EveryoneRequest& request, bool until_sent = false) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!request.is_over() && !(until_sent && request.is_sent())) {
        ASSERT_LT(std::chrono::steady_clock::now(), end);
        pollfd ends[] = {{request.sending_end(), POLLOUT, 0}, {request.answering_end(), POLLIN, 0}};
        ::poll(ends, 2, 100);
        if (ends[0].revents != 0) request.send_more();
        if (ends[1].revents != 0) request.read_more();
    }
}

class EveryonesRequest : public testing::Test {
  protected:
    [[nodiscard]] std::vector<SentFile> files() const {
        std::vector<SentFile> list = {{"a.ttf", dir_.file("a.ttf")}, {"b.pfb", dir_.file("b.pfb")}};
        EXPECT_THAT(gw::leave_out_unsendable(list), IsEmpty());
        return list;
    }
    EveryoneAnswer answer_to(const std::string& script) {
        EveryoneRequest request(files(), NameTaken::REPLACE);
        EXPECT_TRUE(request.start(shell(script)));
        serve(request);
        return request.answer();
    }

    TempDir dir_;
    std::string large_ = std::string(300000, 'x');
    std::string a_ = dir_.write("a.ttf", "bytes");
    std::string b_ = dir_.write("b.pfb", large_);
};

TEST_F(EveryonesRequest, SendsTheFilesAndReadsTheAnswer) {
    const std::string sent = dir_.file("sent");
    // The stream is read by its length: its end stays open until the answer is there.
    const EveryoneAnswer answer =
        answer_to("head -c 300064 >" + sent +
                  R"(; echo '{"changed": true, "fonts": [{"font": "A", "result": "installed"},
            {"font": {"bytes": "FF41"}, "result": "failed", "reason": "x", "code": "DAMAGED_FONT",
             "detail": "7", "errno": 5}], 
             "problems": [{"subject": "s", "reason": "r", "code": "SYSTEM"}]}'; exit 1)");
    const std::string expected =
        "glyphward-everyone 1\nreplace\n5:a.ttf,5:bytes,5:b.pfb,300000:" + large_ + ",0:,";
    EXPECT_EQ(TempDir::read_bytes(sent), expected);
    EXPECT_EQ(expected.size(), 300064U);
    EXPECT_EQ(answer.kind, Kind::ANSWERED);
    EXPECT_EQ(answer.status, 1);
    EXPECT_TRUE(answer.changed);
    ASSERT_THAT(answer.fonts, SizeIs(2));
    EXPECT_EQ(answer.fonts[0].result, "installed");
    EXPECT_EQ(answer.fonts[1].font, "\xFF\x41");
    EXPECT_EQ(answer.fonts[1].why.code, "DAMAGED_FONT");
    EXPECT_EQ(answer.fonts[1].why.detail, "7");
    EXPECT_EQ(answer.fonts[1].why.error, 5);
    ASSERT_THAT(answer.problems, SizeIs(1));
    EXPECT_EQ(answer.problems[0].subject, "s");
}

TEST_F(EveryonesRequest, TellsWhatPkexecSays) {
    EXPECT_EQ(answer_to("exit 126").kind, Kind::NOT_GIVEN);
    EXPECT_EQ(answer_to("exit 127").kind, Kind::NOT_AUTHORISED);
}

TEST_F(EveryonesRequest, WhatIsNoAnswerIsNone) {
    for (const char* script : {"exit 0", "echo hello", "echo '[1, 2]'", "echo '{}'", "kill -9 $$"})
        EXPECT_EQ(answer_to(script).kind, Kind::NO_ANSWER) << script;
    EveryoneRequest request(files(), NameTaken::KEEP);
    EXPECT_FALSE(request.start({"/nonexistent/program"}));
}

TEST_F(EveryonesRequest, AnAnswerOfManyMembersThatAreNotWhatTheyShouldBeIsRead) {
    const EveryoneAnswer answer = gw::read_everyones_answer(
        R"({"fonts": [1, "x", {"font": 7, "errno": "e"}, {"font": {"bytes": 3}}],
            "changed": "yes", "problems": {}})");
    EXPECT_EQ(answer.kind, Kind::ANSWERED);
    EXPECT_FALSE(answer.changed);
    EXPECT_THAT(answer.fonts, SizeIs(2));
}

TEST_F(EveryonesRequest, TheFilesOfEachFontAreRead) {
    const EveryoneAnswer answer = gw::read_everyones_answer(
        R"({"fonts": [{"font": "A", "files": ["a.pfb", {"bytes": "FF2E61666D"}, 7, ""]},
            {"font": "B", "files": "b.ttf"}, {"font": "C"}]})");
    ASSERT_THAT(answer.fonts, SizeIs(3));
    EXPECT_THAT(answer.fonts[0].files, ElementsAre("a.pfb", "\xFF.afm"));
    EXPECT_THAT(answer.fonts[1].files, IsEmpty()) << "that is no list";
    EXPECT_THAT(answer.fonts[2].files, IsEmpty());
}

TEST_F(EveryonesRequest, CancelledWhileThePasswordIsAskedForNothingIsInstalled) {
    EveryoneRequest request(files(), NameTaken::REFUSE);
    ASSERT_TRUE(request.start(shell("exec sleep 1000")));
    request.send_more();
    EXPECT_FALSE(request.is_sent());
    request.cancel();
    serve(request);
    EXPECT_EQ(request.answer().kind, Kind::CANCELLED);
}

TEST_F(EveryonesRequest, CancelledLaterTheAnswerStillComes) {
    EveryoneRequest request(files(), NameTaken::REFUSE);
    // Another user's process is not reached by the signal; it sees that the other end has gone.
    ASSERT_TRUE(request.start(shell(
        R"(trap '' TERM; cat >/dev/null; echo '{"changed": true,
            "fonts": [{"font": "A", "result": "installed"}]}'; exit 1)")));
    serve(request, true);
    ASSERT_TRUE(request.is_sent());
    request.cancel();
    serve(request);
    EXPECT_EQ(request.answer().kind, Kind::ANSWERED);
    EXPECT_THAT(request.answer().fonts, SizeIs(1));
}

TEST_F(EveryonesRequest, AFileThatHasChangedMeanwhileIsNotSent) {
    EveryoneRequest request(files(), NameTaken::REFUSE);
    (void)dir_.write("a.ttf", "other bytes");
    ASSERT_TRUE(request.start(shell("cat >" + dir_.file("sent"))));
    serve(request);
    EXPECT_EQ(request.answer().kind, Kind::CANCELLED);
    EXPECT_THAT(TempDir::read_bytes(dir_.file("sent")), testing::Not(HasSubstr("0:,")));
}

TEST_F(EveryonesRequest, AProgramThatReadsNoMoreIsNoSignal) {
    const EveryoneAnswer answer = answer_to(
        R"(exec <&-; echo '{"problems": [{"subject": "the stream of fonts", "reason": "no"}]}'; exit 4)");
    EXPECT_EQ(answer.kind, Kind::ANSWERED);
    EXPECT_EQ(answer.status, 4);
    EXPECT_THAT(answer.problems, SizeIs(1));
}

TEST_F(EveryonesRequest, LeavesOutWhatCannotBeSent) {
    std::filesystem::create_symlink("/nonexistent", dir_.file("gone.ttf"));
    ASSERT_EQ(::mkfifo(dir_.file("pipe.ttf").c_str(), 0600), 0);
    std::ofstream(dir_.file("large.ttf")).close();
    std::filesystem::resize_file(dir_.file("large.ttf"), (64UL << 20U) + 1);
    std::vector<SentFile> list = {{"a.ttf", a_},
                                  {"gone.ttf", dir_.file("gone.ttf")},
                                  {"pipe.ttf", dir_.file("pipe.ttf")},
                                  {"large.ttf", dir_.file("large.ttf")},
                                  {".hidden.ttf", a_},
                                  {"a.ttf", b_}};
    EXPECT_THAT(gw::leave_out_unsendable(list), SizeIs(5));
    ASSERT_THAT(list, SizeIs(1));
    EXPECT_EQ(list[0].path, a_);
    EXPECT_EQ(list[0].size, 5U);
}

TEST(AdministratorsCommand, NamesTheFilesWithTheirDirectories) {
    EXPECT_EQ(gw::administrators_command({"/a/b.ttf", "/c d/e.ttf"}),
              "glyphward-fonts install --everyone /a/b.ttf '/c d/e.ttf'");
}

TEST(EveryonesCommand, TakesNothingButTheProgram) {
    EXPECT_THAT(gw::everyones_command(), ElementsAre("/usr/bin/pkexec", "--disable-internal-agent",
                                                     "/usr/vantor/libexec/glyphward-everyone"));
}

}  // namespace
