// SPDX-License-Identifier: MIT
//
// Answers for the window "Why Is a Font Missing?" that are made up: a directory that is not on the server's
// path, and everything else that an answer can have.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/doctor/doctor_engine.h"
#include "core/text.h"

namespace gw::test {

/// The sentences themselves do not matter here; these say what they are given.
inline diagnosis::Sentence sentence(diagnosis::Said said, std::vector<std::string> details = {}) {
    return {said, std::move(details)};
}

inline constexpr const char* MISSING_FONT = "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1";
inline constexpr const char* NEAR_FONT = "-misc-fixed-medium-r-normal--13-120-75-75-c-70-iso8859-1";
inline constexpr const char* FONT_FILE = "/home/somebody/fonts/helvB12.pcf.gz";

/// An engine with one thing wrong, which the first cure mends. Counts what it is asked.
class PlayedDoctor {
  public:
    PlayedDoctor() {
        doctor_engine() = {
            [this](std::string_view text) { return questions(text); },
            [this](const diagnosis::Question& question) { return answer(question); },
            [this](const diagnosis::Cure& cure, const diagnosis::Progress& progress) {
                return carry_out(cure, progress);
            },
            alias, [](const diagnosis::Answer& answer) { return "Report on " + answer.question.name; }};
    }
    ~PlayedDoctor() { doctor_engine() = before_; }
    PlayedDoctor(const PlayedDoctor&) = delete;
    PlayedDoctor& operator=(const PlayedDoctor&) = delete;

    int asked = 0;
    std::string pasted;                  ///< what was asked last
    std::vector<diagnosis::Cure> cures;  ///< that were carried out
    int undone = 0;
    bool is_mended = false;
    bool refuses = false;  ///< no cure works
    bool is_fontset = false;
    diagnosis::Remedy first_remedy = diagnosis::Remedy::SERVE_DIRECTORY;
    std::string near_file = FONT_FILE;  ///< of a font that the server does not have
    std::string first_element = "/home/somebody/fonts/";
    std::vector<diagnosis::Sentence> notes;  ///< on every question
    std::vector<diagnosis::Sentence> deed_remarks;
    std::function<void()> while_asked;  ///< called in the middle of an answer
    std::size_t files_to_read = 0;      ///< by each cure
    std::function<void(std::size_t done)> while_cured;

  private:
    /// Each line is a question.
    std::vector<diagnosis::Question> questions(std::string_view text) {
        pasted = text;
        std::vector<diagnosis::Question> all;
        for (const std::string_view line : lines_of(text)) {
            if (line.empty()) continue;
            diagnosis::Question question;
            question.name = line;
            question.line = line;
            question.notes = notes;
            all.push_back(question);
        }
        return all;
    }

    diagnosis::Answer answer(const diagnosis::Question& question) {
        ++asked;
        if (while_asked) while_asked();
        diagnosis::Answer made;
        made.question = question;
        made.works = is_mended;
        if (is_mended) {
            made.font.found = diagnosis::Found::EXACT;
            made.font.name = question.name;
            made.font.element = "/home/somebody/fonts/";
            made.font.file = FONT_FILE;
            made.font.is_checked = true;
            return made;
        }
        made.verdict = {sentence(diagnosis::Said::NOTHING_ASKED),
                        sentence(diagnosis::Said::SERVER_IS_ELSEWHERE)};
        fill_path(made);
        fill_nearest(made);
        fill_cures(made);
        made.packages = {{"xfonts-75dpi", "sudo apt-get install xfonts-75dpi", MISSING_FONT},
                         {"gsfonts-x11", "sudo apt-get install gsfonts-x11", NEAR_FONT}};
        if (is_fontset) fill_charsets(made);
        return made;
    }

    static void fill_path(diagnosis::Answer& made) {
        using diagnosis::ElementState;
        const std::vector<diagnosis::Sentence> remarks = {sentence(diagnosis::Said::SERVER_HAS_GONE)};
        const auto add = [&](const char* element, int place, ElementState state) {
            diagnosis::ElementReport report;
            report.element = element;
            report.place = place;
            report.is_configured = true;
            report.state = state;
            report.remarks = remarks;
            made.path.push_back(report);
        };
        add("/usr/share/fonts/X11/misc/", 1, ElementState::WORKS);
        add("/usr/share/fonts/X11/75dpi/:unscaled", 2, ElementState::WORKS_IN_PART);
        add("/gone/", 3, ElementState::DEAD);
        made.path.back().remarks = {sentence(diagnosis::Said::NOTHING_ASKED)};
        add("tcp/fonts.example.org:7100", 4, ElementState::NOT_KNOWN);
        add("/home/somebody/fonts/", 0, ElementState::NOT_SERVED);
    }

    void fill_nearest(diagnosis::Answer& made) const {
        const std::vector<diagnosis::Sentence> differences = {sentence(diagnosis::Said::NOTHING_ASKED)};
        made.nearest = {
            {MISSING_FONT, near_file, "/home/somebody/fonts/", false, {}, 4},
            {NEAR_FONT, "/usr/share/fonts/X11/misc/7x13.pcf.gz", "/usr/share/fonts/X11/misc/", true,
             differences},
        };
    }

    void fill_cures(diagnosis::Answer& made) const {
        using diagnosis::Remedy;
        const diagnosis::Sentence what = sentence(diagnosis::Said::NOTHING_ASKED);
        made.cures = {
            {.remedy = first_remedy, .what = what, .element = first_element},
            {.remedy = Remedy::ADD_ALIAS,
             .what = sentence(diagnosis::Said::SERVER_HAS_GONE),
             .wanted = MISSING_FONT,
             .font = NEAR_FONT},
            {.remedy = Remedy::MAKE_INDEX,
             .what = what,
             .element = "/usr/share/fonts/X11/75dpi/",
             .command = "sudo mkfontdir /usr/share/fonts/X11/75dpi"},
        };
    }

    static std::optional<diagnosis::Cure> alias(const diagnosis::Answer& answer,
                                                const diagnosis::NearFont& font) {
        if (!font.is_served) return std::nullopt;
        return diagnosis::Cure{.remedy = diagnosis::Remedy::ADD_ALIAS,
                               .what = sentence(diagnosis::Said::SERVER_HAS_GONE),
                               .wanted = answer.question.name,
                               .font = font.name};
    }

    static void fill_charsets(diagnosis::Answer& made) {
        made.charsets = {{"iso8859-1", NEAR_FONT, {}, {}},
                         {"jisx0208.1983-0", "", made.nearest, made.packages}};
        made.base_names = std::string(MISSING_FONT) + ',' + NEAR_FONT;
    }

    Result<diagnosis::Deed> carry_out(const diagnosis::Cure& cure, const diagnosis::Progress& progress) {
        for (std::size_t done = 0; done < files_to_read; ++done) {
            if (while_cured) while_cured(done);
            if (!progress(done, files_to_read)) return Failure::of_system("/home/somebody/fonts/", ECANCELED);
        }
        if (refuses) return Failure{"/home/somebody/fonts/", Reason::REFUSED_BY_SERVER};
        cures.push_back(cure);
        is_mended = true;
        diagnosis::Deed deed;
        deed.what = cure.what;
        deed.remarks = deed_remarks;
        deed.undo = [this]() -> Outcome {
            if (refuses) return Failure{"/home/somebody/fonts/", Reason::REFUSED_BY_SERVER};
            ++undone;
            is_mended = false;
            return done();
        };
        return deed;
    }

    DoctorEngine before_ = doctor_engine();
};

}  // namespace gw::test
