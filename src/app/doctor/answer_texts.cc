// SPDX-License-Identifier: MIT
#include "app/doctor/answer_texts.h"

#include <algorithm>

#include "texts/messages.h"
#include "texts/sentences.h"

namespace gw {

namespace {

using diagnosis::Answer;
using diagnosis::CharsetCoverage;
using diagnosis::Cure;
using diagnosis::ElementReport;
using diagnosis::ElementState;
using diagnosis::NearFont;
using diagnosis::PackageHint;
using diagnosis::Said;
using diagnosis::Sentence;

StateLine state_line(ElementState state) {
    switch (state) {
        case ElementState::WORKS:
            return {text_of(Message::STATE_WORKS), "", Tone::GOOD};
        case ElementState::WORKS_IN_PART:
            return {text_of(Message::STATE_WORKS_IN_PART), "", Tone::DOUBTFUL};
        case ElementState::NOT_SERVED:
            return {text_of(Message::STATE_NOT_SERVED), "", Tone::DOUBTFUL};
        case ElementState::DEAD:
            return {text_of(Message::STATE_DEAD), "", Tone::BAD};
        case ElementState::NOT_KNOWN:
            break;
    }
    return {text_of(Message::STATE_NOT_KNOWN), "", Tone::FAINT};
}

void append_line(std::string& text, const std::string& line) {
    if (line.empty()) return;
    if (!text.empty()) text += '\n';
    text += line;
}

/// It holds for everything that follows.
bool is_about_the_server(const Sentence& sentence) {
    return sentence.said == Said::SERVER_IS_ELSEWHERE || sentence.said == Said::SERVER_MAY_BE_ELSEWHERE ||
           sentence.said == Said::SERVER_HAS_GONE;
}

}  // namespace

std::string in_words(const std::vector<Sentence>& sentences) {
    std::string text;
    for (const Sentence& sentence : sentences) {
        if (!text.empty()) text += ' ';
        text += in_words(sentence);
    }
    return text;
}

std::string verdict_text(const Answer& answer, bool is_over) {
    std::vector<Sentence> all = answer.verdict;
    const auto behind_server = std::stable_partition(all.begin(), all.end(), is_about_the_server);
    std::vector<Sentence> notes;
    for (const Sentence& note : answer.question.notes) {
        if (!is_over && std::find(all.begin(), all.end(), note) == all.end()) notes.push_back(note);
    }
    all.insert(behind_server, notes.begin(), notes.end());
    std::string text;
    for (const Sentence& sentence : all) append_line(text, in_words(sentence));
    return text;
}

std::vector<StateLine> path_lines(const Answer& answer) {
    std::vector<StateLine> lines;
    for (const ElementReport& element : answer.path) {
        StateLine line = state_line(element.state);
        if (element.place > 0) line.text = std::to_string(element.place) + ". ";
        line.text += element.element;
        lines.push_back(line);
    }
    return lines;
}

std::string remarks_text(const ElementReport& element) {
    std::string text;
    for (const Sentence& remark : element.remarks) append_line(text, in_words(remark));
    return text;
}

std::vector<StateLine> near_lines(const std::vector<NearFont>& fonts) {
    std::vector<StateLine> lines;
    for (const NearFont& font : fonts) {
        const Message state = font.is_served ? Message::STATE_SERVED : Message::STATE_NOT_SERVED;
        lines.push_back({text_of(state), font.name, font.is_served ? Tone::GOOD : Tone::DOUBTFUL});
    }
    return lines;
}

std::string near_text(const NearFont& font) {
    std::string text =
        font.differences.empty() ? text_of(Message::DOCTOR_SAME_FONT) : in_words(font.differences);
    if (!font.file.empty()) {
        append_line(text, text_of(Message::DOCTOR_FILE, {font.file}));
        if (font.other_charsets > 0)
            append_line(text, text_of(Message::DOCTOR_OTHER_CHARSETS, {std::to_string(font.other_charsets)}));
    } else if (!font.element.empty()) {
        append_line(text, text_of(Message::DOCTOR_IN_DIRECTORY, {font.element}));
    }
    return text;
}

std::vector<StateLine> cure_lines(const std::vector<Cure>& cures) {
    std::vector<StateLine> lines;
    for (const Cure& cure : cures) {
        const bool is_ours = cure.command.empty();
        lines.push_back({text_of(is_ours ? Message::DOCTOR_FOR_YOU : Message::DOCTOR_FOR_ADMINISTRATOR),
                         in_words(cure.what), is_ours ? Tone::GOOD : Tone::DOUBTFUL});
    }
    return lines;
}

namespace {

/// The package by its name in Debian, the only one that is known.
std::string package_text(const PackageHint& hint) {
    return hint.command.empty() ? in_words({diagnosis::Said::PACKAGE_OF_DEBIAN, {hint.package}})
                                : hint.package;
}

}  // namespace

std::vector<std::string> package_lines(const std::vector<PackageHint>& packages) {
    std::vector<std::string> lines;
    lines.reserve(packages.size());
    for (const PackageHint& hint : packages)
        lines.push_back(text_of(Message::DOCTOR_PACKAGE_WITH, {package_text(hint), hint.name}));
    return lines;
}

std::vector<StateLine> charset_lines(const Answer& answer) {
    std::vector<StateLine> lines;
    for (const CharsetCoverage& charset : answer.charsets) {
        if (charset.font.empty()) {
            lines.push_back({charset.charset, text_of(Message::DOCTOR_NO_FONT), Tone::BAD});
        } else {
            lines.push_back({charset.charset, charset.font, Tone::GOOD});
        }
    }
    return lines;
}

std::string coverage_text(const CharsetCoverage& charset) {
    std::string text;
    for (const NearFont& font : charset.nearest) append_line(text, font.name + ": " + near_text(font));
    for (const PackageHint& hint : charset.packages)
        append_line(text, hint.command.empty() ? package_text(hint) : hint.command);
    return text;
}

std::string outcome_text(const Answer& answer) {
    if (!answer.works) return text_of(Message::DOCTOR_NOT_YET);
    if (answer.font.file.empty()) return text_of(Message::DOCTOR_WORKS);
    return text_of(Message::DOCTOR_WORKS_FROM, {answer.font.file});
}

}  // namespace gw
