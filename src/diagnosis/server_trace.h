// SPDX-License-Identifier: MIT
//
// Follows the way on which an X server finds a font, by the server's own rules (libXfont2): the elements of
// its path in order; in each, first the names of its index and its aliases, then what can be made in the
// wanted size; the first element that can answer in any way wins, and an alias begins anew with the first. A
// size that is made of bitmaps is made of the best that any element has.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "diagnosis/element_state.h"
#include "diagnosis/server_file.h"
#include "diagnosis/server_table.h"

namespace gw::diagnosis {

struct TracedAlias {
    std::string alias;
    std::string target;
    std::string element;    ///< whose file has it
    std::string directory;  ///< where that file is
};

/// A file that an index names, and that the server cannot open.
struct UnusableFile {
    std::string file;  ///< absolute path
    std::string element;
    std::string name;  ///< in the index
};

struct Trace {
    enum class End {
        NOTHING,      ///< no element has it
        FONT,         ///< the name is in an index, or the pattern matches one
        SCALED,       ///< the server makes this size
        CIRCLE,       ///< more aliases than the server follows
        EMPTY_ALIAS,  ///< an alias of nothing, which ends servers
    };
    End end = End::NOTHING;
    std::vector<TracedAlias> aliases;
    const FontSource* source = nullptr;  ///< that has the file; null for nothing
    std::string name;                    ///< in the index there, in lower case
    std::string file;                    ///< absolute path; "" for a font in the server itself
    bool is_damaged = false;             ///< the server cannot open the file, and looks no further
    bool is_certain = true;              ///< false where not all that counts could be looked at
    std::vector<UnusableFile> unusable;  ///< on the way
    /// The pixel size, point size and resolution in the name contradict each other.
    bool sizes_disagree = false;
};

/// Finds fonts on a path. The sources must live as long.
class ServerRules {
  public:
    ServerRules(const std::vector<FontSource>& sources, ScreenResolution screen);
    ~ServerRules();
    ServerRules(const ServerRules&) = delete;
    ServerRules& operator=(const ServerRules&) = delete;

    [[nodiscard]] Trace follow(const std::string& pattern) const;

  private:
    enum class Step {
        NOTHING,
        ALIAS,  ///< it has been added to the trace
        FONT,   ///< it is in the trace
        END,    ///< the same, but the server cannot read the file, and gives up
    };
    struct Wanted;
    struct Found;

    [[nodiscard]] const ServerTable& table_of(const FontSource& source) const;
    [[nodiscard]] std::vector<const FontSource*> sources_of_bitmaps() const;
    [[nodiscard]] FileOpening opening_of(const FontSource& source, const std::string& file,
                                         ServerTable::Opener opener) const;

    Step look_in(const FontSource& source, const std::string& name, Trace& trace) const;
    Step look_up(const FontSource& source, const std::string& name, Trace& trace) const;
    Step scale(const FontSource& source, const std::string& name, Trace& trace) const;
    Step scale(const FontSource& source, const ServerTable::Scalable& face, const Wanted& wanted,
               Trace& trace) const;
    static Step pass_over(Trace& trace);
    Step open(const FontSource& source, const ServerTable::Plain& font, Trace& trace) const;
    Step take_size_of_another(const FontSource& source, const Wanted& wanted, Trace& trace) const;
    Step draw_outlines(const FontSource& source, const ServerTable::Scalable& face, const Wanted& wanted,
                       Trace& trace) const;
    Step scale_bitmaps(const FontSource& source, const ServerTable::Scalable& face, const Wanted& wanted,
                       Trace& trace) const;
    [[nodiscard]] Found find_pattern_in_index(const std::string& pattern) const;
    [[nodiscard]] Found find_best(const FontSource& source, const ServerTable::Scalable& face,
                                  const Wanted& wanted) const;

    const std::vector<FontSource>& sources_;
    ScreenResolution screen_;
    mutable std::map<const FontSource*, std::unique_ptr<ServerTable>> tables_;
    mutable std::map<std::string, FileOpening> openings_;
};

}  // namespace gw::diagnosis
