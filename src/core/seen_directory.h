// SPDX-License-Identifier: MIT
//
// A directory while its fonts are listed. What a listing wants to know of the files in it is asked of the
// disk once, through the directory's descriptor. An object lives as long as a listing: what changes meanwhile
// is not seen.
#pragma once

#include <sys/stat.h>

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/directory.h"
#include "core/failure.h"
#include "core/name_table.h"

namespace gw {

/// What `stat` tells of a file, as far as a listing wants to know it.
struct SeenFile {
    mode_t mode = 0;
    uid_t owner = 0;
    dev_t device = 0;
    blkcnt_t blocks = 0;          ///< of 512 bytes
    bool is_unchangeable = true;  ///< it may be that nobody can write to it, whatever its mode says
};

/// None when `stat` fails for the path.
[[nodiscard]] std::optional<SeenFile> look_at_file(const std::string& path);

class SeenDirectory {
  public:
    /// `path` is used unchanged; the paths of files are made of it and of their names.
    explicit SeenDirectory(std::string path);
    SeenDirectory(const SeenDirectory&) = delete;
    SeenDirectory& operator=(const SeenDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    /// What `stat` says of the file; none when `stat` fails. Valid until something else is asked.
    const std::optional<SeenFile>& look(const std::string& name);
    /// The answer of `look`, if that question was asked already or a file was opened; else null.
    [[nodiscard]] const std::optional<SeenFile>* known(const std::string& name);
    /// Whether the file is there; also true when that cannot be found out. After a few questions the names
    /// in the directory are read, and answer the others.
    bool has(const std::string& name);
    /// Opens a file by the rules of `gw::open_to_read`.
    Result<Descriptor> open_to_read(const std::string& name);
    /// The directory NAME in this one.
    SeenDirectory& below(const std::string& name);

  private:
    [[nodiscard]] std::string path_of(const std::string& name) const { return path_ + name; }
    [[nodiscard]] int place_of(const std::string& name, std::string& place) const;
    [[nodiscard]] bool ask_for(const std::string& name) const;
    void read_names();
    [[nodiscard]] bool knows_case() const;

    /// A name that was asked for, or is in the directory.
    struct Entry {
        bool is_listed = false;  ///< its directory has it
        bool is_file = false;    ///< or a directory; of anything else, such as a link, only the disk knows
        bool is_seen = false;    ///< `seen` is the answer of `look`
        std::optional<SeenFile> seen = {};
    };
    [[nodiscard]] std::optional<SeenFile> ask_about(const std::string& name) const;
    /// Null when there is none.
    Entry* find(std::string_view name);
    /// The same, or a new one.
    Entry& at(std::string_view name);

    std::string path_;
    Descriptor fd_;                  // only for looking
    std::optional<Directory> home_;  // for opening files
    bool is_home_opened_ = false;
    int asked_ = 0;
    bool are_names_read_ = false;
    bool names_answer_ = false;
    NameTable names_;
    std::deque<Entry> entries_;  // at the places of their names
    // What is asked about the files of a font is asked in turn.
    std::array<std::size_t, 2> recent_ = {};
    std::size_t next_recent_ = 0;
    NameTable extensions_;  // of the names in the directory: most questions are about others
    std::map<std::string, std::unique_ptr<SeenDirectory>> below_;
};

}  // namespace gw
