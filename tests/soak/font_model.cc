// SPDX-License-Identifier: MIT
#include "soak/font_model.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace gw::soak {

namespace fs = std::filesystem;

namespace {

/// What a font directory may have beside fonts.
const std::set<std::string> OTHER_FILES = {"fonts.dir",   "fonts.scale", "fonts.alias",
                                           "glyphwd.upr", "afm",         ".glyphward"};

/// What is left of a change in our own directory.
std::vector<std::string> leftovers_in(const std::string& path) {
    std::vector<std::string> found;
    for (const char* name : {"new", "old"}) {
        std::error_code missing;
        for (const auto& entry : fs::directory_iterator(path + ".glyphward/" + name, missing))
            found.push_back(entry.path().string() + " is left of a change");
    }
    if (fs::exists(path + ".glyphward/journal")) found.push_back(path + " has a journal");
    return found;
}

std::string difference_of_index(const std::string& path, const std::set<std::string>& expected) {
    const std::string text = bytes_of(path + "fonts.dir");
    std::vector<std::string> lines = lines_of(text);
    if (lines.empty() || lines[0] != std::to_string(lines.size() - 1))
        return path + " has an index with a wrong count:\n" + text;
    lines.erase(lines.begin());
    const std::set<std::string> found(lines.begin(), lines.end());
    if (found.size() == lines.size() && found == expected) return "";
    std::string all;
    for (const std::string& line : expected) all += line + '\n';
    return path + " has this index:\n" + text + "and should have these lines:\n" + all;
}

}  // namespace

bool is_outline(const Font& font) {
    return font.file.ends_with(".pfa");
}

std::string bytes_of(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

FontModel::FontModel(std::vector<std::string> directories, bool exact) : exact_(exact) {
    for (std::string& path : directories) directories_[std::move(path)];
}

FontModel::Answer FontModel::install(const Font& font, const std::string& directory) {
    if (has(font.xlfd)) return Answer::CONFLICT;
    const bool is_new = directories_.at(directory).try_emplace(font.file, font).second;
    return is_new ? Answer::INSTALLED : Answer::REFUSED;
}

bool FontModel::replace(const Font& font, const std::string& directory) {
    const auto before = directories_;
    for (auto& [path, fonts] : directories_)
        std::erase_if(fonts, [&](const auto& entry) { return entry.second.xlfd == font.xlfd; });
    if (install(font, directory) == Answer::INSTALLED) return true;
    directories_ = before;
    return false;
}

void FontModel::remove(const std::string& shown) {
    for (auto& [path, fonts] : directories_)
        std::erase_if(fonts, [&](const auto& entry) { return entry.second.shown == shown; });
}

std::vector<std::string> FontModel::shown() const {
    std::set<std::string> names;
    for (const auto& [path, fonts] : directories_) {
        for (const auto& [file, font] : fonts) names.insert(font.shown);
    }
    return {names.begin(), names.end()};
}

bool FontModel::has(const std::string& xlfd) const {
    for (const auto& [path, fonts] : directories_) {
        for (const auto& [file, font] : fonts) {
            if (font.xlfd == xlfd) return true;
        }
    }
    return false;
}

std::vector<std::string> FontModel::bitmaps() const {
    std::vector<std::string> names;
    for (const auto& [path, fonts] : directories_) {
        for (const auto& [file, font] : fonts) {
            if (!is_outline(font)) names.push_back(font.xlfd);
        }
    }
    return names;
}

std::string FontModel::installed_bytes(const Font& font) const {
    return is_outline(font) && !exact_ ? font.bytes + '\0' : font.bytes;
}

std::vector<std::string> FontModel::differences() const {
    std::vector<std::string> all;
    for (const auto& [path, expected] : directories_) {
        const std::vector<std::string> found = differences_in(path, expected);
        all.insert(all.end(), found.begin(), found.end());
    }
    return all;
}

std::vector<std::string> FontModel::differences_in(const std::string& path, const Directory& expected) const {
    std::vector<std::string> found = leftovers_in(path);
    std::set<std::string> lines;
    for (const auto& [file, font] : expected) {
        for (const std::string& name : font.names) lines.insert(file + ' ' + name);
        if (font.names.empty()) lines.insert(file + ' ' + font.xlfd);
        if (bytes_of(path + file) != installed_bytes(font)) found.push_back(path + file + " is not the font");
    }
    for (const auto& entry : fs::directory_iterator(path)) {
        const std::string name = entry.path().filename();
        if (!expected.contains(name) && !OTHER_FILES.contains(name))
            found.push_back(path + name + " is in nobody's index");
    }
    if (const std::string index = difference_of_index(path, lines); !index.empty()) found.push_back(index);
    return found;
}

}  // namespace gw::soak
