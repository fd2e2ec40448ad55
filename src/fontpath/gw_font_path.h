// SPDX-License-Identifier: MIT
//
// Every font path of one installation; only this class reads or writes them. They are in the installation's
// and the host's configuration database, in the per-locale and per-user files, and in the running X server.
// Each is an ordered list of directory texts; the configured ones are composed into one effective list.
//
// This object owns the elements of lists 0 to 7; the composed list shares them.
#pragma once

#include <sys/types.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "core/gw_list.h"
#include "core/gw_string.h"
#include "fontpath/font_path_files.h"
#include "store/file_turn.h"

class GWFontPath {
  public:
    enum TYPE : int {
        INSTALLATION_FP = 0,
        HOST_FP = 1,
        DT_LOCALE_FP = 2,
        LOCALE_PREPEND_FP = 3,
        LOCALE_APPEND_FP = 4,
        USER_PREPEND_FP = 5,
        USER_APPEND_FP = 6,
        SESSION_FP = 7,
        ALL_FP = 8,
    };
    static constexpr int TYPE_COUNT = 9;

    /// Reads everything that belongs to the installation below `root`, without a trailing slash. The server's
    /// path is read only when a display has been given to `gw::set_font_path_display`.
    explicit GWFontPath(const char* root);
    ~GWFontPath();
    GWFontPath(const GWFontPath&) = delete;
    GWFontPath& operator=(const GWFontPath&) = delete;

    /// The list for `t` and its length; null and 0 for a value outside the enumeration. An empty session list
    /// is read from the server first. The list belongs to this object and changes with it.
    GW_LIST<GW_STRING>* get_fpe_list(TYPE t, unsigned int& count);

    /// Why the file of `t` could not be read; its list is not what the file says then.
    [[nodiscard]] const gw::Outcome& was_read(TYPE t) { return store(t).read; }

    /// Inserts a copy of `element` after position `pos` (0 at the beginning, -1 at the end) and writes the
    /// change. A change that is refused or cannot be written leaves everything as it was, but see
    /// docs/COMPATIBILITY.md.
    gw::Outcome insert(TYPE t, const GW_STRING& element, int pos);
    /// Replaces the whole font path of `t` by copies and writes it. An empty path of a database is written
    /// only if `stores_empty`.
    gw::Outcome replace(TYPE t, const GW_LIST<GW_STRING>& elements, bool stores_empty = false);
    /// Replaces both font paths of the user by copies, in one write of their file.
    gw::Outcome replace_users(const GW_LIST<GW_STRING>& prepended, const GW_LIST<GW_STRING>& appended);
    /// Whether a file of this font path has changed since this object read or wrote it.
    [[nodiscard]] bool is_out_of_date();
    /// Removes the element at `pos` (1-based, -1 the last) and writes the change.
    gw::Outcome remove(TYPE t, int pos);

    // The same with 1 or 0 as results.

    /// Inserts a copy of `element` after position `pos` (0 at the beginning, -1 at the end) and writes the
    /// change. 1 on success, 0 on failure or refusal.
    int insert_after_pos(TYPE t, const GW_STRING* element, int pos);
    /// Replaces the whole font path of `t` by copies and writes it. 1 or 0 as above.
    int set_font_path(TYPE t, GW_LIST<GW_STRING>* list);
    /// Removes the element at `pos` (1-based, -1 the last) and writes the change. 1 or 0 as above.
    int delete_pos(TYPE t, int pos);
    /// Makes the server reread its font directories.
    void rehash_session_fp();
    /// 1 when this user may change `t` now, else 0.
    int is_writeable(TYPE t);

  private:
    using List = GW_LIST<GW_STRING>;
    using Texts = std::vector<std::string>;

    /// A file as this process has left it, or last read it.
    struct Store {
        gw::FileStamp stamp = {};
        gw::Outcome read = {};
        Texts texts = {};
    };
    /// The right to change a file of font paths, which other processes change too.
    struct Turn {
        gw::FileTurn lock = {};
        bool moved_on = false;  ///< somebody else has changed the file, and it was read again
    };

    List& list(TYPE t) { return lists[static_cast<std::size_t>(t)]; }
    /// The store of `t`; both lists of the user are in one file.
    Store& store(TYPE t) {
        return stores[static_cast<std::size_t>(t == USER_PREPEND_FP ? USER_APPEND_FP : t)];
    }
    Texts& known_texts(TYPE t) { return stores[static_cast<std::size_t>(t)].texts; }
    gw::Result<Turn> take_turn(TYPE t);
    bool catch_up(TYPE t);
    gw::Outcome end_turn(TYPE t, const gw::Outcome& outcome);
    int moved_position(TYPE t, const Texts& before, int pos);
    [[nodiscard]] bool is_main_installation() const;
    /// The reasons for a refusal that all changes share.
    [[nodiscard]] bool refuses(TYPE t) const;

    bool read_host_and_locale();
    void _set_all_fpe_list();
    void read_config(TYPE t);
    void read_locale_file();
    void read_user_file();
    void take(TYPE t, const Texts& texts);
    [[nodiscard]] Texts texts_of(TYPE t);
    gw::Outcome write_user_file(const List& append_list, const List& prepend_list) const;
    void load_session();

    /// The outcome of a change, and whether it was tried; a refused change is not tried and changes no list.
    struct Change {
        gw::Outcome outcome;
        bool was_tried = true;
    };
    static Change refusal(std::string subject, gw::Reason reason);
    gw::Outcome finish(const Change& change);
    /// The file or command that a refused change of `t` would have used.
    [[nodiscard]] std::string store_of(TYPE t) const;

    Change insert_by_type(TYPE t, const GW_STRING& element, int pos);
    Change insert_host(const GW_STRING& element, int pos);
    Change insert_user(TYPE t, const GW_STRING& element, int pos);
    Change insert_session(const GW_STRING& element, int pos);
    Change set_by_type(TYPE t, const List& elements, bool stores_empty);
    Change set_user(TYPE t, const List& elements);
    Change delete_by_type(TYPE t, int pos);
    Change delete_host(int pos);
    Change delete_user(TYPE t, int pos);
    Change delete_session(int pos);
    /// Fills an empty host list with copies of the installation's elements; true when it did.
    bool seed_host_list();
    void take_seeds_back();

    [[nodiscard]] int _installation_vtconfig_writeable();
    [[nodiscard]] int _host_vtconfig_writeable() const;
    [[nodiscard]] int _user_vtfontpath_writeable() const;

    std::array<List, TYPE_COUNT> lists;
    std::array<Store, TYPE_COUNT> stores;
    uid_t effective_uid;
    std::string root;
    std::string installation_config;
    std::string locale_file;
    std::optional<std::string> user_file;  // none for the superuser, or without a home directory
    std::optional<std::string> locale;
};
