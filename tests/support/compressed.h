// SPDX-License-Identifier: MIT
//
// Compressed files for tests.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace gw::test {

/// The bytes, compressed with a filter of libarchive (ARCHIVE_FILTER_GZIP, ..._COMPRESS, ..._BZIP2).
inline std::string compressed(std::string_view bytes, int filter) {
    std::string out(bytes.size() + 65536, '\0');
    std::size_t used = 0;
    archive* writer = archive_write_new();
    archive_entry* entry = archive_entry_new();
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_write_set_bytes_in_last_block(writer, 1);
    const bool is_written =
        archive_write_add_filter(writer, filter) == ARCHIVE_OK &&
        archive_write_set_format_raw(writer) == ARCHIVE_OK &&
        archive_write_open_memory(writer, out.data(), out.size(), &used) == ARCHIVE_OK &&
        archive_write_header(writer, entry) == ARCHIVE_OK &&
        archive_write_data(writer, bytes.data(), bytes.size()) == static_cast<la_ssize_t>(bytes.size()) &&
        archive_write_close(writer) == ARCHIVE_OK;
    archive_entry_free(entry);
    archive_write_free(writer);
    if (!is_written) throw std::runtime_error("the test could not compress a file");
    out.resize(used);
    return out;
}

inline std::string gzipped(std::string_view bytes) {
    return compressed(bytes, ARCHIVE_FILTER_GZIP);
}

}  // namespace gw::test
