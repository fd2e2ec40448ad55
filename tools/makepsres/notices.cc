// SPDX-License-Identifier: MIT
#include "makepsres/notices.h"

#include <algorithm>

namespace gw::psres {

namespace {

constexpr unsigned char DELETE = 0x7F;

bool is_control(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code < ' ' || code == DELETE;
}

}  // namespace

std::string one_line(std::string_view text) {
    std::string line(text);
    std::replace_if(line.begin(), line.end(), is_control, '?');
    return line;
}

void Notices::skipped(std::string_view path, std::string_view reason) {
    if (!quiet) say(path, reason);
}

void Notices::failed(std::string_view path, std::string_view reason) {
    say(path, reason);
}

void Notices::say(std::string_view path, std::string_view reason) {
    out << "makepsres: " << one_line(path) << ": " << one_line(reason) << '\n';
}

}  // namespace gw::psres
