// SPDX-License-Identifier: MIT
//
// Which files are sent when fonts are installed for everyone.
#pragma once

#include <string>
#include <vector>

#include "platform/everyone_request.h"

class GWHRNElement;

namespace gw {

/// The files of all fonts of these entries, each once: those with the glyphs by their names, and metrics by
/// names that end in ".afm", by which they are found beside these.
[[nodiscard]] std::vector<SentFile> files_of(const std::vector<const GWHRNElement*>& entries);

/// Whether a file of that name is sent for the metrics in it.
[[nodiscard]] bool is_metrics_name(const std::string& name);

}  // namespace gw
