// SPDX-License-Identifier: MIT
//
// The only operation of a directory that runs a command. It is not in the same file as the others because the
// core knows nothing of the host.
#include <string>

#include "core/directory.h"
#include "core/file_calls.h"
#include "core/gw_dir.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"

namespace {

// Kept: the old resource file is removed even when no new one can be made.
void remove_old_files(const std::string& dir) {
    const gw::Result<gw::Directory> opened = gw::Directory::open(dir);
    if (!opened) return;
    for (const std::string& name : {std::string(gw::UPR_FILE_NAME), std::string(gw::UPR_FILE_NAME) + '~'})
        (void)gw::file_calls().unlink(opened->fd(), name.c_str(), 0);
}

}  // namespace

int GW_DIR::make_upr_file(int rescan_all, const char* work_dir) const {
    const std::string dir = work_dir != nullptr ? work_dir : get_path();
    remove_old_files(dir);
    const char* command =
        rescan_all != 0 ? "cd %s && makepsres -q -o %s %s" : "cd %s && makepsres -nr -q -o %s %s";
    gw::tell_unless_done(gw::run_command(command, {dir, gw::UPR_FILE_NAME, get_path()}, gw::LONG_WORK));
    return 1;
}
