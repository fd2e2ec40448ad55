// SPDX-License-Identifier: MIT
#include "app/installing/everyones_installation.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/common/warningdlg.h"
#include "app/conflicts/comparingdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/conflicts/work_account.h"
#include "app/conflicts/worksummarydlg.h"
#include "app/installing/everyones_answers.h"
#include "app/installing/font_source.h"
#include "app/installing/installation.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/toolkit.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "app/samples/new_fonts.h"
#include "core/text.h"
#include "fontpath/path_element.h"
#include "model/packaged_fonts.h"
#include "model/sent_files.h"
#include "platform/everyone_request.h"
#include "platform/host_paths.h"
#include "platform/package_owner.h"
#include "texts/messages.h"
#include "texts/reasons.h"

namespace {

using gw::EveryoneAnswer;
using gw::EveryonesAnswers;
using gw::Message;

/// The request that is going on, and how the event loop serves it.
struct Work {
    std::unique_ptr<gw::EveryoneRequest> request;
    XtInputId sending = 0;
    XtInputId answering = 0;
    std::vector<int> positions;  ///< of the source
    std::vector<gw::Failure> left_out;
    std::vector<gw::SentEntry> sent;
    std::vector<gw::WorkLine> planned;  ///< what was decided; empty before anything was
    std::vector<gw::Ref<GWHRNElement>>
        replacing;  ///< the entries of those lines that replace, in their order
};

Work& work() {
    // It is never destroyed: at the end of the program the toolkit is gone.
    static auto* const of_the_program = new Work;  // NOLINT(cppcoreguidelines-owning-memory)
    return *of_the_program;
}

void stop_sending() {
    if (work().sending != 0) XtRemoveInput(std::exchange(work().sending, 0));
}

// --- what came of it -----------------------------------------------------------

Message why_nothing(EveryoneAnswer::Kind kind) {
    switch (kind) {
        case EveryoneAnswer::Kind::NOT_GIVEN:
            return Message::EVERYONE_NOT_GIVEN;
        case EveryoneAnswer::Kind::NOT_AUTHORISED:
            return Message::EVERYONE_NOT_AUTHORISED;
        case EveryoneAnswer::Kind::CANCELLED:
            return Message::EVERYONE_CANCELLED;
        case EveryoneAnswer::Kind::ANSWERED:
        case EveryoneAnswer::Kind::NO_ANSWER:
            break;
    }
    return Message::EVERYONE_NO_ANSWER;
}

/// Whether a window says it: the user has not chosen that, as by dismissing the question.
bool is_unexpected(EveryoneAnswer::Kind kind) {
    return kind == EveryoneAnswer::Kind::NOT_AUTHORISED || kind == EveryoneAnswer::Kind::NO_ANSWER;
}

bool is_done(const EveryoneAnswer::Font& font) {
    return font.result == "installed" || font.result == "replaced";
}

std::string reason_of(const EveryoneAnswer::Font& font) {
    if (font.result == "already there") return gw::text_of(Message::EVERYONE_THERE_ALREADY);
    return gw::escaped(gw::reason_in_language(font.why));
}

/// What was not even sent.
std::vector<gw::FailureText> failures_before() {
    std::vector<gw::FailureText> failures;
    for (const gw::Failure& failure : work().left_out)
        failures.push_back({gw::escaped(failure.subject), gw::reason_in_words(failure), {}});
    return failures;
}

std::vector<gw::FailureText> problems_in(const EveryoneAnswer& answer) {
    std::vector<gw::FailureText> failures;
    for (const EveryoneAnswer::Problem& problem : answer.problems)
        failures.push_back(
            {gw::escaped(problem.subject), gw::escaped(gw::reason_in_language(problem.why)), {}});
    return failures;
}

bool is_taken(const EveryoneAnswer::Font& font) {
    return font.why.code == EveryoneAnswer::NAME_TAKEN;
}

/// The fonts that the user is asked about.
std::set<const EveryoneAnswer::Font*> fonts_in_conflict(const EveryonesAnswers& answers) {
    std::set<const EveryoneAnswer::Font*> fonts;
    for (const GWConflict* conflict : the_conflict_list) {
        for (const EveryoneAnswer::Font* font :
             answers.about(conflict->get_element(), conflict->get_name())) {
            if (is_taken(*font)) fonts.insert(font);
        }
    }
    return fonts;
}

/// The fonts that were not installed, unless the user is asked about them, and, where it could not begin,
/// why.
std::vector<gw::FailureText> failures_in(const EveryonesAnswers& answers) {
    std::vector<gw::FailureText> failures = failures_before();
    const std::set<const EveryoneAnswer::Font*> asked_about = fonts_in_conflict(answers);
    for (const EveryoneAnswer::Font& font : answers.all().fonts) {
        if (is_done(font) || asked_about.contains(&font)) continue;
        failures.push_back({gw::escaped(answers.name_of(font)), reason_of(font), {}});
    }
    // Each font that failed is a problem too.
    if (!answers.all().fonts.empty()) return failures;
    for (gw::FailureText& problem : problems_in(answers.all())) failures.push_back(std::move(problem));
    return failures;
}

// --- fonts whose names are taken -----------------------------------------------

/// The files that are in the way of any font, separated by ", ".
std::string files_in_the_way(const EveryoneAnswer& answer) {
    std::string files;
    for (const EveryoneAnswer::Font& font : answer.fonts) {
        if (is_taken(font) && !font.why.detail.empty())
            files += (files.empty() ? "" : ", ") + font.why.detail;
    }
    return files;
}

/// Whether the answer has something about the entry but that its name is taken.
bool is_settled(const GWHRNElement& entry, const EveryonesAnswers& answers) {
    const std::vector<const EveryoneAnswer::Font*> fonts = answers.about(&entry, entry.get_name());
    return !fonts.empty() &&
           std::none_of(fonts.begin(), fonts.end(), [](const auto* font) { return is_taken(*font); });
}

/// The user is asked about fonts that can be replaced, as about those that this program installs itself.
void find_conflicts(const EveryonesAnswers& answers) {
    const std::string files = files_in_the_way(answers.all());
    if (files.empty()) return;
    for (const int position : work().positions) {
        GWHRNElement* entry = current_hrn_list.get_elem_at_pos(position);
        if (entry == nullptr || is_settled(*entry, answers)) continue;
        gw::FontReport nothing_new;
        const int before = the_conflict_list.get_count();
        (void)entry->is_stopped(the_installed_hrn_list, the_alias_list, the_conflict_list,
                                gw::SUPERUSER_FONT_DIR, nothing_new);
        if (the_conflict_list.get_count() == before) continue;
        GWConflict* conflict = the_conflict_list.get_elem_at_pos(before + 1);
        const bool is_alias = conflict->is_conflict(GWConflict::ALIAS) != 0;
        if (!is_alias && conflict->entrust(files)) continue;
        const std::unique_ptr<GWConflict> not_asked_about(the_conflict_list.zap_elem_at_pos(before + 1));
    }
    installdlg::hold_on_to_sources(the_conflict_list);
    gw::forget_package_owners();
    gw::tell_unless_done(gw::mark_packages(the_conflict_list));
}

/// What has become of a font that was to be replaced.
gw::WorkLine line_after(const gw::WorkLine& planned, const GWHRNElement* entry,
                        const EveryonesAnswers& answers) {
    const std::vector<const EveryoneAnswer::Font*> fonts = answers.about(entry, planned.what);
    for (const EveryoneAnswer::Font* font : fonts) {
        if (is_done(*font)) continue;
        const bool is_there = font->result == "already there";
        return {is_there ? gw::WorkKind::KEPT : gw::WorkKind::FAILED, planned.what, reason_of(*font)};
    }
    if (!fonts.empty()) return planned;
    const EveryoneAnswer::Kind kind = answers.all().kind;
    const bool has_answer = kind == EveryoneAnswer::Kind::ANSWERED;
    return {gw::WorkKind::FAILED, planned.what,
            gw::text_of(has_answer ? Message::REASON_GIVEN_UP : why_nothing(kind))};
}

/// The fonts, and the font path, as they are now.
void list_again() {
    delete the_font_path;
    the_font_path = new GWFontPath(gw::INSTALLATION_ROOT);
    fill_program_lists();
    update_wi_installed_hrn_list();
    forget_selection();
}

/// The running server has the directory, so that programs find its fonts before the next login.
void show_to_server() {
    unsigned count = 0;
    const GW_LIST<GW_STRING>* session = the_font_path->get_fpe_list(GWFontPath::SESSION_FP, count);
    bool is_there = false;
    for (const GW_STRING* element : *session)
        is_there = is_there || gw::identity_of_element(element->get_str()) ==
                                   gw::identity_of_element(gw::SUPERUSER_FONT_DIR);
    if (!is_there && gw::installation_joins_path())
        gw::tell_unless_done(
            the_font_path->insert(GWFontPath::SESSION_FP, GW_STRING(gw::SUPERUSER_FONT_DIR), -1));
    the_font_path->rehash_session_fp();
}

unsigned count_done(const EveryoneAnswer& answer) {
    return static_cast<unsigned>(std::count_if(answer.fonts.begin(), answer.fonts.end(), is_done));
}

void show_changes() {
    show_to_server();
    gw::ask_server();  // or the new fonts would be marked as not served
    list_again();
}

void show_status(const EveryoneAnswer& answer) {
    const bool has_answer = answer.kind == EveryoneAnswer::Kind::ANSWERED;
    const std::string status =
        has_answer ? gw::installed_text(count_done(answer)) : gw::text_of(why_nothing(answer.kind));
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
}

void tell(const EveryonesAnswers& answers) {
    const EveryoneAnswer& answer = answers.all();
    if (answer.changed) show_changes();
    find_conflicts(answers);
    start_summary({GWConflict::INSTALL, count_done(answer), &the_conflict_list, failures_in(answers)});
    if (answer.changed) gw::show_new_fonts(gw::FontReport(), gw::SUPERUSER_FONT_DIR);
    show_status(answer);
    if (is_unexpected(answer.kind))
        start_warning_dlg(gw::text_of(Message::EVERYONE_NO_POLKIT_TITLE),
                          gw::text_of(why_nothing(answer.kind)));
}

/// The summary has a line for every decision, so nothing else is needed where nobody answered.
void tell_replaced(const EveryonesAnswers& answers) {
    const EveryoneAnswer& answer = answers.all();
    if (answer.changed) show_changes();
    std::vector<gw::WorkLine> lines;
    const std::vector<gw::Ref<GWHRNElement>> replacing = std::exchange(work().replacing, {});
    std::size_t next = 0;
    for (const gw::WorkLine& line : std::exchange(work().planned, {})) {
        const bool replaces = line.kind == gw::WorkKind::REPLACED;
        const GWHRNElement* entry = replaces && next < replacing.size() ? replacing[next++].get() : nullptr;
        lines.push_back(replaces ? line_after(line, entry, answers) : line);
    }
    std::vector<gw::FailureText> failures = failures_before();
    if (answer.fonts.empty()) {
        for (gw::FailureText& problem : problems_in(answer)) failures.push_back(std::move(problem));
    }
    for (const gw::FailureText& failure : failures)
        lines.push_back({gw::WorkKind::FAILED, failure.what, failure.why});
    gw::finish_work_summary(GWConflict::INSTALL, lines, {});
    if (answer.changed) gw::show_new_fonts(gw::FontReport(), gw::SUPERUSER_FONT_DIR);
    show_status(answer);
}

void tell_all(const EveryoneAnswer& answer) {
    const EveryonesAnswers answers(answer, std::exchange(work().sent, {}));
    work().planned.empty() ? tell(answers) : tell_replaced(answers);
}

// --- the event loop ------------------------------------------------------------

void finish() {
    stop_sending();
    XtRemoveInput(std::exchange(work().answering, 0));
    const EveryoneAnswer answer = work().request->answer();
    work().request.reset();
    gw::set_progress_cancel(nullptr);
    stop_progress_dlg();
    the_wp_cl_data = {};
    permit_other_work();
    tell_all(answer);
}

void send_cb(XtPointer, int*, XtInputId*) {
    gw::EveryoneRequest& request = *work().request;
    request.send_more();
    if (request.sending_end() >= 0) return;
    stop_sending();
    if (request.is_sent()) gw::show_progress_text(gw::text_of(Message::EVERYONE_INSTALLING));
}

void answer_cb(XtPointer, int*, XtInputId*) {
    work().request->read_more();
    if (work().request->is_over()) finish();
}

void cancel() {
    stop_sending();
    work().request->cancel();
    gw::set_progress_cancel(nullptr);
    gw::show_progress_text(gw::text_of(Message::PROGRESS_CANCELLING));
}

XtInputId listen(int end, long mask, XtInputCallbackProc callback) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): Xt has the mask for a pointer
    return XtAppAddInput(app, end, reinterpret_cast<XtPointer>(mask), callback, nullptr);
}

std::vector<gw::Ref<GWHRNElement>> entries_at(const std::vector<int>& positions) {
    std::vector<gw::Ref<GWHRNElement>> entries;
    for (const int position : positions) {
        if (GWHRNElement* entry = current_hrn_list.get_elem_at_pos(position)) entries.emplace_back(entry);
    }
    return entries;
}

void show_what_goes_on(int count) {
    gw::open_progress_dlg(count, gw::text_of(Message::PROGRESS_TITLE));
    gw::show_progress(0, gw::text_of(Message::EVERYONE_TITLE), gw::text_of(Message::EVERYONE_WAITING));
    gw::set_progress_cancel(cancel);
}

void start_request(const std::vector<gw::Ref<GWHRNElement>>& entries, gw::NameTaken decision) {
    std::vector<const GWHRNElement*> plain(entries.size());
    std::transform(entries.begin(), entries.end(), plain.begin(),
                   [](const auto& entry) { return entry.get(); });
    std::vector<gw::SentFile> files = gw::files_of(plain);
    work().left_out = gw::leave_out_unsendable(files);
    if (files.empty()) {
        // Nobody is asked for a password for nothing.
        EveryoneAnswer nothing;
        nothing.kind = EveryoneAnswer::Kind::ANSWERED;
        return tell_all(nothing);
    }
    work().sent = gw::sent_entries(entries, files);
    work().request = std::make_unique<gw::EveryoneRequest>(std::move(files), decision);
    if (const gw::Outcome started = work().request->start(gw::everyones_command()); !started) {
        gw::tell(started.failure());
        work().request.reset();
        return tell_all({});
    }
    // Other work sees that something goes on.
    the_wp_cl_data = {{1}, 0, 0};
    forbid_other_work();
    show_what_goes_on(static_cast<int>(entries.size()));
    work().answering = listen(work().request->answering_end(), XtInputReadMask, answer_cb);
    work().sending = listen(work().request->sending_end(), XtInputWriteMask, send_cb);
}

/// Another password is asked for: the administrator has not seen before that fonts would be replaced.
void replace(const gw::EntrustedWork& decided) {
    work().planned = decided.planned;
    work().replacing = decided.replacing;
    gw::note_listed_fonts();
    start_request(decided.replacing, gw::NameTaken::REPLACE);
}

}  // namespace

namespace installdlg {

bool needs_password(const std::string& directory) {
    return gw::window_policy().offers_destinations() && !gw::user_is_superuser() &&
           directory == gw::SUPERUSER_FONT_DIR && gw::can_ask_for_everyone();
}

std::string administrators_words(const std::string& directory) {
    if (!gw::window_policy().offers_destinations() || gw::user_is_superuser() ||
        directory != gw::SUPERUSER_FONT_DIR || gw::can_ask_for_everyone())
        return "";
    const std::vector<std::string> source =
        current_dir.empty() ? std::vector<std::string>() : std::vector<std::string>{current_dir};
    return gw::text_of(Message::EVERYONE_ADMINISTRATOR_TYPES,
                       {gw::escaped(gw::administrators_command(source))});
}

void start_everyones_installation(std::vector<int> positions) {
    gw::entrusted_work().connect(replace);
    gw::stop_source_checks_for_changes();
    gw::clear_conflict_list();
    begin_summary();
    gw::note_listed_fonts();
    work().planned.clear();
    work().positions = std::move(positions);
    start_request(entries_at(work().positions), gw::NameTaken::REFUSE);
}

}  // namespace installdlg
