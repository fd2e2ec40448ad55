// SPDX-License-Identifier: MIT
//
// Lists of addresses, as other programs drop them ("text/uri-list"): which files of this machine they name.
// An address is hostile until it has been read.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

struct UriList {
    std::vector<std::string> paths;    ///< absolute, in the order of the list, each once
    std::vector<std::string> refused;  ///< addresses that name no file of this machine, as they are written
};

/// The path of a "file:" address: absolute, without NUL. "file:///a%20b", "file://localhost/a", "file:/a",
/// and the name of this machine, which is `host`, are taken. Nothing for any other address, for an unfinished
/// "%", and for a path that is longer than the system takes. What follows "?" and "#" is a part of the path:
/// many programs forget to encode them.
[[nodiscard]] std::optional<std::string> path_of_uri(std::string_view uri, std::string_view host);

/// The "file:" address of an absolute path, without a host. It has letters, digits and "/-._~"; all other
/// bytes are encoded.
[[nodiscard]] std::string uri_of_path(std::string_view path);

/// The addresses in `text`, one in each line, which ends with CR LF or LF. Lines that begin with "#" are
/// comments.
[[nodiscard]] UriList read_uri_list(std::string_view text, std::string_view host);

/// The name of this machine; "" when the system does not tell.
[[nodiscard]] std::string host_name();

}  // namespace gw
