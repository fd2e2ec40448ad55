// SPDX-License-Identifier: MIT
//
// The help buttons of all windows: each opens the section of the manual page that its window belongs to.
#pragma once

#include "app/kit/dialogs.h"
#include "app/kit/signal.h"

namespace gw {

/// The sections and subsections of the manual page that windows belong to.
enum class HelpSection {
    INSTALLING,
    DELETED_FONTS,
    SUMMARY,
    CONFLICTS,
    OTHER_MEDIA,
    ATTRIBUTES,
    MISSING_FONTS,
    SAMPLE_TEXT,
    MODIFY_FONT_PATH,
    FONTSETS,
    PRINTER,
};

/// The line with which the section begins in the rendered page.
[[nodiscard]] const char* heading_of(HelpSection section);

/// Emitted with the heading when the user wants to read a section.
Signal<const char*>& help_requests();

/// A help button of a row. Where help buttons do nothing, it has the callback `otherwise`, or is insensitive
/// if that is null. For `left` and `right` see `RowButton`.
[[nodiscard]] RowButton help_button(const char* name, Message text, HelpSection section,
                                    XtCallbackProc otherwise = nullptr, int left = 0, int right = 0);

}  // namespace gw
