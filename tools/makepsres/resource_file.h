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
// A "\" before a character takes away its special meaning; at the end of a line it continues the line. "%"
// begins a comment. Blanks at the end of a line, and empty lines, are ignored. A line has at most 255
// characters.
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

/// One entry of a section.
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

/// Parses the bytes of a resource file. No value when the first line is not that of a resource file. When the
/// file is cut off or wrong further down, the result is what comes before that place.
[[nodiscard]] std::optional<ResourceFile> parse_resource_file(std::string_view bytes);

/// Whether a resource file can hold the text: newlines and NUL characters cannot be quoted.
[[nodiscard]] bool can_be_written(std::string_view text);

/// `text` with a "\" before each "\", "%", "=" and ",", so that a reader gets `text` again.
[[nodiscard]] std::string quoted(std::string_view text);

/// The directory line. No value when it does not fit into one line, because readers need not accept a
/// continued one.
[[nodiscard]] std::optional<std::string> written_directory_line(std::string_view directory);

/// A line of quoted text with its line feed, broken into as many continued lines as needed.
[[nodiscard]] std::string written_line(std::string_view quoted_text);

}  // namespace gw::psres
