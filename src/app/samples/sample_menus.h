// SPDX-License-Identifier: MIT
//
// The two option menus beside a list: the sizes of the selected font, and the resolutions of the chosen size.
#pragma once

#include <array>
#include <string>

#include "app/samples/sample_record.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

/// The point sizes offered for outline fonts.
inline constexpr int outline_point_size_list_count = 6;
extern const std::array<const char*, outline_point_size_list_count> outline_point_size_list;

/// Fills the size menu with the sizes of the element, and chooses the last one.
void offer_sizes(sample_text_cb_struct* record, const GWHRNElement& elem);

namespace gw {

/// Fills the menu of encodings, if there is one, with those of the element's font, and chooses that of its
/// XLFD name.
void offer_encodings(sample_text_cb_struct* record, const GWHRNElement& elem);
/// Makes the name with that charset ("koi8-r") the XLFD name of the font, if it has one.
void choose_encoding(GWFont& font, const std::string& charset);

}  // namespace gw

/// A size was chosen: fills the resolution menu, and chooses the last one.
void size_button_cb(Widget button, sample_text_cb_struct* record, XtPointer call_data);
/// A resolution was chosen: shows the sample.
void res_button_cb(Widget button, sample_text_cb_struct* record, XtPointer call_data);

/// The size of the element, in decipoints, that the size menu shows as `points`. The menu leaves out tenths
/// of a point, as of "246".
std::string chosen_decipoints(const GWHRNElement& elem, const std::string& points);
