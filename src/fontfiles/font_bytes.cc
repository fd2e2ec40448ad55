// SPDX-License-Identifier: MIT
#include "fontfiles/font_bytes.h"

#include <archive.h>
#include <archive_entry.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include "fontfiles/time_limit.h"

namespace gw {

namespace {

constexpr std::size_t WINDOW = 16384;
constexpr std::size_t BLOCK = 65536;
constexpr double UNPACKING_SECONDS = 1.0;

struct Compression {
    std::string_view beginning;
    int (*support)(archive* reader);
};
constexpr std::array<Compression, 3> COMPRESSIONS = {{
    {"\x1f\x8b", &archive_read_support_filter_gzip},
    {"\x1f\x9d", &archive_read_support_filter_compress},
    {"BZh", &archive_read_support_filter_bzip2},
}};

/// How the bytes are compressed; null when they are not.
const Compression* compression_of(std::string_view bytes) {
    const auto found = std::find_if(COMPRESSIONS.begin(), COMPRESSIONS.end(),
                                    [&](const Compression& one) { return bytes.starts_with(one.beginning); });
    return found == COMPRESSIONS.end() ? nullptr : found;
}

/// Reads until the bytes are there or the file ends.
std::size_t read_at(int fd, std::size_t offset, char* buffer, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = ::pread(fd, buffer + done, count - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

struct CloseArchive {
    void operator()(archive* reader) const { archive_read_free(reader); }
};
using Archive = std::unique_ptr<archive, CloseArchive>;

/// A reader of a file that is compressed like this; null when it is not.
Archive archive_of(int fd, const Compression& compression) {
    Archive reader(archive_read_new());
    archive_entry* entry = nullptr;
    const bool is_open = reader != nullptr && compression.support(reader.get()) == ARCHIVE_OK &&
                         archive_read_support_format_raw(reader.get()) == ARCHIVE_OK &&
                         archive_read_open_fd(reader.get(), fd, BLOCK) == ARCHIVE_OK &&
                         archive_read_next_header(reader.get(), &entry) == ARCHIVE_OK;
    return is_open ? std::move(reader) : nullptr;
}

// The file itself counts as one. libarchive unpacks what is packed several times, up to 25 times.
constexpr int PACKED_ONCE = 2;

/// Doubles the room, but never beyond the limit.
void make_room(std::string& bytes, std::size_t needed) {
    if (needed <= bytes.capacity()) return;
    bytes.reserve(std::max(needed, std::min(2 * bytes.capacity(), FontBytes::UNPACKED_LIMIT)));
}

}  // namespace

Result<FontBytes> FontBytes::open(const std::string& path) {
    Result<ReadableFile> file = open_to_read(path);
    if (!file) return file.failure();
    struct stat info = {};
    if (::fstat(file->fd.get(), &info) != 0) return Failure::of_system(path, errno);
    FontBytes bytes(path, std::move(file->fd));
    bytes.size_ = static_cast<std::size_t>(info.st_size);
    bytes.look_at(0);
    if (bytes.window_.empty() && bytes.size_ != 0) return Failure::of_system(path, errno);
    if (const Compression* compression = compression_of(bytes.window_)) {
        if (Outcome unpacked = bytes.unpack(archive_of(bytes.fd_.get(), *compression).get()); !unpacked)
            return unpacked.failure();
    }
    return bytes;
}

Outcome FontBytes::unpack(archive* reader) {
    if (reader == nullptr) return Failure{path_, Reason::NOT_UNPACKED};
    const int filters = archive_filter_count(reader);
    if (filters != PACKED_ONCE)
        return Failure{path_, filters > PACKED_ONCE ? Reason::NOT_A_FONT : Reason::NOT_UNPACKED};
    window_.clear();
    char block[BLOCK];
    for (const TimeLimit limit(UNPACKING_SECONDS); !limit.is_over();) {
        const la_ssize_t got = archive_read_data(reader, block, sizeof block);
        if (got < 0) return Failure{path_, Reason::NOT_UNPACKED};
        if (got == 0) return take_unpacked();
        const auto count = static_cast<std::size_t>(got);
        if (count > UNPACKED_LIMIT - window_.size()) {
            return Failure{.subject = path_,
                           .reason = Reason::TOO_LARGE_UNPACKED,
                           .detail = std::to_string(UNPACKED_LIMIT / 1024 / 1024)};
        }
        make_room(window_, window_.size() + count);
        window_.append(block, count);
    }
    return Failure{path_, Reason::TAKES_TOO_LONG};
}

Outcome FontBytes::take_unpacked() {
    size_ = window_.size();
    was_compressed_ = true;
    fd_.close();
    return done();
}

void FontBytes::look_at(std::size_t offset) const {
    window_.resize(WINDOW);
    window_.resize(read_at(fd_.get(), offset, window_.data(), WINDOW));
    window_start_ = offset;
}

std::size_t FontBytes::read(std::size_t offset, void* buffer, std::size_t count) const {
    if (offset >= size_) return 0;
    count = std::min(count, size_ - offset);
    if (!was_compressed_ && count > WINDOW)
        return read_at(fd_.get(), offset, static_cast<char*>(buffer), count);
    std::size_t done = 0;
    while (done < count) {
        const std::size_t here = offset + done;
        if (here < window_start_ || here - window_start_ >= window_.size()) {
            if (was_compressed_) break;
            look_at(here);
            if (window_.empty()) break;
        }
        const auto start = here - window_start_;
        const std::size_t some = std::min(count - done, window_.size() - start);
        std::memcpy(static_cast<char*>(buffer) + done, window_.data() + start, some);
        done += some;
    }
    return done;
}

std::string FontBytes::part(std::size_t offset, std::size_t count) const {
    if (offset >= size_) return "";
    std::string bytes(std::min(count, size_ - offset), '\0');
    bytes.resize(read(offset, bytes.data(), bytes.size()));
    return bytes;
}

}  // namespace gw
