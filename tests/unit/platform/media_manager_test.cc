// SPDX-License-Identifier: MIT
#include "platform/media_manager.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "support/media_service.h"
#include "support/temp_dir.h"

namespace {

using gw::test::MediaService;
using gw::test::PrivateBus;
using gw::test::SystemBusAddress;
using gw::test::TempDir;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The limit is 2 seconds. A busy machine gets some more time.
constexpr auto LONGEST = milliseconds(4500);

// Expects the answer "no" within the promised time.
void expect_no_in_time(int (*question)()) {
    const auto begin = steady_clock::now();
    EXPECT_EQ(question(), 0);
    const auto took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
    EXPECT_LT(took, LONGEST);
    ::testing::Test::RecordProperty("milliseconds", static_cast<int>(took.count()));
}

int check_all() {
    return media_manager_check(nullptr);
}

// --- Without a service -------------------------------------------------------

TEST(MediaManager, WithoutABusNothingRuns) {
    const TempDir dir;
    for (const std::string& address :
         {"unix:path=" + dir.file("missing"), "unix:path=" + dir.write("file", "x"), std::string("nonsense"),
          std::string("unix:"), std::string(";;"), std::string(5000, 'x')}) {
        const SystemBusAddress bus(address);
        EXPECT_EQ(media_manager_running(), 0) << address;
        EXPECT_EQ(media_manager_check(nullptr), 0) << address;
        EXPECT_EQ(media_manager_check("/dev/sr0"), 0) << address;
    }
    EXPECT_EQ(media_manager_running(), 0) << "the sandbox has no system bus";
}

TEST(MediaManager, ABusWithoutTheServiceHasNone) {
    const PrivateBus bus;
    const SystemBusAddress address(bus.address());
    EXPECT_EQ(media_manager_running(), 0);
    EXPECT_EQ(media_manager_check(nullptr), 0);
}

TEST(MediaManager, AServiceThatHasEndedRunsNoMore) {
    const PrivateBus bus;
    const SystemBusAddress address(bus.address());
    {
        const MediaService service(bus.address());
        EXPECT_EQ(media_manager_running(), 1);
    }
    EXPECT_EQ(media_manager_running(), 0);
}

TEST(MediaManager, AServiceThatCanBeStartedRuns) {
    const PrivateBus bus("/bin/false");
    const SystemBusAddress address(bus.address());
    EXPECT_EQ(media_manager_running(), 1);
    EXPECT_EQ(media_manager_check(nullptr), 0) << "starting it fails";
}

TEST(MediaManager, AskingStartsTheService) {
    const TempDir dir;
    const PrivateBus bus("/usr/bin/touch " + dir.file("started"));
    const SystemBusAddress address(bus.address());
    // Instead of the process that the bus starts, a thread takes the name.
    std::optional<MediaService> service;
    std::jthread starter([&](const std::stop_token& end) {
        while (!dir.exists("started")) {
            if (end.stop_requested()) return;
            std::this_thread::sleep_for(milliseconds(1));
        }
        service.emplace(bus.address());
    });
    EXPECT_EQ(media_manager_running(), 1);
    EXPECT_FALSE(dir.exists("started")) << "looking is not asking";
    EXPECT_EQ(media_manager_check(nullptr), 0);
    EXPECT_TRUE(dir.exists("started"));
    starter.join();
    ASSERT_TRUE(service.has_value());
    service->add_drive("sr0");
    service->insert_medium("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 1);
}

// --- With one ----------------------------------------------------------------

class MediaManagerWithService : public ::testing::Test {
  protected:
    PrivateBus bus_;
    SystemBusAddress address_{bus_.address()};
    MediaService service_{bus_.address()};
};

TEST_F(MediaManagerWithService, Runs) {
    EXPECT_EQ(media_manager_running(), 1);
}

TEST_F(MediaManagerWithService, WithoutADriveThereIsNoMedium) {
    EXPECT_EQ(media_manager_check(nullptr), 0);
    EXPECT_EQ(media_manager_check("/dev/sr0"), 0);
}

TEST_F(MediaManagerWithService, ReportsAMediumAsLongAsItIsThere) {
    service_.add_drive("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 0);
    service_.insert_medium("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 1);
    service_.remove_medium("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 0);
}

TEST_F(MediaManagerWithService, AFixedDiskHoldsNoMedium) {
    service_.add_drive("sda", MediaService::Kind::FIXED);
    service_.insert_medium("sda");
    EXPECT_EQ(media_manager_check(nullptr), 0);
    EXPECT_EQ(media_manager_check("/dev/sda"), 0);
}

TEST_F(MediaManagerWithService, ADeviceStandsForItselfAlone) {
    for (const char* name : {"fd0", "sr0", "sr1"}) service_.add_drive(name);
    service_.insert_medium("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 1);
    EXPECT_EQ(media_manager_check("/dev/sr0"), 1);
    for (const char* name : {"/dev/fd0", "/dev/sr1", "/dev/sr", "/dev/sr00", "sr0", "", "/dev/\xe9\n"})
        EXPECT_EQ(media_manager_check(name), 0) << name;
}

TEST_F(MediaManagerWithService, FindsTheOneMediumAmongManyDrives) {
    for (int number = 0; number < 2000; ++number) service_.add_drive("sr" + std::to_string(number));
    EXPECT_EQ(media_manager_check(nullptr), 0);
    service_.insert_medium("sr1234");
    EXPECT_EQ(media_manager_check(nullptr), 1);
    EXPECT_EQ(media_manager_check("/dev/sr1234"), 1);
    EXPECT_EQ(media_manager_check("/dev/sr1235"), 0);
}

TEST_F(MediaManagerWithService, NothingStaysOpenBehindAQuestion) {
    service_.add_drive("sr0");
    const auto open_files = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    const auto before = open_files();
    for (int time = 0; time < 20; ++time) {
        EXPECT_EQ(media_manager_running(), 1);
        EXPECT_EQ(media_manager_check(nullptr), 0);
    }
    EXPECT_EQ(open_files(), before);
}

TEST_F(MediaManagerWithService, NonsenseAndRefusalsAreNoMedium) {
    service_.add_drive("sr0");
    service_.insert_medium("sr0");
    using enum MediaService::Answer;
    for (const MediaService::Answer answer : {REFUSAL, ANOTHER_TYPE}) {
        service_.set_answer(answer);
        EXPECT_EQ(media_manager_check(nullptr), 0) << static_cast<int>(answer);
        EXPECT_EQ(media_manager_check("/dev/sr0"), 0) << static_cast<int>(answer);
    }
    service_.set_answer(OBJECTS);
    EXPECT_EQ(media_manager_check("/dev/sr0"), 1);
}

TEST_F(MediaManagerWithService, PropertiesOfOtherTypesArePassedOver) {
    service_.add_drive("fd0", MediaService::Kind::ODD);
    service_.add_drive("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 0);
    service_.insert_medium("sr0");
    EXPECT_EQ(media_manager_check(nullptr), 1);
    EXPECT_EQ(media_manager_check("/dev/sr0"), 1);
    EXPECT_EQ(media_manager_check("/dev/fd0"), 0);
}

TEST_F(MediaManagerWithService, AServiceThatNeverAnswersIsNotWaitedForLong) {
    service_.add_drive("sr0");
    service_.insert_medium("sr0");
    service_.set_answer(MediaService::Answer::SILENCE);
    EXPECT_EQ(media_manager_running(), 1);
    expect_no_in_time(check_all);
}

// --- With something else behind the bus's address ----------------------------

// Accepts one connection, sends its text and then nothing more.
class Speaker {
  public:
    explicit Speaker(const std::string& text) : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = dir_.file("socket");
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const auto* name = static_cast<const sockaddr*>(static_cast<const void*>(&address));
        if (::bind(listener_, name, sizeof address) != 0 || ::listen(listener_, 5) != 0)
            throw std::runtime_error("a socket");
        thread_ = std::thread([this, text] { speak(text); });
    }
    ~Speaker() {
        ::shutdown(listener_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }
    Speaker(const Speaker&) = delete;
    Speaker& operator=(const Speaker&) = delete;

    [[nodiscard]] std::string address() const { return "unix:path=" + dir_.file("socket"); }

  private:
    void speak(const std::string& text) const {
        const int connection = ::accept(listener_, nullptr, nullptr);
        ::send(connection, text.data(), text.size(), MSG_NOSIGNAL);
        std::array<char, 256> heard{};
        while (::read(connection, heard.data(), heard.size()) > 0) {
        }
        ::close(connection);
    }

    TempDir dir_;
    int listener_;
    std::thread thread_;
};

const std::string LET_IN = "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n";

TEST(MediaManager, ASocketThatIsSilentIsNotWaitedForLong) {
    const Speaker speaker("");
    const SystemBusAddress address(speaker.address());
    expect_no_in_time(media_manager_running);
}

TEST(MediaManager, ABusThatFallsSilentAfterTheGreetingIsNotWaitedForLong) {
    const Speaker speaker(LET_IN);
    const SystemBusAddress address(speaker.address());
    expect_no_in_time(check_all);
}

TEST(MediaManager, WhatSpeaksAnotherLanguageIsNoBus) {
    const TempDir dir;
    // At least as many lines as a greeting has, so that the client does not wait for more.
    for (const std::string& text :
         {std::string("HTTP/1.0 400 Bad Request\r\nServer: x\r\n\r\n"),
          std::string("REJECTED EXTERNAL\r\nERROR\r\nERROR\r\n"), LET_IN + std::string(64, 'x')}) {
        const Speaker speaker(text);
        const SystemBusAddress address(speaker.address());
        expect_no_in_time(media_manager_running);
    }
}

}  // namespace
