// SPDX-License-Identifier: MIT
//
// The results of installing or deleting fonts, collected font by font, so that the user can be told at the
// end which fonts failed and why.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "model/gw_font.h"

namespace gw {

class FontReport {
  public:
    /// A font that was not installed or deleted.
    struct Entry {
        std::string font;  ///< its human-readable name, without the mark "[Read Only]"
        Failure why;
        std::vector<std::string> files = {};  ///< the paths of the font's files
    };

    /// A font that was installed or deleted.
    struct Done {
        std::string font;  ///< its name, as in `Entry`
        std::string dir;   ///< the directory that was changed, ending in "/"
        std::string xlfd;
    };

    /// Records the outcome for `font`; returns whether it is a success. `dir` is the directory that was
    /// changed.
    bool note(GWFont& font, const Outcome& outcome, const std::string& dir);
    /// The same for the font's own directory.
    bool note(GWFont& font, const Outcome& outcome);
    /// The change of the directory was not made after all: its successes become failures. Returns how many
    /// human-readable names these have.
    int fail_all_in(const std::string& dir, const Failure& why);
    /// Appends the entries of `other`.
    void append(const FontReport& other);
    void clear();
    /// Passes the failures to the listener for failures, except those that were never reported in earlier
    /// releases.
    void tell() const;

    [[nodiscard]] const std::vector<Entry>& failed() const { return entries; }
    [[nodiscard]] const std::vector<Done>& done() const { return successes; }
    /// What the user should know of fonts that were installed.
    [[nodiscard]] const std::vector<Entry>& remarks() const { return remarks_; }
    /// The human-readable names of the fonts that were installed or deleted, each once.
    [[nodiscard]] std::vector<std::string> done_names() const;
    /// The entries that have come since this was last asked for.
    std::vector<Entry> take_new();

  private:
    std::vector<Entry> entries;
    std::vector<Entry> remarks_;
    std::vector<Done> successes;
    std::size_t taken = 0;  // how many of them `take_new` has given
};

/// A font's name as lists show it, without a mark such as "[Read Only]" behind its type.
[[nodiscard]] std::string name_without_mark(const std::string& name);

/// Whether fonts have always been left out for this reason without a word on standard error.
[[nodiscard]] bool was_always_silent(Reason reason);

}  // namespace gw
