// SPDX-License-Identifier: MIT
#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/rows.h"

#include "core/text.h"
#include "diagnosis/answer.h"
#include "diagnosis/deleted_font.h"
#include "diagnosis/find_surroundings.h"
#include "diagnosis/question.h"
#include "texts/sentences.h"

namespace gw::fonts {

namespace {

using diagnosis::Answer;
using diagnosis::Cure;
using diagnosis::ElementReport;
using diagnosis::ElementState;
using diagnosis::NearFont;
using diagnosis::Question;
using diagnosis::Sentence;
using diagnosis::Wanted;

Json sentences(const std::vector<Sentence>& all) {
    Json texts = Json::array();
    for (const Sentence& sentence : all) texts.push_back(in_json(gw::in_words(sentence)));
    return texts;
}

const char* word_for(ElementState state) {
    switch (state) {
        case ElementState::WORKS:
            return "works";
        case ElementState::WORKS_IN_PART:
            return "works in part";
        case ElementState::NOT_SERVED:
            return "not served";
        case ElementState::DEAD:
            return "dead";
        case ElementState::NOT_KNOWN:
            break;
    }
    return "not known";
}

Json path_of(const Answer& answer) {
    Json path = Json::array();
    for (const ElementReport& element : answer.path) {
        path.push_back({{"element", in_json(element.element)},
                        {"place", element.place},
                        {"configured", element.is_configured},
                        {"state", word_for(element.state)},
                        {"remarks", sentences(element.remarks)}});
    }
    return path;
}

Json nearest_of(const Answer& answer) {
    Json nearest = Json::array();
    for (const NearFont& font : answer.nearest) {
        nearest.push_back({{"name", in_json(font.name)},
                           {"file", in_json(font.file)},
                           {"element", in_json(font.element)},
                           {"served", font.is_served},
                           {"differences", sentences(font.differences)}});
    }
    return nearest;
}

Json cures_of(const Answer& answer, int& number) {
    Json cures = Json::array();
    for (const Cure& cure : answer.cures) {
        Json entry = {{"number", ++number}, {"what", in_json(gw::in_words(cure.what))}};
        if (!cure.command.empty()) entry["command"] = in_json(cure.command);
        cures.push_back(entry);
    }
    return cures;
}

Json in_json(const Answer& answer, int& number) {
    Json packages = Json::array();
    for (const diagnosis::PackageHint& hint : answer.packages)
        packages.push_back({{"package", hint.package}, {"command", hint.command}});
    Json json = {{"asked", fonts::in_json(answer.question.name)},
                 {"works", answer.works},
                 {"verdict", sentences(answer.verdict)},
                 {"nearest", nearest_of(answer)},
                 {"path", path_of(answer)},
                 {"packages", packages},
                 {"cures", cures_of(answer, number)}};
    if (!answer.font.name.empty()) {
        json["font"] = {{"name", fonts::in_json(answer.font.name)},
                        {"element", fonts::in_json(answer.font.element)},
                        {"file", fonts::in_json(answer.font.file)}};
    }
    return json;
}

/// In words for the terminal; the cures with their numbers, which begin behind `number`.
void show(const Answer& answer, int number, Report& report) {
    const auto words = [](const Sentence& sentence) { return gw::in_words(sentence); };
    Answer without_cures = answer;
    without_cures.cures.clear();
    report.line(diagnosis::report(without_cures, words));
    if (answer.cures.empty()) return;
    report.line(words({diagnosis::Said::HEAD_CURES}));
    for (const Cure& cure : answer.cures) {
        report.line(text_of(Message::SAYS_CURE, {std::to_string(++number), words(cure.what)}));
        if (!cure.command.empty()) report.line("    " + escaped(cure.command));
    }
    report.line("");
}

/// The cure of that number, which counts through all answers; null when there is none.
const Cure* cure_of(const std::vector<Answer>& answers, int wanted) {
    for (const Answer& answer : answers) {
        const auto count = static_cast<int>(answer.cures.size());
        if (wanted >= 1 && wanted <= count) return &answer.cures[static_cast<std::size_t>(wanted) - 1];
        wanted -= count;
    }
    return nullptr;
}

Status do_cure(const Cure& cure, ServerView& server, const diagnosis::Surroundings& surroundings,
               Report& report) {
    const std::string what = gw::in_words(cure.what);
    if (!cure.command.empty()) {
        report.trouble(what, text_of(Message::SAYS_FOR_ADMINISTRATOR, {cure.command}));
        return Status::FAILED;
    }
    if (cure.remedy == diagnosis::Remedy::INSTALL_DIRECTORY) {
        report.trouble(what, text_of(Message::SAYS_SAY, {"glyphward-fonts install " + cure.element}));
        return Status::FAILED;
    }
    if (report.settings().dry_run) {
        report.line(text_of(Message::SAYS_WOULD_BE_DONE, {what}));
        return Status::DONE;
    }
    const Result<diagnosis::Deed> deed = diagnosis::carry_out(cure, server, surroundings);
    if (!deed) {
        report.trouble(deed.failure());
        return Status::FAILED;
    }
    report.document()["done"] = fonts::in_json(what);
    report.line(text_of(Message::SAYS_DONE, {what}));
    for (const Sentence& remark : deed->remarks) report.line("    " + gw::in_words(remark));
    return Status::DONE;
}

Status show(const std::vector<Answer>& answers, Report& report) {
    Tally tally;
    Json all = Json::array();
    int number = 0;
    for (const Answer& answer : answers) {
        const int before = number;
        all.push_back(in_json(answer, number));
        show(answer, before, report);
        answer.works ? tally.done() : tally.failed();
    }
    report.document()["answers"] = all;
    return tally.status();
}

}  // namespace

Status why(const WhyOptions& options, Report& report) {
    const std::vector<Question> questions = diagnosis::read_questions(options.text);
    if (questions.empty()) {
        report.trouble("why", Message::SAYS_NO_NAME_IN_TEXT);
        return Status::USAGE;
    }
    const std::unique_ptr<ServerView> server = server_or_trouble(options.display, report);
    if (!server) return Status::COULD_NOT;
    const diagnosis::Surroundings surroundings = diagnosis::find_surroundings();
    std::vector<Answer> answers;
    answers.reserve(questions.size());
    for (const Question& question : questions)
        answers.push_back(diagnosis::answer(question, *server, surroundings));
    if (!server->answers()) {
        report.trouble("DISPLAY", Message::SAYS_SERVER_GONE);
        return Status::COULD_NOT;
    }
    if (options.cure == 0) return show(answers, report);
    if (const Cure* cure = cure_of(answers, options.cure); cure != nullptr)
        return do_cure(*cure, *server, surroundings, report);
    report.trouble(std::to_string(options.cure), Message::SAYS_NO_SUCH_CURE);
    return Status::FAILED;
}

Status doctor(const std::string& display, Report& report) {
    const std::unique_ptr<ServerView> server = server_or_trouble(display, report);
    if (!server) return Status::COULD_NOT;
    Question question;
    question.wanted = Wanted::PATH;
    const Answer answer = diagnosis::answer(question, *server, diagnosis::find_surroundings());
    const Status path = show({answer}, report);
    Host host(report);
    Json faults = Json::array();
    for (GWHRNElement* element : host.fonts()) {
        const Row row = row_of(*element);
        const std::optional<Failure> fault = fault_of(row);
        if (!fault) continue;
        report.line(escaped(row.name) + ": " + in_words(*fault));
        faults.push_back({{"name", fonts::in_json(row.name)}, {"fault", fonts::in_json(in_words(*fault))}});
    }
    report.document()["faults"] = faults;
    const std::string count = std::to_string(host.fonts().get_count());
    report.line(text_of(Message::SAYS_LOOKED_AT, {count, std::to_string(faults.size())}));
    const bool works = path == Status::DONE && faults.empty();
    return works ? Status::DONE : Status::FAILED;
}

}  // namespace gw::fonts
