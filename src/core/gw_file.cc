// SPDX-License-Identifier: MIT
#include "core/gw_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "core/directory.h"

namespace {

constexpr int NOT_REGULAR = -1;  // in the place of an `errno`

int flags_of(const char* mode) {
    switch (*mode) {
        case 'w':
            return O_CREAT | O_TRUNC | (std::strchr(mode, '+') != nullptr ? O_RDWR : O_WRONLY);
        case 'a':
            return O_CREAT | O_APPEND | (std::strchr(mode, '+') != nullptr ? O_RDWR : O_WRONLY);
        default:
            return std::strchr(mode, '+') != nullptr ? O_RDWR : O_RDONLY;
    }
}

/// As `fopen`, but without waiting for the other end of a pipe. Only a regular file of an ordinary size is
/// opened; `error` says why not.
std::FILE* open_regular(const char* path, const char* mode, int& error) {
    constexpr mode_t ANYBODY_BEFORE_UMASK = 0666;
    gw::Descriptor file(::open(path, flags_of(mode) | O_NONBLOCK | O_CLOEXEC, ANYBODY_BEFORE_UMASK));
    struct stat info = {};
    if (!file.is_open() || ::fstat(file.get(), &info) != 0) {
        error = errno;
    } else if (!S_ISREG(info.st_mode)) {
        error = S_ISDIR(info.st_mode) ? EISDIR : NOT_REGULAR;
    } else if (info.st_size > gw::Directory::FILE_LIMIT) {
        error = EFBIG;
    }
    if (error != 0) return nullptr;
    std::FILE* opened = ::fdopen(file.get(), mode);
    if (opened != nullptr) file.release();
    return opened;
}

}  // namespace

GW_FILE::GW_FILE(const char* file_name, const char* file_dir, int type)
    : GW_FILE_SPEC(file_name, file_dir, type, gw::EXT_UNKNOWN) {}

GW_FILE::GW_FILE(const GW_FILE_SPEC* spec) : GW_FILE_SPEC(spec) {}

int GW_FILE::open(const char* mode) {
    if (fp) return 0;
    error = 0;
    fp.reset(open_regular(get_path(), mode, error));
    if (!fp) {
        if (error == 0) note_error();
        return 0;
    }
    if (std::strpbrk(mode, "aw") != nullptr)
        ::fchmod(::fileno(fp.get()), S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
    return 1;
}

void GW_FILE::note_error() {
    if (error == 0) error = errno;
}

gw::Outcome GW_FILE::outcome() const {
    if (error == 0) return gw::done();
    if (error == NOT_REGULAR) return gw::Failure{get_path(), gw::Reason::NOT_A_FILE};
    return gw::Failure::of_system(get_path(), error);
}

int GW_FILE::close() {
    fp.reset();
    return 1;
}

int GW_FILE::seek(long offset, int whence) {
    if (fp) std::fseek(fp.get(), offset, whence);
    return 1;
}

long GW_FILE::get_pos() const {
    return fp ? std::ftell(fp.get()) : -1;
}

int GW_FILE::file_flush() {
    return fp ? std::fflush(fp.get()) : EOF;
}

int GW_FILE::read(char* buf, int n) {
    if (!fp || n <= 0) return 0;
    const std::size_t got = std::fread(buf, 1, static_cast<std::size_t>(n), fp.get());
    if (std::ferror(fp.get()) != 0) note_error();
    return static_cast<int>(got);
}

int GW_FILE::write(const char* buf, int n) {
    if (!fp || n <= 0) return 0;
    const auto written = static_cast<int>(std::fwrite(buf, 1, static_cast<std::size_t>(n), fp.get()));
    // A block that the disk has no room for is found here, not at the end of the process.
    const bool flushed = written == 0 || std::fflush(fp.get()) == 0;
    if (written != n || !flushed) note_error();
    return flushed ? written : 0;
}

char* GW_FILE::get_line(char* buf, int size) {
    return fp ? std::fgets(buf, size, fp.get()) : nullptr;
}

int GW_FILE::put_line(const char* text) {
    return fp && std::fputs(text, fp.get()) >= 0 ? 1 : 0;
}

char* GW_FILE::get_line_at_pos(char* buf, int size, long pos) {
    seek(pos, SEEK_SET);
    return get_line(buf, size);
}

long GW_FILE::put_line_at_pos(const char* text, long pos) {
    seek(pos, SEEK_SET);
    put_line(text);
    file_flush();
    return pos + static_cast<long>(std::strlen(text));
}
