// SPDX-License-Identifier: MIT
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
    Installation work(directory, options.if_there, host, report);
    find_sources(options.sources, sources, report, work.tally);
    work.install(sources);
    if (!report.settings().dry_run) {
        report.document()["undo"] = commit(action, {&work.failures()}, Sequel::FONT_LEFT_OUT, report);
        work.note_failures_of_commit();
        if (work.notes().has_change()) {
            made.keep();
            put_in_force(directory, report);
        }
    }
    report_heard(report);
    work.notes().tell(report);
    report.document()["directory"] = in_json(directory);
    return work.tally.status();
}

}  // namespace gw::fonts
