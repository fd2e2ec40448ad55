// SPDX-License-Identifier: MIT
#include "diagnosis/find_surroundings.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "core/rights.h"
#include "core/text.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 14> EXTENSIONS = {".pcf", ".pcf.gz", ".pcf.Z", ".pcf.bz2", ".snf",
                                                         ".bdf", ".bdf.gz", ".pfa",   ".pfb",     ".ttf",
                                                         ".ttc", ".otf",    ".otc",   ".spd"};

bool is_for_fonts(const std::string& file_name) {
    return file_name == FONT_INDEX_NAME ||
           std::find(EXTENSIONS.begin(), EXTENSIONS.end(), font_extension(file_name)) != EXTENSIONS.end();
}

/// What is in one directory: whether it has fonts, and the directories below it, in the order of their names.
struct Content {
    bool has_fonts = false;
    std::vector<fs::path> below;
};

Content content_of(const fs::path& directory) {
    Content content;
    std::error_code error;
    for (fs::directory_iterator entry(directory, fs::directory_options::skip_permission_denied, error), end;
         !error && entry != end; entry.increment(error)) {
        std::error_code gone;
        const std::string name = entry->path().filename().string();
        if (fs::is_directory(entry->symlink_status(gone))) {
            if (!name.starts_with('.')) content.below.push_back(entry->path());
        } else if (is_for_fonts(name)) {
            content.has_fonts = true;
        }
    }
    std::sort(content.below.begin(), content.below.end());
    return content;
}

void add_with_fonts(const fs::path& directory, int depth, std::size_t& looked_at,
                    std::vector<std::string>& found) {
    if (depth > DEEPEST_DIRECTORY || looked_at >= MOST_DIRECTORIES || is_silent(directory.string())) return;
    ++looked_at;
    const Content content = content_of(directory);
    if (content.has_fonts) found.push_back(with_trailing_slash(directory.string()));
    for (const fs::path& below : content.below) add_with_fonts(below, depth + 1, looked_at, found);
}

std::vector<std::string> configured_path() {
    GWFontPath paths(INSTALLATION_ROOT);
    unsigned int count = 0;
    std::vector<std::string> elements;
    for (const GW_STRING* element : *paths.get_fpe_list(GWFontPath::ALL_FP, count))
        elements.emplace_back(element->get_str());
    return elements;
}

std::vector<std::string> usual_roots(const std::string& home) {
    std::vector<std::string> roots = {HOST_FONTS, HOST_LOCAL_FONTS, SYSTEM_FONT_DIR};
    if (home.empty()) return roots;
    for (const char* own : {USER_FONTS, USER_HIDDEN_FONTS, DEFAULT_INSTALL_DIR}) roots.push_back(home + own);
    return roots;
}

void leave_out(std::vector<std::string>& directories, const std::vector<std::string>& path) {
    std::vector<std::string> known;
    known.reserve(path.size());
    for (const std::string& directory : font_directories(path))
        known.push_back(with_trailing_slash(directory));
    std::erase_if(directories, [&](const std::string& directory) {
        return std::find(known.begin(), known.end(), directory) != known.end();
    });
}

}  // namespace

std::vector<std::string> directories_with_fonts(const std::vector<std::string>& roots) {
    std::vector<std::string> found;
    std::size_t looked_at = 0;
    for (const std::string& root : roots) {
        std::error_code gone;
        if (fs::is_directory(root, gone)) add_with_fonts(without_trailing_slashes(root), 0, looked_at, found);
    }
    return found;
}

Surroundings find_surroundings() {
    Surroundings surroundings;
    const char* home = std::getenv("HOME");
    if (home != nullptr) surroundings.home = without_trailing_slashes(home);
    surroundings.user = ::geteuid();
    surroundings.configured = configured_path();
    surroundings.other_directories = directories_with_fonts(usual_roots(surroundings.home));
    leave_out(surroundings.other_directories, surroundings.configured);
    if (is_superuser(surroundings.user)) {
        surroundings.own_fonts = SUPERUSER_FONT_DIR;
    } else if (home != nullptr) {
        surroundings.own_fonts = surroundings.home + DEFAULT_INSTALL_DIR + '/';
    }
    const char* locale = std::setlocale(LC_CTYPE, nullptr);
    surroundings.locale = locale != nullptr ? locale : "C";
    return surroundings;
}

}  // namespace gw::diagnosis
