// SPDX-License-Identifier: MIT
//
// The bytes of a font file, for whoever looks inside it. A compressed file (gzip, compress, bzip2: its
// content decides, not its name) is unpacked into memory. Any other file is read on demand, so that its size
// costs nothing.
#pragma once

#include <string>

#include "core/directory.h"

struct archive;

namespace gw {

class FontBytes {
  public:
    /// Opens the file as `open_to_read` does. A compressed file fails also if it is damaged
    /// (`Reason::NOT_UNPACKED`), larger than `UNPACKED_LIMIT` (`TOO_LARGE_UNPACKED`), slow to unpack
    /// (`TAKES_TOO_LONG`), or compressed several times (`NOT_A_FONT`).
    static Result<FontBytes> open(const std::string& path);

    /// What a compressed file may have inside.
    static constexpr std::size_t UNPACKED_LIMIT = 64UL * 1024 * 1024;

    /// The size of the font, in bytes: after it has been unpacked.
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool was_compressed() const { return was_compressed_; }
    /// The path that it was opened by; only for messages.
    [[nodiscard]] const std::string& path() const { return path_; }

    /// Copies `count` bytes from `offset` on into `buffer`. Returns how many were copied, which is less at
    /// the end of the font and when the disk fails.
    std::size_t read(std::size_t offset, void* buffer, std::size_t count) const;
    /// The same as a string.
    [[nodiscard]] std::string part(std::size_t offset, std::size_t count) const;

  private:
    FontBytes(std::string path, Descriptor fd) : path_(std::move(path)), fd_(std::move(fd)) {}

    Outcome unpack(archive* reader);
    Outcome take_unpacked();
    void look_at(std::size_t offset) const;

    std::string path_;
    Descriptor fd_;
    std::size_t size_ = 0;
    bool was_compressed_ = false;
    /// A compressed font completely; of any other font what was read last, from `window_start_` on.
    mutable std::string window_;
    mutable std::size_t window_start_ = 0;
};

}  // namespace gw
