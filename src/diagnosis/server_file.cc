// SPDX-License-Identifier: MIT
#include "diagnosis/server_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "core/directory.h"
#include "fontfiles/font_face.h"
#include "fontfiles/whole_font.h"

namespace gw::diagnosis {

namespace {

constexpr std::string_view GZIP = "\x1f\x8b";
constexpr std::string_view COMPRESS = "\x1f\x9d";

/// The first two bytes; fewer when there are no more.
std::string first_bytes(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<char, 2> bytes = {};
    const ssize_t size = file.is_open() ? ::read(file.get(), bytes.data(), bytes.size()) : 0;
    return {bytes.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
}

/// Whether the server gets at the bytes inside. The letters of the ending count, large or small.
FileOpening unpack(const std::string& path) {
    const bool is_packed = path.ends_with(".gz") || path.ends_with(".Z");
    const std::string start = first_bytes(path);
    if (is_packed && start != (path.ends_with(".gz") ? GZIP : COMPRESS)) return FileOpening::NOT_OPENED;
    const bool looks_packed = start == GZIP || start == COMPRESS || start == "BZ";
    if (!is_packed && looks_packed && !path.ends_with(".bz2")) return FileOpening::DAMAGED;
    return FileOpening::OPENED;
}

}  // namespace

FileOpening open_bitmap_file(const std::string& path) {
    if (const FileOpening unpacked = unpack(path); unpacked != FileOpening::OPENED) return unpacked;
    Result<FontBytes> opened = FontBytes::open(path);
    if (!opened) return FileOpening::DAMAGED;
    const auto bytes = std::make_shared<const FontBytes>(std::move(*opened));
    if (!is_whole(*bytes)) return FileOpening::DAMAGED;
    const Result<FontFace> font = FontFace::open(bytes);
    if (!font) return FileOpening::DAMAGED;
    const FontFormat format = font->facts().format;
    const bool is_bitmap = format == FontFormat::PCF || format == FontFormat::BDF;
    return is_bitmap ? FileOpening::OPENED : FileOpening::DAMAGED;
}

FileOpening open_outline_file(const std::string& path, int face) {
    const Result<FontFace> font = FontFace::open(path, face);
    if (!font) return FileOpening::NOT_OPENED;
    const FontFormat format = font->facts().format;
    const bool is_for_servers = format != FontFormat::OPENTYPE_CFF && format != FontFormat::OTHER;
    return is_for_servers ? FileOpening::OPENED : FileOpening::NOT_OPENED;
}

}  // namespace gw::diagnosis
