// SPDX-License-Identifier: MIT
#include "glyphward-fonts/installation.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/replace_file.h"
#include "core/text.h"
#include "drivers/engine_globals.h"
#include "fontpath/path_element.h"
#include "fontpath/trash_places.h"
#include "model/sent_files.h"
#include "modules/gw_fsm_list.h"
#include "modules/source_fonts.h"
#include "platform/everyone_request.h"
#include "texts/reasons.h"

#include "glyphward-fonts/interruption.h"

namespace gw::fonts {

namespace {

namespace fs = std::filesystem;

bool same_bytes(const std::string& one, const std::string& other) {
    std::error_code error;
    if (fs::file_size(one, error) != fs::file_size(other, error) || error) return false;
    const Result<std::string> first = read_file(one);
    const Result<std::string> second = read_file(other);
    return first && second && *first == *second;
}

std::string file_of(const GWFont& font) {
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    return files == nullptr || files->is_empty() ? "" : (*files->begin())->get_path();
}

std::vector<std::string> paths_of(const GWHRNElement& row) {
    std::vector<std::string> paths;
    for (const SentFile& file : files_of({&row})) paths.push_back(file.path);
    return paths;
}

/// Whether all fonts in the way of a row have the bytes of one of its fonts.
bool is_there_already(const GWConflict& conflict) {
    if (conflict.get_element() == nullptr || conflict.is_conflict(GWConflict::ALIAS) != 0) return false;
    const std::vector<GWFont*> in_the_way = conflict.get_conflicting_fonts();
    for (const GWHRNElement::PointSize& size : conflict.get_element()->get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) {
            const bool is_there = std::any_of(in_the_way.begin(), in_the_way.end(), [&](const GWFont* other) {
                return same_bytes(file_of(*font), file_of(*other));
            });
            if (!is_there) return false;
        }
    }
    return !in_the_way.empty();
}

/// Whether all fonts in the way are in the directory.
bool is_all_in(const std::string& directory, const GWConflict& conflict) {
    const std::vector<GWFont*> fonts = conflict.get_conflicting_fonts();
    return std::all_of(fonts.begin(), fonts.end(), [&](const GWFont* font) {
        return font->get_dir_name() != nullptr &&
               identity_of_element(font->get_dir_name()) == identity_of_element(directory);
    });
}

std::string files_in_the_way(const GWConflict& conflict) {
    std::string files;
    for (const std::string& file : conflict.get_conflict_files()) files += (files.empty() ? "" : ", ") + file;
    return files;
}

std::string why_in_conflict(const GWConflict& conflict, bool may_replace) {
    if (conflict.is_conflict(GWConflict::ALIAS) != 0) return text_of(Message::SAYS_ALIAS_HAS_NAME);
    const std::string files = files_in_the_way(conflict);
    if (!may_replace) return text_of(Message::SAYS_READ_ONLY_HAS_NAME, {files});
    return text_of(Message::SAYS_FONT_HAS_NAME, {files});
}

}  // namespace

/// The row in work.
void Installation::note(FontNotes::Note what) {
    what.files = files_;
    notes_.add(what);
}

std::vector<FontReport::Entry> Installation::take_failures() {
    std::vector<FontReport::Entry> failures = failures_.take_new();
    for (const FontReport::Entry& entry : failures) {
        tally.failed(entry.why);
        report_.trouble(entry.font, in_words(entry.why));
    }
    return failures;
}

void Installation::note_failures() {
    for (const FontReport::Entry& entry : take_failures()) {
        notes_.add(
            {entry.font, FontNotes::Result::FAILED, in_words(entry.why), in_code(entry.why), entry.files});
        for (const std::string& file : entry.files) std::erase(files_, file);
    }
}

void Installation::note_failures_of_commit() {
    notes_.fail(take_failures());
}

void Installation::fail(const std::string& font, const Failure& why) {
    tally.failed(why);
    note({font, FontNotes::Result::FAILED, reason_in_language(why), in_code(why)});
    report_.trouble(font, in_words(why));
}

void Installation::replace(GWConflict& conflict, const std::string& why) {
    const std::string name = without_marks(conflict.get_name());
    const bool is_dry = report_.settings().dry_run;
    const std::size_t before = failures_.done().size();
    if (!is_dry) conflict.install_force(the_fsm_list, failures_);
    note_failures();
    if (!is_dry && failures_.done().size() == before) return;
    tally.done();
    note({name, is_dry ? FontNotes::Result::WOULD_BE_REPLACED : FontNotes::Result::REPLACED, why});
}

void Installation::decide(GWConflict& conflict) {
    const std::string name = without_marks(conflict.get_name());
    if (is_there_already(conflict)) {
        tally.already();
        found_in_directory_ = found_in_directory_ || is_all_in(directory_, conflict);
        return note({name, FontNotes::Result::ALREADY_THERE});
    }
    const std::string why = why_in_conflict(conflict, may_replace(conflict));
    if (if_there_ == IfThere::KEEP) {
        tally.already();
        return note({name, FontNotes::Result::KEPT, why});
    }
    const bool can_be_replaced = may_replace(conflict) && conflict.is_conflict(GWConflict::ALIAS) == 0;
    const bool is_to_be_replaced = if_there_ == IfThere::REPLACE ||
                                   (if_there_ == IfThere::REPLACE_HERE && is_all_in(directory_, conflict));
    if (is_to_be_replaced && can_be_replaced) return replace(conflict, why);
    tally.failed();
    Json code = {{"code", EveryoneAnswer::NAME_TAKEN}};
    if (can_be_replaced) code["detail"] = in_json(files_in_the_way(conflict));
    note({name, FontNotes::Result::FAILED, why, code});
    report_.trouble(name, can_be_replaced ? text_of(Message::SAYS_REPLACE_OR_KEEP, {why}) : why);
}

bool Installation::may_replace(const GWConflict& conflict) const {
    return is_superusers_ || conflict.is_conflict(GWConflict::READ_ONLY) == 0;
}

/// Whether the font is damaged, or nothing for an X server.
bool Installation::is_refused(GWHRNElement& row) {
    for (const GWHRNElement::PointSize& size : row.get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) (void)check_source_font(*font);
    }
    const GWFont* font = row.get_representative();
    if (is_interrupted() || font == nullptr || !font->get_obstacle()) return false;
    fail(without_marks(row.get_name()), *font->get_obstacle());
    return true;
}

void Installation::install_row(GWHRNElement& row) {
    files_ = paths_of(row);
    if (is_refused(row) || is_interrupted()) return;
    const std::string name = without_marks(row.get_name());
    const bool is_dry = report_.settings().dry_run;
    GW_LIST<GWConflict>& conflicts = host_.conflicts();
    const int before = conflicts.get_count();
    bool is_done = false;
    if (is_dry) {
        is_done = !row.is_stopped(host_.fonts(), host_.aliases(), conflicts, directory_.c_str(), failures_);
    } else {
        is_done = row.install_fonts(directory_.c_str(), host_.fonts(), host_.aliases(), the_fsm_list,
                                    conflicts, failures_) == GWHRNElement::DONE;
    }
    if (conflicts.get_count() > before) return decide(*conflicts.get_elem_at_pos(conflicts.get_count()));
    note_failures();
    if (is_done) {
        tally.done();
        note({name, is_dry ? FontNotes::Result::WOULD_BE_INSTALLED : FontNotes::Result::INSTALLED});
    }
}

void Installation::install(GWHRNList& sources) {
    const Interruptible work;
    for (GWHRNElement* row : sources) {
        if (!is_interrupted()) install_row(*row);
        if (!is_interrupted()) continue;
        tally.failed();
        report_.trouble("install", Message::SAYS_INSTALL_INTERRUPTED);
        break;
    }
}

std::string commit(FontAction& action, std::initializer_list<FontReport*> reports, Sequel sequel,
                   Report& report) {
    for (const FontAction::Failed& failed : action.commit()) {
        for (FontReport* fonts : reports) fonts->fail_all_in(failed.dir, failed.why.with(sequel));
    }
    for (const FontAction::Kept& kept : action.kept()) {
        if (const Outcome noted = remember_trash_place(kept.dir); !noted) report.trouble(noted.failure());
    }
    return action.kept().empty() ? "" : action.token();
}

}  // namespace gw::fonts
