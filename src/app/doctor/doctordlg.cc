// SPDX-License-Identifier: MIT
#include "app/doctor/doctordlg.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/common/help_requests.h"
#include "app/doctor/answer_pages.h"
#include "app/doctor/answer_texts.h"
#include "app/doctor/doctor_engine.h"
#include "app/installing/installdlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/copyable.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/generation.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/kit/mnemonics.h"
#include "app/kit/offered_text.h"
#include "app/kit/widgets.h"
#include "app/kit/wrapped_text.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "platform/host_paths.h"
#include "texts/messages.h"
#include "texts/sentences.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>

Widget wi_doctor_dlg = nullptr;

static_assert(gw::MOST_WRITTEN <= gw::diagnosis::MOST_PASTED, "all that the text takes is read");

namespace {

using gw::Attach;
using gw::Message;
using gw::diagnosis::Answer;
using gw::diagnosis::Cure;
using gw::diagnosis::Deed;
using gw::diagnosis::Question;
using gw::diagnosis::Remedy;

constexpr int GAP = 8;
struct TextRows {
    short question, answer, answer_below_questions;
};
constexpr TextRows USUAL_ROWS = {3, 5, 3};
constexpr TextRows ROWS_ON_LOW_SCREENS = {2, 3, 2};
constexpr int FOUND_ROWS = 2;
constexpr int BESIDE_BUTTONS = 85;
constexpr int BUTTONS = 86;

const TextRows& rows() {
    return gw::is_screen_low(wi_doctor_dlg) ? ROWS_ON_LOW_SCREENS : USUAL_ROWS;
}

/// In the order of their buttons.
enum Page : std::size_t { CURES, PATH, NEAREST, PACKAGES, CHARSETS, PAGE_COUNT };

struct PageNames {
    const char* toggle;
    const char* form;
    Message title;
};
constexpr std::array<PageNames, PAGE_COUNT> PAGES = {
    {{"cures_toggle", "cures_page", Message::DOCTOR_CURES},
     {"path_toggle", "path_page", Message::DOCTOR_PATH},
     {"nearest_toggle", "nearest_page", Message::DOCTOR_NEAREST},
     {"packages_toggle", "packages_page", Message::DOCTOR_PACKAGES},
     {"charsets_toggle", "charsets_page", Message::DOCTOR_CHARSETS}}};

/// What the window shows, and what was done in it.
struct Doctor {
    Widget question = nullptr;
    Widget found_label = nullptr;
    Widget found_list = nullptr;
    Widget answer_label = nullptr;
    Widget answer_text = nullptr;
    Widget report_button = nullptr;
    Widget message = nullptr;
    std::array<Widget, PAGE_COUNT> toggles = {};
    std::array<Widget, PAGE_COUNT> forms = {};

    std::vector<Question> questions;
    std::size_t asked = 0;  // which of the questions
    Answer answer;
    bool has_answer = false;
    std::vector<Deed> deeds;  // the newest first
    gw::Generation work;      // asking the server, or changing something
    bool is_reading = false;  // files, one after the other, for a cure
    bool is_stopped = false;  // by the user

    gw::DoctorActions actions;
    gw::CuresPage cures{actions};
    gw::PathPage path;
    gw::NearestPage nearest{actions};
    gw::PackagesPage packages{actions};
    gw::CharsetsPage charsets{actions};

    std::array<gw::AnswerPage*, PAGE_COUNT> pages = {&cures, &path, &nearest, &packages, &charsets};
};

Doctor& doctor() {
    static Doctor of_the_program;
    return of_the_program;
}

void say(const std::string& text) {
    gw::set_label(doctor().message, text.empty() ? " " : text);
}

// --- pages -------------------------------------------------------------------

void show_page(Page page) {
    Doctor& d = doctor();
    for (std::size_t i = 0; i < PAGE_COUNT; ++i) {
        XmToggleButtonSetState(d.toggles[i], i == page ? True : False, False);
        if (i != page) XtUnmanageChild(d.forms[i]);
    }
    XtManageChild(d.forms[page]);
    gw::assign_mnemonics(wi_doctor_dlg);
    d.pages[page]->appear();
}

void toggled_cb(Widget toggle, XtPointer, XtPointer) {
    Doctor& d = doctor();
    for (std::size_t i = 0; i < PAGE_COUNT; ++i) {
        if (d.toggles[i] == toggle && XmToggleButtonGetState(toggle) != 0) show_page(static_cast<Page>(i));
    }
}

bool is_seen(Page page) {
    return XtIsManaged(doctor().forms[page]) != False;
}

/// The first page that has something to show, unless the one that is seen has.
Page best_page() {
    const Doctor& d = doctor();
    for (const Page page : {CURES, CHARSETS, NEAREST, PACKAGES, PATH}) {
        if (d.pages[page]->has_content()) return page;
    }
    return CURES;
}

// --- questions and answers ---------------------------------------------------

/// The list of questions is there only while there is a choice.
void show_questions() {
    Doctor& d = doctor();
    const bool is_choice = d.questions.size() > 1;
    std::vector<std::string> lines;
    for (const Question& question : d.questions)
        lines.push_back(question.name.empty() ? question.line : question.name);
    gw::fill_list(d.found_list, lines);
    if (is_choice) {
        const bool is_cut = d.questions.size() == gw::diagnosis::MOST_QUESTIONS;
        gw::set_label(d.found_label, gw::text_of(is_cut ? Message::DOCTOR_FOUND_MANY : Message::DOCTOR_FOUND,
                                                 static_cast<unsigned>(d.questions.size())));
        XmListSelectPos(d.found_list, 1, False);
    }
    Widget scroller = XtParent(d.found_list);
    if (is_choice == (XtIsManaged(scroller) != False)) return;
    if (is_choice) {
        XtManageChild(d.found_label);
        XtManageChild(scroller);
    }
    // The pages below need room for their lists.
    XtVaSetValues(d.answer_text, XmNrows, is_choice ? rows().answer_below_questions : rows().answer, nullptr);
    Attach(d.answer_label).below(is_choice ? scroller : XtParent(d.question), GAP);
    if (!is_choice) {
        XtUnmanageChild(d.found_label);
        XtUnmanageChild(scroller);
    }
}

/// `first_line` is what was done just now; where the font works, the message is over then.
void show_answer(const std::string& first_line) {
    Doctor& d = doctor();
    std::string text = first_line;
    const std::string verdict = gw::verdict_text(d.answer, !first_line.empty() && d.answer.works);
    if (!text.empty() && !verdict.empty()) text += '\n';
    gw::show_wrapped(d.answer_text, text + verdict);
    for (std::size_t i = 0; i < PAGE_COUNT; ++i) {
        d.pages[i]->show(d.answer);
        activate(d.toggles[i], d.pages[i]->has_content() ? 1 : 0);
    }
    activate(d.report_button, d.has_answer ? 1 : 0);
}

void show_nothing(const std::string& why) {
    Doctor& d = doctor();
    d.questions.clear();
    d.answer = {};
    d.has_answer = false;
    show_questions();
    show_answer(why);
    show_page(best_page());
}

/// Asks the question that is chosen. Only inside of a turn.
void get_answer() {
    Doctor& d = doctor();
    d.answer = gw::doctor_engine().answer(d.questions[d.asked]);
    d.has_answer = true;
}

void ask() {
    Doctor& d = doctor();
    const gw::Turn turn(d.work);
    if (!turn.is_first()) return;
    say(gw::text_of(Message::DOCTOR_ASKING));
    {
        const gw::BusyWindows busy;
        d.questions = gw::doctor_engine().questions(gw::wrapped_text_of(d.question));
        d.asked = 0;
        if (!d.questions.empty()) get_answer();
    }
    say("");
    if (d.questions.empty()) return show_nothing(gw::in_words({gw::diagnosis::Said::NOTHING_ASKED}));
    show_questions();
    show_answer("");
    show_page(best_page());
}

void ask_cb(Widget, XtPointer, XtPointer) {
    ask();
}

void choose_question_cb(Widget list, XtPointer, XtPointer) {
    Doctor& d = doctor();
    const gw::Turn turn(d.work);
    const auto position = static_cast<std::size_t>(gw::selected_position(list));
    if (!turn.is_first() || position < 1 || position > d.questions.size()) return;
    d.asked = position - 1;
    {
        const gw::BusyWindows busy;
        get_answer();
    }
    say("");
    show_answer("");
    show_page(best_page());
}

void clear_cb(Widget, XtPointer, XtPointer) {
    Doctor& d = doctor();
    const gw::Turn turn(d.work);
    if (!turn.is_first()) return;
    gw::show_wrapped(d.question, "");
    show_nothing("");
    say("");
    XmProcessTraversal(d.question, XmTRAVERSE_CURRENT);
}

// --- cures -------------------------------------------------------------------

/// The fonts of the main window, as after an installation. The font path may be another one now.
void refresh_main_window() {
    if (the_wp_cl_data.is_in_progress() || the_font_path == nullptr) return;
    delete the_font_path;
    the_font_path = new GWFontPath(gw::INSTALLATION_ROOT);
    fill_program_lists();
    update_wi_installed_hrn_list();
    forget_selection();
}

/// The server is asked again after a change. `said` stands before the answer; with "", what has come of the
/// newest deed.
void show_what_has_changed(std::string said) {
    Doctor& d = doctor();
    refresh_main_window();
    if (!d.questions.empty()) get_answer();
    if (said.empty()) {
        said = gw::outcome_text(d.answer);
        for (const gw::diagnosis::Sentence& remark : d.deeds.front().remarks)
            said += '\n' + gw::in_words(remark);
    }
    show_answer(said);
    d.cures.show_deeds(d.deeds);
    activate(d.toggles[CURES], 1);
    if (!is_seen(CURES)) show_page(CURES);
}

/// Shows how far a long cure is, and lets the user stop it. No other work may be begun meanwhile.
bool goes_on(std::size_t done, std::size_t all) {
    Doctor& d = doctor();
    if (!d.is_reading) forbid_other_work();
    d.is_reading = true;
    say(gw::in_words({gw::diagnosis::Said::READING_FONTS, {std::to_string(done), std::to_string(all)}}));
    process_xt_events();
    return !d.is_stopped;
}

gw::Result<Deed> carried_out(const Cure& cure) {
    Doctor& d = doctor();
    d.is_stopped = false;
    gw::Result<Deed> deed = gw::doctor_engine().carry_out(cure, goes_on);
    if (d.is_reading) permit_other_work();
    d.is_reading = false;
    return deed;
}

/// What was refused may have been planned for another state than there is now: the server is asked again.
void show_refusal(const gw::Failure& failure) {
    if (!doctor().questions.empty()) {
        get_answer();
        show_answer("");
    }
    say(gw::failure_line(failure));
}

void carry_out(const Cure& cure) {
    Doctor& d = doctor();
    const gw::Turn turn(d.work);
    if (!turn.is_first()) return;
    if (the_wp_cl_data.is_in_progress()) return say(gw::text_of(Message::DOCTOR_NOT_NOW));
    if (cure.remedy == Remedy::INSTALL_DIRECTORY) return start_install_dlg_from(cure.element);
    say("");
    const gw::BusyWindows busy;
    gw::Result<Deed> deed = carried_out(cure);
    if (!deed && d.is_stopped) return say(gw::in_words({gw::diagnosis::Said::CURE_STOPPED}));
    if (!deed) return show_refusal(deed.failure());
    say("");
    d.deeds.insert(d.deeds.begin(), std::move(*deed));
    show_what_has_changed("");
}

void undo(std::size_t number) {
    Doctor& d = doctor();
    const gw::Turn turn(d.work);
    if (!turn.is_first() || number >= d.deeds.size()) return;
    if (the_wp_cl_data.is_in_progress()) return say(gw::text_of(Message::DOCTOR_NOT_NOW));
    say("");
    const gw::BusyWindows busy;
    const gw::Outcome undone = d.deeds[number].undo();
    if (!undone) return show_refusal(undone.failure());
    d.deeds.erase(d.deeds.begin() + static_cast<std::ptrdiff_t>(number));
    show_what_has_changed(gw::text_of(Message::DOCTOR_TAKEN_BACK));
}

/// Only where nothing works yet: an alias takes programs away from a font that they get.
std::optional<Cure> alias(const gw::diagnosis::NearFont& font) {
    const Answer& answer = doctor().answer;
    return answer.works ? std::nullopt : gw::doctor_engine().alias(answer, font);
}

// --- copying and leaving -----------------------------------------------------

void offer(const std::string& text, Message done) {
    say(gw::text_of(gw::offer_text(wi_doctor_dlg, text) ? done : Message::DOCTOR_NOT_COPIED));
}

void copy(const std::string& text) {
    offer(text, Message::DOCTOR_COPIED);
}

void report_cb(Widget, XtPointer, XtPointer) {
    const Doctor& d = doctor();
    if (d.has_answer) offer(gw::doctor_engine().report(d.answer), Message::DOCTOR_REPORT_COPIED);
}

void close_cb(Widget, XtPointer, XtPointer) {
    if (doctor().is_reading) {
        doctor().is_stopped = true;
    } else {
        XtUnmanageChild(wi_doctor_dlg);
    }
}

// --- creation ----------------------------------------------------------------

void create_question(Widget dialog) {
    Doctor& d = doctor();
    Widget title = gw::label(dialog, "question_label", Message::DOCTOR_QUESTION);
    Attach(title).top_form(GAP).sides(GAP);
    d.question = gw::pasted_text(dialog, "question_text", rows().question, ask_cb);
    gw::label_for(title, d.question);
    Attach(XtParent(d.question)).below(title, 2).columns(0, BESIDE_BUTTONS).left_form(GAP);
}

/// Returns the button that asks.
Widget create_question_buttons(Widget dialog) {
    Widget title = XtNameToWidget(dialog, "question_label");
    const std::vector<Widget> buttons =
        gw::make_buttons(dialog, {{"ask_button", Message::DOCTOR_ASK, ask_cb, nullptr, BUTTONS, 99},
                                  {"clear_button", Message::DOCTOR_CLEAR, clear_cb, nullptr, BUTTONS, 99}});
    Attach(buttons[0]).below(title, 2);
    Attach(buttons[1]).below(buttons[0], 2);
    return buttons[0];
}

void create_found(Widget dialog) {
    Doctor& d = doctor();
    d.found_label = gw::label(dialog, "found_label", " ");
    d.found_list = gw::copyable_list(dialog, "found_list");
    gw::label_for(d.found_label, d.found_list);
    XtVaSetValues(d.found_list, XmNselectionPolicy, XmBROWSE_SELECT, XmNprimaryOwnership, XmOWN_NEVER,
                  XmNvisibleItemCount, FOUND_ROWS, nullptr);
    XtAddCallback(d.found_list, XmNbrowseSelectionCallback, choose_question_cb, nullptr);
    Attach(d.found_label).below(XtParent(d.question), GAP).columns(0, BESIDE_BUTTONS).left_form(GAP);
    Attach(XtParent(d.found_list)).below(d.found_label, 2).sides(GAP);
    XtUnmanageChild(d.found_label);
    XtUnmanageChild(XtParent(d.found_list));
}

/// Returns the text of the answer.
Widget create_answer(Widget dialog) {
    Doctor& d = doctor();
    d.answer_label = gw::label(dialog, "answer_label", Message::DOCTOR_ANSWER);
    Attach(d.answer_label).below(XtParent(d.question), GAP).sides(GAP);
    d.answer_text = gw::wrapped_text(dialog, "answer_text", rows().answer);
    Attach(XtParent(d.answer_text)).below(d.answer_label, 2).sides(GAP);
    return XtParent(d.answer_text);
}

/// A row of buttons of which one is set, and its page is seen; returns the row.
Widget create_toggles(Widget dialog, Widget above) {
    Doctor& d = doctor();
    Widget box = XmCreateRadioBox(dialog, gw::name_arg("page_box"), nullptr, 0);
    XtVaSetValues(box, XmNorientation, XmHORIZONTAL, XmNpacking, XmPACK_TIGHT, nullptr);
    for (std::size_t i = 0; i < PAGE_COUNT; ++i) {
        const gw::XmText text = gw::xm_text(gw::text_of(PAGES.at(i).title));
        d.toggles.at(i) = XtVaCreateManagedWidget(PAGES.at(i).toggle, xmToggleButtonWidgetClass, box,
                                                  XmNlabelString, text.get(), nullptr);
        gw::show_choice(d.toggles.at(i));
        XtAddCallback(d.toggles.at(i), XmNvalueChangedCallback, toggled_cb, nullptr);
        activate(d.toggles.at(i), 0);
    }
    XtManageChild(box);
    Attach(box).below(above, GAP).left_form(GAP);
    return box;
}

/// They lie upon each other between the row of buttons and the end of the dialog.
void create_pages(Widget dialog, Widget above, Widget below) {
    Doctor& d = doctor();
    d.actions = {carry_out, undo, alias, copy};
    for (std::size_t i = 0; i < PAGE_COUNT; ++i) {
        d.forms.at(i) = gw::form(dialog, PAGES.at(i).form);
        d.pages.at(i)->create(d.forms.at(i), d.message);
        Attach(d.forms.at(i)).below(above, 2).sides(GAP).above(below, GAP);
    }
}

/// Once it has its size, only the user changes that: the pages make room for the list of questions.
void keep_size_cb(Widget dialog, XtPointer, XtPointer) {
    XtVaSetValues(dialog, XmNresizePolicy, XmRESIZE_NONE, nullptr);
}

void forget_cb(Widget, XtPointer, XtPointer) {
    Doctor& d = doctor();
    d.questions.clear();
    d.has_answer = false;
    d.deeds.clear();
    wi_doctor_dlg = nullptr;
}

}  // namespace

Widget create_doctor_dlg(const char* name, Widget parent) {
    wi_doctor_dlg = gw::form_dialog(parent, name, Message::DOCTOR_TITLE);
    create_question(wi_doctor_dlg);
    Widget ask_button = create_question_buttons(wi_doctor_dlg);
    create_found(wi_doctor_dlg);
    Widget answer = create_answer(wi_doctor_dlg);
    Widget toggles = create_toggles(wi_doctor_dlg, answer);
    const gw::BottomRow row = gw::bottom_row(
        wi_doctor_dlg, {"msg_label", "button_form", "separator"},
        {{"report_button", Message::DOCTOR_REPORT, report_cb},
         {"close_button", Message::DOCTOR_CLOSE, close_cb},
         gw::help_button("help_button", Message::DOCTOR_HELP, gw::HelpSection::MISSING_FONTS)});
    Doctor& d = doctor();
    d.message = row.message;
    d.report_button = row.buttons[0];
    create_pages(wi_doctor_dlg, toggles, row.separator);
    show_nothing("");
    gw::end_dialog(wi_doctor_dlg, {ask_button, row.buttons[1], d.question, close_cb});
    XtAddCallback(wi_doctor_dlg, XmNmapCallback, keep_size_cb, nullptr);
    XtAddCallback(wi_doctor_dlg, XmNdestroyCallback, forget_cb, nullptr);
    gw::BusyWindows::include(wi_doctor_dlg);
    return wi_doctor_dlg;
}

void start_doctor_dlg() {
    XtManageChild(wi_doctor_dlg);
}

void start_doctor_dlg_about(const std::string& name) {
    start_doctor_dlg();
    gw::show_wrapped(doctor().question, name);
    ask();
}
