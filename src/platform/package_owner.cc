// SPDX-License-Identifier: MIT
#include "platform/package_owner.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "core/rights.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

constexpr std::size_t LONGEST_COMMAND = 100000;  // bytes; the system allows 128 kB for one argument
constexpr int NOT_INSTALLED = 127;

std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

/// The path with the links in its directory followed, if it can be one of a package.
std::optional<std::string> packaged_path(const std::string& path) {
    struct stat info = {};
    if (::lstat(path.c_str(), &info) != 0 || !is_superuser(info.st_uid)) return std::nullopt;
    // The last component is not followed: it is the link itself that would be deleted or replaced.
    std::error_code gone;
    const std::filesystem::path home =
        std::filesystem::canonical(std::filesystem::path(path).parent_path(), gone);
    std::string real = (home / std::filesystem::path(path).filename()).string();
    // A path with a line feed would look like two answers.
    if (gone || real.find('\n') != std::string::npos) return std::nullopt;
    return real;
}

/// What the command writes; nothing when it is not installed. Its status only says that a file is unknown.
std::optional<std::string> answer_of(const std::string& command) {
    const UnnamedScratchFile output;
    if (output.path().empty()) return "";
    const int status =
        run_shell_text("LC_ALL=C " + command + " > " + output.path() + " 2> /dev/null", LONG_WORK);
    if (WIFEXITED(status) && WEXITSTATUS(status) == NOT_INSTALLED) return std::nullopt;
    const Result<std::string> answer = output.read();
    return answer ? *answer : "";
}

/// Calls `ask(arguments, paths)` for as many of the paths at a time as fit into a command, until it returns
/// false.
template <class Quote, class Ask>
void in_commands(const std::vector<std::string>& paths, Quote quote, Ask ask) {
    std::string arguments;
    std::vector<std::string> some;
    for (const std::string& path : paths) {
        const std::string argument = ' ' + shell_quoted(quote(path));
        if (!some.empty() && arguments.size() + argument.size() > LONGEST_COMMAND) {
            if (!ask(arguments, some)) return;
            arguments.clear();
            some.clear();
        }
        arguments += argument;
        some.push_back(path);
    }
    if (!some.empty()) ask(arguments, some);
}

/// False when there is no dpkg.
bool ask_dpkg(const std::vector<std::string>& paths, PackageOwners& owners) {
    bool is_there = true;
    in_commands(paths, dpkg_pattern, [&](const std::string& arguments, const std::vector<std::string>&) {
        const std::optional<std::string> answer = answer_of("dpkg-query -S --" + arguments);
        is_there = answer.has_value();
        if (is_there) owners.merge(parse_dpkg_answer(*answer));
        return is_there;
    });
    return is_there;
}

void ask_rpm(const std::vector<std::string>& paths, PackageOwners& owners) {
    const auto as_it_is = [](const std::string& path) { return path; };
    in_commands(paths, as_it_is, [&](const std::string& arguments, const std::vector<std::string>& some) {
        static const std::string command = "rpm -qf --qf '%{NAME}\\n' --";
        const std::optional<std::string> answer = answer_of(command + arguments);
        if (!answer) return false;
        PackageOwners found = parse_rpm_answer(*answer, some);
        // Files of several packages make more lines than there are files.
        if (found.empty() && some.size() > 1) {
            for (const std::string& path : some) {
                const std::optional<std::string> alone = answer_of(command + ' ' + shell_quoted(path));
                if (alone) found.merge(parse_rpm_answer(*alone, {path}));
            }
        }
        owners.merge(found);
        return true;
    });
}

PackageOwners& known() {
    static PackageOwners owners;
    return owners;
}

}  // namespace

std::string dpkg_pattern(std::string_view path) {
    std::string pattern;
    for (const char c : path) {
        if (std::string_view("*?[]\\").find(c) != std::string_view::npos) pattern += '\\';
        pattern += c;
    }
    return pattern;
}

PackageOwners parse_dpkg_answer(std::string_view answer) {
    PackageOwners owners;
    for (const std::string_view line : lines_of(answer)) {
        const std::size_t end = line.find(": /");
        if (end == std::string_view::npos || end == 0 || line.starts_with("diversion by ") ||
            line.starts_with("local diversion ")) {
            continue;
        }
        owners.emplace(line.substr(end + 2), line.substr(0, end));
    }
    return owners;
}

PackageOwners parse_rpm_answer(std::string_view answer, const std::vector<std::string>& paths) {
    const auto is_name = [](std::string_view line) {
        return !line.empty() && line.find_first_of(" \t/") == std::string_view::npos;
    };
    const std::vector<std::string_view> lines = lines_of(answer);
    PackageOwners owners;
    if (paths.size() != 1 && lines.size() != paths.size()) return owners;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!is_name(lines[i])) continue;
        std::string& owner = owners[paths[std::min(i, paths.size() - 1)]];
        owner += (owner.empty() ? "" : ", ") + std::string(lines[i]);
    }
    return owners;
}

PackageOwners ask_package_owners(const std::vector<std::string>& paths) {
    std::multimap<std::string, std::string> asked;  // by the real path
    std::vector<std::string> real_paths;
    for (const std::string& path : paths) {
        std::optional<std::string> real = packaged_path(path);
        if (!real) continue;
        if (!asked.contains(*real)) real_paths.push_back(*real);
        asked.emplace(std::move(*real), path);
    }
    PackageOwners by_real_path;
    if (!real_paths.empty() && !ask_dpkg(real_paths, by_real_path)) ask_rpm(real_paths, by_real_path);
    PackageOwners owners;
    for (const auto& [real, owner] : by_real_path) {
        const auto [first, last] = asked.equal_range(real);
        for (auto path = first; path != last; ++path) owners.emplace(path->second, owner);
    }
    return owners;
}

PackageOwners package_owners(const std::vector<std::string>& paths) {
    std::vector<std::string> unknown;
    for (const std::string& path : paths) {
        if (known().emplace(path, "").second) unknown.push_back(path);
    }
    for (auto& [path, owner] : ask_package_owners(unknown)) known()[path] = owner;
    PackageOwners owners;
    for (const std::string& path : paths) {
        if (const std::string& owner = known()[path]; !owner.empty()) owners.emplace(path, owner);
    }
    return owners;
}

void forget_package_owners() {
    known().clear();
}

}  // namespace gw
