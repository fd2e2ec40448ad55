// SPDX-License-Identifier: MIT
#include "end_to_end/outline_font.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "support/temp_dir.h"

namespace gw::e2e {

namespace {

const std::string STAGED = "/usr/vantor/lib/X11/fonts/Type1/c0648bt_";
constexpr const char* STAGED_FAMILY = "Bitstream Charter";
constexpr const char* STAGED_NAME = "CharterBT-Roman";
constexpr std::size_t SEGMENT_HEADER = 6;
constexpr char BINARY_SEGMENT = 2;
constexpr char LAST_SEGMENT = 3;

void replace_all(std::string& text, std::string_view old, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += by.size())
        text.replace(at, old.size(), by);
}

std::string in_hexadecimal(std::string_view bytes) {
    static constexpr const char* DIGITS = "0123456789abcdef";
    static constexpr std::size_t BYTES_IN_LINE = 32;
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += {DIGITS[byte >> 4], DIGITS[byte & 0xF]};
        if (i % BYTES_IN_LINE == BYTES_IN_LINE - 1) text += '\n';
    }
    return text + '\n';
}

/// Converts .pfb to .pfa. Each segment begins with 128, its kind, and its length with the lowest byte first.
std::string as_text(std::string_view pfb) {
    std::string text;
    while (pfb.size() >= SEGMENT_HEADER && pfb[1] != LAST_SEGMENT) {
        std::size_t length = 0;
        for (std::size_t i = SEGMENT_HEADER; i-- > 2;)
            length = length << 8 | static_cast<unsigned char>(pfb[i]);
        std::string content(pfb.substr(SEGMENT_HEADER, length));
        if (pfb[1] == BINARY_SEGMENT) {
            text += in_hexadecimal(content);
        } else {
            std::replace(content.begin(), content.end(), '\r', '\n');
            text += content;
        }
        pfb.remove_prefix(std::min(SEGMENT_HEADER + length, pfb.size()));
    }
    return text;
}

std::string in_small_letters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

}  // namespace

std::string OutlineFont::file_name() const {
    return in_small_letters(family) + ".pfa";
}

std::string OutlineFont::metrics_file_name() const {
    return in_small_letters(family) + ".afm";
}

std::string OutlineFont::postscript_name() const {
    return family + "-Roman";
}

std::string OutlineFont::index_line() const {
    return file_name() + " -bitstream-" + in_small_letters(family) +
           "-medium-r-normal--0-0-0-0-p-0-iso8859-1\n";
}

void OutlineFont::write_to(const std::string& dir) const {
    std::filesystem::create_directories(dir);
    std::string outline = as_text(gw::test::TempDir::read_bytes(STAGED + ".pfb"));
    std::string metrics = gw::test::TempDir::read_bytes(STAGED + ".afm");
    if (outline.empty() || metrics.empty()) throw std::runtime_error("no staged outline font " + STAGED);
    for (std::string* text : {&outline, &metrics}) {
        replace_all(*text, STAGED_FAMILY, family);
        replace_all(*text, STAGED_NAME, postscript_name());
    }
    const std::filesystem::path target(dir);
    std::ofstream(target / file_name(), std::ios::binary) << outline;
    std::ofstream(target / metrics_file_name(), std::ios::binary) << metrics;
}

}  // namespace gw::e2e
