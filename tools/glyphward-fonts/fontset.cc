// SPDX-License-Identifier: MIT
#include <clocale>
#include <cstdlib>
#include <string>

#include "core/text.h"
#include "diagnosis/answer.h"
#include "diagnosis/find_surroundings.h"
#include "fontfiles/gw_fontset_file.h"
#include "platform/host_paths.h"
#include "texts/sentences.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/host.h"

namespace gw::fonts {

namespace {

using diagnosis::Answer;
using diagnosis::CharsetCoverage;

/// What programs ask for that do not mind the font.
constexpr const char* ANY_FONT = "-*-*-medium-r-normal--*-120-*-*-*-*-*-*";

struct NamedFontset {
    std::string name;  ///< "" for one that is in no file
    std::string base_names;
};

/// The fontsets of the installation for the locale.
std::vector<NamedFontset> fontsets_of(const std::string& locale) {
    std::vector<NamedFontset> sets;
    const std::string dir = std::string(INSTALLATION_ROOT) + LOCALE_FONT_PATH_DIR + locale + FONTSET_DIR;
    const GW_FONTSET_FILE file(dir.c_str(), FONTSET_FILE_NAME, FILE_TYPE_REGULAR);
    for (const GWFontSet* set : file.get_fontsets()) {
        if (set->get_base_names() != nullptr) sets.push_back({set->get_name(), set->get_base_names()});
    }
    return sets;
}

Json in_json(const NamedFontset& set, const Answer& answer) {
    Json charsets = Json::array();
    for (const CharsetCoverage& coverage : answer.charsets) {
        Json nearest = Json::array();
        for (const diagnosis::NearFont& font : coverage.nearest) nearest.push_back(fonts::in_json(font.name));
        Json packages = Json::array();
        for (const diagnosis::PackageHint& hint : coverage.packages) packages.push_back(hint.package);
        charsets.push_back({{"charset", fonts::in_json(coverage.charset)},
                            {"font", fonts::in_json(coverage.font)},
                            {"nearest", nearest},
                            {"packages", packages}});
    }
    return {{"name", fonts::in_json(set.name)},
            {"baseNames", fonts::in_json(set.base_names)},
            {"works", answer.works},
            {"charsets", charsets}};
}

/// The characters are those of another locale, as long as this exists.
class CharactersOf {
  public:
    explicit CharactersOf(const std::string& locale) { std::setlocale(LC_CTYPE, locale.c_str()); }
    ~CharactersOf() { std::setlocale(LC_CTYPE, own_.c_str()); }
    CharactersOf(const CharactersOf&) = delete;
    CharactersOf& operator=(const CharactersOf&) = delete;

  private:
    std::string own_ = std::setlocale(LC_CTYPE, nullptr);
};

/// What programs in that locale get. They have its characters; what is printed about it has the user's.
Answer answer_in(const std::string& locale, const diagnosis::Question& question, ServerView& server) {
    const CharactersOf characters(locale);
    return diagnosis::answer(question, server, diagnosis::find_surroundings());
}

bool has_locale(const std::string& locale) {
    const std::string own = std::setlocale(LC_CTYPE, nullptr);
    const bool has = std::setlocale(LC_CTYPE, locale.c_str()) != nullptr;
    std::setlocale(LC_CTYPE, own.c_str());
    return has;
}

void show(const NamedFontset& set, const Answer& answer, Report& report) {
    report.line(escaped(set.name.empty() ? set.base_names : set.name) + ':');
    for (const CharsetCoverage& coverage : answer.charsets) {
        report.line("    " + escaped(coverage.charset) + ": " +
                    (coverage.font.empty() ? "-" : escaped(coverage.font)));
        if (!coverage.font.empty()) continue;
        for (const diagnosis::NearFont& font : coverage.nearest)
            report.line("        " + (font.is_served ? escaped(font.name)
                                                     : text_of(Message::SAYS_NOT_SERVED, {font.name})));
        for (const diagnosis::PackageHint& hint : coverage.packages)
            report.line("        " + (hint.command.empty()
                                          ? gw::in_words({diagnosis::Said::PACKAGE_OF_DEBIAN, {hint.package}})
                                          : hint.command));
    }
}

}  // namespace

Status fontset(const FontsetOptions& options, Report& report) {
    const std::string& locale = options.locale;
    if (!has_locale(locale)) {
        report.trouble(locale, Message::SAYS_NO_LOCALE);
        return Status::COULD_NOT;
    }
    ::setenv("LC_ALL", locale.c_str(), 1);
    const std::unique_ptr<ServerView> server = server_or_trouble(options.display, report);
    if (!server) return Status::COULD_NOT;
    std::vector<NamedFontset> sets = fontsets_of(locale);
    if (!options.base_names.empty()) sets = {{"", options.base_names}};
    if (sets.empty()) sets = {{"", ANY_FONT}};
    Tally tally;
    Json all = Json::array();
    for (const NamedFontset& set : sets) {
        diagnosis::Question question;
        question.wanted = diagnosis::Wanted::FONTSET;
        question.name = set.base_names;
        const Answer answer = answer_in(locale, question, *server);
        answer.works ? tally.done() : tally.failed();
        show(set, answer, report);
        all.push_back(in_json(set, answer));
    }
    report_heard(report);
    report.document()["fontsets"] = all;
    return tally.status();
}

}  // namespace gw::fonts
