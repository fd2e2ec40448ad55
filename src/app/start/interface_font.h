// SPDX-License-Identifier: MIT
//
// The font that labels, buttons and text fields are drawn in, when no resource gives one of them its own. The
// tables are resources of the main window's shell (labelRenderTable, buttonRenderTable, textRenderTable), and
// what is created below it inherits them.
#pragma once

#include <Xm/Xm.h>

namespace gw {

/// To be called between the shell's creation and that of any other widget. The toolkit's own font takes the
/// place of a table of `shell` that would not do: one without a font that can be opened, of which widgets
/// could not be made; and one of scalable fonts where the toolkit cannot draw the locale's characters in
/// them. It takes all texts for UTF-8 then. Labels and buttons are plain ASCII in the C locale, and keep
/// theirs; a text field would drop what is typed.
///
/// The toolkit's font units ("80fu" in a resource) become units of the font for labels: the width of a digit,
/// and the height of a line divided by 2.2, 7 pixels at least. By itself, the toolkit would take them from
/// the server's "fixed", which is as small on a screen of 192 dots per inch as on one of 96.
void prepare_interface_font(Widget shell);

}  // namespace gw
