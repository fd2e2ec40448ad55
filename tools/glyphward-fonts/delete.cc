// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "core/text.h"
#include "drivers/engine_globals.h"
#include "fontpath/trash_places.h"
#include "model/deleted_fonts.h"
#include "model/packaged_fonts.h"
#include "store/font_action.h"
#include "store/trash.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/deletion.h"
#include "glyphward-fonts/destination.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/installation.h"
#include "glyphward-fonts/interruption.h"
#include "glyphward-fonts/rows.h"
#include "glyphward-fonts/terminal_text.h"

namespace gw::fonts {

namespace {

/// Whether somebody at the terminal agrees. Without a terminal nobody does.
bool is_agreed_to(const std::vector<Row>& rows) {
    if (::isatty(STDIN_FILENO) == 0) return false;
    for (const Row& row : rows) std::fprintf(stderr, "    %s\n", for_terminal(escaped(row.name)).c_str());
    const auto count = static_cast<unsigned>(rows.size());
    std::fputs(text_of(Message::SAYS_DELETE_ONE, Message::SAYS_DELETE_MANY, count).c_str(), stderr);
    std::string answer;
    std::getline(std::cin, answer);
    return ::rpmatch(answer.c_str()) == 1;
}

std::vector<std::string> places() {
    return trash_places(elements_of(GWFontPath::ALL_FP));
}

}  // namespace

Status delete_fonts(const DeleteOptions& options, Report& report) {
    Host host(report);
    std::vector<Row> rows;
    for (GWHRNElement* element : host.fonts()) rows.push_back(row_of(*element));
    for (const GWAlias* alias : host.aliases()) rows.push_back(row_of(*alias));
    Deletion work(options.is_forced, host, report);
    rows = chosen(rows, options.patterns, report, &work.tally);
    if (rows.empty()) return Status::FAILED;
    if (!options.is_agreed && !report.settings().dry_run && !is_agreed_to(rows)) {
        report.trouble("delete", Message::SAYS_NOBODY_AGREED);
        return Status::COULD_NOT;
    }
    await_interruption();
    FontAction action;
    work.remove(rows);
    if (!report.settings().dry_run) {
        report.document()["undo"] = commit(action, {&work.failures()}, Sequel::FONT_STAYS, report);
        work.note_failures_of_commit();
        if (work.notes().has_change()) tell_server("", report);
    }
    report_heard(report);
    work.notes().tell(report);
    return work.tally.status();
}

Status undo(const std::string& action, Report& report) {
    const std::vector<TrashEntry> entries =
        action.empty() ? entries_of_last_action(places()) : entries_of_action(action, places());
    if (entries.empty()) {
        report.trouble(action.empty() ? "undo" : action, Message::SAYS_NOTHING_TO_UNDO);
        return Status::FAILED;
    }
    Json fonts = Json::array();
    for (const TrashEntry& entry : entries) {
        for (const DeletedFont& font : fonts_of_entry(entry)) {
            fonts.push_back(in_json(font.name));
            report.line(escaped(font.name));
        }
    }
    report.document()["fonts"] = fonts;
    report.document()["undone"] = in_json(entries.front().action);
    if (report.settings().dry_run) return Status::DONE;
    if (const Outcome outcome = bring_back_all(entries); !outcome) {
        report.trouble(outcome.failure());
        Tally tally;
        tally.failed(outcome.failure());
        return tally.status();
    }
    const auto count = static_cast<unsigned>(fonts.size());
    report.line(text_of(Message::SAYS_ONE_BACK, Message::SAYS_MANY_BACK, count));
    for (const TrashEntry& entry : entries) {
        renew_resource_file(entry.dir);
        tell_server(entry.dir, report);
    }
    report_heard(report);
    return Status::DONE;
}

Status trash(bool empties, Report& report) {
    Tally tally;
    Json all = Json::array();
    for (const std::string& dir : places()) {
        const Result<std::vector<TrashEntry>> entries = look_into_trash(dir);
        if (!entries) continue;
        for (const TrashEntry& entry : *entries) {
            Json fonts = Json::array();
            for (const DeletedFont& font : fonts_of_entry(entry)) {
                fonts.push_back(in_json(font.name));
                report.line(escaped(entry.action) + "  " + local_time_text(entry.time) + "  " +
                            escaped(font.name));
            }
            all.push_back({{"id", in_json(entry.action)},
                           {"directory", in_json(dir)},
                           {"time", entry.time},
                           {"bytes", entry.bytes},
                           {"fonts", fonts}});
        }
        if (!empties || entries->empty() || report.settings().dry_run) continue;
        if (const Outcome outcome = empty_trash(dir); outcome) {
            tally.done();
        } else {
            tally.failed(outcome.failure());
            report.trouble(outcome.failure());
        }
    }
    report.document()["entries"] = all;
    if (empties && all.empty()) tally.already();
    return tally.status();
}

}  // namespace gw::fonts
