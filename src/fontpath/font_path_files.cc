// SPDX-License-Identifier: MIT
#include "fontpath/font_path_files.h"

#include <sys/stat.h>

#include <cerrno>
#include <memory>

#include "core/gw_token_string.h"
#include "core/replace_file.h"
#include "core/rights.h"
#include "platform/config_db.h"

namespace gw {

namespace {

constexpr const char* FONT_PATH_CLASS = "XDISPLAY";
constexpr const char* FONT_PATH_INSTANCE = "0";
constexpr const char* FONT_PATH_ATTRIBUTE = "fontpath";
constexpr int OPENED = 0;
constexpr int NEW_OR_EMPTY = 1;

struct AttributeFree {
    void operator()(char* value) const { config_db_free_attribute(value); }
};

int open_config(const std::string& path) {
    return config_db_open(path.c_str(), 0, 1, 0, 0);
}

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool is_name_character(char c) {
    return is_letter(c) || (c >= '0' && c <= '9');
}

/// The length of "$NAME" or "${NAME}" at the beginning of `text`, which begins with '$'; 0 when it is
/// neither.
std::size_t reference_length(std::string_view text) {
    const bool braced = text.size() > 1 && text[1] == '{';
    const std::size_t name = braced ? 2 : 1;
    if (name >= text.size() || !is_letter(text[name])) return 0;
    std::size_t end = name;
    while (end < text.size() && is_name_character(text[end])) ++end;
    if (!braced) return end;
    return end < text.size() && text[end] == '}' ? end + 1 : 0;
}

/// Whether the shell's "echo" would take the beginning of the text for options.
bool begins_with_options(std::string_view text) {
    const std::string_view word = text.substr(0, text.find(' '));
    return word.size() > 1 && word.front() == '-' &&
           word.find_first_not_of("neE", 1) == std::string_view::npos;
}

/// Whether the shell leaves the text unchanged, except for references to variables and a home directory at
/// its beginning.
bool is_inert(std::string_view text) {
    if (text.find(" ~") != std::string_view::npos) return false;
    while (!text.empty()) {
        const char c = text.front();
        const bool plain = is_name_character(c) || static_cast<unsigned char>(c) > 0x7F ||
                           std::string_view("/.,:@%=+-~ ").find(c) != std::string_view::npos;
        const std::size_t length = c == '$' ? reference_length(text) : static_cast<std::size_t>(plain);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

bool append_lines(std::string& text, const ElementList& list) {
    for (const GW_STRING* s : list) {
        const std::optional<std::string> line = vtfontpath_line(s->get_str());
        if (!line) return false;
        text.append(*line).append("\n");
    }
    return true;
}

}  // namespace

void list_insert(ElementList& list, int pos, const GW_STRING* s) {
    auto* copy = new GW_STRING(s);
    if (pos != -1 && pos < list.get_count()) {
        list.insert_after_pos(pos, copy);
    } else {
        list.append(copy);
    }
}

std::unique_ptr<GW_STRING> list_delete(ElementList& list, int pos) {
    return std::unique_ptr<GW_STRING>(list.zap_elem_at_pos(pos == -1 ? list.get_count() : pos));
}

void list_replace(ElementList& list, const ElementList& source) {
    ElementList copies;
    for (const GW_STRING* s : source) copies.append(new GW_STRING(s));
    delete_elements(list);
    for (GW_STRING* s : copies) list.append(s);
}

void split_fpe_string(ElementList& list, const char* value) {
    GW_TOKEN_STRING elements(value);
    for (const char* token = elements.get_first_token(","); token != nullptr;
         token = elements.get_next_token(",")) {
        list.append(new GW_STRING(token));
    }
}

std::optional<std::string> create_fpe_string(const ElementList& list) {
    std::optional<std::string> value;
    for (const GW_STRING* s : list) value = value ? *value + ',' + s->get_str() : std::string(s->get_str());
    return value;
}

std::optional<std::string> vtfontpath_line(std::string_view element) {
    if (element.empty() || element.front() == ' ' || element.back() == ' ' ||
        element.find("  ") != std::string_view::npos ||
        element.find_first_of("\n\t\\") != std::string_view::npos || begins_with_options(element)) {
        return std::nullopt;
    }
    if (is_inert(element)) return std::string(element);
    std::string quoted = "'";
    for (const char c : element) {
        // `read` removes one of the two backslashes. The other one keeps the shell from taking a word of the
        // line for a pattern of file names, which it looks for before it looks for quotes.
        const bool is_special = std::string_view("'*?[").find(c) != std::string_view::npos;
        quoted += is_special ? std::string(R"('\\)") + c + '\'' : std::string(1, c);
    }
    return quoted + '\'';
}

bool fits_vtfontpath(const ElementList& list) {
    std::string text;
    return append_lines(text, list);
}

std::optional<std::string> vtfontpath_text(const ElementList& append_list, const ElementList& prepend_list) {
    std::string text;
    if (!append_lines(text, append_list)) return std::nullopt;
    if (!prepend_list.is_empty()) text += '\n';
    if (!append_lines(text, prepend_list)) return std::nullopt;
    return text;
}

Outcome read_config_font_path(const std::string& path, ElementList& list, const char* fallback) {
    const int opened = open_config(path);
    if (opened == OPENED) {
        const std::unique_ptr<char, AttributeFree> value(
            config_db_get_attribute(FONT_PATH_CLASS, FONT_PATH_INSTANCE, FONT_PATH_ATTRIBUTE));
        if (const char* text = value ? value.get() : fallback; text != nullptr) split_fpe_string(list, text);
    }
    config_db_close(nullptr);
    if (opened == OPENED || opened == NEW_OR_EMPTY) return done();
    const Result<std::string> bytes = read_file(path);
    // Something that is no file has no font path that could be lost, and cannot be written anyway.
    const bool is_lost =
        !bytes && bytes.failure().reason == Reason::SYSTEM && bytes.failure().error != EISDIR;
    return is_lost ? Outcome(bytes.failure()) : done();
}

Outcome write_to_vtconfig(const std::string& path, const char* value) {
    const int opened = open_config(path);
    if (opened != OPENED && opened != NEW_OR_EMPTY) {
        config_db_close(nullptr);
        const Result<std::string> bytes = read_file(path);
        return bytes ? Failure{path, Reason::NOT_A_DATABASE} : bytes.failure();
    }
    if (value != nullptr)
        config_db_set_attribute(FONT_PATH_CLASS, FONT_PATH_INSTANCE, FONT_PATH_ATTRIBUTE, value);
    return save_config_db(path);
}

Outcome insert_and_write_to_vtconfig(ElementList& list, int pos, const GW_STRING* element,
                                     const std::string& path) {
    const bool at_end = pos == -1 || pos >= list.get_count();
    list_insert(list, pos, element);
    Outcome written = write_to_vtconfig(path, create_fpe_string(list)->c_str());
    if (!written) list_delete(list, at_end ? -1 : pos + 1);
    return written;
}

Outcome delete_and_write_to_vtconfig(ElementList& list, int pos, const std::string& path) {
    const int position = pos == -1 ? list.get_count() : pos;
    const std::unique_ptr<GW_STRING> removed = list_delete(list, position);
    if (!removed) return Failure{path, Reason::NO_SUCH_ELEMENT};
    Outcome written = write_to_vtconfig(path, create_fpe_string(list).value_or("").c_str());
    if (!written) list_insert(list, position - 1, removed.get());
    return written;
}

FileStamp stamp_of(const std::string& path) {
    constexpr std::int64_t NANOSECONDS = 1000000000;
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) return {};
    return {info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec * NANOSECONDS + info.st_mtim.tv_nsec};
}

bool writable_by_uid(const std::string& path, uid_t uid) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) return false;
    return is_writeable_by(info.st_uid, info.st_mode, uid);
}

bool file_exists(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0;
}

}  // namespace gw
