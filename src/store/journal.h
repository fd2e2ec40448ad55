// SPDX-License-Identifier: MIT
//
// The journal of a change of a font directory: what has to be taken back if the change does not come to its
// end. Each record is on the disk before what it describes is done, but for some of "put". Format: the line
// "glyphward-journal 2", then a line for each record:
//
//     put STAMP NAME         this file gets the name NAME
//     out NUMBER NAME        the file NAME is set aside as "old/NUMBER"
//     back STAMP NUMBER ENTRY NAME
//                            the file NUMBER of the trash's ENTRY gets the name NAME
//     dir NAME               the directory NAME is made
//     line NUMBER TEXT       before the change the index has NUMBER lines with this text, and then another
//                            number
//     index STAMP WAS        this file becomes the index; WAS is 1 if there was one before
//     overwrite              the index is written in place; "old" has its text before, "new" that to be
//     register STAMP WAS     this file becomes the register of our lines; WAS is 1 if there was one before
//     with TOKEN PATH        the change is final if that of the directory PATH is: see joint_change.h
//     and PATH               the change of the directory PATH depends on this one
//
// A stamp is a file's number, its size, and the seconds and nanoseconds of its last change (in the first
// version of the format, the number alone). A name is that of a file in the directory, or of one in its
// subdirectory "afm". A last line without its newline was not written to its end, so nothing of it was done.
// What follows a zero byte did not all reach the disk, and nothing of it was done either.
//
// The "put" of a file that comes with others may be written to the disk together with theirs. Until then the
// file keeps its name in "new", and what has a name there and another one is taken back without a record.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/failure.h"
#include "store/file_identity.h"

namespace gw::journal {

struct Put {
    FileIdentity stamp;
    std::string name;
    bool operator==(const Put&) const = default;
};
struct Out {
    unsigned number;
    std::string name;
    bool operator==(const Out&) const = default;
};
struct Back {
    FileIdentity stamp;
    unsigned number;
    std::string entry;
    std::string name;
    bool operator==(const Back&) const = default;
};
struct MadeDir {
    std::string name;
    bool operator==(const MadeDir&) const = default;
};
struct Line {
    int number;
    std::string text;  ///< with its newline
    bool operator==(const Line&) const = default;
};
struct Index {
    FileIdentity stamp;
    bool was;
    bool operator==(const Index&) const = default;
};
struct Overwrite {
    bool operator==(const Overwrite&) const = default;
};
struct Register {
    FileIdentity stamp;
    bool was;
    bool operator==(const Register&) const = default;
};
struct With {
    std::string token;
    std::string path;
    bool operator==(const With&) const = default;
};
struct And {
    std::string path;
    bool operator==(const And&) const = default;
};
using Record = std::variant<Put, Out, Back, MadeDir, Line, Index, Overwrite, Register, With, And>;

inline constexpr std::string_view HEADING = "glyphward-journal 2\n";
inline constexpr std::string_view FIRST_HEADING = "glyphward-journal 1\n";
/// No index has the same line so often: a larger number was not written by us.
inline constexpr int MOST_LINES = 1000;
/// No change of ours has a longer journal.
inline constexpr off_t MOST_BYTES = 8L * 1024 * 1024;
/// The subdirectory for metrics, the only one that a name may be in.
inline constexpr std::string_view METRICS = "afm";

/// Whether a journal can name this file: a single component, or one in the subdirectory for metrics; no line
/// break in it, and none of our own directory's.
[[nodiscard]] bool can_name(std::string_view name);

/// Whether a journal can name this directory: by an absolute path without line breaks.
[[nodiscard]] bool can_be_path(std::string_view path);

/// The record as a line. Its name must be one that `can_name` accepts.
[[nodiscard]] std::string line_of(const Record& record);

/// The records of a journal; a failure with this subject when it is none. What was begun and not written to
/// its end counts as absent.
Result<std::vector<Record>> parse(std::string_view text, const std::string& subject);

}  // namespace gw::journal
