// SPDX-License-Identifier: MIT
//
// Who may change which font path, the order in which they are read, and what is undone when a write fails.
// The files themselves are read and written in font_path_files.
#include "fontpath/gw_font_path.h"

#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "core/replace_file.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/font_path_files.h"
#include "fontpath/vtfontpath_file.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

#include "fontpath/session_display.h"

namespace {

constexpr auto HOST_CONFIG_DIR_MODE = static_cast<std::filesystem::perms>(0755);

Display* session_display = nullptr;

/// Runs `xset` on the session font path; its complaints go to the scratch file for errors. A failure when it
/// was not run, or did not end.
gw::Outcome run_xset(const char* operation, const char* element, const std::string& errors) {
    gw::Outcome run = gw::create_scratch_file(errors);
    if (!run) return run.with(gw::Sequel::SESSION_PATH_STAYS);
    run = gw::run_command("%s fp%s %s 2> %s", {gw::XSET, operation, element, errors}, gw::MOMENTS);
    // A status is no news: what is wrong stands in the file.
    if (!run && run.failure().reason != gw::Reason::COMMAND_FAILED) return run;
    return gw::done();
}

gw::Outcome _append_to_current_session(const char* element) {
    const std::string errors = gw::scratch_path(gw::SCRATCH_ERRORS);
    if (gw::Outcome run = run_xset("+", element, errors); !run) return run;
    const gw::Result<std::string> complaints = gw::read_file(errors);
    if (!complaints) return complaints.failure();
    if (complaints->empty()) return gw::done();
    return gw::Failure{element, gw::Reason::REFUSED_BY_SERVER};
}

bool has_comma(const GW_STRING& element) {
    return std::strchr(element.get_str(), ',') != nullptr;
}

/// Does to `elements`, which are to replace the file, what another process has done to it since this one last
/// read it: takes out what is not in it any more, and appends what has come.
void take_over_changes(GW_LIST<GW_STRING>& elements, const std::vector<std::string>& now,
                       const std::vector<std::string>& known) {
    const auto has = [](const std::vector<std::string>& texts, const std::string& text) {
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    };
    for (int position = elements.get_count(); position > 0; --position) {
        const std::string text = elements.get_elem_at_pos(position)->get_str();
        if (has(known, text) && !has(now, text)) (void)gw::list_delete(elements, position);
    }
    for (const std::string& text : now) {
        if (!has(known, text)) elements.append(new GW_STRING(text.c_str()));
    }
}

/// 1 or 0. What the caller can know without asking is only returned; everything else is also passed to the
/// listener.
int number_of(const gw::Outcome& outcome) {
    if (outcome) return 1;
    const gw::Failure& failure = outcome.failure();
    const bool is_expected = failure.reason == gw::Reason::NOT_ALLOWED ||
                             failure.reason == gw::Reason::NO_SUCH_ELEMENT ||
                             failure.reason == gw::Reason::REFUSED_BY_SERVER;
    if (!is_expected)
        gw::tell(failure.sequel == gw::Sequel::NONE ? failure.with(gw::Sequel::FONT_PATH_STAYS) : failure);
    return 0;
}

}  // namespace

void gw::set_font_path_display(Display* display) {
    session_display = display;
}

GWFontPath::GWFontPath(const char* root_dir)
    : effective_uid(::geteuid()), root(root_dir), installation_config(root + gw::INSTALLATION_CONFIG) {
    read_config(INSTALLATION_FP);
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

void GWFontPath::read_config(TYPE t) {
    const std::string path = store_of(t);
    store(t).stamp = gw::stamp_of(path);
    gw::delete_elements(list(t));
    store(t).read =
        gw::read_config_font_path(path, list(t), t == INSTALLATION_FP ? gw::DEFAULT_FONT_PATH : nullptr);
    known_texts(t) = texts_of(t);
}

/// False when nothing more is to be read. Kept: without a home directory a user has no composed font path.
bool GWFontPath::read_host_and_locale() {
    read_config(HOST_FP);

    if (const char* name = std::setlocale(LC_MESSAGES, nullptr); name != nullptr) locale = name;
    std::string desktop_dir = gw::DESKTOP_FONT_DIR_NO_LOCALE;
    if (locale) {
        desktop_dir = gw::DESKTOP_FONT_DIR_FORMAT;
        desktop_dir.replace(desktop_dir.find("%s"), 2, *locale);
    }
    if (gw::file_exists(desktop_dir)) list(DT_LOCALE_FP).append(new GW_STRING(desktop_dir.c_str()));

    locale_file = root + gw::LOCALE_FONT_PATH_DIR + locale.value_or("C") + gw::LOCALE_FONT_PATH_FILE;
    read_locale_file();

    if (gw::is_superuser(effective_uid)) return true;
    const char* home = std::getenv("HOME");
    if (home == nullptr) return false;
    user_file = std::string(home) + gw::USER_FONT_PATH_FILE;
    read_user_file();
    gw::tell_unless_done(store(USER_APPEND_FP).read.with(gw::Sequel::FILE_NOT_READ, *user_file));
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

void GWFontPath::read_locale_file() {
    const gw::VtFontPath elements = gw::read_vtfontpath(locale_file);
    gw::tell_unless_done(elements.outcome.with(gw::Sequel::FILE_NOT_READ, locale_file));
    take(LOCALE_APPEND_FP, elements.append);
    take(LOCALE_PREPEND_FP, elements.prepend);
}

void GWFontPath::read_user_file() {
    Store& known = store(USER_APPEND_FP);
    known.stamp = gw::stamp_of(*user_file);
    const gw::VtFontPath elements = gw::read_vtfontpath(*user_file);
    known.read = elements.outcome;
    take(USER_APPEND_FP, elements.append);
    take(USER_PREPEND_FP, elements.prepend);
}

void GWFontPath::take(TYPE t, const Texts& texts) {
    gw::delete_elements(list(t));
    for (const std::string& text : texts) list(t).append(new GW_STRING(text.c_str()));
    known_texts(t) = texts;
}

GWFontPath::Texts GWFontPath::texts_of(TYPE t) {
    Texts texts;
    for (const GW_STRING* element : list(t)) texts.emplace_back(element->get_str());
    return texts;
}

gw::Outcome GWFontPath::write_user_file(const List& append_list, const List& prepend_list) const {
    if (!user_file) return gw::Failure{gw::USER_FONT_PATH_FILE, gw::Reason::NOT_ALLOWED};
    const std::optional<std::string> text = gw::vtfontpath_text(append_list, prepend_list);
    if (!text) return gw::Failure{*user_file, gw::Reason::NAME_UNFIT_FOR_PATH};
    return gw::write_vtfontpath(*user_file, *text);
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
    if (has_comma(copy)) return gw::Failure{copy.get_str(), gw::Reason::COMMA_IN_NAME};
    const Texts before = texts_of(t);
    gw::Result<Turn> turn = take_turn(t);
    if (!turn) return turn.failure();
    return end_turn(t, finish(insert_by_type(t, copy, moved_position(t, before, pos))));
}

int GWFontPath::insert_after_pos(TYPE t, const GW_STRING* element, int pos) {
    return element != nullptr ? number_of(insert(t, *element, pos)) : 0;
}

/// Waits for the turn of this process to change the file of `t`, and reads it again if somebody else has
/// changed it.
gw::Result<GWFontPath::Turn> GWFontPath::take_turn(TYPE t) {
    Turn turn;
    if (t >= SESSION_FP) return turn;
    const std::string file = store_of(t);
    gw::Result<gw::FileTurn> lock = gw::take_turn_at(file);
    if (!lock) return lock.failure().with(gw::Sequel::FONT_PATH_STAYS);
    turn.lock = std::move(*lock);
    turn.moved_on = catch_up(t);
    if (!store(t).read)
        return gw::Failure{file, gw::Reason::NOT_READ_BEFORE}.with(gw::Sequel::FONT_PATH_STAYS);
    return turn;
}

/// Reads the file of `t` again if it is not as this process left it. Returns whether it did.
bool GWFontPath::catch_up(TYPE t) {
    const bool is_user = t == USER_APPEND_FP || t == USER_PREPEND_FP;
    if (is_user && !user_file) return false;
    // A file that is gone says nothing; what this process knows is all that is left of it.
    const gw::FileStamp now = gw::stamp_of(store_of(t));
    if (store(t).read && (now == store(t).stamp || now == gw::FileStamp{})) return false;
    if (is_user) {
        read_user_file();
    } else {
        read_config(t);
    }
    _set_all_fpe_list();
    return true;
}

/// Remembers the file of `t` as this process leaves it.
gw::Outcome GWFontPath::end_turn(TYPE t, const gw::Outcome& outcome) {
    if (t >= SESSION_FP) return outcome;
    store(t).stamp = gw::stamp_of(store_of(t));
    if (outcome) known_texts(t) = texts_of(t);
    return outcome;
}

/// Where the element that was at `pos` in `before` is now; 0 when it is gone.
int GWFontPath::moved_position(TYPE t, const Texts& before, int pos) {
    const Texts now = texts_of(t);
    if (pos < 1 || pos > static_cast<int>(before.size()) || now == before) return pos;
    const auto place = std::find(now.begin(), now.end(), before[static_cast<std::size_t>(pos) - 1]);
    return place == now.end() ? 0 : static_cast<int>(place - now.begin()) + 1;
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

gw::Outcome GWFontPath::replace(TYPE t, const List& elements, bool stores_empty) {
    if (refuses(t)) return gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED};
    // A copy, because `elements` may be one of our lists.
    List copies;
    const gw::ElementsOwner owner(copies);
    gw::list_replace(copies, elements);
    for (const GW_STRING* element : copies) {
        if (has_comma(*element)) return gw::Failure{element->get_str(), gw::Reason::COMMA_IN_NAME};
    }
    const Texts known = known_texts(t);
    gw::Result<Turn> turn = take_turn(t);
    if (!turn) return turn.failure();
    if (turn->moved_on) take_over_changes(copies, texts_of(t), known);
    gw::Outcome set = end_turn(t, finish(set_by_type(t, copies, stores_empty)));
    if (set) {
        // Not what the list holds: the quirks of setting a path leave it behind.
        known_texts(t).clear();
        for (const GW_STRING* element : copies) known_texts(t).emplace_back(element->get_str());
    }
    return set;
}

int GWFontPath::set_font_path(TYPE t, GW_LIST<GW_STRING>* elements) {
    return elements != nullptr ? number_of(replace(t, *elements)) : 0;
}

GWFontPath::Change GWFontPath::set_by_type(TYPE t, const List& elements, bool stores_empty) {
    if (t == USER_PREPEND_FP || t == USER_APPEND_FP) return set_user(t, elements);
    // The session is changed one element at a time.
    if (t == SESSION_FP) return refusal(store_of(t), gw::Reason::NOT_ALLOWED);
    if (t != INSTALLATION_FP && t != HOST_FP) return {gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED}};
    if (t == HOST_FP && _host_vtconfig_writeable() == 0)
        return refusal(gw::HOST_CONFIG, gw::Reason::NOT_ALLOWED);
    // Kept: an empty font path is not written.
    std::optional<std::string> value = gw::create_fpe_string(elements);
    if (!value && stores_empty) value = "";
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

gw::Outcome GWFontPath::replace_users(const List& prepended, const List& appended) {
    if (refuses(USER_APPEND_FP)) return gw::Failure{store_of(USER_APPEND_FP), gw::Reason::NOT_ALLOWED};
    List front;
    List end;
    const gw::ElementsOwner front_owner(front);
    const gw::ElementsOwner end_owner(end);
    gw::list_replace(front, prepended);
    gw::list_replace(end, appended);
    for (const List* elements : {&front, &end}) {
        for (const GW_STRING* element : *elements) {
            if (has_comma(*element)) return gw::Failure{element->get_str(), gw::Reason::COMMA_IN_NAME};
        }
        if (!gw::fits_vtfontpath(*elements))
            return gw::Failure{store_of(USER_APPEND_FP), gw::Reason::NAME_UNFIT_FOR_PATH};
    }
    const Texts known_front = known_texts(USER_PREPEND_FP);
    const Texts known_end = known_texts(USER_APPEND_FP);
    gw::Result<Turn> turn = take_turn(USER_APPEND_FP);
    if (!turn) return turn.failure();
    if (turn->moved_on) {
        take_over_changes(front, texts_of(USER_PREPEND_FP), known_front);
        take_over_changes(end, texts_of(USER_APPEND_FP), known_end);
    }
    if (_user_vtfontpath_writeable() == 0)
        return gw::Failure{store_of(USER_APPEND_FP), gw::Reason::NOT_ALLOWED};
    gw::Outcome written = write_user_file(end, front);
    if (written) {
        gw::list_replace(list(USER_PREPEND_FP), front);
        gw::list_replace(list(USER_APPEND_FP), end);
        known_texts(USER_PREPEND_FP) = texts_of(USER_PREPEND_FP);
        _set_all_fpe_list();
    }
    return end_turn(USER_APPEND_FP, written);
}

bool GWFontPath::is_out_of_date() {
    const auto has_changed = [this](TYPE t) { return gw::stamp_of(store_of(t)) != store(t).stamp; };
    if (has_changed(INSTALLATION_FP)) return true;
    return is_main_installation() && (has_changed(HOST_FP) || (user_file && has_changed(USER_APPEND_FP)));
}

gw::Outcome GWFontPath::remove(TYPE t, int pos) {
    if (pos < 1 && pos != -1) return gw::Failure{store_of(t), gw::Reason::NO_SUCH_ELEMENT};
    if (refuses(t)) return gw::Failure{store_of(t), gw::Reason::NOT_ALLOWED};
    const Texts before = texts_of(t);
    gw::Result<Turn> turn = take_turn(t);
    if (!turn) return turn.failure();
    const int position = moved_position(t, before, pos);
    if (position == 0) return gw::Failure{store_of(t), gw::Reason::NO_SUCH_ELEMENT};
    return end_turn(t, finish(delete_by_type(t, position)));
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
    gw::tell_unless_done(run_xset("-", removed->get_str(), gw::scratch_path(gw::SCRATCH_ERRORS)));
    return {};
}

void GWFontPath::rehash_session_fp() {
    gw::tell_unless_done(gw::run_command("%s fp rehash", {gw::XSET}, gw::MOMENTS));
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

int GWFontPath::_installation_vtconfig_writeable() {
    if (!gw::writable_by_uid(installation_config, effective_uid)) return 0;
    const gw::Result<Turn> turn = take_turn(INSTALLATION_FP);
    // Another process is at it now, but not when the user is.
    if (!turn && turn.failure().reason == gw::Reason::IN_USE) return 1;
    return turn && end_turn(INSTALLATION_FP, gw::write_to_vtconfig(installation_config, nullptr)) ? 1 : 0;
}

int GWFontPath::_host_vtconfig_writeable() const {
    // Kept: asking whether the host can be configured makes its directory.
    if (!gw::file_exists(gw::HOST_CONFIG_DIR)) {
        std::error_code unmade;
        std::filesystem::create_directories(gw::HOST_CONFIG_DIR, unmade);
        if (!unmade) std::filesystem::permissions(gw::HOST_CONFIG_DIR, HOST_CONFIG_DIR_MODE, unmade);
        return 1;
    }
    const bool exists = gw::file_exists(gw::HOST_CONFIG);
    return gw::writable_by_uid(exists ? gw::HOST_CONFIG : gw::HOST_CONFIG_DIR, effective_uid) ? 1 : 0;
}

int GWFontPath::_user_vtfontpath_writeable() const {
    if (!user_file || !gw::file_exists(*user_file)) return 1;
    return gw::writable_by_uid(*user_file, effective_uid) ? 1 : 0;
}
