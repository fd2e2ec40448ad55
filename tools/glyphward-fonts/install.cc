// SPDX-License-Identifier: MIT
#include "core/text.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/destination.h"
#include "glyphward-fonts/everyone.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/installation.h"
#include "glyphward-fonts/interruption.h"
#include "glyphward-fonts/sources.h"

namespace gw::fonts {

Status install(const InstallOptions& options, Report& report) {
    if (needs_password(options, report.settings()))
        return report.settings().dry_run ? try_for_everyone(options, report)
                                         : install_for_everyone(options, report);
    const std::string directory = directory_of(options.destination, options.directory);
    if (directory.empty()) {
        report.trouble("HOME", Message::SAYS_NO_HOME);
        return Status::COULD_NOT;
    }
    MadeDirectories made;
    if (const Outcome ready = prepare(directory, report.settings().dry_run, made); !ready) {
        report.trouble(ready.failure());
        return Status::COULD_NOT;
    }
    await_interruption();
    Host host(report, directory);
    GWHRNList sources(0);
    FontAction action;
    action.make_missing_directories(maker_of(directory, made));
    Installation work(directory, options.if_there, host, report);
    find_sources(options.sources, sources, report, work.tally);
    work.install(sources);
    const bool is_dry = report.settings().dry_run;
    if (!is_dry) {
        report.document()["undo"] = commit(action, {&work.failures()}, Sequel::FONT_LEFT_OUT, report);
        work.note_failures_of_commit();
    }
    const bool is_left_off_path = work.is_left_off_path();
    if (!is_dry && (is_left_off_path || work.notes().has_change())) {
        made.keep();
        put_in_force(directory, report);
    }
    report_heard(report);
    work.notes().tell(report);
    if (is_left_off_path) {
        work.tally.done();
        report.line(text_of(Message::SAYS_CHANGES_PATH, {escaped(directory)}));
        report.document()["changed"] = true;
    }
    report.document()["directory"] = in_json(directory);
    return work.tally.status();
}

}  // namespace gw::fonts
