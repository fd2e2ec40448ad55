// SPDX-License-Identifier: MIT
#include <algorithm>
#include <map>

#include "core/directory.h"
#include "core/text.h"
#include "diagnosis/alias_edit.h"
#include "diagnosis/own_aliases.h"
#include "fontfiles/alias_lexer.h"
#include "fontfiles/alias_text.h"
#include "fontfiles/gw_fontset_file.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"
#include "store/file_turn.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/deletion.h"
#include "glyphward-fonts/destination.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/installation.h"
#include "glyphward-fonts/interruption.h"
#include "glyphward-fonts/made_directories.h"
#include "glyphward-fonts/profile.h"
#include "glyphward-fonts/rows.h"
#include "glyphward-fonts/sources.h"

namespace gw::fonts {

namespace {

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ",") + text;
    return all;
}

Message message_for(const std::string& what) {
    static const std::map<std::string, Message> MESSAGES = {{"font", Message::SAYS_CHANGES_FONT},
                                                            {"path", Message::SAYS_CHANGES_PATH},
                                                            {"alias", Message::SAYS_CHANGES_ALIAS},
                                                            {"fontset", Message::SAYS_CHANGES_FONTSET}};
    return MESSAGES.at(what);
}

/// Makes a machine what a profile says, part by part. A part that fails stays as it was, and the others are
/// tried.
class Application {
  public:
    Application(Profile profile, Report& report) : profile_(std::move(profile)), report_(report) {}

    Status run();

  private:
    void apply_parts();
    void apply_fonts();
    void delete_absent(Deletion& deletion, Host& host) const;
    void note_fonts(const FontNotes& notes);
    [[nodiscard]] bool is_destination(const std::string& element) const;
    [[nodiscard]] bool is_destination_on_wanted_path() const;
    [[nodiscard]] std::vector<std::string> with_destination(std::vector<std::string> elements,
                                                            const std::vector<std::string>& before) const;
    void apply_path(const std::string& whose, const std::vector<std::string>& elements);
    void apply_aliases();
    void apply_aliases(const std::string& directory, const std::vector<AliasOfFont>& wanted);
    void apply_fontset(const Profile::Fontset& wanted);
    Outcome write_fontset(GW_FONTSET_FILE& file, const Profile::Fontset& wanted) const;
    void note(const std::string& what, const std::string& subject, const std::string& before,
              const std::string& after);
    void fail(const Failure& failure);
    [[nodiscard]] bool is_dry() const { return report_.settings().dry_run; }

    Profile profile_;
    Report& report_;
    std::string directory_;  // of the fonts, ending in "/"
    Tally tally_;
    Json changes_ = Json::array();
};

void Application::note(const std::string& what, const std::string& subject, const std::string& before,
                       const std::string& after) {
    tally_.done();
    report_.line(text_of(message_for(what), {subject}));
    changes_.push_back({{"what", what},
                        {"subject", in_json(subject)},
                        {"before", in_json(before)},
                        {"after", in_json(after)}});
}

void Application::fail(const Failure& failure) {
    tally_.failed(failure);
    report_.trouble(failure);
}

// --- fonts -------------------------------------------------------------------

void Application::note_fonts(const FontNotes& notes) {
    using Result = FontNotes::Result;
    for (const FontNotes::Note& font : notes.all()) {
        if (!font.is_change()) continue;
        const bool goes = font.result == Result::DELETED || font.result == Result::WOULD_BE_DELETED;
        const bool comes = font.result == Result::INSTALLED || font.result == Result::WOULD_BE_INSTALLED;
        note("font", font.font, comes ? "" : font.font, goes ? "" : font.font);
    }
}

void Application::delete_absent(Deletion& deletion, Host& host) const {
    std::vector<Row> rows;
    for (GWHRNElement* element : host.fonts()) {
        const Row row = row_of(*element);
        const bool is_here = identity_of_element(row.directory) == identity_of_element(directory_);
        for (const std::string& pattern : profile_.absent) {
            if (!is_here || !Pattern(pattern).matches(row)) continue;
            rows.push_back(row);
            break;
        }
    }
    if (!rows.empty()) deletion.remove(rows);
}

/// All fonts are one change: when one of them fails, the directory stays as it was.
void Application::apply_fonts() {
    MadeDirectories made;
    if (const Outcome ready = prepare(directory_, is_dry(), made); !ready) return fail(ready.failure());
    Host host(report_, directory_);
    GWHRNList sources(0);
    FontAction action;
    action.make_missing_directories(maker_of(directory_, made));
    Deletion deletion(true, host, report_);
    delete_absent(deletion, host);
    Installation installation(directory_, IfThere::REPLACE_HERE, host, report_);
    find_sources(profile_.files, sources, report_, installation.tally);
    installation.install(sources);
    Tally both;
    const auto has_failed = [&] {
        both = deletion.tally;
        both.add(installation.tally);
        return both.status() == Status::FAILED || both.status() == Status::COULD_NOT;
    };
    if (!is_dry() && !has_failed()) {
        const std::string undo =
            commit(action, {&deletion.failures(), &installation.failures()}, Sequel::FONT_LEFT_OUT, report_);
        if (!undo.empty()) report_.document()["undo"] = undo;
        deletion.note_failures_of_commit();
        installation.note_failures_of_commit();
    }
    if (has_failed()) {
        tally_.add_failures(both);
        return report_.trouble(directory_, Message::SAYS_NOT_ALL);
    }
    note_fonts(deletion.notes());
    note_fonts(installation.notes());
    const bool changed = deletion.notes().has_change() || installation.notes().has_change();
    // A path of the profile that names the destination is not extended.
    const bool is_left_off = installation.is_left_off_path() && !is_destination_on_wanted_path();
    if (!changed && !is_left_off) return;
    if (is_left_off) note("path", directory_, "", directory_);
    if (is_dry()) return;
    made.keep();
    put_in_force(directory_, report_);
}

// --- font paths --------------------------------------------------------------

bool Application::is_destination(const std::string& element) const {
    return identity_of_element(directory_of_element(element)) == identity_of_element(directory_);
}

bool Application::is_destination_on_wanted_path() const {
    return std::any_of(profile_.paths.begin(), profile_.paths.end(), [this](const auto& path) {
        const auto& elements = path.second;
        return std::any_of(elements.begin(), elements.end(),
                           [this](const std::string& element) { return is_destination(element); });
    });
}

/// The destination stays on a path that does not name it: the installation has put it there.
std::vector<std::string> Application::with_destination(std::vector<std::string> elements,
                                                       const std::vector<std::string>& before) const {
    const auto is_it = [this](const std::string& element) { return is_destination(element); };
    const auto there = std::find_if(before.begin(), before.end(), is_it);
    const bool is_named = std::any_of(elements.begin(), elements.end(), is_it);
    if (!profile_.files.empty() && there != before.end() && !is_named) elements.push_back(*there);
    return elements;
}

void Application::apply_path(const std::string& whose, const std::vector<std::string>& wanted) {
    const GWFontPath::TYPE list = whose == "host"           ? GWFontPath::HOST_FP
                                  : whose == "installation" ? GWFontPath::INSTALLATION_FP
                                  : whose == "me"           ? GWFontPath::USER_APPEND_FP
                                                            : GWFontPath::USER_PREPEND_FP;
    const std::vector<std::string> before = elements_of(list);
    const std::vector<std::string> elements = with_destination(wanted, before);
    if (before == elements) return tally_.already();
    if (!is_dry()) {
        if (const Outcome stored = store_elements(list, elements); !stored) return fail(stored.failure());
    }
    note("path", whose, joined(before), joined(elements));
}

// --- aliases -----------------------------------------------------------------

/// What the aliases of a directory stand for, by their names in lower case; empty where it has none.
Result<std::map<std::string, std::string>> aliases_in(const std::string& directory) {
    std::map<std::string, std::string> fonts;
    const Result<Directory> dir = Directory::open(directory);
    if (!dir) return fonts;
    const Result<std::string> text = diagnosis::alias_text_in(*dir);
    if (!text) return text.failure();
    for (const AliasEntry& entry : alias_entries(*text).value_or(std::vector<AliasEntry>()))
        fonts.emplace(server_lower_case(entry.alias), entry.font);
    return fonts;
}

/// The aliases of a directory are one change: when one of them fails, its file stays as it was.
void Application::apply_aliases(const std::string& directory, const std::vector<AliasOfFont>& wanted) {
    const auto before = aliases_in(directory);
    if (!before) return fail(before.failure());
    const auto font_before = [&](const std::string& alias) {
        const auto known = before->find(server_lower_case(alias));
        return known != before->end() ? known->second : std::string();
    };
    std::vector<AliasOfFont> changes;
    for (const AliasOfFont& alias : wanted) {
        if (server_lower_case(font_before(alias.first)) != server_lower_case(alias.second))
            changes.push_back(alias);
    }
    if (changes.empty()) return tally_.already();
    if (!is_dry()) {
        const Outcome added = diagnosis::add_own_aliases(directory, changes, elements_of(GWFontPath::ALL_FP));
        if (!added) return fail(added.failure());
        tell_server("", report_);
    }
    for (const auto& [alias, font] : changes) note("alias", alias, font_before(alias), font);
}

/// Directory by directory.
void Application::apply_aliases() {
    std::map<std::string, std::vector<AliasOfFont>> by_directory;
    for (const Profile::Alias& alias : profile_.aliases) {
        const std::string directory =
            alias.directory.empty() ? directory_ : with_trailing_slash(alias.directory);
        by_directory[directory].emplace_back(alias.name, alias.font);
    }
    for (const auto& [directory, aliases] : by_directory) {
        if (!is_interrupted()) apply_aliases(directory, aliases);
    }
}

// --- fontsets ----------------------------------------------------------------

Outcome Application::write_fontset(GW_FONTSET_FILE& file, const Profile::Fontset& wanted) const {
    const Result<FileTurn> turn = take_turn_at(file.get_path());
    if (!turn) return turn.failure();
    auto set = std::make_unique<GWFontSet>(wanted.name.c_str());
    for (const std::string& font : wanted.fonts) set->append_base_font(font.c_str());
    (void)file.delete_fontset(set.get());
    (void)file.append_fontset(set.release());
    return file.put_in_place();
}

void Application::apply_fontset(const Profile::Fontset& wanted) {
    const std::string dir =
        std::string(INSTALLATION_ROOT) + LOCALE_FONT_PATH_DIR + wanted.locale + FONTSET_DIR;
    GW_FONTSET_FILE file(dir.c_str(), FONTSET_FILE_NAME, FILE_TYPE_REGULAR);
    const GWFontSet* known = file.get_fontset(wanted.name.c_str());
    const char* names = known != nullptr ? known->get_base_names() : nullptr;
    const std::string before = names != nullptr ? names : "";
    if (before == joined(wanted.fonts)) return tally_.already();
    if (!is_dry()) {
        MadeDirectories made;
        Outcome written = made.make_with_parents(dir);
        if (written) written = write_fontset(file, wanted);
        if (!written) return fail(written.failure());
        made.keep();
    }
    note("fontset", wanted.name, before, joined(wanted.fonts));
}

/// Part by part, until a signal comes.
void Application::apply_parts() {
    // The path comes first: what is on it is listed, and compared with what is to be installed.
    for (const auto& [whose, elements] : profile_.paths) apply_path(whose, elements);
    if (!profile_.files.empty() || !profile_.absent.empty()) apply_fonts();
    apply_aliases();
    for (const Profile::Fontset& set : profile_.fontsets) {
        if (!is_interrupted()) apply_fontset(set);
    }
    if (!is_interrupted()) return;
    tally_.failed();
    report_.trouble("apply", Message::SAYS_INTERRUPTED);
}

Status Application::run() {
    const bool is_named = profile_.to != "everyone" && profile_.to != "me";
    const Destination to = is_named              ? Destination::DIRECTORY
                           : profile_.to == "me" ? Destination::ME
                                                 : Destination::EVERYONE;
    directory_ = directory_of(to, profile_.to);
    if (directory_.empty()) {
        report_.trouble("HOME", Message::SAYS_NO_HOME);
        return Status::COULD_NOT;
    }
    await_interruption();
    apply_parts();
    report_heard(report_);
    tally_.already();
    report_.document()["changes"] = changes_;
    report_.document()["changed"] = !changes_.empty();
    return tally_.status();
}

}  // namespace

Status apply(const std::string& profile, bool checks, Report& report) {
    std::variant<Profile, ProfileError> read = read_profile(profile);
    if (const auto* error = std::get_if<ProfileError>(&read); error != nullptr) {
        report.trouble(error->where, error->why);
        return Status::COULD_NOT;
    }
    const Status status = Application(std::get<Profile>(std::move(read)), report).run();
    return checks && status == Status::DONE ? Status::FAILED : status;
}

}  // namespace gw::fonts
