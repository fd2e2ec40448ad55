// SPDX-License-Identifier: MIT
#include "app/installing/everyones_installation.h"

#include <memory>
#include <optional>
#include <utility>

#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/common/warningdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/installing/font_source.h"
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
#include "model/sent_files.h"
#include "platform/everyone_request.h"
#include "platform/host_paths.h"
#include "texts/messages.h"

namespace {

using gw::EveryoneAnswer;
using gw::Message;

/// The request that is going on, and how the event loop serves it.
struct Work {
    std::unique_ptr<gw::EveryoneRequest> request;
    XtInputId sending = 0;
    XtInputId answering = 0;
    std::vector<gw::Failure> left_out;
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

/// A reason in the user's language, where the engine has one.
std::string reason_of(const std::string& code, const std::string& detail, int error,
                      const std::string& text) {
    if (code == "NAME_TAKEN") return gw::text_of(Message::EVERYONE_NAME_TAKEN);
    const std::optional<gw::Reason> reason = gw::reason_called(code);
    if (!reason) return gw::escaped(text);
    return gw::reason_in_words({.subject = "", .reason = *reason, .error = error, .detail = detail});
}

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

/// The fonts that were not installed, and, where it could not begin, why.
std::vector<gw::FailureText> failures_in(const EveryoneAnswer& answer) {
    std::vector<gw::FailureText> failures;
    for (const gw::Failure& failure : work().left_out)
        failures.push_back({gw::escaped(failure.subject), gw::reason_in_words(failure), {}});
    for (const EveryoneAnswer::Font& font : answer.fonts) {
        if (is_done(font)) continue;
        const bool is_there = font.result == "already there";
        failures.push_back({gw::escaped(font.font),
                            is_there ? gw::text_of(Message::EVERYONE_THERE_ALREADY)
                                     : reason_of(font.code, font.detail, font.error, font.reason),
                            {}});
    }
    // Each font that failed is a problem too.
    if (!answer.fonts.empty()) return failures;
    for (const EveryoneAnswer::Problem& problem : answer.problems)
        failures.push_back({gw::escaped(problem.subject),
                            reason_of(problem.code, problem.detail, problem.error, problem.reason),
                            {}});
    return failures;
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

void tell(const EveryoneAnswer& answer) {
    unsigned installed = 0;
    for (const EveryoneAnswer::Font& font : answer.fonts) installed += is_done(font) ? 1U : 0U;
    if (answer.changed) {
        show_to_server();
        gw::ask_server();  // or the new fonts would be marked as not served
        list_again();
    }
    start_summary({GWConflict::INSTALL, installed, &the_conflict_list, failures_in(answer)});
    if (answer.changed) gw::show_new_fonts(gw::FontReport(), gw::SUPERUSER_FONT_DIR);
    const bool has_answer = answer.kind == EveryoneAnswer::Kind::ANSWERED;
    const std::string status =
        has_answer ? gw::installed_text(installed) : gw::text_of(why_nothing(answer.kind));
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
    if (is_unexpected(answer.kind))
        start_warning_dlg(gw::text_of(Message::EVERYONE_NO_POLKIT_TITLE), status.c_str());
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
    tell(answer);
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

std::vector<const GWHRNElement*> entries_at(const std::vector<int>& positions) {
    std::vector<const GWHRNElement*> entries;
    for (const int position : positions) {
        if (const GWHRNElement* entry = current_hrn_list.get_elem_at_pos(position)) entries.push_back(entry);
    }
    return entries;
}

void show_what_goes_on(int count) {
    gw::open_progress_dlg(count, gw::text_of(Message::PROGRESS_TITLE));
    gw::show_progress(0, gw::text_of(Message::EVERYONE_TITLE), gw::text_of(Message::EVERYONE_WAITING));
    gw::set_progress_cancel(cancel);
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
    std::vector<gw::SentFile> files = gw::files_of(entries_at(positions));
    work().left_out = gw::leave_out_unsendable(files);
    const int count = static_cast<int>(positions.size());
    gw::stop_source_checks_for_changes();
    gw::clear_conflict_list();
    begin_summary();
    gw::note_listed_fonts();
    work().request = std::make_unique<gw::EveryoneRequest>(std::move(files), gw::NameTaken::REFUSE);
    if (const gw::Outcome started = work().request->start(gw::everyones_command()); !started) {
        gw::tell(started.failure());
        work().request.reset();
        return tell({});
    }
    the_wp_cl_data = {std::move(positions), 0, 0};
    forbid_other_work();
    show_what_goes_on(count);
    work().answering = listen(work().request->answering_end(), XtInputReadMask, answer_cb);
    work().sending = listen(work().request->sending_end(), XtInputWriteMask, send_cb);
}

}  // namespace installdlg
