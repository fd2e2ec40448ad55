// SPDX-License-Identifier: MIT
#include "app/doctor/doctor_engine.h"

#include "app/doctor/server_on_demand.h"
#include "app/program/server_watch.h"
#include "diagnosis/cure_plan.h"
#include "diagnosis/find_surroundings.h"
#include "texts/sentences.h"

namespace gw {

namespace {

using diagnosis::Answer;
using diagnosis::Cure;
using diagnosis::Deed;
using diagnosis::NearFont;
using diagnosis::Question;
using diagnosis::Wanted;

ServerOnDemand& server() {
    static ServerOnDemand of_the_windows;
    return of_the_windows;
}

Answer answer_of(const Question& question) {
    const ServerUse use;
    return diagnosis::answer(question, server(), diagnosis::find_surroundings());
}

Result<Deed> carry_out_here(const Cure& cure, const diagnosis::Progress& progress) {
    const ServerUse use;
    Result<Deed> deed = diagnosis::carry_out(cure, server(), diagnosis::find_surroundings(), progress);
    if (!deed) return deed;
    deed->undo = [undo = deed->undo]() -> Outcome {
        const ServerUse again;
        return undo();
    };
    return deed;
}

std::optional<Cure> alias_to(const Answer& answer, const NearFont& font) {
    if (answer.question.wanted != Wanted::FONT || !font.is_served) return std::nullopt;
    return diagnosis::alias_cure(answer.question.name, font.name, diagnosis::has_an_answer(answer),
                                 diagnosis::find_surroundings());
}

std::string report_on(const Answer& answer) {
    return diagnosis::report(answer, [](const diagnosis::Sentence& sentence) { return in_words(sentence); });
}

}  // namespace

DoctorEngine& doctor_engine() {
    static DoctorEngine engine = {diagnosis::read_questions, answer_of, carry_out_here, alias_to, report_on};
    return engine;
}

}  // namespace gw
