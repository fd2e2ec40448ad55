// SPDX-License-Identifier: MIT
#include "core/gw_buf_file.h"

#include <cerrno>

#include "core/gw_dir.h"

int GW_BUF_FILE::copy(GW_DIR* target) {
    if (is_in_directory(target->get_path())) return 1;
    gw::NewFile destination(std::string(target->get_path()) + get_name());
    if (copy_into(destination) == 0 && destination.put_in_place()) destination.keep();
    return 1;
}

int GW_BUF_FILE::copy_into(gw::NewFile& copy) {
    if (open("r") == 0) return errno;
    bool going_well = true;
    while (const int got = going_well ? read(buffer.data(), static_cast<int>(buffer.size())) : 0)
        going_well = copy.write({buffer.data(), static_cast<std::size_t>(got)});
    const int source_failure = has_failed() ? errno : 0;
    close();
    if (source_failure != 0) return source_failure;
    return copy.finish() ? 0 : copy.error();
}
