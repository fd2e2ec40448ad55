// SPDX-License-Identifier: MIT
//
// Who may change which font path, the order in which they are read, and what is undone when a write fails.
// The files themselves are read and written in font_path_files.
#include "fontpath/gw_font_path.h"

#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "core/gw_file.h"
#include "core/replace_file.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/font_path_files.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

#include "fontpath/session_display.h"

namespace {

constexpr const char* REMOVE = "/bin/rm -f %s";
constexpr const char* EXPAND_LINES =
    "cat %s |  while read input\n\t\t\t  do \n\t\t\t    eval echo $input \n\t\t\t  done  > %s";
constexpr int LONGEST_READ = 500;
constexpr mode_t USER_FILE_MODE = 0644;

Display* session_display = nullptr;

/// Runs `xset` on the session font path; its error messages go to the scratch file for errors. A failure when
/// it was not run.
gw::Outcome run_xset(const char* operation, const char* element) {
    gw::run_shell(REMOVE, {gw::SCRATCH_ERRORS});
    if (gw::Outcome made = gw::create_scratch_file(gw::SCRATCH_ERRORS); !made)
        return made.with(gw::Sequel::SESSION_PATH_STAYS);
    gw::run_shell("%s fp%s %s 2> %s", {gw::XSET, operation, element, gw::SCRATCH_ERRORS});
    return gw::done();
}

gw::Outcome _append_to_current_session(const char* element) {
    if (gw::Outcome run = run_xset("+", element); !run) return run;
    const GW_FILE_SPEC errors("errors", gw::SCRATCH_ROOT, gw::FILE_TYPE_REGULAR, gw::EXT_UNKNOWN);
    if (errors.file_size() == 0) return gw::done();
    return gw::Failure{element, gw::Reason::REFUSED_BY_SERVER};
}

/// The directory and name of a path, for the file classes.
GW_FILE file_at(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return {path.substr(slash + 1).c_str(), path.substr(0, slash + 1).c_str(), gw::FILE_TYPE_REGULAR};
}

/// The lines of a file without their newlines. A line that is longer than one read is put together again.
std::vector<std::string> lines_of(const std::string& path) {
    std::vector<std::string> lines;
    GW_FILE file = file_at(path);
    if (file.open("r") == 0) return lines;
    char piece[LONGEST_READ + 1];
    bool at_start = true;
    while (file.get_line(piece, sizeof piece) != nullptr) {
        if (at_start) lines.emplace_back();
        lines.back() += piece;
        at_start = lines.back().ends_with('\n');
        if (at_start) lines.back().pop_back();
    }
    file.close();
    return lines;
}

// The first blank line of a font path file ends the append section. Kept: later groups of a font path file
// come first.
void read_sections(const std::string& path, GW_LIST<GW_STRING>& append_list,
                   GW_LIST<GW_STRING>& prepend_list) {
    bool in_append_section = true;
    int position = 0;
    for (const std::string& line : lines_of(path)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos) {
            in_append_section = false;
            position = 0;
            continue;
        }
        auto* element = new GW_STRING(line.substr(start).c_str());
        if (in_append_section) {
            append_list.append(element);
        } else {
            prepend_list.insert_after_pos(position++, element);
        }
    }
}

/// 1 or 0. A refusal is only returned; a failure is also passed to the listener.
int number_of(const gw::Outcome& outcome) {
    if (outcome) return 1;
    const gw::Reason reason = outcome.failure().reason;
    if (reason == gw::Reason::SYSTEM || reason == gw::Reason::NOT_OURS)
        gw::tell(outcome.failure().sequel == gw::Sequel::NONE
                     ? outcome.failure().with(gw::Sequel::FONT_PATH_STAYS)
                     : outcome.failure());
    return 0;
}

}  // namespace

void gw::set_font_path_display(Display* display) {
    session_display = display;
}

GWFontPath::GWFontPath(const char* root_dir, Scratch scratch_file)
    : scratch(scratch_file),
      effective_uid(::geteuid()),
      root(root_dir),
      installation_config(root + gw::INSTALLATION_CONFIG) {
    gw::read_config_font_path(installation_config, list(INSTALLATION_FP), gw::DEFAULT_FONT_PATH);
    if (is_main_installation() && !read_host_and_locale()) return;
    load_session();
    _set_all_fpe_list();
}

GWFontPath::~GWFontPath() {
    for (const TYPE t : {INSTALLATION_FP, HOST_FP, USER_APPEND_FP, USER_PREPEND_FP, LOCALE_APPEND_FP,
                         LOCALE_PREPEND_FP, DT_LOCALE_FP, SESSION_FP}) {
        gw::delete_elements(list(t));
    }
}

bool GWFontPath::is_main_installation() const {
    return root == gw::INSTALLATION_ROOT;
}

/// False when nothing more is to be read. Kept: without a home directory a user has no composed font path.
bool GWFontPath::read_host_and_locale() {
    gw::read_config_font_path(gw::HOST_CONFIG, list(HOST_FP), nullptr);

    if (const char* name = std::setlocale(LC_MESSAGES, nullptr); name != nullptr) locale = name;
    std::string desktop_dir = gw::DESKTOP_FONT_DIR_NO_LOCALE;
    if (locale) {
        desktop_dir = gw::DESKTOP_FONT_DIR_FORMAT;
        desktop_dir.replace(desktop_dir.find("%s"), 2, *locale);
    }
    if (gw::file_exists(desktop_dir)) list(DT_LOCALE_FP).append(new GW_STRING(desktop_dir.c_str()));

    locale_file = root + gw::LOCALE_FONT_PATH_DIR + locale.value_or("C") + gw::LOCALE_FONT_PATH_FILE;
    _read_from_vtfontpath(locale_file, list(LOCALE_APPEND_FP), list(LOCALE_PREPEND_FP));

    if (gw::is_superuser(effective_uid)) return true;
    const char* home = std::getenv("HOME");
    if (home == nullptr) return false;
    user_file = std::string(home) + gw::USER_FONT_PATH_FILE;
    _read_from_vtfontpath(*user_file, list(USER_APPEND_FP), list(USER_PREPEND_FP));
    return true;
}

void GWFontPath::_set_all_fpe_list() {
    list(ALL_FP).clear();
    const TYPE base = list(HOST_FP).is_empty() ? INSTALLATION_FP : HOST_FP;
    for (const TYPE t :
         {USER_PREPEND_FP, LOCALE_PREPEND_FP, base, DT_LOCALE_FP, LOCALE_APPEND_FP, USER_APPEND_FP}) {
        for (GW_STRING* element : list(t)) list(ALL_FP).append(element);
    }
}

void GWFontPath::load_session() {
    if (session_display == nullptr) return;
    int count = 0;
    char** path = XGetFontPath(session_display, &count);
    for (int i = 0; i < count; ++i) list(SESSION_FP).append(new GW_STRING(path[i]));
    if (path != nullptr) XFreeFontPath(path);
}

// Kept: lines of a font path file are run by the shell. So they may contain variables ("$HOME/fonts").
void GWFontPath::_read_from_vtfontpath(const std::string& path, List& append_list, List& prepend_list) const {
    if (!gw::file_exists(path)) return;
    if (scratch == Scratch::UNNAMED) {
        const gw::UnnamedScratchFile file;
        if (const std::string expanded = file.path(); !expanded.empty()) {
            gw::run_shell(EXPAND_LINES, {path, expanded});
            read_sections(expanded, append_list, prepend_list);
            return;
        }
    }
    gw::run_shell(REMOVE, {gw::SCRATCH_FONT_PATH});
    const gw::Outcome made = gw::create_scratch_file(gw::SCRATCH_FONT_PATH);
    if (!gw::tell_unless_done(made.with(gw::Sequel::FILE_NOT_READ, path))) return;
    gw::run_shell(EXPAND_LINES, {path, gw::SCRATCH_FONT_PATH});
    read_sections(gw::SCRATCH_FONT_PATH, append_list, prepend_list);
    gw::run_shell(REMOVE, {gw::SCRATCH_FONT_PATH});
}

gw::Outcome GWFontPath::_write_to_vtfontpath(const std::string& path, const List& append_list,
                                             const List& prepend_list) {
    const std::optional<std::string> text = gw::vtfontpath_text(append_list, prepend_list);
    if (!text) return gw::Failure{path, gw::Reason::NAME_UNFIT_FOR_PATH};
    // Kept: the backup of a font path file stays.
    const bool backed_up = gw::file_exists(path);
    if (backed_up) gw::run_shell("/bin/mv -f %s %s.bak", {path, path});
    gw::Outcome written = gw::replace_file(path, *text, USER_FILE_MODE);
    if (!written && backed_up) gw::run_shell("/bin/mv -f %s.bak %s", {path, path});
    return written;
}

gw::Outcome GWFontPath::write_user_file(const List& append_list, const List& prepend_list) const {
    if (!user_file) return gw::Failure{gw::USER_FONT_PATH_FILE, gw::Reason::NOT_ALLOWED};
    return _write_to_vtfontpath(*user_file, append_list, prepend_list);
}

GW_LIST<GW_STRING>* GWFontPath::get_fpe_list(TYPE t, unsigned int& count) {
    count = 0;
    if (t < INSTALLATION_FP || t > ALL_FP) return nullptr;
    if (t == SESSION_FP && list(t).is_empty()) load_session();
    count = static_cast<unsigned>(list(t).get_count());
    return &list(t);
}

bool GWFontPath::refuses(TYPE t) const {
    if (t < INSTALLATION_FP || t > ALL_FP || t == LOCALE_PREPEND_FP || t == LOCALE_APPEND_FP) return true;
    const bool is_user = t == USER_PREPEND_FP || t == USER_APPEND_FP;
    const bool is_config = t == INSTALLATION_FP || t == HOST_FP;
    if (!is_main_installation() && (t == HOST_FP || is_user)) return true;
    return gw::is_superuser(effective_uid) ? is_user : is_config;
}

GWFontPath::Change GWFontPath::refusal(std::string subject, gw::Reason reason) {
    return {gw::Failure{std::move(subject), reason}, false};
}

std::string GWFontPath::store_of(TYPE t) const {
    switch (t) {
        case INSTALLATION_FP:
            return installation_config;
        case HOST_FP:
            return gw::HOST_CONFIG;
        case USER_PREPEND_FP:
        case USER_APPEND_FP:
            return user_file.value_or(gw::USER_FONT_PATH_FILE);
        default:
            return locale_file;
    }
}

gw::Outcome GWFontPath::insert(TYPE t, const GW_STRING& element, int pos) {
    if (pos < -1) return gw::Failure{store_of(t), gw::Reason::NO_SUCH_ELEMENT};
    if (refuses(t)) return gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED};
    // A copy, because `element` may be in one of our lists and be deleted when writing fails.
    const GW_STRING copy(&element);
    return finish(insert_by_type(t, copy, pos));
}

int GWFontPath::insert_after_pos(TYPE t, const GW_STRING* element, int pos) {
    return element != nullptr ? number_of(insert(t, *element, pos)) : 0;
}

/// Composes the list again after every change that was tried, not after a refusal.
gw::Outcome GWFontPath::finish(const Change& change) {
    if (change.was_tried) _set_all_fpe_list();
    return change.outcome;
}

GWFontPath::Change GWFontPath::insert_by_type(TYPE t, const GW_STRING& element, int pos) {
    switch (t) {
        case INSTALLATION_FP:
            return {gw::insert_and_write_to_vtconfig(list(t), pos, &element, installation_config)};
        case HOST_FP:
            return insert_host(element, pos);
        case USER_PREPEND_FP:
        case USER_APPEND_FP:
            return insert_user(t, element, pos);
        case SESSION_FP:
            return insert_session(element, pos);
        default:
            return {gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED}};
    }
}

bool GWFontPath::seed_host_list() {
    if (!list(HOST_FP).is_empty() || list(INSTALLATION_FP).is_empty()) return false;
    gw::list_replace(list(HOST_FP), list(INSTALLATION_FP));
    return true;
}

// Kept: a failed write leaves every second copied element.
void GWFontPath::take_seeds_back() {
    for (int pos = 1; pos <= list(HOST_FP).get_count(); ++pos) gw::list_delete(list(HOST_FP), pos);
}

GWFontPath::Change GWFontPath::insert_host(const GW_STRING& element, int pos) {
    if (_host_vtconfig_writeable() == 0) return refusal(gw::HOST_CONFIG, gw::Reason::NOT_ALLOWED);
    const bool seeded = seed_host_list();
    gw::Outcome written = gw::insert_and_write_to_vtconfig(list(HOST_FP), pos, &element, gw::HOST_CONFIG);
    if (!written && seeded) take_seeds_back();
    return {written};
}

GWFontPath::Change GWFontPath::insert_user(TYPE t, const GW_STRING& element, int pos) {
    if (_user_vtfontpath_writeable() == 0) return refusal(store_of(t), gw::Reason::NOT_ALLOWED);
    if (!gw::vtfontpath_line(element.get_str()))
        return refusal(element.get_str(), gw::Reason::NAME_UNFIT_FOR_PATH);
    const bool at_end = pos == -1 || pos >= list(t).get_count();
    gw::list_insert(list(t), pos, &element);
    gw::Outcome written = write_user_file(list(USER_APPEND_FP), list(USER_PREPEND_FP));
    if (!written) gw::list_delete(list(t), at_end ? -1 : pos + 1);
    return {written};
}

// The server always gets the element at the end of its path. Kept: a new element of the session's path is in
// the list twice.
GWFontPath::Change GWFontPath::insert_session(const GW_STRING& element, int pos) {
    if (session_display == nullptr) return refusal(element.get_str(), gw::Reason::NO_X_SERVER);
    if (list(SESSION_FP).is_empty()) load_session();
    const bool at_end = pos == -1 || pos >= list(SESSION_FP).get_count();
    gw::list_insert(list(SESSION_FP), pos, &element);
    gw::Outcome added = _append_to_current_session(element.get_str());
    if (added) {
        list(SESSION_FP).append(new GW_STRING(&element));
    } else {
        gw::list_delete(list(SESSION_FP), at_end ? -1 : pos + 1);
    }
    return {added};
}

gw::Outcome GWFontPath::replace(TYPE t, const List& elements) {
    if (refuses(t)) return gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED};
    // A copy, because `elements` may be one of our lists.
    List copies;
    const gw::ElementsOwner owner(copies);
    gw::list_replace(copies, elements);
    return finish(set_by_type(t, copies));
}

int GWFontPath::set_font_path(TYPE t, GW_LIST<GW_STRING>* elements) {
    return elements != nullptr ? number_of(replace(t, *elements)) : 0;
}

GWFontPath::Change GWFontPath::set_by_type(TYPE t, const List& elements) {
    if (t == USER_PREPEND_FP || t == USER_APPEND_FP) return set_user(t, elements);
    // The session is changed one element at a time.
    if (t == SESSION_FP) return refusal(store_of(t), gw::Reason::NOT_ALLOWED);
    if (t != INSTALLATION_FP && t != HOST_FP) return {gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED}};
    if (t == HOST_FP && _host_vtconfig_writeable() == 0)
        return refusal(gw::HOST_CONFIG, gw::Reason::NOT_ALLOWED);
    // Kept: an empty font path is not written.
    const std::optional<std::string> value = gw::create_fpe_string(elements);
    gw::Outcome written = gw::write_to_vtconfig(store_of(t), value ? value->c_str() : nullptr);
    // Kept: setting the host's font path changes the installation's list.
    if (written) gw::list_replace(list(INSTALLATION_FP), elements);
    return {written};
}

GWFontPath::Change GWFontPath::set_user(TYPE t, const List& elements) {
    if (_user_vtfontpath_writeable() == 0) return refusal(store_of(t), gw::Reason::NOT_ALLOWED);
    if (!gw::fits_vtfontpath(elements)) return refusal(store_of(t), gw::Reason::NAME_UNFIT_FOR_PATH);
    const bool prepend = t == USER_PREPEND_FP;
    gw::Outcome written = prepend ? write_user_file(list(USER_APPEND_FP), elements)
                                  : write_user_file(elements, list(USER_PREPEND_FP));
    // Kept: the prepend list takes a new path only when writing fails.
    if (static_cast<bool>(written) != prepend) gw::list_replace(list(t), elements);
    return {written};
}

gw::Outcome GWFontPath::remove(TYPE t, int pos) {
    if (pos < 1 && pos != -1) return gw::Failure{store_of(t), gw::Reason::NO_SUCH_ELEMENT};
    if (refuses(t)) return gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED};
    return finish(delete_by_type(t, pos));
}

int GWFontPath::delete_pos(TYPE t, int pos) {
    return number_of(remove(t, pos));
}

GWFontPath::Change GWFontPath::delete_by_type(TYPE t, int pos) {
    switch (t) {
        case INSTALLATION_FP:
            if (list(t).is_empty()) return refusal(store_of(t), gw::Reason::NO_SUCH_ELEMENT);
            return {gw::delete_and_write_to_vtconfig(list(t), pos, installation_config)};
        case HOST_FP:
            return delete_host(pos);
        case USER_PREPEND_FP:
        case USER_APPEND_FP:
            return delete_user(t, pos);
        case SESSION_FP:
            return delete_session(pos);
        default:
            return {gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED}};
    }
}

GWFontPath::Change GWFontPath::delete_host(int pos) {
    if (list(INSTALLATION_FP).is_empty() && list(HOST_FP).is_empty())
        return refusal(gw::HOST_CONFIG, gw::Reason::NO_SUCH_ELEMENT);
    if (_host_vtconfig_writeable() == 0) return refusal(gw::HOST_CONFIG, gw::Reason::NOT_ALLOWED);
    const bool seeded = seed_host_list();
    gw::Outcome written = gw::delete_and_write_to_vtconfig(list(HOST_FP), pos, gw::HOST_CONFIG);
    if (!written && seeded) take_seeds_back();
    return {written};
}

GWFontPath::Change GWFontPath::delete_user(TYPE t, int pos) {
    if (_user_vtfontpath_writeable() == 0) return refusal(store_of(t), gw::Reason::NOT_ALLOWED);
    const int position = pos == -1 ? list(t).get_count() : pos;
    const std::unique_ptr<GW_STRING> removed = gw::list_delete(list(t), position);
    if (!removed) return refusal(store_of(t), gw::Reason::NO_SUCH_ELEMENT);
    gw::Outcome written = write_user_file(list(USER_APPEND_FP), list(USER_PREPEND_FP));
    // Kept: an element comes back one position further down.
    if (!written) gw::list_insert(list(t), position + 1, removed.get());
    return {written};
}

GWFontPath::Change GWFontPath::delete_session(int pos) {
    if (session_display == nullptr) return refusal(gw::XSET, gw::Reason::NO_X_SERVER);
    if (list(SESSION_FP).is_empty()) load_session();
    const std::unique_ptr<GW_STRING> removed = gw::list_delete(list(SESSION_FP), pos);
    if (!removed) return refusal(gw::XSET, gw::Reason::NO_SUCH_ELEMENT);
    // Kept: deleting from the session's path always succeeds.
    gw::tell_unless_done(run_xset("-", removed->get_str()));
    return {};
}

void GWFontPath::rehash_session_fp() {
    gw::run_shell(REMOVE, {gw::SCRATCH_ERRORS});
    gw::run_shell("%s fp rehash", {gw::XSET});
}

int GWFontPath::is_writeable(TYPE t) {
    switch (t) {
        case INSTALLATION_FP:
            return _installation_vtconfig_writeable();
        case HOST_FP:
            return _host_vtconfig_writeable();
        case USER_PREPEND_FP:
        case USER_APPEND_FP:
            return _user_vtfontpath_writeable();
        // Kept: the superuser's session is not writable.
        case SESSION_FP:
            return gw::is_superuser(effective_uid) ? 0 : 1;
        default:
            return 0;
    }
}

int GWFontPath::_installation_vtconfig_writeable() const {
    const bool may_write = gw::writable_by_uid(installation_config, effective_uid);
    return may_write && gw::write_to_vtconfig(installation_config, nullptr) ? 1 : 0;
}

int GWFontPath::_host_vtconfig_writeable() const {
    // Kept: asking whether the host can be configured makes its directory.
    if (!gw::file_exists(gw::HOST_CONFIG_DIR)) {
        gw::run_shell("/bin/mkdir -p %s", {gw::HOST_CONFIG_DIR});
        gw::run_shell("/bin/chmod 755 %s", {gw::HOST_CONFIG_DIR});
        return 1;
    }
    const bool exists = gw::file_exists(gw::HOST_CONFIG);
    return gw::writable_by_uid(exists ? gw::HOST_CONFIG : gw::HOST_CONFIG_DIR, effective_uid) ? 1 : 0;
}

int GWFontPath::_user_vtfontpath_writeable() const {
    if (!user_file || !gw::file_exists(*user_file)) return 1;
    return gw::writable_by_uid(*user_file, effective_uid) ? 1 : 0;
}
