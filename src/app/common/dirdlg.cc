// SPDX-License-Identifier: MIT
#include "app/common/dirdlg.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "app/common/warningdlg.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/program/window_policy.h"
#include "texts/messages.h"

#include <Xm/FileSB.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

Widget wi_dir_dlg = nullptr;
Widget wi_dir_list = nullptr;

namespace {

using gw::Message;

constexpr Dimension LEAST_WIDTH = 400;
constexpr Dimension MOST_WIDTH = 600;
constexpr int WIDTH = 72;  // in font units, where the program follows the screen's resolution

void (*_dir_cb)(const char*) = nullptr;
MissingDirectory _missing = MissingDirectory::REFUSED;
bool _is_typed = false;  // the user has typed the directory, after the list was filled or used
XmQualifyProc _qualify_as_the_toolkit = nullptr;

/// In the list, a directory itself is "DIR/." and the one above it "DIR/..". Returns the name without these
/// dots, as it should be in font paths.
std::string by_its_own_name(std::string directory) {
    if (directory.ends_with("/.")) directory.pop_back();
    if (!directory.ends_with("/..")) return directory;
    std::error_code gone;
    const std::filesystem::path real = std::filesystem::canonical(directory, gone);
    return gone ? directory : real.string();
}

/// The selected directory; empty unless exactly one is selected.
std::string selected_directory() {
    XmStringTable items = nullptr;
    int count = 0;
    XtVaGetValues(wi_dir_list, XmNselectedItems, &items, XmNselectedItemCount, &count, nullptr);
    return count == 1 ? by_its_own_name(gw::text_of(items[0])) : std::string();
}

std::string shown_directory() {
    XmString directory = nullptr;
    XtVaGetValues(wi_dir_dlg, XmNdirectory, &directory, nullptr);
    const gw::XmText owned(directory);
    return gw::text_of(directory);
}

/// The directory with a "/" at its end, or the nearest directory above it that still exists.
std::string existing(std::filesystem::path directory) {
    std::error_code gone;
    while (!std::filesystem::is_directory(directory, gone) && directory.has_relative_path()) {
        directory = directory.parent_path();
    }
    return (directory / "").string();
}

// --- a directory by its name ---------------------------------------------------

/// The path without slashes that say nothing.
std::string tidied(std::string path) {
    const auto after =
        std::unique(path.begin(), path.end(), [](char a, char b) { return a == '/' && b == '/'; });
    path.erase(after, path.end());
    return path;
}

/// What stands under "Selected Directory", as an absolute path.
std::string written_directory() {
    const gw::XtOwned<char> owned(
        XmTextFieldGetString(XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_TEXT)));
    std::string text = owned ? owned.get() : "";
    const char* home = std::getenv("HOME");
    if (home != nullptr && (text == "~" || text.starts_with("~/"))) text.replace(0, 1, home);
    if (!text.starts_with('/')) text.insert(0, shown_directory());
    return tidied(text);
}

void typed_cb(Widget, XtPointer, XtPointer call_data) {
    const auto* change = static_cast<XmAnyCallbackStruct*>(call_data);
    // The dialog's own changes have no event.
    _is_typed = change != nullptr && change->event != nullptr;
}

void forget_what_was_typed_cb(Widget, XtPointer, XtPointer) {
    _is_typed = false;
}

/// The directory that the user means; "" after saying that it is not there.
std::string meant_directory() {
    std::string directory = _is_typed ? "" : selected_directory();
    if (directory.empty()) directory = written_directory();
    std::error_code gone;
    if (_missing == MissingDirectory::TAKEN || std::filesystem::is_directory(directory, gone))
        return directory;
    start_warning_dlg(gw::text_of(Message::DIR_TITLE),
                      gw::text_of(Message::ADD_NO_DIRECTORY, {directory}).c_str());
    return "";
}

/// The toolkit puts a slash behind every directory, also behind "/".
void qualify(Widget dialog, XtPointer input, XtPointer output) {
    _qualify_as_the_toolkit(dialog, input, output);
    auto* search = static_cast<XmFileSelectionBoxCallbackStruct*>(output);
    for (const auto& [text, length] :
         {std::pair(&search->dir, &search->dir_length), std::pair(&search->mask, &search->mask_length)}) {
        const gw::XmText before(*text);
        gw::XmText after = gw::xm_text(tidied(gw::text_of(before.get())));
        *text = after.release();
        *length = XmStringLength(*text);
    }
}

/// Everything that makes the dialog take a directory by its name.
void take_typed_directories() {
    XtVaGetValues(wi_dir_dlg, XmNqualifySearchDataProc, &_qualify_as_the_toolkit, nullptr);
    XtVaSetValues(wi_dir_dlg, XmNqualifySearchDataProc, qualify, nullptr);
    XtAddCallback(XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_TEXT), XmNvalueChangedCallback, typed_cb,
                  nullptr);
    for (const char* selection : {XmNbrowseSelectionCallback, XmNsingleSelectionCallback})
        XtAddCallback(wi_dir_list, selection, forget_what_was_typed_cb, nullptr);
    for (const auto& [resource, text] : {std::pair(XmNokLabelString, Message::CONVERT_OK),
                                         std::pair(XmNcancelLabelString, Message::CONVERT_CANCEL),
                                         std::pair(XmNapplyLabelString, Message::DIR_APPLY_FILTER),
                                         std::pair(XmNfilterLabelString, Message::DIR_FILTER)}) {
        const gw::XmText words = gw::xm_text(gw::text_of(text));
        XtVaSetValues(wi_dir_dlg, resource, words.get(), nullptr);
    }
}

// --- callbacks -----------------------------------------------------------------

void cancel_cb(Widget, XtPointer, XtPointer) {
    popdown_dir_dlg();
}

// Kept: a directory that is only typed is not taken.
void ok_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    const bool takes_typed = gw::window_policy().takes_typed_directories();
    const std::string directory = takes_typed ? meant_directory() : selected_directory();
    if (takes_typed && directory.empty()) return;
    auto* const cb = _dir_cb;
    cancel_cb(w, client_data, call_data);
    if (!directory.empty() && cb != nullptr) cb(directory.c_str());
}

/// ".", ".." and the names of the directories in it, sorted. Only the first two if it cannot be read.
std::vector<std::string> directories_in(const std::string& directory) {
    std::vector<std::string> names;
    std::error_code unreadable;
    for (std::filesystem::directory_iterator entry(directory, unreadable), end; entry != end;
         entry.increment(unreadable)) {
        std::error_code gone;
        if (entry->is_directory(gone)) names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    names.insert(names.begin(), {".", ".."});
    return names;
}

/// Replaces the toolkit's search, which does not read a directory a second time.
void search_cb(Widget dialog, XtPointer call_data) {
    const auto* search = static_cast<XmFileSelectionBoxCallbackStruct*>(call_data);
    const std::string directory = gw::text_of(search->dir);
    std::error_code gone;
    if (!std::filesystem::is_directory(directory, gone)) {
        XtVaSetValues(dialog, XmNdirectoryValid, False, nullptr);
        return;
    }
    // The list keeps a selected item even when the directory is no longer there.
    if (Widget list = XmFileSelectionBoxGetChild(dialog, XmDIALOG_DIR_LIST); list != nullptr) {
        XmListDeselectAllItems(list);
    }
    std::vector<std::string> paths;
    for (const std::string& name : directories_in(directory)) paths.push_back(directory + name);
    gw::XmTexts items(paths);
    XtVaSetValues(dialog, XmNdirListItems, items.table(), XmNdirListItemCount, items.count(),
                  XmNdirectoryValid, True, XmNlistUpdated, True, nullptr);
}

/// Reads the directory again, because directories come and go.
void list_again() {
    const gw::XmText everything = gw::xm_text(existing(shown_directory()) + '*');
    XmFileSelectionDoSearch(wi_dir_dlg, everything.get());
}

void show_directories_only() {
    XtUnmanageChild(XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_LIST));
    XtUnmanageChild(XtParent(XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_LIST)));
    XtUnmanageChild(XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_LIST_LABEL));
    XtUnmanageChild(XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_HELP_BUTTON));
}

/// The dialog keeps its first width, or the width that a resource gives. Otherwise each long name would make
/// it wider, until it left the screen. The list can be scrolled instead.
void fix_size() {
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(wi_dir_dlg, XmNwidth, &width, XmNheight, &height, nullptr);
    XtWidgetGeometry natural = {};
    XtQueryGeometry(wi_dir_dlg, nullptr, &natural);
    if (width == 0 && gw::looks().fits_screen)
        width = static_cast<Dimension>(gw::in_pixels(wi_dir_dlg, WIDTH, XmHORIZONTAL));
    if (width == 0) width = std::clamp(natural.width, LEAST_WIDTH, MOST_WIDTH);
    if (height == 0) height = natural.height;
    XtVaSetValues(wi_dir_dlg, XmNwidth, width, XmNheight, height, XmNresizePolicy, XmRESIZE_NONE, nullptr);
}

}  // namespace

Widget create_dir_dlg(const char* name, Widget parent) {
    const gw::XmText subdirectories = gw::xm_text(gw::text_of(Message::SUBDIRECTORIES));
    const gw::XmText selected = gw::xm_text(gw::text_of(Message::SELECTED_DIRECTORY));
    Arg args[6];
    XtSetArg(args[0], XmNfileTypeMask, XmFILE_DIRECTORY);
    XtSetArg(args[1], XmNdirListLabelString, subdirectories.get());
    XtSetArg(args[2], XmNselectionLabelString, selected.get());
    XtSetArg(args[3], XmNautoUnmanage, False);
    XtSetArg(args[4], XmNdefaultPosition, False);
    XtSetArg(args[5], XmNdirSearchProc, search_cb);
    wi_dir_dlg = XmCreateFileSelectionDialog(parent, gw::name_arg(name), args, 6);
    wi_dir_list = XmFileSelectionBoxGetChild(wi_dir_dlg, XmDIALOG_DIR_LIST);
    gw::use_fonts(wi_dir_list, gw::looks().name_fonts);
    if (gw::looks().fits_screen) XtVaSetValues(wi_dir_dlg, XmNshadowThickness, 0, nullptr);
    set_window_title(wi_dir_dlg, gw::text_of(Message::DIR_TITLE));
    show_directories_only();
    XtAddCallback(wi_dir_dlg, XmNokCallback, ok_cb, nullptr);
    XtAddCallback(wi_dir_dlg, XmNcancelCallback, cancel_cb, nullptr);
    if (gw::window_policy().takes_typed_directories()) take_typed_directories();
    fix_size();
    gw::add_map_callbacks(wi_dir_dlg);
    gw::end_dialog(wi_dir_dlg, {.close = cancel_cb});
    return wi_dir_dlg;
}

void popup_dir_dlg(void (*cb)(const char*), const char* title, MissingDirectory missing) {
    if (title != nullptr) set_window_title(wi_dir_dlg, title);
    list_again();
    XtManageChild(wi_dir_dlg);
    _dir_cb = cb;
    _missing = missing;
    _is_typed = false;
}

void popdown_dir_dlg() {
    _dir_cb = nullptr;
    XtUnmanageChild(wi_dir_dlg);
}
