// SPDX-License-Identifier: MIT
//
// Changes of several directories that become final together. One of them leads. Each journal of the others
// has a record "with TOKEN PATH": when the process is killed, the change is final if PATH, the leading
// directory, has a file "final-TOKEN", and is taken back otherwise. That file is the leader's journal, which
// gets this name when all is done; it goes when the journals of the others have gone.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "store/journal.h"
#include "store/own_directory.h"

namespace gw {

/// No more directories change together.
inline constexpr std::size_t MOST_JOINED = 1000;

/// A name for a joint change that no other one has.
[[nodiscard]] std::string new_joint_token();
/// The name that the journal of the leader gets.
[[nodiscard]] std::string final_name(const std::string& token);
/// The absolute path of the directory, if a journal can have it.
[[nodiscard]] std::optional<std::string> joint_path(const Directory& dir);

/// Whether the change with these records belongs to a joint one that is final. Fails when this user may not
/// find out (`Reason::UNFINISHED`), or when the leading directory is not there, or not with what we keep in
/// it (`Reason::WAITS_FOR`), and taking it back could lose a font.
Result<bool> is_final(const Directory& fonts, const std::vector<journal::Record>& records);

/// The files of joint changes that this directory has led.
[[nodiscard]] std::vector<std::string> final_names(const Directory& own);
/// Finishes in the other directories what this one has led, and removes those files of it that nobody needs
/// any more. A directory that is not there, because it is not mounted for example, may need them still.
/// Those directories' own joint changes wait for their own turn. What names too many directories
/// was not written by us and is left alone.
void finish_joint_changes(const OwnDirectory& own);

}  // namespace gw
