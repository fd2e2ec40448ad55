// SPDX-License-Identifier: MIT
#include "fontpath/session_path.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

#include "core/replace_file.h"
#include "fontpath/catalogue.h"
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

std::vector<std::string> directories_of(const Elements& elements) {
    std::vector<std::string> directories;
    for (const std::string& element : elements) {
        if (std::string place = place_of_element(element); !place.empty())
            directories.push_back(std::move(place));
    }
    return directories;
}

/// Asks all directories of this host whether they answer, before anything else looks at them.
void ask_all(const Elements& configured, const Elements& server, PathHost host) {
    Elements all = configured;
    if (host == PathHost::THIS) all.insert(all.end(), server.begin(), server.end());
    (void)find_silent(directories_of(all));
}

/// The verdict on a path for which `stat` has failed.
Verdict not_found(int error, const char* gone) {
    if (error == ENOENT || error == ENOTDIR) return {Condition::GONE, gone};
    return {Condition::UNREADABLE, std::strerror(error)};
}

/// Whether both files are there and have the same bytes.
bool has_bytes_of(const std::string& path, const std::string& other) {
    const Result<std::string> bytes = read_file(path);
    const Result<std::string> others = read_file(other);
    return bytes && others && *bytes == *others;
}

/// The beginning of the composed path whose order somebody has chosen. It goes on to the end of the host's or
/// the installation's part, unless that is as the set-up has made it.
std::size_t count_in_chosen_order(GWFontPath& font_path, bool installation_is_as_set_up) {
    const auto count_of = [&](GWFontPath::TYPE type) {
        unsigned int count = 0;
        font_path.get_fpe_list(type, count);
        return std::size_t{count};
    };
    const std::size_t in_front =
        count_of(GWFontPath::USER_PREPEND_FP) + count_of(GWFontPath::LOCALE_PREPEND_FP);
    if (const std::size_t hosts = count_of(GWFontPath::HOST_FP); hosts > 0) return in_front + hosts;
    return in_front + (installation_is_as_set_up ? 0 : count_of(GWFontPath::INSTALLATION_FP));
}

Elements subset(const Elements& wanted, const std::vector<bool>& chosen) {
    Elements path;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (chosen[i]) path.push_back(wanted[i]);
    }
    return path;
}

}  // namespace

Configuration read_configuration(const std::string& root, const std::string& setup_record) {
    Configuration configuration;
    note_unread_database(root + INSTALLATION_CONFIG, configuration.unread);
    if (root == INSTALLATION_ROOT) note_unread_database(HOST_CONFIG, configuration.unread);
    GWFontPath font_path(root.c_str());
    unsigned int count = 0;
    for (const GW_STRING* element : *font_path.get_fpe_list(GWFontPath::ALL_FP, count))
        configuration.elements.emplace_back(element->get_str());
    configuration.chosen =
        count_in_chosen_order(font_path, has_bytes_of(root + INSTALLATION_CONFIG, setup_record));
    return configuration;
}

Verdict judge(const std::string& element) {
    if (element.size() > LONGEST_ELEMENT)
        return {Condition::GONE, "longer than the 255 bytes that the X protocol allows"};
    const std::string directory = place_of_element(element);
    if (directory.empty()) return {};
    if (is_silent(directory)) return {Condition::UNREADABLE, "does not answer"};
    struct stat info = {};
    if (::stat(directory.c_str(), &info) != 0) return not_found(errno, "no such directory");
    if (!S_ISDIR(info.st_mode)) return {Condition::GONE, "not a directory"};
    if (!is_readable(directory, R_OK | X_OK)) return {Condition::UNREADABLE, "cannot be read"};
    // A server takes a catalogue whatever its links are, and passes over those that lead to no fonts.
    if (is_catalogue(element)) return {};
    const std::string index = directory + '/' + FONT_INDEX_NAME;
    if (::stat(index.c_str(), &info) != 0) return not_found(errno, "no fonts.dir in it");
    if (!is_readable(index, R_OK)) return {Condition::UNREADABLE, "its fonts.dir cannot be read"};
    return {};
}

std::vector<std::string> reasons_to_skip(const Elements& configured) {
    ask_all(configured, {}, PathHost::THIS);
    std::vector<std::string> reasons;
    std::set<ElementIdentity> seen;
    for (const std::string& element : configured) {
        const bool is_new = seen.insert(identity_of_element(element)).second;
        reasons.push_back(is_new ? judge(element).why : "named before");
    }
    return reasons;
}

namespace {

/// Puts a plan together, one element after the other.
class Planner {
  public:
    Planner(const Elements& configured, const Elements& server, PathHost host) : host_(host) {
        for (const std::string& element : configured) configured_.insert(identity(element));
        for (const std::string& element : server) on_server_.insert(identity(element));
    }

    void add_configured(const std::string& element) {
        const ElementIdentity id = identity(element);
        if (seen_.contains(id)) return;
        const Verdict verdict = judge(element);
        // A directory that this user cannot read, but the server has, keeps its place among the server's
        // elements.
        if (verdict.condition == Condition::UNREADABLE && on_server_.contains(id)) return;
        seen_.insert(id);
        if (verdict.condition == Condition::USABLE) {
            append(element, id);
        } else if (verdict.condition == Condition::UNREADABLE || element != SUPERUSER_FONT_DIR) {
            plan_.skipped.push_back({element, verdict.why});
        }
    }

    void add_servers(const std::string& element) {
        const ElementIdentity id = identity(element);
        if (!seen_.insert(id).second) return;
        const Verdict verdict = host_ == PathHost::THIS ? judge(element) : Verdict{};
        if (verdict.condition == Condition::GONE) {
            plan_.dropped.push_back({element, verdict.why});
        } else {
            append(element, id);
        }
    }

    [[nodiscard]] Plan plan() && { return std::move(plan_); }

  private:
    [[nodiscard]] ElementIdentity identity(const std::string& element) const {
        return identity_of_element(element, host_);
    }
    void append(const std::string& element, const ElementIdentity& id) {
        plan_.path.push_back(element);
        if (configured_.contains(id)) plan_.configured.push_back(element);
    }

    PathHost host_;
    std::set<ElementIdentity> configured_;
    std::set<ElementIdentity> on_server_;
    std::set<ElementIdentity> seen_;
    Plan plan_;
};

}  // namespace

Plan make_plan(const Configuration& configured, const Elements& server, PathHost host) {
    ask_all(configured.elements, server, host);
    Planner planner(configured.elements, server, host);
    const auto behind = configured.elements.begin() + static_cast<std::ptrdiff_t>(configured.chosen);
    std::for_each(configured.elements.begin(), behind,
                  [&](const std::string& element) { planner.add_configured(element); });
    for (const std::string& element : server) planner.add_servers(element);
    std::for_each(behind, configured.elements.end(),
                  [&](const std::string& element) { planner.add_configured(element); });
    return std::move(planner).plan();
}

Outcome put(const Elements& wanted, const Elements& current, PathHost host, const SetPath& set) {
    if (wanted.empty()) return {};  // an empty path would give the server its default path
    if (set(wanted)) return {wanted, {}};

    std::set<ElementIdentity> on_server;
    for (const std::string& element : current) on_server.insert(identity_of_element(element, host));
    std::vector<bool> accepted;
    for (const std::string& element : wanted)
        accepted.push_back(on_server.contains(identity_of_element(element, host)));
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
