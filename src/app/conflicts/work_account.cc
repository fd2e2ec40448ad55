// SPDX-License-Identifier: MIT
#include "app/conflicts/work_account.h"

#include <algorithm>
#include <set>

#include "texts/messages.h"

namespace gw {

namespace {

struct KindTexts {
    WorkKind kind;
    Message word;
    Tone tone;
    Message one, many;  ///< for the count
};

/// In the order of the counts.
constexpr KindTexts KINDS[] = {
    {WorkKind::INSTALLED, Message::KIND_INSTALLED, Tone::GOOD, Message::ONE_FONT_INSTALLED,
     Message::MANY_FONTS_INSTALLED},
    {WorkKind::REPLACED, Message::KIND_REPLACED, Tone::GOOD, Message::ONE_FONT_REPLACED,
     Message::MANY_FONTS_REPLACED},
    {WorkKind::DELETED, Message::KIND_DELETED, Tone::GOOD, Message::ONE_FONT_DELETED,
     Message::MANY_FONTS_DELETED},
    {WorkKind::KEPT, Message::KIND_KEPT, Tone::FAINT, Message::ONE_FONT_KEPT, Message::MANY_FONTS_KEPT},
    {WorkKind::FAILED, Message::KIND_FAILED, Tone::BAD, Message::ONE_FAILURE, Message::MANY_FAILURES}};

const KindTexts& texts_of(WorkKind kind) {
    return *std::find_if(std::begin(KINDS), std::end(KINDS),
                         [kind](const KindTexts& texts) { return texts.kind == kind; });
}

bool is_success(WorkKind kind) {
    return kind == WorkKind::INSTALLED || kind == WorkKind::DELETED;
}

TableRow row_of(const WorkLine& line) {
    const KindTexts& texts = texts_of(line.kind);
    const Tone tone = line.kind == WorkKind::KEPT ? Tone::FAINT : Tone::PLAIN;
    return {{text_of(texts.word), texts.tone}, {line.what, tone}, {line.why, tone}};
}

std::string name_of(const GWConflict& conflict) {
    return name_without_mark(conflict.get_name());
}

WorkLine planned_line(const GWConflict& conflict, Resolution resolution) {
    switch (resolution) {
        case Resolution::UNDECIDED:
            return {WorkKind::KEPT, name_of(conflict), text_of(Message::NOT_DECIDED)};
        case Resolution::KEEP_AS_IS:
            return {WorkKind::KEPT, name_of(conflict), text_of(Message::WHY_AS_DECIDED)};
        case Resolution::READ_ONLY:
            return {WorkKind::KEPT, name_of(conflict), obstacle_in_words(conflict)};
        case Resolution::FORCE:
            break;
    }
    if (conflict.get_type() != GWConflict::INSTALL)
        return {WorkKind::DELETED, name_of(conflict), text_of(Message::WHY_AS_DECIDED)};
    const std::string dir = conflict.get_conflict_dir_name();
    return {WorkKind::REPLACED, name_of(conflict), text_of(Message::WHY_OLD_ONE_WAS_IN, {dir})};
}

}  // namespace

void WorkAccount::add(const WorkLine& line) {
    ++counts_[line.kind];
    lines_.push_back(line);
}

void WorkAccount::add(const std::vector<FailureText>& failures) {
    for (const FailureText& failure : failures) {
        std::string why = failure.why;
        for (const std::string& more : failure.more) why += "; " + more;
        add({WorkKind::FAILED, failure.what, why});
    }
}

void WorkAccount::add_done(WorkKind kind, unsigned count, const std::vector<std::string>& names) {
    counts_[kind] += count;
    for (std::size_t i = 0; i < names.size() && i < MOST_NAMES; ++i) lines_.push_back({kind, names[i], ""});
    if (names.size() > MOST_NAMES)
        lines_.push_back(
            {kind, text_of(Message::AND_MORE, static_cast<unsigned>(names.size() - MOST_NAMES)), ""});
}

void WorkAccount::add(const SummaryNote& note) {
    if (!note.lines.empty()) notes_.push_back(note);
}

unsigned WorkAccount::count(WorkKind kind) const {
    const auto found = counts_.find(kind);
    return found != counts_.end() ? found->second : 0;
}

bool WorkAccount::has_more_than_success() const {
    return !notes_.empty() || std::any_of(lines_.begin(), lines_.end(),
                                          [](const WorkLine& line) { return !is_success(line.kind); });
}

std::string WorkAccount::counts_in_words(bool installs) const {
    const WorkKind first = installs ? WorkKind::INSTALLED : WorkKind::DELETED;
    std::string text;
    for (const KindTexts& texts : KINDS) {
        const unsigned number = count(texts.kind);
        if (number == 0 && texts.kind != first) continue;
        if (!text.empty()) text += '\n';
        text += text_of(texts.one, texts.many, number);
    }
    return text;
}

std::vector<TableRow> WorkAccount::rows() const {
    std::vector<WorkLine> lines = lines_;
    std::stable_sort(lines.begin(), lines.end(),
                     [](const WorkLine& a, const WorkLine& b) { return a.kind < b.kind; });
    std::vector<TableRow> rows;
    rows.reserve(lines.size());
    for (const WorkLine& line : lines) rows.push_back(row_of(line));
    for (const SummaryNote& note : notes_) {
        if (!rows.empty()) rows.push_back({{" "}});
        rows.push_back({{text_of(note.heading)}});
        for (const std::string& line : note.lines) rows.push_back({{line}});
    }
    return rows;
}

std::vector<WorkLine> planned_lines(const Decisions& decisions) {
    std::vector<WorkLine> lines;
    for (int position = 1; position <= decisions.count(); ++position)
        lines.push_back(planned_line(*decisions.conflict_at(position), decisions.at(position)));
    return lines;
}

void give_up(WorkLine& planned) {
    planned.kind = WorkKind::KEPT;
    planned.why = text_of(Message::REASON_GIVEN_UP);
}

std::vector<WorkLine> lines_after(const std::vector<WorkLine>& planned, const FontReport& report) {
    const std::vector<std::string> done = report.done_names();
    const std::set<std::string> names(done.begin(), done.end());
    std::set<std::string> failed;
    for (const FontReport::Entry& entry : report.failed()) failed.insert(entry.font);
    std::vector<WorkLine> lines;
    for (const WorkLine& line : planned) {
        const bool is_forced = line.kind == WorkKind::REPLACED || line.kind == WorkKind::DELETED;
        // An entry is replaced with one of its fonts, and deleted with all of them.
        const bool is_done =
            names.contains(line.what) && (line.kind != WorkKind::DELETED || !failed.contains(line.what));
        if (!is_forced || is_done) lines.push_back(line);
    }
    return lines;
}

std::vector<WorkLine> pending_lines(const GW_LIST<GWConflict>& conflicts) {
    std::vector<WorkLine> lines;
    for (const GWConflict* conflict : conflicts) {
        const bool is_open = conflict->can_be_decided();
        lines.push_back(planned_line(*conflict, is_open ? Resolution::UNDECIDED : Resolution::READ_ONLY));
    }
    return lines;
}

std::string obstacle_in_words(const GWConflict& conflict) {
    if (conflict.can_be_decided()) return "";
    if (conflict.is_conflict(GWConflict::ALIAS) != 0) return text_of(Message::STAYS_ALIAS);
    const std::string packages = conflict.get_packages();
    return packages.empty() ? text_of(Message::STAYS_READ_ONLY)
                            : text_of(Message::STAYS_IN_PACKAGE, {packages});
}

}  // namespace gw
