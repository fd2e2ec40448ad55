// SPDX-License-Identifier: MIT
//
// A file that comes into being whole or not at all. Its bytes go to a hidden temporary file in the same
// directory, which takes the name over when all of them are written; what bore the name until then is kept
// aside until the caller has done everything else and says so.
#pragma once

#include <string>
#include <string_view>

namespace gw {

/// The name under which a file in the making, or one that is set aside, stands beside the file at `path`:
/// hidden, and the same every time, so that what an interrupted run left behind is found and replaced.
std::string hidden_name(const std::string& path, const char* suffix);

/// Keeps the file at `path` under the other name of the same file system, by a second link or, where links
/// are not to be had, by a move. False, with `errno` set, when neither can be done.
[[nodiscard]] bool set_aside(const std::string& path, const std::string& other_name);

class NewFile {
  public:
    /// Begins the file that is to stand at `path`. A file that is there already and may not be written, or is
    /// no file, is not replaced; `error` then says why.
    explicit NewFile(const std::string& path);
    /// Takes back what was not kept.
    ~NewFile();
    NewFile(NewFile&& other) noexcept;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    /// Appends bytes. After a failure everything that follows fails too.
    bool write(std::string_view bytes);
    /// Writes out what is pending and gives the file the permissions 0644 and, where the system allows it,
    /// the owner of the one that it replaces. False when it is not whole.
    [[nodiscard]] bool finish();
    /// Gives the finished file its name; what stood there is kept aside.
    [[nodiscard]] bool put_in_place();
    /// Makes it final. Without this the destructor puts everything back as it was.
    void keep();

    /// The `errno` of the first failure; 0 when there was none.
    [[nodiscard]] int error() const { return failure; }
    [[nodiscard]] const std::string& get_path() const { return path; }
    /// Whether the finished file, not yet in place, replaces one of other content.
    [[nodiscard]] bool changes_a_file() const;

  private:
    enum class State { BEGUN, IN_PLACE, OVER };

    bool fail();
    void close();

    std::string path;
    std::string temporary;
    std::string old_file;
    int fd = -1;
    int failure = 0;
    bool replaces = false;
    State state = State::BEGUN;
};

}  // namespace gw
