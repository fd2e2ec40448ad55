// SPDX-License-Identifier: MIT
#include "platform/package_owner.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <utility>

#include "core/rights.h"
#include "core/text.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

constexpr std::size_t LONGEST_COMMAND = 100000;  // bytes; the system allows 128 kB for one argument
constexpr int NOT_INSTALLED = 127;
constexpr int FIRST_SIGNAL = 128;  // a command that was ended by a signal has a higher number

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

struct Answer {
    int status = 0;  ///< as a shell has it
    std::string text;
    /// Whether the command was ended from outside, before it could say everything.
    [[nodiscard]] bool is_cut_off() const { return status > FIRST_SIGNAL; }
};

/// What the tool says about the files that these arguments name.
Result<Answer> answer_of(const std::string& tool, const std::string& arguments) {
    const UnnamedScratchFile output;
    if (output.path().empty()) return Failure::of_system(tool, ENOMEM);
    const Result<int> status =
        run_shell_text("LC_ALL=C " + tool + arguments + " > " + output.path() + " 2> /dev/null", MOMENTS);
    Failure failure{.subject = tool};
    if (!status) {
        failure.reason = status.failure().reason;
        failure.error = status.failure().error;
        return failure;
    }
    Result<std::string> text = output.read();
    if (!text) return text.failure();
    return Answer{*status, std::move(*text)};
}

Failure failure_of(const std::string& tool, const Answer& answer) {
    return {.subject = tool, .reason = Reason::COMMAND_FAILED, .detail = std::to_string(answer.status)};
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

/// What was found out so far: whether the tool is there, or why it does not answer.
struct Asked {
    bool is_there = true;
    Outcome outcome = {};
    PackageOwners owners = {};

    bool fails(const Failure& failure) {
        outcome = failure;
        return false;
    }
};

Asked ask_dpkg(const std::vector<std::string>& paths) {
    Asked asked;
    in_commands(paths, dpkg_pattern, [&](const std::string& arguments, const std::vector<std::string>&) {
        static const std::string tool = "dpkg-query -S";
        const Result<Answer> answer = answer_of(tool, " --" + arguments);
        if (!answer) return asked.fails(answer.failure());
        // Its other numbers say that a file is in no package, or that there are no packages.
        if (answer->is_cut_off()) return asked.fails(failure_of(tool, *answer));
        asked.is_there = answer->status != NOT_INSTALLED;
        if (asked.is_there) asked.owners.merge(parse_dpkg_answer(answer->text));
        return asked.is_there;
    });
    return asked;
}

/// The answer of rpm. Its number counts the files that are in no package, and it says so of each.
Result<Answer> answer_of_rpm(const std::string& arguments) {
    static const std::string tool = "rpm -qf";
    Result<Answer> answer = answer_of(tool, " --qf '%{NAME}\\n' --" + arguments);
    if (answer && answer->text.empty() && answer->is_cut_off()) return failure_of(tool, *answer);
    return answer;
}

using Paths = std::vector<std::string>;

/// Asks rpm about these paths, and false when there is nothing more to ask. Files of several packages make
/// more lines than there are files: then each half is asked by itself.
bool ask_rpm_about(const Paths& some, Asked& asked) {
    std::string arguments;
    for (const std::string& path : some) arguments += ' ' + shell_quoted(path);
    const Result<Answer> answer = answer_of_rpm(arguments);
    if (!answer) return asked.fails(answer.failure());
    asked.is_there = answer->status != NOT_INSTALLED || !answer->text.empty();
    if (!asked.is_there) return false;
    if (some.size() == 1 || lines_of(answer->text).size() == some.size()) {
        asked.owners.merge(parse_rpm_answer(answer->text, some));
        return true;
    }
    const auto middle = some.begin() + static_cast<std::ptrdiff_t>(some.size() / 2);
    return ask_rpm_about(Paths(some.begin(), middle), asked) &&
           ask_rpm_about(Paths(middle, some.end()), asked);
}

Asked ask_rpm(const Paths& paths) {
    Asked asked;
    const auto as_it_is = [](const std::string& path) { return path; };
    in_commands(paths, as_it_is,
                [&](const std::string&, const Paths& some) { return ask_rpm_about(some, asked); });
    return asked;
}

/// What is known in one action.
struct Memory {
    PackageOwners owners;  // "" for a file of no package
    Outcome outcome;
};

Memory& memory() {
    static Memory known;
    return known;
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

Result<PackageOwners> ask_package_owners(const std::vector<std::string>& paths) {
    std::multimap<std::string, std::string> asked;  // by the real path
    std::vector<std::string> real_paths;
    for (const std::string& path : paths) {
        std::optional<std::string> real = packaged_path(path);
        if (!real) continue;
        if (!asked.contains(*real)) real_paths.push_back(*real);
        asked.emplace(std::move(*real), path);
    }
    Asked answer = ask_dpkg(real_paths);
    if (!answer.is_there) answer = ask_rpm(real_paths);
    if (!answer.outcome) return answer.outcome.failure();
    PackageOwners owners;
    for (const auto& [real, owner] : answer.owners) {
        const auto [first, last] = asked.equal_range(real);
        for (auto path = first; path != last; ++path) owners.emplace(path->second, owner);
    }
    return owners;
}

Result<PackageOwners> package_owners(const std::vector<std::string>& paths) {
    Memory& known = memory();
    std::vector<std::string> unknown;
    for (const std::string& path : paths) {
        if (!known.owners.contains(path)) unknown.push_back(path);
    }
    if (!unknown.empty()) {
        if (!known.outcome) return known.outcome.failure();
        const Result<PackageOwners> found = ask_package_owners(unknown);
        if (!found) {
            known.outcome = found.failure();
            return found.failure();
        }
        for (const std::string& path : unknown)
            known.owners[path] = found->contains(path) ? found->at(path) : "";
    }
    PackageOwners owners;
    for (const std::string& path : paths) {
        if (const std::string& owner = known.owners[path]; !owner.empty()) owners.emplace(path, owner);
    }
    return owners;
}

void forget_package_owners() {
    memory() = {};
}

std::set<std::string> installed_packages(const std::vector<std::string>& packages) {
    if (packages.empty()) return {};  // else all are listed
    static constexpr std::string_view INSTALLED = " installed";
    static const std::string tool = "dpkg-query -W";
    std::string arguments = " -f '${Package} ${db:Status-Status}\\n' --";
    for (const std::string& package : packages) arguments += ' ' + shell_quoted(package);
    std::set<std::string> installed;
    const Result<Answer> answer = answer_of(tool, arguments);
    if (!answer) return installed;
    for (const std::string_view line : lines_of(answer->text)) {
        if (line.ends_with(INSTALLED)) installed.emplace(line.substr(0, line.find(' ')));
    }
    return installed;
}

}  // namespace gw
