// SPDX-License-Identifier: MIT
#include "app/samples/rc_sample_text.h"

#include <cstdlib>
#include <optional>
#include <string_view>

#include "core/gw_file.h"
#include "core/replace_file.h"
#include "core/rights.h"
#include "platform/host_paths.h"

namespace {

constexpr const char* DEFAULT_SAMPLE_TEXT = "Aa Bb Cc Xx Yy Zz 0123456789";
constexpr std::string_view KEYWORD = "SampleText:";
constexpr int LONGEST_LINE = 1000;

/// The user's settings file; nothing without a home directory.
std::optional<std::string> settings_path() {
    const char* home = std::getenv("HOME");
    if (home == nullptr) return std::nullopt;
    return std::string(home) + gw::USER_SETTINGS_FILE;
}

}  // namespace

std::string get_rc_sample_text() {
    const std::optional<std::string> path = settings_path();
    if (gw::runs_as_superuser() || !path) return DEFAULT_SAMPLE_TEXT;
    const std::size_t slash = path->rfind('/');
    GW_FILE file(path->substr(slash + 1).c_str(), path->substr(0, slash + 1).c_str(), gw::FILE_TYPE_REGULAR);
    if (file.get_file_type_from_stat() != gw::FILE_TYPE_REGULAR || file.open("r") == 0)
        return DEFAULT_SAMPLE_TEXT;

    char line[LONGEST_LINE + 1];
    while (file.get_line(line, sizeof line) != nullptr) {
        std::string_view text(line);
        const std::size_t keyword = text.find(KEYWORD);
        if (keyword == std::string_view::npos) continue;
        text.remove_prefix(keyword + KEYWORD.size());
        return std::string(text.substr(0, text.find('\n')));
    }
    return DEFAULT_SAMPLE_TEXT;
}

gw::Outcome keep_rc_sample_text(const std::string& text) {
    const std::optional<std::string> path = settings_path();
    // Kept: the superuser has no sample text.
    if (gw::runs_as_superuser())
        return gw::Failure{path.value_or(gw::USER_SETTINGS_FILE), gw::Reason::NOT_ALLOWED};
    return path ? gw::replace_file(*path, std::string(KEYWORD) + text) : gw::done();
}

int write_rc_sample_text(const char* text) {
    return keep_rc_sample_text(text) ? 1 : 0;
}

// Kept: point sizes are converted by a digit.
std::string convert_to_decipoint(const char* pt) {
    return std::string(pt) + '0';
}

std::string convert_to_point(const char* dp) {
    std::string points(dp);
    if (!points.empty()) points.pop_back();
    return points;
}
