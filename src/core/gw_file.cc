// SPDX-License-Identifier: MIT
#include "core/gw_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "core/directory.h"

namespace {

constexpr mode_t ANYBODY_BEFORE_UMASK = 0666;

int writing_flags(const char* mode) {
    const int access = std::strchr(mode, '+') != nullptr ? O_RDWR : O_WRONLY;
    if (*mode == 'w') return access | O_CREAT | O_TRUNC;
    return *mode == 'a' ? access | O_CREAT | O_APPEND : access;
}

/// Only a regular file is written: a pipe would wait for a reader, a device would do anything.
gw::Result<gw::Descriptor> open_to_write(const std::string& path, const char* mode) {
    gw::Descriptor file(
        ::open(path.c_str(), writing_flags(mode) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, ANYBODY_BEFORE_UMASK));
    struct stat info = {};
    if (!file.is_open() || ::fstat(file.get(), &info) != 0) return gw::Failure::of_system(path, errno);
    if (!S_ISREG(info.st_mode)) return gw::Failure{path, gw::Reason::NOT_A_FILE};
    return file;
}

}  // namespace

GW_FILE::GW_FILE(const char* file_name, const char* file_dir, int type)
    : GW_FILE_SPEC(file_name, file_dir, type, gw::EXT_UNKNOWN) {}

GW_FILE::GW_FILE(const GW_FILE_SPEC* spec) : GW_FILE_SPEC(spec) {}

int GW_FILE::open(const char* mode) {
    if (fp) return 0;
    failed = gw::done();
    fp.reset(opened(mode));
    if (!fp) return 0;
    if (std::strpbrk(mode, "aw") != nullptr)
        ::fchmod(::fileno(fp.get()), S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
    return 1;
}

std::FILE* GW_FILE::opened(const char* mode) {
    gw::Result<gw::Descriptor> file =
        std::strcmp(mode, "r") == 0 ? open_for_reading() : open_to_write(get_path(), mode);
    if (!file) {
        note(file.failure());
        return nullptr;
    }
    std::FILE* stream = ::fdopen(file->get(), mode);
    if (stream == nullptr) {
        note_error();
    } else {
        file->release();
    }
    return stream;
}

gw::Result<gw::Descriptor> GW_FILE::open_for_reading() {
    gw::Result<gw::ReadableFile> file = gw::open_to_read(get_path());
    if (!file) return file.failure();
    copying = gw::may_be_given_to_all(*file, get_path());
    return std::move(file->fd);
}

void GW_FILE::note(const gw::Failure& failure) {
    if (failed) failed = failure;
}

void GW_FILE::note_error() {
    note(gw::Failure::of_system(get_path(), errno));
}

gw::Outcome GW_FILE::outcome() const {
    return failed;
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

void GW_FILE::read_far_ahead() {
    constexpr std::size_t PIECE = 65536;
    if (!fp) return;
    ahead.resize(PIECE);
    std::setvbuf(fp.get(), ahead.data(), _IOFBF, ahead.size());
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
