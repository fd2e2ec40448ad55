// SPDX-License-Identifier: MIT
//
// What is sent to the program that installs for everyone: pieces of any size read the same, no file has a
// name that leads elsewhere, and a stream that was read to its end is the one that these files are written
// as.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "fuzz.h"
#include "platform/font_stream.h"

namespace {

namespace stream = gw::font_stream;

struct Read {
    std::vector<std::pair<std::string, std::string>> files;
    bool is_complete = false;
    std::string fault;
    gw::NameTaken decision = gw::NameTaken::REFUSE;

    bool operator==(const Read&) const = default;
};

Read read_in_pieces(std::string_view input, std::size_t size) {
    Read read;
    gw::FontStreamReader reader({[&](const std::string& name, std::uint64_t) {
                                     read.files.emplace_back(name, "");
                                     return true;
                                 },
                                 [&](std::string_view bytes) {
                                     read.files.back().second += bytes;
                                     return true;
                                 },
                                 [] { return true; }});
    while (!input.empty() && reader.take(input.substr(0, size)))
        input.remove_prefix(std::min(size, input.size()));
    read.is_complete = reader.is_complete();
    read.fault = reader.fault();
    read.decision = reader.decision();
    return read;
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    constexpr std::size_t PIECE = 7;
    const Read whole = read_in_pieces(input, input.size() + 1);
    GW_MUST_HOLD(whole == read_in_pieces(input, 1), input);
    GW_MUST_HOLD(whole == read_in_pieces(input, PIECE), input);
    std::string written = stream::beginning(whole.decision);
    for (const auto& [name, bytes] : whole.files) {
        GW_MUST_HOLD(stream::is_name(name), input);
        written += stream::before_file(name, bytes.size()) + bytes + std::string(stream::BEHIND_FILE);
    }
    written += stream::END;
    if (whole.is_complete) GW_MUST_HOLD(written == input, input);
    GW_MUST_HOLD(!whole.is_complete || whole.fault.empty(), input);
}
