// SPDX-License-Identifier: MIT
//
// Xlib's resource manager parses and holds the attributes. The text is written here, because the manager
// would write it in hash order and not atomically.
#include "platform/config_db.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/replace_file.h"

#include <X11/Xlib.h>
#include <X11/Xresource.h>

namespace {

enum OpenResult { OPENED = 0, NEW_OR_EMPTY = 1, NOT_A_DATABASE = 2 };

struct DatabaseCloser {
    void operator()(XrmDatabase db) const { XrmDestroyDatabase(db); }
};
using Database = std::unique_ptr<std::remove_pointer_t<XrmDatabase>, DatabaseCloser>;

struct OpenDatabase {
    Database attributes;
    std::string original;  // the bytes that were read
    bool changed = false;
};

std::optional<OpenDatabase>& current() {
    static std::optional<OpenDatabase> database;
    return database;
}

/// Replaces characters that the resource manager would read as separators or wildcards.
std::string key_of(std::string_view class_name, std::string_view instance, std::string_view attribute) {
    std::string key;
    for (const std::string_view part : {class_name, instance, attribute}) {
        if (!key.empty()) key += '.';
        for (const char c : part) key += c == '.' || c == '*' || c == '?' || c == ':' ? '_' : c;
    }
    return key;
}

std::string escaped(std::string_view value) {
    std::string text;
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            text += "\\n";
        } else if (c == '\\') {
            text += "\\\\";
        } else if ((c == ' ' || c == '\t') && text.empty()) {
            text += '\\';
            text += c;
        } else if (byte < ' ' || byte > '~') {
            char octal[8];
            std::snprintf(octal, sizeof octal, "\\%03o", byte);
            text += octal;
        } else {
            text += c;
        }
    }
    return text;
}

Bool collect_line(XrmDatabase*, XrmBindingList bindings, XrmQuarkList quarks, XrmRepresentation*,
                  XrmValue* value, XPointer lines) {
    std::string key;
    for (; *quarks != NULLQUARK; ++quarks, ++bindings) {
        if (*bindings == XrmBindLoosely) {
            key += '*';
        } else if (!key.empty()) {
            key += '.';
        }
        key += XrmQuarkToString(*quarks);
    }
    const std::size_t length = value->size > 0 ? value->size - 1 : 0;
    const std::string text = escaped({static_cast<const char*>(value->addr), length});
    // The resource manager passes the caller's vector as a byte pointer.
    auto* collected = reinterpret_cast<std::vector<std::string>*>(lines);
    collected->push_back(key + ":\t" + text + '\n');
    return False;
}

std::vector<std::string> lines_of(const Database& attributes) {
    std::vector<std::string> lines;
    if (!attributes) return lines;
    XrmQuark everything[] = {NULLQUARK};
    XrmEnumerateDatabase(attributes.get(), everything, everything, XrmEnumAllLevels, collect_line,
                         reinterpret_cast<XPointer>(&lines));
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// Whether the text has only blanks and comments.
bool is_blank(std::string_view text) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const std::size_t start = line.find_first_not_of(" \t\r");
        if (start != std::string_view::npos && line[start] != '!') return false;
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return true;
}

/// Removes directives ("#include"), with which the resource manager would read other files.
std::string without_directives(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (!line.starts_with('#')) result.append(line).append("\n");
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return result;
}

}  // namespace

int config_db_open(const char* path, int, int, int, int) {
    current().reset();
    struct stat info = {};
    if (::stat(path, &info) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
        current().emplace();
        return NEW_OR_EMPTY;
    }
    const gw::Result<std::string> bytes = gw::read_file(path);
    // The resource manager stops at a NUL byte, so the next write would lose the rest.
    if (!bytes || bytes->find('\0') != std::string::npos) return NOT_A_DATABASE;
    XrmInitialize();
    Database attributes(XrmGetStringDatabase(without_directives(*bytes).c_str()));
    const bool blank = is_blank(*bytes);
    if (!blank && lines_of(attributes).empty()) return NOT_A_DATABASE;
    current() = OpenDatabase{std::move(attributes), *bytes, false};
    return blank ? NEW_OR_EMPTY : OPENED;
}

char* config_db_get_attribute(const char* class_name, const char* instance, const char* attribute) {
    if (!current() || !current()->attributes) return nullptr;
    const std::string key = key_of(class_name, instance, attribute);
    char* type = nullptr;
    XrmValue value{};
    if (XrmGetResource(current()->attributes.get(), key.c_str(), key.c_str(), &type, &value) == False)
        return nullptr;
    return ::strdup(static_cast<const char*>(value.addr));
}

void config_db_free_attribute(char* value) {
    std::free(value);
}

int config_db_set_attribute(const char* class_name, const char* instance, const char* attribute,
                            const char* value) {
    if (!current()) return 1;
    XrmInitialize();
    XrmDatabase attributes = current()->attributes.release();
    XrmPutStringResource(&attributes, key_of(class_name, instance, attribute).c_str(), value);
    current()->attributes.reset(attributes);
    current()->changed = true;
    return 0;
}

gw::Outcome gw::save_config_db(const std::string& path) {
    if (!current()) return gw::Failure{path, gw::Reason::NOT_A_DATABASE};
    const OpenDatabase database = std::move(*current());
    current().reset();
    // A database that was only probed is written back unchanged, comments included.
    std::string text = database.original;
    if (database.changed) {
        text.clear();
        for (const std::string& line : lines_of(database.attributes)) text += line;
    }
    return gw::replace_file(path, text);
}

int config_db_close(const char* path) {
    if (!current()) return 1;
    if (path != nullptr) return gw::save_config_db(path) ? 0 : 1;
    current().reset();
    return 0;
}
