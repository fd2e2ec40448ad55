// SPDX-License-Identifier: MIT
//
// What is dropped: whatever the list says, paths are absolute and have a length that the system takes, each
// is there once, and written as an address again it is the same path.
#include <climits>
#include <set>
#include <string>

#include "core/uri_list.h"
#include "fuzz.h"

namespace {

constexpr std::string_view HOST = "tulip";

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    const UriList list = read_uri_list(input, HOST);
    std::set<std::string> known;
    for (const std::string& path : list.paths) {
        GW_MUST_HOLD(path.starts_with('/') && path.size() < PATH_MAX, input);
        GW_MUST_HOLD(path.find('\0') == std::string::npos, input);
        GW_MUST_HOLD(known.insert(path).second, input);
        GW_MUST_HOLD(path_of_uri(uri_of_path(path), HOST) == path, input);
    }
    for (const std::string& address : list.refused) {
        GW_MUST_HOLD(!address.empty() && address.find('\n') == std::string::npos, input);
        GW_MUST_HOLD(!path_of_uri(address, HOST), input);
    }
}
