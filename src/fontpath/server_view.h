// SPDX-License-Identifier: MIT
//
// An X server as the diagnosis sees it: what it can be asked about fonts. Nothing here changes it, but
// `set_font_path`, which cures use.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "fontpath/path_element.h"

namespace gw {

/// Whether the paths on the server's font path mean the files that this process sees.
enum class ServerPlace {
    HERE,
    ELSEWHERE,  ///< on another host, or in a container with a file system of its own
    UNKNOWN,    ///< on this host, but nothing says which file system it has
};

/// Whose directories the elements of such a server's path are. Where nothing says it, they are taken for
/// ours.
[[nodiscard]] constexpr PathHost host_of(ServerPlace place) {
    return place == ServerPlace::ELSEWHERE ? PathHost::ANOTHER : PathHost::THIS;
}

/// A font as the server has opened it.
struct OpenedFont {
    std::string name;  ///< its property FONT; "" where it has none
    int ascent = 0;    ///< pixels
    int descent = 0;
    int max_width = 0;
    long characters = 0;       ///< the codes from its first to its last one
    bool has_letters = false;  ///< a width for some code from 32 to 126
};

/// What came of `XCreateFontSet`.
struct OpenedFontset {
    struct Member {
        std::string name;     ///< the name of the font that was opened
        std::string charset;  ///< its last two fields, "iso8859-1"
    };
    std::vector<Member> members;
    std::vector<std::string> missing_charsets;  ///< of the locale, without a font
    bool is_usable = false;                     ///< a font set was made
};

/// Dots per inch.
struct ScreenResolution {
    int x = 100;
    int y = 100;
};

class ServerView {
  public:
    ServerView() = default;
    virtual ~ServerView() = default;
    ServerView(const ServerView&) = delete;
    ServerView& operator=(const ServerView&) = delete;

    /// False from the moment on when the connection is lost; all other answers are empty then.
    [[nodiscard]] virtual bool answers() = 0;
    [[nodiscard]] virtual ServerPlace place() = 0;
    /// The user that the server runs as, where its socket tells (`SO_PEERCRED`).
    [[nodiscard]] virtual std::optional<uid_t> user() = 0;
    /// The supplementary and primary groups of that process; empty where they are not known.
    [[nodiscard]] virtual std::vector<gid_t> groups() = 0;

    /// What the server takes for the resolution that the name of a font leaves open: that of its first
    /// screen, as 75 or 100.
    [[nodiscard]] virtual ScreenResolution resolution() { return {}; }

    /// The elements of its font path, in order.
    [[nodiscard]] virtual std::vector<std::string> font_path() = 0;
    /// At most `most` names that match the pattern (`XListFonts`).
    [[nodiscard]] virtual std::vector<std::string> names(const std::string& pattern, int most) = 0;
    /// Opens the font, and closes it again; no value when the server refuses.
    [[nodiscard]] virtual std::optional<OpenedFont> open(const std::string& name) = 0;
    /// Makes a font set in the locale of this process, and frees it again.
    [[nodiscard]] virtual OpenedFontset open_fontset(const std::string& base_names) = 0;

    /// Replaces the font path as a whole. Fails (`Reason::REFUSED_BY_SERVER`) when the server refuses one
    /// element; the path then stays as it was.
    virtual Outcome set_font_path(const std::vector<std::string>& elements) = 0;
};

}  // namespace gw
