// SPDX-License-Identifier: MIT
#include "platform/shell_command.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "core/text.h"

namespace gw {

namespace {

bool is_plain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           std::string_view("_./+,:@%=-").find(c) != std::string_view::npos;
}

std::string default_command_path() {
    std::string path(::confstr(_CS_PATH, nullptr, 0), '\0');
    ::confstr(_CS_PATH, path.data(), path.size());
    while (path.ends_with('\0')) path.pop_back();
    return path;
}

bool names_dir(std::string_view path, std::string_view dir) {
    for (;;) {
        const std::string_view element = path.substr(0, path.find(':'));
        if (without_trailing_slashes(element) == dir) return true;
        if (element.size() == path.size()) return false;
        path.remove_prefix(element.size() + 1);
    }
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

void add_command_dir(std::string_view dir) {
    const char* set = std::getenv("PATH");
    std::string path = set != nullptr && *set != '\0' ? set : default_command_path();
    if (names_dir(path, dir)) return;
    (path += ':') += dir;
    ::setenv("PATH", path.c_str(), 1);
}

int run_shell(std::string_view format, std::initializer_list<std::string_view> arguments) {
    return std::system(shell_text(format, arguments).c_str());
}

}  // namespace gw
