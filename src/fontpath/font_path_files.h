// SPDX-License-Identifier: MIT
//
// What the font path store does with lists of directory texts and with a database's font path attribute,
// apart from deciding who may.
#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/failure.h"
#include "core/gw_list.h"
#include "core/gw_string.h"

namespace gw {

using ElementList = GW_LIST<GW_STRING>;

/// Inserts a new copy of `s` behind `pos`; at the end for -1 and for a position at or beyond the end.
void list_insert(ElementList& list, int pos, const GW_STRING* s);
/// Unlinks the element at `pos` (-1 the last) and returns it; the caller owns it. Null for a position
/// outside 1..count.
std::unique_ptr<GW_STRING> list_delete(ElementList& list, int pos);
/// Deletes the elements of `list` and gives it copies of those of `source`.
void list_replace(ElementList& list, const ElementList& source);

/// Appends the pieces of `value` between commas.
void split_fpe_string(ElementList& list, const char* value);
/// The elements joined with ","; nothing for an empty list.
std::optional<std::string> create_fpe_string(const ElementList& list);

/// The line of a font path file, without its newline, from which the shell that reads the file gets `element`
/// again: the element as it stands, references to variables included, or in single quotes when the shell
/// would otherwise act on it. Nothing for an element that no line can hold: one that is blank, or has a
/// newline, a tab, a backslash, or blanks at an end or next to each other.
[[nodiscard]] std::optional<std::string> vtfontpath_line(std::string_view element);
[[nodiscard]] bool fits_vtfontpath(const ElementList& list);
/// A whole font path file; nothing when an element does not fit.
[[nodiscard]] std::optional<std::string> vtfontpath_text(const ElementList& append_list,
                                                         const ElementList& prepend_list);

/// Appends the font path of the database at `path`. A database that opens without one gives the elements of
/// `fallback`, unless that is null.
void read_config_font_path(const std::string& path, ElementList& list, const char* fallback);
/// Writes the font path attribute; with a null value only probes whether the database can be written.
Outcome write_to_vtconfig(const std::string& path, const char* value);
/// Change the list and write it; a failed write takes the change back.
Outcome insert_and_write_to_vtconfig(ElementList& list, int pos, const GW_STRING* element,
                                     const std::string& path);
Outcome delete_and_write_to_vtconfig(ElementList& list, int pos, const std::string& path);

/// Whether the permission bits let the user write: the owner's bit for the owner, the others' bit for anybody
/// else. The group bits are not looked at.
[[nodiscard]] bool writable_by_uid(const std::string& path, uid_t uid);
[[nodiscard]] bool file_exists(const std::string& path);

}  // namespace gw
