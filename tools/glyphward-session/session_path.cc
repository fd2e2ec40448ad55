// SPDX-License-Identifier: MIT
#include "session_path.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

#include "core/text.h"
#include "fontpath/gw_font_path.h"
#include "platform/config_db.h"
#include "platform/host_paths.h"

namespace gw::session {

namespace {

constexpr std::size_t LONGEST_ELEMENT = 255;  // the protocol has one byte for the length
constexpr int NOT_A_DATABASE = 2;             // what config_db_open answers

bool is_readable(const std::string& path, int mode) {
    return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

/// `GWFontPath` treats an unreadable database as an empty one, so this is checked separately.
void note_unread_database(const std::string& path, std::vector<Remark>& unread) {
    const int opened = config_db_open(path.c_str(), 0, 1, 0, 0);
    config_db_close(nullptr);
    if (opened < NOT_A_DATABASE) return;
    unread.push_back({path, is_readable(path, R_OK) ? "not a configuration database; it is not used"
                                                    : "cannot be read; it is not used"});
}

std::string directory_of(std::string_view element) {
    return std::string(element.substr(0, element.find(':')));
}

/// The verdict on a path for which `stat` has failed.
Verdict not_found(int error, const char* gone) {
    if (error == ENOENT || error == ENOTDIR) return {Condition::GONE, gone};
    return {Condition::UNREADABLE, std::strerror(error)};
}

Elements subset(const Elements& wanted, const std::vector<bool>& chosen) {
    Elements path;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (chosen[i]) path.push_back(wanted[i]);
    }
    return path;
}

}  // namespace

Configuration read_configuration(const std::string& root) {
    Configuration configuration;
    note_unread_database(root + INSTALLATION_CONFIG, configuration.unread);
    if (root == INSTALLATION_ROOT) note_unread_database(HOST_CONFIG, configuration.unread);
    GWFontPath font_path(root.c_str());
    unsigned int count = 0;
    for (const GW_STRING* element : *font_path.get_fpe_list(GWFontPath::ALL_FP, count))
        configuration.elements.emplace_back(element->get_str());
    return configuration;
}

std::string identity(std::string_view element) {
    const std::string directory = directory_of(element);
    const std::string_view attributes = element.substr(directory.size());
    return std::string(without_trailing_slashes(directory)).append(attributes);
}

Verdict judge(const std::string& element) {
    if (element.size() > LONGEST_ELEMENT)
        return {Condition::GONE, "longer than the 255 bytes that the X protocol allows"};
    if (!element.starts_with('/')) return {};
    const std::string directory = directory_of(element);
    struct stat info = {};
    if (::stat(directory.c_str(), &info) != 0) return not_found(errno, "no such directory");
    if (!S_ISDIR(info.st_mode)) return {Condition::GONE, "not a directory"};
    if (!is_readable(directory, R_OK | X_OK)) return {Condition::UNREADABLE, "cannot be read"};
    const std::string index = directory + '/' + FONT_INDEX_NAME;
    if (::stat(index.c_str(), &info) != 0) return not_found(errno, "no fonts.dir in it");
    if (!is_readable(index, R_OK)) return {Condition::UNREADABLE, "its fonts.dir cannot be read"};
    return {};
}

std::vector<std::string> reasons_to_skip(const Elements& configured) {
    std::vector<std::string> reasons;
    std::set<std::string> seen;
    for (const std::string& element : configured) {
        const bool is_new = seen.insert(identity(element)).second;
        reasons.push_back(is_new ? judge(element).why : "named before");
    }
    return reasons;
}

Plan make_plan(const Elements& configured, const Elements& server, bool server_is_here) {
    Plan plan;
    std::set<std::string> on_server;
    for (const std::string& element : server) on_server.insert(identity(element));
    std::set<std::string> seen;
    for (const std::string& element : configured) {
        const std::string id = identity(element);
        if (seen.contains(id)) continue;
        const Verdict verdict = judge(element);
        // A directory that this user cannot read, but the server has, keeps its place among the server's
        // elements.
        if (verdict.condition == Condition::UNREADABLE && on_server.contains(id)) continue;
        seen.insert(id);
        if (verdict.condition == Condition::USABLE) {
            plan.path.push_back(element);
        } else {
            plan.skipped.push_back({element, verdict.why});
        }
    }
    plan.configured = plan.path.size();
    for (const std::string& element : server) {
        if (!seen.insert(identity(element)).second) continue;
        const Verdict verdict = server_is_here ? judge(element) : Verdict{};
        if (verdict.condition == Condition::GONE) {
            plan.dropped.push_back({element, verdict.why});
        } else {
            plan.path.push_back(element);
        }
    }
    return plan;
}

Outcome put(const Elements& wanted, const Elements& current, const SetPath& set) {
    if (wanted.empty()) return {};  // an empty path would give the server its default path
    if (set(wanted)) return {wanted, {}};

    std::set<std::string> on_server;
    for (const std::string& element : current) on_server.insert(identity(element));
    std::vector<bool> accepted;
    for (const std::string& element : wanted) accepted.push_back(on_server.contains(identity(element)));
    if (const Elements kept = subset(wanted, accepted); kept.empty() || !set(kept))
        accepted.assign(wanted.size(), false);

    Outcome outcome;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (accepted[i]) continue;
        accepted[i] = true;
        if (set(subset(wanted, accepted))) continue;
        accepted[i] = false;
        outcome.refused.push_back(wanted[i]);
    }
    outcome.path = subset(wanted, accepted);
    return outcome;
}

std::string printable(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; },
        '?');
    return line;
}

}  // namespace gw::session
