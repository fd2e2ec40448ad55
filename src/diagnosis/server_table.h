// SPDX-License-Identifier: MIT
//
// The fonts of one element as the X server keeps them: names that stand for one file or are an alias, and
// names that stand for all sizes of a face.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "diagnosis/element_state.h"
#include "diagnosis/server_sizes.h"

namespace gw::diagnosis {

class ServerTable {
  public:
    enum class Opener { BITMAPS, OUTLINES, BUILT_IN };

    /// A name of an index or of the aliases.
    struct Plain {
        std::string name;
        std::string file;    // as in the index; "" for an alias
        std::string target;  // of an alias
        bool is_alias = false;
        Opener opener = Opener::BITMAPS;
    };
    /// A size of a face that is there as a font of its own.
    struct Instance {
        ServerSizes sizes;  // completed
        const Plain* font = nullptr;
    };
    /// A name for all sizes of a face.
    struct Scalable {
        std::string name;
        std::string file;  // that its outlines are made of
        Opener opener = Opener::BITMAPS;
        std::vector<Instance> instances;
    };

    ServerTable(const FontSource& source, ScreenResolution screen);
    ServerTable(const ServerTable&) = delete;
    ServerTable& operator=(const ServerTable&) = delete;

    /// The first one that the pattern, in lower case, matches, in the server's order; null for none. Of equal
    /// names it is the one that halving hits first.
    [[nodiscard]] const Plain* find_plain(const std::string& pattern) const;
    /// The same. What a subset of characters or a matrix asks for, not every font can do.
    [[nodiscard]] const Scalable* find_scalable(const std::string& pattern, const ServerSizes& wanted) const;

    /// Whether other elements look here for bitmaps.
    [[nodiscard]] bool is_source_of_bitmaps() const { return is_source_of_bitmaps_; }

  private:
    void add_font(const IndexEntry& entry, bool is_unscaled);
    void add_scalable(const std::string& name, const std::string& file, Opener opener,
                      const ServerSizes& sizes, const Plain* font);
    Scalable* scalable_of(const std::string& name);
    void add_aliases(const ServerAliases& aliases);
    void add_names_of_files();
    void sort();

    ScreenResolution screen_;
    bool is_source_of_bitmaps_ = false;
    std::deque<Plain> fonts_;
    std::deque<Scalable> faces_;
    std::vector<const Plain*> plain_;
    std::vector<const Scalable*> scalable_;
    std::unordered_map<std::string, Scalable*> face_of_name_;
};

/// Whether the server's pattern matches the name, both in lower case. An asterisk stands for anything but is
/// itself where another asterisk or a question mark follows it.
[[nodiscard]] bool server_pattern_matches(const std::string& pattern, const std::string& name);

}  // namespace gw::diagnosis
