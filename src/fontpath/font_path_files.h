// SPDX-License-Identifier: MIT
//
// The operations of the font path store on lists of directory texts, font path files and the font path
// attribute of a database. Permissions are not decided here.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/failure.h"
#include "core/gw_list.h"
#include "core/gw_string.h"

namespace gw {

using ElementList = GW_LIST<GW_STRING>;

/// Inserts a new copy of `s` after `pos`; at the end for -1 and for a position at or beyond the end.
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
/// again. It is the element itself, with its references to variables, or the element in single quotes when it
/// has other characters that are special to the shell. No value for an element that no line can hold: one
/// that is empty or blank, or has a newline, a tab, a backslash, a blank at an end, or two blanks in a row,
/// or begins with an option of "echo" ("-n").
[[nodiscard]] std::optional<std::string> vtfontpath_line(std::string_view element);
[[nodiscard]] bool fits_vtfontpath(const ElementList& list);
/// The text of a font path file; no value when an element does not fit.
[[nodiscard]] std::optional<std::string> vtfontpath_text(const ElementList& append_list,
                                                         const ElementList& prepend_list);

/// Appends the font path of the database at `path`. When the database can be opened but has no font path,
/// appends the elements of `fallback`, unless that is null. A failure when there is a file that the system
/// does not let this process read.
Outcome read_config_font_path(const std::string& path, ElementList& list, const char* fallback);
/// Writes the font path attribute. With a null value only finds out whether the database can be written.
/// Kept: asking whether a database can be written writes it.
Outcome write_to_vtconfig(const std::string& path, const char* value);
/// Change the list and write it; when writing fails, the change is undone.
Outcome insert_and_write_to_vtconfig(ElementList& list, int pos, const GW_STRING* element,
                                     const std::string& path);
Outcome delete_and_write_to_vtconfig(ElementList& list, int pos, const std::string& path);

/// What tells whether a file was changed or replaced. All zero for a missing file.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t changed = 0;  ///< the time of modification, in nanoseconds
    bool operator==(const FileStamp&) const = default;
};
[[nodiscard]] FileStamp stamp_of(const std::string& path);

/// Whether the permission bits let the user write, as `is_writeable_by` has it.
[[nodiscard]] bool writable_by_uid(const std::string& path, uid_t uid);
[[nodiscard]] bool file_exists(const std::string& path);

}  // namespace gw
