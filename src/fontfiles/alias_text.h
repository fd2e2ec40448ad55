// SPDX-License-Identifier: MIT
//
// The aliases of "fonts.alias", and edits that leave all other bytes as they are. What is in the file is
// decided by `alias_lexer.h`, as X servers read it. Each edit reads what it has written, so that none changes
// or hides another alias.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gw {

struct AliasEntry {
    std::string alias;
    std::string font;
    std::size_t start = 0;  ///< where its text is, with the comment that says that we have made it
    std::size_t end = 0;    ///< behind it, the line's end included if nothing else is in the line
    bool is_ours = false;
};

/// The line before an alias that this program has added.
inline constexpr std::string_view OUR_ALIAS_COMMENT = "! Made by Glyph Warden";

/// The entries, in their order; none when a server refuses the file.
[[nodiscard]] std::optional<std::vector<AliasEntry>> alias_entries(std::string_view text);

/// The first entry with that alias; letters in upper and lower case are the same. Null when there is none.
[[nodiscard]] const AliasEntry* entry_of(const std::vector<AliasEntry>& entries, std::string_view alias);

/// An alias, and the font that it stands for.
using AliasOfFont = std::pair<std::string, std::string>;

/// `text` with entries of ours at its end, each in lines of its own. A backslash at the end of the text,
/// which stands for nothing there, is dropped. None when no file can have such entries, or a server refuses
/// one.
[[nodiscard]] std::optional<std::string> with_our_aliases(std::string_view text,
                                                          const std::vector<AliasOfFont>& aliases);
/// The same for one.
[[nodiscard]] std::optional<std::string> with_our_alias(std::string_view text, std::string_view alias,
                                                        std::string_view font);
/// `text` with another font for that entry, which must be one of ours in it. None as above.
[[nodiscard]] std::optional<std::string> with_other_font(std::string_view text, const AliasEntry& entry,
                                                         std::string_view font);
/// `text` without that entry, which must be one of its own.
[[nodiscard]] std::string without_entry(std::string_view text, const AliasEntry& entry);

/// A text with comments in the place of lines.
struct CommentedAliases {
    std::string text;
    std::vector<int> lines;  ///< of the old text, 1-based, that are comments now
    /// Whether nothing was done but to put "! " in front of lines that other programs also take for lines.
    bool are_only_marked = true;
};
/// `text` with comments in the place of all lines that a server refuses, and of those with the aliases
/// `unwanted`; letters in upper and lower case are the same. The other aliases of a line that has one of
/// these come to a line of their own. Where no line is at fault the text stays.
[[nodiscard]] CommentedAliases with_comments(std::string_view text, const std::vector<AliasOfFont>& unwanted);

}  // namespace gw
