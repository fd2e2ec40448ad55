// SPDX-License-Identifier: MIT
#include "web/browser.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace gw::web {

namespace {

constexpr int COMMANDS = 3;  // the descriptors that the browser expects
constexpr int ANSWERS = 4;
constexpr int CLEAR_OF_BOTH = 10;
constexpr std::chrono::seconds PATIENCE{30};

std::string json_string(const std::string& text) {
    std::string json = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') json += '\\';
        json += c == '\n' ? ' ' : c;
    }
    return json + '"';
}

// The first string of that name in an answer; empty when there is none. Escapes are not handled.
std::string field(const std::string& json, const std::string& name) {
    const std::string start = "\"" + name + "\":\"";
    const std::size_t at = json.find(start);
    if (at == std::string::npos) return {};
    const std::size_t begin = at + start.size();
    return json.substr(begin, json.find('"', begin) - begin);
}

std::string decoded_base64(std::string_view text) {
    constexpr std::string_view DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned value = 0;
    int bits = 0;
    for (const char c : text) {
        const std::size_t digit = DIGITS.find(c);
        if (digit == std::string_view::npos) break;
        value = (value << 6 | static_cast<unsigned>(digit)) & 0xFFFFFFU;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>(value >> bits & 0xFFU);
        }
    }
    return bytes;
}

}  // namespace

// Keeps the ends of the pipe off the low descriptor numbers, which the browser expects for its own two.
Browser::Pipe::Pipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    read_end = ::fcntl(ends[0], F_DUPFD_CLOEXEC, CLEAR_OF_BOTH);
    write_end = ::fcntl(ends[1], F_DUPFD_CLOEXEC, CLEAR_OF_BOTH);
    ::close(ends[0]);
    ::close(ends[1]);
}

Browser::Pipe::~Pipe() {
    ::close(read_end);
    ::close(write_end);
}

Browser::Browser() {
    ::signal(SIGPIPE, SIG_IGN);  // a write to a dead browser then throws instead of ending the test
    // The browser's own sandbox does not work inside ours.
    process_.emplace(
        std::vector<std::string>{"chromium-headless-shell", "--no-sandbox", "--disable-gpu",
                                 "--disable-dev-shm-usage", "--no-first-run", "--remote-debugging-pipe",
                                 "--user-data-dir=" + profile_.path(), "--window-size=1280,900"},
        profile_.file("output"), [this] {
            ::dup2(commands_.read_end, COMMANDS);
            ::dup2(answers_.write_end, ANSWERS);
        });
    // When the browser ends, reading its answers now sees the end of file.
    ::close(std::exchange(answers_.write_end, -1));
    ::close(std::exchange(commands_.read_end, -1));
    const std::string page =
        field(call("Target.createTarget", R"({"url":"about:blank","width":1280,"height":900})"), "targetId");
    session_ =
        field(call("Target.attachToTarget", R"({"flatten":true,"targetId":)" + json_string(page) + "}"),
              "sessionId");
    if (session_.empty()) throw std::runtime_error("the browser gives no page:\n" + process_->output());
}

Browser::~Browser() {
    try {
        call("Browser.close", "{}");
        process_->wait_for_exit();
    } catch (const std::exception&) {
        process_.reset();
    }
}

std::string Browser::next_message() {
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    std::size_t length = 0;
    while ((length = received_.find('\0')) == std::string::npos) {
        pollfd waiting{answers_.read_end, POLLIN, 0};
        std::array<char, 65536> bytes{};
        ssize_t count = 0;
        if (::poll(&waiting, 1, 100) > 0) {
            count = ::read(answers_.read_end, bytes.data(), bytes.size());
            if (count <= 0) throw std::runtime_error("the browser has ended:\n" + process_->output());
        }
        received_.append(bytes.data(), static_cast<std::size_t>(count));
        if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the browser does not answer");
    }
    const std::string message = received_.substr(0, length);
    received_.erase(0, length + 1);
    return message;
}

std::string Browser::call(const std::string& method, const std::string& parameters) {
    const std::string id = std::to_string(++last_id_);
    std::string command =
        "{\"id\":" + id + ",\"method\":" + json_string(method) + ",\"params\":" + parameters;
    if (!session_.empty()) command += ",\"sessionId\":" + json_string(session_);
    command += "}";
    // Includes the NUL byte that ends a command.
    const auto size = static_cast<ssize_t>(command.size() + 1);
    if (::write(commands_.write_end, command.c_str(), command.size() + 1) != size)
        throw std::runtime_error("the browser takes no command:\n" + process_->output());
    while (true) {
        std::string message = next_message();
        if (message.starts_with("{\"id\":" + id + ",\"error\"")) throw std::runtime_error(message);
        if (message.starts_with("{\"id\":" + id + ",")) return message;
    }
}

void Browser::open(const std::string& address) {
    // A new fragment alone would not load the page again.
    call("Page.navigate", R"({"url":"about:blank"})");
    call("Page.navigate", "{\"url\":" + json_string(address) + "}");
}

std::string Browser::evaluate(const std::string& statements) {
    return field(call("Runtime.evaluate",
                      R"({"returnByValue":true,"expression":)" + json_string("{" + statements + "}") + "}"),
                 "value");
}

void Browser::mouse(const std::string& type, double x, double y, int buttons) {
    call("Input.dispatchMouseEvent", "{\"type\":" + json_string(type) + ",\"x\":" + std::to_string(x) +
                                         ",\"y\":" + std::to_string(y) +
                                         ",\"button\":" + (type == "mouseMoved" ? R"("none")" : R"("left")") +
                                         ",\"clickCount\":1,\"buttons\":" + std::to_string(buttons) + "}");
}

void Browser::click(double x, double y) {
    mouse("mouseMoved", x, y, 0);
    mouse("mousePressed", x, y, 1);
    mouse("mouseReleased", x, y, 0);
}

void Browser::key(const std::string& type, const Key& key) {
    call("Input.dispatchKeyEvent", "{\"type\":" + json_string(type) + ",\"key\":" + json_string(key.name) +
                                       ",\"code\":" + json_string(key.place) +
                                       ",\"windowsVirtualKeyCode\":" + std::to_string(key.code) + "}");
}

void Browser::press(const Key& key) {
    this->key("rawKeyDown", key);
}

void Browser::release(const Key& key) {
    this->key("keyUp", key);
}

void Browser::picture(const std::string& name) {
    const char* directory = std::getenv("GLYPHWARD_OUT");
    if (directory == nullptr) return;
    const std::string bytes =
        decoded_base64(field(call("Page.captureScreenshot", R"({"format":"png"})"), "data"));
    std::ofstream out(std::string(directory) + "/" + name + ".png", std::ios::binary);
    out << bytes;
    out.close();
    if (bytes.empty() || !out) throw std::runtime_error("no picture of " + name);
}

}  // namespace gw::web
