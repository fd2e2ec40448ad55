// SPDX-License-Identifier: MIT
#include "app/installing/source_verdicts.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <map>
#include <system_error>

#include "app/installing/font_source.h"
#include "app/kit/toolkit.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/samples/sample_font.h"
#include "core/font_policy.h"
#include "model/file_facts.h"
#include "model/gw_xlfd_name.h"
#include "modules/source_fonts.h"
#include "texts/messages.h"

namespace gw {

namespace {

constexpr const char* REFUSED_MARK = "[Not for X]";
constexpr const char* INSTALLED_MARK = "[Installed]";
constexpr const char* TAKEN_MARK = "[Name Taken]";

/// What is still to be checked, and what has been found out about names.
struct Checks {
    XtWorkProcId work = 0;
    std::deque<int> positions;   // of the entries that come next; the first one may be half done
    std::size_t fonts_done = 0;  // of the first entry
    std::map<const GWHRNElement*, std::string> hints;
};

Checks& checks() {
    static Checks the_checks;
    return the_checks;
}

std::vector<GWFont*> fonts_of(const GWHRNElement& elem) {
    std::vector<GWFont*> fonts;
    for (const GWHRNElement::PointSize& size : elem.get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) fonts.push_back(font.get());
    }
    return fonts;
}

const GW_FILE_SPEC* file_of(const GWFont& font) {
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    return files != nullptr && !files->is_empty() ? *files->begin() : nullptr;
}

// --- one font ----------------------------------------------------------------

/// The installed font that has a name of this one; null when there is none.
GWFont* owner_of_name(GWFont& font) {
    for (const GWHRNElement* elem : the_installed_hrn_list) {
        for (GWFont* installed : fonts_of(*elem)) {
            if (font.shares_a_name(*installed)) return installed;
        }
    }
    return nullptr;
}

/// Whether everybody can read the file, so that only the file itself can keep the server from opening it.
bool is_open_to_all(const std::filesystem::path& file) {
    using std::filesystem::perms;
    std::error_code failed;
    const auto has = [&failed](const std::filesystem::path& path, perms wanted) {
        const perms mode = std::filesystem::status(path, failed).permissions();
        return !failed && (mode & wanted) == wanted;
    };
    if (!has(file, perms::others_read)) return false;
    const std::filesystem::path real = std::filesystem::canonical(file, failed);
    for (std::filesystem::path dir = real.parent_path(); !failed && dir.has_relative_path();
         dir = dir.parent_path()) {
        if (!has(dir, perms::others_exec)) return false;
    }
    return !failed;
}

/// Has the server open the font where the source is previewed. A name that an installed font has too is not
/// asked for, because the server might open that one.
void ask_server(GWFont& font) {
    const GW_FILE_SPEC* file = file_of(font);
    if (file == nullptr || font.get_conversion() || is_xlfd_name(font.get_xlfd_name()) == 0) return;
    if (owner_of_name(font) != nullptr) return;
    const ServerAnswer answer = ask_server_for_font(font.get_xlfd_name());
    const bool is_its_fault = answer == ServerAnswer::HAS_NO_ROOM ||
                              (answer == ServerAnswer::REFUSES && is_open_to_all(file->get_path()));
    if (!is_its_fault) return;
    font.set_obstacle({.subject = file->get_path(), .reason = Reason::REFUSED_FONT});
    font.set_mark(REFUSED_MARK);
}

void check_font(GWFont& font) {
    if (font.is_checked() || font.get_obstacle()) return;
    if (check_source_font(font)) ask_server(font);
}

// --- one entry ---------------------------------------------------------------

bool are_equal(const GWFont& font, const GWFont& other) {
    const GW_FILE_SPEC* one = file_of(font);
    const GW_FILE_SPEC* another = file_of(other);
    if (one == nullptr || another == nullptr) return false;
    const Result<bool> equal = have_equal_bytes(one->get_path(), another->get_path());
    return equal && *equal;
}

/// Finds out who has the names of an entry that is offered, and notes it. Returns the mark.
std::string look_names_up(const GWHRNElement& elem) {
    std::string taken_by;
    bool is_installed = true;
    for (GWFont* font : fonts_of(elem)) {
        const GWFont* owner = owner_of_name(*font);
        is_installed = is_installed && owner != nullptr && are_equal(*font, *owner);
        if (owner != nullptr && taken_by.empty() && file_of(*owner) != nullptr)
            taken_by = file_of(*owner)->get_path();
    }
    if (taken_by.empty()) return "";
    checks().hints[&elem] =
        text_of(is_installed ? Message::IS_INSTALLED : Message::NAME_IS_TAKEN, {taken_by});
    return is_installed ? INSTALLED_MARK : TAKEN_MARK;
}

void show_name_again(GWHRNElement& elem, int position) {
    const std::string before = elem.get_name();
    elem.compose_name();
    if (before != elem.get_name()) source_entry_changes().emit(position);
}

void set_mark_of_all(const GWHRNElement& elem, const std::string& mark) {
    for (GWFont* font : fonts_of(elem)) font->set_mark(mark);
}

/// All fonts of the entry are checked: its mark is shown.
void finish_entry(GWHRNElement& elem, int position) {
    checks().hints.erase(&elem);
    if (is_offered(elem)) set_mark_of_all(elem, look_names_up(elem));
    show_name_again(elem, position);
}

// --- idle time ---------------------------------------------------------------

/// Checks one font. True when there is nothing more to do.
Boolean check_next(XtPointer) {
    Checks& now = checks();
    if (!now.positions.empty()) {
        const int position = now.positions.front();
        GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
        const std::vector<GWFont*> fonts = elem != nullptr ? fonts_of(*elem) : std::vector<GWFont*>();
        if (now.fonts_done < fonts.size()) check_font(*fonts[now.fonts_done++]);
        if (now.fonts_done < fonts.size()) return False;
        now.positions.pop_front();
        now.fonts_done = 0;
        if (elem != nullptr) finish_entry(*elem, position);
    }
    if (!now.positions.empty()) return False;
    now.work = 0;
    source_entry_changes().emit(0);
    return True;
}

}  // namespace

bool is_offered(const GWHRNElement& elem) {
    const std::vector<GWFont*> fonts = fonts_of(elem);
    return fonts.empty() ||
           std::any_of(fonts.begin(), fonts.end(), [](const GWFont* font) { return !font->get_obstacle(); });
}

std::string obstacle_line(const GWFont& font) {
    if (!font.get_obstacle()) return "";
    // The file is read through a link of ours, whose place says nothing to the user.
    Failure why = *font.get_obstacle();
    if (const GW_FILE_SPEC* file = file_of(font); file != nullptr) why.subject = file->get_name();
    return failure_line(why);
}

std::string why_not_offered(const GWHRNElement& elem) {
    const GWFont* font = elem.get_representative();
    return font != nullptr ? obstacle_line(*font) : "";
}

std::string hint_about(const GWHRNElement& elem) {
    const auto found = checks().hints.find(&elem);
    return found != checks().hints.end() ? found->second : "";
}

void start_source_checks() {
    stop_source_checks();
    if (!font_policy().marks_what_is_unfit()) return;
    checks().hints.clear();
    for (int position = 1; position <= current_hrn_list.get_count(); ++position)
        checks().positions.push_back(position);
    checks().work = XtAppAddWorkProc(app, check_next, nullptr);
}

void stop_source_checks() {
    Checks& now = checks();
    if (now.work != 0) XtRemoveWorkProc(now.work);
    now.work = 0;
    now.positions.clear();
    now.fonts_done = 0;
}

void stop_source_checks_for_changes() {
    stop_source_checks();
    checks().hints.clear();
    if (!font_policy().marks_what_is_unfit()) return;
    int position = 0;
    for (GWHRNElement* elem : current_hrn_list) {
        ++position;
        if (!is_offered(*elem)) continue;
        set_mark_of_all(*elem, "");
        show_name_again(*elem, position);
    }
}

bool are_source_checks_pending() {
    return checks().work != 0;
}

void check_source_entry(int position) {
    GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
    if (elem == nullptr || !font_policy().marks_what_is_unfit()) return;
    for (GWFont* font : fonts_of(*elem)) check_font(*font);
    finish_entry(*elem, position);
}

void check_source_entries_first(const std::vector<int>& positions) {
    Checks& now = checks();
    const std::size_t done = std::exchange(now.fonts_done, 0);
    const int half_done = now.positions.empty() ? 0 : now.positions.front();
    std::stable_partition(now.positions.begin(), now.positions.end(), [&positions](int position) {
        return std::binary_search(positions.begin(), positions.end(), position);
    });
    if (!now.positions.empty() && now.positions.front() == half_done) now.fonts_done = done;
}

Signal<int>& source_entry_changes() {
    static Signal<int> changes;
    return changes;
}

}  // namespace gw
