// SPDX-License-Identifier: MIT
//
// Answers about font files, directories and the font path as a whole.
#include <sys/stat.h>

#include <algorithm>

#include "core/text.h"
#include "diagnosis/answering.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NAMES_SHOWN = 3;

const FontSource* source_of(const std::vector<FontSource>& sources, const std::string& directory) {
    const ElementIdentity wanted = identity_of_element(directory);
    const auto found = std::find_if(sources.begin(), sources.end(), [&](const FontSource& source) {
        return !source.facts.directory.empty() && identity_of_element(source.facts.directory) == wanted;
    });
    return found == sources.end() ? nullptr : &*found;
}

std::vector<std::string> names_of_file(const DirectoryFacts& facts, const std::string& file) {
    std::vector<std::string> names;
    for (const IndexEntry& entry : facts.index.entries)
        if (indexed_file(entry.file_name).name == file) names.push_back(entry.font_name);
    return names;
}

std::string first_of(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), NAMES_SHOWN); ++i)
        text.append(i == 0 ? "" : ", ").append(names[i]);
    return text;
}

bool is_same_file(const std::string& one, const std::string& other) {
    struct stat a = {};
    struct stat b = {};
    return ::stat(one.c_str(), &a) == 0 && ::stat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

/// Whether the server opens the file under one of its names.
void open_file(Answering& at, Answer& answer, const std::string& path, const std::string& name) {
    FontFinding found = find_font(at, name);
    answer.font = found.font;
    const bool is_opened = found.font.found == Found::EXACT || found.font.found == Found::SCALED;
    if (is_opened && !found.font.file.empty() && !is_same_file(found.font.file, path)) {
        answer.verdict.push_back({Said::FILE_IS_HIDDEN, {name, found.font.file}});
        return;
    }
    answer.works = is_opened;
    answer.verdict.insert(answer.verdict.end(), found.verdict.begin(), found.verdict.end());
}

ElementReport report_on_catalogue(Answering& at, const std::string& element) {
    ElementReport report = look_at_stranger(at.server, element);
    if (report.state == ElementState::NOT_SERVED) report.remarks.front() = {Said::IS_ON_NO_PATH, {element}};
    return report;
}

/// The report on a directory whose fonts the server has through a catalogue.
ElementReport report_on_linked(ElementReport report, const FontSource& served) {
    report.state = served.facts.remarks.empty() ? ElementState::WORKS : ElementState::WORKS_IN_PART;
    report.trouble = served.facts.trouble;
    report.unreadable = served.facts.unreadable;
    report.remarks = served.facts.remarks;
    report.remarks.insert(report.remarks.begin(), {Said::SERVED_BY_CATALOGUE, {served.element}});
    return report;
}

/// The report on a directory that is on no path, or is behind a link of a served catalogue.
ElementReport report_on_stranger(Answering& at, const std::string& element) {
    if (is_catalogue(element)) return report_on_catalogue(at, element);
    ElementReport report;
    report.element = element;
    const std::string directory = directory_of_element(element);
    if (is_silent(directory)) {
        report.state = ElementState::DEAD;
        report.trouble = Trouble::REFUSED;
        report.remarks.push_back({Said::DIRECTORY_IS_SILENT});
        return report;
    }
    if (const FontSource* served = source_of(at.path.sources, directory))
        return report_on_linked(std::move(report), *served);
    const DirectoryFacts facts = look_at_directory(directory, {at.server.user(), at.server.groups()});
    report.state = facts.is_refused ? ElementState::DEAD : ElementState::NOT_SERVED;
    if (!facts.is_known) report.state = ElementState::NOT_KNOWN;
    report.trouble = facts.trouble;
    report.unreadable = facts.unreadable;
    report.remarks = facts.remarks;
    if (report.state == ElementState::NOT_SERVED)
        report.remarks.insert(report.remarks.begin(), {Said::IS_ON_NO_PATH, {element}});
    return report;
}

/// What an element is without its attributes. A catalogue has none.
ElementIdentity bare_identity(const std::string& element) {
    return identity_of_element(is_catalogue(element) ? element : directory_of_element(element));
}

const ElementReport* report_in(const Answer& answer, const std::string& element) {
    const auto as_written =
        std::find_if(answer.path.begin(), answer.path.end(),
                     [&](const ElementReport& report) { return report.element == element; });
    if (as_written != answer.path.end()) return &*as_written;
    const ElementIdentity wanted = bare_identity(element);
    const auto found = std::find_if(answer.path.begin(), answer.path.end(), [&](const ElementReport& report) {
        return bare_identity(report.element) == wanted;
    });
    return found == answer.path.end() ? nullptr : &*found;
}

void say_all(Answer& answer, const ElementReport& report) {
    if (report.place > 0)
        answer.verdict.push_back({Said::ELEMENT_AT_PLACE, {report.element, std::to_string(report.place)}});
    else
        answer.verdict.push_back({Said::ELEMENT_NOT_AT_ALL, {report.element}});
    answer.verdict.insert(answer.verdict.end(), report.remarks.begin(), report.remarks.end());
}

}  // namespace

std::string dead_elements(const std::vector<ElementReport>& path, bool are_served) {
    std::vector<std::string> dead;
    for (const ElementReport& report : path) {
        if (report.state == ElementState::DEAD && (report.place > 0) == are_served)
            dead.push_back(report.element);
    }
    return first_of(dead);
}

void answer_file(Answering& at, Answer& answer) {
    const std::string& path = answer.question.name;
    struct stat info = {};
    if (answer.place == ServerPlace::ELSEWHERE) return;
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    if (!directory.empty() && is_silent(directory)) {
        answer.verdict.push_back({Said::DIRECTORY_IS_SILENT});
        return;
    }
    if (slash == std::string::npos || ::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        answer.verdict.push_back({Said::NO_SUCH_FILE, {path}});
        return;
    }
    const FontSource* served = source_of(at.path.sources, directory);
    const DirectoryFacts facts = served != nullptr ? served->facts : read_indexes(directory);
    const std::vector<std::string> names = names_of_file(facts, path.substr(slash + 1));
    if (names.empty()) {
        answer.verdict.push_back({Said::FILE_NOT_LISTED, {path}});
    } else {
        answer.verdict.push_back(
            {Said::FILE_IS_LISTED, {path, std::to_string(names.size()), first_of(names)}});
    }
    if (served == nullptr) {
        answer.verdict.push_back({Said::IS_ON_NO_PATH, {directory}});
    } else if (!names.empty()) {
        open_file(at, answer, path, names.front());
    }
}

void answer_directory(Answering& at, Answer& answer) {
    const std::string& element = answer.question.name;
    const ElementReport* report = report_in(answer, element);
    const bool can_be_looked_at = element.starts_with('/') || is_catalogue(element);
    if (report == nullptr && can_be_looked_at && answer.place != ServerPlace::ELSEWHERE) {
        answer.path.push_back(report_on_stranger(at, element));
        report = &answer.path.back();
    }
    if (report == nullptr) {
        answer.verdict.push_back({Said::ELEMENT_NOT_AT_ALL, {element}});
        return;
    }
    say_all(answer, *report);
    answer.works = report->state == ElementState::WORKS;
}

/// The message of `xset` has one text for many causes: the one that holds is said.
void answer_path(const Answering& at, Answer& answer) {
    const int place = answer.question.element;
    const auto served =
        static_cast<int>(std::count_if(answer.path.begin(), answer.path.end(),
                                       [](const ElementReport& report) { return report.place > 0; }));
    const std::string dead = dead_elements(answer.path, true);
    const std::string dead_configured = dead_elements(answer.path, false);
    (void)at;
    if (place > 0 && place <= served &&
        answer.path[static_cast<std::size_t>(place) - 1].state == ElementState::DEAD) {
        say_all(answer, answer.path[static_cast<std::size_t>(place) - 1]);
    } else if (!dead.empty()) {
        answer.verdict.push_back({Said::PATH_HAS_DEAD_ELEMENTS, {dead}});
    } else {
        if (place > 0) answer.verdict.push_back({Said::REFUSED_ELEMENT_IS_GONE, {std::to_string(place)}});
        if (!dead_configured.empty())
            answer.verdict.push_back({Said::CONFIGURED_ELEMENTS_ARE_DEAD, {dead_configured}});
        if (dead_configured.empty()) answer.verdict.push_back({Said::PATH_IS_IN_ORDER});
        answer.works = place == 0 && dead_configured.empty();
    }
}

}  // namespace gw::diagnosis
