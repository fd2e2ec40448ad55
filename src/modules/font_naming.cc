// SPDX-License-Identifier: MIT
//
// The file is looked at through a link in a new directory, in which it is the only font.
#include "modules/font_naming.h"

#include <stdlib.h>  // mkdtemp

#include <filesystem>
#include <system_error>

#include "core/gw_dir.h"
#include "modules/font_modules.h"
#include "modules/index_access.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

/// A directory of our own, with nothing in it, for a short time.
class ShortLivedDirectory {
  public:
    // Of a run that is killed meanwhile, the next start removes it.
    ShortLivedDirectory() : path_(SCRATCH_PRIVATE) {
        if (::mkdtemp(path_.data()) == nullptr) path_.clear();
    }
    ~ShortLivedDirectory() {
        std::error_code failed;
        if (!path_.empty()) std::filesystem::remove_all(path_, failed);
    }
    ShortLivedDirectory(const ShortLivedDirectory&) = delete;
    ShortLivedDirectory& operator=(const ShortLivedDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace

std::optional<std::string> line_of_font_file(const std::string& dir, const std::string& name) {
    const ShortLivedDirectory alone;
    if (alone.path().empty() || name.find('/') != std::string::npos) return std::nullopt;
    std::error_code failed;
    std::filesystem::create_symlink(std::filesystem::path(dir) / name,
                                    std::filesystem::path(alone.path()) / name, failed);
    if (failed) return std::nullopt;
    // It names bitmap fonts; the names of outlines are in their headers.
    run_shell("mkfontdir %s", {alone.path()});
    GW_FSM_LIST modules;
    append_font_modules(modules);
    GW_DIR fonts(alone.path().c_str());
    GW_LIST<GWFont> found;
    const ElementsOwner owner(found);
    modules.make_font_list(found, &fonts, 0);
    if (found.is_empty()) return std::nullopt;
    const Result<std::string> line = index_line(*found.get_first(), name);
    return line ? std::optional(*line) : std::nullopt;
}

}  // namespace gw
