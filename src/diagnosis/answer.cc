// SPDX-License-Identifier: MIT
#include "diagnosis/answer.h"

#include "diagnosis/answering.h"
#include "diagnosis/cure_plan.h"
#include "diagnosis/deleted_font.h"
#include "fontpath/path_element.h"

namespace gw::diagnosis {

namespace {

void answer_question(Answering& at, Answer& answer) {
    switch (answer.question.wanted) {
        case Wanted::FONT:
            return answer_font(at, answer);
        case Wanted::FONTSET:
            return answer_fontset(at, answer);
        case Wanted::FILE:
            return answer_file(at, answer);
        case Wanted::DIRECTORY:
            return answer_directory(at, answer);
        case Wanted::PATH:
            return answer_path(at, answer);
    }
}

/// What holds for everything else that is said.
void say_where_the_server_is(Answer& answer) {
    if (answer.place == ServerPlace::ELSEWHERE) answer.verdict.push_back({Said::SERVER_IS_ELSEWHERE});
    if (answer.place == ServerPlace::UNKNOWN) answer.verdict.push_back({Said::SERVER_MAY_BE_ELSEWHERE});
}

/// A directory that is on no path has not been asked yet, and nobody may look at a silent one.
void find_out_whether_it_answers(const Question& question) {
    if (!question.name.starts_with('/')) return;
    if (question.wanted == Wanted::FILE)
        (void)find_silent({question.name.substr(0, question.name.rfind('/') + 1)});
    if (question.wanted == Wanted::DIRECTORY) (void)find_silent({place_of_element(question.name)});
}

}  // namespace

Answer answer(const Question& question, ServerView& server, const Surroundings& surroundings) {
    Answer answer;
    answer.question = question;
    if (!server.answers()) {
        answer.verdict.push_back({Said::SERVER_HAS_GONE});
        return answer;
    }
    answer.place = server.place();
    answer.server_user = server.user();
    answer.server_groups = server.groups();
    say_where_the_server_is(answer);
    if (answer.place != ServerPlace::ELSEWHERE) find_out_whether_it_answers(question);
    Answering at(server, surroundings);
    answer.path = at.path.reports;
    answer_question(at, answer);
    if (!server.answers()) {
        answer.verdict = {{Said::SERVER_HAS_GONE}};
        answer.works = false;
        return answer;
    }
    answer.cures = plan_cures(answer, surroundings);
    add_deleted_fonts(answer, surroundings);
    return answer;
}

}  // namespace gw::diagnosis
