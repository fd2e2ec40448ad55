// SPDX-License-Identifier: MIT
//
// A file that appears complete or not at all. Its bytes go to a hidden temporary file in the same directory,
// which is renamed when all of them are written. The old file of that name is set aside until the caller says
// that everything else is done.
#pragma once

#include <string>
#include <string_view>

#include "core/failure.h"

namespace gw {

/// The hidden name, beside the file at `path`, of a file that is being made or was set aside. It is the same
/// every time, so that the file of an interrupted run is found and replaced.
std::string hidden_name(const std::string& path, const char* suffix);

/// Keeps the file at `path` under another name on the same file system: as a second link, or by renaming
/// where links are not possible.
Outcome set_aside(const std::string& path, const std::string& other_name);

class NewFile {
  public:
    /// Begins the new file for `path`. An existing file that may not be written, or a directory, is not
    /// replaced; `outcome` then says why.
    explicit NewFile(const std::string& path);
    /// Undoes everything unless `keep` was called.
    ~NewFile();
    NewFile(NewFile&& other) noexcept;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    // After a failure all further calls fail for the same reason.

    /// Appends bytes; false when that failed.
    bool write(std::string_view bytes);
    /// Writes the file to the disk, and gives it the permissions 0644 and, where the system allows it, the
    /// owner of the file that it replaces. A failure when the file is not complete.
    Outcome finish();
    /// Gives the finished file its name; an old file of that name is set aside.
    Outcome put_in_place();
    /// Makes the new file final. Without this the destructor restores the old state.
    void keep();

    /// The first failure, or a success when there was none so far.
    [[nodiscard]] Outcome outcome() const;
    [[nodiscard]] const std::string& get_path() const { return path; }
    /// Whether the finished file, which is not in place yet, will replace a file with other content.
    [[nodiscard]] bool changes_a_file() const;

  private:
    enum class State { BEGUN, IN_PLACE, OVER };

    bool fail(int error);
    void close();

    std::string path;
    std::string temporary;
    std::string old_file;
    int fd = -1;
    int failure = 0;  // the `errno` of the first failure
    bool replaces = false;
    State state = State::BEGUN;
};

}  // namespace gw
