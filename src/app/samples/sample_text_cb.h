// SPDX-License-Identifier: MIT
//
// Draws the sample line in the font that is selected in a list, offers its sizes and resolutions, and keeps
// the sample text. Also refills the font lists and holds two helpers that every dialog uses.
//
// The sample text lives here and not in the text field: a field drops the characters that its current font
// has no width for.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/gw_list.h"
#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

/// The point sizes offered for outline fonts.
inline constexpr int outline_point_size_list_count = 6;
extern const std::array<const char*, outline_point_size_list_count> outline_point_size_list;

/// Bytes of the sample text.
inline constexpr std::size_t SAMPLE_TEXT_LIMIT = 1000;
extern std::string sample_text;

/// What a list that shows samples has around it; client data of `hrn_list_sample_cb`. A list without menus
/// shows one size.
struct sample_text_cb_struct {
    std::vector<Widget> size_buttons;
    std::vector<Widget> res_buttons;
    Widget sample_field = nullptr;
    Widget size_menu = nullptr;
    Widget res_menu = nullptr;
    Widget size_button = nullptr;  ///< the one chosen last
    Widget res_button = nullptr;
    Widget res_pulldown = nullptr;
    Widget size_pulldown = nullptr;
    Widget list = nullptr;
    GWHRNList* hrn_list = nullptr;
    const char* location = nullptr;  ///< shown in the attributes dialog; null for the font's own
};

/// Takes errors of opening fonts over from the toolkit and reads the user's sample text.
void init_sample_text_cb_module();
/// Keeps `text` as the sample text, in the user's file too, and shows it; 0 (and nothing changes) for the
/// superuser or when the file cannot be written, else 1.
int set_rc_sample_text(const char* text);

void hrn_list_sample_cb(Widget list, sample_text_cb_struct* record, XtPointer call_data);
void size_button_cb(Widget button, sample_text_cb_struct* record, XtPointer call_data);
void res_button_cb(Widget button, sample_text_cb_struct* record, XtPointer call_data);
/// A sample field was changed; a user's edit becomes the sample text.
void set_sample_text_cb(Widget field, XtPointer client_data, XtPointer call_data);

/// The point size of the element that the size menu shows as `points`. One of tenths of a point, as "246", is
/// shown without them.
std::string chosen_decipoints(const GWHRNElement& elem, const std::string& points);

/// Shows `text` in the font at that size; a font that the server cannot make leaves the field empty.
void display_text_in_font(Widget field, GWFont* font, const char* decipoints, const char* text);
void display_text_in_alias(Widget field, const GWAlias* alias, const char* text);
/// Shows `text` in the fonts of a comma-separated list of names together; 0, and the field keeps its fonts
/// and its text, when the server or the locale cannot make a font set of them, else 1.
int display_text_in_fontset(Widget field, const char* base_names, const char* text);
/// Empties the field; the sample text stays.
void clear_sample_textfield(Widget field);

/// Refill the main window's list (fonts, then aliases), a list with the names of `hrn_list`, and append the
/// aliases to a list.
void update_wi_installed_hrn_list();
void update_wi_hrn_list(Widget list, const GWHRNList& hrn_list);
void display_alias_list(Widget list, const GW_SORTED_LIST<GWAlias>& aliases);

/// The label becomes `a` followed by `b`, of together less than 10000 bytes; null counts as empty.
void update_label(Widget w, const char* a, const char* b);

/// Errors of opening a font end here: a size that is missing only leaves the sample empty. All others go to
/// the handler in place before.
int x_error_handler(Display* d, XErrorEvent* event);

/// Flushes the display and dispatches events until the queue stays empty, so that a new dialog is seen before
/// long work begins.
void process_xt_events();
