// SPDX-License-Identifier: MIT
#include "glyphward-fonts/everyone.h"

#include <poll.h>

#include <array>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "core/rights.h"
#include "core/text.h"
#include "model/sent_files.h"
#include "platform/everyone_request.h"
#include "platform/host_paths.h"
#include "texts/reasons.h"

#include "glyphward-fonts/font_notes.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/installation.h"
#include "glyphward-fonts/interruption.h"
#include "glyphward-fonts/sources.h"
#include "glyphward-fonts/terminal_agent.h"

namespace gw::fonts {

namespace {

NameTaken decision_of(IfThere if_there) {
    switch (if_there) {
        case IfThere::REPLACE:
        case IfThere::REPLACE_HERE:
            return NameTaken::REPLACE;
        case IfThere::KEEP:
            return NameTaken::KEEP;
        case IfThere::REFUSE:
            break;
    }
    return NameTaken::REFUSE;
}

/// Sends, and reads the answer, until it is over. A signal cancels it.
void await_end(EveryoneRequest& request) {
    constexpr int MOMENT = 200;  // milliseconds
    bool is_cancelled = false;
    while (!request.is_over()) {
        if (is_interrupted() && !is_cancelled) {
            request.cancel();
            is_cancelled = true;
        }
        std::array<pollfd, 2> ends = {
            {{request.sending_end(), POLLOUT, 0}, {request.answering_end(), POLLIN, 0}}};
        (void)::poll(ends.data(), ends.size(), MOMENT);
        if (ends[0].revents != 0) request.send_more();
        if (ends[1].revents != 0) request.read_more();
    }
}

Json code_in_json(const EveryoneAnswer::Why& why) {
    Json members = Json::object();
    if (!why.code.empty()) members["code"] = in_json(why.code);
    if (!why.detail.empty()) members["detail"] = in_json(why.detail);
    if (why.error != 0) members["errno"] = why.error;
    return members;
}

/// The paths of the files by the names under which they are sent.
using Paths = std::map<std::string, std::string>;

Status tell_answer(const EveryoneAnswer& answer, const Paths& sent, Report& report) {
    Json fonts = Json::array();
    for (const EveryoneAnswer::Font& font : answer.fonts) {
        Json entry = {{"font", in_json(font.font)}, {"result", in_json(font.result)}};
        const std::string why = font.why.reason.empty() ? "" : reason_in_language(font.why);
        if (!why.empty()) entry["reason"] = in_json(why);
        entry.update(code_in_json(font.why));
        for (const std::string& file : font.files) {
            const auto path = sent.find(file);
            if (path != sent.end()) entry["files"].push_back(in_json(path->second));
        }
        fonts.push_back(entry);
        report.line(escaped(font.font) + ": " + escaped(result_in_language(font.result)) +
                    (why.empty() ? "" : " (" + escaped(why) + ')'));
    }
    for (const EveryoneAnswer::Problem& problem : answer.problems)
        report.trouble(problem.subject, reason_in_language(problem.why), code_in_json(problem.why));
    report.document()["fonts"] = fonts;
    report.document()["changed"] = answer.changed;
    // "undo" brings back what the user has deleted, and this is the superuser's.
    report.document()["undo"] = "";
    for (const Status status : {Status::DONE, Status::ALREADY, Status::COULD_NOT}) {
        if (answer.status == static_cast<int>(status)) return status;
    }
    return Status::FAILED;
}

Status nothing_done(Message why, Report& report) {
    report.trouble("install", why);
    return Status::COULD_NOT;
}

Status tell(const EveryoneAnswer& answer, const Paths& sent, Report& report) {
    switch (answer.kind) {
        case EveryoneAnswer::Kind::ANSWERED:
            return tell_answer(answer, sent, report);
        case EveryoneAnswer::Kind::NOT_GIVEN:
            return nothing_done(Message::SAYS_NO_PASSWORD, report);
        case EveryoneAnswer::Kind::NOT_AUTHORISED:
            return nothing_done(Message::SAYS_NOT_AUTHORISED, report);
        case EveryoneAnswer::Kind::CANCELLED:
            return nothing_done(Message::SAYS_CANCELLED, report);
        case EveryoneAnswer::Kind::NO_ANSWER:
            break;
    }
    return nothing_done(Message::SAYS_NO_ANSWER, report);
}

/// Files that cannot be sent are failures.
std::vector<SentFile> files_to_send(const GWHRNList& sources, Report& report, Tally& tally) {
    std::vector<SentFile> files = files_of({sources.begin(), sources.end()});
    for (const Failure& failure : leave_out_unsendable(files)) {
        report.trouble(failure);
        tally.failed();
    }
    return files;
}

/// Adds the font to the list, with those of its files that are sent, if the other program finds it in them.
/// Files in which it finds none are failures there.
void add_as_sent(GWFont& font, const std::set<std::string>& sent, GWHRNList& out, Report& report,
                 Tally& tally) {
    if (leave_out_files_but(sent, font)) return out.add_font(&font);
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    if (files == nullptr) return;
    for (const GW_FILE_SPEC* file : *files) {
        report.trouble(file->get_path(), Message::SAYS_NO_FONT_FILE);
        tally.failed();
    }
}

/// The fonts that the other program finds in these files.
void find_arriving(const GWHRNList& sources, const std::vector<SentFile>& files, GWHRNList& out,
                   Report& report, Tally& tally) {
    std::set<std::string> sent;
    for (const SentFile& file : files) sent.insert(file.path);
    for (const GWHRNElement* row : sources) {
        for (const GWHRNElement::PointSize& size : row->get_slots()) {
            for (const Ref<GWFont>& font : size.fonts) add_as_sent(*font, sent, out, report, tally);
        }
    }
    out.tell_apart();
}

Status explain(const InstallOptions& options, Report& report) {
    report.trouble(SUPERUSER_FONT_DIR,
                   text_of(Message::SAYS_ADMINISTRATOR_TYPES, {administrators_command(options.sources)}));
    return Status::COULD_NOT;
}

}  // namespace

bool needs_password(const InstallOptions& options, const Settings& settings) {
    return options.destination == Destination::EVERYONE && !runs_as_superuser() && settings.root.empty();
}

Status try_for_everyone(const InstallOptions& options, Report& report) {
    if (!can_ask_for_everyone()) return explain(options, report);
    GWHRNList sources(0);
    Tally tally;
    find_sources(options.sources, sources, report, tally);
    const std::vector<SentFile> files = files_to_send(sources, report, tally);
    if (files.empty()) return Status::FAILED;
    GWHRNList arriving(0);
    find_arriving(sources, files, arriving, report, tally);
    // The superuser, who will install them, does not see what is on this user's font path only. Without any
    // home directory there would be no font path at all.
    ::setenv("HOME", "/nonexistent", 1);
    await_interruption();
    Host host(report, SUPERUSER_FONT_DIR);
    Installation work(SUPERUSER_FONT_DIR, options.if_there, host, report);
    work.try_as_superuser();
    work.install(arriving);
    report_heard(report);
    work.notes().tell(report);
    report.document()["directory"] = SUPERUSER_FONT_DIR;
    tally.add(work.tally);
    return tally.status();
}

Status install_for_everyone(const InstallOptions& options, Report& report) {
    if (!can_ask_for_everyone()) return explain(options, report);
    GWHRNList sources(0);
    Tally tally;
    find_sources(options.sources, sources, report, tally);
    std::vector<SentFile> files = files_to_send(sources, report, tally);
    if (files.empty()) return Status::FAILED;
    await_interruption();
    Paths sent;
    for (const SentFile& file : files) sent[file.name] = file.path;
    EveryoneRequest request(std::move(files), decision_of(options.if_there));
    const TerminalAgent agent;
    if (const Outcome started = request.start(everyones_command()); !started) {
        report.trouble(started.failure());
        return Status::COULD_NOT;
    }
    await_end(request);
    const EveryoneAnswer answer = request.answer();
    const Status status = tell(answer, sent, report);
    report.document()["directory"] = SUPERUSER_FONT_DIR;
    if (answer.changed) tell_server(SUPERUSER_FONT_DIR, report);
    return tally.status() == Status::FAILED && status != Status::COULD_NOT ? Status::FAILED : status;
}

}  // namespace gw::fonts
