// SPDX-License-Identifier: MIT
//
// Texts in the character sets of locales.
#pragma once

#include <iconv.h>

#include <string>
#include <string_view>

namespace gw::test {

/// Converts a text from UTF-8 to another character set. Empty when that set cannot express the text or does
/// not exist.
inline std::string converted(std::string_view text, const std::string& charset) {
    const iconv_t descriptor = ::iconv_open(charset.c_str(), "UTF-8");
    if (descriptor == reinterpret_cast<iconv_t>(-1)) return "";
    std::string in(text);
    std::string result(4 * in.size() + 16, '\0');
    char* from = in.data();
    char* to = result.data();
    std::size_t from_left = in.size();
    std::size_t to_left = result.size();
    const bool done = ::iconv(descriptor, &from, &from_left, &to, &to_left) == 0;
    ::iconv_close(descriptor);
    return done ? result.substr(0, result.size() - to_left) : "";
}

}  // namespace gw::test
