// SPDX-License-Identifier: MIT
//
// What the user starts from and chooses to do, and how the outcome is compared.
#include "soak/user.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/toolkit.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/conflict_lists.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "core/text.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>

namespace gw::soak {

using namespace gw::test;

namespace {

constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";

Texts make_destinations() {
    Texts all;
    for (const char* name : {"glyphwd_fonts", "more_fonts"}) {
        all.push_back(home().make_dir(name));
        home().write(std::string(name) + "/fonts.dir", "0\n");
    }
    return all;
}

}  // namespace

// The superuser and the user run with different resources where both run with the same seed.
User::User(int seed)
    : random_(seed),
      modern_fonts_(((seed + (is_root() ? 1 : 0)) & 1) != 0),
      modern_windows_(((seed + (is_root() ? 1 : 0)) & 2) != 0),
      destinations_(make_destinations()),
      model_(destinations_, modern_fonts_) {
    for (int i = 0; i < NUMBER_OF_SOURCES; ++i)
        sources_[static_cast<std::size_t>(i)].fill(i, random_, modern_fonts_);
    for (TempDir& element : more_elements_) element.write("fonts.dir", "0\n");
    prepare_font_path();
    ::setenv("VANTORHOME", installation_.path().substr(0, installation_.path().size() - 1).c_str(), 1);
    ::setenv("LANG", "C", 1);
    installation_.write(FONTSETS, "! none\n");
    const auto resource = [](const char* name, bool on) {
        return std::string("Glyphward*") + name + (on ? ": True" : ": False");
    };
    start_program({"-xrm", resource("gw_modern_fonts", modern_fonts_), "-xrm",
                   resource("gw_modern_windows", modern_windows_), "-xrm",
                   resource("gw_fontset_support", true)});
    note(resource("gw_modern_fonts", modern_fonts_) + ", " + resource("gw_modern_windows", modern_windows_));
    for (const std::string& directory : destinations_) {
        const GW_STRING element(directory.c_str());
        if (!is_on_server_path(directory))
            the_font_path->insert_after_pos(GWFontPath::SESSION_FP, &element, -1);
    }
    choose_destination();
}

/// Both destinations are on the font path from the beginning.
void User::prepare_font_path() {
    if (!is_root()) {
        home().write(".VTfontpath", joined(destinations_, "\n") + '\n');
        return;
    }
    path_ = lines_of(stored_path());
    path_.insert(path_.end(), destinations_.begin(), destinations_.end());
    std::ofstream(CONFIG) << "XDISPLAY.0.fontpath:\t" << joined(path_, ",") << '\n';
}

/// The superuser's font path as it is in the database, an element a line.
std::string User::stored_path() const {
    std::string line = bytes_of(CONFIG);
    line.erase(0, line.find('\t') + 1);
    line.erase(std::min(line.find('\n'), line.size()));
    std::replace(line.begin(), line.end(), ',', '\n');
    return line;
}

void User::act() {
    struct Choice {
        int weight;
        void (User::*action)();
    };
    static constexpr Choice CHOICES[] = {{4, &User::choose_source},  {2, &User::choose_destination},
                                         {8, &User::install},        {4, &User::remove},
                                         {4, &User::look_around},    {2, &User::edit_font_path},
                                         {2, &User::edit_fontsets},  {2, &User::change_sample_text},
                                         {1, &User::change_aliases}, {1, &User::list_again}};
    int all = 0;
    for (const Choice& choice : CHOICES) all += choice.weight;
    int number = random_.below(all);
    for (const Choice& choice : CHOICES) {
        if (number < choice.weight) {
            (this->*choice.action)();
            return;
        }
        number -= choice.weight;
    }
}

// --- what must be ------------------------------------------------------------

Texts User::listed() const {
    Texts ours;
    for (const std::string& name : items(wi_hrn_list)) {
        if (name.starts_with(OURS)) ours.push_back(name);
    }
    return ours;
}

void User::add_differences_on_server(Texts& found) const {
    const std::set<std::string> present = names_on_server();
    std::set<std::string> allowed;
    for (const std::string& xlfd : model_.bitmaps()) {
        allowed.insert(gw::lower_case(xlfd));
        if (!present.contains(gw::lower_case(xlfd))) found.push_back("the server does not have " + xlfd);
    }
    // The fonts of the chosen source are there for their samples.
    for (const auto& [shown, font] : sources_[static_cast<std::size_t>(std::max(source_, 0))].fonts)
        allowed.insert(gw::lower_case(font.xlfd));
    for (const std::string& xlfd : present) {
        if (!allowed.contains(xlfd)) found.push_back("the server has " + xlfd);
    }
    for (const std::string& directory : destinations_) {
        const Texts path = server_font_path();
        if (std::count(path.begin(), path.end(), directory) != 1)
            found.push_back("the server's path is " + joined(path, ","));
    }
}

void User::add_differences_in_files(Texts& found) const {
    if (home().read(".glyphwdrc") != kept_text_)
        found.push_back(".glyphwdrc is " + home().read(".glyphwdrc"));
    if (is_root()) {
        if (lines_of(stored_path()) != path_) found.push_back("the font path is " + stored_path());
    } else if (lines_of(home().read(".VTfontpath")) != destinations_) {
        found.push_back(".VTfontpath is " + home().read(".VTfontpath"));
    }
}

Texts User::differences() const {
    Texts found = wrong_;
    const Texts on_disk = model_.differences();
    found.insert(found.end(), on_disk.begin(), on_disk.end());
    add_differences_in_files(found);
    add_differences_on_server(found);
    if (sorted(listed()) != model_.shown())
        found.push_back("listed are " + joined(listed(), ", ") + " instead of " +
                        joined(model_.shown(), ", "));
    const Texts all = items(wi_hrn_list);
    if (static_cast<int>(all.size()) != the_installed_hrn_count + the_alias_count)
        found.push_back("the counts are not the length of the list");
    for (const std::string& alias : aliases_) {
        const bool is_shown = std::any_of(all.begin(), all.end(),
                                          [&](const std::string& name) { return name.starts_with(alias); });
        if (!is_shown) found.push_back(alias + " is not listed");
    }
    if (is_managed(wi_preconflict_dlg) || is_managed(wi_conflict_dlg))
        found.push_back("a question is left open");
    return found;
}

std::size_t User::bytes_of_notes() const {
    std::size_t bytes = actions_.capacity() * sizeof(std::string);
    for (const std::string& action : actions_) bytes += action.capacity() + 1;
    return bytes + cursor_changes().capacity() * sizeof(CursorChange);
}

void User::come_to_rest() {
    if (!our_positions().empty()) remove_at(our_positions());
    press(find(wi_attr_dlg, "close_button"));
    // The sample of a fontset keeps its fonts.
    installation_.write(FONTSETS, "! none\n");
    press(find(wi_fontsets_dlg, "reset_button"));
    choose_source(0);
    // A sample keeps its font until there is another one.
    for (Widget list : {find(wi_install_dlg, "_hrn_list"), wi_hrn_list}) select(list, {1});
    press(find(wi_install_dlg, "_cancel_button"));
    forget_selection();
    gw::clear_conflict_list();
    pump();
}

/// Selects these positions and calls the list's callbacks.
void User::select(Widget list, const std::vector<int>& positions) {
    XmListDeselectAllItems(list);
    XtVaSetValues(list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    for (const int position : positions) XmListSelectPos(list, position, False);
    XtVaSetValues(list, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
    XmListCallbackStruct call = {};
    call.reason = XmCR_EXTENDED_SELECT;
    call.item_position = positions.back();
    call.selected_item_count = static_cast<int>(positions.size());
    XtCallCallbacks(list, XmNextendedSelectionCallback, &call);
    pump();
}

/// The server's names of our bitmap fonts. A pattern does not find sizes that it would scale.
std::set<std::string> User::names_on_server() {
    int count = 0;
    char** names = XListFonts(display, "-test-soak *-75-75-c-60-iso8859-1", 1000, &count);
    const std::set<std::string> found(names, names + count);
    XFreeFontNames(names);
    return found;
}

}  // namespace gw::soak
