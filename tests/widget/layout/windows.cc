// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "widget/layout/windows.h"

#include "app/common/dirdlg.h"
#include "app/common/problemdlg.h"
#include "app/common/progressdlg.h"
#include "app/common/warningdlg.h"
#include "app/common/workingdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/deletedfontsdlg.h"
#include "app/deleting/deletion_question.h"
#include "app/deleting/delwarningdlg.h"
#include "app/doctor/doctordlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/convertdlg.h"
#include "app/installing/installdlg.h"
#include "app/installing/notoffereddlg.h"
#include "app/installing/nottakendlg.h"
#include "app/installing/rmediadlg.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/printer/printerdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/start/initdlg.h"
#include "texts/messages.h"
#include "widget/dialogs_test_support.h"
#include "widget/doctor/played_doctor.h"
#include "widget/layout/layout_suite.h"

#include <Xm/ToggleB.h>

namespace gw::test {

namespace {

/// Conflicts of both kinds, to be shown.
class Conflicts {
  public:
    explicit Conflicts(GWConflict::TYPE type)
        : alias_("my-alias", "-misc-fixed-medium-r-normal--13-120-75-75-c-60-iso8859-1", "/fonts/"),
          conflict_(type, nullptr, type == GWConflict::DELETE ? &alias_ : nullptr, nullptr, "/fonts/",
                    nullptr) {
        conflict_.set_conflict(GWConflict::SAME_NAME, nullptr, 0, 0);
        list_.append(&conflict_);
    }
    GW_LIST<GWConflict>* list() { return &list_; }

  private:
    GWAlias alias_;
    GWConflict conflict_;
    GW_LIST<GWConflict> list_;
};

GW_LIST<GWConflict>* conflicts(GWConflict::TYPE type) {
    static Conflicts installing(GWConflict::INSTALL);
    static Conflicts deleting(GWConflict::DELETE);
    return (type == GWConflict::INSTALL ? installing : deleting).list();
}

/// The parts of a dialog, with those between that it has only where windows say more.
std::vector<const char*> with_reasons(std::vector<const char*> first, const std::vector<const char*>& reasons,
                                      const std::vector<const char*>& last) {
    if (SUITE.modern_windows) first.insert(first.end(), reasons.begin(), reasons.end());
    first.insert(first.end(), last.begin(), last.end());
    return first;
}

/// The parts of a dialog that is another one where windows say more.
std::vector<const char*> either(const std::vector<const char*>& modern,
                                const std::vector<const char*>& as_ever) {
    return SUITE.modern_windows ? modern : as_ever;
}

/// The choice of an installation in the font path dialog.
std::vector<const char*> parts_for_the_superuser() {
    if (uid != 0) return {};
    return {"_modify_label",          "radioBox", "_default_fp_toggle", "_other_inst_fp_toggle",
            "_vantor_dir_dlg_button", "separator"};
}

std::vector<std::string> long_lines() {
    return {20,
            "New Century Schoolbook Bold Italic [Bitmap]: No space left on device "
            "(/home/somebody/fonts/ncenBI24.pcf)"};
}

std::vector<gw::FailureText> long_failures() {
    std::vector<gw::FailureText> failures;
    for (const std::string& line : long_lines()) failures.push_back({line, line, {line}});
    return failures;
}

gw::NotOffered much_not_offered() {
    return {12345, long_lines(), 12345};
}

/// Shows a page of an answer to two questions, in the window that says why fonts are missing.
void show_doctor_page(const char* toggle) {
    static PlayedDoctor doctor;
    doctor.is_fontset = true;
    start_doctor_dlg_about(std::string(MISSING_FONT) + '\n' + NEAR_FONT);
    Widget button = find(wi_doctor_dlg, toggle);
    ASSERT_NE(button, nullptr) << toggle;
    XmToggleButtonSetState(button, True, True);
}

/// That window with each of its pages.
std::vector<Dialog> doctor_pages() {
    return {
        {"doctor_dlg",
         &wi_doctor_dlg,
         [] { show_doctor_page("cures_toggle"); },
         {"question_label", "question_text", "ask_button",    "clear_button",  "found_label",
          "found_list",     "answer_label",  "answer_text",   "page_box",      "cures_page*cures_list",
          "cure_text",      "do_button",     "command_label", "command_value", "copy_command_button",
          "deeds_label",    "deeds_list",    "undo_button",   "separator",     "button_form.report_button",
          "close_button",   "help_button",   "msg_label"}},
        {"doctor_dlg",
         &wi_doctor_dlg,
         [] { show_doctor_page("path_toggle"); },
         {"path_page*path_list", "remarks_text"}},
        {"doctor_dlg",
         &wi_doctor_dlg,
         [] { show_doctor_page("nearest_toggle"); },
         {"nearest_page*nearest_list", "differences_text", "copy_name_button", "use_button",
          "_sample_textfield"}},
        {"doctor_dlg",
         &wi_doctor_dlg,
         [] { show_doctor_page("packages_toggle"); },
         {"packages_page*packages_list", "install_label", "install_value", "copy_install_button"}},
        {"doctor_dlg",
         &wi_doctor_dlg,
         [] { show_doctor_page("charsets_toggle"); },
         {"charsets_page*charsets_list", "coverage_text", "base_names_label", "base_names_value",
          "copy_base_names_button"}},
    };
}

/// The dialogs that are there only where windows tell more.
std::vector<Dialog> modern_dialogs() {
    if (!SUITE.modern_windows) return {};
    std::vector<Dialog> all = {
        {"not_offered_dlg",
         &wi_not_offered_dlg,
         [] { start_not_offered_dlg(much_not_offered()); },
         {"count_label", "lines_list", "separator", "button_form.close_button", "msg_label"}},
        {"not_taken_dlg", &wi_not_taken_dlg, [] { start_not_taken_dlg(long_lines()); }, {"lines_list"}},
        {"convert_dlg", &wi_convert_dlg, [] { start_convert_dlg(long_lines(), nullptr); }, {}},
        {"deleted_fonts_dlg",
         &wi_deleted_fonts_dlg,
         start_deleted_fonts_dlg,
         {"deleted_label", "deleted_list", "separator", "button_form.bring_back_button", "for_good_button",
          "empty_button", "close_button", "help_button", "msg_label"}},
        {"for_good_dlg", &wi_for_good_dlg, [] { XtManageChild(wi_for_good_dlg); }, {}},
        {"progress_dlg",
         &wi_progress_dlg,
         [] {
             gw::open_progress_dlg(12345, "Glyph Warden");
             gw::show_progress(12344, gw::text_of(gw::Message::RETURNING_COUNT, {"12345", "12345"}),
                               "New Century Schoolbook Bold Oblique [Bitmap]");
         },
         {"action_label", "name_label", "progress_scale", "separator", "button_form.cancel_button",
          "msg_label"}},
        {"problem_dlg",
         &wi_problem_dlg,
         [] { start_problem_dlg(long_lines()); },
         {"heading_label", "reason_label", "question_label", "separator", "button_form.skip_button",
          "skip_all_button", "stop_button", "msg_label"}},
        {"del_warning_dlg",
         &wi_del_warning_dlg,
         [] {
             set_del_warning(
                 gw::question_in_words({long_lines(), {{"somebody", 1}, {"another", 12345}}, 12, 12345}));
             start_del_warning_dlg(nullptr);
         },
         {}},
        {"install_dlg",
         &wi_install_dlg,
         [] { XtManageChild(wi_install_dlg); },
         {"_avail_font_list._not_offered_button"}},
    };
    for (Dialog& page : doctor_pages()) all.push_back(page);
    return all;
}

std::vector<Dialog> dialogs_of_all() {
    return {
        {"init_dlg", &wi_init_dlg, start_init_dlg, {}},
        {"modify_fp_dlg",
         &wi_modify_fp_dlg,
         start_modify_fp_dlg,
         with_reasons(
             parts_for_the_superuser(), {"_state_text", "_button_form._apply_now_button"},
             {"_fpe_list_label", "_fpe_list", "_fpe_modify_rowcol", "_move_up_button", "_move_down_button",
              "_delete_button", "_add_new_button", "_new_fp_label", "_new_fp_textfield", "_dir_dlg_button",
              "separator1", "_button_form", "_button_form._ok_button", "_apply_button", "_reset_button",
              "_cancel_button", "_help_button", "_msg_label"}),
         {"_help_button"}},
        {"install_dlg",
         &wi_install_dlg,
         [] { XtManageChild(wi_install_dlg); },
         {"MediaChoiceTemplate._media_label",
          "MediaChoiceTemplate._other_media_dlg_button",
          "MediaChoiceTemplate.from_dir_dlg_button",
          "separator",
          "_avail_font_list._fontlist_label",
          "_avail_font_list*_hrn_list",
          "_sample_text_label",
          "_sample_textfield",
          "separator1",
          "separator2",
          "_install_to_label",
          "_dest_label",
          "install_dir_dlg_button",
          "_req_space_label",
          "_req_space_val",
          "_avail_space_label",
          "_avail_space_val",
          "separator3",
          "_button_form._install_button",
          "_button_form._select_all_button",
          "_button_form._attr_button",
          "_button_form._cancel_button",
          "_button_form._help_button",
          "_message_label"}},
        {"rmedia_dlg",
         &wi_rmedia_dlg,
         [] { popup_rmedia_dlg(nullptr); },
         {"pulldown_menu", "floppy_button", "cdrom_button", "media_option_menu", "check_button", "separator",
          "eject_button", "close_button", "help_dlg_button", "msg_label"},
         {"help_dlg_button"}},
        {"dir_dlg", &wi_dir_dlg, [] { popup_dir_dlg(nullptr, "Glyph Warden : Install Fonts In"); }, {}},
        {"attr_dlg", &wi_attr_dlg,
         [] {
             const int position = bitmap_position();
             show_font_attributes(the_installed_hrn_list.get_elem_at_pos(position)->get_representative(),
                                  nullptr);
         },
         with_reasons({"hrn_label", "hrn_name", "font_template.xlfd_label", "font_template.loc_label",
                       "_font_xlfd_scroll", "_font_loc_scroll", "foundry_template.foundry_label",
                       "foundry_template.charset_label", "foundry_template.spacing_label",
                       "alias_template.alias_label", "alias_template.xlfd_label", "alias_template.loc_label",
                       "_alias_xlfd_scroll", "_alias_loc_scroll"},
                      {"details_template.file_label",
                       "file_value",
                       "directory_label",
                       "directory_value",
                       "package_label",
                       "package_value",
                       "format_label",
                       "format_value",
                       "size_label",
                       "size_value",
                       "glyphs_label",
                       "glyphs_value",
                       "names_label",
                       "names_list",
                       "copy_button",
                       "find_label",
                       "find_text",
                       "chars_area",
                       "chars_bar",
                       "char_value"},
                      {"button_form.close_button", "button_form.help_dlg_button", "msg_label"})},
        {"props_dlg",
         &wi_props_dlg,
         start_props_dlg,
         with_reasons({"sample_label", "sample_textField"}, {"msg_label"},
                      {"ok_button", "apply_button", "reset_button", "cancel_button", "help_button"}),
         {"help_button"}},
        {"progress_dlg", &wi_progress_dlg,
         [] { start_progress_dlg(0, 12345, "Font Installation Progress Dialog", "Fonts Installed"); },
         with_reasons({"action_label"}, {"name_label"}, {"progress_scale"})},
        {"working_dlg", &wi_working_dlg, [] { start_working_dlg("Looking for fonts, be patient"); }, {}},
        {"del_warning_dlg", &wi_del_warning_dlg, [] { start_del_warning_dlg(nullptr); }, {}},
        {"warning_dlg",
         &wi_warning_dlg,
         [] { start_warning_dlg("Glyph Warden - Other Media", gw::text_of(gw::Message::CDROM_MISSING)); },
         {}},
        {"about_dlg", &wi_about_dlg, start_about_dlg, {}},
        {"conflict_dlg", &wi_conflict_dlg, [] { start_conflict_dlg(3, conflicts(GWConflict::DELETE)); },
         either({"list_label", "_conflicts_list", "resolve_label", "button_rowcol.keep_button",
                 "not_keep_button", "keep_all_button", "not_keep_all_button", "old_label", "old_sample",
                 "new_owner", "conflict_detail", "separator", "ok_button", "cancel_button", "help_dlg_button",
                 "msg_label"},
                {"list_label", "_conflicts_list", "resolve_label", "button_rowcol.keep_button",
                 "button_rowcol.not_keep_button", "conflict_detail_label", "separator", "ok_button",
                 "cancel_button", "help_dlg_button", "msg_label"})},
        {"conflict_dlg", &wi_conflict_dlg, [] { start_conflict_dlg(3, conflicts(GWConflict::INSTALL)); }, {}},
        {"preconflict_dlg", &wi_preconflict_dlg,
         [] { start_preconflict_dlg(12345, conflicts(GWConflict::DELETE)); },
         either({"success_label", "failed_label", "failed_list", "separator", "ok_button", "resolve_button",
                 "help_dlg_button", "msg_label"},
                {"success_label", "read_only_label", "conflict_label", "detail_label", "separator",
                 "ok_button", "resolve_button", "help_dlg_button", "msg_label"})},
        {"preconflict_dlg",
         &wi_preconflict_dlg,
         [] {
             if (SUITE.modern_windows) {
                 start_summary({GWConflict::INSTALL, 12345, nullptr, long_failures()});
             } else {
                 start_preconflict_dlg(1, conflicts(GWConflict::INSTALL));
             }
         },
         {}},
        {"preconflict_dlg",
         &wi_preconflict_dlg,
         [] { start_preconflict_dlg(12345, conflicts(GWConflict::INSTALL)); },
         {}},
        {"fp_info_dlg", &wi_fp_info_dlg, start_fp_info_dlg, {}},
        {"help_dlg", &wi_help_dlg, start_help_dlg, {"text", "ok_button"}, {"ok_button"}},
        {"pr_install_dlg", &wi_pr_install_dlg, [] { XtManageChild(wi_pr_install_dlg); }, {}},
        {"pr_delete_dlg", &wi_pr_delete_dlg, [] { XtManageChild(wi_pr_delete_dlg); }, {}},
        {"pr_modify_fp_dlg",
         &wi_pr_modify_fp_dlg,
         [] { XtManageChild(wi_pr_modify_fp_dlg); },
         {},
         {"cancel_button"}},
        {"fontsets_dlg", &wi_fontsets_dlg, start_fontsets_dlg,
         with_reasons({"choose_label", "set_button_form.delete_set_button", "set_button_form.new_set_button",
                       "set_button_form.sample_text_button", "list_label", "members_label", "scrolledlist"},
                      {"coverage_label", "coverage_list"},
                      {"sample_label", "sample_text", "button_form.ok_button", "msg_label"})},
        {"new_set_dlg", &wi_new_set_dlg, [] { XtManageChild(wi_new_set_dlg); }, {}},
        {"delete_set_dlg", &wi_delete_set_dlg, [] { XtManageChild(wi_delete_set_dlg); }, {}},
        {"sample_text_dlg", &wi_sample_text_dlg, [] { XtManageChild(wi_sample_text_dlg); }, {}},
    };
}

}  // namespace

std::vector<Dialog> dialogs() {
    std::vector<Dialog> all = dialogs_of_all();
    for (Dialog& dialog : modern_dialogs()) all.push_back(dialog);
    return all;
}

}  // namespace gw::test
