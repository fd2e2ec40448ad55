// SPDX-License-Identifier: MIT
#include "core/gw_buf_file.h"

#include <cstring>

#include "core/gw_dir.h"

int GW_BUF_FILE::copy(GW_DIR* target) {
    if (std::strcmp(get_dir(), target->get_path()) == 0) return 1;
    if (open("r") == 0) return 1;
    GW_FILE destination(get_name(), target->get_path(), gw::FILE_TYPE_REGULAR);
    destination.open("w+");
    while (const int got = read(buffer.data(), static_cast<int>(buffer.size())))
        destination.write(buffer.data(), got);
    close();
    return 1;
}
