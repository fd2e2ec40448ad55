// SPDX-License-Identifier: MIT
//
// What a text on a font path stands for. An element that begins with "/" is a directory; what the X server is
// told about it stands behind its first colon ("/fonts/75dpi/:unscaled") and makes another element of it.
// "catalogue:/etc/X11/fontpath.d" is a directory of links to such directories (see `fontpath/catalogue.h`).
// Anything else ("built-ins", "tcp/host:7100") is for the X server only.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "core/gw_list.h"
#include "core/gw_string.h"

namespace gw {

/// The directory of an element that begins with "/", as it is written.
[[nodiscard]] std::string directory_of_element(std::string_view element);

/// The directory that is looked at for an element: that of its fonts, or that of the links of a catalogue. ""
/// for an element that is none of both, and for a catalogue that is no absolute path.
[[nodiscard]] std::string place_of_element(std::string_view element);

/// The directories whose fonts an element stands for, in the X server's order: one, or those behind the links
/// of a catalogue. They need not be there. None for other elements, and for a catalogue that is silent or
/// cannot be read.
[[nodiscard]] std::vector<std::string> font_directories(std::string_view element);

/// The same for all elements of a path. Catalogues are first asked whether they answer, their directories are
/// not.
[[nodiscard]] std::vector<std::string> font_directories(const std::vector<std::string>& elements);

/// Whether the fonts of the directory are among those of the element, whatever its attributes.
[[nodiscard]] bool stands_for(std::string_view element, const std::string& directory);

/// Equal for two elements that are the same: the same directory or catalogue by any path with the same
/// attributes, or, where there is no such directory to look at, or it is silent, the same text. A slash at
/// the end of a directory's name makes no difference.
using ElementIdentity = std::tuple<dev_t, ino_t, std::string>;

/// Whether the directories of a font path are on this host, so that they can be looked at.
enum class PathHost { THIS, ANOTHER };

[[nodiscard]] ElementIdentity identity_of_element(std::string_view element, PathHost host = PathHost::THIS);

/// The directories of a font path whose fonts the program lists, in their order. By default these are the
/// elements that begin with "/", as they are written. With today's fonts they are listed without attributes,
/// and each once (see `FontPolicy::knows_path_attributes`), and those of a catalogue are in its place (see
/// `FontPolicy::knows_catalogues`). A silent directory is left out.
[[nodiscard]] std::vector<std::string> directories_to_list(const GW_LIST<GW_STRING>& path);

// --- directories that do not answer ------------------------------------------

/// Finds out which of the directories do not answer, in 2 seconds at most (see `silent_directories`). From
/// now on, and until they are asked again, those are silent and the others are not: this process must not
/// look at a silent directory, because it would hang. Returns them, in their order.
std::vector<std::string> find_silent(const std::vector<std::string>& directories);
/// Asks only those that are not silent already: one that stays silent costs its 2 seconds once, however often
/// this is called. For the elements of a font path, and what is behind the links of its catalogues; other
/// elements are passed over.
void find_newly_silent(const std::vector<std::string>& elements);
/// The same for what is listed of a font path.
std::vector<std::string> find_silent(const GW_LIST<GW_STRING>& path);
/// Whether the directory did not answer when it was last asked. A slash at the end of its name makes no
/// difference.
[[nodiscard]] bool is_silent(std::string_view directory);

}  // namespace gw
