// SPDX-License-Identifier: MIT
#include "diagnosis/cure_plan.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <utility>

#include "core/directory.h"
#include "core/rights.h"
#include "core/text.h"
#include "diagnosis/alias_edit.h"
#include "diagnosis/alias_name.h"
#include "diagnosis/comment_cure.h"
#include "diagnosis/directory_facts.h"
#include "diagnosis/own_paths.h"
#include "diagnosis/server_rights.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"

namespace gw::diagnosis {

namespace {

bool is_directory(const std::string& path) {
    struct stat info = {};
    return !is_silent(path) && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

/// A directory with such a name can be on no font path; its fonts can be installed elsewhere.
bool cannot_be_an_element(const std::string& directory) {
    return directory.find_first_of(",:\n") != std::string::npos && is_directory(directory);
}

/// Whether this user may replace the file NAME of the directory.
bool may_replace(const std::string& directory, const char* name) {
    const std::string file = with_trailing_slash(directory) + name;
    const bool may_write_there = ::faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
    return may_write_there && (::faccessat(AT_FDCWD, file.c_str(), F_OK, AT_EACCESS) != 0 ||
                               ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0);
}

/// "fancy, plain"; of many only the first ones.
std::string names_of(const std::vector<AliasOfFont>& aliases) {
    constexpr std::size_t SHOWN = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(aliases.size(), SHOWN); ++i)
        text.append(i == 0 ? "" : ", ").append(aliases[i].first);
    return aliases.size() > SHOWN ? text + ", ..." : text;
}

/// The command that turns these lines of a file into comments; "" when there are too many.
std::string command_for(const std::vector<int>& lines, const std::string& file) {
    constexpr std::size_t MOST = 100;
    if (lines.size() > MOST) return "";
    std::string script;
    for (const int line : lines)
        script.append(script.empty() ? "" : ";").append(std::to_string(line)).append("s/^/! /");
    return "sed -i " + shell_quoted(script) + ' ' + shell_quoted(file);
}

/// "o+x" for the bits of a mode.
std::string symbolic(mode_t bits) {
    std::string text;
    const auto add = [&](char who, unsigned shift) {
        const mode_t those = (bits >> shift) & S_IRWXO;
        if (those == 0) return;
        if (!text.empty()) text += ',';
        text += who;
        text += '+';
        if ((those & S_IROTH) != 0) text += 'r';
        if ((those & S_IXOTH) != 0) text += 'x';
    };
    add('u', 6);
    add('g', 3);
    add('o', 0);
    return text;
}

/// The command that gives these rights.
std::string command_for(const Rights& rights) {
    std::map<mode_t, std::string> files;
    for (const auto& [path, bits] : rights) files[bits] += ' ' + shell_quoted(path);
    std::string command;
    for (const auto& [bits, paths] : files) {
        if (!command.empty()) command += " && ";
        command.append("chmod ").append(symbolic(bits)).append(paths);
    }
    return command;
}

class Planner {
  public:
    Planner(const Answer& answer, const Surroundings& surroundings)
        : answer_(answer), surroundings_(surroundings), server_{answer.server_user, answer.server_groups} {}

    std::vector<Cure> cures() {
        const bool sees_files = answer_.place != ServerPlace::ELSEWHERE;
        if (sees_files) for_asked_directory();
        if (sees_files) for_fonts_that_are_there();
        for (const ElementReport& report : in_question_first()) for_element(report, sees_files);
        if (sees_files) for_near_fonts();
        if (sees_files) for_useless_aliases();
        return std::move(cures_);
    }

  private:
    using Report = ElementReport;

    // --- what there is to plan for -------------------------------------------

    void for_asked_directory() {
        if (answer_.works) return;
        const Question& question = answer_.question;
        if (question.wanted == Wanted::DIRECTORY && !place_of_element(question.name).empty())
            for_directory(question.name, false);
        if (question.wanted != Wanted::FILE || !question.name.starts_with('/')) return;
        const std::string directory = question.name.substr(0, question.name.rfind('/') + 1);
        if (report_on(directory) != nullptr) return for_directory(directory, false);
        install_from(directory);
        for_directory(directory, false);
    }

    /// The font that was asked for is there, in a directory that is not served or behind another answer.
    void for_fonts_that_are_there() {
        for (const NearFont& font : answer_.nearest) {
            if (!font.differences.empty() || font.element.empty()) continue;
            if (!font.is_served) {
                for_directory(font.element, false);
            } else if (answer_.font.found != Found::EXACT && answer_.font.element != font.element) {
                for_directory(font.element, true);
            }
        }
    }

    void for_near_fonts() {
        if (answer_.works) return;
        if (answer_.question.wanted == Wanted::FONT) add_alias_for_nearest();
        for_first_unserved(answer_.nearest);
        for (const CharsetCoverage& coverage : answer_.charsets) {
            if (coverage.font.empty()) for_first_unserved(coverage.nearest);
        }
    }

    void add_alias_for_nearest() {
        for (const NearFont& font : answer_.nearest) {
            if (!font.is_served || font.differences.empty()) continue;
            auto cure = alias_cure(answer_.question.name, font.name, has_an_answer(answer_), surroundings_);
            if (cure) return add(std::move(*cure));
        }
    }

    void for_first_unserved(const std::vector<NearFont>& fonts) {
        const auto font = std::find_if(fonts.begin(), fonts.end(), [](const NearFont& near) {
            return !near.is_served && !near.element.empty();
        });
        if (font != fonts.end()) for_directory(font->element, false);
    }

    /// The element that the message is about comes first, then those that are dead: the server takes no other
    /// path while it has one.
    [[nodiscard]] std::vector<Report> in_question_first() const {
        std::vector<Report> reports = answer_.path;
        const auto rank = [this](const Report& report) {
            if (report.place != 0 && report.place == answer_.question.element) return 0;
            return report.state == ElementState::DEAD ? 1 : 2;
        };
        std::stable_sort(reports.begin(), reports.end(),
                         [&](const Report& a, const Report& b) { return rank(a) < rank(b); });
        return reports;
    }

    [[nodiscard]] const Report* report_on(const std::string& element) const {
        const ElementIdentity identity = identity_of_element(element);
        const auto found = std::find_if(answer_.path.begin(), answer_.path.end(), [&](const Report& report) {
            return identity_of_element(report.element) == identity;
        });
        return found != answer_.path.end() ? &*found : nullptr;
    }

    void for_element(const Report& report, bool sees_files) {
        if (sees_files) mend(report);
        const bool is_dead = report.state == ElementState::DEAD;
        if (is_dead && (report.place > 0 || may_configure(report.element))) take_off(report.element);
        if (sees_files && report.state == ElementState::NOT_SERVED) serve(report.element, false);
    }

    void mend(const Report& report) {
        const std::string directory = directory_of_element(report.element);
        if (is_catalogue(report.element)) return mend_linked(report);
        if (!report.unreadable.empty()) {
            make_readable(directory, missing_rights(report.unreadable, server_));
        } else if (report.trouble == Trouble::UNREADABLE) {
            make_readable(directory, missing_rights(needed_for(directory), server_));
        }
        const bool lacks_index = report.trouble == Trouble::NO_INDEX ||
                                 report.trouble == Trouble::BAD_INDEX || report.trouble == Trouble::OLD_INDEX;
        if (lacks_index) make_index(directory);
        if (has_bad_aliases(report)) comment_out(directory, {});
        if (is_unread(report)) read_again(report.element);
    }

    /// What is wrong with a catalogue is mended in the directories behind its links.
    void mend_linked(const Report& report) {
        if (report.state == ElementState::WORKS || is_silent(place_of_element(report.element))) return;
        for (const std::string& directory : font_directories(report.element)) {
            if (!is_directory(directory)) continue;
            const DirectoryFacts facts = look_at_directory(directory, server_);
            Report linked = report;
            linked.element = directory;
            linked.trouble = facts.trouble;
            linked.unreadable = facts.unreadable;
            linked.remarks = facts.remarks;
            mend(linked);
        }
        if (is_unread(report)) read_again(report.element);
    }

    static bool has_bad_aliases(const Report& report) {
        return std::any_of(report.remarks.begin(), report.remarks.end(), [](const Sentence& remark) {
            return remark.said == Said::BAD_ALIAS_LINE || remark.said == Said::LONG_ALIAS_LINE ||
                   remark.said == Said::ALIAS_OF_ITSELF;
        });
    }

    /// Aliases in several directories can be parts of one circle. Without those of any one there is none.
    void for_useless_aliases() {
        if (answer_.works) return;
        std::map<std::string, std::vector<AliasOfFont>> aliases;
        for (const UselessAlias& useless : answer_.font.useless) {
            const bool is_linked = is_catalogue(useless.element);
            const std::string directory = is_linked ? useless.directory : place_of_element(useless.element);
            if (!directory.empty()) aliases[directory].emplace_back(useless.alias, useless.font);
        }
        for (const auto& [directory, those] : aliases) comment_out(directory, those);
    }

    /// Whether the server has not read the index since somebody has changed it.
    static bool is_unread(const Report& report) {
        return report.place > 0 &&
               std::any_of(report.remarks.begin(), report.remarks.end(),
                           [](const Sentence& remark) { return remark.said == Said::INDEX_NOT_READ_AGAIN; });
    }

    /// All that a directory, or a catalogue of them, needs to be served.
    void for_directory(const std::string& element, bool in_front) {
        const std::string directory = place_of_element(element);
        if (is_catalogue(element)) return for_catalogue(element, in_front);
        if (cannot_be_an_element(element)) return install_from(element);
        if (!is_directory(directory)) return;
        const Report* report = report_on(element);
        if (report != nullptr) mend(*report);
        if (::access((with_trailing_slash(directory) + FONT_INDEX_NAME).c_str(), F_OK) != 0)
            make_index(directory);
        if (report == nullptr) make_readable(directory, missing_rights(needed_for(directory), server_));
        const bool is_served = report != nullptr && report->place > 0;
        if (is_served && is_unread(*report)) return;
        if (!is_served || in_front) serve(report != nullptr ? report->element : element, in_front);
    }

    void for_catalogue(const std::string& element, bool in_front) {
        const Report* report = report_on(element);
        if (report != nullptr) mend(*report);
        const bool is_served = report != nullptr && report->place > 0;
        if (!is_served || (in_front && !is_unread(*report))) serve(element, in_front);
    }

    // --- the cures -----------------------------------------------------------

    void add(Cure cure) {
        const bool is_known = std::any_of(cures_.begin(), cures_.end(), [&](const Cure& known) {
            return known.remedy == cure.remedy && known.element == cure.element;
        });
        if (!is_known) cures_.push_back(std::move(cure));
    }

    void install_from(const std::string& directory) {
        add({.remedy = Remedy::INSTALL_DIRECTORY,
             .what = {Said::CURE_INSTALL, {directory}},
             .element = directory});
    }

    void serve(const std::string& element, bool in_front) {
        const std::string place = place_of_element(element);
        if (place.empty() || !is_directory(place)) return;
        Said what = is_superuser(surroundings_.user) ? Said::CURE_SERVE_FOR_ALL : Said::CURE_SERVE;
        if (in_front) what = Said::CURE_SERVE_IN_FRONT;
        if (!in_front && is_configured(element)) what = Said::CURE_SERVE_NOW;
        add({.remedy = Remedy::SERVE_DIRECTORY,
             .what = {what, {element}},
             .element = element,
             .in_front = in_front});
    }

    void read_again(const std::string& element) {
        add({.remedy = Remedy::READ_AGAIN, .what = {Said::CURE_READ_AGAIN, {element}}, .element = element});
    }

    void take_off(const std::string& element) {
        add({.remedy = Remedy::TAKE_OFF, .what = {Said::CURE_TAKE_OFF, {element}}, .element = element});
    }

    void make_index(const std::string& directory) {
        if (!is_directory(directory)) return;
        Cure cure{
            .remedy = Remedy::MAKE_INDEX, .what = {Said::CURE_MAKE_INDEX, {directory}}, .element = directory};
        if (!may_replace(directory, FONT_INDEX_NAME)) {
            const std::string quoted = shell_quoted(directory);
            cure.command.append("mkfontscale ").append(quoted).append(" && mkfontdir ").append(quoted);
            cure.what.said = Said::COMMAND_MAKE_INDEX;
        }
        add(std::move(cure));
    }

    void comment_out(const std::string& directory, const std::vector<AliasOfFont>& aliases) {
        const Result<Directory> dir = Directory::open(directory);
        const Result<std::string> text = dir ? alias_text_in(*dir) : Result<std::string>(dir.failure());
        if (!text) return;
        const CommentedAliases commented = with_comments(*text, aliases);
        if (commented.lines.empty()) return;
        const std::string file = with_trailing_slash(directory) + ALIAS_FILE_NAME;
        Cure cure{.remedy = Remedy::COMMENT_OUT, .element = directory, .aliases = aliases};
        cure.what = {Said::CURE_COMMENT_OUT, {file, line_numbers(commented.lines)}};
        if (!aliases.empty()) cure.what = {Said::CURE_DROP_ALIASES, {file, names_of(aliases)}};
        if (!may_replace(directory, ALIAS_FILE_NAME)) {
            cure.command = commented.are_only_marked ? command_for(commented.lines, file) : "";
            if (cure.command.empty()) return;
            cure.what = {aliases.empty() ? Said::COMMAND_COMMENT_OUT : Said::COMMAND_DROP_ALIASES, {file}};
        }
        add(std::move(cure));
    }

    /// The server only passes a directory, but what puts it on the path at the next login reads it.
    void let_user_read(const std::string& directory, Rights& rights) const {
        struct stat info = {};
        const std::string path(without_trailing_slashes(directory));
        if (::lstat(path.c_str(), &info) != 0 || info.st_uid != surroundings_.user) return;
        const mode_t missing = (S_IRUSR | S_IXUSR) & ~info.st_mode;
        if (missing == 0 || is_superuser(surroundings_.user)) return;
        const auto known = std::find_if(rights.begin(), rights.end(),
                                        [&](const auto& right) { return right.first == path; });
        if (known == rights.end()) {
            rights.emplace_back(path, missing);
        } else {
            known->second |= missing;
        }
    }

    void make_readable(const std::string& directory, Rights rights) {
        if (rights.empty()) return;
        let_user_read(directory, rights);
        Cure cure{.remedy = Remedy::MAKE_READABLE, .element = directory, .rights = rights};
        const bool are_own = std::all_of(rights.begin(), rights.end(), [this](const auto& right) {
            struct stat info = {};
            return ::lstat(right.first.c_str(), &info) == 0 && info.st_uid == surroundings_.user &&
                   (S_ISREG(info.st_mode) || S_ISDIR(info.st_mode));
        });
        cure.what = {Said::COMMAND_MAKE_READABLE, {directory}};
        if (are_own) {
            cure.what = sentence_for(directory, rights);
        } else {
            cure.command = command_for(rights);
        }
        add(std::move(cure));
    }

    [[nodiscard]] Sentence sentence_for(const std::string& directory, const Rights& rights) const {
        const auto is_for_all = [](const auto& right) { return (right.second & S_IRWXO) != 0; };
        const bool all = std::any_of(rights.begin(), rights.end(), is_for_all);
        const bool home = std::any_of(rights.begin(), rights.end(), [&](const auto& right) {
            return is_for_all(right) && right.first == without_trailing_slashes(surroundings_.home);
        });
        Said what = all ? Said::CURE_MAKE_PUBLIC : Said::CURE_MAKE_READABLE;
        if (home) what = Said::CURE_OPEN_HOME;
        return {what, {directory, std::to_string(rights.size()), surroundings_.home}};
    }

    [[nodiscard]] bool is_configured(const std::string& element) const {
        const ElementIdentity identity = identity_of_element(element);
        return std::any_of(
            surroundings_.configured.begin(), surroundings_.configured.end(),
            [&](const std::string& configured) { return identity_of_element(configured) == identity; });
    }

    const Answer& answer_;
    const Surroundings& surroundings_;
    const ServerUser server_;
    std::vector<Cure> cures_;
};

}  // namespace

std::vector<Cure> plan_cures(const Answer& answer, const Surroundings& surroundings) {
    return Planner(answer, surroundings).cures();
}

bool has_an_answer(const Answer& answer) {
    return answer.font.found != Found::NOTHING || !answer.font.aliases.empty();
}

std::optional<Cure> alias_cure(const std::string& wanted, const std::string& font, bool in_front,
                               const Surroundings& surroundings) {
    const std::optional<AliasName> alias = alias_name(wanted, font);
    if (!alias || surroundings.own_fonts.empty()) return std::nullopt;
    const Said what = in_front ? Said::CURE_ADD_ALIAS_IN_FRONT : Said::CURE_ADD_ALIAS;
    return Cure{.remedy = Remedy::ADD_ALIAS,
                .what = {what, {alias->name, alias->font}},
                .element = alias_directory(surroundings),
                .wanted = alias->name,
                .font = alias->font,
                .in_front = in_front};
}

}  // namespace gw::diagnosis
