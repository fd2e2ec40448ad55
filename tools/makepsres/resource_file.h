// SPDX-License-Identifier: MIT
//
// A PostScript resource file as text. The format is the public one of Adobe's Display PostScript ("PostScript
// Language Resource Conventions", resource files):
//
//     PS-Resources-1.0                 or PS-Resources-Exclusive-1.0
//     SECTION ...                      the sections that follow, one a line
//     .
//     //DIRECTORY                      optional: what relative files of all sections are relative to
//     SECTION
//     NAME=FILE                        or NAME==FILE: a file that DIRECTORY does not concern
//     .
//     ...
//
// "\" in front of a character takes away its meaning, at the end of a line it continues the line; "%" begins
// a comment; blanks at the end of a line and empty lines do not count. Lines have 255 characters at most.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gw::psres {

/// The longest line that is written, its line feed included.
inline constexpr std::size_t LONGEST_LINE = 255;

inline constexpr const char* FONT_OUTLINE = "FontOutline";
inline constexpr const char* FONT_AFM = "FontAFM";

/// An entry as it stands in a file.
struct Entry {
    std::string name;                 ///< in front of the first "=", without quoting
    std::optional<std::string> file;  ///< behind it, without quoting; nothing when there is no "="
    bool is_final = false;            ///< written "==": the file's directory line does not concern it
    std::string line;                 ///< all of it in one line, still quoted
};

struct Section {
    std::string name;
    std::vector<Entry> entries;
};

struct ResourceFile {
    bool exclusive = false;  ///< no other resource file of its directory counts
    bool complete = true;    ///< all of it could be read
    std::string directory;   ///< that of the directory line; empty when there is none
    std::vector<Section> sections;
};

/// What the bytes of a resource file say; nothing when its first line is none of a resource file. Of one that
/// breaks off or goes wrong further down, what stands before.
[[nodiscard]] std::optional<ResourceFile> parse_resource_file(std::string_view bytes);

/// Whether the text can stand in a resource file: nothing quotes the end of a line or a NUL character.
[[nodiscard]] bool can_be_written(std::string_view text);

/// `text` so that it reads as itself: "\" in front of each "\", "%", "=" and ",".
[[nodiscard]] std::string quoted(std::string_view text);

/// The directory line; nothing when it does not fit into one line, since readers need not continue it.
[[nodiscard]] std::optional<std::string> written_directory_line(std::string_view directory);

/// A line of quoted text with its line feed, continued over as many lines as it takes.
[[nodiscard]] std::string written_line(std::string_view quoted_text);

}  // namespace gw::psres
