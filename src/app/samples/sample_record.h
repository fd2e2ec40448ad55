// SPDX-License-Identifier: MIT
//
// The controls around a list that shows samples, and what they show of the selected entry: its sample, and
// its attributes if their dialog is open.
#pragma once

#include <vector>

#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

/// Client data of `hrn_list_sample_cb`. A list without menus shows the sample in one size.
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
    std::vector<Widget> enc_buttons;
    Widget enc_menu = nullptr;  ///< null unless windows offer encodings
    Widget enc_pulldown = nullptr;
    Widget list = nullptr;
    GWHRNList* hrn_list = nullptr;
    const char* location = nullptr;  ///< shown in the attributes dialog; null for the font's own
};

namespace gw {

/// Whether the element has an outline font, which the server can scale.
[[nodiscard]] bool is_outline(const GWHRNElement& elem);

/// The selected element; null unless exactly one entry is selected and it is a font.
[[nodiscard]] GWHRNElement* only_selected_element(const sample_text_cb_struct& record);

/// Each shows the sample, and the attributes too if their dialog is open, unless a newer request has come
/// meanwhile.
void show_font(const sample_text_cb_struct& record, GWFont* font, const char* decipoints);
void show_alias(const sample_text_cb_struct& record, const GWAlias* alias);
/// Shows no sample and no attributes.
void show_nothing(const sample_text_cb_struct& record);
/// The same, and says that the entry has no font any more.
void show_that_font_is_gone(const sample_text_cb_struct& record);

void make_menus_insensitive(const sample_text_cb_struct& record);

}  // namespace gw
