// SPDX-License-Identifier: MIT
//
// The fontsets dialog: which installed bitmap fonts form each fontset of the locale, with a sample that is
// drawn with an X font set. Deleting, naming and the sample text have dialogs of their own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/kit/generation.h"
#include "fontfiles/gw_fontset_file.h"

#include <X11/Intrinsic.h>

extern Widget wi_fontsets_dlg;
extern Widget wi_delete_set_dlg;
extern Widget wi_new_set_dlg;
extern Widget wi_sample_text_dlg;

/// Builds the dialog and these three dialogs of its own.
Widget create_fontsets_dlg(const char* name, Widget parent);
void start_fontsets_dlg();

Widget create_delete_set_dlg(const char* name, Widget parent);
Widget create_new_set_dlg(const char* name, Widget parent);
Widget create_sample_text_dlg(const char* name, Widget parent);

/// What the fontset dialogs work on.
struct fontsetdlg_cb_struct {
    std::unique_ptr<GW_FONTSET_FILE> file;  ///< null where the locale can have none
    gw::Ref<GWFontSet> current;             ///< from the file, or a nameless one while the file is empty
    std::string locale_sample_text;
};
extern fontsetdlg_cb_struct fontsetdlg_cb;

namespace gw {

/// Whether this program has the dialog.
[[nodiscard]] bool has_fontsets();

}  // namespace gw

/// Opens the locale's fontset file. There is none without VANTORHOME or LANG (said on standard output), or if
/// its directory has 68 bytes or more (said on standard error). Where windows show what a fontset covers, the
/// installation of the program and the locale of its texts stand for missing ones.
void set_fontsetsdlg_cb_struct();
void init_wi_installed_fontsets_choose_menu();
void init_wi_fontsets_dlg_scrolledlist();
void init_wi_fontsets_dlg_sample_text();
void init_wi_delete_set_dlg_scrolledlist();

/// Selects the fonts of the set in a list of XLFD names, and scrolls to the first of them.
void select_scrolled_list(Widget list, const GWFontSet* set);
/// Shows the sample in the fonts of the set. Does nothing for null.
void display_sample_text(const GWFontSet* set);
/// Puts the text into the sample dialog's fields, one for each codeset.
void set_wi_sample_text_dlg(const char* text);

namespace fontsetsdlg {

void set_message(const std::string& text);

/// The whole sample text of the dialog. With some fonts its field can show only a part of it.
[[nodiscard]] std::string sample();
void set_sample(const std::string& text);

/// Add a fontset to the menu; remove all entries of that name.
void add_to_menu(const char* name);
void remove_from_menu(const std::string& name);
[[nodiscard]] bool menu_has(const std::string& name);
void show_menu_if_filled();
/// Makes the first fontset of the file current, or an unnamed one when there is none.
void make_first_current();

/// Selects the fonts of the current fontset and draws its sample.
void show_current();

/// Adds a name at the top of the delete dialog's list.
void add_to_delete_list(const char* name);

/// Events are handled while a callback works with a fontset. A button that is pressed then must not remove
/// that fontset, so each such callback holds a turn of this.
inline gw::Generation fontset_work;

}  // namespace fontsetsdlg
