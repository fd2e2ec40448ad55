// SPDX-License-Identifier: MIT
//
// The resources that are found, by section and name: each name once, in the order of their bytes, so that the
// same files always make the same index.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace gw::psres {

class ResourceSet {
  public:
    /// Adds a resource whose file stands at the absolute `path`. When the section has the name already, that
    /// one stays. Returns the file of the one that is now there; empty for one without a file.
    const std::string& add_file(const std::string& section, const std::string& name, const std::string& path);
    [[nodiscard]] bool has(const std::string& section, const std::string& name) const;
    /// Adds an entry that is no file, by its line with its quoting. An earlier one of that name stays.
    void add_line(const std::string& section, const std::string& name, const std::string& line);

    /// The bytes of the resource file. Files below `directory`, an absolute path without a slash at its end,
    /// are written relative to it where a directory line can hold it; when it is empty, none is.
    [[nodiscard]] std::string text(const std::string& directory, bool exclusive) const;

  private:
    struct Resource {
        std::string path;
        std::string line;
    };
    using Resources = std::map<std::string, Resource>;
    std::map<std::string, Resources> sections;
};

/// `path` as it is below `directory`; empty when it is not.
[[nodiscard]] std::string_view relative_to(std::string_view path, std::string_view directory);

}  // namespace gw::psres
