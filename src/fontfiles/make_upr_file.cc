// SPDX-License-Identifier: MIT
//
// The only operation of a directory that runs a command. It is not in the same file as the others because the
// core knows nothing of the host.
#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "core/directory.h"
#include "core/file_calls.h"
#include "core/gw_dir.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"

namespace {

// Kept: the old resource file is removed even when no new one can be made.
void remove_old_files(const gw::Directory& dir) {
    for (const std::string& name : {std::string(gw::UPR_FILE_NAME), std::string(gw::UPR_FILE_NAME) + '~'})
        (void)gw::file_calls().unlink(dir.fd(), name.c_str(), 0);
}

/// The directory as commands find it, whatever is at its path by then.
class InheritedDirectory {
  public:
    explicit InheritedDirectory(const gw::Directory& dir)
        : fd_(::fcntl(dir.fd(), F_DUPFD, STDERR_FILENO + 1)) {}
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(fd_.get()); }

  private:
    gw::Descriptor fd_;
};

}  // namespace

int GW_DIR::make_upr_file(int rescan_all, const char* work_dir) const {
    const gw::Result<gw::Directory> dir = gw::Directory::open(work_dir != nullptr ? work_dir : get_path());
    if (!dir) {
        gw::tell(dir.failure());
        return 1;
    }
    remove_old_files(*dir);
    const InheritedDirectory place(*dir);
    const gw::Outcome made = gw::run_command(
        rescan_all != 0 ? "cd %s && makepsres -q -o %s %s" : "cd %s && makepsres -nr -q -o %s %s",
        {place.path(), gw::UPR_FILE_NAME, get_path()}, gw::LONG_WORK);
    if (made) return 1;
    gw::Failure failure = made.failure();
    failure.subject = dir->path_of(gw::UPR_FILE_NAME);
    gw::tell(failure);
    return 1;
}
