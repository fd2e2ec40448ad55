// SPDX-License-Identifier: MIT
#include "glyphward-fonts/destination.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "core/gw_dir.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

#include "glyphward-fonts/host.h"

namespace gw::fonts {

namespace fs = std::filesystem;

std::string directory_of(Destination destination, const std::string& directory) {
    switch (destination) {
        case Destination::EVERYONE:
            return SUPERUSER_FONT_DIR;
        case Destination::DIRECTORY: {
            std::error_code error;
            return with_trailing_slash(fs::absolute(directory, error).lexically_normal().string());
        }
        case Destination::ME:
            break;
    }
    if (runs_as_superuser()) return SUPERUSER_FONT_DIR;
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') return "";
    return std::string(without_trailing_slashes(home)) + DEFAULT_INSTALL_DIR + '/';
}

Outcome prepare(const std::string& directory, bool dry_run, MadeDirectories& made) {
    if (directory.find(',') != std::string::npos) return Failure{directory, Reason::COMMA_IN_NAME};
    struct stat info = {};
    if (::stat(directory.c_str(), &info) == 0)
        return ::access(directory.c_str(), W_OK) == 0 ? done() : Failure::of_system(directory, errno);
    std::error_code error;
    fs::path parent = fs::path(without_trailing_slashes(directory)).parent_path();
    if (directory == SUPERUSER_FONT_DIR && !fs::exists(parent, error)) parent = parent.parent_path();
    if (dry_run) return ::access(parent.c_str(), W_OK) == 0 ? done() : Failure::of_system(directory, errno);
    // Everyone's directory is in one of ours, which a new machine does not have.
    if (directory == SUPERUSER_FONT_DIR) (void)made.make(HOST_DIR);
    return made.make(directory);
}

FontAction::Maker maker_of(const std::string& directory, MadeDirectories& made) {
    return [directory, &made](const std::string& missing) {
        const bool is_it = with_trailing_slash(missing) == with_trailing_slash(directory);
        return is_it ? prepare(directory, false, made) : Outcome(Failure::of_system(missing, ENOENT));
    };
}

void renew_resource_file(const std::string& directory) {
    if (!runs_as_superuser()) GW_DIR(directory.c_str()).make_upr_file(0, nullptr);
}

bool is_on_path(const std::string& directory) {
    const std::vector<std::string> path = elements_of(GWFontPath::ALL_FP);
    return std::any_of(path.begin(), path.end(),
                       [&](const std::string& element) { return stands_for(element, directory); });
}

GWFontPath::TYPE path_for_destinations() {
    if (!runs_as_superuser()) return GWFontPath::USER_APPEND_FP;
    // The superuser's fonts are everybody's.
    const bool has_host = !elements_of(GWFontPath::HOST_FP).empty();
    return has_host ? GWFontPath::HOST_FP : GWFontPath::INSTALLATION_FP;
}

void put_in_force(const std::string& directory, Report& report) {
    renew_resource_file(directory);
    if (!is_on_path(directory)) {
        const GWFontPath::TYPE list = path_for_destinations();
        std::vector<std::string> elements = elements_of(list);
        elements.push_back(directory);
        if (const Outcome added = store_elements(list, elements); !added)
            report.trouble(added.failure().with(Sequel::NOT_LISTED_NEXT_TIME, directory));
    }
    tell_server(directory, report);
}

}  // namespace gw::fonts
