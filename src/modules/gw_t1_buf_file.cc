// SPDX-License-Identifier: MIT
#include "modules/gw_t1_buf_file.h"

#include <algorithm>
#include <cstring>

#include "core/gw_dir.h"

int GW_T1_BUF_FILE::copy(GW_DIR* dest) {
    if (std::strcmp(get_dir(), dest->get_path()) == 0) return 1;
    if (open("r") == 0) return 1;
    GW_FILE target(get_name(), dest->get_path(), gw::FILE_TYPE_REGULAR);
    target.open("w+");

    int got = read(block.data(), BLOCK_SIZE);
    block[static_cast<std::size_t>(got)] = '\0';
    const char* end = block.data() + got;
    const char* text = std::find(static_cast<const char*>(block.data()), end, '%');
    // The byte behind the block goes along: readers of installed fonts take it for white space.
    target.write(text, static_cast<int>(end - text) + 1);

    while ((got = read(block.data(), BLOCK_SIZE)) > 0) {
        std::replace(block.data(), block.data() + got, '\r', '\n');
        target.write(block.data(), got);
    }
    close();
    return 1;
}
