// SPDX-License-Identifier: MIT
//
// What somebody has pasted: whatever it is, every name that is found in it is fit to be shown and asked for,
// and is there once.
#include <algorithm>

#include "core/text.h"
#include "diagnosis/pasted_text.h"
#include "diagnosis/question.h"
#include "fuzz.h"

namespace {

using gw::diagnosis::Question;
using gw::diagnosis::Wanted;

/// Whether a name can be shown, and pasted again, as it is. The name of a file, from an address, may have any
/// bytes.
bool is_fit(const Question& question) {
    const std::string line = "name " + question.name;
    const bool is_path = question.wanted == Wanted::FILE || question.wanted == Wanted::DIRECTORY;
    return gw::escaped(question.name) == question.name &&
           (is_path || gw::diagnosis::readable(line, line.size()) == line);
}

void try_question(const Question& question, std::string_view input) {
    GW_MUST_HOLD(is_fit(question), input);
    GW_MUST_HOLD(question.name.empty() == (question.wanted == Wanted::PATH), input);
    GW_MUST_HOLD(question.element >= 0, input);
    GW_MUST_HOLD(question.wanted == Wanted::PATH || question.element == 0, input);
    GW_MUST_HOLD(question.program.size() <= 40, input);
    GW_MUST_HOLD(question.line.find('\n') == std::string::npos, input);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    const std::vector<Question> questions = gw::diagnosis::read_questions(input);
    GW_MUST_HOLD(questions.size() <= gw::diagnosis::MOST_QUESTIONS, input);
    for (auto question = questions.begin(); question != questions.end(); ++question) {
        try_question(*question, input);
        const bool is_again = std::any_of(questions.begin(), question, [&](const Question& other) {
            return other.wanted == question->wanted && other.name == question->name &&
                   other.element == question->element;
        });
        GW_MUST_HOLD(!is_again, input);
    }
}
