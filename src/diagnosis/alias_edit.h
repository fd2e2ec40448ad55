// SPDX-License-Identifier: MIT
//
// Changes of "fonts.alias", each a transaction of its directory.
#pragma once

#include <functional>
#include <string>

#include "core/directory.h"
#include "core/failure.h"

namespace gw::diagnosis {

/// What the text shall be; it says why it cannot be made. Called again when somebody who knows nothing of the
/// directory's lock writes the file meanwhile.
using AliasEdit = std::function<Result<std::string>(const std::string&)>;

/// Edits the file, which is empty where it is missing and goes where the new text is empty. `makes_index`: a
/// directory without an index gets an empty one.
Outcome edit_aliases(const std::string& directory, bool makes_index, const AliasEdit& edited);

/// The text of the file; "" where it is missing. Fails (`Reason::NOT_OURS`) for what is no ordinary file.
[[nodiscard]] Result<std::string> alias_text_in(const Directory& dir);

}  // namespace gw::diagnosis
