// SPDX-License-Identifier: MIT
#include "app/font_path/added_element.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "app/font_path/element_views.h"
#include "fontpath/font_path_files.h"
#include "fontpath/path_element.h"
#include "texts/messages.h"

namespace gw {

namespace {

constexpr std::size_t LONGEST_ELEMENT = 255;  // the X protocol has one byte for the length

/// Whether this is for the server only: a font server, a catalogue, or the fonts that are built in.
bool is_for_server(const std::string& element) {
    return element == "built-ins" || (!element.starts_with('/') && element.find(':') != std::string::npos);
}

std::string why_no_directory(const std::string& directory) {
    if (is_silent(directory)) return text_of(Message::REASON_SILENT);
    struct stat info = {};
    if (::stat(directory.c_str(), &info) == 0) {
        return S_ISDIR(info.st_mode) ? "" : text_of(Message::ADD_NO_DIRECTORY, {directory});
    }
    if (errno == ENOENT || errno == ENOTDIR) return text_of(Message::ADD_NO_DIRECTORY, {directory});
    // The server may see what this user may not see.
    return errno == EACCES ? "" : std::string(std::strerror(errno));
}

std::string why_a_duplicate(const std::string& element, const EditedPath& path) {
    const ElementIdentity added = identity_of_element(element);
    for (const std::string& there : path.configured()) {
        if (identity_of_element(there) == added) return text_of(Message::ADD_DUPLICATE, {there});
    }
    return "";
}

}  // namespace

std::string why_not_added(const std::string& element, const EditedPath& path, Origin origin) {
    if (element.empty()) return text_of(Message::ADD_NOTHING);
    if (element.find(',') != std::string::npos) return text_of(Message::REASON_COMMA_IN_NAME);
    if (element.size() > LONGEST_ELEMENT) return text_of(Message::ADD_TOO_LONG);
    if (!element.starts_with('/') && !is_for_server(element)) return text_of(Message::ADD_NOT_ABSOLUTE);
    if (origin != Origin::EDITED && !vtfontpath_line(element))
        return text_of(Message::REASON_NAME_UNFIT_FOR_PATH);
    find_newly_silent(path.configured());
    if (const std::string directory = place_of_element(element); !directory.empty()) {
        (void)find_silent({directory});
        if (std::string why = why_no_directory(directory); !why.empty()) return why;
    }
    return why_a_duplicate(element, path);
}

}  // namespace gw
