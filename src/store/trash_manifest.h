// SPDX-License-Identifier: MIT
//
// The manifest of an entry of the trash: what one change has taken out of a font directory, font by font.
// Format: the line "glyphward-trash 1", then
//
//     entry SECONDS-TOKEN    the name of the entry: when it was made, and hexadecimal digits
//     action TOKEN           the same in all entries of one action of the user, in several directories
//     user NUMBER            who has taken it out
//     font                   what follows belongs to one font
//     file NUMBER SIZE NAME  the file NAME is kept as NUMBER
//     line TEXT              a line that the index had
//     scale TEXT             a line that "fonts.scale" had, and has lost
//     came STAMP NAME        this file came in the font's place
//     twin NAME              this file had one of the font's names too, and stays
//     end                    the manifest is whole
//
// Stamps and names are those of a journal (see journal.h). Without "end" the last font does not count.
#pragma once

#include <sys/types.h>

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/file_identity.h"

namespace gw::trash {

struct KeptFile {
    unsigned number = 0;
    off_t size = 0;
    std::string name;
    bool operator==(const KeptFile&) const = default;
};
struct CameFile {
    FileIdentity stamp;
    std::string name;
    bool operator==(const CameFile&) const = default;
};
struct KeptFont {
    std::vector<KeptFile> files;
    std::vector<std::string> lines;           ///< each with its newline
    std::vector<std::string> scalable_lines;  ///< the same
    std::vector<CameFile> came;
    std::vector<std::string> twins;
    bool operator==(const KeptFont&) const = default;

    /// The file that its first line is of, or its first one. No other font of the entry has it.
    [[nodiscard]] std::string file_name() const;
    /// What its lines call it.
    [[nodiscard]] std::vector<std::string> font_names() const;
};
struct Manifest {
    std::string entry;
    std::string action;
    uid_t user = 0;
    std::vector<KeptFont> fonts;
    bool is_whole = false;
    bool operator==(const Manifest&) const = default;
};

inline constexpr std::string_view HEADING = "glyphward-trash 1\n";
/// No manifest of ours is larger.
inline constexpr off_t MOST_BYTES = 16L * 1024 * 1024;

/// A name for an entry that is made at that time, which no other one has. Of two that are made in the same
/// second, the name of the later one is the greater.
[[nodiscard]] std::string new_entry_name(std::time_t time);
/// When the entry of this name was made; nothing when no entry can have the name.
[[nodiscard]] std::optional<std::time_t> time_of_entry(std::string_view name);

/// Whether a manifest can have the line (newline included): an entry of one file of the directory.
[[nodiscard]] bool can_be_kept(std::string_view line);
/// The file that an index line is of.
[[nodiscard]] std::string file_of_line(std::string_view line);

/// The manifest as a text, with its end.
[[nodiscard]] std::string text_of(const Manifest& manifest);
/// What the text says, up to where it was cut off; nothing when it is no manifest.
[[nodiscard]] std::optional<Manifest> parse(std::string_view text);

}  // namespace gw::trash
