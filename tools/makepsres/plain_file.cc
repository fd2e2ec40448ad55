// SPDX-License-Identifier: MIT
#include "makepsres/plain_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace gw::psres {

namespace {

constexpr std::size_t BLOCK = 4096;
constexpr const char* NOT_PLAIN = "this is no plain file";

class Descriptor {
  public:
    explicit Descriptor(int number) : fd(number) {}
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return fd; }

  private:
    int fd;
};

FileBytes failed() {
    return {{}, std::strerror(errno)};
}

}  // namespace

FileBytes read_plain_file(const std::string& path, std::size_t limit) {
    // Merely opening a file can rewind a tape or wait for a writer. So its kind is checked before, and again
    // when it is open.
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) return failed();
    if (!S_ISREG(info.st_mode)) return {{}, NOT_PLAIN};
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0) return failed();
    if (!S_ISREG(info.st_mode)) return {{}, NOT_PLAIN};

    FileBytes result;
    std::array<char, BLOCK> block{};
    while (result.bytes.size() < limit) {
        const ssize_t got =
            ::read(file.get(), block.data(), std::min(block.size(), limit - result.bytes.size()));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failed();
        if (got == 0) break;
        result.bytes.append(block.data(), static_cast<std::size_t>(got));
    }
    return result;
}

bool is_plain_file(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace gw::psres
