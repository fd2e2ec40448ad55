// SPDX-License-Identifier: MIT
#include "glyphward-fonts/profile.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>

#include "core/replace_file.h"
#include "fontfiles/unicode_text.h"
#include "glyphward-fonts/ascii_text.h"
#include "texts/messages.h"
#include "texts/reasons.h"

// What the library asserts, it also has errors for; an assertion would keep it from them in a debug build.
#define TOML_ASSERT(expr) static_assert(true)
#include <toml++/toml.h>

namespace gw::fonts {

namespace {

namespace fs = std::filesystem;

/// Reads tables key by key. The first thing that is wrong is thrown, and caught by `read_profile`.
class Reader {
  public:
    Reader(std::string path, AsciiText text) : path_(std::move(path)), text_(std::move(text)) {}

    [[noreturn]] void refuse(const toml::node& node, const std::string& why) const {
        throw ProfileError{path_ + ':' + std::to_string(node.source().begin.line), why};
    }
    std::string text(const toml::node& node, std::string_view key) const {
        const auto* value = node.as_string();
        if (value == nullptr) refuse(node, text_of(Message::SAYS_MUST_BE_TEXT, {key}));
        // No name of a file or font has a NUL byte; it would end there.
        if (value->get().find('\0') != std::string::npos) refuse(node, text_of(Message::SAYS_HAS_NUL, {key}));
        return text_.original(value->get());
    }
    std::vector<std::string> texts(const toml::node& node, std::string_view key) const {
        const toml::array* array = node.as_array();
        if (array == nullptr) refuse(node, text_of(Message::SAYS_MUST_BE_TEXTS, {key}));
        std::vector<std::string> all;
        for (const toml::node& element : *array) all.push_back(text(element, key));
        return all;
    }
    const toml::table& table(const toml::node& node, std::string_view key) const {
        if (const toml::table* value = node.as_table(); value != nullptr) return *value;
        refuse(node, text_of(Message::SAYS_MUST_BE_TABLE, {key}));
    }
    [[noreturn]] void unknown(const toml::node& node, std::string_view key) const {
        refuse(node, text_of(Message::SAYS_NO_SUCH_KEY, {text_.original(key)}));
    }
    /// Files beside the profile, or below. Others are refused: a profile is copied with its directory.
    [[nodiscard]] std::vector<std::string> files(const toml::node& node, std::string_view key) const {
        std::error_code error;
        const fs::path directory = fs::absolute(path_, error).parent_path();
        std::vector<std::string> all;
        for (const std::string& file : texts(node, key)) {
            const fs::path path = fs::path(file).lexically_normal();
            if (path.empty() || path.is_absolute() || *path.begin() == "..")
                refuse(node, '"' + file + "\" is no file beside the profile");
            all.push_back((directory / path).lexically_normal().string());
        }
        return all;
    }

  private:
    std::string path_;
    AsciiText text_;
};

void read_fonts(const Reader& reader, const toml::table& table, Profile& profile) {
    for (const auto& [key, node] : table) {
        if (key == "to") {
            profile.to = reader.text(node, key);
            const bool is_known =
                profile.to == "everyone" || profile.to == "me" || profile.to.starts_with('/');
            if (!is_known) reader.refuse(node, text_of(Message::SAYS_WRONG_TO));
        } else if (key == "files") {
            profile.files = reader.files(node, key);
        } else if (key == "absent") {
            profile.absent = reader.texts(node, key);
        } else {
            reader.unknown(node, key);
        }
    }
}

void read_paths(const Reader& reader, const toml::table& table, Profile& profile) {
    for (const auto& [key, node] : table) {
        const bool is_known = key == "host" || key == "installation" || key == "me" || key == "front";
        if (!is_known) reader.unknown(node, key);
        profile.paths[std::string(key)] = reader.texts(node, key);
    }
}

/// Calls `take` for each table of a list, "[[key]]".
template <class Take>
void each_table(const Reader& reader, const toml::node& node, std::string_view key, const Take& take) {
    const toml::array* array = node.as_array();
    if (array == nullptr) reader.refuse(node, text_of(Message::SAYS_MUST_BE_TABLES, {key, key}));
    for (const toml::node& element : *array) take(reader.table(element, key));
}

Profile::Alias alias_in(const Reader& reader, const toml::table& table) {
    Profile::Alias alias;
    for (const auto& [key, node] : table) {
        if (key == "directory") {
            alias.directory = reader.text(node, key);
        } else if (key == "name") {
            alias.name = reader.text(node, key);
        } else if (key == "font") {
            alias.font = reader.text(node, key);
        } else {
            reader.unknown(node, key);
        }
    }
    if (!alias.directory.empty() && !alias.directory.starts_with('/'))
        reader.refuse(table, text_of(Message::SAYS_WRONG_DIRECTORY));
    if (alias.name.empty() || alias.font.empty()) reader.refuse(table, text_of(Message::SAYS_ALIAS_NEEDS));
    return alias;
}

Profile::Fontset fontset_in(const Reader& reader, const toml::table& table) {
    Profile::Fontset set;
    for (const auto& [key, node] : table) {
        if (key == "locale") {
            set.locale = reader.text(node, key);
        } else if (key == "name") {
            set.name = reader.text(node, key);
        } else if (key == "fonts") {
            set.fonts = reader.texts(node, key);
        } else {
            reader.unknown(node, key);
        }
    }
    if (set.locale.empty() || set.name.empty() || set.fonts.empty())
        reader.refuse(table, text_of(Message::SAYS_FONTSET_NEEDS));
    if (set.locale.find('/') != std::string::npos || set.locale.starts_with('.'))
        reader.refuse(table, text_of(Message::SAYS_WRONG_LOCALE));
    return set;
}

void read_version(const Reader& reader, const toml::node& node) {
    const auto* version = node.as_integer();
    if (version == nullptr || version->get() != PROFILE_VERSION)
        reader.refuse(node, text_of(Message::SAYS_WRONG_VERSION, {std::to_string(PROFILE_VERSION)}));
}

Profile read(const Reader& reader, const toml::table& table) {
    Profile profile;
    if (!table.contains("profile"))
        reader.refuse(table, text_of(Message::SAYS_NO_VERSION, {std::to_string(PROFILE_VERSION)}));
    for (const auto& [key, node] : table) {
        if (key == "profile") {
            read_version(reader, node);
        } else if (key == "fonts") {
            read_fonts(reader, reader.table(node, key), profile);
        } else if (key == "path") {
            read_paths(reader, reader.table(node, key), profile);
        } else if (key == "alias") {
            each_table(reader, node, key,
                       [&](const toml::table& one) { profile.aliases.push_back(alias_in(reader, one)); });
        } else if (key == "fontset") {
            each_table(reader, node, key,
                       [&](const toml::table& one) { profile.fontsets.push_back(fontset_in(reader, one)); });
        } else {
            reader.unknown(node, key);
        }
    }
    return profile;
}

std::string_view without_byte_order_mark(std::string_view text) {
    constexpr std::string_view MARK = "\xEF\xBB\xBF";
    return text.starts_with(MARK) ? text.substr(MARK.size()) : text;
}

/// A dot between keys is a table within a table, and those that lie very deep overrun the stack when they go.
constexpr int MOST_DOTS = 200;

/// What is wrong with a line, if anything is, before it is parsed.
std::optional<std::string> mistake_in(const std::string& line) {
    if (!is_utf8(line)) return text_of(Message::SAYS_NOT_UTF8);
    if (std::count(line.begin(), line.end(), '.') > MOST_DOTS)
        return text_of(Message::SAYS_TOO_MANY_DOTS, {std::to_string(MOST_DOTS)});
    return {};
}

std::optional<ProfileError> mistake_in_lines(const std::string& text, const std::string& path) {
    std::istringstream lines(text);
    int number = 1;
    for (std::string line; std::getline(lines, line); ++number)
        if (const auto mistake = mistake_in(line); mistake)
            return ProfileError{path + ':' + std::to_string(number), *mistake};
    return {};
}

toml::array array_of(const std::vector<std::string>& texts) {
    toml::array array;
    for (const std::string& text : texts) array.push_back(text);
    return array;
}

}  // namespace

std::variant<Profile, ProfileError> read_profile(const std::string& path) {
    const Result<std::string> bytes = read_file(path);
    if (!bytes) return ProfileError{path, reason_in_language(bytes.failure())};
    if (const auto mistake = mistake_in_lines(*bytes, path); mistake) return *mistake;
    const std::optional<AsciiText> text = AsciiText::from(without_byte_order_mark(*bytes));
    if (!text) return ProfileError{path, text_of(Message::SAYS_TOO_MANY_CHARACTERS, {AsciiText::MARKS})};
    try {
        const toml::table table = toml::parse(text->text(), path);
        return read(Reader(path, *text), table);
    } catch (const toml::parse_error& error) {
        return ProfileError{path + ':' + std::to_string(error.source().begin.line),
                            text->original(error.description())};
    } catch (const ProfileError& error) {
        return error;
    }
}

std::string profile_text(const Profile& profile) {
    toml::table fonts{{"to", profile.to}, {"files", array_of(profile.files)}};
    if (!profile.absent.empty()) fonts.insert("absent", array_of(profile.absent));
    toml::table path;
    for (const auto& [whose, elements] : profile.paths) path.insert(whose, array_of(elements));
    toml::array aliases;
    for (const Profile::Alias& alias : profile.aliases) {
        toml::table one{{"name", alias.name}, {"font", alias.font}};
        if (!alias.directory.empty()) one.insert("directory", alias.directory);
        aliases.push_back(one);
    }
    toml::array sets;
    for (const Profile::Fontset& set : profile.fontsets)
        sets.push_back(
            toml::table{{"locale", set.locale}, {"name", set.name}, {"fonts", array_of(set.fonts)}});
    toml::table all{{"profile", PROFILE_VERSION}, {"fonts", fonts}, {"path", path}};
    if (!aliases.empty()) all.insert("alias", aliases);
    if (!sets.empty()) all.insert("fontset", sets);
    std::ostringstream text;
    text << all << '\n';
    return text.str();
}

}  // namespace gw::fonts
