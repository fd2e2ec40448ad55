// SPDX-License-Identifier: MIT
#include "glyphward-fonts/sources.h"

#include <cerrno>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

#include "core/text.h"
#include "drivers/engine_globals.h"
#include "modules/gw_fsm_list.h"
#include "modules/source_fonts.h"

#include "glyphward-fonts/interruption.h"

namespace gw::fonts {

namespace {

namespace fs = std::filesystem;

/// What is wanted of a directory: all its fonts, or those of some files.
struct Wanted {
    bool all = false;
    std::set<std::string> files;
};
/// By the directory, ending in "/".
using Sources = std::map<std::string, Wanted>;

Sources sources_of(const std::vector<std::string>& arguments, Report& report, Tally& tally) {
    Sources sources;
    for (const std::string& argument : arguments) {
        std::error_code error;
        const fs::path path = fs::absolute(argument, error);
        const fs::file_status status = fs::status(path, error);
        if (error || !fs::exists(status)) {
            report.trouble(Failure::of_system(argument, error ? error.value() : ENOENT));
            tally.failed();
        } else if (fs::is_directory(status)) {
            sources[with_trailing_slash(path.lexically_normal().string())].all = true;
        } else {
            sources[with_trailing_slash(path.parent_path().string())].files.insert(path.filename().string());
        }
    }
    return sources;
}

/// Whether the first file of the font, which is not its metrics, is among those.
bool is_of(const GWFont& font, const std::set<std::string>& files) {
    const GW_FSPEC_LIST* own = font.get_font_file_list();
    return own != nullptr && !own->is_empty() && files.contains((*own->begin())->get_name());
}

/// Adds the fonts that are wanted to the list. Wanted files that have no font are troubles.
void find_fonts(const std::string& directory, Wanted wanted, GWHRNList& out, Report& report, Tally& tally) {
    GW_DIR dir(directory.c_str());
    GW_LIST<GWFont> found;
    the_fsm_list.make_font_list(found, &dir, 0);
    if (wanted.all && found.is_empty()) {
        report.trouble(directory, Message::SAYS_NONE_IN_IT);
        tally.failed();
    }
    for (GWFont* font : found) {
        const Ref<GWFont> owned(font);
        if (!wanted.all && !is_of(*font, wanted.files)) continue;
        for (const GW_FILE_SPEC* file : *font->get_font_file_list()) wanted.files.erase(file->get_name());
        out.add_font(font);
    }
    for (const std::string& file : wanted.files) {
        report.trouble(directory + file, Message::SAYS_NO_FONT_FILE);
        tally.failed();
    }
}

}  // namespace

void find_sources(const std::vector<std::string>& paths, GWHRNList& out, Report& report, Tally& tally) {
    const Interruptible search;
    const JudgedWhenNamed at_once;
    for (const auto& [directory, wanted] : sources_of(paths, report, tally))
        find_fonts(directory, wanted, out, report, tally);
    out.tell_apart();
}

}  // namespace gw::fonts
