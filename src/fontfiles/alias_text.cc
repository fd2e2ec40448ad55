// SPDX-License-Identifier: MIT
#include "fontfiles/alias_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "fontfiles/alias_lexer.h"

namespace gw {

namespace {

std::string as_word(std::string_view name) {
    constexpr std::string_view SPECIAL = "\"\\\n\r";
    std::string escaped;
    for (const char c : name) {
        if (SPECIAL.find(c) != std::string_view::npos) escaped += '\\';
        escaped += c;
    }
    const bool needs_quotes =
        name.empty() || name.starts_with('!') || name.find_first_of(" \t") != std::string_view::npos;
    return needs_quotes ? '"' + escaped + '"' : escaped;
}

std::string our_lines(std::string_view alias, std::string_view font) {
    return std::string(OUR_ALIAS_COMMENT)
        .append("\n")
        .append(as_word(alias))
        .append(" ")
        .append(as_word(font))
        .append("\n");
}

/// What a text says to a server.
struct Meaning {
    struct Alias {
        std::string alias;
        std::string font;
        bool operator==(const Alias& other) const = default;
    };
    std::vector<Alias> aliases;
    bool has_file_names = false;
    bool operator==(const Meaning& other) const = default;
};

/// None when a server refuses the text.
std::optional<Meaning> meaning_of(std::string_view text) {
    Meaning meaning;
    for (const AliasLine& line : alias_lines(text)) {
        for (const AliasPair& pair : line.pairs) {
            if (pair.is_fault()) return std::nullopt;
            if (pair.kind == AliasPair::Kind::FILE_NAMES) {
                meaning.has_file_names = true;
            } else {
                meaning.aliases.push_back({pair.alias.text, pair.target.text});
            }
        }
    }
    return meaning;
}

/// Lets the entry have its whole line, and our comment in the line before it.
void widen(AliasEntry& entry, const AliasLine& line, const AliasLine* before, std::string_view text) {
    entry.start = line.start;
    entry.end = line.end;
    if (before == nullptr) return;
    const std::string_view comment = text.substr(before->start, before->end - before->start);
    entry.is_ours = comment.size() == OUR_ALIAS_COMMENT.size() + 1 && comment.starts_with(OUR_ALIAS_COMMENT);
    if (entry.is_ours) entry.start = before->start;
}

bool is_among(const AliasPair& pair, const std::vector<AliasOfFont>& unwanted) {
    return std::any_of(unwanted.begin(), unwanted.end(), [&](const AliasOfFont& alias) {
        return server_lower_case(alias.first) == server_lower_case(pair.alias.text) &&
               server_lower_case(alias.second) == server_lower_case(pair.target.text);
    });
}

/// What stays of a line that becomes a comment. Where a font is missing it is not certain which words belong
/// together.
std::string rest_of(const AliasLine& line, const std::vector<AliasOfFont>& unwanted) {
    std::string rest;
    for (const AliasPair& pair : line.pairs) {
        if (pair.kind == AliasPair::Kind::NO_TARGET) return "";
        if (pair.is_fault() || is_among(pair, unwanted)) continue;
        rest.append(rest.empty() ? "" : " ").append(as_word(pair.alias.text));
        if (pair.kind == AliasPair::Kind::SOUND) rest.append(" ").append(as_word(pair.target.text));
    }
    return rest.empty() ? rest : rest + '\n';
}

/// Whether the last `count` entries are ours, and the first of them begins at `start`.
bool are_last(const std::vector<AliasEntry>& entries, std::size_t count, std::size_t start) {
    if (entries.size() < count) return false;
    const auto first = entries.end() - static_cast<std::ptrdiff_t>(count);
    return (count == 0 || first->start == start) &&
           std::all_of(first, entries.end(), [](const AliasEntry& entry) { return entry.is_ours; });
}

}  // namespace

std::optional<std::vector<AliasEntry>> alias_entries(std::string_view text) {
    std::vector<AliasEntry> entries;
    const std::vector<AliasLine> lines = alias_lines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (const AliasPair& pair : lines[i].pairs) {
            if (pair.is_fault()) return std::nullopt;
            if (pair.kind == AliasPair::Kind::FILE_NAMES) continue;
            AliasEntry entry{pair.alias.text, pair.target.text, pair.alias.start, pair.target.end};
            const bool is_alone = lines[i].pairs.size() == 1 && !lines[i].has_comment;
            if (is_alone) widen(entry, lines[i], i > 0 ? &lines[i - 1] : nullptr, text);
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

const AliasEntry* entry_of(const std::vector<AliasEntry>& entries, std::string_view alias) {
    const std::string wanted = server_lower_case(alias);
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const AliasEntry& entry) {
        return server_lower_case(entry.alias) == wanted;
    });
    return found != entries.end() ? &*found : nullptr;
}

std::optional<std::string> with_our_aliases(std::string_view text, const std::vector<AliasOfFont>& aliases) {
    std::optional<Meaning> wanted = meaning_of(text);
    if (!wanted) return std::nullopt;
    std::string lines;
    for (const auto& [alias, font] : aliases) {
        wanted->aliases.push_back({alias, font});
        lines += our_lines(alias, font);
    }
    // A backslash can keep the text's last line from ending where it seems to.
    const std::string_view shorter = text.ends_with('\\') ? text.substr(0, text.size() - 1) : text;
    const auto candidates = std::to_array<std::pair<std::string_view, const char*>>(
        {{text, ""}, {text, "\n"}, {text, "\n\n"}, {shorter, ""}, {shorter, "\n"}});
    for (const auto& [kept, between] : candidates) {
        std::string longer = std::string(kept).append(between);
        const std::size_t start = longer.size();
        longer += lines;
        const auto entries = alias_entries(longer);
        if (entries && are_last(*entries, aliases.size(), start) && meaning_of(longer) == wanted)
            return longer;
    }
    return std::nullopt;
}

std::optional<std::string> with_our_alias(std::string_view text, std::string_view alias,
                                          std::string_view font) {
    return with_our_aliases(text, {{std::string(alias), std::string(font)}});
}

std::optional<std::string> with_other_font(std::string_view text, const AliasEntry& entry,
                                           std::string_view font) {
    std::string changed(text);
    changed.replace(entry.start, entry.end - entry.start, our_lines(entry.alias, font));
    std::optional<Meaning> wanted = meaning_of(std::string(text.substr(0, entry.start)));
    const std::optional<Meaning> behind = meaning_of(text.substr(entry.end));
    if (!wanted || !behind) return std::nullopt;
    wanted->aliases.push_back({entry.alias, std::string(font)});
    wanted->aliases.insert(wanted->aliases.end(), behind->aliases.begin(), behind->aliases.end());
    wanted->has_file_names = wanted->has_file_names || behind->has_file_names;
    return meaning_of(changed) == wanted ? std::optional(changed) : std::nullopt;
}

std::string without_entry(std::string_view text, const AliasEntry& entry) {
    return std::string(text.substr(0, entry.start)).append(text.substr(entry.end));
}

CommentedAliases with_comments(std::string_view text, const std::vector<AliasOfFont>& unwanted) {
    CommentedAliases commented;
    for (const AliasLine& line : alias_lines(text)) {
        const bool is_at_fault =
            std::any_of(line.pairs.begin(), line.pairs.end(),
                        [&](const AliasPair& pair) { return pair.is_fault() || is_among(pair, unwanted); });
        if (is_at_fault) {
            const std::string_view before = text.substr(0, line.start);
            const auto newlines = std::count(before.begin(), before.end(), '\n');
            commented.lines.push_back(static_cast<int>(newlines) + 1);
            const std::string rest = rest_of(line, unwanted);
            if (!rest.empty() || (!before.empty() && !before.ends_with('\n')))
                commented.are_only_marked = false;
            commented.text += rest + "! ";
        }
        commented.text += text.substr(line.start, line.end - line.start);
    }
    return commented;
}

}  // namespace gw
