// SPDX-License-Identifier: MIT
#include "glyphward-everyone/reception.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <set>

#include "core/failure.h"
#include "core/text.h"

#include "glyphward-fonts/interruption.h"

namespace gw::everyone {

namespace {

constexpr const char* METRICS = ".afm";
constexpr mode_t MODE = 0600;
constexpr std::size_t AT_ONCE = 64UL * 1024;

/// The name without what follows its last dot, in lower case.
std::string stem_of(const std::string& name) {
    return lower_case(name.substr(0, name.rfind('.')));
}

bool is_metrics(const std::string& name) {
    return lower_case(name).ends_with(METRICS);
}

std::string in_words(int error) {
    return Failure::of_system("", error).reason_text();
}

/// Waits for bytes. Returns how many have come, 0 for the end, or -1 with `errno`.
ssize_t read_some(int fd, char* buffer, std::size_t size, std::chrono::milliseconds patience) {
    pollfd source = {fd, POLLIN, 0};
    const int ready = ::poll(&source, 1, static_cast<int>(patience.count()));
    if (ready == 0) errno = ETIMEDOUT;
    return ready > 0 ? ::read(fd, buffer, size) : -1;
}

}  // namespace

Reception::Reception()
    : reader_({[this](const std::string& name, std::uint64_t) { return begin_file(name); },
               [this](std::string_view bytes) { return take_bytes(bytes); }, [this] { return end_file(); }}) {
}

bool Reception::fail(int error) {
    error_ = error;
    return false;
}

bool Reception::begin_file(const std::string& name) {
    file_ = Descriptor(
        ::open((directory() + name).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, MODE));
    names_.push_back(name);
    return file_.is_open() || fail(errno);
}

bool Reception::take_bytes(std::string_view bytes) {
    const int error = write_all(file_.get(), bytes);
    return error == 0 || fail(error);
}

bool Reception::end_file() {
    return file_.close() || fail(errno);
}

std::string Reception::receive(int fd, std::chrono::milliseconds patience) {
    if (directory_.path().empty()) return in_words(errno);
    if (::isatty(fd) != 0) return "a terminal is no stream of fonts";
    std::array<char, AT_ONCE> piece{};
    while (!reader_.is_complete()) {
        const ssize_t count = read_some(fd, piece.data(), piece.size(), patience);
        const int error = errno;
        if (fonts::is_interrupted()) return "it was interrupted";
        if (count < 0 && error == EINTR) continue;
        if (count < 0) return in_words(error);
        if (count == 0) return "its end is missing";
        if (!reader_.take({piece.data(), static_cast<std::size_t>(count)}))
            return reader_.fault().empty() ? in_words(error_) : reader_.fault();
    }
    return "";
}

std::vector<std::string> Reception::sources() const {
    std::set<std::string> fonts;
    for (const std::string& name : names_) {
        if (!is_metrics(name)) fonts.insert(stem_of(name));
    }
    std::vector<std::string> paths;
    for (const std::string& name : names_) {
        if (!is_metrics(name) || !fonts.contains(stem_of(name))) paths.push_back(directory() + name);
    }
    return paths;
}

}  // namespace gw::everyone
