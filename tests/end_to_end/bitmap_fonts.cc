// SPDX-License-Identifier: MIT
#include "end_to_end/bitmap_fonts.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "support/temp_dir.h"

namespace gw::e2e {

namespace {

constexpr const char* STAGED = "/usr/vantor/lib/X11/fonts/75dpi/";
constexpr std::string_view STAGED_FAMILY = "Helvetica";

std::string two_digits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string in_small_letters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

// The file stores names with their length, so the new name must be as long as the old one.
std::string BitmapFont::bytes() const {
    if (family.size() != STAGED_FAMILY.size()) throw std::invalid_argument("nine letters: " + family);
    std::string all =
        gw::test::TempDir::read_bytes(STAGED + ("helvR" + two_digits(points)) + "-ISO8859-1.pcf");
    if (all.empty()) throw std::runtime_error("no staged font of that size");
    for (std::size_t at = 0; (at = all.find(STAGED_FAMILY, at)) != std::string::npos; at += family.size())
        all.replace(at, family.size(), family);
    return all;
}

std::string BitmapFont::xlfd() const {
    return "-adobe-" + in_small_letters(family) + "-medium-r-normal--*-" + std::to_string(points * 10) +
           "-75-75-p-*-iso8859-1";
}

std::string BitmapFont::file_name() const {
    return in_small_letters(family) + two_digits(points) + ".pcf";
}

std::string BitmapFont::write_to(const std::string& dir) const {
    std::filesystem::create_directories(dir);
    std::string path = (std::filesystem::path(dir) / file_name()).string();
    std::ofstream(path, std::ios::binary) << bytes();
    return path;
}

void index_fonts(const std::string& dir) {
    if (std::system(("mkfontdir '" + dir + "'").c_str()) != 0)
        throw std::runtime_error("mkfontdir fails in " + dir);
}

}  // namespace gw::e2e
