// SPDX-License-Identifier: MIT
#include "core/uri_list.h"

#include <unistd.h>

#include <climits>
#include <unordered_set>

#include "core/text.h"

namespace gw {

namespace {

constexpr std::string_view SCHEME = "file:";
constexpr std::string_view AUTHORITY = "//";

/// The value of a hexadecimal digit; -1 for anything else.
int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::optional<std::string> decoded(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char byte = text[i];
        if (byte == '%') {
            if (text.size() - i < 3) return std::nullopt;
            const int high = digit(text[i + 1]);
            const int low = digit(text[i + 2]);
            if (high < 0 || low < 0) return std::nullopt;
            byte = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (byte == '\0') return std::nullopt;
        bytes += byte;
    }
    return bytes;
}

bool is_this_machine(std::string_view name, std::string_view host) {
    if (name.empty()) return true;
    const std::string in_lower_case = lower_case(name);
    return in_lower_case == "localhost" || in_lower_case == lower_case(host);
}

}  // namespace

std::optional<std::string> path_of_uri(std::string_view uri, std::string_view host) {
    if (lower_case(uri.substr(0, SCHEME.size())) != SCHEME) return std::nullopt;
    uri.remove_prefix(SCHEME.size());
    if (uri.starts_with(AUTHORITY)) {
        uri.remove_prefix(AUTHORITY.size());
        const std::size_t slash = uri.find('/');
        if (slash == std::string_view::npos || !is_this_machine(uri.substr(0, slash), host))
            return std::nullopt;
        uri.remove_prefix(slash);
    }
    // Each byte takes three characters at most. What is longer need not be decoded.
    if (!uri.starts_with('/') || uri.size() / 3 >= PATH_MAX) return std::nullopt;
    std::optional<std::string> path = decoded(uri);
    if (path && path->size() >= PATH_MAX) return std::nullopt;
    return path;
}

std::string uri_of_path(std::string_view path) {
    static constexpr std::string_view PLAIN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/-._~";
    static constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char byte : path) {
        if (PLAIN.find(byte) != std::string_view::npos) {
            uri += byte;
        } else {
            const auto number = static_cast<unsigned char>(byte);
            uri += '%';
            uri += DIGITS[number / 16U];
            uri += DIGITS[number % 16U];
        }
    }
    return uri;
}

UriList read_uri_list(std::string_view text, std::string_view host) {
    UriList list;
    std::unordered_set<std::string> known;
    for (std::string_view line : lines_of(text)) {
        while (line.ends_with('\r') || line.ends_with('\0')) line.remove_suffix(1);
        if (line.empty() || line.starts_with('#')) continue;
        if (std::optional<std::string> path = path_of_uri(line, host)) {
            if (known.insert(*path).second) list.paths.push_back(std::move(*path));
        } else {
            list.refused.emplace_back(line);
        }
    }
    return list;
}

std::string host_name() {
    char name[HOST_NAME_MAX + 1] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

}  // namespace gw
