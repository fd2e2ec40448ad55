// SPDX-License-Identifier: MIT
//
// How the user installs and deletes fonts, and decides about conflicts.
#include "soak/user.h"

#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/installdlg.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "core/text.h"

#include "widget/work_test_support.h"

namespace gw::soak {

using namespace gw::test;

// --- installing --------------------------------------------------------------

void User::choose_source() {
    choose_source(random_.below(NUMBER_OF_SOURCES));
}

void User::choose_source(int number) {
    note("list the fonts of source " + std::to_string(number));
    if (!is_managed(wi_install_dlg)) press(find(wi_mainwindow, "_install_dlg_button"));
    source_ = number;
    const SourceDirectory& source = sources_[static_cast<std::size_t>(number)];
    installdlg::from_dir_specified_cb(source.dir.c_str());
    expect(pump_until([] { return label(wi_install_dlg, "_message_label").empty(); }),
           "the source is not listed");
    Texts expected;
    for (const auto& [shown, font] : source.fonts) expected.push_back(shown);
    const Texts found = sorted(names_offered());
    expect(found == expected, "the source is listed as " + joined(found, ", "));
    const std::set<std::string> previewed = names_on_server();
    for (const auto& [shown, font] : source.fonts) {
        expect(is_outline(font) || previewed.contains(gw::lower_case(font.xlfd)),
               "no preview of " + font.xlfd);
    }
}

Texts User::names_offered() {
    Texts names = items(find(wi_install_dlg, "_hrn_list"));
    // What is installed already may be marked, behind the type.
    for (std::string& name : names) name = name.substr(0, name.find(']') + 1);
    return names;
}

void User::choose_destination() {
    destination_ = random_.any_of(destinations_);
    note("install into " + destination_);
    installdlg::install_dir_specified_cb(destination_.c_str());
}

void User::install() {
    if (source_ < 0) choose_source();
    const Texts offered = names_offered();
    if (offered.empty()) return;
    if (!is_managed(wi_install_dlg)) press(find(wi_mainwindow, "_install_dlg_button"));
    const std::vector<int> positions = random_.some_of(static_cast<int>(offered.size()));
    select(find(wi_install_dlg, "_hrn_list"), positions);

    std::string action = "install";
    int done = 0;
    std::size_t refused = 0;
    std::vector<Pending> conflicts;
    for (const int position : positions) {
        const Font& font = sources_[static_cast<std::size_t>(source_)].fonts.at(
            offered[static_cast<std::size_t>(position) - 1]);
        const FontModel::Answer answer = model_.install(font, destination_);
        action += ' ' + font.file;
        done += answer == FontModel::Answer::INSTALLED ? 1 : 0;
        refused += answer == FontModel::Answer::REFUSED ? 1 : 0;
        if (answer == FontModel::Answer::CONFLICT) conflicts.push_back({font, destination_});
    }
    note(action + ": " + std::to_string(done) + " done, " + std::to_string(conflicts.size()) +
         " conflicts, " + std::to_string(refused) + " refused");
    expect(press(find(wi_install_dlg, "_install_button")), "the fonts cannot be installed");
    expect(pump_until([] { return !the_wp_cl_data.is_in_progress() && !XtIsManaged(wi_install_dlg); }, 60000),
           "the installation does not end");
    pump();
    expect_status(done, "installed");
    // Where windows compare conflicts, what can be decided is asked for first.
    const bool asks = modern_windows_ && !conflicts.empty();
    const bool has_summary = modern_windows_ ? !asks && refused > 0 : !conflicts.empty();
    expect(is_managed(wi_conflict_dlg) == asks, "the conflicts are wrongly shown or not shown");
    expect(is_managed(wi_preconflict_dlg) == has_summary, "the summary is wrongly shown or not shown");
    if (!conflicts.empty()) {
        decide(done, conflicts);
    } else if (has_summary) {
        press(find(wi_preconflict_dlg, "ok_button"));
    }
    stop_fp_info_dlg();
}

void User::expect_status(int count, const char* what) {
    const std::string status = main_status();
    std::string expected = std::to_string(count) + " fonts successfully " + what + '.';
    if (modern_windows_) expected = (count == 1 ? "1 font " : std::to_string(count) + " fonts ") + what + '.';
    expect(status == expected, "the status line is " + status);
}

void User::decide(int done, const std::vector<Pending>& conflicts) {
    const bool looks_around = random_.one_in(3);
    if (looks_around) look_around();
    if (random_.one_in(3)) {
        note("leave the originals");
        if (modern_windows_) press(find(wi_conflict_dlg, "cancel_button"));
        press(find(wi_preconflict_dlg, "ok_button"));
        // Another selection has taken the text away; the windows of ever say it again.
        if (!modern_windows_ || !looks_around) expect_status(done, "installed");
        return;
    }
    expect(modern_windows_ || press(find(wi_preconflict_dlg, "resolve_button")),
           "there is nothing to decide");
    resolve(done, conflicts);
}

void User::resolve(int done, const std::vector<Pending>& conflicts) {
    Widget list = find(wi_conflict_dlg, "_conflicts_list");
    expect(items(list).size() == conflicts.size(), "other conflicts: " + joined(items(list), ", "));
    std::vector<bool> forced;
    std::string action = "decide:";
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        forced.push_back(random_.one_in(2));
        pick(list, static_cast<int>(i) + 1);
        press(find(wi_conflict_dlg, forced.back() ? "not_keep_button" : "keep_button"));
        action += forced.back() ? " new" : " old";
    }
    if (random_.one_in(4)) {
        note(action + ", and leave the originals after all");
        press(find(wi_conflict_dlg, "cancel_button"));
        press(find(wi_preconflict_dlg, "ok_button"));
        return;
    }
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        if (!forced[i]) continue;
        const bool replaced = model_.replace(conflicts[i].font, conflicts[i].directory);
        if (!replaced) action += " (" + conflicts[i].font.file + " refused)";
        done += replaced || !modern_windows_ ? 1 : 0;
    }
    note(action);
    expect(press(find(wi_conflict_dlg, "ok_button")), "the decisions cannot be carried out");
    expect_status(done, "installed");
    if (is_managed(wi_preconflict_dlg)) press(find(wi_preconflict_dlg, "ok_button"));
}

// --- deleting ----------------------------------------------------------------

std::vector<int> User::our_positions() {
    std::vector<int> positions;
    const Texts names = items(wi_hrn_list);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].starts_with(OURS)) positions.push_back(static_cast<int>(i) + 1);
    }
    return positions;
}

void User::remove() {
    const std::vector<int> ours = our_positions();
    if (ours.empty()) return;
    std::vector<int> chosen;
    for (const int number : random_.some_of(static_cast<int>(ours.size())))
        chosen.push_back(ours[static_cast<std::size_t>(number) - 1]);
    select(wi_hrn_list, chosen);
    if (random_.one_in(4)) {
        note("ask to delete, and do not");
        press(find(wi_mainwindow, "_command_form._delete_button"));
        press(find(wi_del_warning_dlg, "Cancel"));
        return;
    }
    remove_at(chosen);
}

void User::remove_at(const std::vector<int>& positions) {
    const Texts names = items(wi_hrn_list);
    std::string action = "delete";
    for (const int position : positions) {
        const std::string& name = names[static_cast<std::size_t>(position) - 1];
        action += ' ' + name + ',';
        model_.remove(name);
    }
    note(action);
    select(wi_hrn_list, positions);
    expect(press(find(wi_mainwindow, "_command_form._delete_button")), "the fonts cannot be deleted");
    expect(press(find(wi_del_warning_dlg, "OK")), "the question does not come");
    expect(pump_until([] { return !the_wp_cl_data.is_in_progress(); }, 60000), "the deletion does not end");
    pump();
    expect_status(static_cast<int>(positions.size()), "deleted");
    expect(!is_managed(wi_preconflict_dlg), "there is a summary of a deletion without conflicts");
    stop_fp_info_dlg();
}

}  // namespace gw::soak
