// SPDX-License-Identifier: MIT
#include "glyphward-fonts/deletion.h"

#include <filesystem>
#include <system_error>

#include "core/text.h"
#include "drivers/engine_globals.h"
#include "model/packaged_fonts.h"
#include "modules/gw_fsm_list.h"

#include "glyphward-fonts/interruption.h"

namespace gw::fonts {

namespace {

std::string why_in_conflict(const GWConflict& conflict) {
    if (conflict.is_conflict(GWConflict::READ_ONLY) != 0) return text_of(Message::SAYS_MAY_NOT_DELETE);
    if (conflict.is_conflict(GWConflict::PACKAGE) != 0)
        return text_of(Message::SAYS_OF_PACKAGE, {conflict.get_packages()});
    return text_of(Message::SAYS_OF_SYSTEM);
}

/// Another process may have removed the whole directory since the font was listed.
std::string why_of(const FontReport::Entry& entry) {
    std::error_code error;
    const bool has_file = entry.why.is_absence() && !entry.files.empty();
    const std::filesystem::path directory =
        has_file ? std::filesystem::path(entry.files.front()).parent_path() : std::filesystem::path();
    if (!has_file || std::filesystem::exists(directory, error) || error) return in_words(entry.why);
    return text_of(Message::SAYS_DIRECTORY_GONE, {with_trailing_slash(directory.string())});
}

/// The package manager is asked once about all of them.
void ask_about_packages(const std::vector<Row>& rows) {
    std::vector<const GWFont*> fonts;
    for (const Row& row : rows) {
        if (row.element == nullptr || row.is_read_only) continue;
        for (const GWHRNElement::PointSize& size : row.element->get_slots())
            for (const Ref<GWFont>& font : size.fonts) fonts.push_back(font.get());
    }
    ask_packages_of(fonts);
}

}  // namespace

void Deletion::note_kept(const Row& row, const std::string& why) {
    tally.failed();
    notes_.add({row.name, FontNotes::Result::KEPT, why});
    report_.trouble(row.name, why);
}

void Deletion::note_deleted(const Row& row) {
    tally.done();
    const bool is_dry = report_.settings().dry_run;
    notes_.add({row.name, is_dry ? FontNotes::Result::WOULD_BE_DELETED : FontNotes::Result::DELETED});
}

std::vector<FontReport::Entry> Deletion::take_failures() {
    std::vector<FontReport::Entry> failures = failures_.take_new();
    for (const FontReport::Entry& entry : failures) {
        tally.failed(entry.why);
        report_.trouble(entry.font, why_of(entry));
    }
    return failures;
}

void Deletion::note_failures() {
    for (const FontReport::Entry& entry : take_failures())
        notes_.add({entry.font, FontNotes::Result::FAILED, why_of(entry)});
}

void Deletion::note_failures_of_commit() {
    notes_.fail(take_failures());
}

void Deletion::decide(const Row& row, GWConflict& conflict) {
    const bool may_be_forced = conflict.is_conflict(GWConflict::READ_ONLY) == 0;
    if (!forces_ || !may_be_forced) return note_kept(row, why_in_conflict(conflict));
    const std::size_t failures = failures_.failed().size();
    if (!report_.settings().dry_run) conflict.delete_force(the_fsm_list, failures_);
    failures_.failed().size() > failures ? note_failures() : note_deleted(row);
}

void Deletion::remove(const Row& row) {
    if (row.element == nullptr) return note_kept(row, text_of(Message::SAYS_ALIAS_STAYS));
    const int before = host_.conflicts().get_count();
    const int result =
        report_.settings().dry_run
            ? row.element->ask_before_deletion(host_.conflicts(), host_.fonts(), failures_)
            : row.element->delete_fonts(the_fsm_list, host_.conflicts(), host_.fonts(), failures_);
    if (host_.conflicts().get_count() > before)
        return decide(row, *host_.conflicts().get_elem_at_pos(host_.conflicts().get_count()));
    if (result == GWHRNElement::DONE) note_deleted(row);
    note_failures();
}

void Deletion::remove(const std::vector<Row>& rows) {
    ask_about_packages(rows);
    const Interruptible work;
    for (const Row& row : rows) {
        if (!is_interrupted()) remove(row);
        if (!is_interrupted()) continue;
        tally.failed();
        report_.trouble("delete", Message::SAYS_DELETE_INTERRUPTED);
        break;
    }
}

}  // namespace gw::fonts
