// SPDX-License-Identifier: MIT
//
// The only operation of a directory that runs a command. It is not in the same file as the others because the
// core knows nothing of the host.
#include <string_view>

#include "core/gw_dir.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"

int GW_DIR::make_upr_file(int rescan_all, const char* work_dir) const {
    const std::string_view dir = work_dir != nullptr ? work_dir : get_path();
    // Kept: the old resource file is removed even when no new one can be made.
    gw::run_shell("cd %s; rm -rf %s %s~", {dir, gw::UPR_FILE_NAME, gw::UPR_FILE_NAME});
    gw::run_shell(rescan_all != 0 ? "cd %s; makepsres -q -o %s %s" : "cd %s; makepsres -nr -q -o %s %s",
                  {dir, gw::UPR_FILE_NAME, get_path()});
    return 1;
}
