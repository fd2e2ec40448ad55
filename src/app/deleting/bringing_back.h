// SPDX-License-Identifier: MIT
//
// Brings deleted and replaced fonts back: to the disk, the list and the server.
#pragma once

#include <string>
#include <vector>

#include "model/deleted_fonts.h"
#include "texts/messages.h"

namespace gw {

/// Undoes what the undo record has, says in the status line how much came back, and in a window what did not,
/// why, and what the user can do. Does nothing while other work is going on.
void undo_last_work();

/// Brings these fonts back (see `bring_fonts_back`), and selects them in the list of installed fonts. To be
/// called while windows are busy and no other work is going on.
ReturnOfFonts bring_back_and_list(const std::vector<DeletedFont>& fonts,
                                  const std::vector<FontAction::Came>& in_their_places = {});

/// A window for fonts that have not come back: which ones, why, and what the user can do about it.
void show_not_brought_back(const ReturnOfFonts& fonts);
/// Removes these fonts from the trash for good. The same holds.
ReturnOfFonts delete_for_good_and_show(const std::vector<DeletedFont>& fonts);

/// A window for what was left: `heading`, and what and why.
void show_reasons(const char* title, Message heading, const ReturnOfFonts& fonts);

/// "3 fonts brought back.", and how many were not tried.
[[nodiscard]] std::string brought_back_text(const ReturnOfFonts& fonts);
/// "3 fonts deleted for good.", and the same.
[[nodiscard]] std::string gone_text(const ReturnOfFonts& fonts);

}  // namespace gw
