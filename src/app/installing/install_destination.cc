// SPDX-License-Identifier: MIT
#include "app/installing/install_destination.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "app/common/dirdlg.h"
#include "app/common/warningdlg.h"
#include "app/installing/everyones_installation.h"
#include "app/installing/installdlg.h"
#include "app/kit/attach.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/looks.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"
#include "store/directory_change.h"
#include "texts/messages.h"

#include <Xm/RowColumn.h>
#include <Xm/ToggleB.h>

namespace installdlg {

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;
constexpr mode_t DIRECTORY_MODE = 0755;

Widget _dest_label, _req_space_val, _avail_space_val;
Widget _for_me, _for_everyone;  // null where these are not offered
std::string home_dir;
std::string install_dir;  // ends with a slash

void show_kilobytes(int blocks, Message unit) {
    gw::set_label(_avail_space_val, std::to_string(blocks) + gw::text_of(unit));
}

/// The directory of the default destination. The superuser's is the directory of the whole host.
std::string find_home_dir() {
    if (!gw::user_is_superuser()) {
        const char* home = std::getenv("HOME");
        return home != nullptr ? home : gw::SCRATCH_ROOT;
    }
    struct stat info = {};
    if (::stat(gw::HOST_DIR, &info) == 0 || ::mkdir(gw::HOST_DIR, DIRECTORY_MODE) == 0) return gw::HOST_DIR;
    return gw::SCRATCH_ROOT;
}

/// The directory for fonts of this user alone; "" without a home directory.
std::string own_directory() {
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return "";
    return gw::with_trailing_slash(std::string(home) + gw::DEFAULT_INSTALL_DIR);
}

/// Where the space for a destination is. The program for everyone makes its directories when they are
/// missing.
std::string place_of(const std::string& dir) {
    if (!needs_password(dir)) return dir;
    std::filesystem::path place = dir;
    std::error_code error;
    while (!std::filesystem::exists(place, error) && place.has_relative_path()) place = place.parent_path();
    return place.string();
}

Message words_for_everyone() {
    if (gw::user_is_superuser()) return Message::FOR_EVERYONE;
    return needs_password(gw::SUPERUSER_FONT_DIR) ? Message::EVERYONE_PASSWORD
                                                  : Message::FOR_EVERYONE_ONLY_ROOT;
}

void show_destination() {
    update_label(_dest_label, gw::text_of(Message::DESTINATION), gw::escaped(install_dir).c_str());
    if (_for_me == nullptr) return;
    gw::set_label(_for_everyone, gw::text_of(words_for_everyone()));
    // The user may have found one of the two with the directory chooser.
    const bool is_own = !gw::user_is_superuser() && install_dir == own_directory();
    XmToggleButtonSetState(_for_me, is_own ? True : False, False);
    XmToggleButtonSetState(_for_everyone, install_dir == gw::SUPERUSER_FONT_DIR ? True : False, False);
}

void install_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(install_dir_specified_cb, gw::text_of(Message::CHOOSE_DESTINATION_TITLE),
                  MissingDirectory::TAKEN);
}

/// Pressing the one that is set leaves it set.
void for_me_cb(Widget, XtPointer, XtPointer) {
    install_dir_specified_cb(own_directory().c_str());
}

void for_everyone_cb(Widget, XtPointer, XtPointer) {
    if (explain_everyone(gw::SUPERUSER_FONT_DIR)) return show_destination();
    (void)find_home_dir();  // makes the directory above it
    install_dir_specified_cb(gw::SUPERUSER_FONT_DIR);
}

void join_path_cb(Widget toggle, XtPointer, XtPointer) {
    gw::set_installation_joins_path(XmToggleButtonGetState(toggle) != False);
}

/// Whoever may not use one of them reads there why, or is told what an administrator would type.
Widget create_choice(Widget dialog) {
    Arg args[5];
    XtSetArg(args[0], XmNorientation, XmHORIZONTAL);
    XtSetArg(args[1], XmNmarginHeight, 0);
    XtSetArg(args[2], XmNradioBehavior, False);
    XtSetArg(args[3], XmNspacing, GAP);
    XtSetArg(args[4], XmNnavigationType, XmTAB_GROUP);
    Widget box = XmCreateRowColumn(dialog, gw::name_arg("_destination_choice"), args, 5);
    XtManageChild(box);
    const bool is_superuser = gw::user_is_superuser();
    const bool has_own = !is_superuser && !own_directory().empty();
    _for_me = gw::toggle(box, "_for_me_toggle",
                         gw::text_of(is_superuser ? Message::FOR_ME_NOT_ROOT : Message::FOR_ME));
    _for_everyone = gw::toggle(box, "_for_everyone_toggle", gw::text_of(words_for_everyone()));
    for (Widget w : {_for_me, _for_everyone}) gw::show_choice(w);
    XtAddCallback(_for_me, XmNvalueChangedCallback, for_me_cb, nullptr);
    XtAddCallback(_for_everyone, XmNvalueChangedCallback, for_everyone_cb, nullptr);
    activate(_for_me, has_own ? 1 : 0);
    return box;
}

/// Returns what the name of the destination stands above.
Widget create_path_toggle(Widget dialog, Widget below) {
    Widget join = gw::toggle(dialog, "_join_path_toggle", gw::text_of(Message::JOIN_PATH));
    XtVaSetValues(join, XmNset, XmSET, XmNnavigationType, XmTAB_GROUP, nullptr);
    gw::set_installation_joins_path(true);
    XtAddCallback(join, XmNvalueChangedCallback, join_path_cb, nullptr);
    Attach(join).left_form(GAP).above(below, GAP);
    return join;
}

/// A label, and its value to the right of it.
Widget space_row(Widget dialog, const char* label_name, Message text, const char* value_name, Widget below) {
    Widget label = gw::label(dialog, label_name, text);
    Widget value = gw::label(dialog, value_name, gw::text_of(Message::REQUIRED_KILOBYTES, 0));
    Attach(label).left_form(GAP).above(below, 2);
    Attach(value).right_of(label, GAP).right_form(GAP).above(below, 2);
    return value;
}

int natural_width(Widget w) {
    XtWidgetGeometry natural = {};
    XtQueryGeometry(w, nullptr, &natural);
    return natural.width;
}

/// The numbers of both rows end at one place.
void align_values(Widget dialog) {
    constexpr int VALUE_WIDTH = 20;  // in font units
    const int labels = std::max(natural_width(XtNameToWidget(dialog, "_avail_space_label")),
                                natural_width(XtNameToWidget(dialog, "_req_space_label")));
    for (Widget value : {_avail_space_val, _req_space_val}) {
        Attach(value).left_form(GAP + labels + GAP);
        XtVaSetValues(value, XmNrightAttachment, XmATTACH_NONE, XmNrecomputeSize, False, XmNalignment,
                      XmALIGNMENT_END, XmNwidth, gw::in_pixels(dialog, VALUE_WIDTH, XmHORIZONTAL), nullptr);
    }
}

}  // namespace

Widget create_destination(Widget dialog, Widget below) {
    _avail_space_val =
        space_row(dialog, "_avail_space_label", Message::SPACE_AVAILABLE, "_avail_space_val", below);
    _req_space_val =
        space_row(dialog, "_req_space_label", Message::SPACE_REQUIRED, "_req_space_val", _avail_space_val);
    if (gw::window_policy().shows_states_clearly()) align_values(dialog);

    Widget line = gw::separator(dialog, "separator2");
    Attach(line).sides(0).above(_req_space_val, GAP);
    _dest_label = gw::label(dialog, "_dest_label", Message::DESTINATION);
    Widget lowest = line;
    if (gw::window_policy().offers_destinations()) lowest = create_path_toggle(dialog, line);
    Attach(_dest_label).sides(GAP).above(lowest, lowest == line ? GAP : 2);
    Widget directory = gw::push_button(dialog, "install_dir_dlg_button", Message::DESTINATION_DIRECTORY);
    XtAddCallback(directory, XmNactivateCallback, install_dir_dlg_cb, nullptr);
    // The Tab key comes here between the sample and the buttons, not after the buttons.
    XtVaSetValues(directory, XmNnavigationType, XmTAB_GROUP, nullptr);
    Widget to = gw::label(dialog, "_install_to_label", Message::INSTALL_TO);
    Attach(to).left_form(GAP).above(_dest_label, GAP + gw::centring_offset(to, directory));
    if (gw::window_policy().offers_destinations()) {
        Widget choice = create_choice(dialog);
        Attach(choice).right_of(to, GAP).above(_dest_label, GAP + gw::centring_offset(choice, directory));
        Attach(directory).right_of(choice, 2 * GAP).above(_dest_label, GAP);
    } else {
        Attach(directory).right_of(to, 2 * GAP).above(_dest_label, GAP);
    }

    line = gw::separator(dialog, "separator1");
    Attach(line).sides(0).above(directory, GAP);
    return line;
}

const std::string& current_install_dir() {
    return install_dir;
}

void set_current_install_dir(const char* dir) {
    install_dir = gw::with_trailing_slash(dir);
}

void choose_destination(const char* dir) {
    set_current_install_dir(dir);
    show_destination();
    show_kilobytes(get_avail_space(place_of(install_dir).c_str()), Message::DESTINATION_SPACE);
}

void choose_default_destination() {
    home_dir = find_home_dir();
    show_kilobytes(get_avail_space(home_dir.c_str()), Message::HOME_SPACE);
    set_current_install_dir((home_dir + gw::DEFAULT_INSTALL_DIR).c_str());
    // A run that was killed before it put the directory on the font path has left it to nobody else.
    if (gw::find_silent({install_dir}).empty()) gw::tell_unless_done(gw::settle(install_dir));
    show_destination();
}

bool explain_everyone(const char* dir) {
    const std::string words = administrators_words(dir);
    if (!words.empty()) start_warning_dlg(gw::text_of(Message::EVERYONE_NO_POLKIT_TITLE), words.c_str());
    return !words.empty();
}

std::string prepare_destination() {
    if (needs_password(install_dir)) return "";
    if (install_dir.find(',') != std::string::npos) return gw::text_of(Message::REASON_COMMA_IN_NAME);
    struct stat info = {};
    if (::stat(install_dir.c_str(), &info) != 0) {
        if (::mkdir(install_dir.c_str(), DIRECTORY_MODE) == 0) return "";
        return gw::text_of(Message::BAD_DESTINATION);
    }
    if (gw::is_writeable_by(info.st_uid, info.st_mode, static_cast<uid_t>(uid))) return "";
    return gw::text_of(Message::UNWRITEABLE_DESTINATION);
}

gw::Outcome make_destination_anew(const std::string& dir) {
    if (!gw::window_policy().offers_destinations() ||
        gw::with_trailing_slash(dir) != gw::with_trailing_slash(install_dir))
        return gw::Failure::of_system(dir, ENOENT);
    if (::mkdir(install_dir.c_str(), DIRECTORY_MODE) == 0 || errno == EEXIST) return gw::done();
    return gw::Failure::of_system(dir, errno);
}

void show_required_space(unsigned kilobytes) {
    gw::set_label(_req_space_val, gw::text_of(Message::REQUIRED_KILOBYTES, kilobytes));
}

// The default destination may not exist yet, so the space of the home directory is shown.
void show_space_on_opening() {
    const bool below_home = install_dir.starts_with(home_dir);
    show_kilobytes(get_avail_space(below_home ? home_dir.c_str() : place_of(install_dir).c_str()),
                   Message::SPACE_ON_OPENING);
}

int get_avail_space(const char* path) {
    struct statvfs info = {};
    if (::statvfs(path, &info) != 0 || info.f_blocks == 0) return 0;
    return static_cast<int>(info.f_bavail);
}

}  // namespace installdlg
