// SPDX-License-Identifier: MIT
#include "app/start/main_start.h"

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/common/dirdlg.h"
#include "app/common/problemdlg.h"
#include "app/common/progressdlg.h"
#include "app/common/warningdlg.h"
#include "app/common/workingdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/deletedfontsdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/doctor/doctordlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/convertdlg.h"
#include "app/installing/given_files.h"
#include "app/installing/installdlg.h"
#include "app/installing/notoffereddlg.h"
#include "app/installing/nottakendlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/atoms.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "app/kit/looks.h"
#include "app/kit/mnemonics.h"
#include "app/kit/toolkit.h"
#include "app/kit/window_titles.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/main_window/propsdlg.h"
#include "app/printer/printerdlg.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/attrdlg.h"
#include "app/start/answers.h"
#include "app/start/end_signals.h"
#include "app/start/fallback_resources.h"
#include "app/start/initdlg.h"
#include "app/start/interface_font.h"
#include "app/start/later_dialogs.h"
#include "app/start/toolkit_warnings.h"
#include "app/start/window_icon.h"
#include "core/font_policy.h"
#include "core/gw_misc.h"
#include "modules/font_modules.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"
#include "store/trash_policy.h"
#include "texts/messages.h"

#include "fontpath/session_display.h"

namespace {

// Kept: flags of one byte are declared as four. The converter writes the one byte.
constexpr Cardinal DECLARED_FLAG_SIZE = 4;

XtResource Gw_resrcs[] = {
    {gw::name_arg("gw_fontset_support"), gw::name_arg("Gw_Fontset_Support"), gw::name_arg(XmRBoolean),
     DECLARED_FLAG_SIZE, XtOffsetOf(GwResources, fontset_support), gw::name_arg(XmRString),
     gw::name_arg("False")},
    {gw::name_arg("gw_printer_support"), gw::name_arg("Gw_Printer_Support"), gw::name_arg(XmRBoolean),
     DECLARED_FLAG_SIZE, XtOffsetOf(GwResources, printer_support), gw::name_arg(XmRString),
     gw::name_arg("False")},
    {gw::name_arg("gw_codeset_num"), gw::name_arg("Gw_Codeset_Num"), gw::name_arg(XmRInt), sizeof(int),
     XtOffsetOf(GwResources, codeset_num), gw::name_arg(XmRString), gw::name_arg("3")},
    {gw::name_arg("gw_locale_sample_text"), gw::name_arg("Gw_Locale_Sample_Text"), gw::name_arg(XmRString),
     sizeof(String), XtOffsetOf(GwResources, locale_sample_text), gw::name_arg(XmRString), gw::name_arg("")},
};

XtResource Gw_modern_resrcs[] = {
    {gw::name_arg("gw_modern_fonts"), gw::name_arg("Gw_Modern_Fonts"), gw::name_arg(XmRBoolean),
     sizeof(Boolean), XtOffsetOf(GwModernResources, modern_fonts), gw::name_arg(XmRString),
     gw::name_arg("False")},
    {gw::name_arg("gw_modern_windows"), gw::name_arg("Gw_Modern_Windows"), gw::name_arg(XmRBoolean),
     sizeof(Boolean), XtOffsetOf(GwModernResources, modern_windows), gw::name_arg(XmRString),
     gw::name_arg("False")},
};

void read_resources() {
    XtGetApplicationResources(wi_toplevel, &Gw_resrc, Gw_resrcs, XtNumber(Gw_resrcs), nullptr, 0);
    XtGetApplicationResources(wi_toplevel, &Gw_modern_resrc, Gw_modern_resrcs, XtNumber(Gw_modern_resrcs),
                              nullptr, 0);
    gw::set_font_policy(
        gw::FontPolicy(Gw_modern_resrc.modern_fonts != False, Gw_modern_resrc.modern_windows != False));
    gw::set_window_policy(gw::WindowPolicy(Gw_modern_resrc.modern_windows != False));
    if (gw::window_policy().names_windows_in_utf8()) gw::give_titles_in_utf8();
    gw::set_keeps_what_is_taken_out(gw::window_policy().brings_deleted_fonts_back());
}

// Without the display nothing can be saved or shown. Exit handlers would only try to use it.
int display_lost(Display*) {
    std::fprintf(stderr, "%s\n", gw::text_of(gw::Message::DISPLAY_LOST));
    gw::remove_scratch();
    std::_Exit(1);
}

/// Takes what killed runs previewed off the server's path: as long as it names a directory that is not there,
/// the server takes no other path.
void forget_killed_previews() {
    (void)gw::remove_left_scratch();
    unsigned count = 0;
    const GW_LIST<GW_STRING>& elements = *the_font_path->get_fpe_list(GWFontPath::SESSION_FP, count);
    for (int position = elements.get_count(); position > 0; --position) {
        if (gw::was_in_private_scratch(elements.get_elem_at_pos(position)->get_str()))
            the_font_path->delete_pos(GWFontPath::SESSION_FP, position);
    }
}

/// The steps that make them.
void prepare_dialogs() {
    if (gw::user_is_superuser() || gw::window_policy().shows_live_path())
        gw::make_later([] { create_modify_fp_dlg("modify_fp_dlg", wi_toplevel); });
    gw::make_later([] { create_install_dlg("install_dlg", wi_toplevel); });
    gw::make_later([] { create_rmedia_dlg("rmedia_dlg", wi_toplevel); });
    if (gw::window_policy().shows_what_is_not_offered())
        gw::make_later([] { create_not_offered_dlg("not_offered_dlg", wi_toplevel); });
    if (gw::window_policy().takes_given_files())
        gw::make_later([] { create_not_taken_dlg("not_taken_dlg", wi_toplevel); });
    if (gw::window_policy().asks_before_converting())
        gw::make_later([] { create_convert_dlg("convert_dlg", wi_toplevel); });
    gw::make_later([] { create_dir_dlg("dir_dlg", wi_toplevel); });
    gw::make_later([] { create_attr_dlg("attr_dlg", wi_toplevel); });
    gw::make_later([] { create_props_dlg("props_dlg", wi_toplevel); });
    gw::make_later([] { create_progress_dlg("progress_dlg", wi_toplevel); });
    if (gw::window_policy().controls_work())
        gw::make_later([] { create_problem_dlg("problem_dlg", wi_toplevel); });
    gw::make_later([] { create_working_dlg("working_dlg", wi_toplevel); });
    gw::make_later([] { create_del_warning_dlg("del_warning_dlg", wi_toplevel); });
    gw::make_later([] { create_warning_dlg("warning_dlg", wi_toplevel); });
    gw::make_later([] { create_about_dlg("about_dlg", wi_toplevel); });
    gw::make_later([] { create_conflict_dlg("conflict_dlg", wi_toplevel); });
    gw::make_later([] { create_preconflict_dlg("preconflict_dlg", wi_toplevel); });
    gw::make_later([] { create_fp_info_dlg("fp_info_dlg", wi_toplevel); });
    gw::make_later([] { create_help_dlg("help_dlg", wi_toplevel); });
    if (gw::has_fontsets()) gw::make_later([] { create_fontsets_dlg("fontsets_dlg", wi_toplevel); });
    gw::make_later([] { create_pr_install_dlg("pr_install_dlg", wi_toplevel); });
    gw::make_later([] { create_pr_delete_dlg("pr_delete_dlg", wi_toplevel); });
    gw::make_later([] { create_pr_modify_fp_dlg("pr_modify_fp_dlg", wi_toplevel); });
    if (gw::window_policy().finds_missing_fonts())
        gw::make_later([] { create_doctor_dlg("doctor_dlg", wi_toplevel); });
    if (gw::window_policy().brings_deleted_fonts_back())
        gw::make_later([] { create_deleted_fonts_dlg("deleted_fonts_dlg", wi_toplevel); });
}

}  // namespace

void begin_program() {
    gw_init();
    gw::listen_to_failures(gw::hear_failure);
    uid = static_cast<int>(::geteuid());
    std::atexit(release_program_objects);
}

void set_env() {
    ::setenv("NLSPATH", gw::DEFAULT_NLSPATH, 0);
    ::setenv("XFILESEARCHPATH", gw::DEFAULT_XFILESEARCHPATH, 0);
    gw::add_command_dir(gw::INSTALLATION_BIN);
}

void init_gui(int* argc, char** argv) {
    std::setlocale(LC_ALL, "");
    XtSetLanguageProc(nullptr, nullptr, nullptr);
    set_env();
    gw::open_catalogue();
    XSetIOErrorHandler(display_lost);
    // This comes early: making the shell, with its application context, already uses fonts.
    gw::listen_to_toolkit();
    wi_toplevel = XtAppInitialize(&app, "Glyphward", nullptr, 0, argc, argv, fallback_res, nullptr, 0);
    read_resources();
    gw::prepare_interface_font(wi_toplevel);
    display = XtDisplay(wi_toplevel);
    screen = XtScreen(wi_toplevel);
    gw::set_font_path_display(display);
    gw::ask_for_atoms(display);
    if (gw::window_policy().has_keys_for_all_controls()) gw::use_mnemonics(display);
    create_init_dlg("init_dlg", wi_toplevel);
    start_init_dlg();
}

void build_program(bool makes_dialogs_later) {
    the_font_path = new GWFontPath(gw::INSTALLATION_ROOT);
    forget_killed_previews();
    gw::append_font_modules(the_fsm_list);
    fill_program_lists();
    create_font_admin_main_window();
    prepare_dialogs();
    if (!makes_dialogs_later) gw::make_dialogs_now();
    gw::assign_mnemonics(wi_mainwindow);
    if (gw::user_is_superuser()) user_is_root = 1;
    stop_init_dlg();
    gw::take_dropped_files(wi_toplevel);
    gw::realize_on_screen(wi_toplevel);
    gw::set_window_icon(wi_toplevel);
    gw::name_windows(wi_toplevel);
    gw::tell_title(wi_toplevel, gw::text_of(gw::Message::MAIN_TITLE));
    gw::end_on_signals(app, [] {
        gw::make_dialogs_now();
        exit_btn_cb(nullptr, nullptr, nullptr);
    });
}

int gw_main(int argc, char** argv) {
    if (gw::answers_on_the_terminal(argc, argv)) return 0;
    begin_program();
    init_gui(&argc, argv);
    // With files to install, a dialog comes at once.
    build_program(argc == 1 && gw::window_policy().makes_dialogs_later());
    gw::take_arguments(argc, argv);
    gw::run_with_dialogs(app);
}
