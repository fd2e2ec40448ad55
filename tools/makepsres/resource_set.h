// SPDX-License-Identifier: MIT
//
// The resources found, by section and name. Each name is there once, and names are sorted by their bytes, so
// that the same files always give the same index.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace gw::psres {

class ResourceSet {
  public:
    /// Adds a resource whose file is at the absolute `path`. When the section has this name already, the
    /// older entry stays. Returns the file of the entry that is now in the set; empty for an entry without a
    /// file.
    const std::string& add_file(const std::string& section, const std::string& name, const std::string& path);
    [[nodiscard]] bool has(const std::string& section, const std::string& name) const;
    /// Adds an entry without a file, given as its quoted line. An older entry of that name stays.
    void add_line(const std::string& section, const std::string& name, const std::string& line);

    /// The bytes of the resource file. `directory` is an absolute path without a slash at its end, or empty.
    /// Files below it are written relative to it, if it fits into a directory line.
    [[nodiscard]] std::string text(const std::string& directory, bool exclusive) const;

  private:
    struct Resource {
        std::string path;
        std::string line;
    };
    using Resources = std::map<std::string, Resource>;
    std::map<std::string, Resources> sections;
};

/// `path` relative to `directory`; empty when it is not below it.
[[nodiscard]] std::string_view relative_to(std::string_view path, std::string_view directory);

}  // namespace gw::psres
