// SPDX-License-Identifier: MIT
#include "app/program/shown_list.h"

#include "app/program/program_objects.h"

namespace gw {

ShownList installed_entries() {
    return {the_installed_hrn_list, the_installed_hrn_count, the_alias_list};
}

}  // namespace gw
