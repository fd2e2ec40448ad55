// SPDX-License-Identifier: MIT
#include "drivers/font_tree.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <system_error>
#include <utility>

#include "core/gw_dir.h"
#include "core/gw_fspec_list.h"
#include "core/text.h"
#include "drivers/engine_globals.h"
#include "modules/gw_fsm_list.h"

namespace gw {

namespace {

namespace fs = std::filesystem;

/// By name.
std::vector<std::string> directories_in(const std::string& dir) {
    std::vector<std::string> below;
    std::error_code failed;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::directory_iterator entry(dir, options, failed); !failed && entry != fs::directory_iterator();
         entry.increment(failed)) {
        std::error_code gone;
        if (entry->path().filename().string().starts_with('.') || entry->is_symlink(gone)) continue;
        if (entry->is_directory(gone)) below.push_back(entry->path());
    }
    std::sort(below.begin(), below.end());
    return below;
}

bool has_font_files(const std::string& dir) {
    GW_FSPEC_LIST found;
    const ElementsOwner owner(found);
    GW_DIR place(dir.c_str());
    the_fsm_list.list_font_file_names(found, &place, 0);
    return std::any_of(found.begin(), found.end(),
                       [](const GW_FILE_SPEC* spec) { return spec->get_file_type() == FILE_TYPE_REGULAR; });
}

}  // namespace

FontTree find_font_tree(const std::string& dir, const TreeLimits& limits) {
    const std::string root(without_trailing_slashes(dir));
    FontTree tree{{root.empty() ? "/" : root}};
    std::deque<std::pair<std::string, int>> waiting = {{tree.dirs.front(), 0}};
    std::size_t looked_at = 0;
    while (!waiting.empty()) {
        const auto [next, depth] = std::move(waiting.front());
        waiting.pop_front();
        if (depth > 0 && has_font_files(next)) tree.dirs.push_back(next);
        const std::vector<std::string> below = directories_in(next);
        tree.is_whole = tree.is_whole && (below.empty() || depth < limits.depth);
        if (depth < limits.depth) {
            for (const std::string& one : below) waiting.emplace_back(one, depth + 1);
        }
        if (waiting.empty()) break;
        if (++looked_at >= limits.looked_at || tree.dirs.size() > limits.used) {
            tree.is_whole = false;
            break;
        }
    }
    return tree;
}

}  // namespace gw
