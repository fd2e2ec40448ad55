// SPDX-License-Identifier: MIT
//
// A file that appears complete or not at all. Its bytes go to a hidden temporary file in the same directory,
// which is renamed when all of them are written. The old file of that name is set aside until the caller says
// that everything else is done.
#pragma once

#include <string>

#include "core/failure.h"
#include "core/file_writer.h"

namespace gw {

/// The hidden name, beside the file at `path`, of a file that is being made or was set aside. It is the same
/// every time, so that the file of an interrupted run is found and replaced.
std::string hidden_name(const std::string& path, const char* suffix);

/// Keeps the file at `path` under another name on the same file system: as a second link, or by renaming
/// where links are not possible.
Outcome set_aside(const std::string& path, const std::string& other_name);

class NewFile : public FileWriter {
  public:
    /// Begins the new file for `path`. An existing file that may not be written, or a directory, is not
    /// replaced; `outcome` then says why. The new file gets the owner of the one that it replaces, where the
    /// system allows it.
    explicit NewFile(const std::string& path);
    /// Undoes everything unless `keep` was called.
    ~NewFile();
    NewFile(NewFile&& other) noexcept;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    /// Gives the finished file its name; an old file of that name is set aside.
    Outcome put_in_place();
    /// Makes the new file final. Without this the destructor restores the old state.
    void keep();

  private:
    enum class State { BEGUN, IN_PLACE, OVER };

    std::string temporary;
    std::string old_file;
    bool replaces = false;
    State state = State::BEGUN;
};

}  // namespace gw
