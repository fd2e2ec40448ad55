// SPDX-License-Identifier: MIT
#include "app/installing/recent_menu.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

#include "app/installing/given_files.h"
#include "app/installing/installdlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "core/failure.h"
#include "core/text.h"
#include "drivers/recent_sources.h"
#include "texts/messages.h"

#include <Xm/RowColumn.h>

namespace installdlg {

namespace {

constexpr std::size_t LONGEST = 30;  // characters of a path in the menu

gw::OptionMenu _menu;
std::array<Widget, gw::MOST_RECENT_SOURCES> _entries;

std::vector<std::string>& shown_dirs() {
    static std::vector<std::string> dirs;
    return dirs;
}

/// The end of a long path says more than its beginning.
std::string shortened(const std::string& dir) {
    std::string text = gw::escaped(dir);
    if (text.size() <= LONGEST) return text;
    std::size_t from = text.size() - LONGEST;
    // Not in the middle of a character: whatever follows its first byte in UTF-8 begins with the bits 10.
    while (from < text.size() && (static_cast<unsigned char>(text[from]) & 0xC0U) == 0x80U) ++from;
    return "..." + text.substr(from);
}

/// The menu always shows its first entry, which is its name.
void show_name() {
    Widget name = gw::entries_of(_menu.pulldown).front();
    XtVaSetValues(_menu.menu, XmNmenuHistory, name, nullptr);
}

void chosen_cb(Widget, XtPointer number, XtPointer) {
    const auto place = reinterpret_cast<std::uintptr_t>(number);  // NOLINT(*-reinterpret-cast)
    show_name();
    if (place >= shown_dirs().size()) return;
    // A copy: the list changes when the directory becomes the source.
    const std::string dir = shown_dirs()[place];
    gw::start_install_dlg_with(gw::read_arguments({"--", dir}));
}

/// The entries stay the same widgets: one of them may be the one that the user has just chosen.
void fill() {
    shown_dirs() = gw::recent_sources();
    for (std::size_t i = 0; i < _entries.size(); ++i) {
        const bool is_used = i < shown_dirs().size();
        if (is_used) gw::set_label(_entries[i], shortened(shown_dirs()[i]));
        is_used ? XtManageChild(_entries[i]) : XtUnmanageChild(_entries[i]);
    }
    activate(_menu.menu, shown_dirs().empty() ? 0 : 1);
}

void create_entries() {
    for (std::size_t i = 0; i < _entries.size(); ++i) {
        const std::string name = "recent_" + std::to_string(i + 1);
        _entries[i] = gw::menu_button(_menu.pulldown, name.c_str(), " ");
        XtAddCallback(_entries[i], XmNactivateCallback, chosen_cb,
                      reinterpret_cast<XtPointer>(i));  // NOLINT(*-reinterpret-cast,*-int-to-ptr)
    }
}

}  // namespace

Widget create_recent_menu(Widget form) {
    _menu =
        gw::option_menu(form, "_recent_menu", "_recent_pulldown", gw::text_of(gw::Message::RECENT_SOURCES));
    XtVaSetValues(_menu.menu, XmNmarginHeight, 0, nullptr);
    create_entries();
    fill();
    return _menu.menu;
}

void keep_recent_source(const std::string& dir) {
    std::error_code gone;
    if (_menu.menu == nullptr || !std::filesystem::is_directory(dir, gone)) return;
    gw::tell_unless_done(gw::remember_recent_source(dir));
    fill();
}

}  // namespace installdlg
