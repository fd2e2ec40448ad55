// SPDX-License-Identifier: MIT
//
// How the user changes the font path, the sample text and the fontsets, and other programs the aliases.
#include "soak/user.h"

#include <algorithm>
#include <fstream>

#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/kit/handles.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/propsdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/installed_list.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

namespace gw::soak {

using namespace gw::test;

// --- the font path -----------------------------------------------------------

/// The configured elements that the dialog shows. Where it also says what the server does with each, the
/// element comes last, and what only the server has is shown as well.
Texts User::shown_path() const {
    const Texts rows = items(find(wi_modify_fp_dlg, "_fpe_list"));
    if (!modern_windows_) return rows;
    Texts elements;
    for (const std::string& row : rows) {
        if (row.find("server only") == std::string::npos) elements.push_back(row.substr(row.find('/')));
    }
    return elements;
}

void User::edit_font_path() {
    if (!is_root()) return;
    press(find(wi_mainwindow, "_modify_fp_dlg_button"));
    expect(shown_path() == path_, "the dialog shows another path: " + joined(shown_path(), ","));
    Texts shown = path_;
    for (int edits = 1 + random_.below(4); edits > 0; --edits) edit_once(shown);
    expect(shown_path() == shown, "after editing, the dialog shows " + joined(shown_path(), ","));
    static constexpr const char* BUTTONS[] = {"_ok_button", "_apply_button", "_reset_button",
                                              "_cancel_button"};
    const char* const button = random_.any_of(BUTTONS);
    note(std::string("font path: ") + button);
    const bool pressed = press(find(wi_modify_fp_dlg, button));
    const bool stores = std::string(button) == "_ok_button" || std::string(button) == "_apply_button";
    if (pressed && stores) path_ = shown;
    press(find(wi_modify_fp_dlg, "_cancel_button"));
}

void User::edit_once(Texts& shown) {
    Widget list = find(wi_modify_fp_dlg, "_fpe_list");
    if (random_.one_in(3)) {
        const std::string element = random_.any_of(more_elements_).path();
        note("font path: add " + element);
        XmTextFieldSetString(find(wi_modify_fp_dlg, "_new_fp_textfield"), gw::name_arg(element.c_str()));
        press(find(wi_modify_fp_dlg, "_add_new_button"));
        // What the stored path has already is not added again; with modern windows, neither is what is shown.
        const Texts& known = modern_windows_ ? shown : path_;
        if (std::find(known.begin(), known.end(), element) == known.end()) shown.push_back(element);
        return;
    }
    const int position = 1 + random_.below(static_cast<int>(shown.size()));
    const auto at = shown.begin() + (position - 1);
    pick(list, position);
    const bool is_extra = std::any_of(more_elements_.begin(), more_elements_.end(),
                                      [&](const TempDir& dir) { return dir.path() == *at; });
    if (is_extra && random_.one_in(2)) {
        note("font path: remove " + *at);
        press(find(wi_modify_fp_dlg, "_delete_button"));
        shown.erase(at);
        return;
    }
    const bool up = random_.one_in(2);
    note("font path: move " + std::to_string(position) + (up ? " up" : " down"));
    const bool pressed = press(find(wi_modify_fp_dlg, up ? "_move_up_button" : "_move_down_button"));
    const bool possible = up ? position > 1 : position < static_cast<int>(shown.size());
    expect(pressed == possible, "an element can be moved beyond the end, or not at all");
    if (possible) std::iter_swap(at, up ? at - 1 : at + 1);
}

// --- texts, fontsets, aliases ------------------------------------------------

void User::change_sample_text() {
    if (!press(find(wi_mainwindow, "_properties_dlg_button"))) {
        expect(is_root(), "the sample text cannot be changed");
        return;
    }
    pump_until([] { return is_viewable(wi_props_dlg); });
    const std::string text = "sample " + std::to_string(random_.below(1000));
    type_into(find(wi_props_dlg, "sample_textField"), text);
    static constexpr const char* BUTTONS[] = {"ok_button", "apply_button", "reset_button", "cancel_button"};
    const char* const button = random_.any_of(BUTTONS);
    note("sample text \"" + text + "\": " + button);
    press(find(wi_props_dlg, button));
    if (button == std::string("ok_button") || button == std::string("apply_button"))
        kept_text_ = "SampleText:" + text;
    press(find(wi_props_dlg, "cancel_button"));
}

/// What is applied is on the disk; for this user, nothing is.
void User::edit_fontsets() {
    const std::string before = installation_.read(FONTSETS);
    press(find(wi_mainwindow, "_fontsets_dlg_button"));
    const std::string name = "-soak-set-" + std::to_string(random_.below(6));
    Widget list = find(wi_fontsets_dlg, "scrolledlist");
    const int count = static_cast<int>(items(list).size());
    if (count > 0) {
        XmListSelectPos(list, 1 + random_.below(count), True);
        pump();
    }
    Widget pulldown = nullptr;
    XtVaGetValues(find(wi_fontsets_dlg, "choose_menu"), XmNsubMenuId, &pulldown, nullptr);
    Widget sets = find(wi_delete_set_dlg, "scrolledlist");
    const bool deletes = random_.one_in(2) && !items(sets).empty();
    note(deletes ? "delete a fontset" : "new fontset " + name);
    if (deletes) {
        press(find(wi_fontsets_dlg, "delete_set_button"));
        select(sets, {1});
        press(find(wi_delete_set_dlg, "delete_button"));
        press(find(wi_delete_set_dlg, "cancel_button"));
    } else if (count > 0) {
        press(find(wi_fontsets_dlg, "new_set_button"));
        XmTextFieldSetString(find(wi_new_set_dlg, "name_text"), gw::name_arg(name.c_str()));
        press(find(wi_new_set_dlg, "ok_button"));
        press(find(wi_new_set_dlg, "cancel_button"));
    }
    const bool applies = random_.one_in(2);
    note(applies ? "apply the fontsets" : "reset the fontsets");
    press(find(wi_fontsets_dlg, applies ? "apply_button" : "reset_button"));
    const std::string after = installation_.read(FONTSETS);
    if (!applies || !is_root()) {
        expect(after == before, "the fontset file was written");
    } else {
        Texts stored;
        for (const std::string& line : lines_of(after)) {
            if (line.starts_with('-')) stored.push_back(line.substr(0, line.rfind(':')));
        }
        expect(sorted(stored) == sorted(items(sets)), "other fontsets are stored: " + joined(stored, ", "));
    }
    press(find(wi_fontsets_dlg, "cancel_button"));
}

void User::change_aliases() {
    const int number = random_.below(100);
    note("another program writes the alias soak-" + std::to_string(number));
    std::ofstream(destinations_.front() + "fonts.alias")
        << "soak-" << number << " -misc-fixed-medium-r-normal--13-120-75-75-c-80-iso8859-1\n";
    list_again();
    aliases_ = {"soak-" + std::to_string(number) + " [Alias]"};
}

/// As the next start of the program does.
void User::list_again() {
    note("list the fonts again");
    fill_program_lists();
    update_wi_installed_hrn_list();
    forget_selection();
}

}  // namespace gw::soak
