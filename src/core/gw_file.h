// SPDX-License-Identifier: MIT
//
// A file that can be opened and read or written, by lines or by bytes, with standard I/O.
#pragma once

#include <cstdio>
#include <memory>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "core/gw_file_spec.h"

class GW_FILE : public GW_FILE_SPEC {
  public:
    /// A closed file of unknown extension (7).
    GW_FILE(const char* name, const char* dir, int file_type);
    explicit GW_FILE(const GW_FILE_SPEC* spec);
    virtual ~GW_FILE() = default;

    /// Opens the file with an `fopen` mode. Returns 1, or 0 when it is open already (and stays so) or cannot
    /// be opened. A file opened for writing or appending ("w", "a") gets the permissions 0644, whatever the
    /// umask.
    int open(const char* mode);
    int close();
    [[nodiscard]] bool is_open() const { return fp != nullptr; }

    /// `fseek`. Kept: removing, seeking and copying always return 1.
    int seek(long offset, int whence);
    /// The position in bytes from the start; -1 when the file is closed.
    [[nodiscard]] long get_pos() const;
    int file_flush();

    /// Whether a copy of the file, which is open for reading, may be made that everybody may read: see
    /// `gw::may_be_given_to_all`.
    [[nodiscard]] const gw::Outcome& may_be_copied() const { return copying; }

    /// Reads up to `n` bytes; returns the count read, 0 at the end of the file or when it is closed.
    int read(char* buf, int n);
    /// The file is read to its end, so the system is asked for larger pieces. Before the first `read`.
    void read_far_ahead();
    /// The first failure of opening, reading or writing since the last call of `open`; a success when there
    /// was none. The end of the file is not a failure.
    [[nodiscard]] gw::Outcome outcome() const;
    /// Writes and flushes `n` bytes; returns the count written, 0 when the file is closed.
    int write(const char* buf, int n);

    /// Reads up to `size - 1` bytes, up to and with a newline, and terminates them; null at the end of the
    /// file.
    virtual char* get_line(char* buf, int size);
    /// Writes `text` as it is; it must include the newline. Returns 1, or 0 when it could not be written.
    int put_line(const char* text);
    /// `get_line` from byte offset `pos`.
    char* get_line_at_pos(char* buf, int size, long pos);
    /// Writes and flushes `text` at byte offset `pos`; returns the offset after it.
    long put_line_at_pos(const char* text, long pos);

  private:
    struct Closer {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };
    /// Remembers the first failure; the second form takes it from `errno`.
    void note(const gw::Failure& failure);
    void note_error();
    std::FILE* opened(const char* mode);
    gw::Result<gw::Descriptor> open_for_reading();

    std::vector<char> ahead;  // the stream's own buffer, which outlives it
    std::unique_ptr<std::FILE, Closer> fp;
    gw::Outcome failed;
    gw::Outcome copying;
};
