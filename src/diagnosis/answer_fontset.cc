// SPDX-License-Identifier: MIT
//
// Which charsets of the locale a fontset covers, and what would cover the others.
#include <algorithm>
#include <set>

#include "core/text.h"
#include "diagnosis/answering.h"
#include "diagnosis/packages.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t FIELDS_BEFORE_CHARSET = 12;
constexpr std::size_t MOST_BASE_NAMES = 200;

std::vector<std::string> base_names_in(const std::string& list) {
    std::vector<std::string> names;
    for (std::size_t start = 0; start <= list.size() && names.size() < MOST_BASE_NAMES;) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        const std::string name = list.substr(start, end - start);
        const std::size_t first = name.find_first_not_of(" \t\n");
        if (first != std::string::npos)
            names.push_back(name.substr(first, name.find_last_not_of(" \t\n") + 1 - first));
        start = end + 1;
    }
    return names;
}

/// The base name with this charset, or a pattern for it where the base name is no full one.
std::string with_charset(const std::string& base_name, const std::string& charset) {
    std::size_t end = 0;
    for (std::size_t dash = 0; dash <= FIELDS_BEFORE_CHARSET && end != std::string::npos; ++dash)
        end = base_name.find('-', dash == 0 ? 0 : end + 1);
    std::string pattern = end == std::string::npos ? "" : base_name.substr(0, end);
    if (pattern.empty()) {
        for (std::size_t field = 0; field < FIELDS_BEFORE_CHARSET; ++field) pattern += "-*";
    }
    return pattern + '-' + charset;
}

std::vector<Candidate> of_charset(const std::vector<Candidate>& candidates, const std::string& charset) {
    const std::string ending = '-' + lower_case(charset);
    std::vector<Candidate> found;
    std::copy_if(
        candidates.begin(), candidates.end(), std::back_inserter(found),
        [&ending](const Candidate& candidate) { return lower_case(candidate.name).ends_with(ending); });
    return found;
}

void add_missing(Answering& at, Answer& answer, const std::string& charset,
                 const std::vector<std::string>& base_names) {
    const std::string pattern = with_charset(base_names.empty() ? "" : base_names.front(), charset);
    CharsetCoverage coverage;
    coverage.charset = charset;
    coverage.nearest = find_nearest(pattern, of_charset(at.candidates(), charset));
    if (std::none_of(coverage.nearest.begin(), coverage.nearest.end(),
                     [](const NearFont& font) { return font.is_served; }))
        coverage.packages = packages_for_charset(charset);
    answer.charsets.push_back(std::move(coverage));
}

/// Base names that cover what there are fonts for: those that were given, and for each charset that they do
/// not cover the nearest font that the server has.
std::string covering(const Answer& answer, const std::vector<std::string>& given) {
    std::string names;
    const auto add = [&names](const std::string& name) {
        names.append(names.empty() ? "" : ",").append(name);
    };
    for (const std::string& name : given) add(name);
    for (const CharsetCoverage& coverage : answer.charsets) {
        const auto served = std::find_if(coverage.nearest.begin(), coverage.nearest.end(),
                                         [](const NearFont& font) { return font.is_served; });
        if (coverage.font.empty() && served != coverage.nearest.end()) add(served->name);
    }
    return names;
}

std::string listed(const std::vector<std::string>& charsets) {
    std::string text;
    for (const std::string& charset : charsets) text.append(text.empty() ? "" : ", ").append(charset);
    return text;
}

}  // namespace

void answer_fontset(Answering& at, Answer& answer) {
    const std::vector<std::string> base_names = base_names_in(answer.question.name);
    const OpenedFontset set = at.server.open_fontset(answer.question.name);
    std::set<std::string> covered;
    for (const OpenedFontset::Member& member : set.members) {
        const std::string charset = lower_case(member.charset);
        if (covered.insert(charset).second) answer.charsets.push_back({charset, member.name, {}, {}});
    }
    for (const std::string& charset : set.missing_charsets) {
        if (covered.insert(lower_case(charset)).second)
            add_missing(at, answer, lower_case(charset), base_names);
    }
    answer.works = set.is_usable;
    answer.base_names = covering(answer, base_names);
    const std::string& locale = at.surroundings.locale;
    if (!set.is_usable) {
        answer.verdict.push_back({Said::NO_FONTSET, {locale}});
    } else if (set.missing_charsets.empty()) {
        answer.verdict.push_back({Said::FONTSET_COVERS, {locale}});
    } else {
        answer.verdict.push_back({Said::FONTSET_LACKS, {locale, listed(set.missing_charsets)}});
    }
    if (base_names.empty()) answer.verdict.push_back({Said::NO_BASE_NAMES});
}

}  // namespace gw::diagnosis
