// SPDX-License-Identifier: MIT
#include <filesystem>
#include <set>
#include <system_error>

#include "core/directory.h"
#include "core/replace_file.h"
#include "core/text.h"
#include "diagnosis/alias_edit.h"
#include "fontfiles/alias_text.h"
#include "fontfiles/gw_fontset_file.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/destination.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/profile.h"
#include "glyphward-fonts/rows.h"

namespace gw::fonts {

namespace {

namespace fs = std::filesystem;

constexpr const char* FONTS = "fonts";
constexpr const char* PROFILE_NAME = "profile.toml";

/// Copies the files of the fonts in `from`, with their metrics, below `to`. Returns their number.
std::size_t copy_fonts(const std::string& from, const std::string& to, Host& host, Report& report,
                       Tally& tally) {
    std::set<std::string> files;
    for (GWHRNElement* element : host.fonts()) {
        const Row row = row_of(*element);
        if (identity_of_element(row.directory) == identity_of_element(from))
            files.insert(row.files.begin(), row.files.end());
    }
    for (const std::string& file : files) {
        std::error_code error;
        const fs::path target =
            fs::path(to) / fs::path(file).lexically_relative(without_trailing_slashes(from));
        fs::create_directories(target.parent_path(), error);
        if (!error) fs::copy_file(file, target, error);
        if (!error) continue;
        report.trouble(Failure::of_system(file, error.value()));
        tally.failed();
    }
    return files.size();
}

void add_paths(Profile& profile) {
    const std::pair<const char*, GWFontPath::TYPE> paths[] = {{"host", GWFontPath::HOST_FP},
                                                              {"installation", GWFontPath::INSTALLATION_FP},
                                                              {"me", GWFontPath::USER_APPEND_FP},
                                                              {"front", GWFontPath::USER_PREPEND_FP}};
    for (const auto& [whose, list] : paths) {
        if (std::vector<std::string> elements = elements_of(list); !elements.empty())
            profile.paths[whose] = std::move(elements);
    }
}

void add_aliases(const std::string& directory, Profile& profile) {
    const Result<Directory> dir = Directory::open(directory);
    if (!dir) return;
    const Result<std::string> text = diagnosis::alias_text_in(*dir);
    const auto entries = text ? alias_entries(*text) : std::nullopt;
    if (!entries) return;
    for (const AliasEntry& entry : *entries) profile.aliases.push_back({"", entry.alias, entry.font});
}

void add_fontsets(Profile& profile) {
    const std::string locales = std::string(INSTALLATION_ROOT) + LOCALE_FONT_PATH_DIR;
    std::error_code error;
    std::set<std::string> names;
    for (auto entry = fs::directory_iterator(locales, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        // The other names of a locale are links.
        if (!entry->is_symlink()) names.insert(entry->path().filename().string());
    }
    for (const std::string& locale : names) {
        const std::string dir = locales + locale + FONTSET_DIR;
        if (!fs::exists(dir + FONTSET_FILE_NAME, error)) continue;
        const GW_FONTSET_FILE file(dir.c_str(), FONTSET_FILE_NAME, FILE_TYPE_REGULAR);
        for (const GWFontSet* set : file.get_fontsets()) {
            Profile::Fontset wanted{locale, set->get_name(), {}};
            for (GWFont* font : set->get_fonts()) wanted.fonts.emplace_back(font->get_xlfd_name());
            if (!wanted.fonts.empty()) profile.fontsets.push_back(wanted);
        }
    }
}

}  // namespace

Status export_profile(const ExportOptions& options, Report& report) {
    std::error_code error;
    const fs::path to = options.directory;
    if (fs::exists(to, error) && !fs::is_empty(to, error)) {
        report.trouble(options.directory, Message::SAYS_NOT_EMPTY);
        return Status::COULD_NOT;
    }
    const std::string from = directory_of(options.fonts, options.fonts_of);
    Host host(report, from);
    Profile profile;
    profile.to = options.fonts == Destination::EVERYONE ? "everyone"
                 : options.fonts == Destination::ME     ? "me"
                                                        : from;
    Tally tally;
    fs::create_directories(to, error);
    if (error) {
        report.trouble(Failure::of_system(options.directory, error.value()));
        return Status::COULD_NOT;
    }
    const std::size_t files = copy_fonts(from, (to / FONTS).string(), host, report, tally);
    if (files > 0) profile.files = {FONTS};
    add_paths(profile);
    add_aliases(from, profile);
    add_fontsets(profile);
    const std::string name = (to / PROFILE_NAME).string();
    if (const Outcome written = replace_file(name, profile_text(profile)); !written) {
        report.trouble(written.failure());
        tally.failed();
    }
    report_heard(report);
    report.record(name);
    report.document()["profile"] = in_json(name);
    report.document()["files"] = files;
    return tally.status();
}

}  // namespace gw::fonts
