// SPDX-License-Identifier: MIT
#include "core/gw_buf_file.h"

#include "core/gw_dir.h"
#include "core/long_work.h"
#include "core/new_file.h"

int GW_BUF_FILE::copy(GW_DIR* target) {
    if (is_in_directory(target->get_path())) return 1;
    gw::NewFile destination(std::string(target->get_path()) + get_name());
    if (copy_into(destination) && destination.put_in_place()) destination.keep();
    return 1;
}

gw::Outcome GW_BUF_FILE::copy_into(gw::FileWriter& copy) {
    if (open("r") == 0) return outcome();
    if (gw::Outcome allowed = may_be_copied(); !allowed) {
        close();
        return allowed;
    }
    read_far_ahead();
    bool going_well = true;
    while (const int got = going_well ? read(buffer.data(), static_cast<int>(buffer.size())) : 0)
        going_well = !gw::is_given_up() && copy.gather({buffer.data(), static_cast<std::size_t>(got)});
    close();
    if (gw::is_given_up()) return gw::Failure{get_path(), gw::Reason::GIVEN_UP};
    return outcome() ? copy.finish() : outcome();
}
