// SPDX-License-Identifier: MIT
#include "platform/shell_command.h"

#include <algorithm>
#include <cstdlib>

namespace gw {

namespace {

bool is_plain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           std::string_view("_./+,:@%=-").find(c) != std::string_view::npos;
}

}  // namespace

std::string shell_quoted(std::string_view argument) {
    if (!argument.empty() && std::all_of(argument.begin(), argument.end(), is_plain))
        return std::string(argument);
    std::string quoted = "'";
    for (const char c : argument) {
        if (c == '\'') {
            quoted += R"('\'')";
        } else {
            quoted += c;
        }
    }
    return quoted + '\'';
}

std::string shell_text(std::string_view format, std::initializer_list<std::string_view> arguments) {
    std::string text;
    const auto* next = arguments.begin();
    for (;;) {
        const std::size_t place = format.find("%s");
        text += format.substr(0, place);
        if (place == std::string_view::npos) return text;
        text += shell_quoted(next != arguments.end() ? *next++ : std::string_view());
        format.remove_prefix(place + 2);
    }
}

int run_shell(std::string_view format, std::initializer_list<std::string_view> arguments) {
    return std::system(shell_text(format, arguments).c_str());
}

}  // namespace gw
