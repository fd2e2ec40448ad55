// SPDX-License-Identifier: MIT
#include "core/text.h"

#include <algorithm>
#include <cstring>

namespace gw {

namespace {

char ascii_upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::size_t copy_text(char* dst, std::size_t capacity, std::string_view src) {
    if (capacity == 0) return 0;
    const std::size_t length = std::min(src.size(), capacity - 1);
    std::memcpy(dst, src.data(), length);
    dst[length] = '\0';
    return length;
}

std::string truncated(std::string_view text, std::size_t limit) {
    return std::string(text.substr(0, limit));
}

std::string with_trailing_slash(std::string_view text) {
    std::string result(text);
    if (!result.ends_with('/')) result += '/';
    return result;
}

std::string_view without_trailing_slashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return path;
}

std::string capitalized(std::string_view text) {
    std::string result(text);
    if (!result.empty()) result[0] = ascii_upper(result[0]);
    return result;
}

std::string capitalized_words(std::string_view text) {
    std::string result(text);
    bool begins = true;
    for (char& c : result) {
        if (begins) c = ascii_upper(c);
        begins = c == ' ';
    }
    return result;
}

std::string lower_case(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), ascii_lower);
    return result;
}

std::string font_extension(std::string_view name) {
    std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) return "";
    const std::string last = lower_case(name.substr(dot));
    const bool is_compressed = last == ".gz" || last == ".z";
    const std::size_t inner = is_compressed && dot > 0 ? name.rfind('.', dot - 1) : std::string_view::npos;
    if (inner != std::string_view::npos) dot = inner;
    std::string extension = lower_case(name.substr(dot));
    if (extension.ends_with(".z")) extension.back() = 'Z';
    return extension;
}

std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

std::string filled(std::string text, const std::vector<std::string>& words) {
    std::size_t from = 0;
    for (const std::string& word : words) {
        const std::size_t place = text.find("%s", from);
        if (place == std::string::npos) break;
        text.replace(place, 2, word);
        from = place + word.size();
    }
    return text;
}

std::string escaped(std::string_view text) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= ' ' && byte != 0x7F) {
            result += c;
        } else {
            result.append("\\x").append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 0xFU]);
        }
    }
    return result;
}

}  // namespace gw
