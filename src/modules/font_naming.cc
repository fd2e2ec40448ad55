// SPDX-License-Identifier: MIT
//
// The file is looked at through a link in a new directory, in which it is the only font.
#include "modules/font_naming.h"

#include <filesystem>
#include <system_error>

#include "core/gw_dir.h"
#include "modules/font_modules.h"
#include "modules/index_access.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

std::optional<std::string> line_of_font_file(const std::string& dir, const std::string& name) {
    const ShortLivedDirectory alone;
    if (alone.path().empty() || name.find('/') != std::string::npos) return std::nullopt;
    std::error_code failed;
    std::filesystem::create_symlink(std::filesystem::path(dir) / name,
                                    std::filesystem::path(alone.path()) / name, failed);
    if (failed) return std::nullopt;
    // It names bitmap fonts; the names of outlines are in their headers.
    tell_unless_done(run_command("mkfontdir %s", {alone.path()}, MOMENTS));
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
