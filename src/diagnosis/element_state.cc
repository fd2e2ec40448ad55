// SPDX-License-Identifier: MIT
#include "diagnosis/element_state.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <optional>
#include <set>
#include <unordered_set>
#include <utility>

#include "core/text.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t LONGEST_ELEMENT = 255;
constexpr int MOST_NAMES = 65535;        // that a server lists
constexpr std::size_t MOST_LINKS = 100;  // of a catalogue that are looked at
constexpr std::size_t MOST_TOLD = 10;    // links of which something is told

using Names = std::unordered_set<std::string>;

std::string attributes_of(std::string_view element) {
    const std::size_t colon = element.find(':');
    return colon == std::string_view::npos ? std::string() : std::string(element.substr(colon));
}

// --- the fonts in the server itself --------------------------------------------

/// What every server of today has (libXfont2).
DirectoryFacts built_in_fonts() {
    constexpr const char* FIXED = "-misc-fixed-medium-r-semicondensed--13-120-75-75-c-60-iso8859-1";
    DirectoryFacts facts;
    facts.index.entries = {{"", FIXED}, {"", "cursor"}};
    facts.aliases.aliases = {{"fixed", FIXED},
                             {"6x13", FIXED},
                             {"-misc-fixed-medium-r-semicondensed--13-100-100-100-c-60-iso8859-1", FIXED}};
    return facts;
}

// --- the path ----------------------------------------------------------------

class PathLook {
  public:
    PathLook(ServerView& server, const Surroundings& surroundings)
        : server_(server), user_{server.user(), server.groups()}, place_(server.place()) {
        served_ = server.font_path();
        for (const std::string& element : surroundings.configured)
            if (std::find(configured_.begin(), configured_.end(), element) == configured_.end())
                configured_.push_back(element);
    }

    PathState state() {
        if (place_ != ServerPlace::ELSEWHERE) find_silent_ones();
        for (std::size_t i = 0; i < served_.size(); ++i)
            report(served_[i], static_cast<int>(i) + 1, is_among(served_[i], configured_));
        for (const std::string& element : configured_)
            if (!is_among(element, served_) && !is_still_to_be_made(element)) report(element, 0, true);
        return std::move(state_);
    }

    /// Of an element that is on no path.
    ElementReport stranger(const std::string& element) {
        served_.clear();
        configured_ = {element};
        if (place_ != ServerPlace::ELSEWHERE) find_silent_ones();
        report(element, 0, false);
        return std::move(state_.reports.back());
    }

  private:
    [[nodiscard]] ElementIdentity identity(const std::string& element) const {
        const bool is_elsewhere = place_ == ServerPlace::ELSEWHERE;
        const std::string directory = place_of_element(element);
        const bool may_look = !is_elsewhere && !silent_.contains(directory);
        return identity_of_element(element, may_look ? PathHost::THIS : PathHost::ANOTHER);
    }
    [[nodiscard]] bool is_among(const std::string& element, const std::vector<std::string>& others) const {
        const ElementIdentity wanted = identity(element);
        return std::any_of(others.begin(), others.end(),
                           [&](const std::string& other) { return identity(other) == wanted; });
    }

    void find_silent_ones() {
        std::set<std::string> directories;
        for (const std::vector<std::string>* elements : {&served_, &configured_}) {
            for (const std::string& element : *elements) {
                const std::string directory = place_of_element(element);
                if (!directory.empty()) directories.insert(directory);
            }
        }
        for (std::string& silent :
             find_silent(std::vector<std::string>(directories.begin(), directories.end())))
            silent_.insert(std::move(silent));
    }

    /// Everyone's directory is on every installation's path, and is made for the first font that is installed
    /// there. Nobody lacks it before.
    [[nodiscard]] bool is_still_to_be_made(const std::string& element) const {
        struct stat info = {};
        return place_ != ServerPlace::ELSEWHERE && with_trailing_slash(element) == SUPERUSER_FONT_DIR &&
               ::stat(SUPERUSER_FONT_DIR, &info) != 0 && errno == ENOENT;
    }

    // --- one element ---------------------------------------------------------

    void report(const std::string& element, int place, bool is_configured) {
        ElementReport report;
        report.element = element;
        report.place = place;
        report.is_configured = is_configured;
        fill_in(report);
        state_.reports.push_back(std::move(report));
    }

    void fill_in(ElementReport& report) {
        switch (kind_of_element(report.element)) {
            case ElementKind::DIRECTORY:
            case ElementKind::CATALOGUE:
                return fill_in_directory(report);
            case ElementKind::FONT_SERVER:
                report.state = report.place > 0 ? ElementState::WORKS : ElementState::NOT_KNOWN;
                report.remarks.push_back({Said::IS_FONT_SERVER});
                return keep_unknown(report);
            case ElementKind::BUILT_INS:
                report.state = report.place > 0 ? ElementState::WORKS : ElementState::NOT_SERVED;
                if (report.place == 0) report.remarks.push_back({Said::NOT_ON_SERVER});
                report.remarks.push_back({Said::IS_BUILT_IN});
                return keep({report.element, "", built_in_fonts()}, report.place > 0);
            case ElementKind::OTHER:
                report.state = report.place > 0 ? ElementState::NOT_KNOWN : ElementState::DEAD;
                report.trouble = Trouble::BAD_NAME;
                report.remarks.push_back({Said::UNKNOWN_ELEMENT});
                return keep_unknown(report);
        }
    }

    void fill_in_directory(ElementReport& report) {
        const std::string directory = place_of_element(report.element);
        if (place_ == ServerPlace::ELSEWHERE) {
            report.state = ElementState::NOT_KNOWN;
            report.remarks.push_back({Said::ELEMENT_IS_ELSEWHERE});
            keep_unknown(report);
        } else if (silent_.contains(directory)) {
            report.state = ElementState::DEAD;
            report.trouble = Trouble::REFUSED;
            report.remarks.push_back({Said::DIRECTORY_IS_SILENT});
            keep_unknown(report);
        } else if (has_bad_name(report)) {
            report.state = ElementState::DEAD;
        } else if (kind_of_element(report.element) == ElementKind::CATALOGUE) {
            look_at_catalogue(report);
        } else {
            FontSource source = {report.element, attributes_of(report.element),
                                 look_at_directory(directory, user_)};
            take_over(source.facts, report);
            conclude(report, source.facts.is_refused, source.facts.is_known, entries_of(source.facts));
            if (report.place > 0) tell_of_lacking(lacking_of(source.facts), report);
            if (report.place > 0 || catalogue_with(report.element).empty())
                keep(std::move(source), report.place > 0);
        }
    }

    /// A name that no path can have. One that the server has all the same is looked at.
    static bool has_bad_name(ElementReport& report) {
        const bool has_comma = report.element.find(',') != std::string::npos;
        if (!has_comma && report.element.size() <= LONGEST_ELEMENT) return has_colon(report);
        report.trouble = Trouble::BAD_NAME;
        report.remarks.push_back({has_comma ? Said::COMMA_IN_ELEMENT : Said::ELEMENT_TOO_LONG});
        return report.place == 0;
    }

    /// A directory with a colon in its name: the server looks for another one.
    static bool has_colon(ElementReport& report) {
        struct stat info = {};
        const std::string directory = directory_of_element(report.element);
        if (directory == report.element || kind_of_element(report.element) != ElementKind::DIRECTORY)
            return false;
        if (::stat(report.element.c_str(), &info) != 0 || ::stat(directory.c_str(), &info) == 0) return false;
        report.trouble = Trouble::BAD_NAME;
        report.remarks.push_back({Said::COLON_IN_ELEMENT, {directory}});
        return true;
    }

    static std::size_t entries_of(const DirectoryFacts& facts) {
        return facts.index.entries.size() + facts.aliases.aliases.size();
    }

    static void take_over(DirectoryFacts& facts, ElementReport& report) {
        if (report.trouble == Trouble::NONE) report.trouble = facts.trouble;
        report.unreadable.insert(report.unreadable.end(), facts.unreadable.begin(), facts.unreadable.end());
        report.remarks.insert(report.remarks.end(), facts.remarks.begin(), facts.remarks.end());
    }

    /// The state that follows from what was found, and the sentence for it where none has been said.
    void conclude(ElementReport& report, bool is_refused, bool is_known, std::size_t names) const {
        const bool is_served = report.place > 0;
        const bool may_be_elsewhere =
            place_ == ServerPlace::UNKNOWN && report.trouble == Trouble::NO_DIRECTORY;
        if (!is_known || may_be_elsewhere) {
            report.state = ElementState::NOT_KNOWN;
            if (may_be_elsewhere) report.remarks.push_back({Said::ELEMENT_MAY_BE_ELSEWHERE});
        } else if (is_refused) {
            report.state = ElementState::DEAD;
            if (is_served) report.remarks.push_back({Said::SERVER_STILL_HAS_IT});
        } else if (!is_served && !catalogue_with(report.element).empty()) {
            report.state = report.remarks.empty() ? ElementState::WORKS : ElementState::WORKS_IN_PART;
            report.remarks.insert(report.remarks.begin(),
                                  {Said::SERVED_BY_CATALOGUE, {catalogue_with(report.element)}});
        } else if (!is_served) {
            report.state = ElementState::NOT_SERVED;
            report.remarks.insert(report.remarks.begin(), {Said::NOT_ON_SERVER});
        } else if (!report.remarks.empty()) {
            report.state = ElementState::WORKS_IN_PART;
        } else {
            report.remarks.push_back({Said::ELEMENT_ANSWERS, {std::to_string(names)}});
        }
    }

    /// The catalogue of the server's that has the directory; "" for none.
    [[nodiscard]] std::string catalogue_with(const std::string& element) const {
        const std::string directory = is_catalogue(element) ? "" : place_of_element(element);
        for (const FontSource& source : state_.sources) {
            if (!directory.empty() && is_catalogue(source.element) && !source.facts.is_refused &&
                identity_of_element(without_trailing_slashes(source.facts.directory)) ==
                    identity_of_element(directory))
                return source.element;
        }
        return "";
    }

    /// How many names of the index the server does not have.
    std::size_t lacking_of(const DirectoryFacts& facts) {
        if (facts.is_refused || !facts.is_known || !knows_all_names()) return 0;
        std::size_t lacking = 0;
        for (const IndexEntry& entry : facts.index.entries) {
            const bool counts = renderer_of(entry.file_name) != FontRenderer::NONE &&
                                entry.font_name.size() <= LONGEST_ELEMENT;
            if (counts && !names_.contains(entry.font_name)) ++lacking;
        }
        return lacking;
    }

    static void tell_of_lacking(std::size_t lacking, ElementReport& report) {
        if (lacking == 0) return;
        if (report.state == ElementState::WORKS) {
            report.state = ElementState::WORKS_IN_PART;
            report.remarks.clear();
        }
        report.remarks.insert(report.remarks.begin(),
                              {Said::INDEX_NOT_READ_AGAIN, {std::to_string(lacking)}});
    }

    /// Asks for the names, once. False when the server may have more than it has listed.
    bool knows_all_names() {
        if (!were_names_asked_) {
            were_names_asked_ = true;
            const std::vector<std::string> names = server_.names("*", MOST_NAMES);
            has_all_names_ = !names.empty() && names.size() < MOST_NAMES;
            for (const std::string& name : names) names_.insert(lower_case(name));
        }
        return has_all_names_;
    }

    void keep_unknown(const ElementReport& report) {
        FontSource source = {report.element, "", {}};
        source.facts.is_known = false;
        keep(std::move(source), report.place > 0);
    }
    void keep(FontSource source, bool is_served) {
        (is_served ? state_.sources : state_.unserved).push_back(std::move(source));
    }

    // --- catalogues ----------------------------------------------------------

    /// What was found behind the links of a catalogue. Many may lead to one directory.
    struct LookedAt {
        std::map<std::pair<dev_t, ino_t>, DirectoryFacts> directories;
        std::size_t told = 0;  // links
    };

    void look_at_catalogue(ElementReport& report) {
        const std::string directory = directory_of_catalogue(report.element);
        if (!directory.starts_with('/')) {
            report.trouble = Trouble::BAD_NAME;
            report.remarks.push_back(directory.empty() ? Sentence{Said::NAMES_NO_DIRECTORY}
                                                       : Sentence{Said::RELATIVE_CATALOGUE, {directory}});
            return conclude(report, true, directory.empty(), 0);
        }
        Result<std::vector<CatalogueLink>> links = links_of_catalogue(directory);
        if (!links) return refuse_catalogue(report, directory, links.failure());
        const std::size_t left_out = links->size() - std::min(links->size(), MOST_LINKS);
        links->resize(links->size() - left_out);
        LookedAt looked_at;
        const std::size_t names = look_at_links(report, *links, looked_at);
        if (links->empty()) report.remarks.push_back({Said::CATALOGUE_IS_EMPTY});
        if (left_out > 0) {
            report.remarks.push_back({Said::LINKS_LEFT_OUT, {std::to_string(left_out)}});
            keep_unknown(report);
        }
        conclude(report, false, true, names);
        if (report.place == 0) return;
        std::size_t lacking = 0;
        for (const auto& [place, facts] : looked_at.directories) lacking += lacking_of(facts);
        tell_of_lacking(lacking, report);
    }

    /// What is not there the server does not take either; what this user may not read, it may.
    void refuse_catalogue(ElementReport& report, const std::string& directory, const Failure& failure) {
        const bool is_absent = failure.error == ENOENT || failure.error == ENOTDIR;
        if (is_absent) report.trouble = Trouble::NO_DIRECTORY;
        report.remarks.push_back({is_absent ? Said::NO_SUCH_DIRECTORY : Said::MAY_NOT_LOOK, {directory}});
        if (!is_absent) keep_unknown(report);
        conclude(report, is_absent, is_absent, 0);
    }

    /// How many names are behind the links.
    std::size_t look_at_links(ElementReport& report, const std::vector<CatalogueLink>& links,
                              LookedAt& looked_at) {
        const std::vector<std::string> silent = silent_links(links);
        std::size_t names = 0;
        for (const CatalogueLink& link : links) {
            if (std::find(silent.begin(), silent.end(), link.directory) != silent.end()) {
                DirectoryFacts silence;
                silence.remarks = {{Said::DIRECTORY_IS_SILENT}};
                tell_of_link(report, link, silence, looked_at);
            } else {
                names += look_at_link(report, link, looked_at);
            }
        }
        if (looked_at.told > MOST_TOLD)
            report.remarks.push_back(
                {Said::MORE_LINKS_AT_FAULT, {std::to_string(looked_at.told - MOST_TOLD)}});
        return names;
    }

    static std::vector<std::string> silent_links(const std::vector<CatalogueLink>& links) {
        std::vector<std::string> paths;
        paths.reserve(links.size());
        for (const CatalogueLink& link : links) paths.push_back(link.directory);
        return find_silent(paths);
    }

    static void tell_of_link(ElementReport& report, const CatalogueLink& link, DirectoryFacts& facts,
                             LookedAt& looked_at) {
        if (facts.remarks.empty()) return;
        if (++looked_at.told > MOST_TOLD) {
            facts.remarks.clear();
        } else {
            report.remarks.push_back({Said::CATALOGUE_LINK, {link.name, link.target}});
        }
        take_over(facts, report);
    }

    /// The facts of the directory, which is looked at once. What is wrong with it is told once.
    DirectoryFacts facts_behind(ElementReport& report, const CatalogueLink& link, LookedAt& looked_at) {
        struct stat info = {};
        const bool is_there = ::stat(link.directory.c_str(), &info) == 0;
        const std::pair directory(info.st_dev, info.st_ino);
        if (const auto known = looked_at.directories.find(directory);
            is_there && known != looked_at.directories.end())
            return known->second;
        DirectoryFacts facts = look_at_directory(link.directory, user_);
        tell_of_link(report, link, facts, looked_at);
        if (is_there) looked_at.directories.emplace(directory, facts);
        return facts;
    }

    /// How many names are behind the link. The server leaves a link out that it cannot use.
    std::size_t look_at_link(ElementReport& report, const CatalogueLink& link, LookedAt& looked_at) {
        FontSource source = {report.element, link.attributes, facts_behind(report, link, looked_at),
                             link.place};
        const std::size_t names = source.facts.is_refused ? 0 : entries_of(source.facts);
        keep(std::move(source), report.place > 0);
        return names;
    }

    ServerView& server_;
    ServerUser user_;
    ServerPlace place_;
    std::vector<std::string> served_;
    std::vector<std::string> configured_;
    std::set<std::string> silent_;
    Names names_;
    bool were_names_asked_ = false;
    bool has_all_names_ = false;
    PathState state_;
};

}  // namespace

ElementKind kind_of_element(std::string_view element) {
    if (element.starts_with('/')) return ElementKind::DIRECTORY;
    if (is_catalogue(element)) return ElementKind::CATALOGUE;
    if (element == "built-ins") return ElementKind::BUILT_INS;
    for (const std::string_view transport : {"tcp/", "inet/", "inet6/", "unix/", "local/", "decnet/"}) {
        if (element.starts_with(transport)) return ElementKind::FONT_SERVER;
    }
    return ElementKind::OTHER;
}

PathState look_at_path(ServerView& server, const Surroundings& surroundings) {
    return PathLook(server, surroundings).state();
}

ElementReport look_at_stranger(ServerView& server, const std::string& element) {
    return PathLook(server, Surroundings()).stranger(element);
}

}  // namespace gw::diagnosis
