// SPDX-License-Identifier: MIT
#include "modules/gw_t1_buf_file.h"

#include <algorithm>

#include "core/gw_dir.h"
#include "core/long_work.h"
#include "core/new_file.h"

int GW_T1_BUF_FILE::copy(GW_DIR* dest) {
    if (is_in_directory(dest->get_path())) return 1;
    gw::NewFile target(std::string(dest->get_path()) + get_name());
    if (copy_into(target) && target.put_in_place()) target.keep();
    return 1;
}

gw::Outcome GW_T1_BUF_FILE::copy_into(gw::FileWriter& copy) {
    if (open("r") == 0) return outcome();
    if (gw::Outcome allowed = may_be_copied(); !allowed) {
        close();
        return allowed;
    }
    read_far_ahead();
    int got = read(block.data(), BLOCK_SIZE);
    block[static_cast<std::size_t>(got)] = '\0';
    const char* end = block.data() + got;
    const char* text = std::find(static_cast<const char*>(block.data()), end, '%');
    // The byte after the block is written too; readers of installed fonts take it for white space.
    bool going_well = copy.gather({text, static_cast<std::size_t>(end - text) + 1});
    while (going_well && !gw::is_given_up() && (got = read(block.data(), BLOCK_SIZE)) > 0) {
        // All of the block, so that the compiler knows how many at a time.
        for (std::size_t i = 0; i < BLOCK_SIZE; ++i) block[i] = block[i] == '\r' ? '\n' : block[i];
        going_well = copy.gather({block.data(), static_cast<std::size_t>(got)});
    }
    close();
    if (gw::is_given_up()) return gw::Failure{get_path(), gw::Reason::GIVEN_UP};
    return outcome() ? copy.finish() : outcome();
}
