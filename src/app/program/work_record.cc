// SPDX-License-Identifier: MIT
#include "app/program/work_record.h"

WorkRecord the_wp_cl_data;

void forbid_other_work() {
    gw::work_permissions().emit(false);
}

void permit_other_work() {
    gw::work_permissions().emit(true);
}

namespace gw {

Signal<bool>& work_permissions() {
    static Signal<bool> permissions;
    return permissions;
}

}  // namespace gw
