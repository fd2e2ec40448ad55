// SPDX-License-Identifier: MIT
#include "fuzz.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "core/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    gw::fuzz::try_input({reinterpret_cast<const char*>(data), size});
    return 0;
}

namespace gw::fuzz {

void report(const char* file, int line, const char* condition, std::string_view input) {
    std::fprintf(stderr, "%s:%d: does not hold: %s\nfor the input \"%s\"\n", file, line, condition,
                 escaped(input).c_str());
    std::abort();
}

std::string_view take_line(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t newline = text.find('\n');
        const std::size_t length = newline == std::string_view::npos ? text.size() : newline + 1;
        lines.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

std::string_view before_nul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

bool are_among(const std::vector<std::string>& lines, const std::vector<std::string>& others) {
    auto other = others.begin();
    for (const std::string& line : lines) {
        while (other != others.end() && *other != line) ++other;
        if (other == others.end()) return false;
        ++other;
    }
    return true;
}

const test::TempDir& directory() {
    static const test::TempDir dir;
    return dir;
}

}  // namespace gw::fuzz
