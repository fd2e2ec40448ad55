// SPDX-License-Identifier: MIT
#include "diagnosis/own_aliases.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "core/directory.h"
#include "core/file_calls.h"
#include "diagnosis/alias_edit.h"
#include "diagnosis/alias_name.h"
#include "fontfiles/server_index.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

constexpr mode_t FOR_ALL = 0755;
constexpr int MOST_STEPS = 100;  // no server follows as many aliases
const std::string ALIASES(ALIAS_FILE_NAME);
constexpr std::string_view EMPTY_INDEX = "0\n";

// --- directories ---------------------------------------------------------------

/// Makes the directory at `path`, which ends in "/", and those above it that are missing.
Outcome make_directories(const std::string& path, std::vector<std::string>& made) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0)
        return S_ISDIR(info.st_mode) ? done() : Outcome(Failure::of_system(path, ENOTDIR));
    const std::string parent = path.substr(0, path.rfind('/', path.size() - 2) + 1);
    if (parent.empty() || errno != ENOENT) return Failure::of_system(path, errno);
    if (Outcome above = make_directories(parent, made); !above) return above;
    const std::string name = path.substr(parent.size(), path.size() - parent.size() - 1);
    const Result<Directory> dir = Directory::open(parent);
    if (!dir) return dir.failure();
    if (file_calls().make_dir(dir->fd(), name.c_str(), FOR_ALL) != 0) return Failure::of_system(path, errno);
    made.push_back(path);
    const Result<Directory> below = dir->below(name);
    if (!below) return below.failure();
    // The server may be another user, whatever this one's files are like.
    return file_calls().set_mode(below->fd(), FOR_ALL) == 0 ? done()
                                                            : Outcome(Failure::of_system(path, errno));
}

/// Removes what we keep in a directory of fonts, and that itself.
void remove_directory(const std::string& path) {
    const FileCalls& calls = file_calls();
    {
        const Result<Directory> dir = Directory::open(path);
        if (!dir) return;
        for (const std::string& name : dir->names()) {
            const bool is_ours = name == OWN_DIRECTORY_NAME || (name == FONT_INDEX_NAME && dir->read(name) &&
                                                                *dir->read(name) == EMPTY_INDEX);
            if (!is_ours) return;
        }
        (void)calls.unlink(dir->fd(), FONT_INDEX_NAME, 0);
        if (const Result<Directory> own = dir->below(OWN_DIRECTORY_NAME); own) {
            for (const char* name : {"lines", "journal", "lock"}) (void)calls.unlink(own->fd(), name, 0);
            for (const char* name : {"new", "old"}) (void)calls.unlink(own->fd(), name, AT_REMOVEDIR);
        }
        (void)calls.unlink(dir->fd(), OWN_DIRECTORY_NAME, AT_REMOVEDIR);
    }
    (void)calls.unlink(AT_FDCWD, path.c_str(), AT_REMOVEDIR);
}

// --- where a font leads ----------------------------------------------------------

/// The aliases of a font path, by their names in lower case; the first one of a name counts.
std::map<std::string, std::string> aliases_on(const std::vector<std::string>& path) {
    std::map<std::string, std::string> aliases;
    for (const std::string& name : font_directories(path)) {
        if (is_silent(name)) continue;
        const Result<Directory> dir = Directory::open(name);
        const Result<std::string> text = dir ? dir->read(ALIASES) : Result<std::string>(dir.failure());
        if (!text) continue;
        for (const ServerAlias& known : read_server_aliases(*text).aliases)
            aliases.emplace(known.alias, known.target);
    }
    return aliases;
}

/// Whether the font leads back to the alias by those of a font path.
bool leads_back(const std::string& alias, const std::string& font,
                const std::map<std::string, std::string>& aliases) {
    std::string name = font;
    for (int steps = 0; steps < MOST_STEPS; ++steps) {
        if (server_matches(name, alias)) return true;
        const auto next = aliases.find(server_lower_case(name));
        if (next == aliases.end()) return false;
        name = next->second;
    }
    return true;
}

Outcome fits(const std::string& alias, const std::string& font,
             const std::map<std::string, std::string>& aliases) {
    const std::optional<AliasName> name = alias_name(alias, font);
    if (!name || name->name != alias) return Failure{alias, Reason::NAME_UNFIT_FOR_ALIAS};
    if (leads_back(alias, font, aliases)) return Failure{alias, Reason::LEADS_BACK};
    return done();
}

// --- the text --------------------------------------------------------------------

Failure unreadable(const std::string& directory) {
    return Failure{directory + ALIASES, Reason::NOT_READ_BEFORE};
}

/// A text that says what was meant, or that it cannot be said.
Result<std::string> checked(std::optional<std::string> text, const AddedAlias& added) {
    if (!text) return Failure{added.alias, Reason::NAME_UNFIT_FOR_ALIAS};
    return std::move(*text);
}

/// The text with the alias; `added` gets what it stood for before.
Result<std::string> with_alias(const std::string& text, AddedAlias& added) {
    const auto entries = alias_entries(text);
    if (!entries) return unreadable(added.directory);
    added.known.clear();
    for (const AliasEntry& entry : *entries) added.known.push_back(server_lower_case(entry.alias));
    const AliasEntry* known = entry_of(*entries, added.alias);
    if (known == nullptr) return checked(with_our_alias(text, added.alias, added.font), added);
    if (server_lower_case(known->font) == server_lower_case(added.font)) {
        added.is_new = false;
        return text;
    }
    if (!known->is_ours) return Failure{added.alias, Reason::IS_AN_ALIAS};
    added.font_before = known->font;
    return checked(with_other_font(text, *known, added.font), added);
}

Result<std::string> without_alias(const std::string& text, const AddedAlias& added) {
    const auto entries = alias_entries(text);
    if (!entries) return unreadable(added.directory);
    const AliasEntry* known = entry_of(*entries, added.alias);
    if (known == nullptr || !known->is_ours || known->font != added.font)
        return Failure{added.alias, Reason::CHANGED_SINCE};
    if (!added.font_before.empty()) return checked(with_other_font(text, *known, added.font_before), added);
    return without_entry(text, *known);
}

/// The text with all of them. Those that come are added together, and so read once.
Result<std::string> with_aliases(std::string text, const std::string& directory,
                                 const std::vector<AliasOfFont>& aliases) {
    const auto entries = alias_entries(text);
    if (!entries) return unreadable(directory);
    std::set<std::string> known;
    for (const AliasEntry& entry : *entries) known.insert(server_lower_case(entry.alias));
    std::vector<AliasOfFont> ours;
    std::map<std::string, std::size_t> places;
    for (const auto& [alias, font] : aliases) {
        const std::string name = server_lower_case(alias);
        if (!known.contains(name)) {
            const auto [place, is_new] = places.emplace(name, ours.size());
            is_new ? ours.push_back({alias, font}) : void(ours[place->second].second = font);
            continue;
        }
        AddedAlias changed{directory, alias, font};
        Result<std::string> other = with_alias(text, changed);
        if (!other) return other;
        text = std::move(*other);
    }
    std::optional<std::string> longer = with_our_aliases(text, ours);
    if (!longer) return Failure{directory + ALIASES, Reason::NAME_UNFIT_FOR_ALIAS};
    return std::move(*longer);
}

}  // namespace

Outcome add_own_aliases(const std::string& directory, const std::vector<AliasOfFont>& aliases,
                        const std::vector<std::string>& path) {
    std::map<std::string, std::string> on_path = aliases_on(path);
    for (const auto& [alias, font] : aliases) {
        if (Outcome outcome = fits(alias, font, on_path); !outcome) return outcome;
        on_path.insert_or_assign(server_lower_case(alias), font);
    }
    AddedAlias added{directory, "", ""};
    Outcome outcome = make_directories(directory, added.made_directories);
    if (outcome) {
        outcome = edit_aliases(
            directory, true, [&](const std::string& text) { return with_aliases(text, directory, aliases); });
    }
    if (!outcome) remove_made_directories(added);
    return outcome;
}

Result<AddedAlias> add_own_alias(const std::string& directory, const std::string& alias,
                                 const std::string& font, const std::vector<std::string>& path) {
    if (const Outcome outcome = fits(alias, font, aliases_on(path)); !outcome) return outcome.failure();
    AddedAlias added{directory, alias, font};
    Outcome outcome = make_directories(directory, added.made_directories);
    if (outcome)
        outcome =
            edit_aliases(directory, true, [&](const std::string& text) { return with_alias(text, added); });
    if (outcome) return added;
    remove_made_directories(added);
    return outcome.failure();
}

bool has_newer_aliases(const AddedAlias& added) {
    const Result<Directory> dir = Directory::open(added.directory);
    const Result<std::string> text = dir ? alias_text_in(*dir) : Result<std::string>(dir.failure());
    const auto entries = text ? alias_entries(*text) : std::nullopt;
    // What cannot be read may have some.
    if (!entries) return dir || !dir.failure().is_absence();
    return std::any_of(entries->begin(), entries->end(), [&](const AliasEntry& entry) {
        const std::string alias = server_lower_case(entry.alias);
        return alias != server_lower_case(added.alias) &&
               std::find(added.known.begin(), added.known.end(), alias) == added.known.end();
    });
}

Outcome remove_own_alias(const AddedAlias& added) {
    if (!added.is_new) return done();
    struct stat info = {};
    if (::stat(added.directory.c_str(), &info) != 0 && errno == ENOENT)
        return Failure{added.directory, Reason::CHANGED_SINCE};
    return edit_aliases(added.directory, true,
                        [&](const std::string& text) { return without_alias(text, added); });
}

void remove_made_directories(const AddedAlias& added) {
    for (auto dir = added.made_directories.rbegin(); dir != added.made_directories.rend(); ++dir)
        remove_directory(*dir);
}

}  // namespace gw::diagnosis
