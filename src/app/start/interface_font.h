// SPDX-License-Identifier: MIT
//
// The font of labels, buttons and text fields that have no font resource of their own. The three tables are
// resources of the main window's shell (labelRenderTable, buttonRenderTable, textRenderTable), and all
// widgets below it inherit them.
#pragma once

#include <Xm/Xm.h>

namespace gw {

/// Call this after the shell was created and before any other widget. It replaces a table of `shell` that
/// cannot be used with the toolkit's own font. Such a table has no font that can be opened, so that no widget
/// could be created; or it has scalable fonts, in which the toolkit takes all texts for UTF-8, in a locale
/// with another encoding. In the C locale labels and buttons keep their scalable fonts, because their texts
/// are plain ASCII; a text field would drop what is typed.
///
/// It also sets the toolkit's font units ("80fu" in a resource) by the font for labels: the width of a digit,
/// and the height of a line divided by 2.2, at least 7 pixels. The toolkit would take them from the server's
/// font "fixed", which has the same size at 192 dots per inch as at 96.
void prepare_interface_font(Widget shell);

}  // namespace gw
