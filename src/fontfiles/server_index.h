// SPDX-License-Identifier: MIT
//
// The files "fonts.dir" and "fonts.alias" as the X server reads them (libXfont2), which differs from how the
// program's own lists are made: here blanks of any kind divide words, a line that cannot be understood makes
// the server refuse the whole directory, and nothing is cut at 119 characters.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fontfiles/alias_lexer.h"
#include "fontfiles/index_text.h"

namespace gw {

/// What makes the server refuse a directory.
enum class IndexFault {
    NO_COUNT,       ///< the first word of "fonts.dir" is not a number, or is negative or too large
    NO_NAME,        ///< a file name of "fonts.dir" has no font name behind it
    NO_TARGET,      ///< an alias has no font name behind it
    NAME_TOO_LONG,  ///< a word of "fonts.alias" is longer than the server's buffer
    OWN_ALIAS,      ///< an alias is its own font name
};

struct FaultInIndex {
    IndexFault fault;
    int line = 0;           ///< 1-based
    std::string word = {};  ///< the file or the alias that it is about
};

struct ServerIndex {
    std::vector<IndexEntry> entries;  ///< up to the fault; names in lower case, as the server compares them
    std::optional<FaultInIndex> fault;
};
[[nodiscard]] ServerIndex read_server_index(std::string_view text);

struct ServerAlias {
    std::string alias;  ///< in lower case
    std::string target;
};
struct ServerAliases {
    std::vector<ServerAlias> aliases;   ///< up to the fault
    bool has_file_names = false;        ///< names of files without their suffixes are aliases, too
    std::size_t before_file_names = 0;  ///< how many aliases the file has before it says so
    std::optional<FaultInIndex> fault;
};
[[nodiscard]] ServerAliases read_server_aliases(std::string_view text);

/// Which of the server's renderers opens a file of this name.
enum class FontRenderer {
    NONE,     ///< the server passes its line over
    BITMAP,   ///< a font of pixels; the file must not be a link
    OUTLINE,  ///< a font of outlines
};
[[nodiscard]] FontRenderer renderer_of(std::string_view file_name);
/// The name without what shows the renderer: ".pcf.gz". The whole of it where there is no renderer.
[[nodiscard]] std::string_view without_renderer_suffix(std::string_view file_name);

}  // namespace gw
