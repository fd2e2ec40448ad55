// SPDX-License-Identifier: MIT
#include "makepsres/resource_set.h"

#include "makepsres/resource_file.h"

namespace gw::psres {

const std::string& ResourceSet::add_file(const std::string& section, const std::string& name,
                                         const std::string& path) {
    return sections[section].try_emplace(name, Resource{path, {}}).first->second.path;
}

bool ResourceSet::has(const std::string& section, const std::string& name) const {
    const auto found = sections.find(section);
    return found != sections.end() && found->second.contains(name);
}

void ResourceSet::add_line(const std::string& section, const std::string& name, const std::string& line) {
    sections[section].try_emplace(name, Resource{{}, line});
}

std::string_view relative_to(std::string_view path, std::string_view directory) {
    if (directory.empty() || !path.starts_with(directory)) return {};
    path.remove_prefix(directory.size());
    if (directory == "/") return path;
    return path.starts_with('/') ? path.substr(1) : std::string_view();
}

std::string ResourceSet::text(const std::string& directory, bool exclusive) const {
    static constexpr const char* END = ".\n";
    const auto directory_line = directory.empty() ? std::nullopt : written_directory_line(directory);
    bool is_needed = false;
    std::string list;
    std::string body;
    for (const auto& [section, resources] : sections) {
        const std::string header = written_line(quoted(section));
        list += header;
        body += header;
        for (const auto& [name, resource] : resources) {
            if (resource.path.empty()) {
                body += written_line(resource.line);
                continue;
            }
            const std::string_view relative =
                directory_line ? relative_to(resource.path, directory) : std::string_view();
            is_needed = is_needed || !relative.empty();
            body += written_line(quoted(name) +
                                 (relative.empty() ? "==" + quoted(resource.path) : '=' + quoted(relative)));
        }
        body += END;
    }
    std::string result = exclusive ? "PS-Resources-Exclusive-1.0\n" : "PS-Resources-1.0\n";
    result += list + END;
    if (is_needed) result += *directory_line;
    return result + body;
}

}  // namespace gw::psres
