// SPDX-License-Identifier: MIT
//
// What the server does with the name of a font: it is asked, and its rules tell from which file.
#include <langinfo.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <set>
#include <string_view>

#include "core/text.h"
#include "diagnosis/answering.h"
#include "diagnosis/packages.h"
#include "diagnosis/xlfd_fields.h"
#include "fontfiles/font_face.h"
#include "fontfiles/font_verdict.h"
#include "fontpath/path_element.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t LONGEST_NAME = 255;

/// Before a name that ends in "-*" Xlib asks for the charset of the locale, where the name has its first half
/// already: "-iso8859-*" is "-iso8859-1" first. "" when it does not.
std::string pattern_in_locale(const std::string& name) {
    constexpr std::string_view ISO = "iso-8859-";
    const std::string codeset = lower_case(::nl_langinfo(CODESET));
    if (!name.ends_with("-*") || codeset == "utf-8") return {};
    // Where a locale has no charset of fonts, Xlib takes Latin 1.
    std::string registry = "-iso8859-";
    std::string encoding = "1";
    if (codeset.starts_with(ISO)) {
        encoding = codeset.substr(ISO.size());
    } else if (codeset.starts_with("koi8-")) {
        registry = "-koi8-";
        encoding = codeset.substr(codeset.find('-') + 1);
    }
    std::string asked = name.substr(0, name.size() - 1);
    if (!lower_case(asked).ends_with(registry)) return {};
    return asked + encoding;
}

// --- whether what was opened is what the rules say ---------------------------

std::vector<std::string> fields_in(const std::string& name) {
    std::vector<std::string> fields;
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find('-', start), name.size());
        fields.push_back(name.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

/// Whether two full names differ in nothing but their size.
bool are_of_one_face(const std::string& one, const std::string& other) {
    constexpr std::size_t FIELDS = 15;  // the first is empty
    constexpr std::array<std::size_t, 5> SIZES = {7, 8, 9, 10, 12};
    std::vector<std::string> fields = fields_in(one);
    std::vector<std::string> others = fields_in(other);
    if (fields.size() != FIELDS || others.size() != FIELDS) return false;
    for (const std::size_t size : SIZES) fields[size] = others[size] = "";
    return fields == others;
}

bool agrees(const OpenedFont& opened, const Trace& trace) {
    const std::string name = lower_case(opened.name);
    return trace.end == Trace::End::SCALED ? are_of_one_face(name, trace.name) : name == trace.name;
}

// --- why a file is not opened ------------------------------------------------

/// A file that is there and readable, and that the server does not open all the same.
Sentence why_not(const std::string& file) {
    const Verdict verdict = judge(file);
    switch (verdict.kind) {
        case Verdict::Kind::NOT_FOR_SERVERS:
            return {Said::FONT_FILE_NOT_FOR_SERVERS, {file}};
        case Verdict::Kind::DAMAGED:
        case Verdict::Kind::NOT_A_FONT:
        case Verdict::Kind::EMPTY:
            return {Said::FONT_FILE_DAMAGED, {file}};
        default:
            return {Said::FONT_FILE_REFUSED, {file}};
    }
}

/// The server may not get at a file of the element.
Sentence why_unreadable(const std::string& file, const DirectoryFacts& facts) {
    for (const Sentence& remark : facts.remarks) {
        if (remark.said == Said::SERVER_MAY_NOT_ENTER || remark.said == Said::NOT_FOR_EVERYBODY)
            return remark;
    }
    return {Said::FONT_FILE_UNREADABLE, {file}};
}

Sentence why_not(const UnusableFile& unusable, const Answering& at) {
    struct stat info = {};
    const std::string& file = unusable.file;
    if (::lstat(file.c_str(), &info) != 0 && errno == ENOENT)
        return {Said::FONT_FILE_MISSING, {file, unusable.element}};
    if (S_ISLNK(info.st_mode) && renderer_of(file) == FontRenderer::BITMAP)
        return {Said::FONT_FILE_IS_LINK, {file}};
    for (const FontSource& source : at.path.sources) {
        if (source.element != unusable.element) continue;
        const std::vector<std::string>& unreadable = source.facts.unreadable;
        const bool is_shut = source.facts.is_refused && source.facts.trouble == Trouble::UNREADABLE;
        if (is_shut || std::find(unreadable.begin(), unreadable.end(), file) != unreadable.end())
            return why_unreadable(file, source.facts);
    }
    return why_not(file);
}

// --- the finding -------------------------------------------------------------

std::string chain(const Trace& trace) {
    constexpr std::size_t SHOWN = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(trace.aliases.size(), SHOWN); ++i)
        text.append(i == 0 ? "" : ", ").append(trace.aliases[i].alias);
    return text;
}

/// The aliases that are to blame where there is no font.
std::vector<UselessAlias> useless_in(const Trace& trace) {
    using End = Trace::End;
    const bool is_circle = trace.end == End::CIRCLE;
    const bool is_dangling =
        trace.end == End::EMPTY_ALIAS || (trace.end == End::NOTHING && trace.unusable.empty());
    std::vector<UselessAlias> useless;
    if (trace.aliases.empty() || (!is_circle && !is_dangling)) return useless;
    const auto is_last = [&](const TracedAlias& other) {
        return other.alias == trace.aliases.back().alias && other.element == trace.aliases.back().element;
    };
    auto first = trace.aliases.rbegin() + 1;
    if (is_circle) first = std::find_if(first, trace.aliases.rend(), is_last);
    // A chain that is only too long has no alias that is worse than the others.
    if (is_circle && first == trace.aliases.rend()) return useless;
    for (auto alias = first.base(); alias != trace.aliases.end(); ++alias)
        useless.push_back({alias->alias, alias->target, alias->element, alias->directory});
    return useless;
}

void say_where_it_comes_from(FontFinding& found, const OpenedFont& opened, const std::string& asked) {
    std::vector<Sentence>& verdict = found.verdict;
    const ServedFont& font = found.font;
    const std::string name = opened.name.empty() ? asked : opened.name;
    if (font.element.empty()) {
        verdict.push_back({Said::FONT_WORKS, {name}});
    } else if (font.file.empty()) {
        verdict.push_back({Said::FONT_IS_BUILT_IN, {name}});
    } else if (font.found == Found::EXACT) {
        verdict.push_back({Said::FONT_WORKS_FROM, {name, font.file}});
    } else {
        verdict.push_back({Said::FONT_IS_SCALED, {name, font.file}});
    }
    if (!found.trace.aliases.empty())
        verdict.push_back({Said::THROUGH_ALIASES, {chain(found.trace), found.trace.aliases.front().element}});
    if (!font.is_checked && !font.file.empty()) verdict.push_back({Said::FILE_NOT_CERTAIN});
}

void take_opened(FontFinding& found, const OpenedFont& opened, const std::string& asked) {
    Trace& trace = found.trace;
    ServedFont& font = found.font;
    font.name = opened.name;
    font.found = trace.end == Trace::End::SCALED ? Found::SCALED : Found::EXACT;
    if (trace.source != nullptr) {
        font.element = trace.source->element;
        font.file = trace.file;
        font.is_checked = agrees(opened, trace) && !trace.is_damaged && trace.is_certain;
        // One of the bitmaps has this size already.
        if (lower_case(opened.name) == trace.name) font.found = Found::EXACT;
    }
    say_where_it_comes_from(found, opened, asked);
}

/// The family that is wanted, in lower case; "" for any.
std::string family_in(const std::string& name) {
    const std::optional<XlfdFields> fields = fields_of_pattern(name);
    const std::string family = fields ? lower_case((*fields)[Field::FAMILY]) : std::string();
    return family.find_first_of("*?") == std::string::npos ? family : std::string();
}

/// A font of the family may be in a directory of the path without being in its index.
void say_what_no_index_has(std::vector<Sentence>& verdict, const Answering& at, const std::string& name) {
    constexpr int MOST_OPENED = 30;
    const std::string family = family_in(name);
    int opened = 0;
    if (family.empty()) return;
    for (const FontSource& source : at.path.sources) {
        for (const UnlistedFont& unlisted : source.facts.unlisted) {
            if (++opened > MOST_OPENED) return;
            const std::string file = source.facts.directory + unlisted.name;
            const Result<FontFace> font = FontFace::open(file);
            if (!font || lower_case(font->facts().family) != family) continue;
            verdict.push_back({unlisted.is_newer ? Said::FONT_NEWER_THAN_INDEX : Said::FONT_NOT_IN_INDEX,
                               {file, source.element}});
            return;
        }
    }
}

bool has_idle_asterisk(const std::string& name) {
    return name.find("**") != std::string::npos || name.find("*?") != std::string::npos;
}

/// Why there is no font. What the rules found and the server did not open comes first.
void say_why_not(FontFinding& found, Answering& at, const std::string& name) {
    std::vector<Sentence>& verdict = found.verdict;
    const Trace& trace = found.trace;
    if (trace.end == Trace::End::FONT || trace.end == Trace::End::SCALED || !trace.unusable.empty()) {
        const bool is_listed = !at.server.names(name, 1).empty();
        found.font.found = is_listed ? Found::NOT_OPENED : Found::NOTHING;
        found.font.element = trace.source != nullptr ? trace.source->element : trace.unusable.back().element;
        found.font.file = trace.source != nullptr ? trace.file : trace.unusable.back().file;
        if (!is_listed && trace.unusable.empty()) {
            verdict.push_back({Said::FONT_NOT_READ_YET, {name, found.font.element}});
            return;
        }
        verdict.push_back({is_listed ? Said::FONT_CANNOT_BE_OPENED : Said::NO_SUCH_FONT, {name}});
        if (!trace.unusable.empty()) {
            for (const UnusableFile& file : trace.unusable) verdict.push_back(why_not(file, at));
        } else if (!trace.file.empty()) {
            verdict.push_back(why_not(trace.file));
        }
        return;
    }
    // What the server has read of a directory that is gone is still listed. So is an alias, with no font.
    const bool is_listed = trace.aliases.empty() && !at.server.names(name, 1).empty();
    if (is_listed) found.font.found = Found::NOT_OPENED;
    verdict.push_back({is_listed ? Said::FONT_CANNOT_BE_OPENED : Said::NO_SUCH_FONT, {name}});
    say_what_no_index_has(verdict, at, trace.aliases.empty() ? name : trace.aliases.back().target);
    const std::string dead = dead_elements(at.path.reports, true);
    if (!dead.empty()) verdict.push_back({Said::PATH_HAS_DEAD_ELEMENTS, {dead}});
    if (!trace.aliases.empty()) {
        const TracedAlias& last = trace.aliases.back();
        verdict.push_back({Said::ALIAS_LEADS_NOWHERE, {last.alias, last.element, last.target}});
    }
    if (trace.sizes_disagree) verdict.push_back({Said::SIZES_DISAGREE});
    if (has_idle_asterisk(name)) verdict.push_back({Said::IDLE_ASTERISK});
}

/// What the server must not be asked, or need not be. True when that is the answer.
bool is_settled_before(FontFinding& found, const std::string& name) {
    const Trace& trace = found.trace;
    if (name.empty()) {
        found.verdict.push_back({Said::NOTHING_ASKED});
    } else if (name.size() > LONGEST_NAME) {
        found.verdict.push_back({Said::TOO_LONG_FOR_A_FONT});
    } else if (trace.end == Trace::End::CIRCLE) {
        found.verdict.push_back({Said::ALIASES_IN_CIRCLE, {chain(trace), trace.aliases.front().element}});
    } else if (trace.end == Trace::End::EMPTY_ALIAS) {
        // X servers have ended when they were asked for it (Xvfb 21.1.7).
        found.verdict.push_back(
            {Said::ALIAS_OF_NOTHING, {trace.aliases.back().alias, trace.aliases.back().element}});
    } else {
        return false;
    }
    return true;
}

// --- what is near ------------------------------------------------------------

/// What fonts are to be near to: where an alias leads nowhere, what it leads to, and not the alias itself.
const std::string& name_to_find(const Answer& answer, const Trace& trace) {
    const bool is_dangling = !answer.works && !trace.aliases.empty();
    return is_dangling ? trace.aliases.back().target : answer.question.name;
}

void find_near_fonts(Answering& at, Answer& answer, const std::string& name) {
    answer.nearest = find_nearest(name, at.candidates());
    // What the answer is already about is no other font.
    std::erase_if(answer.nearest, [&](const NearFont& font) {
        return font.differences.empty() && answer.works && !font.file.empty() &&
               font.file == answer.font.file;
    });
    for (const NearFont& font : answer.nearest) {
        if (!font.differences.empty()) break;
        const bool is_behind = font.is_served && answer.works;
        if (!font.is_served || is_behind)
            answer.verdict.push_back(
                {is_behind ? Said::FONT_IS_BEHIND : Said::FONT_IS_UNSERVED, {font.name, font.element}});
        break;
    }
}

}  // namespace

FontFinding find_font(Answering& at, const std::string& name) {
    FontFinding found;
    const std::string in_locale = pattern_in_locale(name);
    if (!in_locale.empty()) found.trace = at.rules.follow(in_locale);
    if (found.trace.source == nullptr || found.trace.is_damaged) found.trace = at.rules.follow(name);
    for (const TracedAlias& alias : found.trace.aliases) found.font.aliases.push_back(alias.alias);
    if (is_settled_before(found, name)) {
        found.font.useless = useless_in(found.trace);
        return found;
    }
    const std::optional<OpenedFont> opened = at.server.open(name);
    if (opened) {
        take_opened(found, *opened, name);
    } else {
        found.font.useless = useless_in(found.trace);
        say_why_not(found, at, name);
    }
    return found;
}

void answer_font(Answering& at, Answer& answer) {
    FontFinding found = find_font(at, answer.question.name);
    answer.font = std::move(found.font);
    answer.works = answer.font.found == Found::EXACT || answer.font.found == Found::SCALED;
    answer.verdict.insert(answer.verdict.end(), found.verdict.begin(), found.verdict.end());
    if (answer.font.found == Found::EXACT || answer.question.name.empty()) return;
    const std::string& wanted = name_to_find(answer, found.trace);
    find_near_fonts(at, answer, wanted);
    if (!answer.works) answer.packages = packages_for(wanted);
}

// --- candidates --------------------------------------------------------------

const std::vector<Candidate>& Answering::candidates() {
    if (has_candidates_) return candidates_;
    has_candidates_ = true;
    for (const FontSource& source : path.sources) add(source, true);
    add_names_of_server();
    if (server.place() == ServerPlace::ELSEWHERE) return candidates_;
    for (const FontSource& source : path.unserved) add(source, false);
    add_other_directories();
    return candidates_;
}

void Answering::add(const FontSource& source, bool is_served) {
    // What is not served is known by its directory, which cures can put on a path.
    for (const IndexEntry& entry : source.facts.index.entries) {
        const std::string file =
            entry.file_name.empty() ? "" : std::string(indexed_file(entry.file_name).name);
        if (!file.empty() && renderer_of(file) == FontRenderer::NONE) continue;
        candidates_.push_back(
            {entry.font_name, file.empty() ? "" : source.facts.directory + file, source.element, is_served});
    }
    for (const ServerAlias& alias : source.facts.aliases.aliases)
        candidates_.push_back({alias.alias, "", source.element, is_served});
}

/// Names whose files this process does not see: of font servers, or on another host. Sizes that the server
/// makes of bitmaps are not names of fonts.
void Answering::add_names_of_server() {
    std::set<std::string> known;
    for (const Candidate& candidate : candidates_) known.insert(candidate.name);
    const bool sees_files = server.place() != ServerPlace::ELSEWHERE;
    for (const std::string& name : server.names("*", AskedOnce::ALL)) {
        const std::string lower = lower_case(name);
        if (known.contains(lower)) continue;
        if (sees_files && lower.find("-0-") != std::string::npos) continue;
        candidates_.push_back({lower, "", "", true});
    }
}

void Answering::add_other_directories() {
    std::set<ElementIdentity> known;
    for (const std::vector<FontSource>* sources : {&path.sources, &path.unserved}) {
        for (const FontSource& source : *sources)
            known.insert(identity_of_element(directory_of_element(source.facts.directory)));
    }
    const std::vector<std::string> silent = find_silent(surroundings.other_directories);
    for (const std::string& directory : surroundings.other_directories) {
        if (std::find(silent.begin(), silent.end(), directory) != silent.end()) continue;
        if (!known.insert(identity_of_element(directory)).second) continue;
        FontSource source = {directory, "", {}};
        source.facts = read_indexes(directory);
        add(source, false);
    }
}

}  // namespace gw::diagnosis
