// SPDX-License-Identifier: MIT
//
// An answer as a text, for a colleague.
#include "core/text.h"
#include "diagnosis/answer.h"

namespace gw::diagnosis {

namespace {

class Report {
  public:
    explicit Report(Words words) : words_(words) {}

    void line(const std::string& text) { text_ += text + '\n'; }
    void head(Said said) {
        text_ += '\n';
        line(words_({said}));
    }
    void sentences(const std::vector<Sentence>& sentences, const std::string& indent) {
        for (const Sentence& sentence : sentences) line(indent + words_(sentence));
    }
    void fonts(const std::vector<NearFont>& fonts, const std::string& indent) {
        for (const NearFont& font : fonts) {
            line(indent + escaped(font.name));
            const std::string& where = font.file.empty() ? font.element : font.file;
            if (!where.empty()) line(indent + "  " + escaped(where));
            sentences(font.differences, indent + "  ");
        }
    }
    void packages(const std::vector<PackageHint>& packages, const std::string& indent) {
        for (const PackageHint& package : packages)
            line(indent + (package.command.empty() ? words_({Said::PACKAGE_OF_DEBIAN, {package.package}})
                                                   : package.command));
    }
    [[nodiscard]] std::string text() const { return text_; }

  private:
    Words words_;
    std::string text_;
};

void report_path(const Answer& answer, Report& report) {
    if (answer.path.empty()) return;
    report.head(Said::HEAD_PATH);
    for (const ElementReport& element : answer.path) {
        const std::string place = element.place > 0 ? std::to_string(element.place) : "-";
        report.line(place + ' ' + escaped(element.element));
        report.sentences(element.remarks, "    ");
    }
}

void report_charsets(const Answer& answer, Report& report) {
    if (answer.charsets.empty()) return;
    report.head(Said::HEAD_CHARSETS);
    for (const CharsetCoverage& coverage : answer.charsets) {
        report.line(coverage.charset + ": " + (coverage.font.empty() ? "-" : escaped(coverage.font)));
        report.fonts(coverage.nearest, "    ");
        report.packages(coverage.packages, "    ");
    }
    if (answer.base_names.empty()) return;
    report.head(Said::HEAD_BASE_NAMES);
    report.line(escaped(answer.base_names));
}

}  // namespace

std::string report(const Answer& answer, Words words) {
    Report report(words);
    if (!answer.question.line.empty()) report.line("> " + escaped(answer.question.line));
    if (!answer.question.name.empty()) report.line("> " + escaped(answer.question.name));
    report.sentences(answer.question.notes, "");
    report.sentences(answer.verdict, "");
    report_path(answer, report);
    report_charsets(answer, report);
    if (!answer.nearest.empty()) {
        report.head(Said::HEAD_NEAREST);
        report.fonts(answer.nearest, "");
    }
    if (!answer.packages.empty()) {
        report.head(Said::HEAD_PACKAGES);
        report.packages(answer.packages, "");
    }
    if (!answer.cures.empty()) report.head(Said::HEAD_CURES);
    for (const Cure& cure : answer.cures) {
        report.sentences({cure.what}, "");
        if (!cure.command.empty()) report.line("    " + cure.command);
    }
    return report.text();
}

}  // namespace gw::diagnosis
