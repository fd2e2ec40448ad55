// SPDX-License-Identifier: MIT
#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/rows.h"

#include <unistd.h>

#include <algorithm>

#include "core/text.h"
#include "platform/user_name.h"

namespace gw::fonts {

namespace {

bool is_mine(const Row& row) {
    return row.owner == user_name(::geteuid());
}

bool has_charset(const Row& row, const std::string& charset) {
    const std::string end = '-' + lower_case(charset);
    return std::any_of(row.xlfds.begin(), row.xlfds.end(),
                       [&](const std::string& xlfd) { return lower_case(xlfd).ends_with(end); });
}

bool passes(const Row& row, const ListFilter& filter) {
    return (filter.format.empty() || row.format == filter.format) &&
           (filter.scope.empty() || is_mine(row) == (filter.scope == "mine")) &&
           (filter.charset.empty() || has_charset(row, filter.charset)) &&
           (filter.owner.empty() || row.owner == filter.owner);
}

void show(const Row& row, const ListFilter& filter, Report& report) {
    report.record(report.settings().nul ? row.name : row.shown);
    if (!filter.is_long || report.settings().nul) return;
    report.line("    " + row.format + ", " + std::to_string(row.kilobytes) + " KB" +
                (row.is_read_only ? std::string(", ") + text_of(Message::SAYS_READ_ONLY) : ""));
    for (const std::string& xlfd : row.xlfds) report.line("    " + escaped(xlfd));
    for (const std::string& file : row.files) report.line("    " + escaped(file));
    if (!row.font.empty()) report.line("    -> " + escaped(row.font));
}

}  // namespace

Status list(const ListFilter& filter, Report& report) {
    Host host(report);
    std::vector<Row> rows;
    for (GWHRNElement* element : host.fonts()) rows.push_back(row_of(*element));
    for (const GWAlias* alias : host.aliases()) rows.push_back(row_of(*alias));
    Tally tally;
    std::size_t shown = 0;
    rows = chosen(rows, filter.patterns, report, &tally);
    Json fonts = Json::array();
    for (const Row& row : rows) {
        if (!passes(row, filter)) continue;
        const std::optional<Failure> fault = filter.is_unusable ? fault_of(row) : std::nullopt;
        if (filter.is_unusable && !fault) continue;
        ++shown;
        show(row, filter, report);
        if (fault && !report.settings().nul) report.line("    " + in_words(*fault));
        if (!report.settings().json) continue;
        fonts.push_back(in_json(row));
        if (fault) fonts.back()["fault"] = in_json(in_words(*fault));
    }
    report.document()["fonts"] = fonts;
    if (shown == 0 && !filter.patterns.empty()) tally.failed();
    return tally.status();
}

}  // namespace gw::fonts
