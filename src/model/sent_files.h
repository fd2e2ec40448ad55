// SPDX-License-Identifier: MIT
//
// Which files are sent when fonts are installed for everyone.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/everyone_request.h"

class GWFont;
class GWHRNElement;

namespace gw {

/// The files of all fonts of these entries, each once: those with the glyphs by their names, and metrics by
/// names that end in ".afm", by which they are found beside these.
[[nodiscard]] std::vector<SentFile> files_of(const std::vector<const GWHRNElement*>& entries);

/// Leaves the font those of its files that are sent, which are these paths. False when none of them has
/// glyphs: whoever gets them has no such font.
bool leave_out_files_but(const std::set<std::string>& sent, GWFont& font);

/// Whether a file of that name is sent for the metrics in it.
[[nodiscard]] bool is_metrics_name(const std::string& name);

}  // namespace gw
